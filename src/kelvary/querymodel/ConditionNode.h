// ConditionNode: one AND/OR group of a query's condition tree, holding its
// parameters; and ConditionNodes, the groups of a query (keyed "C" + ID by the
// query interpreter). The tree is expressed only by each group's
// ParentGroupId and NodeLevel.
//
// A group owns its ChildConditions collection: created empty on first read;
// when the group goes it empties the collection from the front, then
// releases it. Parameters are shared references. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryModelEnums.h"
#include "kelvary/querymodel/RepParam.h"

namespace kelvary {

// ConditionNode: one condition group.
class ConditionNode : public Object {
 public:
  ConditionNode() = default;
  // Clears ChildConditions (creating it when unset), then releases it;
  // never throws.
  ~ConditionNode() override;
  ConditionNode(const ConditionNode&) = delete;
  ConditionNode& operator=(const ConditionNode&) = delete;

  int32_t ID = 0;  // group ID

  // ChildConditions: the group's parameters; reading it while unset first
  // creates an empty collection. Setting nullptr releases it.
  const std::shared_ptr<RepParams>& ChildConditions();
  void ChildConditions(std::shared_ptr<RepParams> conditions);

  NodeTypes NodeType = ntall;  // ntall: all must hold; ntAny: one suffices
  int16_t NodeLevel = 0;       // depth of the group in the tree
  int32_t NestedBinding = 0;   // ID of the shape level the group applies to
  int32_t ParentGroupId = 0;   // ID of the enclosing group

 private:
  std::shared_ptr<RepParams> child_conditions_;
};

// ConditionNodes: the condition groups of one query.
class ConditionNodes : public QueryCollection<ConditionNode> {
 public:
  // Add creates a group and assigns ParentGroupId, NodeLevel, NestedBinding,
  // NodeType and ID (from UniqueId) in that order, inserts it under sKey
  // (none when "") and returns it. A duplicate key raises Error 457 and
  // inserts nothing.
  std::shared_ptr<ConditionNode> Add(int32_t ParentGroupId, int16_t NodeLevel, NodeTypes NodeType,
                                     int32_t NestedBinding, int32_t UniqueId,
                                     const std::string& sKey = "");
};

}  // namespace kelvary
