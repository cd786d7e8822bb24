#include "vexo_runner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

extern char** environ;


bool VexoRun::printed(const std::string& line) const { return lineIndex(line) >= 0; }

int VexoRun::lineIndex(const std::string& line) const {
  auto found = std::find(errLines.begin(), errLines.end(), line);
  return found == errLines.end() ? -1 : static_cast<int>(found - errLines.begin());
}

std::string VexoRun::errText() const {
  std::string text;
  for (const std::string& line : errLines) text += line + "\n";
  return text;
}

VexoRun runVexo(const std::vector<std::string>& args) {
  // Standard output and error go to files, so neither pipe can fill up.
  TempDir capture;
  const std::string outPath = capture.file("out"), errPath = capture.file("err");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);

  std::vector<std::string> argv = {VEXO_BIN};
  argv.insert(argv.end(), args.begin(), args.end());
  std::vector<char*> cargv;
  for (std::string& arg : argv) cargv.push_back(arg.data());
  cargv.push_back(nullptr);

  VexoRun run;
  pid_t pid = 0;
  if (posix_spawn(&pid, VEXO_BIN, &actions, nullptr, cargv.data(), environ) != 0) {
    posix_spawn_file_actions_destroy(&actions);
    throw std::runtime_error("cannot start " VEXO_BIN);
  }
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  waitpid(pid, &status, 0);
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = readFile(outPath);
  std::istringstream err(readFile(errPath));
  for (std::string line; std::getline(err, line);) run.errLines.push_back(line);
  return run;
}

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "gltfio-e2e-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::write(const std::string& name, const std::string& text) const {
  const std::string path = file(name);
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

bool fileExists(const std::string& path) { return std::filesystem::exists(path); }

std::vector<std::string> listDir(const std::string& path) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}
