#include "kelvary/automation/com/ComObjects.h"

#include <dispex.h>
#include <olectl.h>

#include <exception>
#include <iterator>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "kelvary/automation/HostObjects.h"
#include "kelvary/automation/com/DualFace.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::com {

using automation::AutomationError;

namespace {

// Asked of any object passed in to tell our wrappers from everything else;
// only this module answers it, with the wrapper itself.
const IID kIidKelvaryWrapper = {
    0x5d3c8e21, 0x7a44, 0x4b19, {0x9e, 0x02, 0x61, 0xc7, 0x3b, 0x58, 0xd4, 0xa9}};

std::mutex wrappers_mutex;
std::unordered_map<const automation::DispatchObject*, ComDispatch*>& Wrappers() {
  static auto* wrappers = new std::unordered_map<const automation::DispatchObject*, ComDispatch*>;
  return *wrappers;
}

// Guarded: runs body and turns whatever it throws into the runtime's answer.
template <class Body>
HRESULT Guarded(Body&& body, UINT arg_count = 0, EXCEPINFO* info = nullptr,
                UINT* arg_error = nullptr) {
  try {
    return body();
  } catch (const AutomationError& e) {
    return ErrorToHresult(e, arg_count, info, arg_error);
  } catch (const Error& e) {
    return ErrorToHresult(e, info);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& e) {
    return ErrorToHresult(Error(51, std::string("Internal error: ") + e.what()), info);
  } catch (...) {
    return ErrorToHresult(Error(51, "Internal error"), info);
  }
}

}  // namespace

bool GuidOf(std::string_view text, GUID* out) {
  const std::wstring wide = Widen(text);
  return SUCCEEDED(CLSIDFromString(const_cast<LPOLESTR>(wide.c_str()), out));
}

std::string TextOfGuid(REFGUID guid) {
  wchar_t text[64] = {};
  StringFromGUID2(guid, text, 64);
  return Narrow(text, wcslen(text));
}

// ---------------------------------------------------------------------------
// Connection point for the service object's events.

class EventPoint final : public IConnectionPoint {
 public:
  EventPoint(ComDispatch* owner, IID events_id) : owner_(owner), events_id_(events_id) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IConnectionPoint) {
      *out = static_cast<IConnectionPoint*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  // The point lives as long as its container: it counts on the owner.
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_->AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_->Release(); }

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
    if (iid == nullptr) return E_POINTER;
    *iid = events_id_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** out) override {
    if (out == nullptr) return E_POINTER;
    *out = owner_;
    owner_->AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    auto link = automation::NativeOf<InfoLink>(owner_->Object().get());
    if (!link) return CONNECT_E_CANNOTCONNECT;
    IDispatch* dispatch = nullptr;
    if (FAILED(sink->QueryInterface(events_id_, reinterpret_cast<void**>(&dispatch))) &&
        FAILED(sink->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)))) {
      return CONNECT_E_CANNOTCONNECT;
    }
    return Guarded([&]() -> HRESULT {
      auto host = std::make_shared<HostObject>(dispatch);
      dispatch->Release();
      dispatch = nullptr;
      auto events = std::make_shared<automation::DispatchEventSink>(std::move(host));
      link->Advise(events);
      sinks_.emplace(next_cookie_, std::move(events));
      *cookie = next_cookie_++;
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
    const auto found = sinks_.find(cookie);
    if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
    if (auto link = automation::NativeOf<InfoLink>(owner_->Object().get())) {
      link->Unadvise(found->second);
    }
    sinks_.erase(found);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** out) override {
    if (out != nullptr) *out = nullptr;
    return E_NOTIMPL;
  }

  // DropAll: the container is going; its sinks are released.
  void DropAll() {
    auto link = automation::NativeOf<InfoLink>(owner_->Object().get());
    for (auto& [cookie, events] : sinks_) {
      if (link) link->Unadvise(events);
    }
    sinks_.clear();
  }

 private:
  ComDispatch* owner_;
  IID events_id_;
  DWORD next_cookie_ = 1;
  std::unordered_map<DWORD, std::shared_ptr<InfoLinkEvents>> sinks_;
};

