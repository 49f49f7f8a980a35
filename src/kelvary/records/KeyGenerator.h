// KeyGenerator: new numeric keys by the method the GenCodeMethod setting
// names (the column's maximum plus one, a counter in the table-key
// collection or in the data-tables recordset, the host's answer to
// RequestRemoteNextID, a counter per physical location), and patient
// registration numbers. Each key member has a Long and a Double form that
// share one body.
//
// Borrows the ServicePort and the metadata cache (whose table keys and
// data-tables recordset hold the counters of modes 1 and 3), which must
// outlive it. One thread; the location counter is safe between processes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::records {

class KeyGenerator {
 public:
  KeyGenerator(ServicePort& services, lookups::MetadataCache& cache)
      : services_(services), cache_(cache) {}

  int32_t GenerateNumericCode(ProjectDataSources SourceofData, const std::string& Table_Name,
                              const std::string& Field_Name,
                              const std::optional<std::string>& LimitString);
  double GenerateNumericCodeAsDouble(ProjectDataSources SourceofData, const std::string& Table_Name,
                                     const std::string& Field_Name,
                                     const std::optional<std::string>& LimitString);
  // UpdateTableMaxID stores MaxCd as the table's last key (modes 1 and 3;
  // "Not Handled !" in the others).
  void UpdateTableMaxID(const std::string& Table_Name, int32_t MaxCd);
  std::string GetRegNo(const std::string& FName, const std::string& MName,
                       const std::string& LName);

  // GetNextMaxValue: the column's maximum plus one ("No Table mentioned" and
  // 0 without a table). The Double form counts in doubles.
  int32_t GetNextMaxValue(ProjectDataSources SourceofData, const std::string& Table_Name,
                          const std::string& Field_Name,
                          const std::optional<std::string>& LimitString);
  double GetNextMaxValueAsDouble(ProjectDataSources SourceofData, const std::string& Table_Name,
                                 const std::string& Field_Name,
                                 const std::optional<std::string>& LimitString);
  // GetNextLocationKey: the next counter of the current physical location
  // for the table, read and advanced in one transaction on the
  // sequence-generator connection, behind CurrPhysLocIDPrefix's digits.
  int32_t GetNextLocationKey(ProjectDataSources SourceofData, const std::string& Table_Name,
                             const std::string& Field_Name,
                             const std::optional<std::string>& LimitString);
  double GetNextLocationKeyAsDouble(ProjectDataSources SourceofData, const std::string& Table_Name,
                                    const std::string& Field_Name,
                                    const std::optional<std::string>& LimitString);

 private:
  // The bodies that the Long (Key = int32_t) and Double (Key = double)
  // forms share.
  template <class Key>
  Key GenerateCode(ProjectDataSources SourceofData, const std::string& Table_Name,
                   const std::string& Field_Name, const std::optional<std::string>& LimitString);
  template <class Key>
  Key NextMaxValue(ProjectDataSources SourceofData, const std::string& Table_Name,
                   const std::string& Field_Name, const std::optional<std::string>& LimitString);
  template <class Key>
  Key NextLocationKey(const std::string& Table_Name, const std::optional<std::string>& LimitString);

  ServicePort& services_;
  lookups::MetadataCache& cache_;
};

}  // namespace kelvary::records
