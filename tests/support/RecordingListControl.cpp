#include "support/RecordingListControl.h"

#include "kelvary/platform/Error.h"

namespace kelvary::testing {

void RecordingListControl::Tag(const std::string& value) {
  tag_ = value;
  calls_.push_back("Tag=" + value);
}

void RecordingListControl::Clear() {
  items_.clear();
  new_index_ = -1;
  list_index_ = -1;
  calls_.push_back("Clear");
}

void RecordingListControl::AddItem(const std::string& text) {
  items_.push_back({text, Variant(int32_t{0})});
  new_index_ = ListCount() - 1;
  calls_.push_back("AddItem(" + text + ")");
}

void RecordingListControl::AddItem(const std::string& text, const Variant& value) {
  items_.push_back({text, value});
  new_index_ = ListCount() - 1;
  calls_.push_back("AddItem(" + text + "," + TextOf(value) + ")");
}

int32_t RecordingListControl::ItemData(int32_t index) const {
  if (index < 0 || index >= ListCount()) throw Error(kErrInvalidProcedureCall, "Invalid index");
  return CLng(items_[static_cast<size_t>(index)].value);
}

void RecordingListControl::ItemData(int32_t index, int32_t value) {
  if (index < 0 || index >= ListCount()) throw Error(kErrInvalidProcedureCall, "Invalid index");
  items_[static_cast<size_t>(index)].value = Variant(value);
  calls_.push_back("ItemData(" + std::to_string(index) + ")=" + std::to_string(value));
}

void RecordingListControl::ListIndex(int16_t index) {
  list_index_ = index;
  calls_.push_back("ListIndex=" + std::to_string(index));
}

void RecordingListControl::Visible(bool visible) {
  visible_ = visible;
  calls_.push_back(std::string("Visible=") + (visible ? "True" : "False"));
}

std::vector<std::string> RecordingListControl::ItemTexts() const {
  std::vector<std::string> texts;
  for (const auto& item : items_)
    texts.push_back(item.text);
  return texts;
}

}  // namespace kelvary::testing
