// Vexo SDK: scenes, items, item types and channels.
//
// Items and the scene are owned by the host and stay valid while the scene
// is loaded. Channel values depend on an action ("setup", "edit", or an
// action clip's name) and a time in seconds, so they are read through an
// IVxChannelRead bound to both.
//
// Matrices are 16 doubles in row-major order with row vectors: a point p
// transforms as p * M and the translation lies in elements 12, 13 and 14.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"

class IVxScene;
class IVxLocatorService;
class IVxMeshService;
class IVxShaderService;
class IVxDeformService;
class IVxAnimService;
class IVxCommandService;

using VxTypeCode = std::int32_t;
constexpr VxTypeCode VX_TYPE_ANY = -1;  // "every item" in scene queries

// The value type a channel stores.
enum VxChannelType : std::int32_t {
  VX_CHAN_INTEGER = 1,
  VX_CHAN_FLOAT = 2,
  VX_CHAN_TEXT = 3,
  VX_CHAN_MATRIX = 4,
};

// Item types by name, with derivation ("mesh" derives from "locator").
class IVxSceneService {
 public:
  // VXR_NOTFOUND when the host has no type of that name.
  virtual VxResult LookupType(const char* name, VxTypeCode* type) = 0;
  virtual VxResult TypeName(VxTypeCode type, const char** name) = 0;
  // VXR_OK when `type` is `base` or derives from it, VXR_FALSE when not.
  virtual VxResult TestType(VxTypeCode type, VxTypeCode base) = 0;

 protected:
  ~IVxSceneService() = default;
};

class IVxItem {
 public:
  virtual VxTypeCode Type() const = 0;
  virtual const char* Name() const = 0;
  // Unique within the scene and stable while it is loaded.
  virtual const char* Ident() const = 0;
  virtual IVxScene* Scene() = 0;

  virtual IVxItem* Parent() = 0;  // null for a parentless item
  virtual unsigned ChildCount() = 0;
  virtual IVxItem* ChildByIndex(unsigned index) = 0;  // null when out of range

  virtual unsigned ChannelCount() = 0;
  virtual VxResult ChannelLookup(const char* name, unsigned* index) = 0;  // VXR_NOTFOUND
  virtual VxResult ChannelName(unsigned index, const char** name) = 0;
  virtual VxResult ChannelType(unsigned index, VxChannelType* type) = 0;

 protected:
  ~IVxItem() = default;
};

// Reads channel values as they evaluate in one action at one time.
// A read converts between integer and float; text and matrix channels only
// read as themselves. A failed read leaves the output untouched.
class IVxChannelRead {
 public:
  virtual double Time() const = 0;
  virtual const char* Action() const = 0;
  virtual VxResult Integer(IVxItem* item, unsigned channel, std::int32_t* value) = 0;
  virtual VxResult Double(IVxItem* item, unsigned channel, double* value) = 0;
  virtual VxResult Text(IVxItem* item, unsigned channel, const char** value) = 0;
  virtual VxResult Matrix(IVxItem* item, unsigned channel, double matrix[16]) = 0;
  virtual void Release() = 0;

 protected:
  ~IVxChannelRead() = default;
};

class IVxScene {
 public:
  // Items whose type tests as `type` (VX_TYPE_ANY: every item), in scene order.
  virtual unsigned ItemCount(VxTypeCode type) = 0;
  virtual IVxItem* ItemByIndex(VxTypeCode type, unsigned index) = 0;
  virtual IVxItem* ItemByIdent(const char* ident) = 0;
  // The scene's own item, of type "scene".
  virtual IVxItem* SceneItem() = 0;

  // The selection of one selection type ("item"), in selection order.
  virtual unsigned SelectionCount(const char* selectionType) = 0;
  virtual IVxItem* SelectionByIndex(const char* selectionType, unsigned index) = 0;

  // A reader bound to an action and a time; the caller releases it.
  virtual VxResult ChannelRead(const char* action, double time, IVxChannelRead** read) = 0;
  // The scene's current evaluation time in seconds. A reader keeps the time
  // it was made for: after SetTime, read through a new one made at Time().
  virtual double Time() const = 0;
  virtual VxResult SetTime(double time) = 0;

  // Further views of the scene (vx_locator.h, vx_mesh.h, vx_shade.h); null when the host has none.
  virtual IVxLocatorService* LocatorService() { return nullptr; }
  virtual IVxMeshService* MeshService() { return nullptr; }
  virtual IVxShaderService* ShaderService() { return nullptr; }
  virtual IVxDeformService* DeformService() { return nullptr; }  // vx_deform.h
  virtual IVxAnimService* AnimService() { return nullptr; }        // vx_anim.h
  virtual IVxCommandService* CommandService() { return nullptr; }  // vx_command.h

 protected:
  ~IVxScene() = default;
};
