// Vexo SDK: locators, their transform stacks, and channel links.
//
// A locator's local matrix is the product of its transform items' matrices
// in stack order, index 0 first: with row vectors a point p moves as
// p * T0 * T1 * ... * Tn-1. Its world matrix is local * parent world.
// Each transform item ("translation", "rotation", "scale", "transform",
// "shear") is an item of its own with channels ("pos.X", "rot.Y", ...).
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

// The three main transforms every locator has.
enum VxMainTransform : std::int32_t {
  VX_XFRM_POSITION = 0,
  VX_XFRM_ROTATION = 1,
  VX_XFRM_SCALE = 2,
};

// The locator view of an item, obtained with IVxScene::LocatorLookup.
class IVxLocator {
 public:
  virtual IVxItem* Item() = 0;
  // Matrices as the channels evaluate through `read` (its action and time).
  virtual VxResult WorldMatrix(IVxChannelRead* read, double matrix[16]) = 0;
  virtual VxResult LocalMatrix(IVxChannelRead* read, double matrix[16]) = 0;
  // The world matrix of the item's nearest locator ancestor (items that are
  // not locators are skipped); the identity when it has none. A link into the
  // item's "parentMatrix" channel moves its world matrix, not this one.
  virtual VxResult ParentWorldMatrix(IVxChannelRead* read, double matrix[16]) = 0;

  // The transform stack, in evaluation order.
  virtual unsigned TransformCount() = 0;
  virtual IVxItem* TransformByIndex(unsigned index) = 0;
  // The main position, rotation or scale item, or null.
  virtual IVxItem* MainTransform(VxMainTransform which) = 0;

 protected:
  ~IVxLocator() = default;
};

// The "chanLinks" view: which channels are driven by links from other channels.
class IVxChannelLinks {
 public:
  // The number of links that drive the channel.
  virtual unsigned IncomingCount(IVxItem* item, unsigned channel) = 0;
  // The item and channel of the link at `index` that drives the channel.
  virtual VxResult IncomingByIndex(IVxItem* item, unsigned channel, unsigned index, IVxItem** from,
                                   unsigned* fromChannel) = 0;

 protected:
  ~IVxChannelLinks() = default;
};

// Scene-level access to these views.
class IVxLocatorService {
 public:
  // VXR_NOTFOUND when the item is not a locator. The view lives as long as the item.
  virtual VxResult LocatorLookup(IVxItem* item, IVxLocator** locator) = 0;
  virtual IVxChannelLinks* ChannelLinks() = 0;
  // The ordered item list that a host hands to "export a list of items".
  virtual unsigned ItemListCount() = 0;
  virtual IVxItem* ItemListByIndex(unsigned index) = 0;

 protected:
  ~IVxLocatorService() = default;
};
