#include "kelvary/automation/Dispatch.h"

#include <utility>

namespace kelvary::automation {

AutomationError::AutomationError(DispatchFailure failure, int32_t number, std::string description,
                                 int32_t arg_position, std::string source)
    : Error(number, std::move(description), std::move(source)),
      failure_(failure),
      arg_position_(arg_position) {}

AutomationError AutomationError::UnknownName(std::string_view name) {
  (void)name;  // the runtime's text names no member; the caller knows which it asked for
  return AutomationError(DispatchFailure::kUnknownName, kErrObjectDoesntSupportMember,
                         "Object doesn't support this property or method");
}

AutomationError AutomationError::MemberNotFound() {
  return AutomationError(DispatchFailure::kMemberNotFound, kErrObjectDoesntSupportMember,
                         "Object doesn't support this property or method");
}

AutomationError AutomationError::BadParamCount() {
  return AutomationError(DispatchFailure::kBadParamCount, kErrWrongArgumentCount,
                         "Wrong number of arguments or invalid property assignment");
}

AutomationError AutomationError::TypeMismatch(int32_t arg_position) {
  return AutomationError(DispatchFailure::kTypeMismatch, kErrTypeMismatch, "Type mismatch",
                         arg_position);
}

AutomationError AutomationError::Overflow(int32_t arg_position) {
  return AutomationError(DispatchFailure::kOverflow, kErrOverflow, "Overflow", arg_position);
}

AutomationError AutomationError::ParamNotOptional(int32_t arg_position) {
  return AutomationError(DispatchFailure::kParamNotOptional, kErrArgumentNotOptional,
                         "Argument not optional", arg_position);
}

AutomationError AutomationError::FromError(const Error& error, int32_t arg_position) {
  if (const auto* already = dynamic_cast<const AutomationError*>(&error)) {
    return *already;
  }
  if (arg_position > 0) {
    switch (error.Number()) {
      case kErrTypeMismatch:
      case kErrInvalidUseOfNull:
      case kErrObjectRequired:
        return TypeMismatch(arg_position);
      case kErrOverflow:
        return Overflow(arg_position);
      default:
        break;
    }
  }
  return AutomationError(DispatchFailure::kException, error.Number(), error.Description(),
                         arg_position, error.Source());
}

Variant CallByName(DispatchObject& object, std::string_view name, InvokeFlags flags,
                   std::span<Arg> args) {
  const DispId id = object.GetIdOfName(name);
  if (id == kDispIdUnknown) throw AutomationError::UnknownName(name);
  return object.Invoke(id, flags, args);
}

namespace {
Args ByValue(std::initializer_list<Variant> values) {
  Args args;
  args.reserve(values.size());
  for (const Variant& v : values)
    args.push_back(Arg{v});
  return args;
}
}  // namespace

Variant Call(DispatchObject& object, std::string_view name, std::initializer_list<Variant> args) {
  Args a = ByValue(args);
  return CallByName(object, name, kInvokeMethod | kInvokePropertyGet, a);
}

Variant Get(DispatchObject& object, std::string_view name, std::initializer_list<Variant> args) {
  Args a = ByValue(args);
  return CallByName(object, name, kInvokePropertyGet, a);
}

void Let(DispatchObject& object, std::string_view name, const Variant& value) {
  Args a{Arg{value}};
  CallByName(object, name, kInvokePropertyPut, a);
}

void Set(DispatchObject& object, std::string_view name, const Variant& object_value) {
  Args a{Arg{object_value}};
  CallByName(object, name, kInvokePropertyPutRef, a);
}

std::shared_ptr<DispatchObject> AsDispatch(const Variant& v) {
  return v.ObjectAs<DispatchObject>();
}

Variant ValueOf(const Variant& v) {
  Variant current = v;
  // A default member that hands back its own object would loop; no class of
  // the system does, and a host's object is given a generous bound.
  for (int hops = 0; current.IsObject(); ++hops) {
    auto object = AsDispatch(current);
    if (!object) {
      if (!current.ObjectValue()) {
        throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set");
      }
      throw AutomationError::MemberNotFound();
    }
    if (hops == 16) throw AutomationError::MemberNotFound();
    Args none;
    current = object->Invoke(kDispIdValue, kInvokePropertyGet | kInvokeMethod, none);
  }
  return current;
}

std::vector<Variant> ListOf(const Variant& v, int32_t position) {
  if (auto array = v.ObjectAs<ValueArray>()) {
    if (array->Rank() != 1) throw AutomationError::TypeMismatch(position);
    std::vector<Variant> items;
    items.reserve(array->Extent(0));
    for (size_t i = 0; i < array->Extent(0); ++i)
      items.push_back(ValueOf(array->At(i, 0)));
    return items;
  }
  Variant value = ValueOf(v);
  if (value.IsEmpty()) return {};
  return {std::move(value)};
}

bool Enumerator::Next(Variant& item) {
  if (next_ >= items_.size()) return false;
  item = items_[next_++];
  return true;
}

bool Enumerator::Skip(uint32_t count) {
  const size_t left = items_.size() - next_;
  if (count > left) {
    next_ = items_.size();
    return false;
  }
  next_ += count;
  return true;
}

std::shared_ptr<Enumerator> Enumerator::Clone() const {
  auto copy = std::make_shared<Enumerator>(items_);
  copy->next_ = next_;
  return copy;
}

}  // namespace kelvary::automation
