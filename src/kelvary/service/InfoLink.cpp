#include "kelvary/service/InfoLink.h"

#include <algorithm>
#include <exception>

#include "kelvary/lookups/ListFilling.h"
#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/SearchLinks.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Text.h"
#include "kelvary/records/KeyGenerator.h"
#include "kelvary/records/SafeDelete.h"
#include "kelvary/records/SampleData.h"
#include "kelvary/service/internal/InfoLinkPort.h"

namespace kelvary {
namespace {

thread_local InfoLink* active_info_link = nullptr;

std::string ShapedConnectionString(const std::string& dsn) {
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" + dsn +
         ";Data Provider=MSDASQL";
}

std::shared_ptr<Connection> OpenClientConnection(const std::string& connection_string) {
  auto connection = std::make_shared<Connection>();
  connection->CursorLocation(adUseClient);
  connection->Open(connection_string, "", "", adCmdUnspecified);
  return connection;
}

// Runs one step of the termination; a destructor must not throw, and one
// step failing must not keep the later ones from releasing their objects.
template <class F>
void Guarded(F&& step) noexcept {
  try {
    step();
  } catch (...) {
  }
}

}  // namespace

InfoLink* ActiveInfoLink() {
  return active_info_link;
}

namespace internal {
void SetActiveInfoLink(InfoLink* link) {
  active_info_link = link;
}
}  // namespace internal

InfoLink::InfoLink()
    : port_(std::make_unique<InfoLinkPort>(*this)),
      metadata_(std::make_unique<lookups::MetadataCache>(*port_)),
      values_(std::make_unique<lookups::ValueLookups>(*port_)),
      search_links_(std::make_unique<lookups::SearchLinks>(*port_, *metadata_, *values_)),
      lists_(std::make_unique<lookups::ListFilling>(*port_, *search_links_)),
      keys_(std::make_unique<records::KeyGenerator>(*port_, *metadata_)),
      safe_delete_(std::make_unique<records::SafeDelete>(*port_, *metadata_, *values_)),
      sample_data_(std::make_unique<records::SampleData>(*port_)) {}

InfoLink::~InfoLink() {
  if (app_data_xion_) Guarded([&] { CloseUserSession(); });
  metadata_->Close();
  // Only this object's own registration is cleared: a later InfoLink that
  // connected since stays the active one.
  if (active_info_link == this) active_info_link = nullptr;
  if (GenCodeMethod == cgmPhysicalLocationWise && sequence_generator_xion_) {
    Guarded([&] {
      if (sequence_generator_xion_->State() == adStateOpen) sequence_generator_xion_->Close();
    });
  }
  sequence_generator_xion_.reset();
  if (spare_recordset_) {
    Guarded([&] { spare_recordset_->Close(); });
    spare_recordset_.reset();
  }
  // AppDataXion and ConfigsXion are never closed here, whether this object
  // opened them or was given them: the references simply go with it.
}

void InfoLink::CoreDataTable(const std::string& value) {
  core_data_table_ = UpperCase(value);
}

void InfoLink::Advise(std::shared_ptr<InfoLinkEvents> sink) {
  if (sink) sinks_.push_back(std::move(sink));
}

void InfoLink::Unadvise(const std::shared_ptr<InfoLinkEvents>& sink) {
  auto it = std::find(sinks_.begin(), sinks_.end(), sink);
  if (it != sinks_.end()) sinks_.erase(it);
}

bool InfoLink::ConnectDefault(std::shared_ptr<Connection>& MainXion,
                              std::shared_ptr<Connection>& SysXion, const std::string& MainDSN,
                              const std::string& SystemDSN,
                              const std::optional<std::string>& DirectXectString) {
  // The failure path is armed once this object starts creating a connection
  // of its own; with both connections given, failures reach the caller.
  bool armed = false;
  try {
    if (!MainXion) {
      armed = true;
      app_data_xion_ = std::make_shared<Connection>();
      app_data_xion_->CursorLocation(adUseClient);
      std::string connection_string = ShapedConnectionString(MainDSN);
      if (DirectXectString && !DirectXectString->empty()) connection_string = *DirectXectString;
      app_data_xion_->Open(connection_string, "", "", adCmdUnspecified);
      if (GenCodeMethod == cgmPhysicalLocationWise) {
        sequence_generator_xion_ = OpenClientConnection(connection_string);
      }
    } else {
      app_data_xion_ = MainXion;
    }
    if (!SysXion) {
      armed = true;
      configs_xion_ = std::make_shared<Connection>();
      configs_xion_->CursorLocation(adUseClient);
      // DirectXectString never applies to the system connection.
      configs_xion_->Open(ShapedConnectionString(SystemDSN), "", "", adCmdUnspecified);
    } else {
      configs_xion_ = SysXion;
    }
    InitLists(true, true);
  } catch (const std::exception&) {
    if (!armed) throw;
    return false;
  }
  internal::SetActiveInfoLink(this);
  return true;
}

std::shared_ptr<Connection> InfoLink::ConnectionFor(ProjectDataSources SourceofData) const {
  switch (SourceofData) {
    case pdsmaindata:
      return app_data_xion_;
    case pdssystem:
      return configs_xion_;
    case pdsSequenceGenerator:
      return sequence_generator_xion_;
    default:
      return nullptr;
  }
}

void InfoLink::CloseUserSession() {
  lookups::LookupQuery session(
      *port_, pdsmaindata,
      "Select * from UserSessions where Id = " + std::to_string(CurrentUserSessionID), adOpenStatic,
      adLockOptimistic);
  if (session.Found()) {
    session.Rows().Fields("LogoutDateTime").Value(Variant(Now()));
    session.Rows().Update();
  }
}

}  // namespace kelvary
