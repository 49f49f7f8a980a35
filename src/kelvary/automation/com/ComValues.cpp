#include "kelvary/automation/com/ComValues.h"

#include <limits>
#include <utility>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/com/ComObjects.h"

namespace kelvary::com {

using automation::AutomationError;
using automation::DispatchFailure;

std::wstring Widen(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int n =
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring out(static_cast<size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
  return out;
}

std::string Narrow(const wchar_t* utf16, size_t length) {
  if (utf16 == nullptr || length == 0) return {};
  const int n = WideCharToMultiByte(CP_UTF8, 0, utf16, static_cast<int>(length), nullptr, 0,
                                    nullptr, nullptr);
  std::string out(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, utf16, static_cast<int>(length), out.data(), n, nullptr, nullptr);
  return out;
}

std::string Narrow(BSTR text) {
  return Narrow(text, text ? SysStringLen(text) : 0);
}

BSTR NewBstr(std::string_view utf8) {
  const std::wstring wide = Widen(utf8);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

namespace {

Variant ObjectIn(IUnknown* unknown) {
  if (unknown == nullptr) return Variant(std::shared_ptr<Object>());
  if (auto ours = ComDispatch::Unwrap(unknown)) return Variant(std::move(ours));
  IDispatch* dispatch = nullptr;
  if (FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch))) ||
      dispatch == nullptr) {
    throw AutomationError::TypeMismatch(0);
  }
  auto host = std::make_shared<HostObject>(dispatch);
  dispatch->Release();
  return Variant(std::shared_ptr<automation::DispatchObject>(std::move(host)));
}

// ListIn: a host's one-dimensional array (a script's Array(...), or a typed
// array of a compiled host) as a list; another number of dimensions is a
// type mismatch.
Variant ListIn(SAFEARRAY* array, VARTYPE element, int32_t position) {
  switch (element) {
    case VT_VARIANT:
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_I8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BOOL:
    case VT_BSTR:
    case VT_ERROR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      break;
    default:  // decimals and records do not fit the slot below
      throw AutomationError::TypeMismatch(position);
  }
  if (array == nullptr || SafeArrayGetDim(array) != 1)
    throw AutomationError::TypeMismatch(position);
  LONG low = 0, high = -1;
  SafeArrayGetLBound(array, 1, &low);
  SafeArrayGetUBound(array, 1, &high);
  std::vector<Variant> items;
  for (LONG i = low; i <= high; ++i) {
    VARIANT item;
    VariantInit(&item);
    // Every element type sits at the start of a VARIANT's value, so one
    // VARIANT of the element's type receives any of them.
    void* slot = element == VT_VARIANT ? static_cast<void*>(&item) : &V_I8(&item);
    if (FAILED(SafeArrayGetElement(array, &i, slot))) throw AutomationError::TypeMismatch(position);
    if (element != VT_VARIANT) V_VT(&item) = element;
    try {
      items.push_back(FromVariant(item, position));
    } catch (...) {
      VariantClear(&item);
      throw;
    }
    VariantClear(&item);
  }
  return Variant(std::make_shared<automation::ValueArray>(items));
}

}  // namespace

