#include "config_record.h"

#include <cstring>

namespace {

VxResult reject(IVxPersistEntries& entries, unsigned entry, const char* reason) {
  entries.Reject(entry, reason);
  return VXR_BADARG;
}

}  // namespace

VxResult cvxReadBoolean(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr) {
  std::int32_t value = 0;
  if (VxFailed(entries.EntryInt(entry, &value)) || VxFailed(attrs.SetInt(attr, value)))
    return reject(entries, entry, "takes true or false");
  return VXR_OK;
}

VxResult cvxReadInteger(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr) {
  std::int32_t value = 0;
  if (VxFailed(entries.EntryInt(entry, &value))) return reject(entries, entry, "takes a whole number");
  if (VxFailed(attrs.SetInt(attr, value)))
    return reject(entries, entry, attrs.AttrPopChoices(attr) ? "takes one of its choices" : "is out of range");
  return VXR_OK;
}

VxResult cvxReadFloat(IVxPersistEntries& entries, unsigned entry, IVxAttributes& attrs, unsigned attr) {
  double value = 0.0;
  if (VxFailed(entries.EntryFloat(entry, &value)) || VxFailed(attrs.SetFloat(attr, value)))
    return reject(entries, entry, "takes a number");
  return VXR_OK;
}

VxResult cvxWriteBoolean(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink) {
  std::int32_t value = 0;
  const VxResult result = attrs.GetInt(attr, &value);
  return VxFailed(result) ? result : sink.WriteBoolean(name, value != 0);
}

VxResult cvxWriteInteger(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink) {
  std::int32_t value = 0;
  const VxResult result = attrs.GetInt(attr, &value);
  return VxFailed(result) ? result : sink.WriteInt(name, value);
}

VxResult cvxWriteFloat(const IVxAttributes& attrs, unsigned attr, const char* name, IVxPersistSink& sink) {
  double value = 0.0;
  const VxResult result = attrs.GetFloat(attr, &value);
  return VxFailed(result) ? result : sink.WriteFloat(name, value);
}

const char* CVxRecord::fieldName(unsigned index) const {
  if (index >= fieldCount_ || fields_[index].attr >= attrCount_) return nullptr;
  return attrs_[fields_[index].attr].name;
}

int CVxRecord::fieldOfAttr(unsigned attr) const {
  for (unsigned i = 0; i < fieldCount_; ++i)
    if (fields_[i].attr == attr) return static_cast<int>(i);
  return -1;
}

int CVxRecord::fieldNamed(const char* name) const {
  if (!name) return -1;
  for (unsigned i = 0; i < fieldCount_; ++i)
    if (const char* own = fieldName(i); own && std::strcmp(own, name) == 0) return static_cast<int>(i);
  return -1;
}

VxResult CVxConfigIO::FieldAttr(unsigned field, unsigned* attrIndex) const {
  const CVxRecordField* found = record_.field(field);
  if (!found) return VXR_OUTOFBOUNDS;
  if (!attrIndex) return VXR_BADARG;
  *attrIndex = found->attr;
  return VXR_OK;
}

VxResult CVxConfigIO::WriteField(unsigned field, const IVxAttributes* attrs, IVxPersistSink* sink) {
  const CVxRecordField* found = record_.field(field);
  if (!found) return VXR_OUTOFBOUNDS;
  if (!attrs || !sink) return VXR_BADARG;
  return found->write(*attrs, found->attr, record_.fieldName(field), *sink);
}

VxResult CVxConfigIO::ReadField(unsigned field, IVxPersistEntries* entries, unsigned entry, IVxAttributes* attrs) {
  const CVxRecordField* found = record_.field(field);
  if (!found) return VXR_OUTOFBOUNDS;
  if (!entries || !attrs || entry >= entries->EntryCount()) return VXR_BADARG;
  return found->read(*entries, entry, *attrs, found->attr);
}

VxResult CVxPersistVisitor::Visit(IVxPersistEntries* entries, IVxAttributes* attrs) {
  if (!entries || !attrs) return VXR_BADARG;
  VxResult result = VXR_OK;
  for (unsigned entry = 0; entry < entries->EntryCount(); ++entry) {
    const int field = record_.fieldNamed(entries->EntryName(entry));
    if (field < 0) continue;
    const CVxRecordField& bound = *record_.field(static_cast<unsigned>(field));
    if (VxFailed(bound.read(*entries, entry, *attrs, bound.attr))) result = VXR_FALSE;
  }
  return result;
}
