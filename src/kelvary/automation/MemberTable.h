// MemberTable: the one description of a class as hosts see it. Each public
// class of the system has one table: its names (the class, its dispatch
// interface "_<Class>", its event interface "__<Class>", its ProgID
// "Kelvary.<Class>"), its fixed identities (interface, class and event
// interface GUIDs, checked in and never made at run time), its members in
// interface order and its events in dispatch order. Everything else is
// derived from the tables: name look-up, the calls of a dispatch object, the
// interface definition text a type library is compiled from.
//
// A member has one name and one dispatch ID and answers to one or more
// kinds (method, property get, let, set). Its parameters are those of the
// method or of the property read; a let or set takes the new value after
// them, of the member's result type. Names match without regard to case.
//
// Tables are built once, on first use, and are read-only afterwards: they
// may be read from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kelvary/automation/Dispatch.h"

namespace kelvary::automation {

// ValueKind: the automation type of a parameter or result.
enum class ValueKind : uint8_t {
  kVoid,  // results only: nothing returned
  kBoolean,
  kInteger,  // 16-bit
  kLong,     // 32-bit
  kSingle,
  kDouble,
  kCurrency,
  kDate,
  kString,
  kVariant,
  kObject,      // a dispatch object; TypeRef::name names its class when known
  kEnumerator,  // results only: the enumerator of a collection
};

// TypeRef: a ValueKind, with the name of the class (kObject) or of the
// enumeration (kLong) where there is one.
struct TypeRef {
  ValueKind kind = ValueKind::kVariant;
  std::string name;
  friend bool operator==(const TypeRef&, const TypeRef&) = default;
};

struct ParamInfo {
  std::string name;
  TypeRef type;
  bool optional = false;  // may be omitted; the member can tell it was
  bool by_ref = false;    // written back into the caller's variable
};

// Invoker: the body behind a member: self is the dispatch object invoked,
// kind the one kind chosen (kInvokeMethod, kInvokePropertyGet,
// kInvokePropertyPut or kInvokePropertyPutRef), args exactly the member's
// parameters (plus the new value for let and set), already checked for
// count and for required arguments.
using Invoker = std::function<Variant(DispatchObject& self, InvokeFlags kind, std::span<Arg> args)>;

struct MemberInfo {
  std::string name;
  DispId id = 0;
  InvokeFlags kinds = 0;  // the kinds this member answers to
  std::vector<ParamInfo> params;
  TypeRef result;  // also the type of the value a let or set assigns
  Invoker invoke;
  bool hidden = false;  // left out of a host's object browser (the enumeration member)

  bool Answers(InvokeFlags kind) const { return (kinds & kind) != 0; }
  // RequiredCount: parameters before the first optional one.
  size_t RequiredCount() const;
};

struct EventInfo {
  std::string name;
  DispId id = 0;  // 1, 2, ... in dispatch order
  std::vector<ParamInfo> params;
};

// ClassGuids: the class's fixed identities, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
struct ClassGuids {
  std::string interface_id;
  std::string class_id;
  std::string events_id;  // "" when the class raises no events
};

// The type library that holds every class.
inline constexpr std::string_view kTypeLibraryName = "Kelvary";
inline constexpr std::string_view kTypeLibraryId = "{6B1D0C3E-4F7A-5E21-9C84-2A5D7E31B640}";
inline constexpr uint16_t kTypeLibraryMajor = 1;
inline constexpr uint16_t kTypeLibraryMinor = 0;

class MemberTable {
 public:
  // creatable: a host may create the class by its ProgID.
  MemberTable(std::string class_name, ClassGuids guids, bool creatable, std::string help);

  const std::string& ClassName() const { return class_name_; }
  std::string InterfaceName() const { return "_" + class_name_; }
  std::string EventInterfaceName() const { return "__" + class_name_; }
  std::string ProgId() const { return "Kelvary." + class_name_; }
  const ClassGuids& Guids() const { return guids_; }
  bool Creatable() const { return creatable_; }
  const std::string& Help() const { return help_; }

  const std::vector<MemberInfo>& Members() const { return members_; }
  const std::vector<EventInfo>& Events() const { return events_; }

  // IdOfName: the member's ID, without regard to case; kDispIdUnknown when
  // there is none.
  DispId IdOfName(std::string_view name) const;
  // Find: the member with that ID, or nullptr.
  const MemberInfo* Find(DispId id) const;
  // FindEvent: the event of that name (without regard to case), or nullptr.
  const EventInfo* FindEvent(std::string_view name) const;

  // Add appends a member. REQUIRES: its name and ID are new to the table.
  void Add(MemberInfo member);
  // AddEvent appends an event; it takes the next dispatch ID (1 for the first).
  void AddEvent(std::string name, std::vector<ParamInfo> params);

 private:
  std::string class_name_;
  ClassGuids guids_;
  bool creatable_;
  std::string help_;
  std::vector<MemberInfo> members_;
  std::vector<EventInfo> events_;
  std::unordered_map<std::string, DispId> by_name_;  // folded name -> ID
  std::vector<int32_t> by_id_;                       // ID -> index in members_ + 1 (IDs 1..n)
  std::unordered_map<DispId, size_t> special_ids_;   // 0, -4 and any other
};

// InvokeMember: the generic call of a table's member on self: picks the kind
// (a let or set when asked for one, otherwise the method, otherwise the
// property read), checks the count and the required arguments, and carries
// every failure out as AutomationError. Extra arguments given to a member
// without parameters that returns an object go to that object's default
// member (rs("X") is rs.Fields.Item("X")).
Variant InvokeMember(DispatchObject& self, const MemberTable& table, DispId id, InvokeFlags flags,
                     std::span<Arg> args);

}  // namespace kelvary::automation
