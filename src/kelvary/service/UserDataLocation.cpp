// Kept in a file of its own: it is the one member of the service core that
// needs the value look-ups.
#include "kelvary/service/InfoLink.h"

namespace kelvary {

ProjectDataSources InfoLink::InterpretUserDataLocation() {
  const Variant location = GetCorrespondingValueFromText("Users", "DataTables", "TableLocation",
                                                         "ValuesTable", pdssystem, "");
  return static_cast<ProjectDataSources>(CLng(location));
}

}  // namespace kelvary
