// Wrappers over actors, their actions, the "currentGroups" list and IK chains.
#pragma once

#include "item.h"
#include "scene.h"
#include "vexo/vx_anim.h"

class CVxActor {
 public:
  // Empty (test() false) when the item is no actor or the host has no animation view.
  CVxActor(const CVxUser_Scene& scene, const CVxUser_Item& item);

  bool test() const { return actor_ != nullptr; }
  CVxUser_Item item() const { return CVxUser_Item(actor_ ? actor_->Item() : nullptr); }

  unsigned itemCount() const { return actor_ ? actor_->ItemCount() : 0; }
  CVxUser_Item itemAt(unsigned index) const { return CVxUser_Item(actor_ ? actor_->ItemByIndex(index) : nullptr); }

  unsigned channelCount() const { return actor_ ? actor_->ChannelCount() : 0; }
  // False, leaving the outputs as they were, when the index is out of range.
  bool channelAt(unsigned index, CVxUser_Item& item, unsigned& channel) const;

  unsigned actionCount() const { return actor_ ? actor_->ActionCount() : 0; }
  CVxUser_Item actionAt(unsigned index) const {
    return CVxUser_Item(actor_ ? actor_->ActionByIndex(index) : nullptr);
  }
  bool isActive(const CVxUser_Item& action) const;
  bool setActive(const CVxUser_Item& action, bool active) const;
  // The index of the first active action, or -1 when none is.
  int activeIndex() const;

 private:
  IVxActor* actor_ = nullptr;
};

// The scene item's "currentGroups" list.
class CVxCurrentGroups {
 public:
  explicit CVxCurrentGroups(const CVxUser_Scene& scene);
  unsigned count() const { return service_ ? service_->CurrentGroupCount() : 0; }
  CVxUser_Item item(unsigned index) const {
    return CVxUser_Item(service_ ? service_->CurrentGroupByIndex(index) : nullptr);
  }

 private:
  IVxAnimService* service_ = nullptr;
};

// The joints of an "ikFullBody" item's chain, root first.
class CVxIKChain {
 public:
  CVxIKChain(const CVxUser_Scene& scene, const CVxUser_Item& solver);
  unsigned count() const { return service_ && solver_ ? service_->IKJointCount(solver_) : 0; }
  CVxUser_Item joint(unsigned index) const {
    return CVxUser_Item(service_ && solver_ ? service_->IKJointByIndex(solver_, index) : nullptr);
  }
  CVxUser_Item root() const { return joint(0); }

 private:
  IVxAnimService* service_ = nullptr;
  IVxItem* solver_ = nullptr;
};
