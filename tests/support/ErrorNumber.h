// ErrorNumberOf: the number of the Error that a call raises, 0 when it
// raises none. Other exceptions pass through and fail the test.
#pragma once

#include <cstdint>
#include <functional>

#include "kelvary/platform/Error.h"

namespace kelvary::testing {

inline int32_t ErrorNumberOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.Number();
  }
  return 0;
}

}  // namespace kelvary::testing
