#include "command/preview_command.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "command/save_command.h"

extern char** environ;

namespace vexo {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kDefaultTimeoutSeconds = 120.0;
// The renderer's status when it stopped itself at the timeout, and said so.
constexpr int kRendererTimedOut = 3;

std::string quoted(const std::string& text) { return '"' + text + '"'; }

std::string rendererFolder() {
  const char* folder = std::getenv("VEXO_PREVIEW_DIR");
  return folder && *folder ? folder : VEXO_PREVIEW_DEFAULT_DIR;
}

// VEXO_PREVIEW_TIMEOUT in seconds when it holds a positive number.
double timeoutSeconds() {
  const char* text = std::getenv("VEXO_PREVIEW_TIMEOUT");
  if (!text || !*text) return kDefaultTimeoutSeconds;
  char* end = nullptr;
  const double value = std::strtod(text, &end);
  return *end == '\0' && std::isfinite(value) && value > 0 ? value : kDefaultTimeoutSeconds;
}

bool isRegularFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// A temporary file beside `output`, renamed onto it once the picture is whole.
class TemporaryOutput {
 public:
  explicit TemporaryOutput(const std::string& output) : output_(output) {
    const std::size_t slash = output.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : output.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? output : output.substr(slash + 1);
    std::string pattern = folder + "." + name + ".tmp-XXXXXX";
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
      error_ = std::strerror(errno);
      return;
    }
    // Created as 0600; the picture gets the mode any new file would.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    ::close(fd);
    path_ = pattern;
  }
  ~TemporaryOutput() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  TemporaryOutput(const TemporaryOutput&) = delete;
  TemporaryOutput& operator=(const TemporaryOutput&) = delete;

  const std::string& path() const { return path_; }
  const std::string& error() const { return error_; }

  bool commit() {
    if (::rename(path_.c_str(), output_.c_str()) != 0) {
      error_ = std::strerror(errno);
      return false;
    }
    path_.clear();
    return true;
  }

 private:
  std::string output_;
  std::string path_;
  std::string error_;
};

bool startsWithPngSignature(const std::string& path, long long& size) {
  static const unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return false;
  unsigned char head[8] = {};
  const bool ok = std::fread(head, 1, sizeof head, file) == sizeof head && std::memcmp(head, kSignature, 8) == 0;
  std::fseek(file, 0, SEEK_END);
  size = std::ftell(file);
  std::fclose(file);
  return ok;
}

// Forwards complete lines of the renderer's output, each after "vexo: ".
class LineForwarder {
 public:
  explicit LineForwarder(std::ostream& err) : err_(err) {}
  void add(const char* data, std::size_t size) {
    pending_.append(data, size);
    std::size_t start = 0;
    for (std::size_t end; (end = pending_.find('\n', start)) != std::string::npos; start = end + 1) {
      emit(std::string_view(pending_).substr(start, end - start));
    }
    pending_.erase(0, start);
  }
  void finish() {
    if (!pending_.empty()) emit(pending_);
    pending_.clear();
  }
  bool printedAnything() const { return printed_; }

 private:
  void emit(std::string_view line) {
    if (line.empty()) return;
    err_ << "vexo: " << line << '\n';
    printed_ = true;
  }
  std::ostream& err_;
  std::string pending_;
  bool printed_ = false;
};

struct RendererRun {
  bool started = false;
  std::string startError;
  bool timedOut = false;
  int status = -1;  // exit status, or 128 + signal
};

// Runs node with the arguments as they are (no shell) and waits for it, at
// most `timeout` seconds plus a grace period for its own cleanup; then it is
// asked to stop (SIGTERM), and killed 3 seconds later if it has not.
RendererRun runRenderer(const std::vector<std::string>& arguments, double timeout, LineForwarder& forward) {
  RendererRun run;
  int pipeFds[2];
  if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
    run.startError = std::strerror(errno);
    return run;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 2);

  std::vector<std::string> argv = arguments;
  std::vector<char*> cargv;
  for (std::string& argument : argv) cargv.push_back(argument.data());
  cargv.push_back(nullptr);
  pid_t pid = 0;
  const int spawnError = ::posix_spawnp(&pid, cargv[0], &actions, nullptr, cargv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipeFds[1]);
  if (spawnError != 0) {
    ::close(pipeFds[0]);
    run.startError = std::strerror(spawnError);
    return run;
  }
  run.started = true;

  // The renderer stops itself at the timeout; closing the browser and removing
  // its profile takes it a few seconds more.
  const auto start = Clock::now();
  const auto termAt = start + std::chrono::duration<double>(timeout + 5.0);
  const auto killAt = termAt + std::chrono::duration<double>(3.0);
  bool termSent = false, killSent = false;
  bool pipeOpen = true;
  char buffer[4096];
  for (;;) {
    int status = 0;
    const pid_t done = ::waitpid(pid, &status, WNOHANG);
    if (done == pid) {
      run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      break;
    }
    const auto now = Clock::now();
    if (!termSent && now >= termAt) {
      run.timedOut = true;
      ::kill(pid, SIGTERM);
      termSent = true;
    } else if (termSent && !killSent && now >= killAt) {
      ::kill(pid, SIGKILL);
      killSent = true;
    }
    if (pipeOpen) {
      pollfd entry{pipeFds[0], POLLIN, 0};
      if (::poll(&entry, 1, 100) > 0) {
        const ssize_t count = ::read(pipeFds[0], buffer, sizeof buffer);
        if (count > 0) {
          forward.add(buffer, static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
          pipeOpen = false;  // closed; the browser it started may keep a copy
        }
      }
    } else {
      ::usleep(50 * 1000);
    }
  }
  // What is left in the pipe, without waiting on a writer that outlived node.
  ::fcntl(pipeFds[0], F_SETFL, O_NONBLOCK);
  for (ssize_t count; pipeOpen && (count = ::read(pipeFds[0], buffer, sizeof buffer)) > 0;) {
    forward.add(buffer, static_cast<std::size_t>(count));
  }
  ::close(pipeFds[0]);
  forward.finish();
  return run;
}

