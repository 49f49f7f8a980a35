// InfoLinkPort: the service object's answer to ServicePort. Every call goes
// to the InfoLink it was made for, so the subsystems read, write and raise
// events exactly as the facade's own members do. InfoLink holds one for its
// subsystems; the query interpreter makes one over the active service
// object for its definition loading.
//
// Borrows the InfoLink, which must outlive it.
#pragma once

#include "kelvary/service/InfoLink.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary {

class InfoLinkPort final : public ServicePort {
 public:
  explicit InfoLinkPort(InfoLink& link) : link_(link) {}

  bool FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                     const std::string& SQLStmt, CursorTypeEnum CursorType,
                     LockTypeEnum LocKType) override;
  bool ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) override;
  std::shared_ptr<Connection> ConnectionFor(ProjectDataSources SourceofData) const override;
  ServiceSettings Settings() const override;
  void Raise(const std::function<void(InfoLinkEvents&)>& event) override;

 private:
  InfoLink& link_;
};

}  // namespace kelvary
