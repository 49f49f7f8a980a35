// QueryInterpretor: turns a stored query definition into its statement. The
// host creates one per query to be run, calls InitSettings once (which reads
// the definition into the query model: levels, tables, output fields,
// condition groups, parameters, sort options), may adjust conditions or
// restrict a level to one record, then calls EncodeSQLStmt and
// AssignRecordSet.
//
// A query built from its definition (QueryBuildMethod qbmDigitalBuild)
// becomes one plain SELECT when it has one level, and one SHAPE statement
// (a parent SELECT with its child levels appended and related) when it has
// more. Any other query uses its stored text, RawSQL, into which each level's
// restriction is spliced at the level's marker ("!" + level ID).
//
// The object owns no connection: it reads the definition and opens its
// statement through ActiveInfoLink() (FillRecordSet on the system or main
// data source, GetDescriptionFromCode, GetCorrespondingValue). It owns its
// collections; on destruction it empties the condition groups first, then
// the levels, then the sort options, so that parameters go before the levels
// they point into.
//
// Expected problems (no query code, an unknown query) show the system's
// message and leave the object as it was; failures of the keyed look-ups and
// of the database calls not trapped there reach the caller as Error. One
// thread at a time (the host's: ActiveInfoLink is per thread).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Recordset.h"
#include "kelvary/querymodel/QueryModel.h"

namespace kelvary {

class ServicePort;  // the door to the service object the loaders read through

class QueryInterpretor {
 public:
  QueryInterpretor() = default;
  // Empties CurrentConditions, ShapeNests, then TemplateSortOptions (when
  // created) and releases each; never throws.
  ~QueryInterpretor();
  QueryInterpretor(const QueryInterpretor&) = delete;
  QueryInterpretor& operator=(const QueryInterpretor&) = delete;

  QueryBuildMethods QueryBuildMethod = qbmAppDefined;  // how the statement is produced
  int16_t DataSupplier = 0;                            // Queries.DataSupplier
  bool IsSystemData = false;                           // the rows are in the system database
  int16_t NumNestedLevels = 0;                         // Queries.NumNestedLevels
  bool InterpretXtal = false;                          // report-formula syntax for conditions
  std::string RawSQL;                                  // the stored statement text
  std::string FinalSQLStmt;                            // the statement EncodeSQLStmt built
  bool bProgramAssignedWhereClause = false;            // AssignIDBasedWhereClause was called
  int32_t UniqueRecordId = 0;                          // record ID of that restriction

  // ShapeNests: the levels, keyed "S" + ID; created empty on first read,
  // released by nullptr.
  const std::shared_ptr<QueryShapeNests>& ShapeNests();
  void ShapeNests(std::shared_ptr<QueryShapeNests> levels);
  // TemplateSortOptions: the template's sort options, keyed "S" + parameter
  // ID; created empty on first read, released by nullptr.
  const std::shared_ptr<QueryTemplateSortOptions>& TemplateSortOptions();
  void TemplateSortOptions(std::shared_ptr<QueryTemplateSortOptions> options);

  std::string RepKey;      // InitSettings' RepStr, kept unread for the host
  int32_t QueryID = 0;     // InitSettings' QueryCode
  int32_t TemplateId = 0;  // InitSettings' QueryTemplateId

  // CurrentConditions: the condition groups, keyed "C" + ID; created empty
  // on first read, released by nullptr.
  const std::shared_ptr<ConditionNodes>& CurrentConditions();
  void CurrentConditions(std::shared_ptr<ConditionNodes> conditions);

  std::string TemplateDescription;  // description of the template
  bool OptionsDisplayed = false;    // the host's flag; never read here
  int32_t TemplateSet = 0;          // XQueryTemplates.TemplateSet (report templates)
  int32_t TemplateSupplier = 0;     // XQueryTemplates.TemplateSupplier (report templates)

  // IsSimpleTemplate: True when the report template TemplateId has
  // SimpleQueryTemplateID 1 (a fixed marker, not a count); False for any
  // other value, Null or a missing row.
  bool IsSimpleTemplate();

