// Runs the glTF validator (tests/validator) over files the tests write.
// Findings listed in docs/validator-allowlist.json are expected: the output
// rules of this exporter cause them on purpose. Everything else at error or
// warning level fails the check.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

struct GltfFinding {
  std::string code;
  int severity = 0;  // 0 error, 1 warning, 2 information, 3 hint
  std::string pointer;
  std::string message;
};

// Validates the ".glb" or ".gltf" at `path` (with the files it names). False,
// with `problem` telling why, when the validator could not be run or could not
// read the file.
bool runGltfValidator(const std::string& path, std::vector<GltfFinding>& findings, std::string& problem);

// Whether an error or warning is on the allowlist.
bool isAllowedFinding(const GltfFinding& finding);

// Succeeds when the validator finds no error or warning beyond the allowlist;
// the failure message lists the findings. Fails (never skips) when the validator
// is not installed.
::testing::AssertionResult isValidGltf(const std::string& path);
