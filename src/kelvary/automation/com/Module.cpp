// The in-process server's module: its entry points, the class factory that
// makes every creatable class by its class identity, and self-registration.
//
// Registration writes, for each creatable class, its ProgID ("Kelvary." and
// the class name) and its class identity with this file as the in-process
// server (apartment-threaded), and registers the embedded type library. It
// goes per machine when the machine's class registry is writable (an
// elevated registration) and per user otherwise; DllInstall chooses
// explicitly ("user" or "machine", as in regsvr32 /n /i:user).
#include <olectl.h>

#include <atomic>
#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/com/ComObjects.h"
#include "kelvary/platform/Messages.h"

// In the runtime's library since Vista, but missing from the cross headers.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help_dir);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library_id, WORD major, WORD minor, LCID lcid,
                                        SYSKIND syskind);
}

namespace kelvary::com {

namespace {

HMODULE module_handle = nullptr;
std::atomic<long> module_count{0};

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(module_handle, path.data(), static_cast<DWORD>(path.size()));
    if (n < path.size()) {
      path.resize(n);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

// Inside a host the system's messages are the platform's modal message box.
MsgBoxResult ShowMessageBox(const std::string& text, MsgBoxStyle buttons,
                            const std::string& title) {
  const std::wstring wide_text = Widen(text);
  const std::wstring wide_title = Widen(title.empty() ? "Kelvary" : title);
  UINT style = MB_APPLMODAL | MB_SETFOREGROUND;
  switch (buttons) {
    case vbYesNo:
      style |= MB_YESNO | MB_ICONQUESTION;
      break;
    case vbOKCancel:
      style |= MB_OKCANCEL;
      break;
    default:
      style |= MB_OK;
      break;
  }
  switch (MessageBoxW(GetActiveWindow(), wide_text.c_str(), wide_title.c_str(), style)) {
    case IDYES:
      return vbYes;
    case IDNO:
      return vbNo;
    case IDCANCEL:
      return vbCancel;
    default:
      return buttons == vbYesNo ? vbNo : vbOK;
  }
}

void InstallMessageBox() {
  static std::once_flag once;
  std::call_once(once, [] { SetMessageHandler(ShowMessageBox); });
}

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const automation::MemberTable* table) : table_(table) { ModuleAddRef(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IClassFactory) {
      *out = static_cast<IClassFactory*>(this);
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
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      InstallMessageBox();
      auto object = automation::CreateObject(table_->ProgId());
      if (!object) return E_UNEXPECTED;
      IDispatch* wrapper = ComDispatch::Wrap(object);
      const HRESULT hr = wrapper->QueryInterface(riid, out);
      wrapper->Release();
      return hr;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_UNEXPECTED;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      ModuleAddRef();
    } else {
      ModuleRelease();
    }
    return S_OK;
  }

 private:
  ~ClassFactory() { ModuleRelease(); }
  std::atomic<ULONG> refs_{1};
  const automation::MemberTable* table_;
};

// --- registry ---------------------------------------------------------------

bool SetValue(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  HKEY handle = nullptr;
  if (RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr) !=
      ERROR_SUCCESS) {
    return false;
  }
  const LONG rc =
      RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                     static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(handle);
  return rc == ERROR_SUCCESS;
}

void DeleteTree(HKEY root, const std::wstring& key) {
  RegDeleteTreeW(root, key.c_str());
}

// ClassesRoot: where the classes go, per machine or per user.
std::wstring ClassesKey() {
  return L"Software\\Classes\\";
}

bool MachineWritable() {
  HKEY handle = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes", 0, KEY_WRITE, &handle) !=
      ERROR_SUCCESS) {
    return false;
  }
  RegCloseKey(handle);
  return true;
}