Variant FromVariant(const VARIANT& v, int32_t position) {
  const VARTYPE type = V_VT(&v);
  const bool by_ref = (type & VT_BYREF) != 0;
  const VARTYPE base = type & ~VT_BYREF;
  if (by_ref && base == VT_VARIANT) {
    if (V_VARIANTREF(&v) == nullptr) return Variant();
    return FromVariant(*V_VARIANTREF(&v), position);
  }
  if ((base & VT_ARRAY) != 0 && (base & VT_VECTOR) == 0) {
    return ListIn(by_ref ? *V_ARRAYREF(&v) : V_ARRAY(&v), base & ~VT_ARRAY, position);
  }
  if ((base & (VT_ARRAY | VT_VECTOR)) != 0) throw AutomationError::TypeMismatch(position);
#define KV_GET(field, reffield) (by_ref ? *V_##reffield(&v) : V_##field(&v))
  switch (base) {
    case VT_EMPTY:
      return Variant();
    case VT_NULL:
      return Variant::Null();
    case VT_I1:
      return Variant(static_cast<int16_t>(KV_GET(I1, I1REF)));
    case VT_UI1:
      return Variant(static_cast<int16_t>(KV_GET(UI1, UI1REF)));
    case VT_I2:
      return Variant(static_cast<int16_t>(KV_GET(I2, I2REF)));
    case VT_UI2:
      return Variant(static_cast<int32_t>(KV_GET(UI2, UI2REF)));
    case VT_I4:
      return Variant(static_cast<int32_t>(KV_GET(I4, I4REF)));
    case VT_INT:
      return Variant(static_cast<int32_t>(KV_GET(INT, INTREF)));
    case VT_UI4:
      return Variant(static_cast<int64_t>(KV_GET(UI4, UI4REF)));
    case VT_UINT:
      return Variant(static_cast<int64_t>(KV_GET(UINT, UINTREF)));
    case VT_I8:
      return Variant(static_cast<int64_t>(KV_GET(I8, I8REF)));
    case VT_R4:
      return Variant(static_cast<float>(KV_GET(R4, R4REF)));
    case VT_R8:
      return Variant(static_cast<double>(KV_GET(R8, R8REF)));
    case VT_CY:
      return Variant(Currency{KV_GET(CY, CYREF).int64});
    case VT_DATE:
      return Variant(Date(KV_GET(DATE, DATEREF)));
    case VT_BOOL:
      return Variant(KV_GET(BOOL, BOOLREF) != VARIANT_FALSE);
    case VT_BSTR:
      return Variant(Narrow(KV_GET(BSTR, BSTRREF)));
    case VT_DECIMAL: {
      VARIANT as_double;
      VariantInit(&as_double);
      if (FAILED(VariantChangeType(&as_double, const_cast<VARIANT*>(&v), 0, VT_R8)))
        throw AutomationError::Overflow(position);
      return Variant(V_R8(&as_double));
    }
    case VT_ERROR:
      // A missing optional argument reads as the error value itself.
      return Variant(static_cast<int32_t>(KV_GET(ERROR, ERRORREF)));
    case VT_DISPATCH:
      return ObjectIn(KV_GET(DISPATCH, DISPATCHREF));
    case VT_UNKNOWN:
      return ObjectIn(KV_GET(UNKNOWN, UNKNOWNREF));
    default:
      throw AutomationError::TypeMismatch(position);
  }
#undef KV_GET
}

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  switch (value.Type()) {
    case vbEmpty:
      return;
    case vbNull:
      V_VT(out) = VT_NULL;
      return;
    case vbBoolean:
      V_VT(out) = VT_BOOL;
      V_BOOL(out) = *value.Get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
      return;
    case vbInteger:
      V_VT(out) = VT_I2;
      V_I2(out) = *value.Get<int16_t>();
      return;
    case vbLong:
      V_VT(out) = VT_I4;
      V_I4(out) = *value.Get<int32_t>();
      return;
    case vbLongLong: {
      // Script hosts know no 64-bit integer: a value that fits leaves as a
      // Long, a larger one as a Double.
      const int64_t n = *value.Get<int64_t>();
      if (n >= std::numeric_limits<int32_t>::min() && n <= std::numeric_limits<int32_t>::max()) {
        V_VT(out) = VT_I4;
        V_I4(out) = static_cast<int32_t>(n);
      } else {
        V_VT(out) = VT_R8;
        V_R8(out) = static_cast<double>(n);
      }
      return;
    }
    case vbSingle:
      V_VT(out) = VT_R4;
      V_R4(out) = *value.Get<float>();
      return;
    case vbDouble:
      V_VT(out) = VT_R8;
      V_R8(out) = *value.Get<double>();
      return;
    case vbCurrency:
      V_VT(out) = VT_CY;
      V_CY(out).int64 = value.Get<Currency>()->scaled;
      return;
    case vbDate:
      V_VT(out) = VT_DATE;
      V_DATE(out) = value.Get<Date>()->Serial();
      return;
    case vbString:
      V_VT(out) = VT_BSTR;
      V_BSTR(out) = NewBstr(value.Text());
      return;
    case vbObject:
      break;
  }
  const std::shared_ptr<Object> object = value.ObjectValue();
  if (object == nullptr) {
    V_VT(out) = VT_DISPATCH;
    V_DISPATCH(out) = nullptr;
    return;
  }
  if (auto items = std::dynamic_pointer_cast<automation::Enumerator>(object)) {
    V_VT(out) = VT_UNKNOWN;
    V_UNKNOWN(out) = MakeEnumerator(std::move(items));
    return;
  }
  if (auto array = std::dynamic_pointer_cast<automation::ValueArray>(object)) {
    // An array of VARIANTs of the array's rank; the first index varies
    // fastest.
    const size_t first = array->Extent(0), second = array->Extent(1);
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(first), 0}, {static_cast<ULONG>(second), 0}};
    SAFEARRAY* items = SafeArrayCreate(VT_VARIANT, static_cast<UINT>(array->Rank()), bounds);
    VARIANT* cells = nullptr;
    if (items == nullptr || FAILED(SafeArrayAccessData(items, reinterpret_cast<void**>(&cells)))) {
      if (items != nullptr) SafeArrayDestroy(items);
      throw automation::AutomationError(automation::DispatchFailure::kException, 7,
                                        "Out of memory");
    }
    try {
      for (size_t j = 0; j < second; ++j) {
        for (size_t i = 0; i < first; ++i)
          ToVariant(array->At(i, j), &cells[i + j * first]);
      }
    } catch (...) {
      SafeArrayUnaccessData(items);
      SafeArrayDestroy(items);
      throw;
    }
    SafeArrayUnaccessData(items);
    V_VT(out) = VT_ARRAY | VT_VARIANT;
    V_ARRAY(out) = items;
    return;
  }
  if (auto host = std::dynamic_pointer_cast<HostObject>(object)) {
    V_VT(out) = VT_DISPATCH;
    V_DISPATCH(out) = host->Dispatch();
    V_DISPATCH(out)->AddRef();
    return;
  }
  if (auto ours = std::dynamic_pointer_cast<automation::DispatchObject>(object)) {
    V_VT(out) = VT_DISPATCH;
    V_DISPATCH(out) = ComDispatch::Wrap(ours);
    return;
  }
  // A library object that is not wrapped yet (a recordset, a connection)
  // leaves as its one wrapper; one without a dispatch face cannot leave.
  const Variant wrapped = automation::ToHost(value);
  if (auto ours = wrapped.ObjectAs<automation::DispatchObject>()) {
    V_VT(out) = VT_DISPATCH;
    V_DISPATCH(out) = ComDispatch::Wrap(ours);
    return;
  }
  throw AutomationError::TypeMismatch(0);
}

