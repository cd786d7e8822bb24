// The host's global services, as plain objects the SDK adapters sit on.
#pragma once

#include <ostream>

#include "services/event_log.h"
#include "services/messages.h"
#include "services/user_values.h"

namespace vexo {

struct HostServices {
  // Log lines are printed to `logOut` (null: kept in memory only).
  explicit HostServices(std::ostream* logOut) : log(logOut) {}

  UserValues userValues;
  EventLog log;
  Messages messages;
};

}  // namespace vexo
