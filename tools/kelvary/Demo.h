// kelvary demo: builds the demo practice's databases in a folder and walks
// through them: stored queries of one and more levels, look-ups through
// search links and multi-selects, a template's conditions, a new key and a
// safe delete with its record-action events.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

// DemoCommand: "kelvary demo [DIR] [--data DIR]". DIR defaults to
// kelvary-demo in the current folder.
int DemoCommand(const Arguments& args, Output& output);

}  // namespace kelvary::cli
