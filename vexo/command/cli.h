// The `vexo` command line.
#pragma once

#include <ostream>

namespace vexo {

// Parses the arguments and runs the subcommand; returns the exit status.
// Help and what a subcommand reports go to `out`; errors and the event log go
// to `err`. Never throws: an exception (out of memory) becomes one "vexo: "
// line and status 1.
int runCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

// Makes a write past the file-size limit fail (EFBIG) instead of killing the process.
void ignoreFileSizeSignal();

}  // namespace vexo