// The container's one connection point, listed.
class PointList final : public IEnumConnectionPoints {
 public:
  explicit PointList(IConnectionPoint* point) : point_(point) {
    point_->AddRef();
    ModuleAddRef();
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IEnumConnectionPoints) {
      *out = static_cast<IEnumConnectionPoints*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE Next(ULONG count, IConnectionPoint** out, ULONG* fetched) override {
    if (out == nullptr) return E_POINTER;
    ULONG given = 0;
    if (count > 0 && next_ == 0) {
      out[0] = point_;
      point_->AddRef();
      next_ = 1;
      given = 1;
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    if (count == 0) return S_OK;
    const bool ok = next_ == 0 && count == 1;
    next_ = 1;
    return ok ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** out) override {
    if (out == nullptr) return E_POINTER;
    auto* copy = new PointList(point_);
    copy->next_ = next_;
    *out = copy;
    return S_OK;
  }

 private:
  ~PointList() {
    point_->Release();
    ModuleRelease();
  }
  std::atomic<ULONG> refs_{1};
  IConnectionPoint* point_;
  ULONG next_ = 0;
};

// ---------------------------------------------------------------------------
// ComDispatch

ComDispatch::ComDispatch(std::shared_ptr<automation::DispatchObject> object)
    : object_(std::move(object)), table_(object_->Table()) {
  if (table_ != nullptr && GuidOf(table_->Guids().interface_id, &interface_id_)) {
    face_ = NewDualFace(interface_id_, this);
  }
  ModuleAddRef();
}

ComDispatch::~ComDispatch() {
  delete events_;
  delete face_;
  ModuleRelease();
}

IDispatch* ComDispatch::Primary() {
  return face_ != nullptr ? face_->Face() : static_cast<IDispatch*>(this);
}

IDispatch* ComDispatch::Wrap(const std::shared_ptr<automation::DispatchObject>& object) {
  if (!object) return nullptr;
  std::lock_guard lock(wrappers_mutex);
  auto& wrappers = Wrappers();
  const auto found = wrappers.find(object.get());
  if (found != wrappers.end()) {
    found->second->AddRef();
    return found->second->Primary();
  }
  auto* wrapper = new ComDispatch(object);
  wrappers.emplace(object.get(), wrapper);
  return wrapper->Primary();
}

std::shared_ptr<automation::DispatchObject> ComDispatch::Unwrap(IUnknown* unknown) {
  if (unknown == nullptr) return nullptr;
  void* ours = nullptr;
  if (FAILED(unknown->QueryInterface(kIidKelvaryWrapper, &ours)) || ours == nullptr) {
    return nullptr;
  }
  auto* wrapper = static_cast<ComDispatch*>(static_cast<IDispatch*>(ours));
  auto object = wrapper->object_;
  wrapper->Release();
  return object;
}

bool ComDispatch::HasEvents() const {
  return table_ != nullptr && !table_->Events().empty() && !table_->Guids().events_id.empty();
}

HRESULT ComDispatch::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid == IID_IUnknown || riid == IID_IDispatch ||
      (face_ != nullptr && riid == interface_id_)) {
    *out = Primary();
  } else if (riid == kIidKelvaryWrapper) {
    *out = static_cast<IDispatch*>(this);  // Unwrap's way back to the wrapper
  } else if (riid == IID_IProvideClassInfo) {
    *out = static_cast<IProvideClassInfo*>(this);
  } else if (riid == IID_ISupportErrorInfo) {
    *out = static_cast<ISupportErrorInfo*>(this);
  } else if (riid == IID_IConnectionPointContainer && HasEvents()) {
    *out = static_cast<IConnectionPointContainer*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ComDispatch::AddRef() {
  return ++refs_;
}

ULONG ComDispatch::Release() {
  // The count drops under the registry's lock, so that Wrap never hands out
  // a wrapper that is on its way out.
  ULONG left;
  {
    std::lock_guard lock(wrappers_mutex);
    left = --refs_;
    if (left == 0) Wrappers().erase(object_.get());
  }
  if (left == 0) {
    if (events_ != nullptr) {
      refs_ = 1;  // the sinks' release may call back; keep this alive meanwhile
      events_->DropAll();
      refs_ = 0;
    }
    delete this;
  }
  return left;
}

HRESULT ComDispatch::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = (TypeLibrary() != nullptr && table_ != nullptr) ? 1 : 0;
  return S_OK;
}

HRESULT ComDispatch::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  ITypeLib* library = TypeLibrary();
  if (library == nullptr || table_ == nullptr) return E_NOTIMPL;
  return library->GetTypeInfoOfGuid(interface_id_, info);
}

HRESULT ComDispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_POINTER;
  return Guarded([&]() -> HRESULT {
    const std::string name = Narrow(names[0], wcslen(names[0]));
    ids[0] = object_->GetIdOfName(name);
    HRESULT hr = ids[0] == automation::kDispIdUnknown ? DISP_E_UNKNOWNNAME : S_OK;
    // Named arguments are not taken: their names are unknown.
    for (UINT i = 1; i < count; ++i) {
      ids[i] = DISPID_UNKNOWN;
      hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
  });
}

