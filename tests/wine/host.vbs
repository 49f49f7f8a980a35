' A script host doing what the desktop application does with the component
' server: create the service object, set it up, connect to the practice's
' databases, look values up, build clauses, fill the host's controls, run a
' stored query and walk its rows (a SHAPE chapter included), use the
' recordset's own members and a command with parameters, make a new key,
' delete a record safely; and the errors a script sees for bad calls.
'
' Usage: cscript //nologo host.vbs MAIN.db SYSTEM.db
' Ends with one line "N passed, M failed". A runtime error that escapes
' stops a script without a word, so every check runs under On Error Resume
' Next and the summary is printed whatever happens.
Option Explicit

Dim passed, failed
passed = 0
failed = 0

Sub Check(ok, what)
  If ok Then
    passed = passed + 1
    WScript.Echo "ok: " & what
  Else
    failed = failed + 1
    WScript.Echo "FAILED: " & what
  End If
End Sub

' CheckNoError: a step that must not raise; clears the error for the next.
Sub CheckNoError(what)
  If Err.Number <> 0 Then
    Check False, what & " (error " & Err.Number & ": " & Err.Description & ")"
    Err.Clear
  End If
End Sub

' A host's list box, as the library drives it by member name: the
' two-argument AddItem of a list control that is not a standard one.
Class HostList
  Public Tag
  Public ListIndex
  Public Visible
  Public Caption
  Public FirstText
  Public FirstValue
  Public AllValues
  Public Count
  Private Sub Class_Initialize
    Tag = "mine"
    ListIndex = -1
    Caption = "Cities"
    Clear
  End Sub
  Public Sub Clear
    Count = 0
    AllValues = ""
  End Sub
  Public Sub AddItem(text, value)
    If Count = 0 Then
      FirstText = text
      FirstValue = value
    End If
    AllValues = AllValues & value & ","
    Count = Count + 1
  End Sub
  Public Property Get ListCount
    ListCount = Count
  End Property
  Public Property Get NewIndex
    NewIndex = Count - 1
  End Property
End Class

' A host's date control: Value is a date or Null.
Class HostDate
  Public Value
End Class

Dim mainDb, systemDb
mainDb = WScript.Arguments(0)
systemDb = WScript.Arguments(1)

Dim link
Sub TestCreation
  On Error Resume Next
  Set link = CreateObject("Kelvary.InfoLink")
  CheckNoError "CreateObject(""Kelvary.InfoLink"")"
  Check IsObject(link), "the service object is created by its ProgID"
  Check InStr(TypeName(link), "InfoLink") > 0, _
        "its type information names its class (" & TypeName(link) & ")"
  Check link.ORDERFIELD1 = "FirstName" And link.orderfield3 = "LastName", _
        "settings start at their defaults, names in any case"
  link.CoreDataTable = "patients"
  Check link.CoreDataTable = "PATIENTS", "CoreDataTable reads back in upper case"
  link.MainDBType = 0
  link.UseSafeDelete = True
  link.CurrentUserID = 2
  Check link.UseSafeDelete = True And link.CurrentUserID = 2, "settings keep what is set"
  CheckNoError "settings"
End Sub

Dim mainXion, sysXion
Sub TestConnect
  On Error Resume Next
  Dim ok
  ok = link.ConnectDefault(mainXion, sysXion, mainDb, systemDb)
  CheckNoError "ConnectDefault"
  Check ok = True, "ConnectDefault on the demo files returns True"
  Dim mainConn
  Set mainConn = link.AppDataXion
  Check IsObject(mainConn), "ConnectDefault opened the main connection (AppDataXion)"
  Check mainConn.State = 1, "the connection is open"
  Check link.AppDataXion Is mainConn, "an object reaches the host as one wrapper (Is holds)"
  Check Not (link.AppDataXion Is link.ConfigsXion), "the two connections are different objects"
  CheckNoError "connections"
End Sub

