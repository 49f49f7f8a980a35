#include "kelvary/platform/KeyedCollection.h"
#include "support/ErrorNumber.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvary {
namespace {

struct Item {
  explicit Item(int v) : value(v) {}
  int value;
};

using testing::ErrorNumberOf;

TEST(KeyedCollection, PositionsAreOneBasedInInsertionOrderAndRemoveClosesTheGap) {
  KeyedCollection<Item> c;
  auto first = std::make_shared<Item>(10);
  c.Add(first, "k1");
  for (int i = 2; i <= 4; ++i)
    c.Add(std::make_shared<Item>(i * 10), "k" + std::to_string(i));
  EXPECT_EQ(c.Item(4)->value, 40);
  first->value = 11;  // members are shared, not copied
  EXPECT_EQ(c.Item(1)->value, 11);
  c.Remove(2);
  EXPECT_EQ(c.Item(2)->value, 30);
  EXPECT_FALSE(c.Contains("k2"));
  c.Remove("K4");
  EXPECT_EQ(c.Count(), 2);
  EXPECT_EQ(c.KeyAt(2), "k3");
}

TEST(KeyedCollection, KeysAreOptionalUniqueAndCaseInsensitive) {
  KeyedCollection<Item> c;
  c.Add(std::make_shared<Item>(1));
  c.Add(std::make_shared<Item>(2), "");  // an empty key is no key
  c.Add(std::make_shared<Item>(3), "Key");
  EXPECT_EQ(c.Item("KEY")->value, 3);
  EXPECT_EQ(c.Item(Variant("key"))->value, 3);
  EXPECT_EQ(c.Item(Variant(2.0))->value, 2);  // a number is a position
  // A duplicate key fails and leaves the collection unchanged.
  EXPECT_EQ(ErrorNumberOf([&] { c.Add(std::make_shared<Item>(4), "kEY"); }),
            kErrKeyAlreadyAssociated);
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(c.Item("key")->value, 3);
}

TEST(KeyedCollection, AbsentPositionsAndKeysRaiseInvalidArgument) {
  KeyedCollection<Item> c;
  c.Add(std::make_shared<Item>(1), "a");
  for (auto f : std::vector<std::function<void()>>{[&] { c.Item(0); }, [&] { c.Item(2); },
                                                   [&] { c.Item("b"); }, [&] { c.Remove(5); },
                                                   [&] { c.Remove("zz"); }}) {
    EXPECT_EQ(ErrorNumberOf(f), kErrInvalidProcedureCall);
  }
  EXPECT_EQ(ErrorNumberOf([&] { c.Item(Variant()); }), kErrTypeMismatch);
  EXPECT_EQ(c.Find("b"), nullptr);
  EXPECT_EQ(c.Count(), 1);
}

TEST(KeyedCollection, ClearReleasesFromTheFrontAndIterationFollowsOrder) {
  struct Tracked {
    Tracked(std::vector<int>* log, int id) : log(log), id(id) {}
    ~Tracked() { log->push_back(id); }
    std::vector<int>* log;
    int id;
  };
  std::vector<int> released, seen;
  KeyedCollection<Tracked> c;
  for (int i = 1; i <= 3; ++i)
    c.Add(std::make_shared<Tracked>(&released, i));
  for (const auto& member : c)
    seen.push_back(member->id);
  EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  EXPECT_EQ(released, (std::vector<int>{1, 2, 3}));
}

}  // namespace
}  // namespace kelvary
