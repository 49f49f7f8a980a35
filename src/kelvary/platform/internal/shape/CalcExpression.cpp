#include "kelvary/platform/internal/shape/CalcExpression.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::shape {

struct CalcExpression::Node {
  enum Kind { kLiteral, kField, kUnary, kBinary, kCall } kind = kLiteral;
  Variant literal;
  int32_t field = -1;
  std::string op;  // operator or function name, upper case
  std::vector<Node> args;
};

namespace {

using Node = CalcExpression::Node;
constexpr int kMaxDepth = 64;
constexpr int kMaxNodes = 4096;

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

// Number: a double as the narrowest of Long and Double that holds it.
Variant Number(double d) {
  if (std::isfinite(d) && std::floor(d) == d && d >= INT32_MIN && d <= INT32_MAX) {
    return Variant(static_cast<int32_t>(d));
  }
  return Variant(d);
}

class Parser {
 public:
  Parser(std::string_view text, const std::function<int32_t(std::string_view)>& resolve)
      : text_(text), resolve_(resolve) {}

  Node Run() {
    Node node = Compare(0);
    SkipBlanks();
    if (pos_ < text_.size()) Fail("unexpected \"" + std::string(text_.substr(pos_)) + "\"");
    return node;
  }

 private:
  [[noreturn]] void Fail(const std::string& why) const {
    throw Error(kErrProviderFailure,
                "SHAPE command: cannot compute CALC(" + std::string(text_) + "): " + why, "Shape");
  }
  void SkipBlanks() {
    while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
  }
  bool Accept(std::string_view op) {
    SkipBlanks();
    if (text_.substr(pos_, op.size()) != op) return false;
    pos_ += op.size();
    return true;
  }
  bool AcceptWord(std::string_view word) {
    SkipBlanks();
    if (!EqualsNoCase(text_.substr(pos_, word.size()), word)) return false;
    const size_t end = pos_ + word.size();
    if (end < text_.size() &&
        (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_')) {
      return false;
    }
    pos_ = end;
    return true;
  }
  Node Binary(std::string op, Node left, Node right) {
    if (++nodes_ > kMaxNodes) Fail("it has more than 4096 terms");
    Node node;
    node.kind = Node::kBinary;
    node.op = std::move(op);
    node.args.push_back(std::move(left));
    node.args.push_back(std::move(right));
    return node;
  }

  Node Compare(int depth) {
    // A chain of operators is evaluated by recursion over its terms: bound it.
    if (++nodes_ > kMaxNodes) Fail("it has more than 4096 terms");
    Node left = Concat(depth);
    for (const char* op : {"<>", "<=", ">=", "=", "<", ">"}) {
      if (Accept(op)) return Binary(op, std::move(left), Concat(depth));
    }
    return left;
  }
  Node Concat(int depth) {
    Node left = Sum(depth);
    while (Accept("&"))
      left = Binary("&", std::move(left), Sum(depth));
    return left;
  }
  Node Sum(int depth) {
    Node left = Product(depth);
    for (;;) {
      if (Accept("+")) {
        left = Binary("+", std::move(left), Product(depth));
      } else if (Accept("-")) {
        left = Binary("-", std::move(left), Product(depth));
      } else {
        return left;
      }
    }
  }
  Node Product(int depth) {
    Node left = Power(depth);
    for (;;) {
      std::string op;
      if (Accept("*")) {
        op = "*";
      } else if (Accept("/")) {
        op = "/";
      } else if (Accept("\\")) {
        op = "\\";
      } else if (AcceptWord("MOD")) {
        op = "MOD";
      } else {
        return left;
      }
      left = Binary(op, std::move(left), Power(depth));
    }
  }
  Node Power(int depth) {
    Node left = Unary(depth);
    if (Accept("^")) return Binary("^", std::move(left), Unary(depth));
    return left;
  }
  Node Unary(int depth) {
    if (Accept("-")) {
      Node node;
      node.kind = Node::kUnary;
      node.op = "-";
      node.args.push_back(Primary(depth));
      return node;
    }
    Accept("+");
    return Primary(depth);
  }

  Node Primary(int depth) {
    SkipBlanks();
    if (pos_ >= text_.size()) Fail("a value is missing at the end");
    const char c = text_[pos_];
    Node node;
    if (c == '(') {
      if (depth >= kMaxDepth) Fail("it nests more than 64 deep");
      ++pos_;
      node = Compare(depth + 1);
      if (!Accept(")")) Fail("a ( is not closed");
      return node;
    }
    if (c == '"' || c == '\'') {
      std::string value;
      ++pos_;
      for (;;) {
        if (pos_ >= text_.size()) Fail("a text is not closed");
        if (text_[pos_] == c) {
          if (pos_ + 1 < text_.size() && text_[pos_ + 1] == c) {
            value += c;
            pos_ += 2;
            continue;
          }
          ++pos_;
          break;
        }
        value += text_[pos_++];
      }
      node.literal = Variant(std::move(value));
      return node;
    }
    if (c == '#') {
      const size_t close = text_.find('#', pos_ + 1);
      if (close == std::string_view::npos) Fail("a # has no closing #");
      auto date = ParseDate(text_.substr(pos_ + 1, close - pos_ - 1));
      if (!date) Fail(std::string(text_.substr(pos_, close - pos_ + 1)) + " is not a date");
      pos_ = close + 1;
      node.literal = Variant(*date);
      return node;
    }
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '.') {
      char* end = nullptr;
      const std::string digits(text_.substr(pos_));
      const double d = std::strtod(digits.c_str(), &end);
      if (end == digits.c_str()) Fail("a number is expected");
      pos_ += static_cast<size_t>(end - digits.c_str());
      node.literal = Number(d);
      return node;
    }
    std::string name;
    if (c == '[') {
      const size_t close = text_.find(']', pos_ + 1);
      if (close == std::string_view::npos) Fail("a [name] has no closing ]");
      name = std::string(text_.substr(pos_ + 1, close - pos_ - 1));
      pos_ = close + 1;
    } else {
      const size_t start = pos_;
      while (pos_ < text_.size() &&
             (std::isalnum(static_cast<unsigned char>(text_[pos_])) || text_[pos_] == '_' ||
              text_[pos_] == '$' || (static_cast<unsigned char>(text_[pos_]) & 0x80) != 0))
        ++pos_;
      if (pos_ == start) Fail("unexpected \"" + std::string(1, c) + "\"");
      name = std::string(text_.substr(start, pos_ - start));
      SkipBlanks();
      if (pos_ < text_.size() && text_[pos_] == '(') {
        if (depth >= kMaxDepth) Fail("it nests more than 64 deep");
        ++pos_;
        node.kind = Node::kCall;
        node.op = UpperCase(name);
        if (!node.op.empty() && node.op.back() == '$') node.op.pop_back();  // UCase$ is UCase
        if (!Accept(")")) {
          do {
            node.args.push_back(Compare(depth + 1));
          } while (Accept(","));
          if (!Accept(")")) Fail("a ( is not closed after " + name);
        }
        CheckCall(node, name);
        return node;
      }
      if (EqualsNoCase(name, "NULL")) {
        node.literal = Variant::Null();
        return node;
      }
      if (EqualsNoCase(name, "TRUE") || EqualsNoCase(name, "FALSE")) {
        node.literal = Variant(EqualsNoCase(name, "TRUE"));
        return node;
      }
    }
    node.kind = Node::kField;
    node.field = resolve_(name);
    if (node.field < 0) Fail("there is no field \"" + name + "\"");
    return node;
  }

