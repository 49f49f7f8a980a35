// DualFace: the vtable side of a dual interface. A host that binds early
// (through the type library) calls an interface's entries directly instead
// of IDispatch::Invoke; each entry of the generated DualInterfaces.cpp packs
// its typed arguments into VARIANTs (a by-reference parameter as a reference
// to the caller's variable) and makes the same call a late-bound host makes,
// by dispatch ID, through ComDispatch::CallEarly. Results, errors and
// by-reference write-back are therefore those of late binding; only the
// error's way out differs: the HRESULT, with the description in the thread's
// error object (IErrorInfo) instead of an EXCEPINFO.
//
// A face has no identity and no count of its own: its IUnknown and IDispatch
// are its owner's, and it lives as long as its owner does.
#pragma once

#include <initializer_list>

#include "kelvary/automation/com/ComObjects.h"
// The interfaces as the type library compiler declares them from the
// checked-in definition (generated into the build folder).
#include "KelvaryInterfaces.h"

namespace kelvary::com {

// Result: where an entry's [out, retval] value goes, and its type (iid for
// an interface pointer). An entry without one passes Result{}.
struct Result {
  VARTYPE type = VT_EMPTY;
  void* where = nullptr;
  const IID* iid = nullptr;
};

template <VARTYPE T, class V>
Result Out(V* where) {
  if constexpr (T == VT_DISPATCH) {
    return Result{T, where, &IID_IDispatch};
  } else if constexpr (T == VT_UNKNOWN) {
    return Result{T, where, &IID_IUnknown};
  } else {
    return Result{T, where, nullptr};
  }
}

// OutObject: an interface pointer of the library's own interface I.
template <class I>
Result OutObject(I** where) {
  return Result{VT_DISPATCH, where, &__uuidof(I)};
}

// In: an argument passed by value, tagged with its type (VARIANT_BOOL and
// short are one C++ type, so the tag is spelled out). The VARIANT borrows the
// caller's value: nothing here is freed.
template <VARTYPE T, class V>
VARIANT In(V value) {
  if constexpr (T == VT_VARIANT) {
    return value;
  } else {
    VARIANT v;
    VariantInit(&v);
    V_VT(&v) = T;
    if constexpr (T == VT_BOOL) {
      V_BOOL(&v) = value;
    } else if constexpr (T == VT_I2) {
      V_I2(&v) = value;
    } else if constexpr (T == VT_I4) {
      V_I4(&v) = value;
    } else if constexpr (T == VT_R4) {
      V_R4(&v) = value;
    } else if constexpr (T == VT_R8) {
      V_R8(&v) = value;
    } else if constexpr (T == VT_CY) {
      V_CY(&v) = value;
    } else if constexpr (T == VT_DATE) {
      V_DATE(&v) = value;
    } else if constexpr (T == VT_BSTR) {
      V_BSTR(&v) = value;
    } else if constexpr (T == VT_DISPATCH) {
      V_DISPATCH(&v) = value;
    } else {
      static_assert(T == VT_UNKNOWN, "no such argument type");
      V_UNKNOWN(&v) = value;
    }
    return v;
  }
}

// Ref: a by-reference argument, the caller's variable of type T.
template <VARTYPE T, class V>
VARIANT Ref(V* where) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = static_cast<VARTYPE>(T | VT_BYREF);
  V_BYREF(&v) = where;
  return v;
}

// OptionalRef: an optional by-reference VARIANT; a null pointer or one that
// holds the "not passed" marker is an omitted argument.
VARIANT OptionalRef(VARIANT* where);

class DualBase {
 public:
  explicit DualBase(ComDispatch* owner) : owner_(owner) {}
  virtual ~DualBase() = default;
  DualBase(const DualBase&) = delete;
  DualBase& operator=(const DualBase&) = delete;

  // Face: the interface pointer hosts hold.
  virtual IDispatch* Face() = 0;

 protected:
  HRESULT Method(DISPID id, const Result& out, std::initializer_list<VARIANT> args) {
    return owner_->CallEarly(id, DISPATCH_METHOD, args, out);
  }
  HRESULT Get(DISPID id, const Result& out, std::initializer_list<VARIANT> args) {
    return owner_->CallEarly(id, DISPATCH_PROPERTYGET, args, out);
  }
  HRESULT Put(DISPID id, const Result& out, std::initializer_list<VARIANT> args) {
    return owner_->CallEarly(id, DISPATCH_PROPERTYPUT, args, out);
  }
  HRESULT PutRef(DISPID id, const Result& out, std::initializer_list<VARIANT> args) {
    return owner_->CallEarly(id, DISPATCH_PROPERTYPUTREF, args, out);
  }

  ComDispatch* owner_;
};

template <class Interface>
class DualFace : public Interface, public DualBase {
 public:
  explicit DualFace(ComDispatch* owner) : DualBase(owner) {}

  IDispatch* Face() override { return this; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    return owner_->QueryInterface(riid, out);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_->AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_->Release(); }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    return owner_->GetTypeInfoCount(count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override {
    return owner_->GetTypeInfo(index, lcid, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override {
    return owner_->GetIDsOfNames(riid, names, count, lcid, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                                   UINT* arg_error) override {
    return owner_->Invoke(id, riid, lcid, flags, params, result, info, arg_error);
  }
};

}  // namespace kelvary::com
