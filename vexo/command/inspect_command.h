// `vexo inspect`: what the host holds for a scene file, as JSON.
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace vexo {

struct InspectRequest {
  std::string scenePath;
  std::string action = "edit";  // the action `vexo save` evaluates
  std::optional<double> time;   // absent: the scene's current time
};

// Prints the scene's items with their world matrices on `out`; problems go
// to `err`. Returns the exit status.
int runInspect(const InspectRequest& request, std::ostream& out, std::ostream& err);

}  // namespace vexo
