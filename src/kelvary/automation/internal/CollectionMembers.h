// The members every collection of the system shares, after its own Add:
// Item (the default member), Count, Remove, NewEnum (the enumeration
// member), Clear.
#pragma once

#include <memory>
#include <vector>

#include "kelvary/automation/internal/Binding.h"

namespace kelvary::automation::internal {

// Members: the wrapped members of a collection, in order.
template <class Collection>
std::vector<Variant> WrappedMembers(const Collection& c) {
  std::vector<Variant> items;
  for (const auto& member : c)
    items.push_back(Converter<std::remove_cvref_t<decltype(member)>>::Write(member));
  return items;
}

template <class Collection>
void AddCollectionMembers(ClassBuilder<Collection>& b) {
  b.Getter(
      "Item",
      +[](Collection& c, const Variant& vntIndexKey) { return c.Item(ValueOf(vntIndexKey)); },
      {"vntIndexKey"}, kDispIdValue);
  b.Getter(
      "Count", +[](Collection& c) { return c.Count(); });
  b.Method("Remove",
           +[](Collection& c, const Variant& vntIndexKey) { c.Remove(ValueOf(vntIndexKey)); },
           {"vntIndexKey"});
  b.Getter(
      "NewEnum", +[](Collection& c) { return std::make_shared<Enumerator>(WrappedMembers(c)); }, {},
      kDispIdNewEnum);
  b.Method(
      "Clear", +[](Collection& c) { c.Clear(); });
}

}  // namespace kelvary::automation::internal