Sub TestLookups
  On Error Resume Next
  Check link.GetDescription(1, 7) = "Dunmore", "GetDescription through search link 1"
  Check link.GetDescription(2, 46) = "Moreau", "GetDescription through search link 2"
  Check link.GetDescription(3, 4) = "Okafor", "GetDescription on the system database"
  Check link.GetDescriptionFromCode(13, "Cities", "Description", "ID", 1, "") = "Juniper Bay", _
        "GetDescriptionFromCode by code, optional arguments left out"
  Check link.GetMultiString(1, 19) = "Pollen , Aspirin", "GetMultiString of a multi-select"
  CheckNoError "look-ups"
End Sub

Sub TestClauses
  On Error Resume Next
  Check link.GetComparisionClause("F", 1, 1, 0, 7, Empty, True, False) = "F <> 7", _
        "a reversed numeric comparison"
  Check link.GetComparisionClause("F", 3, 4, 0, "A'x", "M'y", False, False) = _
        "( F >=  'A''x' ) AND ( F <=  'M''y' )", "a text range, apostrophes doubled"
  Dim d1, d2, xtal
  d1 = DateSerial(2024, 3, 5)
  d2 = DateSerial(2024, 3, 7)
  Check link.GetDateSqlFromValues("VisitDate", 1001, d1, d2) = _
        " ( VisitDate Between #03/05/2024#  And #03/08/2024# )", _
        "GetDateSqlFromValues without its optional argument"
  xtal = True
  Check link.GetDateSqlFromValues("VisitDate", 1001, d1, d2, xtal) = _
        " ( {VisitDate} in CDate(2024 , 3 , 5)  to CDate(2024 , 3 , 7) )", _
        "GetDateSqlFromValues with the optional by-reference flag"
  Check link.GetDateSqlFromValues("VisitDate", 1000, d1, d2) = "", "range 1000 is no restriction"
  Dim fromCtl, toCtl
  Set fromCtl = New HostDate
  Set toCtl = New HostDate
  fromCtl.Value = DateSerial(2024, 3, 5)
  toCtl.Value = Null
  Check link.GetDateSqlFromControls("VisitDate", 1001, fromCtl, toCtl) = _
        " ( VisitDate >= #03/05/2024# )", "GetDateSqlFromControls reads the host's date controls"
  CheckNoError "clauses"
End Sub

Sub TestListControl
  On Error Resume Next
  Dim cb
  Set cb = New HostList
  link.FillComboWithSQL cb, 1, "Select Description, ID From Cities Where ID Between 1 And 4 Order By ID", _
                        "Description", "ID", True
  CheckNoError "FillComboWithSQL"
  Check cb.Count = 4, "FillComboWithSQL adds one item per row"
  Check cb.FirstValue = 1 And cb.FirstText <> "" And cb.AllValues = "1,2,3,4,", _
        "each item carries its text and its value"
  Check cb.ListIndex = 0, "bSelectFirst selects the first item"
  Check cb.Tag = "mine", "the control's Tag is restored after the fill"
  link.FillComboWithSQL cb, 1, "Select Description, ID From Cities Where ID = 9", _
                        "Description", "ID", False, True
  Check cb.Count = 5, "bDontClear appends to the list"
  CheckNoError "list control"
End Sub

