#include "limited_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

extern char** environ;

pid_t startProgram(const std::string& binary, const ProgramRun& run, const TempDir& capture, int index) {
  const std::string outPath = capture.file("out" + std::to_string(index));
  const std::string errPath = capture.file("err" + std::to_string(index));
  std::vector<std::string> argv = {binary};
  argv.insert(argv.end(), run.args.begin(), run.args.end());
  std::vector<char*> cargv;
  for (std::string& arg : argv) cargv.push_back(arg.data());
  cargv.push_back(nullptr);
  std::vector<std::string> env;
  for (char** entry = environ; *entry; ++entry) env.emplace_back(*entry);
  for (const auto& [key, value] : run.environment) env.push_back(key + "=" + value);
  std::vector<char*> cenv;
  for (std::string& entry : env) cenv.push_back(entry.data());
  cenv.push_back(nullptr);

  // Only async-signal-safe calls between fork and exec.
  const pid_t pid = ::fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    for (const ResourceLimit& limit : run.limits) {
      const rlimit value{limit.value, limit.value};
      if (::setrlimit(limit.resource, &value) != 0) ::_exit(126);
    }
    const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (out < 0 || err < 0 || ::dup2(out, 1) < 0 || ::dup2(err, 2) < 0) ::_exit(126);
    ::execve(binary.c_str(), cargv.data(), cenv.data());
    ::_exit(127);
  }
  return pid;
}

VexoRun finishProgram(pid_t pid, const TempDir& capture, int index, bool* signalled) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
  }
  VexoRun run;
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  if (signalled) *signalled = WIFSIGNALED(status);
  run.out = readFile(capture.file("out" + std::to_string(index)));
  std::istringstream err(readFile(capture.file("err" + std::to_string(index))));
  for (std::string line; std::getline(err, line);) run.errLines.push_back(line);
  return run;
}

VexoRun runProgram(const std::string& binary, const ProgramRun& run, bool* signalled) {
  TempDir capture;
  return finishProgram(startProgram(binary, run, capture, 0), capture, 0, signalled);
}

std::vector<std::string> temporaryFiles(const std::string& folder) {
  std::vector<std::string> found;
  for (const std::string& name : listDir(folder))
    if (name.front() == '.' && name.find(".tmp-") != std::string::npos) found.push_back(name);
  return found;
}

std::string gridScene(int n) {
  std::ostringstream s;
  s << R"({ "items": [ { "name": "Grid", "type": "mesh", "mesh": { "points": [)";
  for (int y = 0; y <= n; ++y)
    for (int x = 0; x <= n; ++x) s << (x || y ? "," : "") << "[" << x << "," << y << ",0]";
  s << R"(], "polygons": [)";
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const int a = y * (n + 1) + x;
      s << (x || y ? "," : "") << "[" << a << "," << a + 1 << "," << a + n + 2 << "," << a + n + 1 << "]";
    }
  }
  s << "] } } ] }";
  return s.str();
}