automation::Args ToArgs(const DISPPARAMS& params) {
  automation::Args args;
  args.reserve(params.cArgs);
  for (UINT i = params.cArgs; i-- > 0;) {
    const VARIANT& v = params.rgvarg[i];
    const int32_t position = static_cast<int32_t>(params.cArgs - i);
    automation::Arg arg;
    const VARTYPE base = V_VT(&v) & ~VT_BYREF;
    if (V_VT(&v) == VT_ERROR && V_ERROR(&v) == DISP_E_PARAMNOTFOUND) {
      arg.missing = true;
    } else {
      arg.value = FromVariant(v, position);
      arg.by_ref = (V_VT(&v) & VT_BYREF) != 0;
      arg.fixed_type = arg.by_ref && base != VT_VARIANT;
    }
    args.push_back(std::move(arg));
  }
  return args;
}

namespace {

// Store: the value into a typed by-reference slot, converted to its type.
bool Store(const Variant& value, VARIANT& slot) {
  const VARTYPE base = V_VT(&slot) & ~VT_BYREF;
  if (base == VT_VARIANT) {
    VARIANT* target = V_VARIANTREF(&slot);
    if (target == nullptr) return true;
    VARIANT fresh;
    ToVariant(value, &fresh);
    VariantClear(target);
    *target = fresh;  // the fresh value's ownership moves into the caller's variable
    return true;
  }
  VARIANT fresh;
  ToVariant(value, &fresh);
  if (V_VT(&fresh) != base && FAILED(VariantChangeType(&fresh, &fresh, 0, base))) {
    VariantClear(&fresh);
    return false;
  }
  switch (base) {
    case VT_I1:
      *V_I1REF(&slot) = V_I1(&fresh);
      break;
    case VT_UI1:
      *V_UI1REF(&slot) = V_UI1(&fresh);
      break;
    case VT_I2:
      *V_I2REF(&slot) = V_I2(&fresh);
      break;
    case VT_UI2:
      *V_UI2REF(&slot) = V_UI2(&fresh);
      break;
    case VT_I4:
      *V_I4REF(&slot) = V_I4(&fresh);
      break;
    case VT_UI4:
      *V_UI4REF(&slot) = V_UI4(&fresh);
      break;
    case VT_INT:
      *V_INTREF(&slot) = V_INT(&fresh);
      break;
    case VT_UINT:
      *V_UINTREF(&slot) = V_UINT(&fresh);
      break;
    case VT_I8:
      *V_I8REF(&slot) = V_I8(&fresh);
      break;
    case VT_R4:
      *V_R4REF(&slot) = V_R4(&fresh);
      break;
    case VT_R8:
      *V_R8REF(&slot) = V_R8(&fresh);
      break;
    case VT_CY:
      *V_CYREF(&slot) = V_CY(&fresh);
      break;
    case VT_DATE:
      *V_DATEREF(&slot) = V_DATE(&fresh);
      break;
    case VT_BOOL:
      *V_BOOLREF(&slot) = V_BOOL(&fresh);
      break;
    case VT_BSTR:
      SysFreeString(*V_BSTRREF(&slot));
      *V_BSTRREF(&slot) = V_BSTR(&fresh);  // ownership moves
      return true;
    case VT_DISPATCH:
      if (*V_DISPATCHREF(&slot)) (*V_DISPATCHREF(&slot))->Release();
      *V_DISPATCHREF(&slot) = V_DISPATCH(&fresh);  // ownership moves
      return true;
    case VT_UNKNOWN:
      if (*V_UNKNOWNREF(&slot)) (*V_UNKNOWNREF(&slot))->Release();
      *V_UNKNOWNREF(&slot) = V_UNKNOWN(&fresh);  // ownership moves
      return true;
    default:
      VariantClear(&fresh);
      return false;
  }
  VariantClear(&fresh);
  return true;
}

}  // namespace