HRESULT ComDispatch::Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                            VARIANT* result, EXCEPINFO* info, UINT* arg_error) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  if (params == nullptr) params = &none;
  // The one named argument taken is the new value of a property assignment.
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  if (params->cNamedArgs > 1 ||
      (params->cNamedArgs == 1 && (!put || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))) {
    return DISP_E_NONAMEDARGS;
  }
  if (result != nullptr) VariantInit(result);
  return Guarded(
      [&]() -> HRESULT {
        automation::Args args = ToArgs(*params);
        const Variant value =
            object_->Invoke(id, static_cast<automation::InvokeFlags>(flags), std::span(args));
        WriteBack(args, *params);
        if (result != nullptr) ToVariant(value, result);
        return S_OK;
      },
      params->cArgs, info, arg_error);
}

namespace {

// TakeResult moves a call's result into the entry's typed [out, retval]
// slot, converted as a host's early-bound assignment converts it.
HRESULT TakeResult(VARIANT& result, const Result& out) {
  if (out.type == VT_VARIANT) {
    *static_cast<VARIANT*>(out.where) = result;  // ownership moves
    return S_OK;
  }
  if (out.type == VT_DISPATCH || out.type == VT_UNKNOWN) {
    const VARTYPE type = V_VT(&result);
    HRESULT hr = S_OK;
    if (type == VT_DISPATCH || type == VT_UNKNOWN) {
      IUnknown* object = V_UNKNOWN(&result);
      if (object != nullptr) hr = object->QueryInterface(*out.iid, static_cast<void**>(out.where));
    } else if (type != VT_EMPTY) {
      hr = DISP_E_TYPEMISMATCH;
    }
    VariantClear(&result);
    return FAILED(hr) ? DISP_E_TYPEMISMATCH : S_OK;
  }
  // Most results are of the entry's type already: no conversion then.
  if (V_VT(&result) != out.type) {
    const HRESULT hr = VariantChangeType(&result, &result, 0, out.type);
    if (FAILED(hr)) {
      VariantClear(&result);
      return hr;
    }
  }
  switch (out.type) {
    case VT_BOOL:
      *static_cast<VARIANT_BOOL*>(out.where) = V_BOOL(&result);
      break;
    case VT_I2:
      *static_cast<SHORT*>(out.where) = V_I2(&result);
      break;
    case VT_I4:
      *static_cast<LONG*>(out.where) = V_I4(&result);
      break;
    case VT_R4:
      *static_cast<FLOAT*>(out.where) = V_R4(&result);
      break;
    case VT_R8:
      *static_cast<DOUBLE*>(out.where) = V_R8(&result);
      break;
    case VT_CY:
      *static_cast<CY*>(out.where) = V_CY(&result);
      break;
    case VT_DATE:
      *static_cast<DATE*>(out.where) = V_DATE(&result);
      break;
    case VT_BSTR:
      *static_cast<BSTR*>(out.where) = V_BSTR(&result);  // ownership moves
      return S_OK;
    default:
      VariantClear(&result);
      return DISP_E_TYPEMISMATCH;
  }
  return S_OK;  // a number, a date or a currency: nothing to free
}

// ClearResult: an [out] slot holds nothing until the call succeeds.
void ClearResult(const Result& out) {
  switch (out.type) {
    case VT_VARIANT:
      VariantInit(static_cast<VARIANT*>(out.where));
      break;
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      *static_cast<void**>(out.where) = nullptr;
      break;
    case VT_BOOL:
    case VT_I2:
      *static_cast<SHORT*>(out.where) = 0;
      break;
    case VT_I4:
      *static_cast<LONG*>(out.where) = 0;
      break;
    case VT_R4:
      *static_cast<FLOAT*>(out.where) = 0;
      break;
    default:  // the 8-byte ones: a Double, a Date, a Currency
      *static_cast<LONGLONG*>(out.where) = 0;
      break;
  }
}

// SetError leaves the failure's description in the thread's error object
// (cleared when there is none, so that a host never reads an old one).
void SetError(const IID& iid, BSTR source, BSTR description) {
  ICreateErrorInfo* create = nullptr;
  if (description == nullptr || FAILED(CreateErrorInfo(&create))) {
    SetErrorInfo(0, nullptr);
    return;
  }
  create->SetGUID(iid);
  create->SetSource(source);
  create->SetDescription(description);
  IErrorInfo* error = nullptr;
  if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&error)))) {
    SetErrorInfo(0, error);
    error->Release();
  }
  create->Release();
}

}  // namespace

