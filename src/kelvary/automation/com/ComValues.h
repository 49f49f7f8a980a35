// ComValues: the crossing between the component runtime's values (VARIANT,
// BSTR, HRESULT and EXCEPINFO) and the library's own (Variant, std::string,
// AutomationError). Text is UTF-16 on the runtime's side and UTF-8 inside.
//
// Objects cross as dispatch objects: one of ours comes back as the library
// object it wraps, any other as a HostObject the library drives by member
// name (a list control, a date control, an event sink, or something a host
// passed by mistake, which the member then refuses). Going out, a library
// object leaves as its one wrapper (ComDispatch::Wrap), so that `Is` holds.
//
// Everything here runs on the caller's thread; nothing throws across the
// runtime's boundary (the callers catch).
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// (the platform header first: the others build on it)
#include <oaidl.h>
#include <oleauto.h>

#include <string>
#include <string_view>

#include "kelvary/automation/Dispatch.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::com {

std::wstring Widen(std::string_view utf8);
std::string Narrow(const wchar_t* utf16, size_t length);
std::string Narrow(BSTR text);
// NewBstr: a BSTR the caller owns.
BSTR NewBstr(std::string_view utf8);

// FromVariant reads v (a by-reference VARIANT is followed) into a Variant.
// position: the argument's 1-based position, named in the type mismatch
// raised for what the library cannot hold (arrays, records).
Variant FromVariant(const VARIANT& v, int32_t position = 0);
// ToVariant writes value into out, which must be cleared or fresh. Objects
// leave as their wrappers.
void ToVariant(const Variant& value, VARIANT* out);

// ToArgs: the call's arguments in call order, from the runtime's reversed
// list: by-reference VARIANTs are the caller's variables, a missing optional
// argument (VT_ERROR DISP_E_PARAMNOTFOUND) is marked as not passed.
automation::Args ToArgs(const DISPPARAMS& params);
// WriteBack copies the final values of by-reference arguments into the
// caller's variables, converted to their types. A failed conversion raises
// AutomationError kTypeMismatch for that argument.
void WriteBack(const automation::Args& args, const DISPPARAMS& params);

// ErrorToHresult: a failure as the runtime reports it: an HRESULT, the
// EXCEPINFO for the system's own errors, and the argument's index in the
// runtime's reversed list where the failure names one.
HRESULT ErrorToHresult(const automation::AutomationError& error, UINT arg_count, EXCEPINFO* info,
                       UINT* arg_error);
HRESULT ErrorToHresult(const Error& error, EXCEPINFO* info);
// ErrorFromHresult: the reverse, for calls into the host's objects.
automation::AutomationError ErrorFromHresult(HRESULT hr, const EXCEPINFO& info, UINT arg_error,
                                             UINT arg_count);

// The number the runtime's scripting hosts expect for an error the system
// raises with number n (the control facility).
inline HRESULT HresultOfNumber(int32_t n) {
  return static_cast<HRESULT>(0x800A0000u | (static_cast<uint32_t>(n) & 0xFFFFu));
}

}  // namespace kelvary::com
