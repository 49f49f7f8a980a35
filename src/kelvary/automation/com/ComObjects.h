// The objects of the in-process server.
//
// ComDispatch: the one generic dispatch object that serves every class of
// the system. It holds a library DispatchObject and answers the runtime's
// IDispatch from that object's member table: names are looked up without
// regard to case, calls go through the table, failures come back as the
// runtime's codes with the argument's position, or as an EXCEPINFO carrying
// the system's number and description. A class with events also answers as
// a connection point container. There is one wrapper per library object
// (Wrap), so a host comparing two references with `Is` sees the same object.
// A class's dual interface is served by its generated face (DualFace.h): the
// face's pointer is the one every host gets, for IUnknown, IDispatch and the
// class's own interface alike, so that a host binding early can call the
// interface's vtable on any reference it holds.
//
// HostObject: the other direction, a host's dispatch object (a list control,
// a date control, an event sink, or anything else passed in) driven by
// member name through the library's DispatchObject interface.
//
// The server is apartment-threaded: all calls arrive on the thread that
// created the object.
#pragma once

#include "kelvary/automation/com/ComValues.h"

#include <ocidl.h>

#include <atomic>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "kelvary/automation/MemberTable.h"

namespace kelvary::com {

// Counts live objects and locks for DllCanUnloadNow.
void ModuleAddRef();
void ModuleRelease();
bool ModuleInUse();
// The server's own module, for its path and its embedded type library.
HMODULE ModuleHandle();
// TypeLibrary: the embedded type library, loaded once (nullptr when it
// cannot be loaded; callers then answer without type information).
ITypeLib* TypeLibrary();

class EventPoint;
class DualBase;
class ComDispatch;
struct Result;

// NewDualFace: the vtable face of the interface iid for owner (generated with
// the interfaces, DualInterfaces.cpp); nullptr for an interface it does not
// know.
DualBase* NewDualFace(REFIID iid, ComDispatch* owner);

class ComDispatch final : public IDispatch,
                          public IProvideClassInfo,
                          public ISupportErrorInfo,
                          public IConnectionPointContainer {
 public:
  // Wrap: the wrapper of object (made on first use), with one reference for
  // the caller.
  static IDispatch* Wrap(const std::shared_ptr<automation::DispatchObject>& object);
  // Unwrap: the library object behind one of our wrappers; nullptr for any
  // other object.
  static std::shared_ptr<automation::DispatchObject> Unwrap(IUnknown* unknown);

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                                   UINT* arg_error) override;
  // IProvideClassInfo
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;
  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override;
  // IConnectionPointContainer (classes with events only)
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** out) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** out) override;

  // CallEarly: an entry of the vtable face: the call Invoke makes, with the
  // arguments in call order. A failure leaves its description in the
  // thread's error object; the system's own errors come back as the HRESULT
  // of their number.
  HRESULT CallEarly(DISPID id, WORD flags, std::initializer_list<VARIANT> args, const Result& out);

  const std::shared_ptr<automation::DispatchObject>& Object() const { return object_; }

 private:
  explicit ComDispatch(std::shared_ptr<automation::DispatchObject> object);
  ~ComDispatch();
  bool HasEvents() const;
  // Primary: the pointer hosts hold: the dual face, or this when the class
  // has none.
  IDispatch* Primary();

  std::atomic<ULONG> refs_{1};
  std::shared_ptr<automation::DispatchObject> object_;
  const automation::MemberTable* table_;
  IID interface_id_{};
  EventPoint* events_ = nullptr;  // made on first FindConnectionPoint
  DualBase* face_ = nullptr;      // owned
};

class HostObject final : public automation::DispatchObject {
 public:
  // Takes a reference of its own on dispatch.
  explicit HostObject(IDispatch* dispatch);
  ~HostObject() override;
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  automation::DispId GetIdOfName(std::string_view name) override;
  Variant Invoke(automation::DispId id, automation::InvokeFlags flags,
                 std::span<automation::Arg> args) override;
  // The host's object answers for the interface identities it implements
  // (its standard list controls, for one).
  bool ImplementsInterface(std::string_view iid) const override;

  IDispatch* Dispatch() const { return dispatch_; }

 private:
  IDispatch* dispatch_;
};

// MakeEnumerator: a runtime enumerator (IEnumVARIANT) over the library's.
IUnknown* MakeEnumerator(std::shared_ptr<automation::Enumerator> items);

// GuidOf: the identity written "{...}".
bool GuidOf(std::string_view text, GUID* out);
std::string TextOfGuid(REFGUID guid);

}  // namespace kelvary::com
