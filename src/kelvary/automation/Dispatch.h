// Dispatch: the late-bound face of every object a host holds. A host that
// cannot see our C++ types reaches an object through two calls only: look a
// member up by name (without regard to case) and get its fixed dispatch ID,
// then Invoke that ID as a method, a property read, a property assignment of
// a value (let) or of an object reference (set), with its arguments as
// Variants. The system's own classes answer from their member tables
// (MemberTable.h); a host's objects (its list controls, date controls and
// event sinks) come in through the same interface, implemented by whatever
// bridge carries them.
//
// Arguments are given in call order (the first argument first). Each says
// whether it was passed at all (an omitted optional argument stays
// answerable as "not passed") and whether it is the caller's variable (by
// reference): a member writes its by-reference parameters back into those
// slots only. A property assignment passes the new value as the last
// argument.
//
// Every failure crosses as one AutomationError: the standard dispatch cases
// (unknown name, no such member, wrong number of arguments, type mismatch,
// argument not optional) with the 1-based position of the offending
// argument where there is one, and the system's own errors with their number
// and description. Objects are used by one thread at a time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::automation {

class MemberTable;

// DispId: a member's fixed dispatch ID. IDs are stable across builds: a host
// may cache them.
using DispId = int32_t;
inline constexpr DispId kDispIdUnknown = -1;  // no member of that name
inline constexpr DispId kDispIdValue = 0;     // the default member
inline constexpr DispId kDispIdNewEnum = -4;  // the enumeration member (For Each)

// InvokeFlags: what the caller asks of a member, as bits (numbered as the
// component runtime numbers them, so a bridge passes them through). A read
// may carry kInvokeMethod | kInvokePropertyGet, as script hosts send it.
using InvokeFlags = uint16_t;
inline constexpr InvokeFlags kInvokeMethod = 1;
inline constexpr InvokeFlags kInvokePropertyGet = 2;
inline constexpr InvokeFlags kInvokePropertyPut = 4;     // let: assign a value
inline constexpr InvokeFlags kInvokePropertyPutRef = 8;  // set: assign an object reference

// Arg: one argument of a call.
struct Arg {
  Variant value;
  // missing: the argument was not passed (an omitted optional argument).
  bool missing = false;
  // by_ref: value is the caller's variable; a by-reference parameter writes
  // its final value back into it.
  bool by_ref = false;
  // fixed_type: the caller's variable has exactly value's type (it is not a
  // Variant); a by-reference parameter of another type refuses it.
  bool fixed_type = false;

  static Arg Missing() {
    Arg a;
    a.missing = true;
    return a;
  }
  static Arg Ref(Variant v) {
    Arg a;
    a.value = std::move(v);
    a.by_ref = true;
    return a;
  }
};
using Args = std::vector<Arg>;

// DispatchFailure: which standard case an AutomationError is. A bridge maps
// each to its runtime's code.
enum class DispatchFailure {
  kException,         // the member failed: Number and Description are the system's
  kUnknownName,       // no member of that name
  kMemberNotFound,    // no member with that ID, or it cannot be used that way
  kBadParamCount,     // too many or too few arguments
  kTypeMismatch,      // an argument of a type the parameter cannot take
  kOverflow,          // an argument that does not fit its parameter
  kParamNotOptional,  // a required argument was not passed
};

// Error numbers of the standard dispatch cases, as the runtime numbers them.
inline constexpr int32_t kErrArgumentNotOptional = 449;
inline constexpr int32_t kErrWrongArgumentCount = 450;

class AutomationError : public Error {
 public:
  AutomationError(DispatchFailure failure, int32_t number, std::string description,
                  int32_t arg_position = 0, std::string source = "");
  // The standard cases, with their numbers and texts.
  static AutomationError UnknownName(std::string_view name);
  static AutomationError MemberNotFound();
  static AutomationError BadParamCount();
  static AutomationError TypeMismatch(int32_t arg_position);
  static AutomationError Overflow(int32_t arg_position);
  static AutomationError ParamNotOptional(int32_t arg_position);
  // FromError: a failure of the system carried as it is (number,
  // description, source); a conversion failure of argument arg_position
  // (numbers 13, 6, 94) becomes the matching standard case.
  static AutomationError FromError(const Error& error, int32_t arg_position = 0);

  DispatchFailure Failure() const { return failure_; }
  // ArgPosition: 1-based position of the offending argument, 0 for none.
  int32_t ArgPosition() const { return arg_position_; }

