#include "gltf/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace gltf {

namespace {

// The kernel's own limit on links followed in one lookup.
constexpr int kMaxLinkHops = 40;

// What a plain fopen("wb") would give a new file.
mode_t newFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Up to and including the last '/'; empty for a bare name. Only '/' counts
// here: these are the system's paths, where '\\' is an ordinary character.
std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string nameOf(const std::string& path) { return path.substr(folderOf(path).size()); }

// Holds exclusive locks on folders until destroyed.
class FolderLocks {
 public:
  explicit FolderLocks(std::vector<std::string> folders) {
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    // Always taken in the same order, so two saves cannot wait on each other.
    for (const std::string& folder : folders) {
      const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      // A folder that cannot be opened for reading goes unlocked; the rename still works.
      if (fd < 0) continue;
      while (::flock(fd, LOCK_EX) != 0 && errno == EINTR) {
      }
      fds_.push_back(fd);
    }
  }
  ~FolderLocks() {
    for (const int fd : fds_) ::close(fd);
  }
  FolderLocks(const FolderLocks&) = delete;
  FolderLocks& operator=(const FolderLocks&) = delete;

 private:
  std::vector<int> fds_;
};

}  // namespace

std::string resolveLinks(const std::string& path, int& error) {
  std::string current = path;
  for (int hop = 0; hop < kMaxLinkHops; ++hop) {
    struct stat info {};
    if (::lstat(current.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return current;
    std::vector<char> target(static_cast<std::size_t>(info.st_size > 0 ? info.st_size : 255) + 1);
    const ssize_t length = ::readlink(current.c_str(), target.data(), target.size());
    if (length < 0 || static_cast<std::size_t>(length) >= target.size()) {
      error = length < 0 ? errno : ENAMETOOLONG;
      return std::string();
    }
    const std::string next(target.data(), static_cast<std::size_t>(length));
    current = next.front() == '/' ? next : folderOf(current) + next;
  }
  error = ELOOP;
  return std::string();
}

bool StagedFile::write(const void* data, std::size_t size) {
  if (size == 0) return true;
  if (std::fwrite(data, 1, size, stream_) == size) return true;
  owner_.failWrite(destination_, errno != 0 ? errno : EIO);
  return false;
}

bool StagedFile::writeZeros(std::size_t count) {
  static const unsigned char kZeros[4] = {0, 0, 0, 0};
  while (count > 0) {
    const std::size_t n = count < sizeof kZeros ? count : sizeof kZeros;
    if (!write(kZeros, n)) return false;
    count -= n;
  }
  return true;
}

StagedFiles::~StagedFiles() {
  for (StagedFile& file : files_) {
    if (file.stream_) std::fclose(file.stream_);
    if (!file.committed_ && !file.temporary_.empty()) ::unlink(file.temporary_.c_str());
  }
}

StagedFile* StagedFiles::create(const std::string& destination) {
  int error = 0;
  const std::string target = resolveLinks(destination, error);
  if (target.empty()) {
    failWrite(destination, error);
    return nullptr;
  }
  files_.push_back(StagedFile(*this, destination));
  StagedFile& file = files_.back();
  file.target_ = target;

  struct stat info {};
  if (::stat(target.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode)) {
    // Non-blocking, so that a FIFO nobody reads fails at once instead of hanging the save.
    const int fd = ::open(target.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
      const int openError = errno;
      files_.pop_back();
      if (openError == ENXIO && S_ISFIFO(info.st_mode)) {
        fail("Cannot write " + destination + ": no process reads from the FIFO");
      } else {
        failWrite(destination, openError);
      }
      return nullptr;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return adoptStream(file, fd, destination);
  }

  // The name is cut so that a destination near the name length limit still
  // leaves room for the temporary's prefix and suffix.
  std::string name = folderOf(target) + "." + nameOf(target).substr(0, 200) + ".tmp-XXXXXX";
  std::vector<char> pattern(name.begin(), name.end());
  pattern.push_back('\0');

  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) {
    const int mkstempError = errno;
    files_.pop_back();
    failWrite(destination, mkstempError);
    return nullptr;
  }
  file.temporary_ = pattern.data();
  ::fchmod(fd, newFileMode());
  return adoptStream(file, fd, destination);
}

StagedFile* StagedFiles::adoptStream(StagedFile& file, int fd, const std::string& destination) {
  file.stream_ = ::fdopen(fd, "wb");
  if (file.stream_) return &file;
  failWrite(destination, errno);
  ::close(fd);
  return nullptr;
}

bool StagedFiles::finish(StagedFile& file) {
  if (!file.stream_) return false;
  errno = 0;
  bool ok = std::fflush(file.stream_) == 0 && !std::ferror(file.stream_);
  // Devices and FIFOs have nothing to sync (and refuse fsync).
  if (ok && !file.temporary_.empty()) ok = ::fsync(::fileno(file.stream_)) == 0;
  int error = errno;
  if (std::fclose(file.stream_) != 0 && ok) {
    ok = false;
    error = errno;
  }
  file.stream_ = nullptr;
  if (!ok) failWrite(file.destination_, error != 0 ? error : EIO);
  return ok;
}

bool StagedFiles::commit() {
  if (!error_.empty()) return false;
  std::vector<std::string> folders;
  for (const StagedFile& file : files_) {
    struct stat info {};
    if (file.stream_) {
      fail("Cannot write " + file.destination_ + ": the file was not finished");
      return false;
    }
    if (::stat(file.target_.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
      failWrite(file.destination_, EISDIR);
      return false;
    }
    if (!file.temporary_.empty()) folders.push_back(folderOf(file.target_));
  }
  const FolderLocks locks(std::move(folders));
  for (StagedFile& file : files_) {
    if (!file.temporary_.empty() && ::rename(file.temporary_.c_str(), file.target_.c_str()) != 0) {
      failWrite(file.destination_, errno);
      return false;
    }
    file.committed_ = true;
  }
  return true;
}

void StagedFiles::failWrite(const std::string& path, int error) {
  fail("Cannot write " + path + ": " + std::strerror(error));
}

void StagedFiles::fail(const std::string& message) {
  if (error_.empty()) error_ = message;
}

}  // namespace gltf