void WriteBack(const automation::Args& args, const DISPPARAMS& params) {
  for (size_t k = 0; k < args.size() && k < params.cArgs; ++k) {
    if (!args[k].by_ref || args[k].missing) continue;
    VARIANT& slot = params.rgvarg[params.cArgs - 1 - k];
    if ((V_VT(&slot) & VT_BYREF) == 0) continue;
    if (!Store(args[k].value, slot)) {
      throw AutomationError::TypeMismatch(static_cast<int32_t>(k + 1));
    }
  }
}

namespace {

void FillInfo(const Error& error, EXCEPINFO* info) {
  if (info == nullptr) return;
  *info = EXCEPINFO{};
  info->scode = HresultOfNumber(error.Number());
  info->bstrSource = NewBstr(error.Source().empty() ? "Kelvary" : error.Source());
  info->bstrDescription = NewBstr(error.Description());
}

}  // namespace

HRESULT ErrorToHresult(const AutomationError& error, UINT arg_count, EXCEPINFO* info,
                       UINT* arg_error) {
  const int32_t position = error.ArgPosition();
  if (arg_error != nullptr && position > 0 && static_cast<UINT>(position) <= arg_count) {
    *arg_error = arg_count - static_cast<UINT>(position);
  }
  switch (error.Failure()) {
    case DispatchFailure::kUnknownName:
      return DISP_E_UNKNOWNNAME;
    case DispatchFailure::kMemberNotFound:
      return DISP_E_MEMBERNOTFOUND;
    case DispatchFailure::kBadParamCount:
      return DISP_E_BADPARAMCOUNT;
    case DispatchFailure::kTypeMismatch:
      return DISP_E_TYPEMISMATCH;
    case DispatchFailure::kOverflow:
      return DISP_E_OVERFLOW;
    case DispatchFailure::kParamNotOptional:
      return DISP_E_PARAMNOTOPTIONAL;
    case DispatchFailure::kException:
      break;
  }
  FillInfo(error, info);
  return DISP_E_EXCEPTION;
}

HRESULT ErrorToHresult(const Error& error, EXCEPINFO* info) {
  FillInfo(error, info);
  return DISP_E_EXCEPTION;
}

AutomationError ErrorFromHresult(HRESULT hr, const EXCEPINFO& info, UINT arg_error,
                                 UINT arg_count) {
  const int32_t position = arg_error < arg_count ? static_cast<int32_t>(arg_count - arg_error) : 0;
  switch (hr) {
    case DISP_E_UNKNOWNNAME:
      return AutomationError::UnknownName("");
    case DISP_E_MEMBERNOTFOUND:
      return AutomationError::MemberNotFound();
    case DISP_E_BADPARAMCOUNT:
      return AutomationError::BadParamCount();
    case DISP_E_TYPEMISMATCH:
      return AutomationError::TypeMismatch(position);
    case DISP_E_OVERFLOW:
      return AutomationError::Overflow(position);
    case DISP_E_PARAMNOTOPTIONAL:
      return AutomationError::ParamNotOptional(position);
    default:
      break;
  }
  if (hr == DISP_E_EXCEPTION) {
    EXCEPINFO filled = info;
    if (filled.pfnDeferredFillIn != nullptr) filled.pfnDeferredFillIn(&filled);
    const HRESULT code = filled.scode != 0 ? filled.scode : static_cast<HRESULT>(filled.wCode);
    int32_t number = static_cast<int32_t>(code);
    if ((static_cast<uint32_t>(code) & 0xFFFF0000u) == 0x800A0000u) number = code & 0xFFFF;
    std::string description = Narrow(filled.bstrDescription);
    if (description.empty()) description = "Automation error";
    return AutomationError(DispatchFailure::kException, number, std::move(description), 0,
                           Narrow(filled.bstrSource));
  }
  char text[64];
  wsprintfA(text, "Automation error 0x%08lX", static_cast<unsigned long>(hr));
  return AutomationError(DispatchFailure::kException, static_cast<int32_t>(hr), text);
}

}  // namespace kelvary::com
