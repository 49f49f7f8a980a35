#include "kelvary/querymodel/QueryTemplateSortOption.h"

namespace kelvary {

std::shared_ptr<QueryTemplateSortOption> QueryTemplateSortOptions::Add(bool SortDescending,
                                                                       int16_t SortOrder,
                                                                       int32_t ShapeNestBindings,
                                                                       const std::string& sKey) {
  auto option = std::make_shared<QueryTemplateSortOption>();
  option->SortDescending = SortDescending;
  option->SortOrder = SortOrder;
  option->ShapeNestBindings = ShapeNestBindings;
  return Insert(std::move(option), sKey);
}

}  // namespace kelvary