HRESULT RegisterClasses(bool per_user) {
  const HKEY root = per_user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  const std::wstring base = ClassesKey();
  const std::wstring path = ModulePath();
  const std::wstring library_id = Widen(automation::kTypeLibraryId);
  const std::wstring version = std::to_wstring(automation::kTypeLibraryMajor) + L"." +
                               std::to_wstring(automation::kTypeLibraryMinor);
  for (const automation::MemberTable* table : automation::AllTables()) {
    if (!table->Creatable()) continue;
    const std::wstring prog_id = Widen(table->ProgId());
    const std::wstring class_id = Widen(table->Guids().class_id);
    const std::wstring versioned = prog_id + L".1";
    const std::wstring clsid_key = base + L"CLSID\\" + class_id;
    const bool ok =
        SetValue(root, base + prog_id, nullptr, prog_id) &&
        SetValue(root, base + prog_id + L"\\CLSID", nullptr, class_id) &&
        SetValue(root, base + prog_id + L"\\CurVer", nullptr, versioned) &&
        SetValue(root, base + versioned, nullptr, prog_id) &&
        SetValue(root, base + versioned + L"\\CLSID", nullptr, class_id) &&
        SetValue(root, clsid_key, nullptr, prog_id) &&
        SetValue(root, clsid_key + L"\\InprocServer32", nullptr, path) &&
        SetValue(root, clsid_key + L"\\InprocServer32", L"ThreadingModel", L"Apartment") &&
        SetValue(root, clsid_key + L"\\ProgID", nullptr, versioned) &&
        SetValue(root, clsid_key + L"\\VersionIndependentProgID", nullptr, prog_id) &&
        SetValue(root, clsid_key + L"\\TypeLib", nullptr, library_id) &&
        SetValue(root, clsid_key + L"\\Version", nullptr, version);
    if (!ok) return per_user ? SELFREG_E_CLASS : E_ACCESSDENIED;
  }
  ITypeLib* library = TypeLibrary();
#ifdef KELVARY_HAS_TYPELIB
  if (library == nullptr) return SELFREG_E_TYPELIB;
#else
  if (library == nullptr) return S_OK;  // built without its type library
#endif
  std::wstring mutable_path = path;
  const HRESULT hr = per_user ? RegisterTypeLibForUser(library, mutable_path.data(), nullptr)
                              : RegisterTypeLib(library, mutable_path.data(), nullptr);
  return FAILED(hr) ? SELFREG_E_TYPELIB : S_OK;
}

HRESULT UnregisterClasses(bool per_user) {
  const HKEY root = per_user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  const std::wstring base = ClassesKey();
  for (const automation::MemberTable* table : automation::AllTables()) {
    if (!table->Creatable()) continue;
    const std::wstring prog_id = Widen(table->ProgId());
    DeleteTree(root, base + prog_id);
    DeleteTree(root, base + prog_id + L".1");
    DeleteTree(root, base + L"CLSID\\" + Widen(table->Guids().class_id));
  }
  GUID library_id{};
  if (GuidOf(automation::kTypeLibraryId, &library_id)) {
    if (per_user) {
      UnRegisterTypeLibForUser(library_id, automation::kTypeLibraryMajor,
                               automation::kTypeLibraryMinor, LOCALE_NEUTRAL, SYS_WIN32);
    } else {
      UnRegisterTypeLib(library_id, automation::kTypeLibraryMajor, automation::kTypeLibraryMinor,
                        LOCALE_NEUTRAL, SYS_WIN32);
    }
  }
  return S_OK;
}

template <class Body>
HRESULT Shielded(Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace

void ModuleAddRef() {
  ++module_count;
}
void ModuleRelease() {
  --module_count;
}
bool ModuleInUse() {
  return module_count.load() > 0;
}
HMODULE ModuleHandle() {
  return module_handle;
}

ITypeLib* TypeLibrary() {
  static ITypeLib* library = [] {
    ITypeLib* loaded = nullptr;
    const std::wstring path = ModulePath();
    if (FAILED(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &loaded)))
      return static_cast<ITypeLib*>(nullptr);
    return loaded;  // kept for the life of the process
  }();
  return library;
}

}  // namespace kelvary::com

using namespace kelvary;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    com::module_handle = instance;
    DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return com::Shielded([&]() -> HRESULT {
    for (const automation::MemberTable* table : automation::AllTables()) {
      GUID class_id{};
      if (!table->Creatable() || !com::GuidOf(table->Guids().class_id, &class_id)) continue;
      if (class_id != clsid) continue;
      auto* factory = new com::ClassFactory(table);
      const HRESULT hr = factory->QueryInterface(riid, out);
      factory->Release();
      return hr;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  });
}

STDAPI DllCanUnloadNow() {
  return com::ModuleInUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
  return com::Shielded([] { return com::RegisterClasses(!com::MachineWritable()); });
}

STDAPI DllUnregisterServer() {
  return com::Shielded([] { return com::UnregisterClasses(!com::MachineWritable()); });
}

// DllInstall(install, "user" | "machine"): registration where the caller says.
STDAPI DllInstall(BOOL install, LPCWSTR where) {
  return com::Shielded([&]() -> HRESULT {
    bool per_user;
    if (where == nullptr || where[0] == L'\0') {
      per_user = !com::MachineWritable();
    } else if (_wcsicmp(where, L"user") == 0) {
      per_user = true;
    } else if (_wcsicmp(where, L"machine") == 0) {
      per_user = false;
    } else {
      return E_INVALIDARG;
    }
    return install ? com::RegisterClasses(per_user) : com::UnregisterClasses(per_user);
  });
}

}  // extern "C"