VARIANT OptionalRef(VARIANT* where) {
  VARIANT v;
  VariantInit(&v);
  if (where == nullptr || (V_VT(where) == VT_ERROR && V_ERROR(where) == DISP_E_PARAMNOTFOUND)) {
    V_VT(&v) = VT_ERROR;
    V_ERROR(&v) = DISP_E_PARAMNOTFOUND;
  } else {
    V_VT(&v) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&v) = where;
  }
  return v;
}

HRESULT ComDispatch::CallEarly(DISPID id, WORD flags, std::initializer_list<VARIANT> args,
                               const Result& out) {
  if (out.type != VT_EMPTY) {
    if (out.where == nullptr) return E_POINTER;
    ClearResult(out);
  }
  // The runtime's argument list runs backwards: the last argument first.
  VARIANT list[32];
  const UINT count = static_cast<UINT>(args.size());
  if (count > std::size(list)) return DISP_E_BADPARAMCOUNT;
  UINT k = count;
  for (const VARIANT& arg : args) {
    if ((V_VT(&arg) & VT_BYREF) != 0 && V_BYREF(&arg) == nullptr) return E_POINTER;
    list[--k] = arg;
  }
  DISPID named = DISPID_PROPERTYPUT;
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS params{list, put ? &named : nullptr, count, put ? 1u : 0u};
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO info{};
  UINT arg_error = 0;
  HRESULT hr = Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                      out.type != VT_EMPTY ? &result : nullptr, &info, &arg_error);
  if (SUCCEEDED(hr) && out.type != VT_EMPTY) hr = TakeResult(result, out);
  if (hr == DISP_E_EXCEPTION) {
    SetError(interface_id_, info.bstrSource, info.bstrDescription);
    hr = info.scode != 0 ? info.scode : DISP_E_EXCEPTION;
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
  } else if (FAILED(hr)) {
    SetError(interface_id_, nullptr, nullptr);
  }
  return hr;
}

HRESULT ComDispatch::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  ITypeLib* library = TypeLibrary();
  GUID class_id{};
  if (library == nullptr || table_ == nullptr || !GuidOf(table_->Guids().class_id, &class_id)) {
    return E_NOTIMPL;
  }
  return library->GetTypeInfoOfGuid(class_id, info);
}

HRESULT ComDispatch::InterfaceSupportsErrorInfo(REFIID riid) {
  return (riid == IID_IDispatch || riid == interface_id_) ? S_OK : S_FALSE;
}

HRESULT ComDispatch::EnumConnectionPoints(IEnumConnectionPoints** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  IConnectionPoint* point = nullptr;
  GUID events_id{};
  if (!GuidOf(table_->Guids().events_id, &events_id)) return E_UNEXPECTED;
  const HRESULT hr = FindConnectionPoint(events_id, &point);
  if (FAILED(hr)) return hr;
  *out = new PointList(point);
  point->Release();
  return S_OK;
}

