#include "gltf/atomic_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "gltf/paths.h"

namespace gltf {

namespace {

// What a plain fopen("wb") would give a new file.
mode_t newFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

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
    if (!file.committed_) ::unlink(file.temporary_.c_str());
  }
}

StagedFile* StagedFiles::create(const std::string& destination) {
  files_.push_back(StagedFile(*this, destination));
  StagedFile& file = files_.back();
  // The name is cut so that a destination near the name length limit still
  // leaves room for the temporary's prefix and suffix.
  std::string name = pathFolder(destination) + "." + pathFileName(destination).substr(0, 200) + ".tmp-XXXXXX";
  std::vector<char> pattern(name.begin(), name.end());
  pattern.push_back('\0');

  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) {
    const int error = errno;
    files_.pop_back();
    failWrite(destination, error);
    return nullptr;
  }
  file.temporary_ = pattern.data();
  ::fchmod(fd, newFileMode());
  file.stream_ = ::fdopen(fd, "wb");
  if (!file.stream_) {
    failWrite(destination, errno);
    ::close(fd);
    return nullptr;
  }
  return &file;
}

bool StagedFiles::finish(StagedFile& file) {
  if (!file.stream_) return false;
  errno = 0;
  bool ok = std::fflush(file.stream_) == 0 && !std::ferror(file.stream_) && ::fsync(::fileno(file.stream_)) == 0;
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
  for (const StagedFile& file : files_) {
    struct stat info {};
    if (file.stream_) {
      fail("Cannot write " + file.destination_ + ": the file was not finished");
      return false;
    }
    if (::stat(file.destination_.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
      failWrite(file.destination_, EISDIR);
      return false;
    }
  }
  for (StagedFile& file : files_) {
    if (::rename(file.temporary_.c_str(), file.destination_.c_str()) != 0) {
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
