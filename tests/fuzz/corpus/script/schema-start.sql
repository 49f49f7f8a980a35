-- The system (configuration) database: the data-table catalogue, search
-- links, multi-selects, data formats and stored query definitions.
-- Written in SQL that SQLite and PostgreSQL both accept.

CREATE TABLE DataTables (
  ID INTEGER PRIMARY KEY,
  ValuesTable VARCHAR(64),
  Caption VARCHAR(100),
  NewRecordScreenID INTEGER,
  TableType INTEGER DEFAULT 0,
  TableLocation INTEGER NOT NULL DEFAULT 1,
  TableContentType INTEGER DEFAULT 0,
  TableProps INTEGER DEFAULT 0,
  MaxID INTEGER DEFAULT 0,
  FirstSampleDataID INTEGER DEFAULT 0
);

CREATE TABLE DataTableFields (
  ID INTEGER PRIMARY KEY,
  DataTableID INTEGER NOT NULL,
  FieldName VARCHAR(64) NOT NULL,
  Title VARCHAR(100),
  DataFormat INTEGER DEFAULT 0,
  SearchLinkID INTEGER DEFAULT 0,
  Units VARCHAR(20),
  Flags INTEGER DEFAULT 0
);

CREATE TABLE FillNSearchLinks (
  ID INTEGER PRIMARY KEY,
  NewRecordScreenID INTEGER,
  SecondaryDisplayField VARCHAR(64),
  SQLStmt VARCHAR(2000),
  SearchValueField VARCHAR(64),
  SearchDisplayField VARCHAR(64),
  SelectCaption VARCHAR(100),
  LargeNumberOFEntries BOOLEAN,
  SearchWhereClause VARCHAR(1000),
  SearchTable INTEGER NOT NULL DEFAULT 0,
  SearchWnd INTEGER DEFAULT 0
);

CREATE TABLE MultiSelects (
  ID INTEGER PRIMARY KEY,
  ParentSearchLinkID INTEGER NOT NULL,
  SearchLinkID INTEGER NOT NULL,
  StoreTable INTEGER NOT NULL
);

CREATE TABLE DataFormats (
  ID INTEGER PRIMARY KEY,
  Description VARCHAR(100)
);

CREATE TABLE DataFormatUsages (
  ID INTEGER PRIMARY KEY,
  DataFormatID INTEGER NOT NULL,
  DataFormatUsageTypeID INTEGER DEFAULT 0
);

CREATE TABLE Users (
  ID INTEGER PRIMARY KEY,
  LoginName VARCHAR(64),
  FirstName VARCHAR(64),
  LastName VARCHAR(64)
);

CREATE TABLE Queries (
  ID INTEGER PRIMARY KEY,
  Description VARCHAR(200),
  QueryBuildMethod INTEGER DEFAULT 0,
  SqlStmt VARCHAR(4000),
  DataSupplier INTEGER DEFAULT 0,
  IsSystemData BOOLEAN DEFAULT FALSE,
  NumNestedLevels INTEGER DEFAULT 1
);

CREATE TABLE QueryTemplates (
  ID INTEGER PRIMARY KEY,
  QueryID INTEGER,
  Description VARCHAR(200)
);

CREATE TABLE XQueryTemplates (
  ID INTEGER PRIMARY KEY,
  QueryID INTEGER,
  Description VARCHAR(200),
  TemplateSupplier INTEGER,
  TemplateSet INTEGER,
  SimpleQueryTemplateID INTEGER
);

CREATE TABLE QueryShapeNests (
  ID INTEGER PRIMARY KEY,
  QueryId INTEGER NOT NULL,
  BaseTableID INTEGER NOT NULL,
  Depth INTEGER DEFAULT 1,
  ParentShapeId INTEGER DEFAULT 0,
  ShapeIndex INTEGER DEFAULT 0,
  PreExistingWhereClause BOOLEAN DEFAULT FALSE,
  ParentFieldLinkID INTEGER DEFAULT 0,
  ChildFieldLinkID INTEGER DEFAULT 0,
  ShapeName VARCHAR(64),
  Title VARCHAR(100)
);

CREATE TABLE QueryDataTables (
  ID INTEGER PRIMARY KEY,
  NestedBinding INTEGER NOT NULL,
  DataTableId INTEGER NOT NULL,
  TableAlias VARCHAR(64),
  ParentDataTable INTEGER DEFAULT 0,
  ParentDataField INTEGER DEFAULT 0,
  SourceDataField INTEGER DEFAULT 0,
  Depth INTEGER DEFAULT 1,
  Title VARCHAR(100)
);

CREATE TABLE QueryOutputFields (
  ID INTEGER PRIMARY KEY,
  QueryDataTableID INTEGER NOT NULL,
  DataFieldID INTEGER NOT NULL,
  FieldAlias VARCHAR(64),
  SpecialField INTEGER DEFAULT 0,
  SpecialFieldAlias VARCHAR(64),
  AdvancedFormatting INTEGER DEFAULT 0,
  Title VARCHAR(100),
  DisplayOrder INTEGER DEFAULT 0
);

CREATE TABLE QueryConditionGroups (
  ID INTEGER PRIMARY KEY,
  QueryTemplateID INTEGER NOT NULL,
  ParentGroupId INTEGER DEFAULT 0,
  NodeLevel INTEGER DEFAULT 0,
  NodeType INTEGER DEFAULT 0,
  NestedBinding INTEGER DEFAULT 0
);

-- Value1 and Value2 hold a parameter's operands as the user entered them.
CREATE TABLE QueryTemplateParameters (
  ID INTEGER PRIMARY KEY,
  QueryConditionID INTEGER NOT NULL,
  QueryDataTableID INTEGER NOT NULL,
  DataFieldID INTEGER NOT NULL,
  Title VARCHAR(100),
  CodeChar VARCHAR(4),
  Operator INTEGER DEFAULT 1,
  SUBOperator INTEGER,
  Value1 VARCHAR(200),
  Value2 VARCHAR(200),
  Reverse BOOLEAN DEFAULT FALSE,
  Essential BOOLEAN,
  Removable BOOLEAN DEFAULT TRUE,
  ValueChangeble BOOLE