// The host's controls, as the system reaches them: list controls (combo and
// list boxes) that it fills, and date controls whose value it reads. The host
// implements these interfaces over its own widgets; the system never creates
// one and keeps no reference after a call returns.
#pragma once

#include <cstdint>
#include <string>

#include "kelvary/platform/Variant.h"

namespace kelvary {

class ListControl {
 public:
  virtual ~ListControl() = default;

  // Tag: free text; the system sets it to "P" while it fills the list so
  // that the host's change handlers can ignore the events of the fill.
  virtual std::string Tag() const = 0;
  virtual void Tag(const std::string& value) = 0;
  virtual void Clear() = 0;
  // AddItem with one argument: the standard list and combo controls.
  virtual void AddItem(const std::string& text) = 0;
  // AddItem with text and value: any other list control.
  virtual void AddItem(const std::string& text, const Variant& value) = 0;
  // NewIndex: index of the item just added.
  virtual int32_t NewIndex() const = 0;
  virtual int32_t ItemData(int32_t index) const = 0;
  virtual void ItemData(int32_t index, int32_t value) = 0;
  // ListIndex: the selected item, 0 the first.
  virtual void ListIndex(int16_t index) = 0;
  virtual int32_t ListCount() const = 0;
  virtual void Visible(bool visible) = 0;
  virtual std::string Caption() const = 0;
  // IsStandardListControl: true for the platform's standard combo and list
  // boxes, which take the one-argument AddItem followed by ItemData.
  virtual bool IsStandardListControl() const = 0;
};

class DateControl {
 public:
  virtual ~DateControl() = default;
  // Value: a date, or Null when no date is chosen.
  virtual Variant Value() const = 0;
};

}  // namespace kelvary
