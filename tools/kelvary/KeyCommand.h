// kelvary key: a new key for a table and field as the service object makes
// it by a GenCodeMethod (or by each of them in turn), or a new registration
// number. With --dry-run whatever making the key wrote is rolled back.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

int KeyCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
