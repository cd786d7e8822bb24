// Attribute lists over a fixed table of descriptions: the option sets and
// command servers a module offers the host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vexo/vx_attributes.h"

// One attribute: its name, its type and, for a pop-up, its choice table
// (ending with value -1); `choices` null for an attribute without hints.
struct CVxAttrDesc {
  const char* name;
  VxAttrType type;
  const VxPopChoice* choices;
};

// The values of a list of attributes, checked against their descriptions.
// The table must outlive the values.
class CVxAttrValues {
 public:
  CVxAttrValues(const CVxAttrDesc* descs, unsigned count);

  unsigned count() const { return count_; }
  const CVxAttrDesc* desc(unsigned index) const { return index < count_ ? &descs_[index] : nullptr; }
  // The attribute's index, or -1.
  int lookup(const char* name) const;

  VxResult getInt(unsigned index, std::int32_t* value) const;
  VxResult getFloat(unsigned index, double* value) const;
  VxResult getText(unsigned index, const char** text) const;
  VxResult setInt(unsigned index, std::int32_t value);
  VxResult setFloat(unsigned index, double value);
  VxResult setText(unsigned index, const char* text);

  // Takes every value of `other`, which must describe the same table.
  void assign(const CVxAttrValues& other) { values_ = other.values_; }

 private:
  struct Value {
    std::int32_t integer = 0;
    double number = 0.0;
    std::string text;
  };

  const CVxAttrDesc* descs_;
  unsigned count_;
  std::vector<Value> values_;
};

// Whether `value` is one of the choices of a table ending with -1.
bool cvxIsChoice(const VxPopChoice* choices, std::int32_t value);

// IVxAttributes (or an interface derived from it, such as IVxCommandServer)
// implemented over a CVxAttrValues.
template <typename Interface>
class CVxAttributeList : public Interface {
 public:
  CVxAttributeList(const CVxAttrDesc* descs, unsigned count) : values_(descs, count) {}
  virtual ~CVxAttributeList() = default;

  unsigned AttrCount() const override { return values_.count(); }
  const char* AttrName(unsigned index) const override {
    const CVxAttrDesc* desc = values_.desc(index);
    return desc ? desc->name : nullptr;
  }
  VxResult AttrLookup(const char* name, unsigned* index) const override {
    const int found = values_.lookup(name);
    if (found < 0 || !index) return found < 0 ? VXR_NOTFOUND : VXR_BADARG;
    *index = static_cast<unsigned>(found);
    return VXR_OK;
  }
  VxResult AttrType(unsigned index, VxAttrType* type) const override {
    const CVxAttrDesc* desc = values_.desc(index);
    if (!desc) return VXR_OUTOFBOUNDS;
    if (!type) return VXR_BADARG;
    *type = desc->type;
    return VXR_OK;
  }
  const char* AttrHintStyle(unsigned index) const override {
    const CVxAttrDesc* desc = values_.desc(index);
    return desc && desc->choices ? VX_HINT_POPCHOICE : nullptr;
  }
  const VxPopChoice* AttrPopChoices(unsigned index) const override {
    const CVxAttrDesc* desc = values_.desc(index);
    return desc ? desc->choices : nullptr;
  }
  VxResult GetInt(unsigned index, std::int32_t* value) const override { return values_.getInt(index, value); }
  VxResult GetFloat(unsigned index, double* value) const override { return values_.getFloat(index, value); }
  VxResult GetText(unsigned index, const char** text) const override { return values_.getText(index, text); }
  VxResult SetInt(unsigned index, std::int32_t value) override { return values_.setInt(index, value); }
  VxResult SetFloat(unsigned index, double value) override { return values_.setFloat(index, value); }
  VxResult SetText(unsigned index, const char* text) override { return values_.setText(index, text); }

  CVxAttrValues& values() { return values_; }
  const CVxAttrValues& values() const { return values_; }

 private:
  CVxAttrValues values_;
};

using CVxAttributes = CVxAttributeList<IVxAttributes>;
