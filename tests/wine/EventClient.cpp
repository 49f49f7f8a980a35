// A C++ host of the component server, as the desktop application is one:
// it creates the service object by ProgID, subscribes an event sink through
// the connection point, and checks what the sink sees while the object
// deletes and numbers records: the record-action events in their order, a
// veto through bContinue, a key answered through ReturnValue. It also checks
// the dispatch errors a host gets for bad calls.
//
// Usage: kelvary_event_client MAIN.db SYSTEM.db
// Prints one line per check and ends with "N passed, M failed".
#include "ClientSupport.h"

namespace {

using namespace wine_client;

// The host's sink: records the events it receives and answers as told.
class Sink final : public IDispatch {
 public:
  std::vector<std::wstring> seen;
  bool veto = false;  // answer bContinue = False
  long next_id = 0;   // answer to RequestRemoteNextID
  bool saw_key_argument = false;
  IID events{};

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    // The event interface is a dispatch interface: the sink answers as one.
    if (riid == IID_IUnknown || riid == IID_IDispatch || riid == events) {
      *out = this;
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override { return --refs_; }  // lives on the stack
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override {
    *n = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                   EXCEPINFO*, UINT*) override {
    static const wchar_t* const kNames[] = {L"",
                                            L"CheckAllowRecordDelete",
                                            L"BeforeDeleteRecord",
                                            L"AfterDeleteRecord",
                                            L"RequestRemoteNextID",
                                            L"BeforePostActionHistory",
                                            L"RequestRemoteNextIDAsDouble",
                                            L"AfterPostActionHistory",
                                            L"BeforePostActionHistoryAsDouble",
                                            L"AfterPostActionHistoryAsDouble"};
    if (id < 1 || id > 9) return DISP_E_MEMBERNOTFOUND;
    seen.push_back(kNames[id]);
    const UINT n = params->cArgs;
    if (id == 5 && n == 10) {
      // bContinue is the last argument: first in the reversed list, by reference.
      VARIANT& b = params->rgvarg[0];
      if ((V_VT(&b) & VT_BYREF) != 0 && veto) {
        if (V_VT(&b) == (VT_BOOL | VT_BYREF)) *V_BOOLREF(&b) = VARIANT_FALSE;
        if (V_VT(&b) == (VT_VARIANT | VT_BYREF)) {
          VariantClear(V_VARIANTREF(&b));
          V_VT(V_VARIANTREF(&b)) = VT_BOOL;
          V_BOOL(V_VARIANTREF(&b)) = VARIANT_FALSE;
        }
      }
      // KeyValue1 is the sixth argument.
      VARIANT key;
      VariantInit(&key);
      if (SUCCEEDED(VariantChangeType(&key, &params->rgvarg[n - 6], 0, VT_I4)) &&
          V_I4(&key) == 292) {
        saw_key_argument = true;
      }
    }
    if (id == 4 && n == 5) {
      VARIANT& r = params->rgvarg[n - 1];  // ReturnValue, the first argument
      if (V_VT(&r) == (VT_I4 | VT_BYREF)) *V_I4REF(&r) = next_id;
      if (V_VT(&r) == (VT_VARIANT | VT_BYREF)) {
        VariantClear(V_VARIANTREF(&r));
        V_VT(V_VARIANTREF(&r)) = VT_I4;
        V_I4(V_VARIANTREF(&r)) = next_id;
      }
    }
    return S_OK;
  }

 private:
  ULONG refs_ = 1;
};

std::wstring Joined(const std::vector<std::wstring>& names) {
  std::wstring all;
  for (const auto& n : names)
    all += (all.empty() ? L"" : L",") + n;
  return all;
}

int Run(const wchar_t* main_db, const wchar_t* system_db) {
  CLSID clsid{};
  Check(SUCCEEDED(CLSIDFromProgID(L"Kelvary.InfoLink", &clsid)), "the ProgID is registered");
  IDispatch* link = nullptr;
  if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(&link)))) {
    Check(false, "CoCreateInstance(Kelvary.InfoLink)");
    return 1;
  }

  // Bad calls get the standard errors with the argument's position, and
  // nothing crashes.
  {
    Outcome few = Method(link, L"GetDescription", {Arg(1)});
    Check(few.hr == DISP_E_BADPARAMCOUNT, "too few arguments: DISP_E_BADPARAMCOUNT");
    Outcome skipped = Method(link, L"GetDescription", {Arg::Missing(), Arg(7)});
    Check(skipped.hr == DISP_E_PARAMNOTOPTIONAL && skipped.arg_error == 1,
          "a required argument left out: DISP_E_PARAMNOTOPTIONAL at the first argument");
    Outcome many = Method(link, L"InterpretUserDataLocation", {Arg(1), Arg(2)});
    Check(many.hr == DISP_E_BADPARAMCOUNT, "too many arguments: DISP_E_BADPARAMCOUNT");
    Outcome type = Method(link, L"GetDescription", {Arg(L"not a number"), Arg(7)});
    Check(type.hr == DISP_E_TYPEMISMATCH && type.arg_error == 1,
          "a text where a number goes: DISP_E_TYPEMISMATCH at the first argument");
    DISPID id = 0;
    LPOLESTR name[1] = {const_cast<LPOLESTR>(L"NoSuchMember")};
    Check(link->GetIDsOfNames(IID_NULL, name, 1, 0, &id) == DISP_E_UNKNOWNNAME,
          "an unknown member: DISP_E_UNKNOWNNAME");
    LPOLESTR odd_case[1] = {const_cast<LPOLESTR>(L"getdescription")};
    Check(link->GetIDsOfNames(IID_NULL, odd_case, 1, 0, &id) == S_OK,
          "names match without regard to case");
  }

  VARIANT main_xion, system_xion, no_recs;
  VariantInit(&main_xion);
  VariantInit(&system_xion);
  VariantInit(&no_recs);
  V_VT(&no_recs) = VT_DISPATCH;  // Nothing: the record is deleted by a statement
  V_DISPATCH(&no_recs) = nullptr;
  Let(link, L"UseSafeDelete", Arg::Bool(true));
  Let(link, L"GenCodeMethod", Arg(6));  // keys come from the host
  Outcome connected =
      Method(link, L"ConnectDefault",
             {Arg::Ref(&main_xion), Arg::Ref(&system_xion), Arg(main_db), Arg(system_db)});
  Check(connected.hr == S_OK && V_VT(&connected.result) == VT_BOOL &&
            V_BOOL(&connected.result) == VARIANT_TRUE,
        "ConnectDefault on the demo files");
  Outcome opened = Call(link, L"AppDataXion", DISPATCH_PROPERTYGET, {});
  Check(opened.hr == S_OK && V_VT(&opened.result) == VT_DISPATCH && V_DISPATCH(&opened.result),
        "ConnectDefault opened the main connection (AppDataXion)");

  IConnectionPointContainer* container = nullptr;
  IConnectionPoint* point = nullptr;
  Sink sink;
  DWORD cookie = 0;
  bool advised = SUCCEEDED(
      link->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)));
  if (advised) {
    IEnumConnectionPoints* points = nullptr;
    advised = SUCCEEDED(container->EnumConnectionPoints(&points)) &&
              points->Next(1, &point, nullptr) == S_OK;
    if (points) points->Release();
    IID events{};
    advised = advised && SUCCEEDED(point->GetConnectionInterface(&events));
    sink.events = events;
    IConnectionPoint* again = nullptr;
    advised =
        advised && SUCCEEDED(container->FindConnectionPoint(events, &again)) && again == point;
    if (again) again->Release();
    advised = advised && SUCCEEDED(point->Advise(&sink, &cookie));
  }
  Check(advised, "the event sink is subscribed through the connection point");

  // A key from the host.
  sink.next_id = 4711;
  Outcome key = Method(link, L"GenerateNumericCode", {Arg(1), Arg(L"patients"), Arg(L"ID")});
  Check(key.hr == S_OK && key.Long() == 4711,
        "RequestRemoteNextID: the key is the one the host's handler answered");
  Check(!sink.seen.empty() && sink.seen.front() == L"RequestRemoteNextID",
        "RequestRemoteNextID was raised");

  // A veto: nothing is marked.
  sink.seen.clear();
  sink.veto = true;
  Outcome vetoed = Method(link, L"SafeDeleteRecord",
                          {Arg(1), Arg(1), Arg(L"patients"), Arg(2), Arg(291), Arg(0), Arg(L"ID"),
                           Arg(L""), Arg::Ref(&no_recs)});
  Check(vetoed.hr == S_OK, "SafeDeleteRecord with a veto returns normally");
  Check(Joined(sink.seen) == L"BeforePostActionHistory",
        "with bContinue False only BeforePostActionHistory is raised");
  Outcome kept =
      Method(link, L"GetCorrespondingValue",
             {Arg(291), Arg(L"patients"), Arg(L"RecordStatus"), Arg(L"ID"), Arg(1), Arg(L"")});
  Check(kept.hr == S_OK && kept.Long() == 1,
        "a veto stops only the host's audit: the row is marked all the same");

  // The real thing: Before, then After, and the row is marked.
  sink.seen.clear();
  sink.veto = false;
  Outcome deleted = Method(link, L"SafeDeleteRecord",
                           {Arg(1), Arg(1), Arg(L"patients"), Arg(2), Arg(292), Arg(0), Arg(L"ID"),
                            Arg(L""), Arg::Ref(&no_recs)});
  Check(deleted.hr == S_OK, "SafeDeleteRecord returns normally");
  Check(Joined(sink.seen) == L"BeforePostActionHistory,AfterPostActionHistory",
        "BeforePostActionHistory then AfterPostActionHistory, in that order");
  Check(sink.saw_key_argument, "the events carry the record's key");
  Outcome marked =
      Method(link, L"GetCorrespondingValue",
             {Arg(292), Arg(L"patients"), Arg(L"RecordStatus"), Arg(L"ID"), Arg(1), Arg(L"")});
  Check(marked.hr == S_OK && marked.Long() != 0, "the deleted row is marked, not removed");

  if (point != nullptr) {
    Check(SUCCEEDED(point->Unadvise(cookie)), "Unadvise");
    sink.seen.clear();
    Method(link, L"GenerateNumericCode", {Arg(1), Arg(L"patients"), Arg(L"ID")});
    Check(sink.seen.empty(), "no event reaches a sink after Unadvise");
    point->Release();
  }
  if (container != nullptr) container->Release();
  VariantClear(&main_xion);
  VariantClear(&system_xion);
  link->Release();
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  return wine_client::ClientMain(argc, argv, "kelvary_event_client", Run);
}
