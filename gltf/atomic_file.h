// Output files that appear whole or not at all: each is written beside its
// destination under a temporary name, and all of them are moved into place
// together once every one was written, flushed and closed.
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
  std::string destination_;
  std::string temporary_;
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

  // A new temporary file beside `destination`; null on failure (see error()).
  StagedFile* create(const std::string& destination);
  // Flushes, syncs and closes the file; false on failure.
  bool finish(StagedFile& file);
  // Moves every finished file onto its destination, in the order created.
  // Refuses up front when a destination is a directory, so that no file is
  // replaced in that case.
  bool commit();

  // "Cannot write PATH: REASON" for `path` and the system's error code.
  void failWrite(const std::string& path, int error);
  // Any other failure, as a whole message.
  void fail(const std::string& message);
  // The first failure recorded; empty while all went well.
  const std::string& error() const { return error_; }

 private:
  std::list<StagedFile> files_;  // stable addresses for the handles given out
  std::string error_;
};

}  // namespace gltf
