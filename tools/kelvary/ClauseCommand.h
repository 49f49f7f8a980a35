// kelvary clause: what one of the service object's clause builders writes
// for given arguments, in each dialect and, where the builder has one, in
// report-formula syntax. The builders need no database: the command runs
// them on a service object of its own, made the active one for the time.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

int ClauseCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
