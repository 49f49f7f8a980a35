// kelvary lookup: one of the service object's look-ups run as a host runs
// it (a description through a search link or from a table, a value by code
// or by text, a multi-select's chosen values, a search link's details),
// printed with the statement the look-up ran.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

int LookupCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
