// Classes: the system's public classes as a host reaches them. Every class
// has one member table (MemberTable.h); the creatable ones are made by
// ProgID ("Kelvary.InfoLink", "Kelvary.QueryInterpretor", one per record and
// collection class of the query model, "Kelvary.Connection",
// "Kelvary.Recordset"). Objects the system hands out (a recordset, a
// collection, one of its members) come wrapped, one wrapper per object, so
// that the same object always reaches a host as the same dispatch object.
//
// The order of AllTables() is the order of the classes in the interface
// definition and the type library.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/MemberTable.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/InfoLinkEvents.h"

namespace kelvary::automation {

// AllTables: every class's table, in library order.
const std::vector<const MemberTable*>& AllTables();

// FindTable: the table of a class by its name or its ProgID (without regard
// to case), or nullptr.
const MemberTable* FindTable(std::string_view class_name_or_prog_id);

// CreateObject: a new object of a creatable class, by ProgID or class name
// (without regard to case); nullptr for an unknown or non-creatable class.
std::shared_ptr<DispatchObject> CreateObject(std::string_view prog_id);

// ToHost: v as a host receives it: the system's own objects in it (a
// recordset, a connection, an object of the query model) wrapped in their
// dispatch objects. FromHost: the reverse, for values a host passes in.
Variant ToHost(const Variant& v);
Variant FromHost(const Variant& v);

// SubscribeEvents: subscribes a host's event sink to the events of the
// InfoLink that info_link wraps (see DispatchEventSink) and returns the
// subscription, to be passed to UnsubscribeEvents; nullptr when info_link
// is not an InfoLink.
std::shared_ptr<InfoLinkEvents> SubscribeEvents(const DispatchObject& info_link,
                                                std::shared_ptr<DispatchObject> sink);
void UnsubscribeEvents(const DispatchObject& info_link,
                       const std::shared_ptr<InfoLinkEvents>& subscription);

}  // namespace kelvary::automation
