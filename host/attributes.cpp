#include "attributes.h"

#include <cmath>
#include <cstring>
#include <new>

bool cvxIsChoice(const VxPopChoice* choices, std::int32_t value) {
  if (!choices) return false;
  for (; choices->value != -1; ++choices)
    if (choices->value == value) return true;
  return false;
}

CVxAttrValues::CVxAttrValues(const CVxAttrDesc* descs, unsigned count)
    : descs_(descs), count_(descs ? count : 0), values_(count_) {
  // A pop-up starts on its first choice, so that it always holds one of them.
  for (unsigned i = 0; i < count_; ++i)
    if (descs_[i].choices && descs_[i].choices->value != -1) values_[i].integer = descs_[i].choices->value;
}

int CVxAttrValues::lookup(const char* name) const {
  if (!name) return -1;
  for (unsigned i = 0; i < count_; ++i)
    if (std::strcmp(descs_[i].name, name) == 0) return static_cast<int>(i);
  return -1;
}

VxResult CVxAttrValues::getInt(unsigned index, std::int32_t* value) const {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  if (!value || (descs_[index].type != VXATTR_BOOLEAN && descs_[index].type != VXATTR_INTEGER)) return VXR_BADARG;
  *value = values_[index].integer;
  return VXR_OK;
}

VxResult CVxAttrValues::getFloat(unsigned index, double* value) const {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  if (!value || descs_[index].type == VXATTR_TEXT) return VXR_BADARG;
  *value = descs_[index].type == VXATTR_FLOAT ? values_[index].number : values_[index].integer;
  return VXR_OK;
}

VxResult CVxAttrValues::getText(unsigned index, const char** text) const {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  if (!text || descs_[index].type != VXATTR_TEXT) return VXR_BADARG;
  *text = values_[index].text.c_str();
  return VXR_OK;
}

VxResult CVxAttrValues::setInt(unsigned index, std::int32_t value) {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  const CVxAttrDesc& desc = descs_[index];
  if (desc.type == VXATTR_FLOAT) return setFloat(index, value);
  if (desc.type == VXATTR_BOOLEAN && value != 0 && value != 1) return VXR_BADARG;
  if (desc.type == VXATTR_INTEGER && desc.choices && !cvxIsChoice(desc.choices, value)) return VXR_BADARG;
  if (desc.type == VXATTR_TEXT) return VXR_BADARG;
  values_[index].integer = value;
  return VXR_OK;
}

VxResult CVxAttrValues::setFloat(unsigned index, double value) {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  if (descs_[index].type != VXATTR_FLOAT || !std::isfinite(value)) return VXR_BADARG;
  values_[index].number = value;
  return VXR_OK;
}

// The text is copied: out of memory fails the call rather than throwing into the host.
VxResult CVxAttrValues::setText(unsigned index, const char* text) {
  if (index >= count_) return VXR_OUTOFBOUNDS;
  if (!text || descs_[index].type != VXATTR_TEXT) return VXR_BADARG;
  try {
    values_[index].text = text;
  } catch (const std::bad_alloc&) {
    return VXR_FAILED;
  }
  return VXR_OK;
}
