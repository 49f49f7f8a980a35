// CalcExpression: the expressions of a SHAPE statement's CALC(...) columns,
// computed for each row from the row's other fields.
//
//   expr    := compare
//   compare := concat [ (= | <> | < | > | <= | >=) concat ]
//   concat  := sum { & sum }
//   sum     := product { (+ | -) product }
//   product := power { (* | / | \ | MOD) power }
//   power   := unary [ ^ unary ]
//   unary   := [ - | + ] primary
//   primary := number | "text" | 'text' | #date# | field | [field] | ( expr )
//            | function ( [expr { , expr }] )
//
// Functions: Len, UCase, LCase, Trim, LTrim, RTrim, Left, Right, Mid, InStr,
// Abs, Int, Fix, Round, Sgn, Sqr, IIf, IsNull, CStr, CLng, CDbl, CDate,
// Year, Month, Day, Now, Date. Fields are found without regard to case. A
// Null operand makes an arithmetic or comparison result Null; & joins Null as
// "". Parentheses and calls nest at most 64 deep, and an expression holds at
// most 4096 terms.
//
// Parse raises Error 3000 naming the expression when it cannot be read or
// names a field the row does not have; Evaluate raises the conversion errors
// of Variant (13 type mismatch, 6 overflow) and 11 for a division by zero.
// Immutable after Parse; any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::shape {

class CalcExpression {
 public:
  // resolve: the ordinal of a field of the row, or -1.
  static CalcExpression Parse(std::string_view text,
                              const std::function<int32_t(std::string_view)>& resolve);
  Variant Evaluate(const Variant* row) const;

  struct Node;

 private:
  std::shared_ptr<const Node> root_;
};

}  // namespace kelvary::shape
