// List filling: the host's combo and list boxes filled with look-up entries.
// A fill sets the control's Tag to "P" while it runs, so that the host's
// change handlers can ignore the events the fill raises. Standard controls
// take the one-argument AddItem followed by ItemData(NewIndex); any other
// control takes text and value in one call.
#include "kelvary/lookups/ListFilling.h"

#include <string>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Messages.h"

namespace kelvary::lookups {
namespace {

constexpr const char* kFilling = "P";

// AddRow: one item, in the form the control takes.
void AddRow(ListControl& control, bool standard, const std::string& text, const Variant& value) {
  if (standard) {
    control.AddItem(text);
    control.ItemData(control.NewIndex(), CLng(value));
  } else {
    control.AddItem(text, value);
  }
}

// AddRows: every row from the current one on; the text is the display
// column joined null-safely, the value the value column as it is.
void AddRows(ListControl& control, bool standard, Recordset& rows, const std::string& display_field,
             const std::string& value_field) {
  const Field& display = rows.Fields(display_field);
  const Field& value = rows.Fields(value_field);
  for (; !rows.Eof(); rows.MoveNext())
    AddRow(control, standard, TextOf(display.Value()), value.Value());
}

}  // namespace

void ListFilling::FillComboWithOptions(ListControl& cb, int32_t SearchLinkID) {
  const bool standard = cb.IsStandardListControl();
  const std::string saved_tag = cb.Tag();
  cb.Tag(kFilling);
  cb.Clear();
  std::string display_field, value_field;
  ProjectDataSources source = pdsRawData;
  // Zero and negative values are multi-select option values.
  const std::string sql =
      SearchLinkID > 0 ? links_.FillID(SearchLinkID, display_field, value_field, source)
                       : links_.GetMultiSelectSQL(SearchLinkID, display_field, value_field, source);
  if (sql.empty()) {
    // Tag stays at "P" on purpose: the host reads it to see that the fill
    // failed.
    MsgBox("Error in search Link " + std::to_string(SearchLinkID) + " for control " + cb.Caption());
    return;
  }
  LookupQuery query(services_, source, sql);
  if (query.Found()) AddRows(cb, standard, query.Rows(), display_field, value_field);
  cb.Tag(saved_tag);
}

void ListFilling::FillComboWithSQL(ListControl& cb, ProjectDataSources SourceData,
                                   const std::string& SQLStmt,
                                   const std::string& SearchDisplayField,
                                   const std::string& SearchValueField, bool bSelectFirst,
                                   std::optional<bool> bDontClear) {
  const bool standard = cb.IsStandardListControl();
  const std::string saved_tag = cb.Tag();
  cb.Tag(kFilling);
  // Not clearing lets several statements append to one list.
  if (!bDontClear.value_or(false)) cb.Clear();
  LookupQuery query(services_, SourceData, SQLStmt);
  if (query.Found()) {
    AddRows(cb, standard, query.Rows(), SearchDisplayField, SearchValueField);
    if (bSelectFirst) cb.ListIndex(0);
  }
  cb.Tag(saved_tag);
}

void ListFilling::AddRecsToCombo(const std::shared_ptr<Recordset>& Recs,
                                 const std::string& DescField, const std::string& ValFld,
                                 ListControl& fc) {
  if (!Recs) throw Error(kErrObjectVariableNotSet, "Object variable not set");
  fc.Tag(kFilling);
  fc.Clear();
  if (Recs->RecordCount() > 0) {
    Recs->MoveFirst();
    AddRows(fc, false, *Recs, DescField, ValFld);
  }
  // The earlier Tag is not restored: this fill always leaves it empty.
  fc.Tag("");
}

void ListFilling::RefreshHierarchicalList(ProjectDataSources SourceofData, ListControl& fc,
                                          const std::string& DescFld, const std::string& IDFld,
                                          const std::string& TableName,
                                          const std::string& FilterString) {
  fc.Clear();
  // A filter of one character is no filter.
  const std::string filter = FilterString.size() > 1 ? " and ( " + FilterString + " ) " : "";
  LookupQuery top(services_, SourceofData,
                  "Select " + DescFld + " ," + IDFld + "  from " + TableName +
                      " where ( ID > 0 ) and ( ParentID = 0)  " + filter +
                      " order by description ");
  if (!top.Found()) return;
  LookupQuery children(services_, SourceofData,
                       "Select " + DescFld + " ," + IDFld + " ,ParentID from " + TableName +
                           " where ( ID > 0 ) and ( ParentID > 0) " + filter +
                           " order by description ",
                       adOpenStatic);
  // The column names are fixed: DescFld and IDFld only shape the statement,
  // so they are, or are aliased to, Description and ID. Children of
  // children have no top row to sit under and are not listed.
  Recordset& rows = top.Rows();
  for (; !rows.Eof(); rows.MoveNext()) {
    const Variant id = rows.Fields("ID").Value();
    fc.AddItem(TextOf(rows.Fields("Description").Value()), id);
    if (!children.Found()) continue;
    Recordset& kids = children.Rows();
    kids.Filter("ParentID = " + CStr(id));
    if (kids.RecordCount() <= 0) continue;
    kids.MoveFirst();
    for (; !kids.Eof(); kids.MoveNext())
      fc.AddItem("--- > " + TextOf(kids.Fields("Description").Value()), kids.Fields("ID").Value());
  }
}

void ListFilling::FillComboWithValidDataTypes(ListControl& cb, int32_t DataFormatUsageID) {
  // Formats of usage type 0 are allowed for every usage.
  const std::string sql =
      std::string(
          "Select Distinct DataFormats.Description ,DataFormatUsages.DataFormatID from "
          "DataFormats , DataFormatUsages ") +
      " Where ( DataFormatUsages.DataFormatID = DataFormats.ID) and (DataFormatUsages.DataFormatID "
      "> 0 ) " +
      " and (( DataFormatUsages.DataFormatUsageTypeID = " + std::to_string(DataFormatUsageID) +
      " ) or ( DataFormatUsages.DataFormatUsageTypeID =0) )";
  FillComboWithSQL(cb, pdssystem, sql, "Description", "DataFormatID", false, std::nullopt);
}

}  // namespace kelvary::lookups
