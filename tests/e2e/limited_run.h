// Runs a program as `vexo` is run in scripts and small containers: under
// resource limits, with extra environment, or several at once.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

#include "vexo_runner.h"

struct ResourceLimit {
  int resource;  // RLIMIT_AS, RLIMIT_FSIZE, ...
  rlim_t value;
};

struct ProgramRun {
  std::vector<std::string> args;  // after the program itself
  std::vector<ResourceLimit> limits;
  std::vector<std::pair<std::string, std::string>> environment;  // added to this process's
};

// Starts `binary`; core dumps are off. Standard output and error go to files
// in `capture`. Returns the process id.
pid_t startProgram(const std::string& binary, const ProgramRun& run, const TempDir& capture, int index);
// Waits for a process startProgram started; exitCode is 128 + the signal
// number when a signal ended it (`signalled` then true).
VexoRun finishProgram(pid_t pid, const TempDir& capture, int index, bool* signalled = nullptr);
VexoRun runProgram(const std::string& binary, const ProgramRun& run, bool* signalled = nullptr);

// The temporary files a save leaves behind when it is interrupted: names
// starting with "." and holding ".tmp-".
std::vector<std::string> temporaryFiles(const std::string& folder);

// A scene with one mesh item "Grid": a square grid of n by n quads.
std::string gridScene(int n);
