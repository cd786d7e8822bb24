// IVxMessageService over the host's message tables.
#pragma once

#include "services/messages.h"
#include "vexo/vx_services.h"

namespace vexo {

class SdkMessageService final : public IVxMessageService {
 public:
  explicit SdkMessageService(Messages& messages) : messages_(messages) {}

  // VXR_NOTFOUND for a table entry the host does not have.
  VxResult Raise(VxResult code, const char* table, std::uint32_t entry, unsigned argCount,
                 const char* const* args) override;

 private:
  Messages& messages_;
};

}  // namespace vexo
