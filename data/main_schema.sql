-- The main (practice) database: patients and their visits and invoices, the
-- look-up value tables, user sessions, per-location key counters and the
-- host's selection list. Written in SQL that SQLite and PostgreSQL both
-- accept. RecordStatus 1 marks a row as deleted.

CREATE TABLE UserSessions (
  ID INTEGER PRIMARY KEY,
  UserID INTEGER,
  LoginDateTime TIMESTAMP,
  LogoutDateTime TIMESTAMP
);

CREATE TABLE Cities (
  ID INTEGER PRIMARY KEY,
  Description VARCHAR(100),
  ParentID INTEGER DEFAULT 0,
  RecordStatus INTEGER DEFAULT 0
);

CREATE TABLE patients (
  ID INTEGER PRIMARY KEY,
  regnno VARCHAR(16),
  FirstName VARCHAR(64),
  MiddleName VARCHAR(64),
  LastName VARCHAR(64),
  Gender VARCHAR(1),
  DOB DATE,
  Phone1 VARCHAR(32),
  Phone2 VARCHAR(32),
  CityID INTEGER DEFAULT 0,
  Insured BOOLEAN DEFAULT FALSE,
  RegistrationDate DATE,
  RecordStatus INTEGER DEFAULT 0
);

CREATE TABLE visits (
  ID INTEGER PRIMARY KEY,
  PatientID INTEGER NOT NULL,
  VisitDate TIMESTAMP,
  Reason VARCHAR(200),
  DoctorID INTEGER DEFAULT 0,
  Fee DOUBLE PRECISION DEFAULT 0,
  RecordStatus INTEGER DEFAULT 0
);

CREATE TABLE invoices (
  ID INTEGER PRIMARY KEY,
  VisitID INTEGER NOT NULL,
  PatientID INTEGER NOT NULL,
  InvoiceDate DATE,
  Amount DOUBLE PRECISION DEFAULT 0,
  Paid BOOLEAN DEFAULT FALSE,
  RecordStatus INTEGER DEFAULT 0
);

CREATE TABLE invoiceitems (
  ID INTEGER PRIMARY KEY,
  InvoiceID INTEGER NOT NULL,
  Description VARCHAR(200),
  Quantity INTEGER DEFAULT 1,
  UnitPrice DOUBLE PRECISION DEFAULT 0,
  RecordStatus INTEGER DEFAULT 0
);

CREATE TABLE LocationTableKeys (
  DataTableID INTEGER NOT NULL,
  LocationID INTEGER NOT NULL,
  CurrentMaxID INTEGER,
  CurrentMaxIDDouble DOUBLE PRECISION,
  PRIMARY KEY (DataTableID, LocationID)
);

CREATE TABLE SelectedRecords (
  ID INTEGER PRIMARY KEY,
  DataTableID INTEGER,
  RecordID INTEGER,
  UserID INTEGER
);
