#include "command/load_options_session.h"

#include <charconv>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "sdk_impl/sdk_persist.h"

namespace vexo {
namespace {

bool listsInterface(IVxFactory& factory, std::string_view name) {
  for (unsigned i = 0; i < factory.InterfaceCount(); ++i)
    if (const char* listed = factory.InterfaceName(i); listed && listed == name) return true;
  return false;
}

template <typename T>
struct Releaser {
  void operator()(T* server) const { server->Release(); }
};
template <typename T>
using Owned = std::unique_ptr<T, Releaser<T>>;

// The first server of the interface whose instances persist under `key`.
template <typename T, typename Spawn>
Owned<T> spawnFor(const SdkHost& host, const char* interfaceName, std::string_view key, Spawn spawn) {
  for (const std::string& name : host.serverNames()) {
    IVxFactory* factory = host.findServer(name);
    if (!factory || !listsInterface(*factory, interfaceName)) continue;
    Owned<T> server(spawn(*factory));
    if (server && server->ConfigKey() && server->ConfigKey() == key) return server;
  }
  return nullptr;
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string formatNumber(double value) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

// The whole text as a number; false for anything else, including what is not finite.
bool parseNumber(const std::string& text, double& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return end == text.c_str() + text.size() && std::isfinite(value) && !std::isspace(static_cast<unsigned char>(text[0]));
}

std::string choiceList(const VxPopChoice* choices) {
  std::string list;
  for (; choices->value != -1; ++choices)
    list += (list.empty() ? "" : ", ") + std::to_string(choices->value) + " " + quoted(choices->label);
  return list;
}

// The value a pop-up's text names: a choice's value or its label.
bool findChoice(const VxPopChoice* choices, const std::string& text, std::int32_t& value) {
  double number = 0;
  const bool isNumber = parseNumber(text, number);
  for (; choices->value != -1; ++choices) {
    if ((isNumber && number == choices->value) || text == choices->label) return value = choices->value, true;
  }
  return false;
}

}  // namespace

LoadOptionsSession::~LoadOptionsSession() {
  if (command_) command_->Release();
}

bool LoadOptionsSession::open(SdkHost& host, const Configuration& config, std::string& error) {
  host_ = &host;
  IVxFactory* factory = host.findServer(kLoadOptionsCommand);
  if (!factory || !listsInterface(*factory, VX_INTERFACE_COMMAND))
    return error = std::string("the plug-in has no command \"") + kLoadOptionsCommand + "\"", false;
  command_ = factory->SpawnCommand();
  if (!command_) return error = std::string("the command \"") + kLoadOptionsCommand + "\" could not be created", false;

  // The host's defaults first: the module leaves them to the loader.
  const GltfLoadOptions defaults;
  for (unsigned i = 0; i < command_->AttrCount(); ++i) {
    double value = 0;
    VxAttrType type = VXATTR_TEXT;
    if (!gltfLoadOptionValue(defaults, command_->AttrName(i), value) || VxFailed(command_->AttrType(i, &type)))
      continue;
    const VxResult set = type == VXATTR_FLOAT ? command_->SetFloat(i, value)
                                              : command_->SetInt(i, static_cast<std::int32_t>(value));
    if (VxFailed(set))
      return error = std::string("the plug-in refuses the default of ") + command_->AttrName(i), false;
  }

  const ConfigSection* persisted = config.find(kGltfLoaderOptionsKey);
  if (!persisted) return true;
  Owned<IVxPersistVisitor> visitor = spawnFor<IVxPersistVisitor>(
      host, VX_INTERFACE_PERSISTVISITOR, kGltfLoaderOptionsKey,
      [](IVxFactory& f) { return f.SpawnPersistVisitor(); });
  if (!visitor)
    return error = std::string("the plug-in has no visitor for \"") + kGltfLoaderOptionsKey + "\"", false;
  SdkPersistEntries entries(persisted->entries);
  visitor->Visit(&entries, command_);
  if (!entries.rejected().empty()) {
    const auto& [index, reason] = entries.rejected().front();
    const ConfigEntry& entry = persisted->entries[index];
    error = config.fileName() + ":" + std::to_string(entry.pos.line) + ":" + std::to_string(entry.pos.column) +
            ": " + kGltfLoaderOptionsKey + "." + entry.name + " " + reason;
    return false;
  }
  GltfLoadOptions options;
  std::string problem;
  if (!check(options, problem)) return error = config.fileName() + ": " + kGltfLoaderOptionsKey + ": " + problem, false;
  return true;
}

bool LoadOptionsSession::setFromText(const std::string& name, const std::string& text, std::string& error) {
  unsigned index = 0;
  VxAttrType type = VXATTR_TEXT;
  if (VxFailed(command_->AttrLookup(name.c_str(), &index)) || VxFailed(command_->AttrType(index, &type)))
    return error = "no load option is called " + quoted(name) + " (see vexo load-options)", false;
  const VxPopChoice* choices = command_->AttrPopChoices(index);
  const std::string what = name + " takes ";
  VxResult result = VXR_OK;
  double number = 0;
  if (type == VXATTR_BOOLEAN) {
    const bool yes = text == "true" || text == "1";
    if (!yes && text != "false" && text != "0") return error = what + "true or false, not " + quoted(text), false;
    result = command_->SetInt(index, yes ? 1 : 0);
  } else if (type == VXATTR_INTEGER && choices) {
    std::int32_t value = 0;
    if (!findChoice(choices, text, value))
      return error = what + "one of " + choiceList(choices) + ", not " + quoted(text), false;
    result = command_->SetInt(index, value);
  } else if (type == VXATTR_INTEGER) {
    if (!parseNumber(text, number) || number != std::floor(number) || std::abs(number) > 2147483647.0)
      return error = what + "a whole number, not " + quoted(text), false;
    result = command_->SetInt(index, static_cast<std::int32_t>(number));
  } else if (type == VXATTR_FLOAT) {
    if (!parseNumber(text, number)) return error = what + "a number, not " + quoted(text), false;
    result = command_->SetFloat(index, number);
  } else {
    result = command_->SetText(index, text.c_str());
  }
  if (VxFailed(result)) return error = "the plug-in refuses " + name + "=" + text, false;
  return true;
}

bool LoadOptionsSession::check(GltfLoadOptions& options, std::string& error) const {
  return toGltfLoadOptions(*command_, options, error);
}

bool LoadOptionsSession::apply(std::string& error) {
  if (VxOk(command_->Execute())) return true;
  const char* message = command_->Message();
  error = std::string("the command \"") + kLoadOptionsCommand + "\" failed" +
          (message && *message ? std::string(": ") + message : std::string());
  return false;
}

bool LoadOptionsSession::store(Configuration& config, std::string& error) {
  Owned<IVxConfigIO> io = spawnFor<IVxConfigIO>(*host_, VX_INTERFACE_CONFIGIO, kGltfLoaderOptionsKey,
                                                [](IVxFactory& f) { return f.SpawnConfigIO(); });
  if (!io) return error = std::string("the plug-in has no configuration I/O for \"") + kGltfLoaderOptionsKey + "\"", false;
  SdkPersistSink sink;
  for (unsigned field = 0; field < io->FieldCount(); ++field) {
    if (VxFailed(io->WriteField(field, command_, &sink))) {
      const char* name = io->FieldName(field);
      return error = std::string("the plug-in could not write the field ") + (name ? name : "?"), false;
    }
  }
  config.replace(kGltfLoaderOptionsKey, std::move(sink.entries()));
  return true;
}

std::string attributeValueText(const IVxAttributes& attrs, unsigned index) {
  VxAttrType type = VXATTR_TEXT;
  if (VxFailed(attrs.AttrType(index, &type))) return "";
  std::int32_t integer = 0;
  double number = 0;
  const char* text = nullptr;
  switch (type) {
    case VXATTR_BOOLEAN:
      return VxOk(attrs.GetInt(index, &integer)) && integer ? "true" : "false";
    case VXATTR_INTEGER: {
      if (VxFailed(attrs.GetInt(index, &integer))) return "";
      std::string out = std::to_string(integer);
      for (const VxPopChoice* choice = attrs.AttrPopChoices(index); choice && choice->value != -1; ++choice)
        if (choice->value == integer) out += " (" + std::string(choice->label) + ")";
      return out;
    }
    case VXATTR_FLOAT:
      return VxOk(attrs.GetFloat(index, &number)) ? formatNumber(number) : "";
    case VXATTR_TEXT:
      return VxOk(attrs.GetText(index, &text)) && text ? quoted(text) : "\"\"";
  }
  return "";
}

bool toGltfLoadOptions(const IVxAttributes& attrs, GltfLoadOptions& options, std::string& error) {
  GltfLoadOptions result;
  for (unsigned i = 0; i < attrs.AttrCount(); ++i) {
    const char* name = attrs.AttrName(i);
    double value = 0;
    if (!name || !gltfLoadOptionValue(result, name, value)) continue;
    if (VxFailed(attrs.GetFloat(i, &value))) return error = std::string(name) + " cannot be read", false;
    if (!setGltfLoadOption(result, name, value, error)) return false;
  }
  options = result;
  return true;
}

}  // namespace vexo
