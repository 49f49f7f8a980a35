// Binding: how a member table is written. ClassBuilder<C> adds members to
// C's table from C++ functions and fields; the parameter list and the
// conversions of each argument follow from the C++ signature:
//
//   bool, int16_t, int32_t, float, double, Date, std::string, an enumeration
//       a value parameter of that automation type (Boolean, Integer, Long,
//       Single, Double, Date, String, Long)
//   Variant                  a Variant; objects pass through unwrapped
//   std::optional<T>         an optional T: omitted gives std::nullopt
//   T& (not const)           a by-reference T, written back after the call
//   T*                       an optional by-reference T: omitted gives nullptr
//   std::shared_ptr<X>       an object of one of the system's classes, or
//                            Nothing; any other object is a type mismatch
//   std::shared_ptr<X>&      the same, by reference
//   ListControl&, const DateControl&
//                            a host's control, driven by member name
//
// A conversion that fails raises the standard type mismatch or overflow
// with the argument's position. Dispatch IDs are given in the order members
// are added, from 1 (the default member takes 0, the enumeration -4): a
// member added later goes at the end of its table, so that the IDs hosts
// have compiled against stay as they are.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/HostObjects.h"
#include "kelvary/automation/MemberTable.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::automation::internal {

// EnumName<E>: the name under which an enumeration appears in the interface
// definition; specialised beside the tables.
template <class E>
struct EnumName {
  static constexpr const char* value = "";
};

template <class T>
struct IsSharedPtr : std::false_type {};
template <class T>
struct IsSharedPtr<std::shared_ptr<T>> : std::true_type {
  using element = T;
};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {
  using element = T;
};

// Converter<T>: one automation type and its conversions.
template <class T>
struct Converter {
  static TypeRef Type() {
    if constexpr (std::is_same_v<T, bool>) {
      return {ValueKind::kBoolean, ""};
    } else if constexpr (std::is_same_v<T, int16_t>) {
      return {ValueKind::kInteger, ""};
    } else if constexpr (std::is_same_v<T, int32_t>) {
      return {ValueKind::kLong, ""};
    } else if constexpr (std::is_same_v<T, float>) {
      return {ValueKind::kSingle, ""};
    } else if constexpr (std::is_same_v<T, double>) {
      return {ValueKind::kDouble, ""};
    } else if constexpr (std::is_same_v<T, Date>) {
      return {ValueKind::kDate, ""};
    } else if constexpr (std::is_same_v<T, std::string>) {
      return {ValueKind::kString, ""};
    } else if constexpr (std::is_same_v<T, Variant> || std::is_same_v<T, ValueOrList>) {
      return {ValueKind::kVariant, ""};
    } else if constexpr (std::is_enum_v<T>) {
      return {ValueKind::kLong, EnumName<T>::value};
    } else if constexpr (IsSharedPtr<T>::value) {
      return {ValueKind::kObject, ClassTraits<typename IsSharedPtr<T>::element>::kName};
    } else {
      static_assert(sizeof(T) == 0, "no automation type for this C++ type");
    }
  }

  // Read: the argument as a T. A host's object where a value is wanted gives
  // its default value, as a script's assignment does.
  static T Read(const Variant& v) {
    // An array goes only where a parameter takes a list.
    if constexpr (!std::is_same_v<T, ValueOrList>) {
      if (v.IsObject() && v.ObjectAs<ValueArray>()) throw Error(kErrTypeMismatch, "Type mismatch");
    }
    if constexpr (std::is_same_v<T, ValueOrList>) {
      return ValueOrList{v};
    } else if constexpr (std::is_same_v<T, Variant>) {
      return FromHost(v);
    } else if constexpr (IsSharedPtr<T>::value) {
      using X = typename IsSharedPtr<T>::element;
      if (v.IsEmpty()) return nullptr;
      if (!v.IsObject()) throw Error(kErrTypeMismatch, "Type mismatch");
      if (!v.ObjectValue()) return nullptr;
      auto native = NativeOf<X>(AsDispatch(v).get());
      if (!native) {
        if constexpr (std::is_base_of_v<Object, X>) {
          // The system's own object handed over without a wrapper.
          if (auto direct = v.ObjectAs<X>()) return direct;
        }
        throw Error(kErrTypeMismatch, "Type mismatch");
      }
      return native;
    } else {
      const Variant& plain = v.IsObject() ? ValueOf(v) : v;
      if constexpr (std::is_same_v<T, bool>) {
        return CBool(plain);
      } else if constexpr (std::is_same_v<T, int16_t>) {
        return CInt(plain);
      } else if constexpr (std::is_same_v<T, int32_t>) {
        return CLng(plain);
      } else if constexpr (std::is_same_v<T, float>) {
        return CSng(plain);
      } else if constexpr (std::is_same_v<T, double>) {
        return CDbl(plain);
      } else if constexpr (std::is_same_v<T, Date>) {
        return CDate(plain);
      } else if constexpr (std::is_same_v<T, std::string>) {
        return CStr(plain);
      } else if constexpr (std::is_enum_v<T>) {
        return static_cast<T>(CLng(plain));
      }
    }
  }

