#include "kelvary/platform/internal/Session.h"

namespace kelvary::internal {

DriverConnection& Session::Driver() {
  if (!driver_) {
    throw Error(kErrObjectClosed, "Operation is not allowed when the object is closed.",
                "Connection");
  }
  return *driver_;
}

}  // namespace kelvary::internal
