// Enumerations: the enumerations hosts see in the interface definition, each
// with its members' names and values, so that a parameter or property typed
// with one (TypeRef::name of a kLong) is declared as that enumeration and a
// host's object browser offers its members. Read-only, built on first use.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvary::automation {

struct EnumerationMember {
  std::string name;
  int32_t value = 0;
};

struct EnumerationInfo {
  std::string name;
  std::vector<EnumerationMember> members;  // in declaration order
};

const std::vector<EnumerationInfo>& AllEnumerations();
// FindEnumeration: the enumeration of that name (exact case), or nullptr.
const EnumerationInfo* FindEnumeration(std::string_view name);

}  // namespace kelvary::automation