  void CheckCall(const Node& node, const std::string& name) const {
    struct Arity {
      const char* name;
      size_t least, most;
    };
    static const Arity kFunctions[] = {
        {"LEN", 1, 1},   {"UCASE", 1, 1}, {"LCASE", 1, 1},  {"TRIM", 1, 1},  {"LTRIM", 1, 1},
        {"RTRIM", 1, 1}, {"LEFT", 2, 2},  {"RIGHT", 2, 2},  {"MID", 2, 3},   {"INSTR", 2, 2},
        {"ABS", 1, 1},   {"INT", 1, 1},   {"FIX", 1, 1},    {"ROUND", 1, 2}, {"SGN", 1, 1},
        {"SQR", 1, 1},   {"IIF", 3, 3},   {"ISNULL", 1, 1}, {"CSTR", 1, 1},  {"CLNG", 1, 1},
        {"CDBL", 1, 1},  {"CDATE", 1, 1}, {"YEAR", 1, 1},   {"MONTH", 1, 1}, {"DAY", 1, 1},
        {"NOW", 0, 0},   {"DATE", 0, 0},
    };
    for (const Arity& f : kFunctions) {
      if (node.op != f.name) continue;
      if (node.args.size() < f.least || node.args.size() > f.most) {
        Fail(name + " takes " + std::to_string(f.least) +
             (f.most != f.least ? " to " + std::to_string(f.most) : std::string()) + " arguments");
      }
      return;
    }
    Fail("there is no function " + name);
  }