  static Variant Write(const T& value) {
    if constexpr (std::is_same_v<T, Variant>) {
      return ToHost(value);
    } else if constexpr (IsSharedPtr<T>::value) {
      auto wrapper = Wrap(value);
      return Variant(std::shared_ptr<Object>(std::move(wrapper)));
    } else if constexpr (std::is_enum_v<T>) {
      return Variant(static_cast<int32_t>(value));
    } else {
      return Variant(value);
    }
  }

  // The Variant kind a typed variable of T holds, for by-reference checks;
  // vbEmpty when any kind will do.
  static VariantType Kind() {
    if constexpr (std::is_same_v<T, bool>) {
      return vbBoolean;
    } else if constexpr (std::is_same_v<T, int16_t>) {
      return vbInteger;
    } else if constexpr (std::is_same_v<T, int32_t> || std::is_enum_v<T>) {
      return vbLong;
    } else if constexpr (std::is_same_v<T, float>) {
      return vbSingle;
    } else if constexpr (std::is_same_v<T, double>) {
      return vbDouble;
    } else if constexpr (std::is_same_v<T, Date>) {
      return vbDate;
    } else if constexpr (std::is_same_v<T, std::string>) {
      return vbString;
    } else if constexpr (IsSharedPtr<T>::value) {
      return vbObject;
    } else {
      return vbEmpty;
    }
  }
};

// ReadArg: args[position - 1] as a T, failures carried with the position.
template <class T>
T ReadArg(const Arg& arg, int32_t position) {
  try {
    return Converter<T>::Read(arg.value);
  } catch (const AutomationError&) {
    throw;
  } catch (const Error& e) {
    throw AutomationError::FromError(e, position);
  }
}

// CheckByRefKind: a typed variable passed by reference must be of the
// parameter's own type.
template <class T>
void CheckByRefKind(const Arg& arg, int32_t position) {
  const VariantType kind = Converter<T>::Kind();
  if (arg.by_ref && arg.fixed_type && kind != vbEmpty && arg.value.Type() != kind) {
    throw AutomationError::TypeMismatch(position);
  }
}

// Slot<P>: one argument prepared for a C++ parameter of type P, and what is
// written back afterwards.
template <class P, class Enable = void>
struct Slot {
  using T = std::remove_cvref_t<P>;
  static constexpr bool kOptional = false;
  static constexpr bool kByRef =
      std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;
  static TypeRef Type() { return Converter<T>::Type(); }

  Slot(Arg& arg, int32_t position) : arg_(&arg) {
    if constexpr (kByRef) CheckByRefKind<T>(arg, position);
    value_ = ReadArg<T>(arg, position);
  }
  T& Get() { return value_; }
  void WriteBack() {
    if constexpr (kByRef) {
      if (arg_->by_ref) arg_->value = Converter<T>::Write(value_);
    }
  }

  Arg* arg_;
  T value_{};
};

template <class P>
struct Slot<P, std::enable_if_t<IsOptional<std::remove_cvref_t<P>>::value>> {
  using T = typename IsOptional<std::remove_cvref_t<P>>::element;
  static constexpr bool kOptional = true;
  static constexpr bool kByRef = false;
  static TypeRef Type() { return Converter<T>::Type(); }

  Slot(Arg& arg, int32_t position) {
    if (!arg.missing) value_ = ReadArg<T>(arg, position);
  }
  std::optional<T>& Get() { return value_; }
  void WriteBack() {}

  std::optional<T> value_;
};

template <class P>
struct Slot<P,
            std::enable_if_t<std::is_pointer_v<P> && !std::is_const_v<std::remove_pointer_t<P>>>> {
  using T = std::remove_pointer_t<P>;
  static constexpr bool kOptional = true;
  static constexpr bool kByRef = true;
  static TypeRef Type() { return Converter<T>::Type(); }

  Slot(Arg& arg, int32_t position) : arg_(&arg) {
    if (arg.missing) return;
    CheckByRefKind<T>(arg, position);
    value_ = ReadArg<T>(arg, position);
  }
  T* Get() { return value_ ? &*value_ : nullptr; }
  void WriteBack() {
    if (value_ && arg_->by_ref) arg_->value = Converter<T>::Write(*value_);
  }

  Arg* arg_;
  std::optional<T> value_;
};

