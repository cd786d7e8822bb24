#include "sdk_impl/sdk_messages.h"

#include <string>
#include <vector>

namespace vexo {

VxResult SdkMessageService::Raise(VxResult code, const char* table, std::uint32_t entry, unsigned argCount,
                                  const char* const* args) {
  if (!table || (argCount && !args)) return VXR_BADARG;
  std::vector<std::string> texts;
  for (unsigned i = 0; i < argCount; ++i) texts.emplace_back(args[i] ? args[i] : "");
  return messages_.raise(code, table, entry, texts) ? VXR_OK : VXR_NOTFOUND;
}

}  // namespace vexo