 private:
  DispatchFailure failure_;
  int32_t arg_position_;
};

// DispatchObject: an object reached by member name. Variant's Object kind
// holds it (std::shared_ptr).
class DispatchObject : public Object {
 public:
  // GetIdOfName: the member's dispatch ID, matched without regard to case;
  // kDispIdUnknown when there is none.
  virtual DispId GetIdOfName(std::string_view name) = 0;
  // Invoke calls member id. Throws AutomationError.
  virtual Variant Invoke(DispId id, InvokeFlags flags, std::span<Arg> args) = 0;
  // Table: the member table of one of the system's classes; nullptr for an
  // object of the host.
  virtual const MemberTable* Table() const { return nullptr; }
  // ImplementsInterface: whether the object answers to the interface
  // identity iid ("{...}" in upper case). A host's bridge answers for the
  // host's objects; the system's objects answer for none.
  virtual bool ImplementsInterface(std::string_view /*iid*/) const { return false; }
};

// CallByName: looks name up and invokes it. An unknown name raises
// AutomationError kUnknownName.
Variant CallByName(DispatchObject& object, std::string_view name, InvokeFlags flags,
                   std::span<Arg> args);

// Call, Get, Let, Set: the usual calls with arguments passed by value, for
// C++ hosts and tests. Call invokes a method or reads a property (as a
// script's obj.Name(args) does); Let assigns a value, Set an object.
Variant Call(DispatchObject& object, std::string_view name,
             std::initializer_list<Variant> args = {});
Variant Get(DispatchObject& object, std::string_view name,
            std::initializer_list<Variant> args = {});
void Let(DispatchObject& object, std::string_view name, const Variant& value);
void Set(DispatchObject& object, std::string_view name, const Variant& object_value);

// AsDispatch: the DispatchObject v holds, or nullptr.
std::shared_ptr<DispatchObject> AsDispatch(const Variant& v);

// ValueOf: v itself when it is not an object; otherwise the value of the
// object's default member, followed until it is not an object (x = rs("X")
// in a script). An object without a default member raises AutomationError
// kMemberNotFound; Nothing raises Error 91.
Variant ValueOf(const Variant& v);

// Enumerator: what an enumeration member (kDispIdNewEnum) returns: the
// collection's members as they were when it was made, in order.
class Enumerator : public Object {
 public:
  explicit Enumerator(std::vector<Variant> items) : items_(std::move(items)) {}

  // Next: the next member into item; false at the end.
  bool Next(Variant& item);
  // Skip passes over count members; false when fewer were left.
  bool Skip(uint32_t count);
  void Reset() { next_ = 0; }
  // Clone: an enumerator over the same members at the same place.
  std::shared_ptr<Enumerator> Clone() const;

 private:
  std::vector<Variant> items_;
  size_t next_ = 0;
};

// ValueArray: a two-dimensional array of values as a host receives one
// (GetRows: the first index is the field, the second the row, both from 0).
class ValueArray : public Object {
 public:
  explicit ValueArray(std::vector<std::vector<Variant>> items) : items_(std::move(items)) {}
  // A one-dimensional array (a host's Array("ID", "Name")): Rank 1, its
  // values at (i, 0).
  explicit ValueArray(const std::vector<Variant>& list) : rank_(1) {
    items_.reserve(list.size());
    for (const Variant& v : list)
      items_.push_back({v});
  }
  int Rank() const { return rank_; }
  // Extent: how many indexes dimension (0 or 1) has.
  size_t Extent(int dimension) const {
    if (dimension == 0) return items_.size();
    return items_.empty() ? 0 : items_.front().size();
  }
  const Variant& At(size_t first, size_t second) const { return items_[first][second]; }

 private:
  std::vector<std::vector<Variant>> items_;
  int rank_ = 2;
};

// ValueOrList: a parameter that takes one value or a host's one-dimensional
// array (AddNew's fields and values, GetRows' fields, Seek's key, a command's
// marker values). Every other parameter refuses an array as a type mismatch.
struct ValueOrList {
  Variant value;
};

// ListOf: the values a host passed where a member takes one value or a list
// of them: the items of a one-dimensional array, each read as ValueOf; no
// value for Empty (a left-out argument); else the one value. A
// two-dimensional array is refused as a type mismatch at position.
std::vector<Variant> ListOf(const Variant& v, int32_t position);

}  // namespace kelvary::automation
