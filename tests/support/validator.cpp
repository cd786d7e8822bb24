#include "validator.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include <rapidjson/document.h>

extern char** environ;

namespace {

const char* const kSeverityNames[] = {"error", "warning", "information", "hint"};

struct AllowedFinding {
  std::string code;
  std::vector<std::string> pointers;  // empty: anywhere
};

bool fileExists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

// Runs node on the validator script and collects its standard output.
bool runNode(const std::string& path, std::string& output, std::string& problem) {
  int pipeFds[2];
  if (::pipe(pipeFds) != 0) {
    problem = std::string("cannot create a pipe: ") + std::strerror(errno);
    return false;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  posix_spawn_file_actions_addclose(&actions, pipeFds[1]);
  std::string node = GLTFIO_NODE;
  std::string script = GLTFIO_VALIDATOR_SCRIPT;
  std::string file = path;
  char* argv[] = {node.data(), script.data(), file.data(), nullptr};
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, node.c_str(), &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipeFds[1]);
  if (spawned != 0) {
    ::close(pipeFds[0]);
    problem = "cannot run " + node + ": " + std::strerror(spawned) + " (run scripts/setup.sh --test)";
    return false;
  }
  char buffer[4096];
  ssize_t n = 0;
  while ((n = ::read(pipeFds[0], buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR)) {
    if (n > 0) output.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(pipeFds[0]);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    problem = "the validator script failed (status " + std::to_string(status) + "): " + output;
    return false;
  }
  return true;
}

std::vector<AllowedFinding> loadAllowlist(std::string& problem) {
  std::ifstream in(GLTFIO_VALIDATOR_ALLOWLIST);
  std::stringstream text;
  text << in.rdbuf();
  rapidjson::Document json;
  json.Parse(text.str().c_str());
  std::vector<AllowedFinding> allowed;
  if (!in || json.HasParseError() || !json.IsArray()) {
    problem = std::string("cannot read the allowlist ") + GLTFIO_VALIDATOR_ALLOWLIST;
    return allowed;
  }
  for (const auto& entry : json.GetArray()) {
    if (!entry.IsObject() || !entry.HasMember("code") || !entry["code"].IsString() || !entry.HasMember("reason")) {
      problem = std::string("an allowlist entry needs a \"code\" and a \"reason\": ") + GLTFIO_VALIDATOR_ALLOWLIST;
      continue;
    }
    AllowedFinding item{entry["code"].GetString(), {}};
    if (entry.HasMember("pointers") && entry["pointers"].IsArray()) {
      for (const auto& pointer : entry["pointers"].GetArray()) {
        if (pointer.IsString()) item.pointers.emplace_back(pointer.GetString());
      }
    }
    allowed.push_back(std::move(item));
  }
  return allowed;
}

const std::vector<AllowedFinding>& allowlist(std::string& problem) {
  static std::string loadProblem;
  static const std::vector<AllowedFinding> allowed = loadAllowlist(loadProblem);
  problem = loadProblem;
  return allowed;
}

std::string describe(const GltfFinding& f) {
  const char* severity = f.severity >= 0 && f.severity < 4 ? kSeverityNames[f.severity] : "?";
  return f.code + " (" + severity + ") at " + (f.pointer.empty() ? "-" : f.pointer) + ": " + f.message;
}

}  // namespace

bool runGltfValidator(const std::string& path, std::vector<GltfFinding>& findings, std::string& problem) {
  findings.clear();
  const std::string modules = std::string(GLTFIO_VALIDATOR_DIR) + "/node_modules/gltf-validator/package.json";
  if (!fileExists(modules)) {
    problem = std::string("the glTF validator is not installed in ") + GLTFIO_VALIDATOR_DIR +
              "/node_modules: run scripts/setup.sh --test (it runs npm ci --prefix tests/validator)";
    return false;
  }
  std::string output;
  if (!runNode(path, output, problem)) return false;

  rapidjson::Document json;
  json.Parse(output.c_str());
  if (json.HasParseError() || !json.IsArray() || json.Empty() || !json[0].IsObject()) {
    problem = "unexpected validator output: " + output;
    return false;
  }
  const auto& result = json[0];
  if (result.HasMember("error")) {
    problem = std::string("the validator could not read ") + path + ": " + result["error"].GetString();
    return false;
  }
  for (const auto& m : result["report"]["issues"]["messages"].GetArray()) {
    GltfFinding finding;
    finding.code = m["code"].GetString();
    finding.severity = m["severity"].GetInt();
    if (m.HasMember("pointer") && m["pointer"].IsString()) finding.pointer = m["pointer"].GetString();
    if (finding.pointer.empty() && m.HasMember("offset") && m["offset"].IsNumber()) {
      finding.pointer = "byte " + std::to_string(m["offset"].GetInt64());
    }
    finding.message = m["message"].GetString();
    findings.push_back(std::move(finding));
  }
  return true;
}

// A pointer of the allowlist matches segment by segment; "*" stands for any one
// segment (an array index), so one entry covers every image or material.
bool pointerMatches(const std::string& pattern, const std::string& pointer) {
  std::size_t p = 0, q = 0;
  while (p <= pattern.size() && q <= pointer.size()) {
    const std::size_t pEnd = std::min(pattern.find('/', p), pattern.size());
    const std::size_t qEnd = std::min(pointer.find('/', q), pointer.size());
    const std::string segment = pattern.substr(p, pEnd - p);
    if (segment != "*" && segment != pointer.substr(q, qEnd - q)) return false;
    if (pEnd == pattern.size() || qEnd == pointer.size()) return pEnd == pattern.size() && qEnd == pointer.size();
    p = pEnd + 1;
    q = qEnd + 1;
  }
  return false;
}

bool isAllowedFinding(const GltfFinding& finding) {
  std::string problem;
  for (const AllowedFinding& allowed : allowlist(problem)) {
    if (allowed.code != finding.code) continue;
    if (allowed.pointers.empty()) return true;
    for (const std::string& pointer : allowed.pointers) {
      if (pointerMatches(pointer, finding.pointer)) return true;
    }
  }
  return false;
}

::testing::AssertionResult isValidGltf(const std::string& path) {
  std::vector<GltfFinding> findings;
  std::string problem;
  if (!runGltfValidator(path, findings, problem)) return ::testing::AssertionFailure() << problem;
  allowlist(problem);
  if (!problem.empty()) return ::testing::AssertionFailure() << problem;

  std::string unexpected;
  for (const GltfFinding& finding : findings) {
    if (finding.severity <= 1 && !isAllowedFinding(finding)) unexpected += "\n  " + describe(finding);
  }
  if (!unexpected.empty()) {
    return ::testing::AssertionFailure() << "the glTF validator reports for " << path << ":" << unexpected;
  }
  return ::testing::AssertionSuccess();
}
