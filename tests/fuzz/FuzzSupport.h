// What every fuzz target shares. A target reads one input and exercises one
// part of the library with it; the library may refuse the input with its
// Error (that is what bad input must get), but must not crash, trip a
// sanitizer, throw anything else, or break the target's own check (an
// oracle: a round trip, or SQLite's own answer), which aborts with the
// input and what went wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "kelvary/platform/Error.h"

namespace kelvary::fuzz {

// Inputs longer than this are skipped: the targets look for wrong answers,
// not for the time a parser takes over megabytes.
constexpr size_t kMaxInput = 4096;

inline std::string_view AsText(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Refused: runs f and tells whether it raised the library's Error.
template <typename F>
bool Refused(F&& f) {
  try {
    f();
    return false;
  } catch (const Error&) {
    return true;
  }
}

// Violation reports a broken check and stops the run, so that the fuzzer
// keeps the input as a finding.
[[noreturn]] inline void Violation(const std::string& what, std::string_view input) {
  std::fprintf(stderr, "CHECK FAILED: %s\ninput: [%.*s]\n", what.c_str(),
               static_cast<int>(input.size()), input.data());
  std::abort();
}

}  // namespace kelvary::fuzz
