#include "command/inspect_command.h"

#include <cmath>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "command/save_command.h"
#include "engine/inspect.h"
#include "engine/scene.h"
#include "scenefile/scene_file.h"

namespace vexo {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void writeText(Writer& writer, const std::string& text) {
  writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

// JSON has no NaN or infinity: such a value is written as null.
void writeNumber(Writer& writer, double value) {
  if (std::isfinite(value)) {
    writer.Double(value);
  } else {
    writer.Null();
  }
}

}  // namespace

int runInspect(const InspectRequest& request, std::ostream& out, std::ostream& err) {
  Scene scene;
  std::string error;
  if (!readSceneFile(request.scenePath, scene, error)) {
    err << "vexo: " << error << '\n';
    return kExitUsage;
  }
  const double time = request.time.value_or(scene.time());
  std::vector<ItemPlacement> items;
  if (!inspectScene(scene, request.action, time, items, error)) {
    err << "vexo: " << error << '\n';
    return kExitUsage;
  }

  // One item per line, so that the output reads well and greps well.
  rapidjson::StringBuffer buffer;
  Writer action(buffer);
  writeText(action, request.action);
  out << "{\n  \"action\": " << buffer.GetString();
  buffer.Clear();
  Writer when(buffer);
  writeNumber(when, time);
  out << ",\n  \"time\": " << buffer.GetString() << ",\n  \"items\": [";

  const char* separator = "\n    ";
  for (const ItemPlacement& item : items) {
    buffer.Clear();
    Writer writer(buffer);
    writer.StartObject();
    writer.Key("name");
    writeText(writer, item.name);
    writer.Key("id");
    writeText(writer, item.ident);
    writer.Key("type");
    writeText(writer, item.type);
    writer.Key("parent");
    if (item.parentIdent) {
      writeText(writer, *item.parentIdent);
    } else {
      writer.Null();
    }
    writer.Key("world");
    if (item.world) {
      writer.StartArray();
      for (const double value : *item.world) writeNumber(writer, value);
      writer.EndArray();
    } else {
      writer.Null();
    }
    writer.EndObject();
    out << separator << buffer.GetString();
    separator = ",\n    ";
  }
  out << "\n  ]\n}\n";
  return kExitOk;
}

}  // namespace vexo
