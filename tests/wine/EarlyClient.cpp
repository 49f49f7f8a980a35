// A C++ host that binds early, as a host compiled against the type library
// does: it calls the component server through the vtables of its dual
// interfaces, declared by the header the type library compiler writes from
// the interface definition. Each call is set beside the same call made
// late-bound through IDispatch on the same object: results, errors (the
// HRESULT, and the description in the thread's error object) and
// by-reference write-back must agree. A sweep then reads every property
// without arguments of every object a host reaches, through the vtable slot
// the type library names and through Invoke, and compares the two.
//
// Usage: kelvary_early_client MAIN.db SYSTEM.db
// Prints one line per check and ends with "N passed, M failed".
#include "ClientSupport.h"
// (after the platform's headers: the library's identity is defined here)
#include <initguid.h>

#include "KelvaryInterfaces.h"

namespace {

using namespace wine_client;

// Ptr: an interface pointer released here.
template <class T>
struct Ptr {
  T* p = nullptr;
  Ptr() = default;
  Ptr(const Ptr&) = delete;
  Ptr& operator=(const Ptr&) = delete;
  ~Ptr() { Reset(); }
  void Reset() {
    if (p != nullptr) p->Release();
    p = nullptr;
  }
  T** Out() {
    Reset();
    return &p;
  }
  void** Void() { return reinterpret_cast<void**>(Out()); }
  T* operator->() const { return p; }
};

// Bstr: a BSTR owned here.
struct Bstr {
  BSTR b = nullptr;
  Bstr() = default;
  explicit Bstr(const wchar_t* s) : b(SysAllocString(s)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(b); }
  BSTR* Out() {
    SysFreeString(b);
    b = nullptr;
    return &b;
  }
  std::wstring Text() const { return b ? std::wstring(b, SysStringLen(b)) : L""; }
};

// Var: a VARIANT owned here.
struct Var {
  VARIANT v;
  Var() { VariantInit(&v); }
  Var(const Var&) = delete;
  Var& operator=(const Var&) = delete;
  ~Var() { VariantClear(&v); }
  std::wstring Text() const { return TextOf(v); }
  static std::wstring TextOf(const VARIANT& value) {
    if (V_VT(&value) == VT_NULL) return L"<Null>";
    VARIANT copy;
    VariantInit(&copy);
    if (FAILED(VariantChangeType(&copy, const_cast<VARIANT*>(&value), 0, VT_BSTR))) return L"?";
    std::wstring text(V_BSTR(&copy), SysStringLen(V_BSTR(&copy)));
    VariantClear(&copy);
    return text;
  }
};

VARIANT Missing() {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_ERROR;
  V_ERROR(&v) = DISP_E_PARAMNOTFOUND;
  return v;
}

// ErrorText: the description the failed call left in the error object.
std::wstring ErrorText() {
  IErrorInfo* error = nullptr;
  if (GetErrorInfo(0, &error) != S_OK || error == nullptr) return L"";
  BSTR text = nullptr;
  error->GetDescription(&text);
  std::wstring out = text ? text : L"";
  SysFreeString(text);
  error->Release();
  return out;
}

bool SameObject(IUnknown* a, IUnknown* b) {
  if (a == nullptr || b == nullptr) return a == b;
  Ptr<IUnknown> ua, ub;
  a->QueryInterface(IID_IUnknown, ua.Void());
  b->QueryInterface(IID_IUnknown, ub.Void());
  return ua.p != nullptr && ua.p == ub.p;
}

bool SameValue(const VARIANT& early, const VARIANT& late) {
  const VARTYPE e = V_VT(&early), l = V_VT(&late);
  if (e == VT_DISPATCH || e == VT_UNKNOWN || l == VT_DISPATCH || l == VT_UNKNOWN) {
    const bool eo = e == VT_DISPATCH || e == VT_UNKNOWN, lo = l == VT_DISPATCH || l == VT_UNKNOWN;
    return eo && lo && SameObject(V_UNKNOWN(&early), V_UNKNOWN(&late));
  }
  if (e == VT_NULL || l == VT_NULL || e == VT_EMPTY || l == VT_EMPTY) return e == l;
  return Var::TextOf(early) == Var::TextOf(late) && e == l;
}

// The same failure: the code an early-bound caller sees is the one in the
// late-bound call's exception, and so is the description.
bool SameFailure(HRESULT early, const std::wstring& early_text, const Outcome& late) {
  return FAILED(early) && early == late.scode &&
         (late.hr != DISP_E_EXCEPTION || early_text == late.description);
}

// Every property read without arguments of object, through the vtable slot
// its type information names and through Invoke, compared.
void SweepReads(IDispatch* object, const char* what) {
  Ptr<ITypeInfo> dispatch_info, info;
  HREFTYPE vtable_ref = 0;
  TYPEATTR* attr = nullptr;
  if (FAILED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, dispatch_info.Out())) ||
      FAILED(dispatch_info->GetRefTypeOfImplType(-1, &vtable_ref)) ||
      FAILED(dispatch_info->GetRefTypeInfo(vtable_ref, info.Out())) ||
      FAILED(info->GetTypeAttr(&attr))) {
    std::printf("FAILED: %s: no dual type information\n", what);
    ++failed;
    return;
  }
  Ptr<IUnknown> face;
  object->QueryInterface(attr->guid, face.Void());
  int reads = 0;
  std::string wrong;
  for (UINT i = 0; face.p != nullptr && i < attr->cFuncs; ++i) {
    FUNCDESC* f = nullptr;
    if (FAILED(info->GetFuncDesc(i, &f))) continue;
    const ELEMDESC* ret = f->cParams == 1 ? &f->lprgelemdescParam[0] : nullptr;
    if (f->invkind != INVOKE_PROPERTYGET || ret == nullptr || f->memid == DISPID_NEWENUM ||
        (ret->paramdesc.wParamFlags & PARAMFLAG_FRETVAL) == 0 || ret->tdesc.vt != VT_PTR) {
      info->ReleaseFuncDesc(f);
      continue;
    }
    VARTYPE type = ret->tdesc.lptdesc->vt;
    if (type == VT_PTR) type = VT_UNKNOWN;     // an interface pointer
    if (type == VT_USERDEFINED) type = VT_I4;  // an enumeration
    Var early;
    VARIANT slot;  // the entry's [out, retval] value, read as a VARIANT of its type
    VariantInit(&slot);
    VARIANT pointer;
    VariantInit(&pointer);
    V_VT(&pointer) = VT_BYREF | VT_UI1;
    V_BYREF(&pointer) = type == VT_VARIANT ? static_cast<void*>(&early.v) : &V_UI1(&slot);
    VARTYPE pointer_type = VT_PTR;
    VARIANTARG* args[1] = {&pointer};
    VARIANT hr;
    VariantInit(&hr);
    const HRESULT called =
        DispCallFunc(face.p, f->oVft, CC_STDCALL, VT_ERROR, 1, &pointer_type, args, &hr);
    const HRESULT got = FAILED(called) ? called : V_ERROR(&hr);
    const std::wstring got_text = FAILED(got) ? ErrorText() : L"";
    if (type != VT_VARIANT && SUCCEEDED(got)) {
      early.v = slot;
      V_VT(&early.v) = type;
    }
    Outcome late = CallId(object, f->memid, DISPATCH_PROPERTYGET, {});
    const bool same = SUCCEEDED(got) ? late.hr == S_OK && SameValue(early.v, late.result)
                                     : SameFailure(got, got_text, late);
    BSTR name = nullptr;
    info->GetDocumentation(f->memid, &name, nullptr, nullptr, nullptr);
    if (!same) {
      char line[200];
      std::snprintf(line, sizeof line, " %ls (0x%08lX/0x%08lX %ls/%ls)", name ? name : L"?",
                    static_cast<unsigned long>(got), static_cast<unsigned long>(late.scode),
                    early.Text().c_str(), late.Text().c_str());
      wrong += line;
    }
    SysFreeString(name);
    ++reads;
    info->ReleaseFuncDesc(f);
  }
  info->ReleaseTypeAttr(attr);
  char label[1000];
  std::snprintf(label, sizeof label, "%s: %d property reads through the vtable agree with Invoke%s",
                what, reads, wrong.c_str());
  Check(reads > 0 && wrong.empty(), label);
}