Sub TestStoredQuery
  On Error Resume Next
  Dim qi, group, param, params, rs, ok
  Set qi = CreateObject("Kelvary.QueryInterpretor")
  CheckNoError "CreateObject(""Kelvary.QueryInterpretor"")"
  qi.InitSettings "", 1, 1, False
  CheckNoError "InitSettings"
  ' As the application does: each top group's condition text restricts the
  ' shape level it is bound to.
  Dim text, level, restricted
  params = 0
  restricted = 0
  For Each group In qi.CurrentConditions
    For Each param In group.ChildConditions
      params = params + 1
    Next
    If group.ParentGroupId = 0 Then
      text = qi.GetConditionString(group)
      If text <> "" Then
        For Each level In qi.ShapeNests
          If level.ID = group.NestedBinding Then
            If level.AssignedWhereClause = "" Then
              level.AssignedWhereClause = text
            Else
              level.AssignedWhereClause = level.AssignedWhereClause & " AND " & text
            End If
            restricted = restricted + 1
          End If
        Next
      End If
    End If
  Next
  Check params = 6, "the template's conditions: six parameters in their groups"
  Check restricted > 0, "the condition text of the template's groups restricts their levels"
  CheckNoError "conditions"
  qi.EncodeSQLStmt
  CheckNoError "EncodeSQLStmt"
  Check InStr(qi.FinalSQLStmt, "patients.LastName Like 'M%'") > 0, _
        "EncodeSQLStmt puts the template's conditions into FinalSQLStmt"
  ok = qi.AssignRecordSet(rs)
  CheckNoError "AssignRecordSet"
  Check ok = True And IsObject(rs), "AssignRecordSet hands back a recordset"
  Check rs.RecordCount = 1, "the template selects one patient"
  Check rs("LastName") = "Moreau", "rs(""X"") reads the field's value"
  Check rs.Fields.Item("City").Value = "Fairhaven", "rs.Fields.Item(""X"").Value"
  Dim fld, names
  names = ""
  For Each fld In rs.Fields
    names = names & fld.Name & ","
  Next
  Check names = "regnno,LastName,FirstName,DOB,City,", "For Each over the fields"
  Dim missing
  missing = rs("NoSuchField")
  Check Err.Number <> 0 And Err.Description <> "", _
        "a field that is not there: the system's error reaches the script (" & Err.Number & ")"
  Err.Clear
  link.SafelyCloseRecordSet rs
  CheckNoError "SafelyCloseRecordSet"
End Sub

Sub TestShapeChapter
  On Error Resume Next
  Dim qi, rs, visits, invoices, items, fees, n, ok
  Set qi = CreateObject("Kelvary.QueryInterpretor")
  qi.InitSettings "", 5, 0, False
  qi.AssignIDBasedWhereClause 1, 1, 101, ""
  qi.EncodeSQLStmt
  Check Left(LTrim(qi.FinalSQLStmt), 5) = "SHAPE", "a query of nested levels is a SHAPE statement"
  ok = qi.AssignRecordSet(rs)
  CheckNoError "the SHAPE query"
  Check ok = True And rs.RecordCount = 1, "the SHAPE query selects patient 1"
  Set visits = rs("Visits").Value
  fees = 0
  n = 0
  Do Until visits.EOF
    fees = fees + visits("Fee")
    n = n + 1
    visits.MoveNext
  Loop
  Check n = 2 And fees = 120, "the Visits chapter holds the patient's two visits"
  Set invoices = rs("Invoices").Value
  invoices.MoveFirst
  Set items = invoices("Items").Value
  Check items.RecordCount = 1 And items("Description") = "Vaccine dose", _
        "a chapter inside a chapter"
  CheckNoError "walking the chapters"
End Sub

Sub TestRecordsetMembers
  On Error Resume Next
  Dim rs, ok, rows, twin, cmd, found, affected
  ok = link.FillRecordSet(1, rs, "Select ID, Description From Cities Where ParentID = 1 Order By ID", 3, 3)
  CheckNoError "FillRecordSet for the recordset's members"
  Check ok = True And rs.RecordCount = 3, "three cities of the North Region"
  rows = rs.GetRows()
  CheckNoError "GetRows"
  Check UBound(rows, 1) = 1 And UBound(rows, 2) = 2, _
        "GetRows: an array of two fields by three rows (" & UBound(rows, 1) & ", " & UBound(rows, 2) & ")"
  Check rows(1, 0) = "Aldermoor" And rows(0, 2) = 6, "GetRows: field first, row second"
  Check rs.EOF, "GetRows leaves the cursor after the last row read"
  rows = rs.GetRows(-1, 1, Array("Description", 0))
  CheckNoError "GetRows with an array of fields"
  Check UBound(rows, 1) = 1 And rows(0, 0) = "Aldermoor" And rows(1, 2) = 6, _
        "GetRows takes an array of fields, by name and by ordinal"
  rs.Sort = "Description DESC"
  rs.MoveFirst
  Check rs("Description") = "Cedarfield", "Sort orders the rows, descending"
  Set twin = rs.Clone
  CheckNoError "Clone"
  Check twin.RecordCount = 3, "a clone holds the same rows"
  twin.Bookmark = rs.Bookmark
  Check twin("ID") = rs("ID"), "a bookmark of one works in its clone"
  Set cmd = CreateObject("Kelvary.Command")
  CheckNoError "CreateObject(""Kelvary.Command"")"
  Set cmd.ActiveConnection = link.AppDataXion
  cmd.CommandText = "Select Description From Cities Where ID = ?"
  cmd.Parameters.Append cmd.CreateParameter("city", 3, 1, 4, 7)
  CheckNoError "a command and its parameter"
  Check cmd.Parameters.Count = 1, "the command holds its parameter"
  Set found = cmd.Execute(affected)
  CheckNoError "Execute"
  Check found("Description") = "Dunmore", "a command runs with its parameter bound"
  cmd.Parameters(0).Value = 9
  Set found = cmd.Execute(affected)
  Check found("Description") = "Fairhaven", "a parameter's new value is used by the next run"
  Set found = cmd.Execute(affected, Array(12))
  Check found("Description") = "Ironbridge", "Execute takes the markers' values as an array"
  Dim batch
  ok = link.FillRecordSet(1, batch, "Select ID, Description, ParentID, RecordStatus From Cities Where ID = 1", 3, 4)
  batch.AddNew Array("ID", "Description", "ParentID", "RecordStatus"), Array(99, "Zed Harbour", 3, 0)
  CheckNoError "AddNew with arrays"
  Check batch.RecordCount = 2 And batch("Description") = "Zed Harbour", _
        "AddNew takes an array of fields and an array of their values"
  batch.CancelBatch
  CheckNoError "CancelBatch"
  link.SafelyCloseRecordSet batch
  CheckNoError "commands"
  link.SafelyCloseRecordSet rs
