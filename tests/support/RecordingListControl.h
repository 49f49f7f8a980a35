// RecordingListControl: a host list control for tests. It keeps its items
// (text and value) like a real combo box and records every call in order,
// so that a test can check both the outcome and the calls that made it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kelvary/platform/HostControls.h"

namespace kelvary::testing {

class RecordingListControl : public ListControl {
 public:
  explicit RecordingListControl(bool standard = false, std::string caption = "List")
      : standard_(standard), caption_(std::move(caption)) {}

  struct Item {
    std::string text;
    Variant value;  // the two-argument value, or the ItemData number
  };

  std::string Tag() const override { return tag_; }
  void Tag(const std::string& value) override;
  void Clear() override;
  void AddItem(const std::string& text) override;
  void AddItem(const std::string& text, const Variant& value) override;
  int32_t NewIndex() const override { return new_index_; }
  int32_t ItemData(int32_t index) const override;
  void ItemData(int32_t index, int32_t value) override;
  void ListIndex(int16_t index) override;
  int32_t ListCount() const override { return static_cast<int32_t>(items_.size()); }
  void Visible(bool visible) override;
  std::string Caption() const override { return caption_; }
  bool IsStandardListControl() const override { return standard_; }

  const std::vector<Item>& Items() const { return items_; }
  std::vector<std::string> ItemTexts() const;
  // Calls: one line per call, e.g. "Tag=P", "Clear", "AddItem(A)",
  // "AddItem(A,3)", "ItemData(0)=3", "ListIndex=0", "Visible=False".
  const std::vector<std::string>& Calls() const { return calls_; }
  bool IsVisible() const { return visible_; }
  int16_t SelectedIndex() const { return list_index_; }

 private:
  bool standard_;
  std::string caption_;
  std::string tag_;
  std::vector<Item> items_;
  std::vector<std::string> calls_;
  int32_t new_index_ = -1;
  int16_t list_index_ = -1;
  bool visible_ = true;
};

}  // namespace kelvary::testing