template <class T>
IDispatch* AsDispatch(T* p) {
  return static_cast<IDispatch*>(p);
}

int Run(const wchar_t* main_db, const wchar_t* system_db) {
  // Creation and identity: one pointer for IUnknown, IDispatch and the
  // class's own interface; the registered type library declares it dual.
  CLSID clsid{};
  CLSIDFromProgID(L"Kelvary.InfoLink", &clsid);
  Ptr<_InfoLink> link;
  CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_InfoLink), link.Void());
  Check(link.p != nullptr, "Kelvary.InfoLink is created for its dual interface _InfoLink");
  if (link.p == nullptr) return 1;
  {
    Ptr<IUnknown> unknown;
    Ptr<IDispatch> dispatch;
    link->QueryInterface(IID_IUnknown, unknown.Void());
    link->QueryInterface(IID_IDispatch, dispatch.Void());
    Check(static_cast<IUnknown*>(link.p) == unknown.p &&
              static_cast<IUnknown*>(link.p) == static_cast<IUnknown*>(dispatch.p),
          "IUnknown, IDispatch and _InfoLink are one pointer");
    Ptr<ITypeLib> library;
    Ptr<ITypeInfo> info;
    TYPEATTR* attr = nullptr;
    bool dual = SUCCEEDED(LoadRegTypeLib(LIBID_Kelvary, 1, 0, 0, library.Out())) &&
                SUCCEEDED(library->GetTypeInfoOfGuid(__uuidof(_InfoLink), info.Out())) &&
                SUCCEEDED(info->GetTypeAttr(&attr));
    if (attr != nullptr) {
      dual = (attr->wTypeFlags & TYPEFLAG_FDUAL) != 0;
      info->ReleaseTypeAttr(attr);
    }
    Check(dual, "the registered type library declares _InfoLink dual");
  }

  // Properties: a let through the vtable reads back the same early and late.
  {
    Bstr order(L"LastName"), back;
    StdDBTypes type = sdbOracle;
    VARIANT_BOOL safe = VARIANT_FALSE;
    const bool set = link->put_MainDBType(sdbAccess) == S_OK &&
                     link->put_ORDERFIELD1(order.b) == S_OK &&
                     link->put_UseSafeDelete(VARIANT_TRUE) == S_OK;
    const bool read = link->get_MainDBType(&type) == S_OK &&
                      link->get_ORDERFIELD1(back.Out()) == S_OK &&
                      link->get_UseSafeDelete(&safe) == S_OK;
    Outcome late_order = Call(link.p, L"ORDERFIELD1", DISPATCH_PROPERTYGET, {});
    Outcome late_safe = Call(link.p, L"UseSafeDelete", DISPATCH_PROPERTYGET, {});
    Check(set && read && type == sdbAccess && back.Text() == L"LastName" && safe == VARIANT_TRUE &&
              late_order.Text() == L"LastName" && V_VT(&late_safe.result) == VT_BOOL &&
              V_BOOL(&late_safe.result) == VARIANT_TRUE,
          "let and get of a Long, a text and a Boolean property, read back early and late");
  }

  // ConnectDefault, its optional argument left out; the connections it
  // opens are one object each, called through their own vtable.
  Ptr<_Connection> main_xion, sys_xion;
  {
    Bstr main_dsn(main_db), sys_dsn(system_db);
    Ptr<_Connection> given_main, given_sys;
    VARIANT direct = Missing();
    VARIANT_BOOL ok = VARIANT_FALSE;
    const HRESULT hr =
        link->ConnectDefault(&given_main.p, &given_sys.p, main_dsn.b, sys_dsn.b, &direct, &ok);
    Check(hr == S_OK && ok == VARIANT_TRUE, "ConnectDefault through the vtable");
    Ptr<_Connection> again;
    ObjectStateEnum state = adStateClosed;
    Bstr version;
    Outcome late_app = Call(link.p, L"AppDataXion", DISPATCH_PROPERTYGET, {});
    const bool read = link->get_AppDataXion(main_xion.Out()) == S_OK &&
                      link->get_ConfigsXion(sys_xion.Out()) == S_OK &&
                      link->get_AppDataXion(again.Out()) == S_OK;
    Check(read && main_xion.p != nullptr && again.p == main_xion.p && sys_xion.p != nullptr &&
              sys_xion.p != main_xion.p && V_VT(&late_app.result) == VT_DISPATCH &&
              static_cast<IUnknown*>(V_DISPATCH(&late_app.result)) ==
                  static_cast<IUnknown*>(main_xion.p),
          "AppDataXion read early twice and late is one object (Is holds); ConfigsXion another");
    if (main_xion.p == nullptr) return 1;
    Check(main_xion->get_State(&state) == S_OK && state == adStateOpen &&
              main_xion->get_Version(version.Out()) == S_OK &&
              version.Text() ==
                  Call(AsDispatch(main_xion.p), L"Version", DISPATCH_PROPERTYGET, {}).Text(),
          "the connection answers through its own vtable");
  }

  // Look-ups, optional argument left out or passed, and by-reference
  // arguments of every kind: the same as late binding.
  {
    Bstr left_out, passed_in;
    const HRESULT a = link->GetDescription(1, 7, Missing(), left_out.Out());
    Arg four(4);
    const HRESULT b = link->GetDescription(1, 7, four.v, passed_in.Out());
    Outcome late_a = Method(link.p, L"GetDescription", {Arg(1), Arg(7)});
    Outcome late_b = Method(link.p, L"GetDescription", {Arg(1), Arg(7), Arg(4)});
    Check(a == S_OK && b == S_OK && left_out.Text() == L"Dunmore" &&
              left_out.Text() == late_a.Text() && passed_in.Text() == late_b.Text(),
          "GetDescription with its optional argument left out and passed");

    Bstr display, value, table_name, sql, caption;
    LONG table = 0, result = 0;
    ProjectDataSources source = pdsRawData;
    Var many, screen, secondary;
    const HRESULT c =
        link->GetSearchLinkDetails(2, &display.b, &value.b, &table, &table_name.b, &source, &sql.b,
                                   &caption.b, &many.v, &screen.v, &secondary.v, &result);
    Var late_vars[10];
    std::vector<Arg> late_args{Arg(2)};
    for (Var& v : late_vars)
      late_args.push_back(Arg::Ref(&v.v));
    Outcome late_c = Method(link.p, L"GetSearchLinkDetails", std::move(late_args));
    const std::wstring early_texts[10] = {
        display.Text(),          value.Text(),    std::to_wstring(table), table_name.Text(),
        std::to_wstring(source), sql.Text(),      caption.Text(),         many.Text(),
        screen.Text(),           secondary.Text()};
    bool all = c == S_OK && late_c.hr == S_OK && late_c.Long() == result;
    for (int i = 0; i < 10; ++i)
      all = all && early_texts[i] == late_vars[i].Text();
    Check(all && display.Text() == L"LastName",
          "GetSearchLinkDetails: every by-reference argument (text, Long, Variant) written back "
          "as late binding writes it");
    LONG again = 0;
    Bstr d2, v2, t2, s2, c2;
    Check(link->GetSearchLinkDetails(2, &d2.b, &v2.b, &table, &t2.b, &source, &s2.b, &c2.b, nullptr,
                                     nullptr, nullptr, &again) == S_OK &&
              again == result && t2.Text() == table_name.Text(),
          "GetSearchLinkDetails with its optional by-reference arguments left out (null)");
  }

  // A recordset filled through the vtable and walked through the
  // recordset's, fields' and field's vtables, beside a late-bound walk.
  Ptr<_Recordset> rs;
  {
    Bstr sql(L"SELECT ID, LastName FROM patients ORDER BY ID");
    VARIANT_BOOL filled = VARIANT_FALSE;
    Check(link->FillRecordSet(pdsmaindata, &rs.p, sql.b, adOpenStatic, adLockOptimistic, &filled) ==
                  S_OK &&
              filled == VARIANT_TRUE && rs.p != nullptr,
          "FillRecordSet through the vtable hands a recordset back");
    if (rs.p == nullptr) return 1;
    std::wstring early_walk, late_walk;
    VARIANT_BOOL at_end = VARIANT_FALSE;
    for (int row = 0; row < 50 && rs->get_EOF(&at_end) == S_OK && at_end == VARIANT_FALSE; ++row) {
      Ptr<_Fields> fields;
      Ptr<_Field> field;
      Var value;
      Arg name(L"LastName");
      if (rs->get_Fields(fields.Out()) != S_OK || fields->get_Item(name.v, field.Out()) != S_OK ||
          field->get_Value(&value.v) != S_OK)
        break;
      early_walk += value.Text() + L";";
      rs->MoveNext();
    }
    Method(rs.p, L"MoveFirst");
    for (int row = 0; row < 50; ++row) {
      Outcome eof = Call(rs.p, L"EOF", DISPATCH_PROPERTYGET, {});
      if (eof.hr != S_OK || V_BOOL(&eof.result) != VARIANT_FALSE) break;
      Outcome field = Call(rs.p, L"Fields", DISPATCH_PROPERTYGET, {Arg(L"LastName")});
      if (field.hr != S_OK || V_VT(&field.result) != VT_DISPATCH) break;
      late_walk +=
          Call(V_DISPATCH(&field.result), L"Value", DISPATCH_PROPERTYGET, {}).Text() + L";";
      Method(rs.p, L"MoveNext");
    }
    Check(!early_walk.empty() && early_walk == late_walk,
          "a walk through the vtables reads what rs(\"LastName\") reads late-bound");

    // Enumeration: the fields' enumerator through the vtable.
    Ptr<_Fields> fields;
    Ptr<IUnknown> items;
    Ptr<IEnumVARIANT> walk;
    LONG count = 0;
    ULONG seen = 0;
    if (rs->get_Fields(fields.Out()) == S_OK && fields->get_Count(&count) == S_OK &&
        fields->get_NewEnum(items.Out()) == S_OK &&
        items->QueryInterface(IID_IEnumVARIANT, walk.Void()) == S_OK) {
      Var item;
      ULONG got = 0;
      while (walk->Next(1, &item.v, &got) == S_OK && got == 1) {
        ++seen;
        VariantClear(&item.v);
      }
    }
    Check(count == 2 && seen == 2, "the fields' enumerator through the vtable: For Each");

    // The system's own error, the same code and description as late.
    Ptr<_Field> none;
    Arg unknown(L"NoSuchField");
    SetErrorInfo(0, nullptr);
    if (fields.p == nullptr) return 1;
    const HRESULT early = fields->get_Item(unknown.v, none.Out());
    const std::wstring text = ErrorText();
    Outcome late = Call(AsDispatch(fields.p), L"Item", DISPATCH_PROPERTYGET, {Arg(L"NoSuchField")});
    Check(SameFailure(early, text, late) && late.hr == DISP_E_EXCEPTION && !text.empty() &&
              none.p == nullptr,
          "an unknown field: the system's error number as the HRESULT, its description in the "
          "error object, as late binding reports it");
  }

  // Standard failures: a value a parameter cannot take, an object of
  // another kind where a recordset goes; nothing is written.
  {
    Arg list;
    V_VT(&list.v) = VT_ARRAY | VT_I4;
    V_ARRAY(&list.v) = SafeArrayCreateVector(VT_I4, 0, 2);
    Bstr out(L"untouched");
    Bstr field(L"F");
    const HRESULT early = link->GetComparisionClauseForDefEqual(
        field.b, gdtText, list.v, VARIANT_FALSE, VARIANT_FALSE, out.Out());
    Outcome late = Method(link.p, L"GetComparisionClauseForDefEqual",
                          {Arg(L"F"), Arg(1), list, Arg::Bool(false), Arg::Bool(false)});
    Check(early == DISP_E_TYPEMISMATCH && late.scode == DISP_E_TYPEMISMATCH && out.b == nullptr,
          "an array where a value goes: DISP_E_TYPEMISMATCH early and late, no result");

    VARIANT_BOOL valid = VARIANT_TRUE;
    SetErrorInfo(0, nullptr);
    const HRESULT foreign = link->IsValidRecord(reinterpret_cast<_Recordset*>(main_xion.p), &valid);
    const std::wstring text = ErrorText();
    Arg connection;
    V_VT(&connection.v) = VT_DISPATCH;
    V_DISPATCH(&connection.v) = AsDispatch(main_xion.p);
    main_xion->AddRef();
    Outcome late_foreign = Method(link.p, L"IsValidRecord", {connection});
    Check(SameFailure(foreign, text, late_foreign) && valid == VARIANT_FALSE,
          "a connection passed where a recordset goes: refused early as late");
  }

  // A stored query through the query interpreter's vtable.
  {
    CLSIDFromProgID(L"Kelvary.QueryInterpretor", &clsid);
    Ptr<_QueryInterpretor> qi;
    CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_QueryInterpretor), qi.Void());
    Bstr empty(L""), final_sql;
    Ptr<_Recordset> result;
    VARIANT_BOOL assigned = VARIANT_FALSE;
    LONG count = 0;
    const bool ran = qi.p != nullptr && qi->InitSettings(empty.b, 1, 1, VARIANT_FALSE) == S_OK &&
                     qi->EncodeSQLStmt() == S_OK && qi->get_FinalSQLStmt(final_sql.Out()) == S_OK &&
                     qi->AssignRecordSet(&result.p, &assigned) == S_OK;
    Check(ran && assigned == VARIANT_TRUE && result.p != nullptr &&
              result->get_RecordCount(&count) == S_OK && count > 0 &&
              final_sql.Text() ==
                  Call(AsDispatch(qi.p), L"FinalSQLStmt", DISPATCH_PROPERTYGET, {}).Text(),
          "InitSettings, EncodeSQLStmt and AssignRecordSet through the vtable");
    if (qi.p != nullptr) SweepReads(qi.p, "QueryInterpretor");
    Ptr<_ConditionNodes> conditions;
    if (qi.p != nullptr && qi->get_CurrentConditions(conditions.Out()) == S_OK && conditions.p) {
      SweepReads(conditions.p, "ConditionNodes");
      Ptr<_ConditionNode> first;
      Arg one(1);
      if (conditions->get_Item(one.v, first.Out()) == S_OK && first.p)
        SweepReads(first.p, "ConditionNode");
    }
  }

  // Every property read of the objects a host holds (distinct values first,
  // so that a read of the wrong member shows).
  link->put_CurrentUserSessionID(101);
  link->put_DBRole(static_cast<DBRoles>(3));
  link->put_CurrentPhysicalLocationID(7);
  link->put_CurrPhysLocIDPrefix(8);
  link->put_CurrentUserID(11);
  SweepReads(link.p, "InfoLink");
  SweepReads(main_xion.p, "Connection");
  Method(rs.p, L"MoveFirst");
  SweepReads(rs.p, "Recordset");
  {
    Ptr<_Fields> fields;
    Ptr<_Field> field;
    Arg first(0);
    if (rs->get_Fields(fields.Out()) == S_OK && fields->get_Item(first.v, field.Out()) == S_OK) {
      SweepReads(fields.p, "Fields");
      SweepReads(field.p, "Field");
    }
  }
  for (const wchar_t* progid :
       {L"Kelvary.QueryShapeNest", L"Kelvary.QueryDataTable", L"Kelvary.QueryOutputField",
        L"Kelvary.QueryTemplateSortOption", L"Kelvary.RepParam", L"Kelvary.ValueSet",
        L"Kelvary.FieldLink", L"Kelvary.FieldLinks"}) {
    Ptr<IDispatch> object;
    if (SUCCEEDED(CLSIDFromProgID(progid, &clsid))) {
      CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.Void());
    }
    char label[100];
    std::snprintf(label, sizeof label, "%ls", progid);
    if (object.p != nullptr) {
      SweepReads(object.p, label);
    } else {
      Check(false, label);
    }
  }
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  return wine_client::ClientMain(argc, argv, "kelvary_early_client", Run);
}
