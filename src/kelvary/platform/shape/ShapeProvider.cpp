#include "kelvary/platform/shape/ShapeProvider.h"

#include "kelvary/platform/Error.h"

namespace kelvary::shape {

// Stands in until the data-shaping layer lands.
void OpenShape(const std::string& command, const std::shared_ptr<Connection>&,
               internal::CursorEngine&, const ShapeRequest&) {
  throw Error(kErrOperationNotSupported,
              "SHAPE statements need the data-shaping layer, which this build does not have",
              "Shape")
      .WithStatement(command);
}

}  // namespace kelvary::shape
