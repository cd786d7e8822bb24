// Output files that appear whole or not at all: each is written beside its
// destination under a temporary name, and all of them are moved into place
// together once every one was written, flushed and closed.
//
// A destination that is a symbolic link is written through: the link stays
// and the file at the end of its chain (created when missing) gets the bytes,
// the temporary going beside that file. A destination that exists and is no
// regular file (a character device, a FIFO) is written straight into, as
// `cp` would, since renaming over it would replace it with a plain file.
#pragma once

#include <cstddef>
#include <cstdio>
#include <list>
#include <string>

namespace gltf {

class StagedFiles;

class StagedFile {
 public:
  const std::string& destination() const { return destination_; }
  std::FILE* stream() { return stream_; }
  // False (and the error recorded) when not every byte was written.
  bool write(const void* data, std::size_t size);
  bool writeZeros(std::size_t count);

 private:
  friend class StagedFiles;
  StagedFile(StagedFiles& owner, std::string destination) : owner_(owner), destination_(std::move(destination)) {}

  StagedFiles& owner_;
  std::string destination_;  // as given, for messages
  std::string target_;       // the file the bytes end up in: `destination_` with its links followed
  std::string temporary_;    // empty when writing straight into the target
  std::FILE* stream_ = nullptr;
  bool committed_ = false;
};

class StagedFiles {
 public:
  StagedFiles() = default;
  StagedFiles(const StagedFiles&) = delete;
  StagedFiles& operator=(const StagedFiles&) = delete;
  // Removes every temporary file that was not moved into place.
  ~StagedFiles();

  // A new temporary file beside `destination`'s target, or the target itself
  // opened for writing when it is a device or FIFO; null on failure (see
  // error()). A FIFO with no reader is refused rather than waited on.
  StagedFile* create(const std::string& destination);
  // Flushes, syncs and closes the file; false on failure.
  bool finish(StagedFile& file);
  // Moves every finished file onto its destination, in the order created.
  // Refuses up front when a destination is a directory, so that no file is
  // replaced in that case. The moves happen under an exclusive lock on each
  // target's folder, so that saves to the same files at once leave the
  // files of one save or of the other, never a mix.
  bool commit();

  // "Cannot write PATH: REASON" for `path` and the system's error code.
  void failWrite(const std::string& path, int error);
  // Any other failure, as a whole message.
  void fail(const std::string& message);
  // The first failure recorded; empty while all went well.
  const std::string& error() const { return error_; }

 private:
  // Wraps the open descriptor in the file's stream; null (fd closed) on failure.
  StagedFile* adoptStream(StagedFile& file, int fd, const std::string& destination);

  std::list<StagedFile> files_;  // stable addresses for the handles given out
  std::string error_;
};

// `path` with its chain of symbolic links followed to the last one's target
// (which need not exist); `path` itself when it is no link. Sets `error` (an
// errno value) and returns empty for a loop or a link that cannot be read.
std::string resolveLinks(const std::string& path, int& error);

}  // namespace gltf
