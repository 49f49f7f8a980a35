// A host's controls and event sinks, reached by member name: the list
// control the fills drive, the date control a date range reads, and the
// event sink whose by-reference answers reach the library.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/HostObject.h"
#include "kelvary/automation/Classes.h"
#include "kelvary/automation/HostObjects.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/service/InfoLink.h"
#include "support/TestDatabase.h"

namespace kelvary::automation {
namespace {

using testing::HostObject;

// HostList: a host's list box: items with their data, Tag, NewIndex.
std::shared_ptr<HostObject> HostList(std::vector<std::string>& items, std::vector<int32_t>& data) {
  auto list = std::make_shared<HostObject>();
  auto tag = std::make_shared<std::string>("before");
  list->On("Tag",
           [tag](InvokeFlags flags, std::span<Arg> args) {
             if (flags & kInvokePropertyPut) *tag = CStr(args[0].value);
             return Variant(*tag);
           })
      .On("Clear",
          [&](InvokeFlags, std::span<Arg>) {
            items.clear();
            data.clear();
            return Variant();
          })
      .On("AddItem",
          [&](InvokeFlags, std::span<Arg> args) {
            items.push_back(CStr(args[0].value));
            data.push_back(args.size() > 1 ? CLng(args[1].value) : 0);
            return Variant();
          })
      .On("NewIndex",
          [&](InvokeFlags, std::span<Arg>) { return Variant(int32_t(items.size()) - 1); })
      .On("ItemData",
          [&](InvokeFlags flags, std::span<Arg> args) {
            const auto i = static_cast<size_t>(CLng(args[0].value));
            if (flags & kInvokePropertyPut) data.at(i) = CLng(args[1].value);
            return Variant(data.at(i));
          })
      .On("ListIndex", [](InvokeFlags, std::span<Arg>) { return Variant(); })
      .On("ListCount", [&](InvokeFlags, std::span<Arg>) { return Variant(int32_t(items.size())); })
      .On("Visible", [](InvokeFlags, std::span<Arg>) { return Variant(); })
      .On("Caption", [](InvokeFlags, std::span<Arg>) { return Variant("Doctors"); });
  return list;
}

TEST(HostObjects, ListControlsAreFilledByMemberNameAndTheStandardOnesTakeOneArgument) {
  testing::TestDatabase db;
  db.Run(
      "CREATE TABLE d (ID INTEGER PRIMARY KEY, Description TEXT);"
      "INSERT INTO d VALUES (3,'Ames'); INSERT INTO d VALUES (8,'Birk')");
  InfoLink link;
  link.AppDataXion(db.Connection());
  for (bool standard : {false, true}) {
    SCOPED_TRACE(standard ? "standard list box" : "other list control");
    std::vector<std::string> items;
    std::vector<int32_t> data;
    auto host = HostList(items, data);
    if (standard) host->Implements(std::string(kStandardListBoxIid));
    DispatchListControl control(host);
    EXPECT_EQ(control.IsStandardListControl(), standard);
    link.FillComboWithSQL(control, pdsmaindata, "SELECT Description, ID FROM d ORDER BY ID",
                          "Description", "ID", true);
    EXPECT_EQ(items, (std::vector<std::string>{"Ames", "Birk"}));
    EXPECT_EQ(data, (std::vector<int32_t>{3, 8}));
    EXPECT_EQ(control.ListCount(), 2);
    EXPECT_EQ(control.Tag(), "before");
    const std::vector<std::string> standard_calls = {
        "Tag",           "Tag=P",    "Clear",      "AddItem(Ames)", "NewIndex",  "ItemData=3",
        "AddItem(Birk)", "NewIndex", "ItemData=8", "ListIndex=0",   "Tag=before"};
    const std::vector<std::string> other_calls = {
        "Tag", "Tag=P", "Clear", "AddItem(Ames,3)", "AddItem(Birk,8)", "ListIndex=0", "Tag=before"};
    std::vector<std::string> calls = host->Calls();
    calls.resize(standard ? standard_calls.size() : other_calls.size());
    EXPECT_EQ(calls, standard ? standard_calls : other_calls);
  }
  link.AppDataXion(nullptr);  // no user session to stamp

  // The combo box's identity counts the same; a control without the members
  // fails with the late-binding error.
  std::vector<std::string> items;
  std::vector<int32_t> data;
  auto combo = HostList(items, data);
  combo->Implements(std::string(kStandardComboBoxIid));
  EXPECT_TRUE(DispatchListControl(combo).IsStandardListControl());
  DispatchListControl bare(std::make_shared<HostObject>());
  try {
    bare.Clear();
    ADD_FAILURE() << "a control without Clear was cleared";
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.Failure(), DispatchFailure::kUnknownName);
  }
}

TEST(HostObjects, DateControlsAreReadThroughTheirValue) {
  InfoLink link;
  auto from = std::make_shared<HostObject>();
  from->On("Value", [](InvokeFlags, std::span<Arg>) { return Variant(DateSerial(2024, 3, 1)); });
  auto to = std::make_shared<HostObject>();
  to->On("Value", [](InvokeFlags, std::span<Arg>) { return Variant::Null(); });
  DispatchDateControl date_from(from), date_to(to);
  EXPECT_EQ(date_from.Value(), Variant(DateSerial(2024, 3, 1)));
  EXPECT_TRUE(date_to.Value().IsNull());
  // The same clause as from the values themselves.
  EXPECT_EQ(
      link.GetDateSqlFromControls("Visit", static_cast<DateRangeSpecs>(1000), date_from, date_to),
      link.GetDateSqlFromValues("Visit", static_cast<DateRangeSpecs>(1000),
                                Variant(DateSerial(2024, 3, 1)), Variant::Null()));
}

TEST(HostObjects, EventSinksSeeEventsInOrderAndTheirAnswersReachTheLibrary) {
  auto link_object = CreateObject("Kelvary.InfoLink");
  auto link = NativeOf<InfoLink>(link_object.get());
  ASSERT_NE(link, nullptr);
  bool veto = false;
  auto sink = std::make_shared<HostObject>();
  sink->On(
          "BeforePostActionHistory",
          [&](InvokeFlags, std::span<Arg> args) {
            EXPECT_EQ(args.size(), 10u);
            EXPECT_TRUE(args[9].by_ref);
            if (veto) args[9].value = false;
            return Variant();
          },
          5)
      .On(
          "AfterPostActionHistory", [](InvokeFlags, std::span<Arg>) { return Variant(); }, 7)
      .On(
          "RequestRemoteNextID",
          [](InvokeFlags, std::span<Arg> args) {
            args[0].value = int32_t{4711};
            return Variant();
          },
          4);
  auto subscription = SubscribeEvents(*link_object, sink);
  ASSERT_NE(subscription, nullptr);

  EXPECT_EQ(
      link->PostRecordActionHistory(pdsmaindata, dbratAdded, 12, "patients", 1, 5, 0, "ID", ""),
      Variant(true));
  EXPECT_EQ(sink->Calls(), (std::vector<std::string>{"BeforePostActionHistory(1,0,12,patients,1,"
                                                     "5,0,ID,,True)",
                                                     "AfterPostActionHistory(1,0,12,patients,1,5,"
                                                     "0,ID,)"}));
  veto = true;
  EXPECT_EQ(
      link->PostRecordActionHistory(pdsmaindata, dbratAdded, 12, "patients", 1, 5, 0, "ID", ""),
      Variant(false));
  EXPECT_EQ(sink->Calls().size(), 3u) << "vetoed: no After event";

  // A by-reference answer: the key the host supplies; the events the sink
  // does not implement are skipped.
  int32_t key = 0;
  subscription->RequestRemoteNextID(key, pdsmaindata, "patients", "ID", "");
  EXPECT_EQ(key, 4711);
  bool ok = true;
  subscription->CheckAllowRecordDelete(1, 2, ok);
  EXPECT_TRUE(ok);
  double double_key = 3;
  subscription->RequestRemoteNextIDAsDouble(double_key, pdsmaindata, "patients", "ID", "");
  EXPECT_EQ(double_key, 3);

  UnsubscribeEvents(*link_object, subscription);
  link->PostRecordActionHistory(pdsmaindata, dbratAdded, 12, "patients", 1, 5, 0, "ID", "");
  EXPECT_EQ(sink->Calls().size(), 4u) << "no events after unsubscribing";
  // Only an InfoLink has events.
  EXPECT_EQ(SubscribeEvents(*CreateObject("Kelvary.ValueSet"), sink), nullptr);
}

}  // namespace
}  // namespace kelvary::automation
