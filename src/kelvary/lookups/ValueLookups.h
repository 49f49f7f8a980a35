// ValueLookups: one value read by a code, a name or a text: a person's
// composed name, a description by code, the value of one column where
// another matches, the walk up a hierarchy, a check-list attribute, a table's
// ID in the catalogue. Each runs one statement (a LookupQuery), reads the
// first row and closes it before returning; a failure has been shown by the
// service's FillRecordSet and the empty value is returned.
//
// Stateless beyond the ServicePort it borrows, which must outlive it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::lookups {

class ValueLookups {
 public:
  explicit ValueLookups(ServicePort& services) : services_(services) {}

  Variant GetCoreName(int32_t CoreCode, const std::string& TblName,
                      std::optional<int16_t> NumCharSpace);
  std::string GetDescriptionFromCode(int32_t CurrValue, const std::string& TableName,
                                     const std::string& descriptionField,
                                     const std::string& ValueField, ProjectDataSources Dtsrc,
                                     const std::string& SQLStmt,
                                     std::optional<int16_t> NumCharSpace,
                                     const std::optional<std::string>& SecondaryDisplayField);
  Variant GetCorrespondingValue(int32_t SearchValue, const std::string& TableName,
                                const std::string& OutPutField, const std::string& Searchfield,
                                ProjectDataSources Dtsrc, const std::string& SQLStmt);
  Variant GetCorrespondingValueFromText(const std::string& SearchText, const std::string& TableName,
                                        const std::string& OutPutField,
                                        const std::string& Searchfield, ProjectDataSources Dtsrc,
                                        const std::string& SQLStmt);
  int32_t GetHierarchicalParentNonZeroLongValue(int32_t StartFromID, const std::string& TblName,
                                                const std::string& ParentFieldName,
                                                const std::string& ValueFieldName,
                                                ProjectDataSources DatSrc);
  bool IsCheckListAttributeEnabled(ProjectDataSources SourceofData, const std::string& TableName,
                                   const std::string& AttributeField, int32_t AttributeValue,
                                   const std::string& SourceField, int32_t SrcFieldValue);
  // GetTableIDFromName: the data-table catalogue's ID for a table name; 0,
  // after "Use Dravent to define <name>", when there is none.
  int32_t GetTableIDFromName(const std::string& TblName);

 private:
  ServicePort& services_;
};

}  // namespace kelvary::lookups