// Every digit, for the renderer; the short form, for people.
std::string formatNumber(double value, bool exact = true) {
  char text[64];
  std::snprintf(text, sizeof text, exact ? "%.17g" : "%g", value);
  return text;
}

}  // namespace

std::optional<PictureSize> parsePictureSize(const std::string& text) {
  const std::size_t x = text.find('x');
  if (x == std::string::npos) return std::nullopt;
  auto side = [](const std::string& digits) -> std::optional<int> {
    if (digits.empty() || digits.size() > 5) return std::nullopt;
    int value = 0;
    for (const char c : digits) {
      if (c < '0' || c > '9') return std::nullopt;
      value = value * 10 + (c - '0');
    }
    if (value < 1 || value > kMaxPreviewSide) return std::nullopt;
    return value;
  };
  const auto width = side(text.substr(0, x));
  const auto height = side(text.substr(x + 1));
  if (!width || !height) return std::nullopt;
  return PictureSize{*width, *height};
}

int runPreview(const PreviewRequest& request, std::ostream& out, std::ostream& err) {
  const auto size = parsePictureSize(request.size);
  if (!size) {
    err << "vexo: --size " << quoted(request.size) << ": expected WIDTHxHEIGHT, each 1 to " << kMaxPreviewSide
        << " pixels, such as 800x600 (see vexo preview --help)\n";
    return kExitUsage;
  }
  if (!std::isfinite(request.time) || request.time < 0) {
    err << "vexo: --time " << formatNumber(request.time, false)
        << ": expected a number of seconds, 0 or more (see vexo preview --help)\n";
    return kExitUsage;
  }

  const std::string folder = rendererFolder();
  const std::string script = folder + "/render.mjs";
  if (!isRegularFile(script)) {
    err << "vexo: no preview renderer " << quoted(script)
        << " (set VEXO_PREVIEW_DIR to the folder that holds render.mjs)\n";
    return kExitSaveFailed;
  }
  struct stat info {};
  if (::stat(request.file.c_str(), &info) != 0) {
    err << "vexo: cannot read " << quoted(request.file) << ": " << std::strerror(errno) << '\n';
    return kExitSaveFailed;
  }
  if (!S_ISREG(info.st_mode)) {
    err << "vexo: cannot read " << quoted(request.file) << ": not a regular file\n";
    return kExitSaveFailed;
  }

  TemporaryOutput picture(request.output);
  if (picture.path().empty()) {
    err << "vexo: cannot write " << quoted(request.output) << ": " << picture.error() << '\n';
    return kExitSaveFailed;
  }

  const double timeout = timeoutSeconds();
  LineForwarder forward(err);
  const RendererRun run = runRenderer(
      {"node", script, request.file, picture.path(), std::to_string(size->width), std::to_string(size->height),
       formatNumber(request.time), std::to_string(static_cast<long long>(timeout * 1000))},
      timeout, forward);
  if (!run.started) {
    err << "vexo: cannot run node: " << run.startError << " (install Node.js with: bash scripts/setup.sh)\n";
    return kExitSaveFailed;
  }
  if (run.timedOut && run.status != kRendererTimedOut) {
    err << "vexo: rendering " << quoted(request.file) << " took longer than " << formatNumber(timeout, false)
        << " seconds and was stopped\n";
    return kExitSaveFailed;
  }
  if (run.status != 0) {
    if (!forward.printedAnything()) {
      err << "vexo: rendering " << quoted(request.file) << " failed (the renderer exited with status " << run.status
          << ")\n";
    }
    return kExitSaveFailed;
  }
  long long bytes = 0;
  if (!startsWithPngSignature(picture.path(), bytes)) {
    err << "vexo: rendering " << quoted(request.file) << " produced no PNG\n";
    return kExitSaveFailed;
  }
  if (!picture.commit()) {
    err << "vexo: cannot write " << quoted(request.output) << ": " << picture.error() << '\n';
    return kExitSaveFailed;
  }
  out << "vexo: wrote " << quoted(request.output) << " (" << bytes << " bytes)\n";
  return kExitOk;
}

}  // namespace vexo
