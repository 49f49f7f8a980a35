// FieldDataTypeGroups: how the system treats each field data type when it
// writes a condition, as SQL (the comparison clauses) or as words (a
// parameter's description). One table for both, so that the two never
// disagree about a type.
#pragma once

#include <cstdint>

#include "kelvary/service/Enums.h"

namespace kelvary {

enum class FieldDataTypeGroup {
  kNumeric,      // 1, 2, 5-9, 12-17
  kCodedValue,   // 21: a number looked up through a search link
  kText,         // 3, 4, 10, 11, 22, 23
  kDate,         // 18, 19, 20
  kBoolean,      // 25
  kGender,       // 33: 'M' or 'F', compared for equality only
  kUnhandled,    // refused with "Unhandled": 0, 24, 26-32, 34, 35, 39-42
  kUnhandledLC,  // refused with "unhandled": 36-38, 43 and above, negatives
};

// clang-format off
inline FieldDataTypeGroup GroupOfFieldDataType(int32_t type) {
  switch (type) {
    case 1: case 2: case 5: case 6: case 7: case 8: case 9:
    case 12: case 13: case 14: case 15: case 16: case 17:
      return FieldDataTypeGroup::kNumeric;
    case fdtCodedValue:
      return FieldDataTypeGroup::kCodedValue;
    case 3: case 4: case 10: case 11: case 22: case 23:
      return FieldDataTypeGroup::kText;
    case 18: case 19: case 20:
      return FieldDataTypeGroup::kDate;
    case fdtBoolean:
      return FieldDataTypeGroup::kBoolean;
    case fdtGender:
      return FieldDataTypeGroup::kGender;
    case 0: case 24: case 26: case 27: case 28: case 29: case 30: case 31: case 32:
    case 34: case 35: case 39: case 40: case 41: case 42:
      return FieldDataTypeGroup::kUnhandled;
    default:
      return FieldDataTypeGroup::kUnhandledLC;
  }
}
// clang-format on

}  // namespace kelvary
