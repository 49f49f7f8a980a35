// KeyedCollection<T>: the platform's ordered collection of object
// references. Members keep insertion order at positions 1..Count; each may
// carry a key, unique among the members and compared without regard to
// letter case. Look-up by position or by key is O(1); Remove closes the gap.
//
// An absent position or key raises Error 5; a duplicate key raises Error 457
// and leaves the collection as it was. The collection holds references: the
// member returned by Item is the very object that was added.
//
// Not thread-safe; one thread uses a collection at a time.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/Variant.h"

namespace kelvary {

namespace internal {
inline std::string FoldKey(std::string_view key) {
  return LowerCase(key);
}
[[noreturn]] inline void ThrowAbsentMember() {
  throw Error(kErrInvalidProcedureCall, "Invalid procedure call or argument");
}
}  // namespace internal

template <class T>
class KeyedCollection {
 public:
  using Member = std::shared_ptr<T>;

 private:
  struct Entry {
    Member item;
    std::string key;  // as given; "" for none
  };

 public:
  // Add appends item; with a non-empty key it is reachable by that key too.
  // REQUIRES: no member already has the key (compared without case).
  void Add(Member item, std::string_view key = {}) {
    if (key.empty()) {
      entries_.push_back(Entry{std::move(item), std::string()});
      return;
    }
    std::string folded = internal::FoldKey(key);
    if (index_.count(folded) != 0) {
      throw Error(kErrKeyAlreadyAssociated,
                  "This key is already associated with an element of this collection");
    }
    entries_.push_back(Entry{std::move(item), std::string(key)});
    index_.emplace(std::move(folded), entries_.back().item);
  }

  // Item: the member at a 1-based position, or with a key.
  const Member& Item(int32_t position) const {
    if (position < 1 || position > Count()) internal::ThrowAbsentMember();
    return entries_[static_cast<size_t>(position - 1)].item;
  }
  const Member& Item(std::string_view key) const {
    auto it = index_.find(internal::FoldKey(key));
    if (it == index_.end()) internal::ThrowAbsentMember();
    return it->second;
  }
  const Member& Item(const char* key) const { return Item(std::string_view(key)); }
  const Member& Item(const std::string& key) const { return Item(std::string_view(key)); }
  // By a variant: a number is a position, text is a key.
  const Member& Item(const Variant& index) const {
    if (index.IsString()) return Item(index.Text());
    if (index.IsObject() || index.IsEmpty() || index.IsNull()) {
      throw Error(kErrTypeMismatch, "Type mismatch");
    }
    return Item(CLng(index));
  }

  // Find: the member with a key, or nullptr; never raises.
  Member Find(std::string_view key) const {
    auto it = index_.find(internal::FoldKey(key));
    return it == index_.end() ? nullptr : it->second;
  }
  bool Contains(std::string_view key) const { return index_.count(internal::FoldKey(key)) != 0; }

  int32_t Count() const { return static_cast<int32_t>(entries_.size()); }

  // KeyAt: the key of the member at a position, "" when it has none.
  const std::string& KeyAt(int32_t position) const {
    if (position < 1 || position > Count()) internal::ThrowAbsentMember();
    return entries_[static_cast<size_t>(position - 1)].key;
  }

  void Remove(int32_t position) {
    if (position < 1 || position > Count()) internal::ThrowAbsentMember();
    EraseAt(static_cast<size_t>(position - 1));
  }
  void Remove(std::string_view key) {
    auto it = index_.find(internal::FoldKey(key));
    if (it == index_.end()) internal::ThrowAbsentMember();
    const std::string folded = it->first;
    for (size_t i = 0; i < entries_.size(); ++i) {
      if (!entries_[i].key.empty() && internal::FoldKey(entries_[i].key) == folded) {
        EraseAt(i);
        return;
      }
    }
  }
  void Remove(const char* key) { Remove(std::string_view(key)); }
  void Remove(const std::string& key) { Remove(std::string_view(key)); }
  void Remove(const Variant& index) {
    if (index.IsString()) return Remove(index.Text());
    if (index.IsObject() || index.IsEmpty() || index.IsNull()) {
      throw Error(kErrTypeMismatch, "Type mismatch");
    }
    Remove(CLng(index));
  }

  // Clear removes position 1 while there are members: members leave from
  // the front, so they are released in insertion order.
  void Clear() {
    while (Count() >= 1)
      Remove(1);
  }

  // Iteration over the members in order (NewEnum).
  class const_iterator {
   public:
    using value_type = Member;
    using difference_type = std::ptrdiff_t;
    using reference = const Member&;
    using pointer = const Member*;
    using iterator_category = std::forward_iterator_tag;

    const_iterator() = default;
    reference operator*() const { return it_->item; }
    pointer operator->() const { return &it_->item; }
    const_iterator& operator++() {
      ++it_;
      return *this;
    }
    const_iterator operator++(int) {
      const_iterator copy = *this;
      ++it_;
      return copy;
    }
    friend bool operator==(const const_iterator& a, const const_iterator& b) {
      return a.it_ == b.it_;
    }

   private:
    friend class KeyedCollection;
    using Base = typename std::vector<Entry>::const_iterator;
    explicit const_iterator(Base it) : it_(it) {}
    Base it_;
  };
  const_iterator begin() const { return const_iterator(entries_.begin()); }
  const_iterator end() const { return const_iterator(entries_.end()); }

 private:
  void EraseAt(size_t i) {
    if (!entries_[i].key.empty()) index_.erase(internal::FoldKey(entries_[i].key));
    // Keep the member alive until the collection is consistent again: its
    // destructor may look at the collection.
    Member released = std::move(entries_[i].item);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
    released.reset();
  }

  std::vector<Entry> entries_;
  std::unordered_map<std::string, Member> index_;
};

}  // namespace kelvary
