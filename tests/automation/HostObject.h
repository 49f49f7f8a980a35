// HostObject: a host's object for tests, answering by member name like a
// host's control or event sink: each member is a function of the kind and
// arguments of the call, and every call is recorded as one line
// ("Name(arg,arg)", "Name=value"), so that a test can check what the system
// asked of the host.
#pragma once

#include <functional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/automation/Dispatch.h"
#include "kelvary/platform/Text.h"

namespace kelvary::testing {

class HostObject : public automation::DispatchObject {
 public:
  using Body = std::function<Variant(automation::InvokeFlags, std::span<automation::Arg>)>;

  // On adds a member; its dispatch ID is given, or the next one.
  HostObject& On(std::string name, Body body, automation::DispId id = 0) {
    members_.push_back(Member{std::move(name), id != 0 ? id : next_id_++, std::move(body)});
    return *this;
  }
  HostObject& Implements(std::string iid) {
    interfaces_.insert(std::move(iid));
    return *this;
  }

  automation::DispId GetIdOfName(std::string_view name) override {
    for (const Member& m : members_)
      if (EqualsNoCase(m.name, name)) return m.id;
    return automation::kDispIdUnknown;
  }
  Variant Invoke(automation::DispId id, automation::InvokeFlags flags,
                 std::span<automation::Arg> args) override {
    for (const Member& m : members_) {
      if (m.id != id) continue;
      std::string line = m.name;
      if ((flags & automation::kInvokePropertyPut) != 0) {
        line += "=" + TextOf(args.back().value);
      } else if (!args.empty()) {
        line += "(";
        for (size_t i = 0; i < args.size(); ++i)
          line += (i ? "," : "") + TextOf(args[i].value);
        line += ")";
      }
      calls_.push_back(line);
      return m.body(flags, args);
    }
    throw automation::AutomationError::MemberNotFound();
  }
  bool ImplementsInterface(std::string_view iid) const override {
    return interfaces_.count(std::string(iid)) != 0;
  }

  const std::vector<std::string>& Calls() const { return calls_; }

 private:
  struct Member {
    std::string name;
    automation::DispId id;
    Body body;
  };
  std::vector<Member> members_;
  std::set<std::string> interfaces_;
  std::vector<std::string> calls_;
  automation::DispId next_id_ = 100;
};

}  // namespace kelvary::testing
