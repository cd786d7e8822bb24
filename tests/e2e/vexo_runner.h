// Runs the vexo command as a user would and collects what it printed.
#pragma once

#include <string>
#include <vector>

struct VexoRun {
  int exitCode = -1;
  std::string out;
  std::vector<std::string> errLines;  // standard error, one entry per line

  // True when a line equal to `line` was printed on standard error.
  bool printed(const std::string& line) const;
  // The index of the first such line, or -1.
  int lineIndex(const std::string& line) const;
  std::string errText() const;
};

VexoRun runVexo(const std::vector<std::string>& args);

// A fresh folder under the system's temporary folder, removed by the destructor.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  // Writes `text` to a file in the folder and returns its path.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  std::string path_;
};

std::string readFile(const std::string& path);
bool fileExists(const std::string& path);
std::vector<std::string> listDir(const std::string& path);
