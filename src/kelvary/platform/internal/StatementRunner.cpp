#include "kelvary/platform/internal/StatementRunner.h"

#include <utility>

namespace kelvary::internal {

StatementResult RunStatement(Session& session, const std::string& text, int32_t max_records,
                             shape::ChapterMaker& make_chapter) {
  return session.Run([&] {
    DriverConnection& driver = session.Driver();
    if (!shape::IsShapeCommand(text)) return driver.Run(text, {}, max_records);
    StatementResult result;
    result.has_rows = true;
    result.rows = shape::RunShape(text, driver, max_records, make_chapter);
    return result;
  });
}

}  // namespace kelvary::internal
