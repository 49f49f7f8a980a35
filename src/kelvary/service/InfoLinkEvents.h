// InfoLinkEvents: the outgoing events of the service object, in their
// dispatch order. A host implements the ones it wants (the others do
// nothing) and subscribes the sink with InfoLink::Advise; every subscribed
// sink receives each raised event, in the order of subscription. Arguments
// passed by non-const reference may be changed by the handler: the service
// object reads them back after all sinks have run.
#pragma once

#include <cstdint>
#include <string>

#include "kelvary/service/Enums.h"

namespace kelvary {

class InfoLinkEvents {
 public:
  virtual ~InfoLinkEvents() = default;

  // 1-3: declared for hosts; no member of the service object raises them.
  virtual void CheckAllowRecordDelete(int32_t /*DataTableId*/, int32_t /*RecID*/,
                                      bool& /*bOKTODelete*/) {}
  virtual void BeforeDeleteRecord(int32_t /*DataTableId*/, int32_t /*RecID*/) {}
  virtual void AfterDeleteRecord(int32_t /*DataTableId*/, int32_t /*RecID*/) {}
  // 4: a new key is wanted from the host (key generation by network server).
  virtual void RequestRemoteNextID(int32_t& /*ReturnValue*/, ProjectDataSources /*SourceofData*/,
                                   const std::string& /*Table_Name*/,
                                   const std::string& /*Field_Name*/,
                                   const std::string& /*LimitString*/) {}
  // 5: a record action is about to be recorded; clear bContinue to stop it.
  virtual void BeforePostActionHistory(ProjectDataSources /*SourceofData*/,
                                       DBRecordActionTypes /*DBActionType*/, int32_t /*TableId*/,
                                       const std::string& /*TableName*/, int32_t /*UserId*/,
                                       int32_t /*KeyValue1*/, int32_t /*KeyValue2*/,
                                       const std::string& /*KeyField1*/,
                                       const std::string& /*KeyField2*/, bool& /*bContinue*/) {}
  // 6: as 4 with a double key.
  virtual void RequestRemoteNextIDAsDouble(double& /*ReturnValue*/,
                                           ProjectDataSources /*SourceofData*/,
                                           const std::string& /*Table_Name*/,
                                           const std::string& /*Field_Name*/,
                                           const std::string& /*LimitString*/) {}
  // 7: the record action is to be written by the host.
  virtual void AfterPostActionHistory(ProjectDataSources /*SourceofData*/,
                                      DBRecordActionTypes /*DBActionType*/, int32_t /*TableId*/,
                                      const std::string& /*TableName*/, int32_t /*UserId*/,
                                      int32_t /*KeyValue1*/, int32_t /*KeyValue2*/,
                                      const std::string& /*KeyField1*/,
                                      const std::string& /*KeyField2*/) {}
  // 8, 9: as 5 and 7 with double keys.
  virtual void BeforePostActionHistoryAsDouble(
      ProjectDataSources /*SourceofData*/, DBRecordActionTypes /*DBActionType*/,
      int32_t /*TableId*/, const std::string& /*TableName*/, int32_t /*UserId*/,
      double /*KeyValue1*/, double /*KeyValue2*/, const std::string& /*KeyField1*/,
      const std::string& /*KeyField2*/, bool& /*bContinue*/) {}
  virtual void AfterPostActionHistoryAsDouble(ProjectDataSources /*SourceofData*/,
                                              DBRecordActionTypes /*DBActionType*/,
                                              int32_t /*TableId*/, const std::string& /*TableName*/,
                                              int32_t /*UserId*/, double /*KeyValue1*/,
                                              double /*KeyValue2*/,
                                              const std::string& /*KeyField1*/,
                                              const std::string& /*KeyField2*/) {}
};

}  // namespace kelvary
