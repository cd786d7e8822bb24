// `vexo save` against hostile scene files, destinations and conditions. Each
// run must end with status 0 and a file that validates, or status 1 or 2 and a
// message; never by a signal; leaving what was at the destination intact when
// it fails, and no temporary file beside it.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include "validator.h"
#include "vexo_runner.h"

namespace fs = std::filesystem;

namespace {

// A guard against hangs only: a run this long has failed whatever it would print.
constexpr auto kRunGuard = std::chrono::seconds(20);
const char* const kPrevious = "what was here before";

struct Limits {
  rlim_t fileSize = RLIM_INFINITY;
  rlim_t addressSpace = RLIM_INFINITY;
};

struct Outcome {
  int status = -1;  // exit status, when it exited
  int signal = 0;   // the signal that ended it, if any
  bool hung = false;
  std::vector<std::string> errLines;

  std::string describe() const {
    std::string text = hung ? "hung; " : signal ? "killed by signal " + std::to_string(signal) + "; " : "";
    text += "status " + std::to_string(status) + "; stderr:";
    for (const std::string& line : errLines) text += "\n  " + line.substr(0, 300);
    return text;
  }
};

// A vexo run under resource limits, started now and collected by wait().
class VexoProcess {
 public:
  VexoProcess(const std::vector<std::string>& args, const Limits& limits = {}) {
    errPath_ = capture_.file("err");
    std::vector<std::string> argv = {VEXO_BIN};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> cargv;
    for (std::string& arg : argv) cargv.push_back(arg.data());
    cargv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      const rlimit fileSize{limits.fileSize, limits.fileSize}, memory{limits.addressSpace, limits.addressSpace};
      const int err = open(errPath_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      const int out = open("/dev/null", O_WRONLY);
      if (err < 0 || out < 0 || dup2(err, 2) < 0 || dup2(out, 1) < 0 || setrlimit(RLIMIT_FSIZE, &fileSize) != 0 ||
          setrlimit(RLIMIT_AS, &memory) != 0)
        _exit(127);
      execv(VEXO_BIN, cargv.data());
      _exit(127);
    }
  }

