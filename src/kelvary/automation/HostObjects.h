// HostObjects: the host's own objects as the system uses them. A host hands
// over its list and combo boxes, its date controls and its event sinks as
// dispatch objects; these adapters give the system the interfaces it already
// knows (ListControl, DateControl, InfoLinkEvents) by calling the host's
// members by name. Each adapter holds its host object for as long as the
// adapter lives and looks each member up once.
//
// A failure inside a host's member reaches the system as the host raised
// it (an AutomationError). An event the host's sink does not implement is
// skipped.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kelvary/automation/Dispatch.h"
#include "kelvary/platform/HostControls.h"
#include "kelvary/service/InfoLinkEvents.h"

namespace kelvary::automation {

// The interface identities of the platform's two standard list controls
// (combo box and list box): such a control takes the one-argument AddItem.
inline constexpr std::string_view kStandardComboBoxIid = "{33AD4F09-6699-11CF-B70C-00AA0060D393}";
inline constexpr std::string_view kStandardListBoxIid = "{33AD4F11-6699-11CF-B70C-00AA0060D393}";

// HostMembers: a host object with its member IDs looked up once each.
class HostMembers {
 public:
  explicit HostMembers(std::shared_ptr<DispatchObject> object);
  DispatchObject& Object() const { return *object_; }
  const std::shared_ptr<DispatchObject>& Shared() const { return object_; }
  // Invoke calls the member name (an unknown one raises kUnknownName).
  Variant Invoke(std::string_view name, InvokeFlags flags, std::span<Arg> args) const;

 private:
  std::shared_ptr<DispatchObject> object_;
  mutable std::unordered_map<std::string, DispId> ids_;
};

// DispatchListControl: a host's list or combo box.
class DispatchListControl : public ListControl {
 public:
  // REQUIRES: control is not nullptr.
  explicit DispatchListControl(std::shared_ptr<DispatchObject> control);

  std::string Tag() const override;
  void Tag(const std::string& value) override;
  void Clear() override;
  void AddItem(const std::string& text) override;
  void AddItem(const std::string& text, const Variant& value) override;
  int32_t NewIndex() const override;
  int32_t ItemData(int32_t index) const override;
  void ItemData(int32_t index, int32_t value) override;
  void ListIndex(int16_t index) override;
  int32_t ListCount() const override;
  void Visible(bool visible) override;
  std::string Caption() const override;
  // IsStandardListControl: the control answers to the interface identity of
  // the standard combo box or list box.
  bool IsStandardListControl() const override;

 private:
  HostMembers host_;
};

// DispatchDateControl: a host's date control; its Value is read by name.
class DispatchDateControl : public DateControl {
 public:
  explicit DispatchDateControl(std::shared_ptr<DispatchObject> control);
  Variant Value() const override;

 private:
  HostMembers host_;
};

// DispatchEventSink: a host's sink for the service object's events. Each
// event is invoked as a method with the event's fixed dispatch ID (1 for
// CheckAllowRecordDelete, ... 9 for AfterPostActionHistoryAsDouble, the
// dispatch order of the event interface), arguments in declared order; the
// by-reference ones (bOKTODelete, ReturnValue, bContinue) are passed by
// reference and what the host leaves in them is written back into the
// library. A sink that has no member for an event is skipped.
class DispatchEventSink : public InfoLinkEvents {
 public:
  explicit DispatchEventSink(std::shared_ptr<DispatchObject> sink);
  const std::shared_ptr<DispatchObject>& Sink() const { return sink_; }

  void CheckAllowRecordDelete(int32_t DataTableId, int32_t RecID, bool& bOKTODelete) override;
  void BeforeDeleteRecord(int32_t DataTableId, int32_t RecID) override;
  void AfterDeleteRecord(int32_t DataTableId, int32_t RecID) override;
  void RequestRemoteNextID(int32_t& ReturnValue, ProjectDataSources SourceofData,
                           const std::string& Table_Name, const std::string& Field_Name,
                           const std::string& LimitString) override;
  void BeforePostActionHistory(ProjectDataSources SourceofData, DBRecordActionTypes DBActionType,
                               int32_t TableId, const std::string& TableName, int32_t UserId,
                               int32_t KeyValue1, int32_t KeyValue2, const std::string& KeyField1,
                               const std::string& KeyField2, bool& bContinue) override;
  void RequestRemoteNextIDAsDouble(double& ReturnValue, ProjectDataSources SourceofData,
                                   const std::string& Table_Name, const std::string& Field_Name,
                                   const std::string& LimitString) override;
  void AfterPostActionHistory(ProjectDataSources SourceofData, DBRecordActionTypes DBActionType,
                              int32_t TableId, const std::string& TableName, int32_t UserId,
                              int32_t KeyValue1, int32_t KeyValue2, const std::string& KeyField1,
                              const std::string& KeyField2) override;
  void BeforePostActionHistoryAsDouble(ProjectDataSources SourceofData,
                                       DBRecordActionTypes DBActionType, int32_t TableId,
                                       const std::string& TableName, int32_t UserId,
                                       double KeyValue1, double KeyValue2,
                                       const std::string& KeyField1, const std::string& KeyField2,
                                       bool& bContinue) override;
  void AfterPostActionHistoryAsDouble(ProjectDataSources SourceofData,
                                      DBRecordActionTypes DBActionType, int32_t TableId,
                                      const std::string& TableName, int32_t UserId,
                                      double KeyValue1, double KeyValue2,
                                      const std::string& KeyField1,
                                      const std::string& KeyField2) override;

 private:
  // Fire invokes event id; false when the sink does not implement it.
  bool Fire(DispId id, std::span<Arg> args);

  std::shared_ptr<DispatchObject> sink_;
};

}  // namespace kelvary::automation
