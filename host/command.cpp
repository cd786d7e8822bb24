#include "command.h"

CVxCommand::CVxCommand(const CVxUser_Scene& scene, const char* name) {
  IVxCommandService* service = scene.test() ? scene.raw()->CommandService() : nullptr;
  if (!service || !name || VxFailed(service->CreateCommand(name, &command_))) command_ = nullptr;
}

CVxCommand::~CVxCommand() {
  if (command_) command_->Release();
}

int CVxCommand::argIndex(const char* name) const {
  unsigned index = 0;
  if (!command_ || !name || VxFailed(command_->ArgLookup(name, &index))) return -1;
  return static_cast<int>(index);
}

bool CVxCommand::setItem(int arg, const CVxUser_Item& item) const {
  return command_ && arg >= 0 && VxOk(command_->SetArgItem(static_cast<unsigned>(arg), item.raw()));
}

bool CVxCommand::setText(int arg, const std::string& text) const {
  return command_ && arg >= 0 && VxOk(command_->SetArgText(static_cast<unsigned>(arg), text.c_str()));
}

bool CVxCommand::setInteger(int arg, std::int32_t value) const {
  return command_ && arg >= 0 && VxOk(command_->SetArgInteger(static_cast<unsigned>(arg), value));
}

bool CVxCommand::argText(int arg, std::string& text) const {
  const char* value = nullptr;
  if (!command_ || arg < 0 || command_->ArgText(static_cast<unsigned>(arg), &value) != VXR_OK || !value) return false;
  text = value;
  return true;
}

std::string CVxCommand::message() const {
  const char* text = command_ ? command_->Message() : nullptr;
  return text ? text : std::string();
}
