// The rules the eight collections of the query model share, run over all of
// them. Each traits object adds one member under a key ("" for none).
#include <gtest/gtest.h>

#include <functional>
#include <type_traits>
#include <vector>

#include "kelvary/querymodel/QueryModel.h"
#include "support/ErrorNumber.h"

namespace kelvary {
namespace {

using testing::ErrorNumberOf;

// clang-format off
struct FieldLinksT { using C = FieldLinks;
  static auto Add(C& c, const std::string& k) {
    return c.Add(7, naPrompt, ctDropDownList, 0, "txt", Variant("x"), fdtText, "Name", k); } };
struct QueryDataTablesT { using C = QueryDataTables;
  static auto Add(C& c, const std::string& k) { return c.Add(3, "p", 1, 4, 0, 0, 0, 1, "", "t", k); } };
struct QueryOutputFieldsT { using C = QueryOutputFields;
  static auto Add(C& c, const std::string& k) { return c.Add(11, "", sfnone, afNone, 12, 4, "", "", "f", k); } };
struct QueryShapeNestsT { using C = QueryShapeNests;
  static auto Add(C& c, const std::string& k) { return c.Add(3, 1, false, 1, "Level", "", k); } };
struct QueryTemplateSortOptionsT { using C = QueryTemplateSortOptions;
  static auto Add(C& c, const std::string& k) { return c.Add(true, 1, 1, k); } };
struct RepParamsT { using C = RepParams;
  static auto Add(C& c, const std::string& k) { return c.Add(5, 11, false, true, k); } };
struct ValueSetsT { using C = ValueSets;
  static auto Add(C& c, const std::string& k) { return c.Add(Variant(1), 2, k); } };
struct ConditionNodesT { using C = ConditionNodes;
  static auto Add(C& c, const std::string& k) { return c.Add(0, 1, ntall, 1, 9, k); } };
// clang-format on

template <class Traits>
class CollectionRules : public ::testing::Test {
 protected:
  typename Traits::C c;
  static auto Add(typename Traits::C& c, const std::string& key = "") {
    return Traits::Add(c, key);
  }
  // Only QueryOutputFields.Remove is silent about an absent member.
  static constexpr bool kRemoveIsSilent = std::is_same_v<typename Traits::C, QueryOutputFields>;
};

using AllCollections =
    ::testing::Types<FieldLinksT, QueryDataTablesT, QueryOutputFieldsT, QueryShapeNestsT,
                     QueryTemplateSortOptionsT, RepParamsT, ValueSetsT, ConditionNodesT>;
TYPED_TEST_SUITE(CollectionRules, AllCollections);

TYPED_TEST(CollectionRules, KeysAreOptionalUniqueAndCaseInsensitive) {
  auto& c = this->c;
  auto unkeyed = this->Add(c);
  auto keyed = this->Add(c, "R12");
  ASSERT_EQ(c.Count(), 2);
  EXPECT_EQ(c.Item(1), unkeyed);
  EXPECT_EQ(ErrorNumberOf([&] { c.Item(""); }), kErrInvalidProcedureCall);
  // A key that differs only in case fails, and the new member is not kept.
  std::weak_ptr<typename decltype(keyed)::element_type> refused;
  EXPECT_EQ(ErrorNumberOf([&] { refused = this->Add(c, "r12"); }), kErrKeyAlreadyAssociated);
  EXPECT_EQ(c.Count(), 2);
  EXPECT_EQ(c.Item("r12"), keyed);
  EXPECT_TRUE(refused.expired());
}

TYPED_TEST(CollectionRules, ItemHandsBackTheSameInstanceByPositionOrKey) {
  auto& c = this->c;
  this->Add(c, "a");
  auto second = this->Add(c, "B");
  for (const auto& found : {c.Item(2), c.Item("b"), c.Item(Variant(2)), c.Item(Variant("B"))}) {
    EXPECT_EQ(found, second);
  }
  for (auto absent : std::vector<std::function<void()>>{[&] { c.Item(0); }, [&] { c.Item(3); },
                                                        [&] { c.Item("c"); }}) {
    EXPECT_EQ(ErrorNumberOf(absent), kErrInvalidProcedureCall);
  }
}

TYPED_TEST(CollectionRules, RemoveClosesTheGapAndClearEmpties) {
  auto& c = this->c;
  auto first = this->Add(c, "k1");
  this->Add(c, "k2");
  auto third = this->Add(c, "k3");
  c.Remove(2);
  c.Remove("K1");
  ASSERT_EQ(c.Count(), 1);
  EXPECT_EQ(c.Item(1), third);
  EXPECT_EQ(first.use_count(), 1);  // the collection dropped its reference only

  const int32_t expected = this->kRemoveIsSilent ? 0 : kErrInvalidProcedureCall;
  EXPECT_EQ(ErrorNumberOf([&] { c.Remove(5); }), expected);
  EXPECT_EQ(ErrorNumberOf([&] { c.Remove("k1"); }), expected);
  EXPECT_EQ(c.Count(), 1);

  auto last = this->Add(c);
  std::vector<decltype(last)> seen(c.begin(), c.end());
  EXPECT_EQ(seen, (std::vector<decltype(last)>{third, last}));
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
}

}  // namespace
}  // namespace kelvary
