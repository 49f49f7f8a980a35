// What the C++ hosts of the component server's tests share: one line per
// check and a count, and late-bound calls by member name through IDispatch
// with their outcome (HRESULT, argument position, description, result).
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// (the platform header first: the others build on it)
#include <ocidl.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

namespace wine_client {

inline int passed = 0;
inline int failed = 0;

inline void Check(bool ok, const char* what) {
  std::printf("%s: %s\n", ok ? "ok" : "FAILED", what);
  ++(ok ? passed : failed);
}

// Arg: a VARIANT the caller owns; call arguments are given in call order.
struct Arg {
  VARIANT v;
  Arg() { VariantInit(&v); }
  Arg(int n) {  // NOLINT: built from literals in the calls below
    VariantInit(&v);
    V_VT(&v) = VT_I4;
    V_I4(&v) = n;
  }
  Arg(const wchar_t* s) {  // NOLINT
    VariantInit(&v);
    V_VT(&v) = VT_BSTR;
    V_BSTR(&v) = SysAllocString(s);
  }
  static Arg Bool(bool b) {
    Arg a;
    V_VT(&a.v) = VT_BOOL;
    V_BOOL(&a.v) = b ? VARIANT_TRUE : VARIANT_FALSE;
    return a;
  }
  static Arg Missing() {  // an optional argument left out
    Arg a;
    V_VT(&a.v) = VT_ERROR;
    V_ERROR(&a.v) = DISP_E_PARAMNOTFOUND;
    return a;
  }
  static Arg Ref(VARIANT* target) {
    Arg a;
    V_VT(&a.v) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&a.v) = target;
    return a;
  }
  Arg(const Arg& other) {
    VariantInit(&v);
    VariantCopy(&v, const_cast<VARIANT*>(&other.v));
  }
  Arg& operator=(const Arg&) = delete;
  ~Arg() { VariantClear(&v); }
};

struct Outcome {
  HRESULT hr = S_OK;
  HRESULT scode = S_OK;  // what the caller sees: the exception's own code for DISP_E_EXCEPTION
  UINT arg_error = ~0u;
  std::wstring description;
  VARIANT result;
  Outcome() { VariantInit(&result); }
  Outcome(const Outcome&) = delete;
  Outcome(Outcome&& o) noexcept
      : hr(o.hr), scode(o.scode), arg_error(o.arg_error), description(o.description) {
    result = o.result;
    VariantInit(&o.result);
  }
  ~Outcome() { VariantClear(&result); }
  long Long() const {
    VARIANT copy;
    VariantInit(&copy);
    if (FAILED(VariantChangeType(&copy, const_cast<VARIANT*>(&result), 0, VT_I4))) return -99999;
    return V_I4(&copy);
  }
  std::wstring Text() const {
    VARIANT copy;
    VariantInit(&copy);
    if (FAILED(VariantChangeType(&copy, const_cast<VARIANT*>(&result), 0, VT_BSTR))) return L"?";
    std::wstring text(V_BSTR(&copy), SysStringLen(V_BSTR(&copy)));
    VariantClear(&copy);
    return text;
  }
};

// CallId: member id invoked with args (call order); a by-reference argument
// is an Arg::Ref to the caller's VARIANT.
inline Outcome CallId(IDispatch* object, DISPID id, WORD flags, std::vector<Arg> args) {
  Outcome out;
  std::vector<VARIANT> reversed(args.size());
  for (size_t i = 0; i < args.size(); ++i)
    reversed[args.size() - 1 - i] = args[i].v;
  DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(args.size()), 0};
  DISPID put = DISPID_PROPERTYPUT;
  if (flags == DISPATCH_PROPERTYPUT) {
    params.rgdispidNamedArgs = &put;
    params.cNamedArgs = 1;
  }
  EXCEPINFO info{};
  out.hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, &out.result, &info,
                          &out.arg_error);
  if (info.bstrDescription) out.description = info.bstrDescription;
  out.scode = out.hr == DISP_E_EXCEPTION ? info.scode : out.hr;
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrHelpFile);
  return out;
}

inline Outcome Call(IDispatch* object, const wchar_t* name, WORD flags, std::vector<Arg> args) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[1] = {const_cast<LPOLESTR>(name)};
  const HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) {
    Outcome out;
    out.hr = out.scode = hr;
    return out;
  }
  return CallId(object, id, flags, std::move(args));
}

inline Outcome Method(IDispatch* o, const wchar_t* name, std::vector<Arg> args = {}) {
  return Call(o, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::move(args));
}
inline void Let(IDispatch* o, const wchar_t* name, Arg value) {
  Outcome out = Call(o, name, DISPATCH_PROPERTYPUT, {value});
  if (FAILED(out.hr)) std::printf("note: setting %ls failed (0x%08lX)\n", name, out.hr);
}

// ClientMain: a client's whole program: COM started, run(MAIN.db, SYSTEM.db),
// COM stopped, and the count printed last ("N passed, M failed"), which the
// CI script reads. Exit 0 only when nothing failed, 2 for a usage error.
inline int ClientMain(int argc, wchar_t** argv, const char* program,
                      int (*run)(const wchar_t* main_db, const wchar_t* system_db)) {
  if (argc < 3) {
    std::printf("usage: %s MAIN.db SYSTEM.db\n0 passed, 1 failed\n", program);
    return 2;
  }
  if (FAILED(CoInitialize(nullptr))) {
    std::printf("CoInitialize failed\n0 passed, 1 failed\n");
    return 2;
  }
  run(argv[1], argv[2]);
  CoFreeUnusedLibraries();
  CoUninitialize();
  std::printf("%d passed, %d failed\n", passed, failed);
  std::fflush(stdout);
  return failed == 0 ? 0 : 1;
}

}  // namespace wine_client