  // InitSettings stores its arguments, then reads query QueryCode (and, for
  // a digitally built query, its levels, tables, output fields, condition
  // groups and parameters) and the template's description. A QueryCode below
  // 1 shows "No Query specified" and loads nothing; an unknown one shows
  // "Query ID <code> not found" and loads the rest regardless. Calling it
  // twice adds to the collections; use a fresh object per query.
  void InitSettings(const std::string& RepStr, int32_t QueryCode, int32_t QueryTemplateId,
                    bool bSupportXtal);

  // EncodeSQLStmt builds FinalSQLStmt: the SELECT of the only level, or the
  // SHAPE statement of all levels, for a digitally built query; the stored
  // text with its markers spliced for any other. Each call refreshes the
  // clause lists of the levels it visits.
  // REQUIRES: a digitally built query has at least one level (otherwise
  // Error 5 from the look-up of level 1).
  void EncodeSQLStmt();

  // AssignRecordSet builds the statement (stored-text queries of method
  // qbmDirectADO, or digitally built ones) and opens it read-only into
  // RepData (created when empty) on the main data source, or the system one
  // when IsSystemData. True when FillRecordSet reports rows; False, with
  // RepData untouched, for every other build method.
  bool AssignRecordSet(std::shared_ptr<Recordset>& RepData);

  // AssignIDBasedWhereClause restricts the level that holds data table
  // DTableId to the record EntryID: its AssignedWhereClause becomes
  // "  ( <table>.<field> = <EntryID> ) ", replacing any earlier restriction.
  // The field is FieldName when FieldID is below 1, else the name of
  // DataTableFields row FieldID. Sets bProgramAssignedWhereClause.
  void AssignIDBasedWhereClause(int32_t DTableId, int32_t EntryID, int32_t FieldID,
                                const std::string& FieldName);

  // GetConditionString: the condition text of group cd and every group
  // below it: sub-groups first, then the group's own parameters, each part
  // in " ( ... ) " and joined by "  AND  " or "  OR  "; "" when nothing in
  // the branch restricts.
  std::string GetConditionString(const std::shared_ptr<ConditionNode>& cd);

  // GetSqlPhrase: one parameter as a comparison clause on FldName, or, when
  // FldName is "", on <table>.<field> of the parameter's own table; the
  // column is wrapped in braces when bSupportXtal.
  std::string GetSqlPhrase(const std::shared_ptr<RepParam>& RP, bool bSupportXtal,
                           const std::string& FldName);

  // AreThereAnyParameters: whether the template has essential parameters
  // (bRequiredOnesOnly) or any parameter rows at all.
  bool AreThereAnyParameters(bool bRequiredOnesOnly) const;
  // AreNeededParametersOK: always True.
  bool AreNeededParametersOK() const { return true; }
  // GetCurrentSpecs: always "".
  std::string GetCurrentSpecs() const { return ""; }

 private:
  // Reads the template's condition groups, parameters and sort options.
  void LoadTemplateConditions(ServicePort& services, int32_t TemplateID);
  // Builds FinalSQLStmt from RawSQL; always True.
  bool SpliceRawSQL();
  // The APPEND part for every child of level ParentId, recursively; depth
  // counts the recursion, to stop a cycle of parents.
  std::string BuildChildAppends(int32_t ParentId, int32_t depth = 0);
  // GetConditionString's recursion, with the same guard.
  std::string ConditionText(ConditionNode& cd, int32_t depth);
  // The SELECT of one level.
  std::string BuildLevelSelect(QueryShapeNest& level);

  std::shared_ptr<QueryShapeNests> shape_nests_;
  std::shared_ptr<QueryTemplateSortOptions> template_sort_options_;
  std::shared_ptr<ConditionNodes> current_conditions_;
  // Set by LoadTemplateConditions, read by AreThereAnyParameters.
  bool has_parameter_rows_ = false;
  bool has_essential_parameters_ = false;
};

}  // namespace kelvary
