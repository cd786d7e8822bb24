// Sampled animation through `vexo save`: which items and components get
// curves, one animation per timeline or action, the host's action state
// after the save, and the keys played back by an independent engine
// (three.js's AnimationMixer) against the host's matrices at each key time.
#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "engine/evaluation.h"
#include "engine/scene.h"
#include "loader/plugin_loader.h"
#include "save_and_read.h"
#include "test_matrix.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_host.h"
#include "sdk_impl/sdk_save_target.h"
#include "sdk_impl/sdk_scene.h"
#include "services/host_services.h"
#include "validator.h"
#include "vexo/vx_anim.h"

namespace {


const std::string kExample = GLTFIO_EXAMPLES_DIR "/animated.json";
const std::string kWholeScene = "sceneio.gltf.save.exportType=0";

std::string exampleText() { return readFile(kExample); }

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

rapidjson::Document parse(const std::string& text) {
  rapidjson::Document json;
  json.Parse(text.c_str());
  EXPECT_TRUE(json.IsObject());
  return json;
}

// (node name, path) of every channel, per animation name.
std::map<std::string, std::set<std::pair<std::string, std::string>>> channelsOf(const rapidjson::Document& json) {
  std::map<std::string, std::set<std::pair<std::string, std::string>>> result;
  if (!json.HasMember("animations")) return result;
  for (const auto& animation : json["animations"].GetArray()) {
    auto& channels = result[animation["name"].GetString()];
    for (const auto& channel : animation["channels"].GetArray()) {
      const auto& target = channel["target"];
      channels.emplace(json["nodes"][target["node"].GetUint()]["name"].GetString(), target["path"].GetString());
    }
  }
  return result;
}

// The key count and last key time of each animation's first sampler.
std::pair<unsigned, double> firstInput(const rapidjson::Document& json, unsigned animation) {
  const auto& sampler = json["animations"][animation]["samplers"][0];
  const auto& input = json["accessors"][sampler["input"].GetUint()];
  return {input["count"].GetUint(), input["max"][0].GetDouble()};
}

// The scene as the host evaluates it, in any action at any time.
class Host {
 public:
  explicit Host(const std::string& path) { EXPECT_TRUE(vexo::readSceneFile(path, scene_, error_)) << error_; }
  Matrix world(const std::string& name, const std::string& action, double time) {
    vexo::Evaluation evaluation(scene_, action, time);
    vexo::Matrix m{};
    EXPECT_TRUE(evaluation.matrix(*scene_.findName(name), vexo::MatrixChannel::World, m)) << name;
    Matrix out;
    std::copy(m.begin(), m.end(), out.begin());
    return out;
  }
  Matrix local(const std::string& name, const std::string& action, double time) {
    const vexo::Item* parent = scene_.findName(name)->parent();
    const Matrix w = world(name, action, time);
    return parent ? multiply(w, inverse(world(parent->name(), action, time))) : w;
  }

