// `vexo load-options`: print the glTF loader's options, and change them for good.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace vexo {

struct LoadOptionsRequest {
  std::vector<std::string> settings;  // "NAME=VALUE"
  std::string pluginPath;             // empty: see pluginPath()
};

// Prints each option in attribute order as "NAME = VALUE" on `out`. With
// settings, applies them all and persists the options, or, at the first bad
// one, says why on `err` and writes nothing (exit 2).
int runLoadOptions(const LoadOptionsRequest& request, std::ostream& out, std::ostream& err);

}  // namespace vexo
