#include "kelvary/automation/Classes.h"

#include <functional>

#include "kelvary/automation/HostObjects.h"
#include "kelvary/automation/internal/Classes.h"
#include "kelvary/platform/Text.h"

namespace kelvary::automation {

namespace {

struct ClassEntry {
  const MemberTable& (*table)();
  std::function<std::shared_ptr<DispatchObject>()> create;  // empty: not creatable
};

template <class C>
ClassEntry Creatable() {
  return ClassEntry{&ClassTraits<C>::Table, [] { return Wrap(std::make_shared<C>()); }};
}
template <class C>
ClassEntry Listed() {
  return ClassEntry{&ClassTraits<C>::Table, {}};
}

const std::vector<ClassEntry>& Entries() {
  static const std::vector<ClassEntry> entries = {
      Creatable<InfoLink>(),
      Creatable<QueryInterpretor>(),
      Creatable<QueryShapeNest>(),
      Creatable<QueryShapeNests>(),
      Creatable<QueryDataTable>(),
      Creatable<QueryDataTables>(),
      Creatable<QueryOutputField>(),
      Creatable<QueryOutputFields>(),
      Creatable<QueryTemplateSortOption>(),
      Creatable<QueryTemplateSortOptions>(),
      Creatable<ConditionNode>(),
      Creatable<ConditionNodes>(),
      Creatable<RepParam>(),
      Creatable<RepParams>(),
      Creatable<ValueSet>(),
      Creatable<ValueSets>(),
      Creatable<FieldLink>(),
      Creatable<FieldLinks>(),
      Creatable<GeneralCollection>(),
      Creatable<Connection>(),
      Creatable<Recordset>(),
      Listed<internal::RecordsetFields>(),
      Listed<internal::RecordsetField>(),
      Listed<internal::ConnectionErrors>(),
      Listed<internal::ConnectionError>(),
      Creatable<Command>(),
      Creatable<Parameter>(),
      Listed<internal::CommandParameters>(),
  };
  return entries;
}

const ClassEntry* FindEntry(std::string_view name) {
  for (const ClassEntry& e : Entries()) {
    const MemberTable& t = e.table();
    if (EqualsNoCase(t.ClassName(), name) || EqualsNoCase(t.ProgId(), name)) return &e;
  }
  return nullptr;
}

// WrapAs: v's object as a C wrapper, when it is a C.
template <class C>
bool WrapAs(const std::shared_ptr<Object>& object, Variant& out) {
  if (auto native = std::dynamic_pointer_cast<C>(object)) {
    out = Variant(std::shared_ptr<Object>(Wrap(std::move(native))));
    return true;
  }
  return false;
}

}  // namespace

const std::vector<const MemberTable*>& AllTables() {
  static const std::vector<const MemberTable*> tables = [] {
    std::vector<const MemberTable*> all;
    for (const ClassEntry& e : Entries())
      all.push_back(&e.table());
    return all;
  }();
  return tables;
}

const MemberTable* FindTable(std::string_view class_name_or_prog_id) {
  const ClassEntry* e = FindEntry(class_name_or_prog_id);
  return e == nullptr ? nullptr : &e->table();
}

std::shared_ptr<DispatchObject> CreateObject(std::string_view prog_id) {
  const ClassEntry* e = FindEntry(prog_id);
  if (e == nullptr || !e->create) return nullptr;
  return e->create();
}

Variant ToHost(const Variant& v) {
  if (!v.IsObject()) return v;
  std::shared_ptr<Object> object = v.ObjectValue();
  if (!object || std::dynamic_pointer_cast<DispatchObject>(object)) return v;
  Variant out;
  if (WrapAs<Recordset>(object, out) || WrapAs<Connection>(object, out) ||
      WrapAs<QueryShapeNest>(object, out) || WrapAs<QueryShapeNests>(object, out) ||
      WrapAs<QueryDataTable>(object, out) || WrapAs<QueryDataTables>(object, out) ||
      WrapAs<QueryOutputField>(object, out) || WrapAs<QueryOutputFields>(object, out) ||
      WrapAs<QueryTemplateSortOption>(object, out) ||
      WrapAs<QueryTemplateSortOptions>(object, out) || WrapAs<ConditionNode>(object, out) ||
      WrapAs<ConditionNodes>(object, out) || WrapAs<RepParam>(object, out) ||
      WrapAs<RepParams>(object, out) || WrapAs<ValueSet>(object, out) ||
      WrapAs<ValueSets>(object, out) || WrapAs<FieldLink>(object, out) ||
      WrapAs<FieldLinks>(object, out) || WrapAs<Command>(object, out) ||
      WrapAs<Parameter>(object, out)) {
    return out;
  }
  return v;
}

Variant FromHost(const Variant& v) {
  if (!v.IsObject()) return v;
  if (auto* wrapper = dynamic_cast<const SystemDispatch*>(v.ObjectValue().get())) {
    if (auto native = wrapper->NativeAsObject()) return Variant(std::move(native));
  }
  return v;
}

std::shared_ptr<InfoLinkEvents> SubscribeEvents(const DispatchObject& info_link,
                                                std::shared_ptr<DispatchObject> sink) {
  auto link = NativeOf<InfoLink>(&info_link);
  if (!link || !sink) return nullptr;
  auto subscription = std::make_shared<DispatchEventSink>(std::move(sink));
  link->Advise(subscription);
  return subscription;
}

void UnsubscribeEvents(const DispatchObject& info_link,
                       const std::shared_ptr<InfoLinkEvents>& subscription) {
  if (auto link = NativeOf<InfoLink>(&info_link)) link->Unadvise(subscription);
}

namespace internal {
std::shared_ptr<DispatchObject> ControlArg(const Arg& arg, int32_t position) {
  auto control = AsDispatch(arg.value);
  if (!control) throw AutomationError::TypeMismatch(position);
  return control;
}
}  // namespace internal

}  // namespace kelvary::automation