// A host's list control and date control.
std::shared_ptr<DispatchObject> ControlArg(const Arg& arg, int32_t position);

template <>
struct Slot<ListControl&> {
  static constexpr bool kOptional = false;
  static constexpr bool kByRef = false;
  static TypeRef Type() { return {ValueKind::kObject, ""}; }
  Slot(Arg& arg, int32_t position) : control_(ControlArg(arg, position)) {}
  ListControl& Get() { return control_; }
  void WriteBack() {}
  DispatchListControl control_;
};

template <>
struct Slot<const DateControl&> {
  static constexpr bool kOptional = false;
  static constexpr bool kByRef = false;
  static TypeRef Type() { return {ValueKind::kObject, ""}; }
  Slot(Arg& arg, int32_t position) : control_(ControlArg(arg, position)) {}
  const DateControl& Get() { return control_; }
  void WriteBack() {}
  DispatchDateControl control_;
};

// FunctionTraits: the class, result and parameters of a member function
// pointer or of a function taking the object first.
template <class F>
struct FunctionTraits;
template <class C, class R, class... P>
struct FunctionTraits<R (C::*)(P...)> {
  using Class = C;
  using Result = R;
  using Params = std::tuple<P...>;
};
template <class C, class R, class... P>
struct FunctionTraits<R (C::*)(P...) const> {
  using Class = C;
  using Result = R;
  using Params = std::tuple<P...>;
};
template <class C, class R, class... P>
struct FunctionTraits<R (*)(C&, P...)> {
  using Class = C;
  using Result = R;
  using Params = std::tuple<P...>;
};

template <class R>
TypeRef ResultType() {
  using T = std::remove_cvref_t<R>;
  if constexpr (std::is_void_v<T>) {
    return {ValueKind::kVoid, ""};
  } else if constexpr (std::is_same_v<T, std::shared_ptr<Enumerator>>) {
    return {ValueKind::kEnumerator, ""};
  } else {
    return Converter<T>::Type();
  }
}

template <class R>
Variant ResultValue(R&& r) {
  using T = std::remove_cvref_t<R>;
  if constexpr (std::is_same_v<T, std::shared_ptr<Enumerator>>) {
    return Variant(std::shared_ptr<Object>(r));
  } else {
    return Converter<T>::Write(r);
  }
}

template <class F, class C, class... P, size_t... I>
Variant CallWithSlots(F fn, C& object, [[maybe_unused]] std::span<Arg> args,
                      std::index_sequence<I...>) {
  std::tuple<Slot<P>...> slots{Slot<P>(args[I], static_cast<int32_t>(I + 1))...};
  using R = typename FunctionTraits<F>::Result;
  Variant result;
  if constexpr (std::is_void_v<R>) {
    std::invoke(fn, object, std::get<I>(slots).Get()...);
  } else {
    result = ResultValue(std::invoke(fn, object, std::get<I>(slots).Get()...));
  }
  (std::get<I>(slots).WriteBack(), ...);
  return result;
}

template <class F, class C, class Tuple>
struct Caller;
template <class F, class C, class... P>
struct Caller<F, C, std::tuple<P...>> {
  static Variant Call(F fn, C& object, std::span<Arg> args) {
    return CallWithSlots<F, C, P...>(fn, object, args, std::index_sequence_for<P...>{});
  }
  static std::vector<ParamInfo> Params(const std::vector<std::string>& names) {
    std::vector<ParamInfo> params{
        ParamInfo{"", Slot<P>::Type(), Slot<P>::kOptional, Slot<P>::kByRef}...};
    for (size_t i = 0; i < params.size(); ++i) {
      params[i].name = i < names.size() ? names[i] : "Arg" + std::to_string(i + 1);
    }
    return params;
  }
};

template <class C>
C& NativeSelf(DispatchObject& self) {
  return static_cast<NativeDispatch<C>&>(self).Native();
}

// ClassBuilder<C>: adds C's members to its table in interface order.
template <class C>
class ClassBuilder {
 public:
  explicit ClassBuilder(MemberTable& table) : table_(table) {}

  // Method: a method; fn is a member function of C or a function taking C&
  // first. id: kDispIdValue for the default member, otherwise the next ID.
  template <class F>
  void Method(std::string name, F fn, std::vector<std::string> param_names = {},
              std::optional<DispId> id = std::nullopt) {
    Add(std::move(name), kInvokeMethod, fn, param_names, id);
  }