  Outcome wait() {
    Outcome outcome;
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + kRunGuard;
    while (waitpid(pid_, &status, WNOHANG) == 0) {
      if (std::chrono::steady_clock::now() > deadline) {
        outcome.hung = true;
        kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    if (WIFSIGNALED(status) && !outcome.hung) outcome.signal = WTERMSIG(status);
    std::istringstream err(readFile(errPath_));
    for (std::string line; std::getline(err, line);) outcome.errLines.push_back(line);
    return outcome;
  }

 private:
  TempDir capture_;
  std::string errPath_;
  pid_t pid_ = -1;
};

Outcome runVexoLimited(const std::vector<std::string>& args, const Limits& limits = {}) {
  return VexoProcess(args, limits).wait();
}

// Writes the named generated scene into `dir` and returns its path.
std::string makeScene(const TempDir& dir, const std::string& name) {
  const std::string command = std::string("'") + GLTFIO_PYTHON + "' '" + GLTFIO_MAKE_SCENES + "' '" + dir.path() +
                              "' '" + name + "'";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  return dir.file(name + ".json");
}

std::vector<std::string> generatedCaseNames() {
  const std::string command = std::string("'") + GLTFIO_PYTHON + "' '" + GLTFIO_MAKE_SCENES + "' --list";
  std::vector<std::string> names;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char line[256];
    while (std::fgets(line, sizeof line, pipe)) {
      std::string name = line;
      while (!name.empty() && (name.back() == '\n' || name.back() == '\r')) name.pop_back();
      names.push_back(name);
    }
    pclose(pipe);
  }
  return names;
}

bool isTemporaryName(const std::string& name) { return name.size() > 1 && name[0] == '.' && name.find(".tmp-") != std::string::npos; }

// The ".bin" written beside a ".gltf" destination.
std::string binBeside(const std::string& gltf) { return gltf.substr(0, gltf.size() - 5) + ".bin"; }

bool endsWith(const std::string& text, const std::string& suffix) {
  return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// What a destination held before the save, to compare after a failure.
struct Previous {
  std::map<std::string, std::string> files;  // path -> content

  void write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    files[path] = content;
  }
};

// The checks every run must pass.
void expectCleanEnd(const Outcome& outcome, const std::string& destination, const std::string& folder,
                    const Previous& previous, bool validate = true) {
  ASSERT_FALSE(outcome.hung) << outcome.describe();
  ASSERT_EQ(outcome.signal, 0) << outcome.describe();
  ASSERT_TRUE(outcome.status >= 0 && outcome.status <= 2) << outcome.describe();
  if (outcome.status == 0) {
    if (validate) {
      EXPECT_TRUE(isValidGltf(destination)) << outcome.describe();
    }
  } else {
    bool message = false;
    for (const std::string& line : outcome.errLines)
      message = message || line.rfind("vexo: ", 0) == 0 || line.rfind("error: ", 0) == 0;
    EXPECT_TRUE(message) << "no message; " << outcome.describe();
    for (const auto& [path, content] : previous.files)
      EXPECT_EQ(readFile(path), content) << path << " changed by a failed save; " << outcome.describe();
  }
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(folder, ec))
    EXPECT_FALSE(isTemporaryName(entry.path().filename())) << "left behind: " << entry.path() << "; "
                                                           << outcome.describe();
}

// Hostile scene files, saved as the whole scene so that every item reaches the export.

struct SceneCase {
  const char* name;
  const char* destination;  // ".gltf" where the JSON text matters most
  // When the save succeeds, text its ".gltf" must hold or must not hold (null: no check).
  const char* kept = nullptr;
  const char* notWritten = nullptr;
};

const SceneCase kSceneCases[] = {
    {"valid_mesh", "out.glb"},
    {"grid_mesh", "out.glb"},
    {"wrong_type_items_object", "out.glb"},
    {"wrong_type_name_number", "out.glb"},
    {"wrong_type_channel_text", "out.glb"},
    {"wrong_type_point_strings", "out.glb"},
    {"wrong_type_matrix_short", "out.glb"},
    {"wrong_type_top_array", "out.glb"},
    {"point_index_huge", "out.glb"},
    {"point_index_negative", "out.glb"},
    {"polygon_of_many_points", "out.glb"},
    {"resolution_out_of_range", "out.glb"},
    {"frame_rate_negative_and_huge_range", "out.gltf"},
    {"frame_rate_zero", "out.gltf"},
    {"number_nan_literal", "out.glb"},
    {"number_overflows_to_infinity", "out.gltf"},
    {"number_zero_with_huge_exponent", "out.gltf", nullptr, "18446744073709553"},
    {"number_subnormal_points", "out.glb"},
    {"number_float_max_points", "out.glb"},
    {"camera_tiny_aperture", "out.gltf"},
    {"camera_tiny_near_clip", "out.gltf"},
    {"camera_zero_and_negative", "out.gltf"},
    {"pivot_huge", "out.gltf"},
    {"scale_zero", "out.gltf"},
    {"rotation_huge_angles", "out.gltf"},
    {"vertex_values_extreme", "out.glb"},
    {"nesting_children_deep", "out.gltf"},
    {"nesting_arrays_very_deep", "out.glb"},
    {"nesting_objects_very_deep", "out.glb"},
    {"nesting_unclosed", "out.glb"},
    {"name_lone_surrogate", "out.gltf"},
    {"name_nul", "out.gltf", R"("A\u0000B")"},
    {"name_surrogate_pair_and_controls", "out.gltf"},
    {"name_very_long", "out.gltf"},
    {"name_invalid_utf8", "out.gltf"},
    {"text_ends_inside_utf8_character", "out.gltf"},
    {"byte_order_mark", "out.glb"},
    {"empty_file", "out.glb"},
    {"binary_garbage", "out.glb"},
    {"nul_inside_json", "out.glb"},
    {"link_to_missing_item", "out.glb"},
    {"link_loop", "out.glb"},
    {"link_matrix_cycle_through_parent", "out.gltf"},
    {"link_without_channel", "out.glb"},
    {"instance_source_loop", "out.glb"},
    {"selection_of_missing_item", "out.glb"},
    {"many_slashes_selection", "out.glb"},
    {"many_slashes_link", "out.glb"},
    {"many_slashes_item_list", "out.glb"},
    {"many_slash_names_resolve", "out.gltf"},
};

// Test names and failure messages show the case's name.
void PrintTo(const SceneCase& sceneCase, std::ostream* out) { *out << sceneCase.name; }

class HostileScene : public ::testing::TestWithParam<SceneCase> {};

TEST_P(HostileScene, SavesAValidFileOrFailsWithAMessage) {
  const SceneCase& sceneCase = GetParam();
  TempDir dir;
  const std::string scene = makeScene(dir, sceneCase.name);
  const std::string destination = dir.file(sceneCase.destination);
  Previous previous;
  previous.write(destination, kPrevious);
  if (endsWith(destination, ".gltf")) previous.write(binBeside(destination), kPrevious);

  const Outcome outcome =
      runVexoLimited({"save", scene, destination, "--set", "sceneio.gltf.save.exportType=0"});
  expectCleanEnd(outcome, destination, dir.path(), previous);
  if (outcome.status != 0) return;
  const std::string written = readFile(destination);
  if (sceneCase.kept) {
    EXPECT_NE(written.find(sceneCase.kept), std::string::npos) << sceneCase.kept << " is not in " << written;
  }
  if (sceneCase.notWritten) {
    EXPECT_EQ(written.find(sceneCase.notWritten), std::string::npos) << sceneCase.notWritten << " is in " << written;
  }
}

INSTANTIATE_TEST_SUITE_P(Robustness, HostileScene, ::testing::ValuesIn(kSceneCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(HostileSceneTable, CoversEveryGeneratedScene) {
  std::vector<std::string> table;
  for (const SceneCase& sceneCase : kSceneCases) table.emplace_back(sceneCase.name);
  EXPECT_EQ(generatedCaseNames(), table);
}

// Destinations that are not a plain new file. Each prepares a folder and names
// the destination; `after` checks what must still be true once the save ended.

struct Prepared {
  explicit Prepared(std::string path = {}) : destination(std::move(path)) {}

  std::string destination;
  Previous previous;
  bool validate = true;  // false where the destination is no file to read back
  std::function<void()> after;
};

struct DestinationCase {
  const char* name;
  std::function<Prepared(const TempDir&)> prepare;
};

bool isType(const std::string& path, mode_t type) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 && (info.st_mode & S_IFMT) == type;
}

const DestinationCase kDestinationCases[] = {
    {"missing_folder", [](const TempDir& dir) { return Prepared(dir.file("missing/out.glb")); }},
    {"file_in_the_way_of_the_folder",
     [](const TempDir& dir) {
       Prepared p{dir.file("file/out.glb")};
       p.previous.write(dir.file("file"), kPrevious);
       return p;
     }},
    {"folder_in_the_way",
     [](const TempDir& dir) {
       fs::create_directory(dir.file("out.glb"));
       Prepared p{dir.file("out.glb")};
       p.previous.write(dir.file("out.glb/inside"), kPrevious);
       p.validate = false;
       p.after = [path = dir.file("out.glb")] { EXPECT_TRUE(isType(path, S_IFDIR)); };
       return p;
     }},
    {"folder_in_the_way_of_the_bin",
     [](const TempDir& dir) {
       Prepared p{dir.file("out.gltf")};
       p.previous.write(dir.file("out.gltf"), kPrevious);
       fs::create_directory(dir.file("out.bin"));
       p.previous.write(dir.file("out.bin/inside"), kPrevious);
       return p;
     }},
    {"existing_file",
     [](const TempDir& dir) {
       Prepared p{dir.file("out.glb")};
       p.previous.write(p.destination, kPrevious);
       return p;
     }},
    {"read_only_folder",
     [](const TempDir& dir) {
       fs::create_directory(dir.file("ro"));
       Prepared p{dir.file("ro/out.gltf")};
       p.previous.write(p.destination, kPrevious);
       fs::permissions(dir.file("ro"), fs::perms::owner_read | fs::perms::owner_exec);
       // Let the folder's removal go through afterwards.
       p.after = [folder = dir.file("ro")] { fs::permissions(folder, fs::perms::owner_all); };
       return p;
     }},
    {"read_only_file",
     [](const TempDir& dir) {
       Prepared p{dir.file("out.glb")};
       p.previous.write(p.destination, kPrevious);
       fs::permissions(p.destination, fs::perms::owner_read);
       return p;
     }},
    {"char_device",
     [](const TempDir& dir) {
       // A private null device rather than /dev/null, which a faulty save would replace for everyone.
       Prepared p{dir.file("null")};
       if (mknod(p.destination.c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0) return Prepared();
       p.validate = false;
       p.after = [path = p.destination] { EXPECT_TRUE(isType(path, S_IFCHR)) << "the device was replaced"; };
       return p;
     }},
    {"fifo",
     [](const TempDir& dir) {
       Prepared p{dir.file("pipe.glb")};
       EXPECT_EQ(mkfifo(p.destination.c_str(), 0644), 0);
       // A reader drains the FIFO, as a consumer of the save would.
       const pid_t reader = fork();
       if (reader == 0) {
         const int in = open(p.destination.c_str(), O_RDONLY), out = open("/dev/null", O_WRONLY);
         char buffer[4096];
         ssize_t n = 0;
         while (in >= 0 && (n = read(in, buffer, sizeof buffer)) > 0) (void)!write(out, buffer, n);
         _exit(0);
       }
       p.validate = false;
       p.after = [path = p.destination, reader] {
         EXPECT_TRUE(isType(path, S_IFIFO)) << "the FIFO was replaced";
         // A reader still waiting was never written to.
         kill(reader, SIGKILL);
         waitpid(reader, nullptr, 0);
       };
       return p;
     }},
    {"symlink_to_file",
     [](const TempDir& dir) {
       Prepared p{dir.file("link.glb")};
       p.previous.write(dir.file("target.glb"), kPrevious);
       fs::create_symlink(dir.file("target.glb"), p.destination);
       return p;
     }},
    {"dangling_symlink",
     [](const TempDir& dir) {
       Prepared p{dir.file("link.glb")};
       fs::create_symlink(dir.file("nowhere/target.glb"), p.destination);
       p.validate = false;
       p.after = [path = p.destination] {
         if (fs::exists(path)) {
           EXPECT_TRUE(isValidGltf(path));
         }
       };
       return p;
     }},
    {"empty_name", [](const TempDir&) { return Prepared(""); }},
    {"trailing_slash",
     [](const TempDir& dir) {
       Prepared p{dir.file("out.glb/")};
       p.validate = false;
       return p;
     }},
};

void PrintTo(const DestinationCase& destinationCase, std::ostream* out) { *out << destinationCase.name; }

class HostileDestination : public ::testing::TestWithParam<DestinationCase> {};

TEST_P(HostileDestination, SavesOrFailsLeavingItIntact) {
  TempDir dir;
  const std::string scene = makeScene(dir, "valid_mesh");
  Prepared prepared = GetParam().prepare(dir);
  if (prepared.destination.empty() && std::string(GetParam().name) != "empty_name")
    GTEST_SKIP() << "cannot make this destination here (mknod needs root)";

  const Outcome outcome = runVexoLimited({"save", scene, prepared.destination});
  const std::string folder = prepared.destination.empty() ? dir.path() : fs::path(prepared.destination).parent_path().string();
  expectCleanEnd(outcome, prepared.destination, fs::is_directory(folder) ? folder : dir.path(), prepared.previous,
                 prepared.validate);
  if (prepared.after) prepared.after();
}

INSTANTIATE_TEST_SUITE_P(Robustness, HostileDestination, ::testing::ValuesIn(kDestinationCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Conditions around the save.

TEST(Robustness, SceneIsAFolder) {
  TempDir dir;
  const Outcome outcome = runVexoLimited({"save", dir.path(), dir.file("out.glb")});
  expectCleanEnd(outcome, dir.file("out.glb"), dir.path(), {});
  EXPECT_EQ(outcome.status, 2) << outcome.describe();
}

TEST(Robustness, SceneIsAnEndlessStream) {
  TempDir dir;
  // The address-space limit keeps a faulty reader from taking the machine's
  // memory; the sanitizers' runtime cannot start under one.
#ifdef GLTFIO_SANITIZED
  const rlim_t addressSpace = RLIM_INFINITY;
#else
  const rlim_t addressSpace = 2ull << 30;
#endif
  const Outcome outcome = runVexoLimited({"save", "/dev/zero", dir.file("out.glb")}, {RLIM_INFINITY, addressSpace});
  expectCleanEnd(outcome, dir.file("out.glb"), dir.path(), {});
  EXPECT_EQ(outcome.status, 2) << outcome.describe();
}

TEST(Robustness, FileSizeLimit) {
  TempDir dir;
  const std::string scene = makeScene(dir, "grid_mesh");
  Previous previous;
  previous.write(dir.file("out.glb"), kPrevious);
  // The grid's file is far above 64 KiB; the error output stays below it.
  const Outcome outcome = runVexoLimited({"save", scene, dir.file("out.glb"), "--set", "sceneio.gltf.save.exportType=0",
                                                  "--set", "sceneio.gltf.save.indicesExport=1"},
                                                 {64 << 10, RLIM_INFINITY});
  expectCleanEnd(outcome, dir.file("out.glb"), dir.path(), previous);
  EXPECT_EQ(outcome.status, 1) << outcome.describe();
}

TEST(Robustness, AddressSpaceLimits) {
#ifdef GLTFIO_SANITIZED
  GTEST_SKIP() << "the sanitizers reserve more address space than any of these limits";
#endif
  TempDir dir;
  const std::string scene = makeScene(dir, "big_grid_mesh");
  Previous previous;
  previous.write(dir.file("out.glb"), kPrevious);
  // From failures inside the read and the export to enough; an empty scene saves within the lowest.
  for (rlim_t megabytes : {16, 20, 24, 32, 48, 64}) {
    SCOPED_TRACE(std::to_string(megabytes) + " MiB");
    const Outcome outcome = runVexoLimited(
        {"save", scene, dir.file("out.glb"), "--set", "sceneio.gltf.save.indicesExport=1"}, {RLIM_INFINITY, megabytes << 20});
    expectCleanEnd(outcome, dir.file("out.glb"), dir.path(), previous);
    if (outcome.status == 0) previous.write(dir.file("out.glb"), kPrevious);
  }
}

// The ".gltf" and ".bin" of one save, or false with what does not match.
::testing::AssertionResult pairMatches(const std::string& gltf) {
  rapidjson::Document json;
  const std::string text = readFile(gltf);
  if (json.Parse(text.c_str(), text.size()).HasParseError() || !json.IsObject() || !json.HasMember("buffers") ||
      !json["buffers"].IsArray() || json["buffers"].Empty())
    return ::testing::AssertionFailure() << gltf << " is not a glTF document with a buffer";
  const auto declared = json["buffers"][0]["byteLength"].GetUint64();
  const auto actual = readFile(binBeside(gltf)).size();
  if (declared != actual)
    return ::testing::AssertionFailure() << "the .gltf declares " << declared << " bytes, the .bin has " << actual;
  return ::testing::AssertionSuccess();
}

TEST(Robustness, ConcurrentSavesToOneDestination) {
  TempDir dir;
  const std::string first = makeScene(dir, "grid_60"), second = makeScene(dir, "grid_61");
  const std::string destination = dir.file("out/shared.gltf");
  fs::create_directory(dir.file("out"));
  for (int round = 0; round < 50; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    VexoProcess one({"save", first, destination, "--set", "sceneio.gltf.save.exportType=0"});
    VexoProcess other({"save", second, destination, "--set", "sceneio.gltf.save.exportType=0"});
    const Outcome a = one.wait(), b = other.wait();
    // Neither may fail for the other's sake.
    expectCleanEnd(a, destination, dir.file("out"), {}, false);
    expectCleanEnd(b, destination, dir.file("out"), {}, false);
    EXPECT_EQ(a.status, 0) << a.describe();
    EXPECT_EQ(b.status, 0) << b.describe();
    ASSERT_TRUE(pairMatches(destination));
  }
  EXPECT_TRUE(isValidGltf(destination));
}

// The fuzzer starts from these seeds: one the reader refuses would leave the
// fuzzer searching near the reader's first checks only.
TEST(FuzzSeeds, EverySeedSceneReadsAndSaves) {
  TempDir dir;
  const std::string command = std::string("'") + GLTFIO_PYTHON + "' '" + GLTFIO_MAKE_SEEDS + "' '" + dir.file("seeds") +
                              "' '" + GLTFIO_EXAMPLES_DIR + "'";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::set<std::string> scenes;
  for (const auto& entry : fs::directory_iterator(dir.file("seeds"))) scenes.insert(readFile(entry.path()).substr(1));
  ASSERT_GE(scenes.size(), 10u);
  for (const std::string& text : scenes) {
    const std::string scene = dir.write("scene.json", text);
    const Outcome outcome = runVexoLimited({"save", scene, dir.file("out.gltf"), "--set", "sceneio.gltf.save.exportType=0"});
    EXPECT_EQ(outcome.status, 0) << text.substr(0, 200) << "\n" << outcome.describe();
  }
}

}  // namespace
