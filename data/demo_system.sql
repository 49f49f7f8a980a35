-- The demo practice, system (configuration) database: the data-table
-- catalogue of the practice tables, their search links and multi-selects,
-- the practice's users, and its stored queries with their templates.
-- Load after system_schema.sql. SQL that SQLite and PostgreSQL both accept.
--
-- ID ranges: data tables 1..10; fields <table>01..; stored-text query levels
-- 1..9 (their markers are "!" + one digit); built query levels from 10 on,
-- query tables from 10 on, output fields from 100 on, condition groups and
-- parameters numbered per template.

-- TableLocation: 1 the main (practice) database, 2 this one.
INSERT INTO DataTables (ID, ValuesTable, Caption, NewRecordScreenID, TableType, TableLocation, TableContentType, TableProps, MaxID, FirstSampleDataID) VALUES
  (1, 'patients', 'Patients', 101, 0, 1, 0, 0, 300, 0),
  (2, 'visits', 'Visits', 102, 0, 1, 0, 0, 0, 0),
  (3, 'invoices', 'Invoices', 103, 0, 1, 0, 0, 0, 0),
  (4, 'invoiceitems', 'Invoice items', NULL, 0, 1, 0, 0, 0, 0),
  (5, 'Cities', 'Cities and regions', 105, 0, 1, 0, 0, 15, 0),
  (6, 'Users', 'Users', NULL, 0, 2, 0, 16, 5, 0),
  (7, 'UserSessions', 'User sessions', NULL, 0, 1, 0, 16, 1, 0),
  (8, 'Allergies', 'Allergies', 108, 0, 1, 0, 0, 6, 0),
  (9, 'PatientAllergies', 'Allergies of patients', NULL, 0, 1, 0, 16, 0, 0),
  (10, 'SelectedRecords', 'Selected records', NULL, 0, 1, 0, 16, 0, 0);

-- DataFormat: 1 long, 2 integer, 3 text, 5 amount, 18 date, 19 date and
-- time, 21 coded value, 25 yes/no, 33 gender. Flags 1: unique value.
INSERT INTO DataTableFields (ID, DataTableID, FieldName, Title, DataFormat, SearchLinkID, Units, Flags) VALUES
  (101, 1, 'ID', 'Patient ID', 1, 0, NULL, 1),
  (102, 1, 'regnno', 'Registration number', 3, 0, NULL, 1),
  (103, 1, 'FirstName', 'First name', 3, 0, NULL, 0),
  (104, 1, 'MiddleName', 'Middle name', 3, 0, NULL, 0),
  (105, 1, 'LastName', 'Last name', 3, 0, NULL, 0),
  (106, 1, 'Gender', 'Gender', 33, 0, NULL, 0),
  (107, 1, 'DOB', 'Date of birth', 18, 0, NULL, 16),
  (108, 1, 'Phone1', 'Phone', 3, 0, NULL, 0),
  (109, 1, 'Phone2', 'Second phone', 3, 0, NULL, 0),
  (110, 1, 'CityID', 'City', 21, 1, NULL, 0),
  (111, 1, 'Insured', 'Insured', 25, 0, NULL, 0),
  (112, 1, 'RegistrationDate', 'Registered on', 18, 0, NULL, 0),
  (113, 1, 'RecordStatus', 'Record status', 2, 0, NULL, 4),
  (201, 2, 'ID', 'Visit ID', 1, 0, NULL, 1),
  (202, 2, 'PatientID', 'Patient', 21, 2, NULL, 0),
  (203, 2, 'VisitDate', 'Visit date', 19, 0, NULL, 0),
  (204, 2, 'Reason', 'Reason', 3, 0, NULL, 0),
  (205, 2, 'DoctorID', 'Doctor', 21, 3, NULL, 0),
  (206, 2, 'Fee', 'Fee', 5, 0, 'EUR', 0),
  (207, 2, 'RecordStatus', 'Record status', 2, 0, NULL, 4),
  (301, 3, 'ID', 'Invoice number', 1, 0, NULL, 1),
  (302, 3, 'VisitID', 'Visit', 1, 0, NULL, 0),
  (303, 3, 'PatientID', 'Patient', 21, 2, NULL, 0),
  (304, 3, 'InvoiceDate', 'Invoice date', 18, 0, NULL, 0),
  (305, 3, 'Amount', 'Amount', 5, 0, 'EUR', 0),
  (306, 3, 'Paid', 'Paid', 25, 0, NULL, 0),
  (307, 3, 'RecordStatus', 'Record status', 2, 0, NULL, 4),
  (401, 4, 'ID', 'Item ID', 1, 0, NULL, 1),
  (402, 4, 'InvoiceID', 'Invoice', 1, 0, NULL, 0),
  (403, 4, 'Description', 'Item', 3, 0, NULL, 0),
  (404, 4, 'Quantity', 'Quantity', 2, 0, NULL, 0),
  (405, 4, 'UnitPrice', 'Unit price', 5, 0, 'EUR', 0),
  (406, 4, 'RecordStatus', 'Record status', 2, 0, NULL, 4),
  (501, 5, 'ID', 'City ID', 1, 0, NULL, 1),
  (502, 5, 'Description', 'City', 3, 0, NULL, 1),
  (503, 5, 'ParentID', 'Region', 21, 5, NULL, 0),
  (504, 5, 'RecordStatus', 'Record status', 2, 0, NULL, 4),
  (601, 6, 'ID', 'User ID', 1, 0, NULL, 1),
  (602, 6, 'LoginName', 'Login', 3, 0, NULL, 1),
  (603, 6, 'FirstName', 'First name', 3, 0, NULL, 0),
  (604, 6, 'LastName', 'Last name', 3, 0, NULL, 0),
  (701, 7, 'ID', 'Session ID', 1, 0, NULL, 1),
  (702, 7, 'UserID', 'User', 21, 3, NULL, 0),
  (703, 7, 'LoginDateTime', 'Logged in', 19, 0, NULL, 0),
  (704, 7, 'LogoutDateTime', 'Logged out', 19, 0, NULL, 0),
  (801, 8, 'ID', 'Allergy ID', 1, 0, NULL, 1),
  (802, 8, 'Description', 'Allergy', 3, 0, NULL, 1),
  (901, 9, 'ID', 'ID', 1, 0, NULL, 1),
  (902, 9, 'SourceID', 'Patient', 21, 2, NULL, 0),
  (903, 9, 'ValueID', 'Allergy', 21, 4, NULL, 0);

