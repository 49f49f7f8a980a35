#include "kelvary/querymodel/ConditionNode.h"

namespace kelvary {

ConditionNode::~ConditionNode() {
  try {
    ChildConditions()->Clear();
  } catch (...) {
    // A destructor never throws; the parameters go with the collection anyway.
  }
  child_conditions_.reset();
}

const std::shared_ptr<RepParams>& ConditionNode::ChildConditions() {
  if (!child_conditions_) child_conditions_ = std::make_shared<RepParams>();
  return child_conditions_;
}

void ConditionNode::ChildConditions(std::shared_ptr<RepParams> conditions) {
  child_conditions_ = std::move(conditions);
}

std::shared_ptr<ConditionNode> ConditionNodes::Add(int32_t ParentGroupId, int16_t NodeLevel,
                                                   NodeTypes NodeType, int32_t NestedBinding,
                                                   int32_t UniqueId, const std::string& sKey) {
  auto node = std::make_shared<ConditionNode>();
  node->ParentGroupId = ParentGroupId;
  node->NodeLevel = NodeLevel;
  node->NestedBinding = NestedBinding;
  node->NodeType = NodeType;
  node->ID = UniqueId;
  return Insert(std::move(node), sKey);
}

}  // namespace kelvary