  std::string_view text_;
  const std::function<int32_t(std::string_view)>& resolve_;
  size_t pos_ = 0;
  int nodes_ = 0;
};

[[noreturn]] void DivisionByZero() {
  throw Error(11, "Division by zero", "Shape");
}

Variant Eval(const Node& node, const Variant* row);

Variant Call(const Node& node, const Variant* row) {
  const std::string& f = node.op;
  if (f == "IIF") {
    const Variant condition = Eval(node.args[0], row);
    return Eval(node.args[!IsNothing(condition) && CBool(condition) ? 1 : 2], row);
  }
  if (f == "NOW") return Variant(Now());
  if (f == "DATE") return Variant(Today());
  std::vector<Variant> a;
  for (const Node& arg : node.args)
    a.push_back(Eval(arg, row));
  if (f == "ISNULL") return Variant(a[0].IsNull());
  for (const Variant& v : a) {
    if (IsNothing(v)) return Variant::Null();
  }
  if (f == "LEN") return Variant(static_cast<int32_t>(CStr(a[0]).size()));
  if (f == "UCASE") return Variant(UpperCase(CStr(a[0])));
  if (f == "LCASE") return Variant(LowerCase(CStr(a[0])));
  if (f == "TRIM") return Variant(TrimBlanks(CStr(a[0])));
  if (f == "LTRIM" || f == "RTRIM") {
    const std::string s = CStr(a[0]);
    if (f == "LTRIM") {
      const size_t first = s.find_first_not_of(' ');
      return Variant(first == std::string::npos ? std::string() : s.substr(first));
    }
    const size_t last = s.find_last_not_of(' ');
    return Variant(last == std::string::npos ? std::string() : s.substr(0, last + 1));
  }
  if (f == "LEFT" || f == "RIGHT" || f == "MID") {
    const std::string s = CStr(a[0]);
    const int32_t n = CLng(a[1]);
    if (n < 0 || (f == "MID" && n < 1))
      throw Error(kErrInvalidProcedureCall, "Invalid procedure call or argument", "Shape");
    if (f == "LEFT")
      return Variant(s.substr(0, std::min<size_t>(static_cast<size_t>(n), s.size())));
    if (f == "RIGHT") {
      const size_t take = std::min<size_t>(static_cast<size_t>(n), s.size());
      return Variant(s.substr(s.size() - take));
    }
    const size_t start = static_cast<size_t>(n - 1);
    if (start >= s.size()) return Variant(std::string());
    if (a.size() == 2) return Variant(s.substr(start));
    const int32_t length = CLng(a[2]);
    if (length < 0)
      throw Error(kErrInvalidProcedureCall, "Invalid procedure call or argument", "Shape");
    return Variant(s.substr(start, static_cast<size_t>(length)));
  }
  if (f == "INSTR") {
    const size_t at = LowerCase(CStr(a[0])).find(LowerCase(CStr(a[1])));
    return Variant(at == std::string::npos ? 0 : static_cast<int32_t>(at + 1));
  }
  if (f == "ABS") return Number(std::fabs(CDbl(a[0])));
  if (f == "INT") return Number(std::floor(CDbl(a[0])));
  if (f == "FIX") return Number(std::trunc(CDbl(a[0])));
  if (f == "SGN") {
    const double d = CDbl(a[0]);
    return Variant(static_cast<int32_t>((d > 0) - (d < 0)));
  }
  if (f == "SQR") {
    const double d = CDbl(a[0]);
    if (d < 0) throw Error(kErrInvalidProcedureCall, "Invalid procedure call or argument", "Shape");
    return Number(std::sqrt(d));
  }
  if (f == "ROUND") {
    const int32_t places = a.size() > 1 ? CLng(a[1]) : 0;
    const double scale = std::pow(10.0, places);
    return Number(RoundHalfEven(CDbl(a[0]) * scale) / scale);
  }
  if (f == "CSTR") return Variant(CStr(a[0]));
  if (f == "CLNG") return Variant(CLng(a[0]));
  if (f == "CDBL") return Variant(CDbl(a[0]));
  if (f == "CDATE") return Variant(CDate(a[0]));
  if (f == "YEAR") return Variant(static_cast<int32_t>(Year(CDate(a[0]))));
  if (f == "MONTH") return Variant(static_cast<int32_t>(Month(CDate(a[0]))));
  return Variant(static_cast<int32_t>(Day(CDate(a[0]))));  // DAY: the names were checked
}

Variant Eval(const Node& node, const Variant* row) {
  switch (node.kind) {
    case Node::kLiteral:
      return node.literal;
    case Node::kField:
      return row[node.field];
    case Node::kCall:
      return Call(node, row);
    case Node::kUnary: {
      const Variant v = Eval(node.args[0], row);
      return IsNothing(v) ? Variant::Null() : Number(-CDbl(v));
    }
    case Node::kBinary:
    default:
      break;
  }
  const Variant a = Eval(node.args[0], row);
  const Variant b = Eval(node.args[1], row);
  const std::string& op = node.op;
  if (op == "&") return Variant(TextOf(a) + TextOf(b));
  if (IsNothing(a) || IsNothing(b)) return Variant::Null();
  if (op == "=" || op == "<>" || op == "<" || op == ">" || op == "<=" || op == ">=") {
    const int order = CompareValues(a, b);
    return Variant(op == "="    ? order == 0
                   : op == "<>" ? order != 0
                   : op == "<"  ? order < 0
                   : op == ">"  ? order > 0
                   : op == "<=" ? order <= 0
                                : order >= 0);
  }
  if (op == "+" && a.Type() == vbString && b.Type() == vbString) {
    return Variant(CStr(a) + CStr(b));
  }
  const double x = CDbl(a);
  const double y = CDbl(b);
  if (op == "+") return Number(x + y);
  if (op == "-") return Number(x - y);
  if (op == "*") return Number(x * y);
  if (op == "^") return Number(std::pow(x, y));
  if (op == "/") {
    if (y == 0) DivisionByZero();
    return Variant(x / y);
  }
  const double rx = RoundHalfEven(x);
  const double ry = RoundHalfEven(y);
  if (ry == 0) DivisionByZero();
  if (op == "\\") return Number(std::trunc(rx / ry));
  return Number(std::fmod(rx, ry));  // MOD
}

}  // namespace

CalcExpression CalcExpression::Parse(std::string_view text,
                                     const std::function<int32_t(std::string_view)>& resolve) {
  CalcExpression expression;
  expression.root_ = std::make_shared<const Node>(Parser(text, resolve).Run());
  return expression;
}

Variant CalcExpression::Evaluate(const Variant* row) const {
  return Eval(*root_, row);
}

}  // namespace kelvary::shape