End Sub

Sub TestKeysAndDelete
  On Error Resume Next
  Check link.GenerateNumericCode(1, "patients", "ID") = 301, "GenerateNumericCode: the next patient ID"
  Dim showable
  showable = link.GetShowableRecordClause("patients", False)
  Check showable = " ( patients.RecordStatus <> 1 ) ", "GetShowableRecordClause"
  Check link.GetCorrespondingValue(290, "patients", "RecordStatus", "ID", 1, "") = 0, _
        "patient 290 is showable before the delete"
  Dim noRecs
  Set noRecs = Nothing
  link.SafeDeleteRecord 1, 1, "patients", 2, 290, 0, "ID", "", noRecs
  CheckNoError "SafeDeleteRecord"
  Check link.GetCorrespondingValue(290, "patients", "RecordStatus", "ID", 1, "") = 1, _
        "SafeDeleteRecord marks the row instead of removing it"
  CheckNoError "keys and delete"
End Sub

Sub TestBadCalls
  On Error Resume Next
  Dim r
  r = link.GetDescription(1)
  Check Err.Number = 450, "too few arguments: error 450 (" & Err.Number & ")"
  Err.Clear
  r = link.GetDescription("seven", 7)
  Check Err.Number = 13, "a text where a number goes: type mismatch (" & Err.Number & ")"
  Err.Clear
  r = link.NoSuchMember
  Check Err.Number = 438, "an unknown member: error 438 (" & Err.Number & ")"
  Err.Clear
  r = link.InterpretUserDataLocation(1, 2, 3)
  Check Err.Number = 450, "too many arguments: error 450 (" & Err.Number & ")"
  Err.Clear
  Dim foreign, cb
  Set foreign = CreateObject("Scripting.Dictionary")
  Set cb = New HostList
  link.AddRecsToCombo foreign, "Description", "ID", cb
  Check Err.Number <> 0 And Err.Description <> "", _
        "another library's object where a recordset goes is refused: " & Err.Description
  Err.Clear
  Check link.GetDescription(1, 7) = "Dunmore", "the object still works after the bad calls"
  CheckNoError "after the bad calls"
End Sub

Sub TestRelease
  On Error Resume Next
  Set mainXion = Nothing
  Set sysXion = Nothing
  Set link = Nothing
  CheckNoError "releasing the service object"
End Sub

TestCreation
If IsObject(link) Then
  TestConnect
  TestLookups
  TestClauses
  TestListControl
  TestStoredQuery
  TestShapeChapter
  TestRecordsetMembers
  TestKeysAndDelete
  TestBadCalls
  TestRelease
End If
WScript.Echo passed & " passed, " & failed & " failed"
