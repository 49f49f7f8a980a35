#include "kelvary/automation/MemberTable.h"

#include <exception>
#include <utility>

#include "kelvary/platform/Text.h"

namespace kelvary::automation {

size_t MemberInfo::RequiredCount() const {
  size_t n = 0;
  while (n < params.size() && !params[n].optional)
    ++n;
  return n;
}

MemberTable::MemberTable(std::string class_name, ClassGuids guids, bool creatable, std::string help)
    : class_name_(std::move(class_name)),
      guids_(std::move(guids)),
      creatable_(creatable),
      help_(std::move(help)) {}

DispId MemberTable::IdOfName(std::string_view name) const {
  // Folding into a small buffer keeps a look-up free of allocation for the
  // names a host uses (all shorter than the buffer).
  char buffer[64];
  if (name.size() <= sizeof buffer) {
    for (size_t i = 0; i < name.size(); ++i)
      buffer[i] = AsciiLower(name[i]);
    auto it = by_name_.find(std::string(buffer, name.size()));
    return it == by_name_.end() ? kDispIdUnknown : it->second;
  }
  auto it = by_name_.find(LowerCase(name));
  return it == by_name_.end() ? kDispIdUnknown : it->second;
}

const MemberInfo* MemberTable::Find(DispId id) const {
  if (id > 0 && static_cast<size_t>(id) < by_id_.size()) {
    const int32_t slot = by_id_[static_cast<size_t>(id)];
    return slot == 0 ? nullptr : &members_[static_cast<size_t>(slot - 1)];
  }
  auto it = special_ids_.find(id);
  return it == special_ids_.end() ? nullptr : &members_[it->second];
}

const EventInfo* MemberTable::FindEvent(std::string_view name) const {
  for (const EventInfo& e : events_) {
    if (EqualsNoCase(e.name, name)) return &e;
  }
  return nullptr;
}

void MemberTable::Add(MemberInfo member) {
  const size_t index = members_.size();
  by_name_.emplace(LowerCase(member.name), member.id);
  if (member.id > 0 && member.id < 4096) {
    if (by_id_.size() <= static_cast<size_t>(member.id)) {
      by_id_.resize(static_cast<size_t>(member.id) + 1, 0);
    }
    by_id_[static_cast<size_t>(member.id)] = static_cast<int32_t>(index + 1);
  } else {
    special_ids_.emplace(member.id, index);
  }
  members_.push_back(std::move(member));
}

void MemberTable::AddEvent(std::string name, std::vector<ParamInfo> params) {
  const DispId id = static_cast<DispId>(events_.size() + 1);
  events_.push_back(EventInfo{std::move(name), id, std::move(params)});
}

namespace {

bool ReturnsObject(const MemberInfo& m) {
  return m.result.kind == ValueKind::kObject || m.result.kind == ValueKind::kVariant;
}

// ChooseKind: the one kind a call asks of this member, or 0 when the member
// cannot be used that way.
InvokeFlags ChooseKind(const MemberInfo& m, InvokeFlags flags, std::span<Arg> args) {
  if ((flags & (kInvokePropertyPut | kInvokePropertyPutRef)) != 0) {
    const bool is_object = !args.empty() && args.back().value.IsObject();
    if ((flags & kInvokePropertyPutRef) != 0 && m.Answers(kInvokePropertyPutRef)) {
      return kInvokePropertyPutRef;
    }
    if ((flags & kInvokePropertyPut) != 0 && m.Answers(kInvokePropertyPut)) {
      return kInvokePropertyPut;
    }
    // A let of an object to a member that takes only objects stores the
    // reference, as the bridges of script hosts expect; a set of a plain
    // value to a let-only member is no assignment at all.
    if ((flags & kInvokePropertyPut) != 0 && is_object && m.Answers(kInvokePropertyPutRef)) {
      return kInvokePropertyPutRef;
    }
    return 0;
  }
  // A read and a call are one to a host: a script reads obj.Name and calls
  // obj.Name() alike, and a method without arguments may be read.
  if ((flags & (kInvokePropertyGet | kInvokeMethod)) == 0) return 0;
  if (m.Answers(kInvokeMethod)) return kInvokeMethod;
  if (m.Answers(kInvokePropertyGet)) return kInvokePropertyGet;
  return 0;
}

Variant CallChecked(DispatchObject& self, const MemberTable& table, const MemberInfo& m,
                    InvokeFlags kind, std::span<Arg> args) {
  const bool assigns = kind == kInvokePropertyPut || kind == kInvokePropertyPutRef;
  const size_t wanted = m.params.size() + (assigns ? 1 : 0);
  if (args.size() > wanted || args.size() < m.RequiredCount() + (assigns ? 1 : 0)) {
    throw AutomationError::BadParamCount();
  }
  for (size_t i = 0; i < args.size(); ++i) {
    const bool optional = i < m.params.size() && m.params[i].optional;
    if (args[i].missing && !optional) {
      throw AutomationError::ParamNotOptional(static_cast<int32_t>(i + 1));
    }
  }
  // Omitted trailing optional arguments are passed as missing slots, so
  // that every body sees all of its parameters.
  if (args.size() < wanted) {
    Args full(args.begin(), args.end());
    full.resize(wanted, Arg::Missing());
    Variant result = CallChecked(self, table, m, kind, full);
    for (size_t i = 0; i < args.size(); ++i)
      args[i].value = std::move(full[i].value);
    return result;
  }
  try {
    return m.invoke(self, kind, args);
  } catch (const AutomationError&) {
    throw;
  } catch (const Error& e) {
    AutomationError error = AutomationError::FromError(e);
    if (error.Source().empty()) {
      throw AutomationError(error.Failure(), error.Number(), error.Description(),
                            error.ArgPosition(), table.ProgId());
    }
    throw error;
  } catch (const std::bad_alloc&) {
    throw AutomationError(DispatchFailure::kException, 7, "Out of memory", 0, table.ProgId());
  } catch (const std::exception& e) {
    throw AutomationError(DispatchFailure::kException, 440,
                          std::string("Automation error: ") + e.what(), 0, table.ProgId());
  }
}

}  // namespace

Variant InvokeMember(DispatchObject& self, const MemberTable& table, DispId id, InvokeFlags flags,
                     std::span<Arg> args) {
  const MemberInfo* m = table.Find(id);
  if (m == nullptr) throw AutomationError::MemberNotFound();
  const InvokeFlags kind = ChooseKind(*m, flags, args);
  if (kind == 0) throw AutomationError::MemberNotFound();
  if ((kind == kInvokePropertyGet || kind == kInvokeMethod) && args.size() > m->params.size() &&
      m->params.empty() && ReturnsObject(*m)) {
    Variant object = CallChecked(self, table, *m, kind, {});
    auto next = AsDispatch(object);
    if (!next) throw AutomationError::BadParamCount();
    return next->Invoke(kDispIdValue, flags, args);
  }
  return CallChecked(self, table, *m, kind, args);
}

}  // namespace kelvary::automation
