#include "LookupsFixture.h"

namespace kelvary::testing {
namespace {

using ValueLookupsTest = LookupsTest;
KELVARY_ON_EVERY_BACKEND(ValueLookupsTest);

TEST_P(ValueLookupsTest, CoreNameJoinsTheNamePartsWithAGapOfTwoToTen) {
  EXPECT_EQ(link_.GetCoreName(2, "patients"), Variant("Anna  Maria  Berg"));
  EXPECT_EQ(Selects().back(),
            "Select FirstName , MiddleName , LastName From patients where ID = 2");
  EXPECT_EQ(link_.GetCoreName(2, "patients", int16_t{25}),
            Variant("Anna          Maria          Berg"));
  EXPECT_EQ(link_.GetCoreName(2, "patients", int16_t{-4}), Variant("Anna  Maria  Berg"));
  link_.ORDERFIELD1 = "LastName";
  link_.ORDERFIELD2 = "FirstName";
  link_.ORDERFIELD3 = "MiddleName";
  EXPECT_EQ(link_.GetCoreName(1, "patients", int16_t{1}), Variant("Smith John "));
  EXPECT_TRUE(link_.GetCoreName(99, "patients").IsEmpty());
}

TEST_P(ValueLookupsTest, DescriptionFromCodeByTableNameOrByStatement) {
  EXPECT_EQ(link_.GetDescriptionFromCode(3, "Cities", "Description", "ID", pdsmaindata, "ignored",
                                         std::nullopt, std::string("ParentID")),
            "North Westfield");
  EXPECT_EQ(Selects().back(), "Select  Description , ParentID from Cities where (ID = 3)");
  EXPECT_EQ(link_.GetDescriptionFromCode(9, "Cities", "Description", "ID", pdsmaindata, ""), "");
  // Without a table the condition joins the statement; only a lower-case
  // " where " counts as one.
  const std::string cities = "Select Description from Cities";
  link_.GetDescriptionFromCode(3, "", "Description", "ID", pdsmaindata, cities);
  EXPECT_EQ(Selects().back(), cities + " where ( ID = 3 ) ");
  link_.GetDescriptionFromCode(3, "", "Description", "ID", pdsmaindata, cities + " where ID > 0");
  EXPECT_EQ(Selects().back(), cities + " where ID > 0 AND ( ID = 3 ) ");
  link_.GetDescriptionFromCode(3, "", "Description", "ID", pdsmaindata, cities + " WHERE ID > 0");
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_THAT(Messages()[0], HasSubstr(cities + " WHERE ID > 0 where ( ID = 3 ) "));
  messages_.Clear();
}

TEST_P(ValueLookupsTest, DescriptionFromCodeComposesNamesAndFallsBackToTheSecondColumn) {
  // "%X" in any case composes the name; no other statement runs.
  EXPECT_EQ(link_.GetDescriptionFromCode(2, "patients", "%x", "ID", pdssystem, "", int16_t{4}),
            "Anna    Maria    Berg");
  EXPECT_EQ(SelectsMentioning("patients"), 1);
  // The secondary column stands in for an empty description only.
  const auto middle_or_first = [&](int32_t id) {
    return link_.GetDescriptionFromCode(id, "patients", "MiddleName", "ID", pdsmaindata, "",
                                        std::nullopt, std::string("FirstName"));
  };
  EXPECT_EQ(middle_or_first(1), "John");
  EXPECT_EQ(middle_or_first(2), "Maria");
}

TEST_P(ValueLookupsTest, CorrespondingValueKeepsItsTypeAndEmptyMeansNotFound) {
  EXPECT_EQ(CLng(link_.GetCorrespondingValue(4, "Cities", "ParentID", "ID", pdsmaindata, "")), 3);
  EXPECT_EQ(Selects().back(), "Select  ParentID from Cities where (ID = 4)");
  EXPECT_EQ(link_.GetCorrespondingValue(4, "Cities", "Description", "ID", pdsmaindata, ""),
            Variant("Old Town"));
  EXPECT_TRUE(
      link_.GetCorrespondingValue(9, "Cities", "ParentID", "ID", pdsmaindata, "").IsEmpty());
  EXPECT_TRUE(  // Null reads as not found
      link_.GetCorrespondingValue(1, "patients", "MiddleName", "ID", pdsmaindata, "").IsEmpty());
  const std::string cities = "Select Description from Cities where ParentID > 0";
  link_.GetCorrespondingValue(4, "", "Description", "ID", pdsmaindata, cities);
  EXPECT_EQ(Selects().back(), cities + " AND ( ID = 4 ) ");
  link_.GetCorrespondingValue(4, "", "Description", "", pdsmaindata, cities);
  EXPECT_EQ(Selects().back(), cities);  // no search field, no condition
}

TEST_P(ValueLookupsTest, CorrespondingValueFromTextComparesWithLikeAndQuotes) {
  Practice("INSERT INTO Cities (ID, Description, ParentID) VALUES (6, 'O''Neill Bay', 2)");
  EXPECT_EQ(CLng(link_.GetCorrespondingValueFromText("O'Neill Bay", "Cities", "ID", "Description",
                                                     pdsmaindata, "")),
            6);
  EXPECT_EQ(Selects().back(), "Select  ID from Cities where Description Like  'O''Neill Bay'");
  EXPECT_EQ(CLng(link_.GetCorrespondingValueFromText("North West%", "Cities", "ID", "Description",
                                                     pdsmaindata, "")),
            3);
  // The desktop's LIKE: * as the wild card, without regard to case.
  EXPECT_EQ(CLng(link_.GetCorrespondingValueFromText("north west*", "Cities", "ID", "Description",
                                                     pdsmaindata, "")),
            3);
  link_.GetCorrespondingValueFromText("Harbour", "", "ID", "Description", pdsmaindata,
                                      "Select ID from Cities");
  EXPECT_EQ(Selects().back(), "Select ID from Cities where Description Like  'Harbour'");
  link_.GetCorrespondingValueFromText("Harbour", "", "ID", "Description", pdsmaindata,
                                      "Select ID from Cities where ID > 0");
  EXPECT_EQ(Selects().back(),
            "Select ID from Cities where ID > 0 AND  Description Like  'Harbour'");
}

TEST_P(ValueLookupsTest, UserDataLocationIsTheUsersTablesLocation) {
  EXPECT_EQ(link_.InterpretUserDataLocation(), pdssystem);
  EXPECT_EQ(Selects().back(),
            "Select  TableLocation from DataTables where ValuesTable Like  'Users'");
  Config("UPDATE DataTables SET TableLocation = 1 WHERE ValuesTable = 'Users'");
  EXPECT_EQ(link_.InterpretUserDataLocation(), pdsmaindata);
  Config("DELETE FROM DataTables WHERE ValuesTable = 'Users'");
  EXPECT_EQ(link_.InterpretUserDataLocation(), pdsRawData);
}

TEST_P(ValueLookupsTest, ParentWalkStopsAtTheFirstPositiveValueAndNeverAsksTheRoot) {
  // 1 (root, 9) <- 2 (0) <- 3 (0) <- 5 (0); 1 <- 4 (6) <- 6 (0) <- 7 (-2)
  Practice(
      "CREATE TABLE Departments (ID INTEGER PRIMARY KEY, ParentID INTEGER, CostCentre INTEGER);"
      "INSERT INTO Departments VALUES (1, 0, 9), (2, 1, 0), (3, 2, 0), (5, 3, 0), (4, 1, 6), "
      "(6, 4, 0), (7, 6, -2);");
  const auto walk = [&](int32_t start) {
    return link_.GetHierarchicalParentNonZeroLongValue(start, "Departments", "ParentID",
                                                       "CostCentre", pdsmaindata);
  };
  EXPECT_EQ(walk(1), 9);  // the start is asked, root or not
  EXPECT_EQ(walk(4), 6);
  EXPECT_EQ(walk(7), 6);
  EXPECT_EQ(walk(2), 0);  // only the root holds a value
  EXPECT_EQ(walk(5), 0);
  EXPECT_EQ(walk(99), 0);
}

TEST_P(ValueLookupsTest, CheckListAttributeAndTableIdByName) {
  EXPECT_TRUE(link_.IsCheckListAttributeEnabled(pdsmaindata, "PatientAllergies", "ValueID", 13,
                                                "SourceID", 1));
  EXPECT_EQ(Selects().back(),
            "Select * from PatientAllergies where ( SourceID = 1 ) and  ( ValueID = 13 )  ");
  EXPECT_FALSE(link_.IsCheckListAttributeEnabled(pdsmaindata, "PatientAllergies", "ValueID", 13,
                                                 "SourceID", 2));
  EXPECT_EQ(link_.GetTableIDFromName("Cities"), 1);
  EXPECT_EQ(Selects().back(), "select id from datatables where ValuesTable LIKE 'Cities'");
  EXPECT_EQ(link_.GetTableIDFromName("Drug%"), 5);  // a pattern
  EXPECT_EQ(link_.GetTableIDFromName("drug%"), 5);  // without regard to case
  EXPECT_EQ(link_.GetTableIDFromName(""), 0);
  EXPECT_EQ(link_.GetTableIDFromName("Wards"), 0);
  ExpectMessages({"Use Dravent to define Wards"});
}

}  // namespace
}  // namespace kelvary::testing
