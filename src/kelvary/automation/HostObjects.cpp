#include "kelvary/automation/HostObjects.h"

#include <utility>

#include "kelvary/platform/Text.h"

namespace kelvary::automation {

HostMembers::HostMembers(std::shared_ptr<DispatchObject> object) : object_(std::move(object)) {}

Variant HostMembers::Invoke(std::string_view name, InvokeFlags flags, std::span<Arg> args) const {
  std::string key(name);
  auto it = ids_.find(key);
  if (it == ids_.end()) {
    const DispId id = object_->GetIdOfName(name);
    if (id == kDispIdUnknown) throw AutomationError::UnknownName(name);
    it = ids_.emplace(std::move(key), id).first;
  }
  return object_->Invoke(it->second, flags, args);
}

namespace {
constexpr InvokeFlags kRead = kInvokePropertyGet | kInvokeMethod;
}  // namespace

DispatchListControl::DispatchListControl(std::shared_ptr<DispatchObject> control)
    : host_(std::move(control)) {}

std::string DispatchListControl::Tag() const {
  Args none;
  return TextOf(ValueOf(host_.Invoke("Tag", kRead, none)));
}

void DispatchListControl::Tag(const std::string& value) {
  Args a{Arg{value}};
  host_.Invoke("Tag", kInvokePropertyPut, a);
}

void DispatchListControl::Clear() {
  Args none;
  host_.Invoke("Clear", kInvokeMethod, none);
}

void DispatchListControl::AddItem(const std::string& text) {
  Args a{Arg{text}};
  host_.Invoke("AddItem", kInvokeMethod, a);
}

void DispatchListControl::AddItem(const std::string& text, const Variant& value) {
  Args a{Arg{text}, Arg{value}};
  host_.Invoke("AddItem", kInvokeMethod, a);
}

int32_t DispatchListControl::NewIndex() const {
  Args none;
  return CLng(ValueOf(host_.Invoke("NewIndex", kRead, none)));
}

int32_t DispatchListControl::ItemData(int32_t index) const {
  Args a{Arg{index}};
  return CLng(ValueOf(host_.Invoke("ItemData", kRead, a)));
}

void DispatchListControl::ItemData(int32_t index, int32_t value) {
  Args a{Arg{index}, Arg{value}};
  host_.Invoke("ItemData", kInvokePropertyPut, a);
}

void DispatchListControl::ListIndex(int16_t index) {
  Args a{Arg{index}};
  host_.Invoke("ListIndex", kInvokePropertyPut, a);
}

int32_t DispatchListControl::ListCount() const {
  Args none;
  return CLng(ValueOf(host_.Invoke("ListCount", kRead, none)));
}

void DispatchListControl::Visible(bool visible) {
  Args a{Arg{visible}};
  host_.Invoke("Visible", kInvokePropertyPut, a);
}

std::string DispatchListControl::Caption() const {
  Args none;
  return TextOf(ValueOf(host_.Invoke("Caption", kRead, none)));
}

bool DispatchListControl::IsStandardListControl() const {
  return host_.Object().ImplementsInterface(kStandardComboBoxIid) ||
         host_.Object().ImplementsInterface(kStandardListBoxIid);
}

DispatchDateControl::DispatchDateControl(std::shared_ptr<DispatchObject> control)
    : host_(std::move(control)) {}

Variant DispatchDateControl::Value() const {
  Args none;
  return ValueOf(host_.Invoke("Value", kRead, none));
}

DispatchEventSink::DispatchEventSink(std::shared_ptr<DispatchObject> sink)
    : sink_(std::move(sink)) {}

bool DispatchEventSink::Fire(DispId id, std::span<Arg> args) {
  try {
    sink_->Invoke(id, kInvokeMethod, args);
    return true;
  } catch (const AutomationError& e) {
    if (e.Failure() == DispatchFailure::kMemberNotFound ||
        e.Failure() == DispatchFailure::kUnknownName) {
      return false;
    }
    throw;
  }
}

namespace {
Arg In(Variant v) {
  return Arg{std::move(v)};
}

// The nine arguments every action-history event starts with, in the events'
// order; the Before events add bContinue after them.
template <class Key>
Args HistoryArgs(ProjectDataSources source, DBRecordActionTypes action, int32_t table_id,
                 const std::string& table_name, int32_t user_id, Key key1, Key key2,
                 const std::string& field1, const std::string& field2) {
  return Args{In(static_cast<int32_t>(source)),
              In(static_cast<int32_t>(action)),
              In(table_id),
              In(table_name),
              In(user_id),
              In(key1),
              In(key2),
              In(field1),
              In(field2)};
}
}  // namespace

void DispatchEventSink::CheckAllowRecordDelete(int32_t DataTableId, int32_t RecID,
                                               bool& bOKTODelete) {
  Args a{In(DataTableId), In(RecID), Arg::Ref(bOKTODelete)};
  if (Fire(1, a)) bOKTODelete = CBool(a[2].value);
}

void DispatchEventSink::BeforeDeleteRecord(int32_t DataTableId, int32_t RecID) {
  Args a{In(DataTableId), In(RecID)};
  Fire(2, a);
}

void DispatchEventSink::AfterDeleteRecord(int32_t DataTableId, int32_t RecID) {
  Args a{In(DataTableId), In(RecID)};
  Fire(3, a);
}

void DispatchEventSink::RequestRemoteNextID(int32_t& ReturnValue, ProjectDataSources SourceofData,
                                            const std::string& Table_Name,
                                            const std::string& Field_Name,
                                            const std::string& LimitString) {
  Args a{Arg::Ref(ReturnValue), In(static_cast<int32_t>(SourceofData)), In(Table_Name),
         In(Field_Name), In(LimitString)};
  if (Fire(4, a)) ReturnValue = CLng(a[0].value);
}

void DispatchEventSink::BeforePostActionHistory(ProjectDataSources SourceofData,
                                                DBRecordActionTypes DBActionType, int32_t TableId,
                                                const std::string& TableName, int32_t UserId,
                                                int32_t KeyValue1, int32_t KeyValue2,
                                                const std::string& KeyField1,
                                                const std::string& KeyField2, bool& bContinue) {
  Args a = HistoryArgs(SourceofData, DBActionType, TableId, TableName, UserId, KeyValue1, KeyValue2,
                       KeyField1, KeyField2);
  a.push_back(Arg::Ref(bContinue));
  if (Fire(5, a)) bContinue = CBool(a[9].value);
}

void DispatchEventSink::RequestRemoteNextIDAsDouble(double& ReturnValue,
                                                    ProjectDataSources SourceofData,
                                                    const std::string& Table_Name,
                                                    const std::string& Field_Name,
                                                    const std::string& LimitString) {
  Args a{Arg::Ref(ReturnValue), In(static_cast<int32_t>(SourceofData)), In(Table_Name),
         In(Field_Name), In(LimitString)};
  if (Fire(6, a)) ReturnValue = CDbl(a[0].value);
}

void DispatchEventSink::AfterPostActionHistory(ProjectDataSources SourceofData,
                                               DBRecordActionTypes DBActionType, int32_t TableId,
                                               const std::string& TableName, int32_t UserId,
                                               int32_t KeyValue1, int32_t KeyValue2,
                                               const std::string& KeyField1,
                                               const std::string& KeyField2) {
  Args a = HistoryArgs(SourceofData, DBActionType, TableId, TableName, UserId, KeyValue1, KeyValue2,
                       KeyField1, KeyField2);
  Fire(7, a);
}

void DispatchEventSink::BeforePostActionHistoryAsDouble(
    ProjectDataSources SourceofData, DBRecordActionTypes DBActionType, int32_t TableId,
    const std::string& TableName, int32_t UserId, double KeyValue1, double KeyValue2,
    const std::string& KeyField1, const std::string& KeyField2, bool& bContinue) {
  Args a = HistoryArgs(SourceofData, DBActionType, TableId, TableName, UserId, KeyValue1, KeyValue2,
                       KeyField1, KeyField2);
  a.push_back(Arg::Ref(bContinue));
  if (Fire(8, a)) bContinue = CBool(a[9].value);
}

void DispatchEventSink::AfterPostActionHistoryAsDouble(
    ProjectDataSources SourceofData, DBRecordActionTypes DBActionType, int32_t TableId,
    const std::string& TableName, int32_t UserId, double KeyValue1, double KeyValue2,
    const std::string& KeyField1, const std::string& KeyField2) {
  Args a = HistoryArgs(SourceofData, DBActionType, TableId, TableName, UserId, KeyValue1, KeyValue2,
                       KeyField1, KeyField2);
  Fire(9, a);
}

}  // namespace kelvary::automation
