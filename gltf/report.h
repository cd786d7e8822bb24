// How the glTF document tells its owner about problems. The plug-in's event-log
// writer implements it; the document hands over finished texts.
#pragma once

class GltfReporter {
 public:
  virtual ~GltfReporter() = default;
  virtual void info(const char* text) = 0;
  virtual void warning(const char* text) = 0;
  virtual void error(const char* text) = 0;
};