  // Getter: a read-only property.
  template <class F>
  void Getter(std::string name, F fn, std::vector<std::string> param_names = {},
              std::optional<DispId> id = std::nullopt) {
    Add(std::move(name), kInvokePropertyGet, fn, param_names, id);
  }

  // Property: a read/write property from a getter taking no argument and a
  // setter taking the new value. An object property is set (by reference),
  // any other is let.
  template <class G, class S>
  void Property(std::string name, G getter, S setter, std::optional<DispId> id = std::nullopt) {
    using Traits = FunctionTraits<G>;
    using R = std::remove_cvref_t<typename Traits::Result>;
    using SetterParams = typename FunctionTraits<S>::Params;
    using V = std::remove_cvref_t<std::tuple_element_t<0, SetterParams>>;
    constexpr bool is_object = IsSharedPtr<R>::value;
    MemberInfo m;
    m.name = std::move(name);
    m.id = NextId(id);
    m.kinds = kInvokePropertyGet | (is_object ? kInvokePropertyPutRef : kInvokePropertyPut);
    m.result = ResultType<R>();
    m.invoke = [getter, setter](DispatchObject& self, InvokeFlags kind,
                                std::span<Arg> args) -> Variant {
      C& object = NativeSelf<C>(self);
      if (kind == kInvokePropertyGet) return ResultValue(std::invoke(getter, object));
      std::invoke(setter, object, ReadArg<V>(args[0], 1));
      return Variant();
    };
    table_.Add(std::move(m));
  }

  // Field: a read/write property over a public field of C. A Variant field
  // takes a let (a value; an object gives its default value) and a set (an
  // object reference); an object field takes a set only.
  template <class V>
  void Field(std::string name, V C::*field, std::optional<DispId> id = std::nullopt) {
    MemberInfo m;
    m.name = std::move(name);
    m.id = NextId(id);
    if constexpr (std::is_same_v<V, Variant>) {
      m.kinds = kInvokePropertyGet | kInvokePropertyPut | kInvokePropertyPutRef;
    } else if constexpr (IsSharedPtr<V>::value) {
      m.kinds = kInvokePropertyGet | kInvokePropertyPutRef;
    } else {
      m.kinds = kInvokePropertyGet | kInvokePropertyPut;
    }
    m.result = Converter<V>::Type();
    m.invoke = [field](DispatchObject& self, InvokeFlags kind, std::span<Arg> args) -> Variant {
      C& object = NativeSelf<C>(self);
      if (kind == kInvokePropertyGet) return Converter<V>::Write(object.*field);
      if constexpr (std::is_same_v<V, Variant>) {
        const Variant& given = args[0].value;
        if (kind == kInvokePropertyPutRef) {
          if (!given.IsObject()) throw AutomationError::TypeMismatch(1);
          object.*field = FromHost(given);
        } else {
          object.*field = given.IsObject() ? FromHost(ValueOf(given)) : given;
        }
      } else {
        object.*field = ReadArg<V>(args[0], 1);
      }
      return Variant();
    };
    table_.Add(std::move(m));
  }

  // Raw: a member written out by hand, for the few whose rules no signature
  // carries.
  void Raw(MemberInfo m, std::optional<DispId> id = std::nullopt) {
    m.id = NextId(id);
    table_.Add(std::move(m));
  }

  // Event: an event of the class, in dispatch order.
  void Event(std::string name, std::vector<ParamInfo> params) {
    table_.AddEvent(std::move(name), std::move(params));
  }

  MemberTable& Table() { return table_; }

 private:
  template <class F>
  void Add(std::string name, InvokeFlags kind, F fn, const std::vector<std::string>& param_names,
           std::optional<DispId> id) {
    using Traits = FunctionTraits<F>;
    using Params = typename Traits::Params;
    using Call = Caller<F, typename Traits::Class, Params>;
    MemberInfo m;
    m.name = std::move(name);
    m.id = NextId(id);
    m.kinds = kind;
    m.params = Call::Params(param_names);
    m.result = ResultType<typename Traits::Result>();
    m.hidden = m.id == kDispIdNewEnum;
    m.invoke = [fn](DispatchObject& self, InvokeFlags, std::span<Arg> args) -> Variant {
      return Call::Call(fn, NativeSelf<C>(self), args);
    };
    table_.Add(std::move(m));
  }

  DispId NextId(std::optional<DispId> id) {
    if (id) return *id;
    return ++last_id_;
  }

  MemberTable& table_;
  DispId last_id_ = 0;
};

}  // namespace kelvary::automation::internal
