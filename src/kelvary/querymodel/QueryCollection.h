// QueryCollection<T>: what the eight collections of the query model share.
// Each collection (QueryShapeNests, QueryDataTables, ...) holds exactly one
// platform KeyedCollection and adds only its own Add; positions, keys, Item,
// Count, Remove, Clear and iteration are the platform's and behave alike in
// all eight.
//
// Members are shared references: the object Add returns is the object Item
// hands back, and removing a member or destroying the collection drops only
// the collection's reference. A collection is itself an Object, so a host
// can carry it in a Variant. Not thread-safe; one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/KeyedCollection.h"
#include "kelvary/platform/Variant.h"

namespace kelvary {

// GeneralCollection: the untyped keyed collection of the model, holding any
// value (texts, numbers or objects); a shape level lists its sorted output
// fields in one.
using GeneralCollection = KeyedCollection<Variant>;

template <class T>
class QueryCollection : public Object {
 public:
  using Member = std::shared_ptr<T>;

  // Item: the member at a 1-based position (a number) or with a key (text,
  // compared without case). An absent position or key raises Error 5.
  template <class IndexOrKey>
  const Member& Item(const IndexOrKey& vntIndexKey) const {
    return members_.Item(vntIndexKey);
  }

  // Count: the number of members.
  int32_t Count() const { return members_.Count(); }

  // Remove: drops the member at a position or with a key; later members move
  // down one place. An absent position or key raises Error 5.
  template <class IndexOrKey>
  void Remove(const IndexOrKey& vntIndexKey) {
    members_.Remove(vntIndexKey);
  }

  // Clear: removes position 1 until the collection is empty, so members are
  // released in insertion order.
  void Clear() { members_.Clear(); }

  // begin/end: the members in order (the collection's NewEnum).
  auto begin() const { return members_.begin(); }
  auto end() const { return members_.end(); }

 protected:
  // Insert appends a new member, under sKey unless sKey is "" (length 0 means
  // no key). A key already present (in any letter case) raises Error 457 and
  // inserts nothing; the caller's new member is then released.
  Member Insert(Member member, const std::string& sKey) {
    members_.Add(member, sKey);
    return member;
  }

 private:
  KeyedCollection<T> members_;
};

namespace internal {
// ValueOf: v as a plain value, for the Add arguments that are assigned by
// value and never by reference. Our objects have no default value to take,
// so an object here is refused with Error 438, as an assignment by value of
// such an object is in the automation runtime.
inline const Variant& ValueOf(const Variant& v) {
  if (v.IsObject()) {
    throw Error(kErrObjectDoesntSupportMember, "Object doesn't support this property or method");
  }
  return v;
}
}  // namespace internal

}  // namespace kelvary
