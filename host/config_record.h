// A record persisted in the host configuration: fields in the record's own
// order, each bound to an attribute index, with its reader and writer.
#pragma once

#include <string>

#include "attributes.h"

// Writes attribute `attr` of `attrs` to `sink` under `name`.
using CVxFieldWriter = VxResult (*)(const IVxAttributes& attrs, unsigned attr, const char* name,
                                    IVxPersistSink& sink);
// Sets attribute `attr` of `attrs` from entry `entry`; rejects the entry when its value does not fit.
using CVxFieldReader = VxResult (*)(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs,
                                    unsigned attr);

struct CVxRecordField {
  unsigned attr;  // the attribute the field is bound to; the field takes its name
  CVxFieldReader read;
  CVxFieldWriter write;
};

// Readers and writers for each attribute type.
VxResult cvxReadBoolean(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr);
VxResult cvxReadInteger(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr);
VxResult cvxReadFloat(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr);
VxResult cvxWriteBoolean(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink);
VxResult cvxWriteInteger(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink);
VxResult cvxWriteFloat(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink);

// A record over an attribute table: fields in record order.
class CVxRecord {
 public:
  CVxRecord(const CVxAttrDesc* attrs, unsigned attrCount, const CVxRecordField* fields, unsigned fieldCount)
      : attrs_(attrs), attrCount_(attrCount), fields_(fields), fieldCount_(fieldCount) {}

  unsigned fieldCount() const { return fieldCount_; }
  const CVxRecordField* field(unsigned index) const { return index < fieldCount_ ? &fields_[index] : nullptr; }
  // The field's name, its attribute's; null when out of range.
  const char* fieldName(unsigned index) const;
  // The field bound to an attribute (the other direction), or -1.
  int fieldOfAttr(unsigned attr) const;
  // The field of that name, or -1.
  int fieldNamed(const char* name) const;

 private:
  const CVxAttrDesc* attrs_;
  unsigned attrCount_;
  const CVxRecordField* fields_;
  unsigned fieldCount_;
};

// The configuration I/O server of one record under one key.
class CVxConfigIO : public IVxConfigIO {
 public:
  CVxConfigIO(const char* key, const CVxRecord& record) : key_(key), record_(record) {}
  virtual ~CVxConfigIO() = default;

  const char* ConfigKey() const override { return key_; }
  unsigned FieldCount() const override { return record_.fieldCount(); }
  const char* FieldName(unsigned field) const override { return record_.fieldName(field); }
  VxResult FieldAttr(unsigned field, unsigned* attrIndex) const override;
  VxResult WriteField(unsigned field, const IVxAttributes* attrs, IVxPersistSink* sink) override;
  VxResult ReadField(unsigned field, IVxPersistEntries* entries, unsigned entry, IVxAttributes* attrs) override;
  void Release() override { delete this; }

 private:
  const char* key_;
  const CVxRecord& record_;
};

// The persist visitor of one record: each entry goes through the reader of the field of its name.
class CVxPersistVisitor : public IVxPersistVisitor {
 public:
  CVxPersistVisitor(const char* key, const CVxRecord& record) : key_(key), record_(record) {}
  virtual ~CVxPersistVisitor() = default;

  const char* ConfigKey() const override { return key_; }
  VxResult Visit(IVxPersistEntries* entries, IVxAttributes* attrs) override;
  void Release() override { delete this; }

 private:
  const char* key_;
  const CVxRecord& record_;
};
