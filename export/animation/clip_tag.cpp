#include "clip_tag.h"

#include "host/command.h"

namespace {

constexpr const char* kCommand = "item.exportTags";
// Room the host may fill with the tag, as the command's text buffer.
constexpr std::size_t kTagCapacity = 500;

}  // namespace

std::string clipNameTag(ExportContext& context, const CVxUser_Item& action) {
  GltfLogMsg& log = context.log;
  if (!action.test()) {
    log.error("    Item supplied is not initialized.");
    return {};
  }
  const CVxCommand command(context.scene, kCommand);
  if (!command.test()) {
    log.error("    Failed to create command %s.", kCommand);
    return {};
  }
  std::string buffer;
  buffer.reserve(kTagCapacity);
  const bool set = command.setItem(command.argIndex("item"), action) &&
                   command.setText(command.argIndex("itemType"), "actionclip") &&
                   command.setInteger(command.argIndex("tagType"), 0) &&
                   command.setText(command.argIndex("tag"), buffer);
  if (!set) {
    log.error("    Unable to set command argument for %s.", kCommand);
    return {};
  }

  const VxResult result = command.execute();
  if (VxFailed(result)) {
    log.info("    Command failed - %s", command.message().c_str());
    return {};
  }
  std::string tag;
  // A success that is not plain VXR_OK, or a tag left without a value, says nothing of the outcome.
  if (result != VXR_OK || !command.argText(command.argIndex("tag"), tag)) {
    log.warning("    Result of command execution unknown");
    return {};
  }
  log.info("    Success - FB prefix and suffix added to action clip names.");
  return tag;
}
