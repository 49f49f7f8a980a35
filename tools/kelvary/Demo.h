// kelvary demo: builds the demo practice's databases in a folder and walks
// through them: stored queries of one and more levels, look-ups through
// search links and multi-selects, a template's conditions, a new key and a
// safe delete with its record-action events.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kelvary::cli {

// DemoCommand: "kelvary demo [DIR] [--data DIR]" (arguments after the word
// demo). DIR defaults to kelvary-demo in the current folder.
int DemoCommand(const std::vector<std::string>& args, std::ostream& out);

}  // namespace kelvary::cli
