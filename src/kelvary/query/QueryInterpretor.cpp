// QueryInterpretor: its collections and lifecycle, IsSimpleTemplate, and
// InitSettings, which runs the definition's loaders (DefinitionLoading.cpp;
// the condition groups and parameters in ConditionLoading.cpp). The
// statements are built in StatementAssembly.cpp and the conditions in
// ConditionText.cpp.
#include "kelvary/query/QueryInterpretor.h"

#include "kelvary/platform/Messages.h"
#include "kelvary/query/internal/ActiveLink.h"
#include "kelvary/query/internal/DefinitionLoading.h"
#include "kelvary/service/internal/InfoLinkPort.h"

namespace kelvary {

using query_internal::ActiveLink;
using query_internal::LoadLevels;
using query_internal::LoadLevelTables;
using query_internal::LoadOutputFields;
using query_internal::LoadQueryRow;
using query_internal::LoadTemplateHeader;

QueryInterpretor::~QueryInterpretor() {
  // Conditions first: their parameters point into the levels' tables.
  try {
    CurrentConditions()->Clear();
    current_conditions_.reset();
    ShapeNests()->Clear();
    shape_nests_.reset();
    if (template_sort_options_) {
      template_sort_options_->Clear();
      template_sort_options_.reset();
    }
  } catch (...) {
    // A destructor never throws; what is left goes with the members.
  }
}

const std::shared_ptr<QueryShapeNests>& QueryInterpretor::ShapeNests() {
  if (!shape_nests_) shape_nests_ = std::make_shared<QueryShapeNests>();
  return shape_nests_;
}

void QueryInterpretor::ShapeNests(std::shared_ptr<QueryShapeNests> levels) {
  shape_nests_ = std::move(levels);
}

const std::shared_ptr<QueryTemplateSortOptions>& QueryInterpretor::TemplateSortOptions() {
  if (!template_sort_options_) {
    template_sort_options_ = std::make_shared<QueryTemplateSortOptions>();
  }
  return template_sort_options_;
}

void QueryInterpretor::TemplateSortOptions(std::shared_ptr<QueryTemplateSortOptions> options) {
  template_sort_options_ = std::move(options);
}

const std::shared_ptr<ConditionNodes>& QueryInterpretor::CurrentConditions() {
  if (!current_conditions_) current_conditions_ = std::make_shared<ConditionNodes>();
  return current_conditions_;
}

void QueryInterpretor::CurrentConditions(std::shared_ptr<ConditionNodes> conditions) {
  current_conditions_ = std::move(conditions);
}

bool QueryInterpretor::IsSimpleTemplate() {
  const Variant marker = ActiveLink().GetCorrespondingValue(
      TemplateId, "XQueryTemplates", "SimpleQueryTemplateID", "ID", pdssystem, "");
  // Not found and Null both come back Empty, which reads as 0.
  return CLng(marker) == 1;
}

void QueryInterpretor::InitSettings(const std::string& RepStr, int32_t QueryCode,
                                    int32_t QueryTemplateId, bool bSupportXtal) {
  InterpretXtal = bSupportXtal;
  TemplateId = QueryTemplateId;
  QueryID = QueryCode;
  RepKey = RepStr;

  if (QueryCode < 1) {
    MsgBox("No Query specified", vbOKOnly);
    return;
  }

  InfoLinkPort services(ActiveLink());
  if (!LoadQueryRow(services, *this)) {
    // Deliberately carries on: the template and (for a query that was
    // digitally built before) the levels are still read.
    MsgBox("Query ID " + std::to_string(QueryCode) + " not found", vbOKOnly);
  }
  if (QueryTemplateId > 0) LoadTemplateHeader(services, *this, QueryTemplateId);
  if (QueryBuildMethod == qbmDigitalBuild) {
    LoadLevels(services, *this);
    LoadLevelTables(services, *this);
    LoadOutputFields(services, *this);
    LoadTemplateConditions(services, QueryTemplateId);
  }
}

}  // namespace kelvary
