#include "sdk_impl/sdk_command.h"

#include "engine/item.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {

VxResult SdkCommand::ArgLookup(const char* name, unsigned* index) {
  if (!name || !index) return VXR_BADARG;
  const int found = command_.argIndex(name);
  if (found < 0) return VXR_NOTFOUND;
  *index = static_cast<unsigned>(found);
  return VXR_OK;
}

CommandArg* SdkCommand::arg(unsigned index, ArgKind kind) {
  auto& args = command_.args();
  if (index >= args.size() || args[index].kind != kind) return nullptr;
  return &args[index];
}

VxResult SdkCommand::SetArgItem(unsigned index, IVxItem* item) {
  CommandArg* a = arg(index, ArgKind::Item);
  Item* engineItem = scene_.unwrap(item);
  if (!a || !engineItem) return index < ArgCount() ? VXR_BADARG : VXR_OUTOFBOUNDS;
  a->item = engineItem;
  a->set = true;
  return VXR_OK;
}

VxResult SdkCommand::SetArgText(unsigned index, const char* text) {
  CommandArg* a = arg(index, ArgKind::Text);
  if (!a || !text) return index < ArgCount() ? VXR_BADARG : VXR_OUTOFBOUNDS;
  a->text = text;
  a->set = true;
  return VXR_OK;
}

VxResult SdkCommand::SetArgInteger(unsigned index, std::int32_t value) {
  CommandArg* a = arg(index, ArgKind::Integer);
  if (!a) return index < ArgCount() ? VXR_BADARG : VXR_OUTOFBOUNDS;
  a->integer = value;
  a->set = true;
  return VXR_OK;
}

VxResult SdkCommand::ArgText(unsigned index, const char** text) {
  if (!text) return VXR_BADARG;
  auto& args = command_.args();
  if (index >= args.size()) return VXR_OUTOFBOUNDS;
  const CommandArg& a = args[index];
  text_.clear();
  if (a.set) {
    switch (a.kind) {
      case ArgKind::Item:
        text_ = a.item ? a.item->ident() : std::string();
        break;
      case ArgKind::Text:
        text_ = a.text;
        break;
      case ArgKind::Integer:
        text_ = std::to_string(a.integer);
        break;
    }
  }
  *text = text_.c_str();
  return a.set ? VXR_OK : VXR_FALSE;
}

VxResult SdkCommand::Execute() { return command_.run(scene_.scene()) ? VXR_OK : VXR_FAILED; }

VxResult SdkCommandService::CreateCommand(const char* name, IVxCommand** command) {
  if (!name || !command) return VXR_BADARG;
  const CommandDef* def = findCommand(name);
  if (!def) return VXR_NOTFOUND;
  *command = new SdkCommand(scene_, *def);
  return VXR_OK;
}

}  // namespace vexo