 private:
  vexo::Scene scene_;
  std::string error_;
};

std::string runEngine(const std::string& file) {
  std::string text;
  if (FILE* pipe = popen(("node " GLTFIO_ANIMATE_SCRIPT " '" + file + "' 2>&1").c_str(), "r")) {
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
    pclose(pipe);
  }
  return text;
}

double rowLength(const Matrix& m, int row) {
  return std::sqrt(m[4 * row] * m[4 * row] + m[4 * row + 1] * m[4 * row + 1] + m[4 * row + 2] * m[4 * row + 2]);
}

bool unitScaleRotation(const Matrix& m) {
  const double det = m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
                     m[2] * (m[4] * m[9] - m[5] * m[8]);
  return std::fabs(rowLength(m, 0) - 1) < 1e-9 && std::fabs(rowLength(m, 1) - 1) < 1e-9 &&
         std::fabs(rowLength(m, 2) - 1) < 1e-9 && det > 0;
}

// The rotation a trace-method quaternion of `m` (scale left in) stands for,
// normalised as three.js plays it: of the matrix's diagonal cases only the
// positive trace occurs in the example.
std::array<double, 4> normalisedTraceQuaternion(const Matrix& m) {
  const double r = std::sqrt(1.0 + m[0] + m[5] + m[10]);
  std::array<double, 4> q = {(m[6] - m[9]) * 0.5 / r, (m[8] - m[2]) * 0.5 / r, (m[1] - m[4]) * 0.5 / r, 0.5 * r};
  const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  for (double& v : q) v /= n;
  return q;
}

// Single-precision keys at single-precision times: a few units in the last place of a float.
constexpr double kTolerance = 2e-6;

// Every node at every key time of every clip: translation and scale against
// the host's local matrix; for nodes without scale the whole local and world
// matrices. Scaled and mirrored nodes carry the trace-method quaternion of
// the scaled matrix, which is no rotation of the item: for them the
// direction of that quaternion is compared.
void compareWithEngine(const std::string& file, Host& host, const std::map<std::string, std::string>& actionOfClip) {
  const std::string text = runEngine(file);
  rapidjson::Document json;
  json.Parse(text.c_str());
  ASSERT_TRUE(json.IsObject()) << "the engine failed: " << text.substr(0, 2000);
  ASSERT_EQ(json["clips"].Size(), actionOfClip.size());
  unsigned compared = 0;
  for (const auto& clip : json["clips"].GetArray()) {
    const auto found = actionOfClip.find(clip["name"].GetString());
    ASSERT_NE(found, actionOfClip.end()) << clip["name"].GetString();
    const std::string& action = found->second;
    for (const auto& sample : clip["samples"].GetArray()) {
      const double t = sample["time"].GetDouble();
      for (const auto& node : sample["nodes"].GetObject()) {
        const std::string name = node.name.GetString();
        const auto& engine = node.value;
        const Matrix local = host.local(name, action, t);
        const std::string where = clip["name"].GetString() + std::string(" ") + name + " at " + std::to_string(t);
        for (int i = 0; i < 3; ++i) {
          EXPECT_NEAR(engine["translation"][i].GetDouble(), local[12 + i], kTolerance) << where;
          EXPECT_NEAR(engine["scale"][i].GetDouble(), rowLength(local, i), kTolerance) << where;
        }
        if (unitScaleRotation(local)) {
          const Matrix world = host.world(name, action, t);
          for (int i = 0; i < 16; ++i) {
            EXPECT_NEAR(engine["local"][i].GetDouble(), local[i], kTolerance) << where << " local " << i;
            EXPECT_NEAR(engine["world"][i].GetDouble(), world[i], kTolerance) << where << " world " << i;
          }
        } else {
          // Keyed rotations three.js plays normalised; a node's static one as written.
          const std::array<double, 4> q = normalisedTraceQuaternion(local);
          double n = 0;
          for (int i = 0; i < 4; ++i) n += engine["rotation"][i].GetDouble() * engine["rotation"][i].GetDouble();
          for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(engine["rotation"][i].GetDouble() / std::sqrt(n), q[i], kTolerance) << where << " rotation";
        }
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 0u);
}

// A save run in this process, so that the host's state is there to look at afterwards.
class InProcessSave {
 public:
  InProcessSave(const std::string& sceneText, const TempDir& dir, const std::vector<std::string>& settings)
      : services_(&log_), sdkScene_(scene_), host_(services_) {
    std::string error;
    EXPECT_TRUE(vexo::readSceneFile(dir.write("scene.json", sceneText), scene_, error)) << error;
    for (const std::string& setting : settings) {
      const std::size_t equals = setting.find('=');
      services_.userValues.set(setting.substr(0, equals), std::string_view(setting).substr(equals + 1));
    }
    plugin_ = vexo::LoadedPlugin::load(GLTFIO_PLUGIN_FILE, host_, error);
    EXPECT_TRUE(plugin_) << error;
    if (!plugin_) return;
    IVxSaver* saver = host_.findServer("gltf.gltf")->SpawnSaver();
    vexo::SaveTarget verify(sdkScene_, false);
    vexo::SaveTarget real(sdkScene_, true);
    const std::string destination = dir.file("out.gltf");
    EXPECT_EQ(saver->Save(&verify, destination.c_str()), VXR_OK);
    EXPECT_EQ(saver->Save(&real, destination.c_str()), VXR_OK);
    saver->Release();
    EXPECT_TRUE(isValidGltf(destination));
    json = parse(readFile(dir.file("out.gltf")));
  }
  std::vector<std::string> activeActions() {
    std::vector<std::string> active;
    IVxAnimService* anim = sdkScene_.AnimService();
    IVxActor* actor = nullptr;
    EXPECT_EQ(anim->ActorLookup(sdkScene_.wrap(scene_.findName("Robot")), &actor), VXR_OK);
    for (unsigned i = 0; i < actor->ActionCount(); ++i)
      if (actor->ActionIsActive(actor->ActionByIndex(i)) == VXR_OK) active.push_back(actor->ActionByIndex(i)->Name());
    return active;
  }
  std::string log() const { return log_.str(); }

  rapidjson::Document json;

 private:
  std::ostringstream log_;
  vexo::HostServices services_;
  vexo::Scene scene_;
  vexo::SdkScene sdkScene_;
  vexo::SdkHost host_;
  std::unique_ptr<vexo::LoadedPlugin> plugin_;
};

TEST(AnimationExport, TimelineGivesCurvesOnlyForAnimatedComponents) {
  TempDir dir;
  const SavedScene saved = saveAndRead(dir, exampleText(), "robot.gltf", {"--set", kWholeScene});
  const rapidjson::Document json = parse(saved.bytes);
  // "edit" plays the active action "wave": Body, keyed only in "spin", stays still.
  const std::set<std::pair<std::string, std::string>> expected = {
      {"Arm", "rotation"}, {"Hand", "translation"}, {"Drum", "scale"}, {"Lamp", "scale"}};
  EXPECT_EQ(channelsOf(json), (std::map<std::string, std::set<std::pair<std::string, std::string>>>{{"Scene", expected}}));
  // 0 to 1 s at 24 fps: 26 samples, the last past the end.
  const auto [count, last] = firstInput(json, 0);
  EXPECT_EQ(count, 26u);
  EXPECT_NEAR(last, 25.0 / 24.0, 1e-6);
  // Animated nodes are written as translation, rotation and scale; still ones keep a matrix.
  for (const auto& node : json["nodes"].GetArray()) {
    const std::string name = node["name"].GetString();
    EXPECT_EQ(node.HasMember("rotation"), name != "Body") << name;
    EXPECT_EQ(node.HasMember("matrix"), name == "Body") << name;
  }
  for (const char* line : {"info: Adding sample xform anim for Arm", "info: Init FbxCurves for sampling...",
                           "info: Sampling...", "info: Deinit FbxCurves after sampling...",
                           "info:    start:0.000000 end:1.000000 (0.000000 - 24.000000)",
                           "info: ---   Actor:Robot actions:2 items:5 chans:7",
                           "info: Action:wave active:1 enabled:1", "info: Action:spin active:0 enabled:1"})
    EXPECT_TRUE(saved.run.printed(line)) << line << "\n" << saved.run.errText();
  EXPECT_FALSE(saved.run.printed("info: Adding sample xform anim for Body"));
}

TEST(AnimationExport, MultiplierDoublesTheRate) {
  TempDir dir;
  const SavedScene saved = saveAndRead(dir, exampleText(), "robot.gltf",
                                       {"--set", kWholeScene, "--set", "sceneio.gltf.save.sampleAnimFpsMultiplier=1"});
  const rapidjson::Document json = parse(saved.bytes);
  const auto [count, last] = firstInput(json, 0);
  EXPECT_EQ(count, 49u);
  EXPECT_NEAR(last, 1.0, 1e-6);
}

TEST(AnimationExport, AnimationOffWritesNoAnimationAndNoMessages) {
  TempDir dir;
  const SavedScene saved = saveAndRead(dir, exampleText(), "robot.gltf",
                                       {"--set", kWholeScene, "--set", "sceneio.gltf.save.animation=0"});
  const rapidjson::Document json = parse(saved.bytes);
  EXPECT_FALSE(json.HasMember("animations"));
  EXPECT_FALSE(json["nodes"][0].HasMember("rotation"));
  EXPECT_FALSE(saved.run.printed("info: Sampling..."));
  EXPECT_FALSE(saved.run.printed("info: Adding sample xform anim for Arm"));
}

TEST(AnimationExport, EveryActionGivesOneAnimationEachAndTheActiveOneStaysActive) {
  TempDir dir;
  InProcessSave save(exampleText(), dir, {kWholeScene, "sceneio.gltf.save.exportActionType=1"});
  const auto channels = channelsOf(save.json);
  EXPECT_EQ(channels.at("Robot|wave"), (std::set<std::pair<std::string, std::string>>{
                                           {"Arm", "rotation"}, {"Hand", "translation"}, {"Drum", "scale"}, {"Lamp", "scale"}}));
  EXPECT_EQ(channels.at("Robot|spin"), (std::set<std::pair<std::string, std::string>>{
                                           {"Body", "rotation"}, {"Drum", "rotation"}, {"Lamp", "translation"}}));
  EXPECT_EQ(channels.size(), 2u);
  // "spin" is keyed from 0 to 2 s.
  EXPECT_NEAR(firstInput(save.json, 1).second, 2.0, 1e-6);
  EXPECT_EQ(save.activeActions(), std::vector<std::string>{"wave"});
  EXPECT_NE(save.log().find("Actor:Robot items:5 channels:7 actions:2"), std::string::npos) << save.log();
  EXPECT_NE(save.log().find("Getting animation time range for actor: Robot"), std::string::npos);
  EXPECT_NE(save.log().find("    Success - FB prefix and suffix added to action clip names."), std::string::npos);
}

TEST(AnimationExport, ActiveActionOnlyAndNothingWhenNoneIsActive) {
  TempDir dir;
  {
    InProcessSave save(exampleText(), dir, {kWholeScene, "sceneio.gltf.save.exportActionType=2"});
    const auto channels = channelsOf(save.json);
    ASSERT_EQ(channels.size(), 1u);
    EXPECT_EQ(channels.begin()->first, "Robot|wave");
    EXPECT_EQ(save.activeActions(), std::vector<std::string>{"wave"});
  }
  const std::string noneActive = replaced(exampleText(), R"("active": 1, )", "");
  for (const char* type : {"1", "2"}) {
    InProcessSave save(noneActive, dir, {kWholeScene, std::string("sceneio.gltf.save.exportActionType=") + type});
    EXPECT_EQ(channelsOf(save.json).size(), type[0] == '1' ? 2u : 0u) << type;
    // Exporting made actions active one after another; none is left active.
    EXPECT_EQ(save.activeActions(), std::vector<std::string>{}) << type;
  }
}

TEST(AnimationExport, EnginePlaysTheHostsMatricesAtEveryKeyTime) {
  TempDir dir;
  Host host(kExample);
  {
    const SavedScene timeline = saveAndRead(dir, exampleText(), "timeline.glb", {"--set", kWholeScene});
    compareWithEngine(dir.file("timeline.glb"), host, {{"Scene", "edit"}});
  }
  const SavedScene actions = saveAndRead(dir, exampleText(), "actions.glb",
                                         {"--set", kWholeScene, "--set", "sceneio.gltf.save.exportActionType=1"});
  compareWithEngine(dir.file("actions.glb"), host, {{"Robot|wave", "wave"}, {"Robot|spin", "spin"}});
}

}  // namespace
