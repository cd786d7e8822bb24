// Vexo SDK: attribute lists, command servers, configuration I/O and the
// persisted-entries visitor.
//
// A command server shows its settings as an ordered list of typed
// attributes; the host builds its dialog (or command line) from the list and
// its hints, sets the attributes and executes the command. A configuration
// I/O server describes one record that the host persists under a
// configuration key, field by field, each field bound to an attribute. A
// persist visitor reads entries the host persisted back into attributes.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"

enum VxAttrType : std::int32_t {
  VXATTR_BOOLEAN = 0,  // read and set as an integer, 0 or 1
  VXATTR_INTEGER = 1,
  VXATTR_FLOAT = 2,
  VXATTR_TEXT = 3,
};

// One entry of a pop-up choice table. A table ends with an entry whose value is -1.
struct VxPopChoice {
  std::int32_t value;
  const char* label;
};

#define VX_HINT_POPCHOICE "iPopChoice"

// An ordered list of typed attributes; the index is the position in the list.
class IVxAttributes {
 public:
  virtual unsigned AttrCount() const = 0;
  // Null when out of range.
  virtual const char* AttrName(unsigned index) const = 0;
  // VXR_NOTFOUND when no attribute has that name.
  virtual VxResult AttrLookup(const char* name, unsigned* index) const = 0;
  virtual VxResult AttrType(unsigned index, VxAttrType* type) const = 0;
  // The hint style ("iPopChoice") and its choice table; both null for an attribute without hints.
  virtual const char* AttrHintStyle(unsigned index) const = 0;
  virtual const VxPopChoice* AttrPopChoices(unsigned index) const = 0;

  // Booleans and integers read as integers, every number as a float. VXR_BADARG for another type.
  virtual VxResult GetInt(unsigned index, std::int32_t* value) const = 0;
  virtual VxResult GetFloat(unsigned index, double* value) const = 0;
  virtual VxResult GetText(unsigned index, const char** text) const = 0;
  // VXR_BADARG, leaving the value as it was, for another type, a boolean other
  // than 0 or 1, a pop-up value missing from its choice table, or a float that is not finite.
  virtual VxResult SetInt(unsigned index, std::int32_t value) = 0;
  virtual VxResult SetFloat(unsigned index, double value) = 0;
  virtual VxResult SetText(unsigned index, const char* text) = 0;

 protected:
  ~IVxAttributes() = default;
};

// The command-server interface ("command").
class IVxCommandServer : public IVxAttributes {
 public:
  virtual VxResult Execute() = 0;
  // Why the last execution failed; empty otherwise.
  virtual const char* Message() const = 0;
  virtual void Release() = 0;

 protected:
  ~IVxCommandServer() = default;
};

// Entries the host persisted under one configuration key, in the order it read them.
class IVxPersistEntries {
 public:
  virtual unsigned EntryCount() const = 0;
  virtual const char* EntryName(unsigned index) const = 0;
  // The value in a type: booleans read as integers 0 and 1, integers also as
  // floats. VXR_BADARG when the value does not read as that type.
  virtual VxResult EntryInt(unsigned index, std::int32_t* value) const = 0;
  virtual VxResult EntryFloat(unsigned index, double* value) const = 0;
  virtual VxResult EntryText(unsigned index, const char** text) const = 0;
  // A reader tells the host that an entry's value could not be taken, and why.
  virtual void Reject(unsigned index, const char* reason) = 0;

 protected:
  ~IVxPersistEntries() = default;
};

// Where a record's writers put their values, one named value each.
class IVxPersistSink {
 public:
  virtual VxResult WriteBoolean(const char* name, bool value) = 0;
  virtual VxResult WriteInt(const char* name, std::int32_t value) = 0;
  virtual VxResult WriteFloat(const char* name, double value) = 0;
  virtual VxResult WriteText(const char* name, const char* text) = 0;

 protected:
  ~IVxPersistSink() = default;
};

// The configuration I/O interface ("configIO"): one record persisted under a key.
class IVxConfigIO {
 public:
  virtual const char* ConfigKey() const = 0;
  // The record's fields in their own order, each bound to an attribute index.
  virtual unsigned FieldCount() const = 0;
  virtual const char* FieldName(unsigned field) const = 0;
  virtual VxResult FieldAttr(unsigned field, unsigned* attrIndex) const = 0;
  // The field's writer: the bound attribute of `attrs`, written to `sink` under the field's name.
  virtual VxResult WriteField(unsigned field, const IVxAttributes* attrs, IVxPersistSink* sink) = 0;
  // The field's reader: entry `entry` set into the bound attribute of `attrs`;
  // a value that does not fit is rejected through `entries` and leaves the attribute.
  virtual VxResult ReadField(unsigned field, IVxPersistEntries* entries, unsigned entry, IVxAttributes* attrs) = 0;
  virtual void Release() = 0;

 protected:
  ~IVxConfigIO() = default;
};

// The persist-visitor interface ("persistVisitor").
class IVxPersistVisitor {
 public:
  virtual const char* ConfigKey() const = 0;
  // Walks the entries and sets the attributes they match; entries matching
  // no attribute are skipped. VXR_FALSE when some entry was rejected.
  virtual VxResult Visit(IVxPersistEntries* entries, IVxAttributes* attrs) = 0;
  virtual void Release() = 0;

 protected:
  ~IVxPersistVisitor() = default;
};
