// The `vexo` command line.
#pragma once

#include <ostream>

namespace vexo {

// Parses the arguments and runs the subcommand; returns the exit status.
// Help goes to `out`; errors and the event log go to `err`.
int runCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace vexo