-- Search link 0 is "no list": fields without a look-up point to it, so that
-- they can still be query parameters (parameters join their field's link).
INSERT INTO FillNSearchLinks (ID, NewRecordScreenID, SecondaryDisplayField, SQLStmt, SearchValueField, SearchDisplayField, SelectCaption, LargeNumberOFEntries, SearchWhereClause, SearchTable, SearchWnd) VALUES
  (0, NULL, NULL, NULL, '', '', '', FALSE, NULL, 0, 0),
  (1, NULL, NULL, NULL, 'ID', 'Description', 'Select a city', FALSE, 'ParentID > 0 order by Description', 5, 11),
  (2, NULL, 'FirstName', NULL, 'ID', 'LastName', 'Select a patient', TRUE, 'RecordStatus = 0', 1, 12),
  (3, NULL, 'FirstName', NULL, 'ID', 'LastName', 'Select a doctor', FALSE, 'ID > 1', 6, 13),
  (4, NULL, NULL, NULL, 'ID', 'Description', 'Select allergies', FALSE, NULL, 8, 14),
  (5, NULL, NULL, 'Select Description , ID from Cities where ParentID = 0 order by Description', 'ID', 'Description', 'Select a region', FALSE, NULL, 0, 15);

-- A patient holds any number of allergies, stored in PatientAllergies.
INSERT INTO MultiSelects (ID, ParentSearchLinkID, SearchLinkID, StoreTable) VALUES
  (1, 2, 4, 9);

INSERT INTO Users (ID, LoginName, FirstName, LastName) VALUES
  (1, 'admin', 'Practice', 'Administrator'),
  (2, 'hmorgan', 'Helen', 'Morgan'),
  (3, 'rpatel', 'Ravi', 'Patel'),
  (4, 'sokafor', 'Sarah', 'Okafor'),
  (5, 'jlindqvist', 'Johan', 'Lindqvist');

INSERT INTO DataFormats (ID, Description) VALUES
  (1, 'Whole number'),
  (3, 'Text'),
  (5, 'Amount'),
  (18, 'Date'),
  (19, 'Date and time'),
  (25, 'Yes/No');

INSERT INTO DataFormatUsages (ID, DataFormatID, DataFormatUsageTypeID) VALUES
  (1, 1, 1),
  (2, 3, 1),
  (3, 5, 1),
  (4, 18, 1),
  (5, 19, 1),
  (6, 25, 1),
  (7, 18, 2),
  (8, 19, 2);

-- Stored queries. QueryBuildMethod: 9 built from its definition, 1 stored
-- text with markers, 11 report query.
INSERT INTO Queries (ID, Description, QueryBuildMethod, SqlStmt, DataSupplier, IsSystemData, NumNestedLevels) VALUES
  (1, 'Patient list', 9, NULL, 0, FALSE, 1),
  (2, 'Visits per doctor', 9, NULL, 0, FALSE, 1),
  (3, 'Patients and their visits', 9, NULL, 0, FALSE, 2),
  (4, 'Patients, visits and invoices', 9, NULL, 0, FALSE, 3),
  (5, 'Patient account', 9, NULL, 0, FALSE, 3),
  (6, 'Patients of a city', 1, 'Select patients.ID, patients.LastName, patients.FirstName, Cities.Description AS City From patients, Cities Where patients.CityID = Cities.ID !1 Order by patients.LastName, patients.FirstName', 0, FALSE, 1),
  (7, 'Visits with fees', 1, 'Select v.VisitDate, v.Reason, v.Fee, p.LastName From (Select * From visits !2) v, (Select * From patients !3) p Where v.PatientID = p.ID Order by v.VisitDate', 0, FALSE, 2),
  (8, 'Monthly invoices', 11, 'Select InvoiceDate, Amount, Paid From invoices', 3, FALSE, 1),
  (9, 'Users', 9, NULL, 0, TRUE, 1);

INSERT INTO QueryTemplates (ID, QueryID, Description) VALUES
  (1, 1, 'Patients by name, city, insurance and age'),
  (2, 3, 'Visits of patients with a given name'),
  (3, 2, 'Visits per doctor in a period');

INSERT INTO XQueryTemplates (ID, QueryID, Description, TemplateSupplier, TemplateSet, SimpleQueryTemplateID) VALUES
  (1, 8, 'Monthly invoice report', 3, NULL, 1),
  (2, 8, 'Unpaid invoices report', NULL, 4, 2);

-- Levels. ParentFieldLinkID: the field of the level's own table that its
-- children relate to; ChildFieldLinkID: the field of its own table that
-- relates it to its parent.
INSERT INTO QueryShapeNests (ID, QueryId, BaseTableID, Depth, ParentShapeId, ShapeIndex, PreExistingWhereClause, ParentFieldLinkID, ChildFieldLinkID, ShapeName, Title) VALUES
  (1, 6, 1, 1, 0, 0, TRUE, 0, 0, 'Patients', 'Patients'),
  (2, 7, 2, 1, 0, 0, FALSE, 0, 0, 'Visits', 'Visits'),
  (3, 7, 1, 1, 0, 1, FALSE, 0, 0, 'Patients', 'Patients'),
  (10, 1, 1, 1, 0, 0, FALSE, 0, 0, 'Patients', 'Patients'),
  (20, 2, 2, 1, 0, 0, FALSE, 0, 0, 'DoctorVisits', 'Visits per doctor'),
  (30, 3, 1, 1, 0, 0, FALSE, 101, 0, 'Patients', 'Patients'),
  (31, 3, 2, 2, 30, 1, FALSE, 0, 202, 'Visits', 'Visits'),
  (40, 4, 1, 1, 0, 0, FALSE, 101, 0, 'Patients', 'Patients'),
  (41, 4, 2, 2, 40, 1, FALSE, 201, 202, 'Visits', 'Visits'),
  (42, 4, 3, 3, 41, 2, FALSE, 0, 302, 'Invoices', 'Invoices'),
  (50, 5, 1, 1, 0, 0, FALSE, 101, 0, 'Patients', 'Patients'),
  (51, 5, 2, 2, 50, 1, FALSE, 0, 202, 'Visits', 'Visits'),
  (52, 5, 3, 2, 50, 2, FALSE, 301, 303, 'Invoices', 'Invoices'),
  (53, 5, 4, 3, 52, 3, FALSE, 0, 402, 'Items', 'Invoice items'),
  (90, 9, 6, 1, 0, 0, FALSE, 0, 0, 'Users', 'Users');

-- Tables of the levels. A table with a ParentDataTable joins it: the
-- parent's ParentDataField equals this table's SourceDataField.
INSERT INTO QueryDataTables (ID, NestedBinding, DataTableId, TableAlias, ParentDataTable, ParentDataField, SourceDataField, Depth, Title) VALUES
  (10, 10, 1, NULL, 0, 0, 0, 1, 'Patients'),
  (11, 10, 5, 'c', 10, 110, 501, 2, 'City'),
  (20, 20, 2, NULL, 0, 0, 0, 1, 'Visits'),
  (30, 30, 1, NULL, 0, 0, 0, 1, 'Patients'),
  (31, 31, 2, NULL, 0, 0, 0, 1, 'Visits'),
  (40, 40, 1, NULL, 0, 0, 0, 1, 'Patients'),
  (41, 41, 2, NULL, 0, 0, 0, 1, 'Visits'),
  (42, 42, 3, NULL, 0, 0, 0, 1, 'Invoices'),
  (50, 50, 1, 'p', 0, 0, 0, 1, 'Patients'),
  (51, 51, 2, NULL, 0, 0, 0, 1, 'Visits'),
  (52, 52, 3, NULL, 0, 0, 0, 1, 'Invoices'),
  (53, 53, 4, NULL, 0, 0, 0, 1, 'Items'),
  (90, 90, 6, NULL, 0, 0, 0, 1, 'Users');

-- Output fields. SpecialField: 0 plain, 1 Avg, 2 Min, 3 Max, 4 Count, 8 Sum,
-- 102 grouped and shown.
INSERT INTO QueryOutputFields (ID, QueryDataTableID, DataFieldID, FieldAlias, SpecialField, SpecialFieldAlias, AdvancedFormatting, Title, DisplayOrder) VALUES
  (100, 10, 102, NULL, 0, NULL, 0, 'Registration number', 1),
  (101, 10, 105, NULL, 0, NULL, 0, 'Last name', 2),
  (102, 10, 103, NULL, 0, NULL, 0, 'First name', 3),
  (103, 10, 107, NULL, 0, NULL, 0, 'Date of birth', 4),
  (104, 11, 502, 'City', 0, NULL, 0, 'City', 5),
  (200, 20, 205, 'Doctor', 102, NULL, 0, 'Doctor', 1),
  (201, 20, 201, NULL, 4, 'NumVisits', 0, 'Visits', 2),
  (202, 20, 206, NULL, 8, 'TotalFees', 0, 'Total fees', 3),
  (203, 20, 206, NULL, 1, 'AverageFee', 0, 'Average fee', 4),
  (204, 20, 203, NULL, 2, 'FirstVisit', 0, 'First visit', 5),
  (205, 20, 203, NULL, 3, 'LastVisit', 0, 'Last visit', 6),
  (300, 30, 102, NULL, 0, NULL, 0, 'Registration number', 1),
  (301, 30, 105, NULL, 0, NULL, 0, 'Last name', 2),
  (302, 30, 103, NULL, 0, NULL, 0, 'First name', 3),
  (310, 31, 203, NULL, 0, NULL, 0, 'Visit date', 1),
  (311, 31, 204, NULL, 0, NULL, 0, 'Reason', 2),
  (312, 31, 206, NULL, 0, NULL, 0, 'Fee', 3),
  (400, 40, 105, NULL, 0, NULL, 0, 'Last name', 1),
  (401, 40, 103, NULL, 0, NULL, 0, 'First name', 2),
  (410, 41, 203, NULL, 0, NULL, 0, 'Visit date', 1),
  (411, 41, 204, NULL, 0, NULL, 0, 'Reason', 2),
  (420, 42, 304, NULL, 0, NULL, 0, 'Invoice date', 1),
  (421, 42, 305, NULL, 0, NULL, 0, 'Amount', 2),
  (422, 42, 306, NULL, 0, NULL, 0, 'Paid', 3),
  (500, 50, 102, 'RegNo', 0, NULL, 0, 'Registration number', 1),
  (501, 50, 105, NULL, 0, NULL, 0, 'Last name', 2),
  (510, 51, 203, NULL, 0, NULL, 0, 'Visit date', 1),
  (511, 51, 206, NULL, 0, NULL, 0, 'Fee', 2),
  (520, 52, 304, NULL, 0, NULL, 0, 'Invoice date', 1),
  (521, 52, 305, NULL, 0, NULL, 0, 'Amount', 2),
  (530, 53, 403, NULL, 0, NULL, 0, 'Item', 1),
  (531, 53, 404, NULL, 0, NULL, 0, 'Quantity', 2),
  (532, 53, 405, NULL, 0, NULL, 0, 'Unit price', 3),
  (900, 90, 602, NULL, 0, NULL, 0, 'Login', 1),
  (901, 90, 603, NULL, 0, NULL, 0, 'First name', 2),
  (902, 90, 604, NULL, 0, NULL, 0, 'Last name', 3);

-- Condition groups. NodeType 0: every condition holds; 1: any one does.
-- Template 1: all of (a name, insurance, birth date range, any of two
-- cities, an empty group); template 2: a name on the patients level and a
-- fee on the visits level; template 3: a visit period on the one level.
INSERT INTO QueryConditionGroups (ID, QueryTemplateID, ParentGroupId, NodeLevel, NodeType, NestedBinding) VALUES
  (1, 1, 0, 0, 0, 10),
  (2, 1, 1, 1, 1, 10),
  (3, 1, 1, 1, 0, 10),
  (4, 2, 0, 0, 0, 30),
  (5, 2, 0, 0, 0, 31),
  (6, 3, 0, 0, 0, 20);

-- Parameters: Operator 1 equals, 2 greater than, 3 less than, 4 between,
-- 5 begins with, 7 contains; for dates SUBOperator is the date-range choice
-- (1001: the dates given). SearchOrder above 0 makes a parameter, SortOrder
-- above 0 a sort option.
INSERT INTO QueryTemplateParameters (ID, QueryConditionID, QueryDataTableID, DataFieldID, Title, CodeChar, Operator, SUBOperator, Value1, Value2, Reverse, Essential, Removable, ValueChangeble, SearchOrder, SortOrder, SortDescending) VALUES
  (1, 1, 10, 105, 'Last name', 'L', 5, NULL, 'M', NULL, FALSE, TRUE, FALSE, TRUE, 1, 1, FALSE),
  (2, 1, 10, 111, 'Insured', 'I', 1, NULL, 'True', NULL, FALSE, NULL, TRUE, TRUE, 2, 0, FALSE),
  (3, 1, 10, 107, 'Born', 'B', 4, 1001, '1950-01-01', '1979-12-31', FALSE, FALSE, TRUE, TRUE, 3, 0, FALSE),
  (4, 2, 10, 110, 'City', 'C', 1, NULL, '4', NULL, FALSE, FALSE, TRUE, TRUE, 4, 0, FALSE),
  (5, 2, 10, 110, 'Or city', 'C', 1, NULL, '9', NULL, FALSE, FALSE, TRUE, TRUE, 5, 0, FALSE),
  (6, 1, 10, 103, 'First name', 'F', 1, NULL, NULL, NULL, FALSE, FALSE, TRUE, TRUE, 6, 2, TRUE),
  (7, 4, 30, 105, 'Last name', 'L', 5, NULL, 'Ba', NULL, FALSE, TRUE, FALSE, TRUE, 1, 0, FALSE),
  (8, 5, 31, 206, 'Fee above', 'E', 2, NULL, '60', NULL, FALSE, FALSE, TRUE, TRUE, 2, 0, FALSE),
  (9, 6, 20, 203, 'Visited', 'V', 4, 1001, '2024-01-01', '2024-06-30', FALSE, TRUE, FALSE, TRUE, 1, 0, FALSE),
  (10, 6, 20, 205, 'Not doctor', 'D', 1, NULL, '5', NULL, TRUE, FALSE, TRUE, TRUE, 2, 0, FALSE);