HRESULT ComDispatch::FindConnectionPoint(REFIID riid, IConnectionPoint** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  GUID events_id{};
  if (!HasEvents() || !GuidOf(table_->Guids().events_id, &events_id)) return E_NOINTERFACE;
  // A host may ask by the event interface or by IDispatch, as some script
  // engines do.
  if (riid != events_id && riid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
  if (events_ == nullptr) events_ = new EventPoint(this, events_id);
  *out = events_;
  events_->AddRef();
  return S_OK;
}

// ---------------------------------------------------------------------------
// HostObject

HostObject::HostObject(IDispatch* dispatch) : dispatch_(dispatch) {
  dispatch_->AddRef();
  ModuleAddRef();
}

HostObject::~HostObject() {
  dispatch_->Release();
  ModuleRelease();
}

automation::DispId HostObject::GetIdOfName(std::string_view name) {
  std::wstring wide = Widen(name);
  LPOLESTR names[1] = {wide.data()};
  DISPID id = DISPID_UNKNOWN;
  if (SUCCEEDED(dispatch_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) {
    return id;
  }
  // Some script engines name their objects' members only through the
  // extended interface.
  IDispatchEx* extended = nullptr;
  if (SUCCEEDED(
          dispatch_->QueryInterface(__uuidof(IDispatchEx), reinterpret_cast<void**>(&extended))) &&
      extended != nullptr) {
    BSTR bstr = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    const HRESULT hr = extended->GetDispID(bstr, fdexNameCaseInsensitive, &id);
    SysFreeString(bstr);
    extended->Release();
    if (SUCCEEDED(hr)) return id;
  }
  return automation::kDispIdUnknown;
}

Variant HostObject::Invoke(automation::DispId id, automation::InvokeFlags flags,
                           std::span<automation::Arg> args) {
  const UINT count = static_cast<UINT>(args.size());
  // By-reference arguments travel as references into a VARIANT of ours,
  // read back after the call.
  std::vector<VARIANT> values(count);
  std::vector<VARIANT> slots(count);
  struct Cleanup {
    std::vector<VARIANT>& values;
    ~Cleanup() {
      for (VARIANT& v : values)
        VariantClear(&v);
    }
  } cleanup{values};
  for (UINT k = 0; k < count; ++k) {
    const UINT slot = count - 1 - k;
    VariantInit(&values[k]);
    VariantInit(&slots[slot]);
    if (args[k].missing) {
      V_VT(&slots[slot]) = VT_ERROR;
      V_ERROR(&slots[slot]) = DISP_E_PARAMNOTFOUND;
      continue;
    }
    ToVariant(args[k].value, &values[k]);
    if (args[k].by_ref) {
      // A typed reference for a typed value (a Boolean, a Long, a Double, a
      // String), as a host whose handler declares `ByRef bContinue As
      // Boolean` takes it; a reference to the VARIANT for anything else.
      const VARTYPE type = V_VT(&values[k]);
      const bool typed = type == VT_BOOL || type == VT_I2 || type == VT_I4 || type == VT_R4 ||
                         type == VT_R8 || type == VT_CY || type == VT_DATE || type == VT_BSTR;
      V_VT(&slots[slot]) = typed ? static_cast<VARTYPE>(type | VT_BYREF) : VT_VARIANT | VT_BYREF;
      V_BYREF(&slots[slot]) =
          typed ? static_cast<void*>(&V_I4(&values[k])) : static_cast<void*>(&values[k]);
    } else {
      slots[slot] = values[k];  // shares the value; cleared once through values
    }
  }
  DISPPARAMS params{slots.data(), nullptr, count, 0};
  DISPID named = DISPID_PROPERTYPUT;
  if ((flags & (automation::kInvokePropertyPut | automation::kInvokePropertyPutRef)) != 0) {
    params.rgdispidNamedArgs = &named;
    params.cNamedArgs = 1;
  }
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO info{};
  UINT arg_error = 0;
  const HRESULT hr = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, &result,
                                       &info, &arg_error);
  if (FAILED(hr)) {
    AutomationError error = ErrorFromHresult(hr, info, arg_error, count);
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
    throw error;
  }
  for (UINT k = 0; k < count; ++k) {
    if (args[k].by_ref && !args[k].missing) args[k].value = FromVariant(values[k]);
  }
  Variant out = FromVariant(result);
  VariantClear(&result);
  return out;
}

bool HostObject::ImplementsInterface(std::string_view iid) const {
  GUID guid{};
  if (!GuidOf(iid, &guid)) return false;
  IUnknown* found = nullptr;
  if (FAILED(dispatch_->QueryInterface(guid, reinterpret_cast<void**>(&found))) || !found) {
    return false;
  }
  found->Release();
  return true;
}

// ---------------------------------------------------------------------------
// Enumerator

namespace {

class ComEnumerator final : public IEnumVARIANT {
 public:
  explicit ComEnumerator(std::shared_ptr<automation::Enumerator> items) : items_(std::move(items)) {
    ModuleAddRef();
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IEnumVARIANT) {
      *out = static_cast<IEnumVARIANT*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* out, ULONG* fetched) override {
    if (out == nullptr) return E_POINTER;
    ULONG given = 0;
    const HRESULT hr = Guarded([&]() -> HRESULT {
      Variant item;
      while (given < count && items_->Next(item)) {
        ToVariant(item, &out[given]);
        ++given;
      }
      return S_OK;
    });
    if (fetched != nullptr) *fetched = given;
    if (FAILED(hr)) return hr;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    return items_->Skip(count) ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    items_->Reset();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) override {
    if (out == nullptr) return E_POINTER;
    *out = new ComEnumerator(items_->Clone());
    return S_OK;
  }

 private:
  ~ComEnumerator() { ModuleRelease(); }
  std::atomic<ULONG> refs_{1};
  std::shared_ptr<automation::Enumerator> items_;
};

}  // namespace

IUnknown* MakeEnumerator(std::shared_ptr<automation::Enumerator> items) {
  return new ComEnumerator(std::move(items));
}

}  // namespace kelvary::com
