// Wrappers over host items, item types and channel readers.
#pragma once

#include <cstdint>
#include <string>

#include "vexo/vx_scene.h"

// Item types by name, and type tests that follow derivation.
class CVxItemTypes {
 public:
  // The host's code for a type name, or VX_TYPE_ANY when the host has none.
  static VxTypeCode lookup(const char* name);
  static std::string name(VxTypeCode type);
  // True when `type` is `base` or derives from it.
  static bool test(VxTypeCode type, VxTypeCode base);
};

class CVxUser_Item {
 public:
  CVxUser_Item() = default;
  explicit CVxUser_Item(IVxItem* item) : item_(item) {}

  bool test() const { return item_ != nullptr; }
  IVxItem* raw() const { return item_; }
  // The item's identity within this scene, for keying maps; null for no item.
  const void* key() const { return item_; }
  bool operator==(const CVxUser_Item& other) const { return item_ == other.item_; }
  bool operator!=(const CVxUser_Item& other) const { return item_ != other.item_; }

  VxTypeCode type() const { return item_ ? item_->Type() : VX_TYPE_ANY; }
  bool isA(VxTypeCode base) const;
  std::string name() const { return item_ ? item_->Name() : std::string(); }
  std::string ident() const { return item_ ? item_->Ident() : std::string(); }
  std::string typeName() const { return CVxItemTypes::name(type()); }

  CVxUser_Item parent() const { return CVxUser_Item(item_ ? item_->Parent() : nullptr); }
  unsigned childCount() const { return item_ ? item_->ChildCount() : 0; }
  CVxUser_Item child(unsigned index) const { return CVxUser_Item(item_ ? item_->ChildByIndex(index) : nullptr); }

  // The channel's index, or -1 when the item has no channel of that name.
  int channelIndex(const char* name) const;
  unsigned channelCount() const { return item_ ? item_->ChannelCount() : 0; }
  std::string channelName(unsigned index) const;

 private:
  IVxItem* item_ = nullptr;
};

// A channel reader bound to an action and a time; releases the host reader.
class CVxChannelRead {
 public:
  CVxChannelRead() = default;
  CVxChannelRead(IVxScene* scene, const char* action, double time);
  ~CVxChannelRead();
  CVxChannelRead(const CVxChannelRead&) = delete;
  CVxChannelRead& operator=(const CVxChannelRead&) = delete;
  CVxChannelRead(CVxChannelRead&& other) noexcept;
  CVxChannelRead& operator=(CVxChannelRead&& other) noexcept;

  bool test() const { return read_ != nullptr; }
  IVxChannelRead* raw() const { return read_; }
  // Each read returns false and leaves `value` as it was when it fails.
  bool integer(const CVxUser_Item& item, int channel, std::int32_t& value) const;
  bool real(const CVxUser_Item& item, int channel, double& value) const;
  bool text(const CVxUser_Item& item, int channel, std::string& value) const;
  bool matrix(const CVxUser_Item& item, int channel, double value[16]) const;

 private:
  IVxChannelRead* read_ = nullptr;
};
