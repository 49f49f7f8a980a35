// InterfaceText: the interface definition of the library, generated from
// the member tables: one dual interface per class ("_<Class>"), the event
// interface of the service object as a dispinterface ("__InfoLink"), one
// coclass per class and the library block. A type library is compiled from
// this text; a copy of it is checked in beside the tables, so that every
// change to what hosts see shows in review, and a test fails while the copy
// and the tables differ. The text depends on nothing but the tables: the
// same tables give the same text, byte for byte.
#pragma once

#include <string>

namespace kelvary::automation {

// InterfaceDefinition: the whole definition text.
std::string InterfaceDefinition();

// DualInterfaceStubs: the vtable side of the same dual interfaces, as C++
// for the component server: one class per interface whose entries, in the
// order the definition declares them, forward to the member by its dispatch
// ID, so that a host binding early gets what a late-bound call gets. It is
// compiled against the header the type library compiler writes from the
// definition, so an entry out of step with the definition does not build.
// Checked in beside the definition, and tested the same way.
std::string DualInterfaceStubs();

}  // namespace kelvary::automation
