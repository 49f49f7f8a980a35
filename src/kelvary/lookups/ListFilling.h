// ListFilling: the host's combo and list boxes filled with look-up entries,
// from a search link, a multi-select option, a statement, a recordset or a
// two-level hierarchy. A fill sets the control's Tag to "P" while it runs,
// so that the host's change handlers can ignore the events it raises.
//
// Borrows the ServicePort and the search links, which must outlive it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kelvary/lookups/SearchLinks.h"
#include "kelvary/platform/HostControls.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::lookups {

class ListFilling {
 public:
  ListFilling(ServicePort& services, SearchLinks& links) : services_(services), links_(links) {}

  void FillComboWithOptions(ListControl& cb, int32_t SearchLinkID);
  void FillComboWithSQL(ListControl& cb, ProjectDataSources SourceData, const std::string& SQLStmt,
                        const std::string& SearchDisplayField, const std::string& SearchValueField,
                        bool bSelectFirst, std::optional<bool> bDontClear);
  static void AddRecsToCombo(const std::shared_ptr<Recordset>& Recs, const std::string& DescField,
                             const std::string& ValFld, ListControl& fc);
  void RefreshHierarchicalList(ProjectDataSources SourceofData, ListControl& fc,
                               const std::string& DescFld, const std::string& IDFld,
                               const std::string& TableName, const std::string& FilterString);
  void FillComboWithValidDataTypes(ListControl& cb, int32_t DataFormatUsageID);

 private:
  ServicePort& services_;
  SearchLinks& links_;
};

}  // namespace kelvary::lookups
