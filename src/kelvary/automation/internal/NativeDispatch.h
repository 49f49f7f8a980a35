// NativeDispatch<C>: the dispatch object over one native object of the
// system, answering from C's member table; and the identity registry that
// keeps one such wrapper per native object, so that two reads of the same
// object hand a host the same wrapper (and `Is` holds).
//
// The registry holds wrappers weakly: a wrapper lives as long as a host (or
// a Variant) holds it, and keeps its native object alive. An identity is the
// native object's address plus a facet, so that one recordset can have a
// wrapper for itself and one for its Fields collection. The registry is
// process-wide and locked, so wrappers may be made on any thread; each
// object is still used by one thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/MemberTable.h"

namespace kelvary::automation {

// ClassTraits<C>::Table(): C's member table. Specialised for every class
// that has one (internal/Classes.h).
template <class C>
struct ClassTraits;

namespace internal {

struct Identity {
  const void* native = nullptr;
  int64_t facet = 0;
  friend bool operator==(const Identity&, const Identity&) = default;
};

// WrapperFor: the live wrapper of identity, or the one make returns, which
// is remembered for next time.
std::shared_ptr<DispatchObject> WrapperFor(
    const Identity& identity, const std::function<std::shared_ptr<DispatchObject>()>& make);
// Forget drops identity's entry when it names wrapper (a wrapper's last act).
void Forget(const Identity& identity, const DispatchObject* wrapper);
// LiveWrapperCount: wrappers alive now; for tests of the registry.
size_t LiveWrapperCount();

}  // namespace internal

// SystemDispatch: what the wrappers of the system's objects share.
class SystemDispatch : public DispatchObject {
 public:
  // NativeAsObject: the native object when it is a Variant-held Object
  // (recordsets, connections, the query model), otherwise nullptr.
  virtual std::shared_ptr<Object> NativeAsObject() const = 0;
};

template <class C>
class NativeDispatch final : public SystemDispatch {
 public:
  NativeDispatch(std::shared_ptr<C> native, internal::Identity identity)
      : native_(std::move(native)), identity_(identity) {}
  ~NativeDispatch() override { internal::Forget(identity_, this); }
  NativeDispatch(const NativeDispatch&) = delete;
  NativeDispatch& operator=(const NativeDispatch&) = delete;

  DispId GetIdOfName(std::string_view name) override {
    return ClassTraits<C>::Table().IdOfName(name);
  }
  Variant Invoke(DispId id, InvokeFlags flags, std::span<Arg> args) override {
    return InvokeMember(*this, ClassTraits<C>::Table(), id, flags, args);
  }
  const MemberTable* Table() const override { return &ClassTraits<C>::Table(); }
  std::shared_ptr<Object> NativeAsObject() const override {
    if constexpr (std::is_base_of_v<Object, C>) {
      return native_;
    } else {
      return nullptr;
    }
  }

  C& Native() const { return *native_; }
  const std::shared_ptr<C>& NativePtr() const { return native_; }

 private:
  std::shared_ptr<C> native_;
  internal::Identity identity_;
};

namespace internal {
// IdentityOf: a native object's identity; the views of a recordset
// overload it beside their declarations (found by argument lookup).
template <class C>
Identity IdentityOf(const std::shared_ptr<C>& native) {
  return Identity{native.get(), 0};
}
}  // namespace internal

// Wrap: the one wrapper of native (nullptr for nullptr).
template <class C>
std::shared_ptr<DispatchObject> Wrap(std::shared_ptr<C> native) {
  if (!native) return nullptr;
  using internal::IdentityOf;
  const internal::Identity id = IdentityOf(native);
  return internal::WrapperFor(
      id, [&] { return std::make_shared<NativeDispatch<C>>(std::move(native), id); });
}

// NativeOf: the C behind a wrapper, or nullptr when object is not a wrapper
// of a C.
template <class C>
std::shared_ptr<C> NativeOf(const DispatchObject* object) {
  auto* wrapper = dynamic_cast<const NativeDispatch<C>*>(object);
  return wrapper == nullptr ? nullptr : wrapper->NativePtr();
}

}  // namespace kelvary::automation
