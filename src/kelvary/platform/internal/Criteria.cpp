#include "kelvary/platform/internal/Criteria.h"

#include <cctype>
#include <cstdlib>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::internal {
namespace {

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

bool IsWordChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$' || c == '.' ||
         (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool IsWildcard(char c) {
  return c == '*' || c == '%';
}

bool ContainsNoCase(std::string_view text, std::string_view part) {
  if (part.empty()) return true;
  for (size_t i = 0; i + part.size() <= text.size(); ++i) {
    if (EqualsNoCase(text.substr(i, part.size()), part)) return true;
  }
  return false;
}

bool LikeMatchesShape(const LikeShape& shape, std::string_view text) {
  switch (shape.kind) {
    case LikeShape::kPrefix:
      return StartsWithNoCase(text, shape.text);
    case LikeShape::kContains:
      return ContainsNoCase(text, shape.text);
    case LikeShape::kWhole:
    default:
      return EqualsNoCase(text, shape.text);
  }
}

// The criteria as an error shows them: a very long text is cut, so that a
// generated filter of thousands of terms does not fill the message.
std::string Shown(std::string_view text) {
  constexpr size_t kShown = 200;
  if (text.size() <= kShown) return std::string(text);
  return std::string(text.substr(0, kShown)) + "...";
}

}  // namespace

std::optional<LikeShape> ReadLikePattern(std::string_view pattern) {
  LikeShape shape;
  if (!pattern.empty() && IsWildcard(pattern.back())) {
    pattern.remove_suffix(1);
    shape.kind = LikeShape::kPrefix;
    if (!pattern.empty() && IsWildcard(pattern.front())) {
      pattern.remove_prefix(1);
      shape.kind = LikeShape::kContains;
    }
  }
  for (char c : pattern) {
    if (IsWildcard(c)) return std::nullopt;
  }
  shape.text = pattern;
  return shape;
}

// CriteriaParser: a reader over the criteria text. Lists (OR, AND) are read
// in loops; only parentheses recurse, and only kMaxNesting deep.
class CriteriaParser {
 public:
  using Comparison = Criteria::Comparison;
  using Alternatives = std::vector<std::vector<Comparison>>;

  CriteriaParser(std::string_view text, const Criteria::ResolveColumn& resolve, Criteria& out)
      : text_(text), resolve_(resolve), out_(out) {}

  void Run() {
    Next();
    if (token_.kind == Kind::kEnd) Fail("it is empty");
    Alternatives alternatives = ParseOr(0);
    if (token_.kind != Kind::kEnd) Fail("unexpected \"" + std::string(token_.text) + "\"");
    size_t total = 0;
    for (const auto& alternative : alternatives)
      total += alternative.size();
    out_.comparisons_.reserve(total);
    out_.ends_.reserve(alternatives.size());
    for (auto& alternative : alternatives) {
      for (Comparison& c : alternative)
        out_.comparisons_.push_back(std::move(c));
      out_.ends_.push_back(static_cast<uint32_t>(out_.comparisons_.size()));
    }
  }

 private:
  enum class Kind { kEnd, kWord, kName, kText, kNumber, kDate, kOperator, kOpen, kClose };
  struct Token {
    Kind kind = Kind::kEnd;
    std::string_view text;  // as written (the word, the operator)
    Variant value;          // text, number or date literals
    size_t at = 0;
  };

  [[noreturn]] void Fail(const std::string& why) const {
    throw InvalidArgumentError("Cannot use the criteria \"" + Shown(text_) + "\": " + why + ".",
                               "Recordset");
  }
  [[noreturn]] void FailUnknown(std::string_view name) const {
    throw ItemNotFoundError("Cannot use the criteria \"" + Shown(text_) +
                                "\": there is no field \"" + std::string(name) + "\".",
                            "Recordset");
  }
  void SkipBlanks() {
    while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
  }

  void Next() {
    SkipBlanks();
    token_ = Token();
    token_.at = pos_;
    if (pos_ >= text_.size()) return;
    const char c = text_[pos_];
    if (c == '(' || c == ')') {
      token_.kind = c == '(' ? Kind::kOpen : Kind::kClose;
      token_.text = text_.substr(pos_++, 1);
      return;
    }
    if (c == '=' || c == '<' || c == '>') {
      size_t len = 1;
      if (pos_ + 1 < text_.size()) {
        const char d = text_[pos_ + 1];
        if ((c == '<' && (d == '>' || d == '=')) || (c == '>' && d == '=')) len = 2;
      }
      token_.kind = Kind::kOperator;
      token_.text = text_.substr(pos_, len);
      pos_ += len;
      return;
    }
    if (c == '\'') return ReadText();
    if (c == '#') return ReadDate();
    if (c == '[') return ReadBracketedName();
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '$' || c == '-' || c == '+' ||
        (c == '.' && pos_ + 1 < text_.size() &&
         std::isdigit(static_cast<unsigned char>(text_[pos_ + 1])))) {
      if (c != '$' ||
          (pos_ + 1 < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_ + 1])))) {
        return ReadNumber();
      }
    }
    if (IsWordChar(c)) {
      const size_t start = pos_;
      while (pos_ < text_.size() && IsWordChar(text_[pos_]))
        ++pos_;
      if (text_[pos_ - 1] == '.' && pos_ < text_.size() && text_[pos_] == '[') {
        return ReadBracketedName();  // Table.[Column]: the fields carry the column's name
      }
      token_.kind = Kind::kWord;
      token_.text = text_.substr(start, pos_ - start);
      return;
    }
    Fail("unexpected \"" + std::string(1, c) + "\"");
  }

  void ReadText() {
    std::string value;
    ++pos_;
    for (;;) {
      if (pos_ >= text_.size()) Fail("a text has no closing apostrophe");
      if (text_[pos_] == '\'') {
        if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '\'') {
          value += '\'';
          pos_ += 2;
          continue;
        }
        ++pos_;
        break;
      }
      value += text_[pos_++];
    }
    token_.kind = Kind::kText;
    token_.text = text_.substr(token_.at, pos_ - token_.at);
    token_.value = Variant(std::move(value));
  }

  // ReadDate: #...# is a date when it reads as one, and a text otherwise.
  void ReadDate() {
    const size_t close = text_.find('#', pos_ + 1);
    if (close == std::string_view::npos) Fail("a # has no closing #");
    const std::string_view inside = text_.substr(pos_ + 1, close - pos_ - 1);
    pos_ = close + 1;
    token_.text = text_.substr(token_.at, pos_ - token_.at);
    if (auto date = ParseDate(inside)) {
      token_.kind = Kind::kDate;
      token_.value = Variant(*date);
    } else {
      token_.kind = Kind::kText;
      token_.value = Variant(std::string(inside));
    }
  }

  void ReadBracketedName() {
    const size_t close = text_.find(']', pos_ + 1);
    if (close == std::string_view::npos) Fail("a [name] has no closing ]");
    token_.kind = Kind::kName;
    token_.text = text_.substr(pos_ + 1, close - pos_ - 1);
    pos_ = close + 1;
  }

  void ReadNumber() {
    const size_t start = pos_;
    bool negative = false;
    if (text_[pos_] == '-' || text_[pos_] == '+') negative = text_[pos_++] == '-';
    if (pos_ < text_.size() && text_[pos_] == '$') ++pos_;
    const size_t digits = pos_;
    bool integral = true;
    while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
    if (pos_ < text_.size() && text_[pos_] == '.') {
      integral = false;
      ++pos_;
      while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
        ++pos_;
    }
    if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      size_t e = pos_ + 1;
      if (e < text_.size() && (text_[e] == '-' || text_[e] == '+')) ++e;
      if (e < text_.size() && std::isdigit(static_cast<unsigned char>(text_[e]))) {
        integral = false;
        pos_ = e;
        while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
          ++pos_;
        }
      }
    }
    const std::string number(text_.substr(digits, pos_ - digits));
    if (number.empty() || number == ".")
      Fail("a number is expected at \"" + std::string(text_.substr(start)) + "\"");
    if (pos_ < text_.size() && IsWordChar(text_[pos_]) && text_[pos_] != '.') {
      Fail("unexpected \"" + std::string(text_.substr(start)) + "\"");
    }
    token_.kind = Kind::kNumber;
    token_.text = text_.substr(start, pos_ - start);
    char* end = nullptr;
    if (integral && number.size() < 19) {
      const long long v = std::strtoll(number.c_str(), &end, 10);
      const long long signed_value = negative ? -v : v;
      if (signed_value >= INT32_MIN && signed_value <= INT32_MAX) {
        token_.value = Variant(static_cast<int32_t>(signed_value));
      } else {
        token_.value = Variant(static_cast<int64_t>(signed_value));
      }
    } else {
      const double v = std::strtod(number.c_str(), &end);
      token_.value = Variant(negative ? -v : v);
    }
  }

  bool AtWord(std::string_view word) const {
    return token_.kind == Kind::kWord && EqualsNoCase(token_.text, word);
  }

  Alternatives ParseOr(int depth) {
    Alternatives alternatives = ParseAnd(depth);
    while (AtWord("OR")) {
      Next();
      Alternatives more = ParseAnd(depth);
      for (auto& alternative : more)
        alternatives.push_back(std::move(alternative));
    }
    return alternatives;
  }

  Alternatives ParseAnd(int depth) {
    Alternatives first = ParseFactor(depth);
    if (!AtWord("AND")) return first;
    if (first.size() > 1) FailOrJoinedByAnd();
    std::vector<Comparison> all = std::move(first.front());
    while (AtWord("AND")) {
      Next();
      Alternatives factor = ParseFactor(depth);
      if (factor.size() > 1) FailOrJoinedByAnd();
      for (Comparison& c : factor.front())
        all.push_back(std::move(c));
    }
    Alternatives result;
    result.push_back(std::move(all));
    return result;
  }

  [[noreturn]] void FailOrJoinedByAnd() const {
    Fail(
        "a group joined by OR cannot be joined to other terms by AND; write "
        "\"(A AND C) OR (B AND C)\" for \"(A OR B) AND C\"");
  }

  Alternatives ParseFactor(int depth) {
    if (token_.kind == Kind::kOpen) {
      if (depth >= Criteria::kMaxNesting) {
        Fail("parentheses are nested more than " + std::to_string(Criteria::kMaxNesting) + " deep");
      }
      Next();
      Alternatives inner = ParseOr(depth + 1);
      if (token_.kind != Kind::kClose) Fail("a \"(\" is not closed");
      Next();
      return inner;
    }
    Alternatives single(1);
    single.front().push_back(ParseComparison());
    return single;
  }

  Comparison ParseComparison() {
    bool left_null = false;
    Comparison node;
    node.left = ParseOperand(left_null);
    if (AtWord("IS")) {
      Next();
      bool negated = false;
      if (AtWord("NOT")) {
        negated = true;
        Next();
      }
      if (!AtWord("NULL")) Fail("IS must be followed by NULL or NOT NULL");
      Next();
      node.op = negated ? Criteria::Op::kIsNotNull : Criteria::Op::kIsNull;
      return node;
    }
    if (AtWord("LIKE")) {
      node.op = Criteria::Op::kLike;
    } else if (token_.kind == Kind::kOperator) {
      const std::string_view op = token_.text;
      node.op = op == "="    ? Criteria::Op::kEq
                : op == "<>" ? Criteria::Op::kNe
                : op == "<"  ? Criteria::Op::kLt
                : op == ">"  ? Criteria::Op::kGt
                : op == "<=" ? Criteria::Op::kLe
                             : Criteria::Op::kGe;
    } else if (token_.kind == Kind::kEnd) {
      Fail("a comparison operator is missing at the end");
    } else {
      Fail("a comparison operator is expected before \"" + std::string(token_.text) + "\"");
    }
    Next();
    bool right_null = false;
    node.right = ParseOperand(right_null);
    if (left_null || right_null) {
      // "= Null" and "<> Null" are the tests for Null; other operators with
      // Null never match, which an always-false comparison expresses.
      if (left_null && right_null) Fail("Null is compared with Null");
      if (node.op == Criteria::Op::kEq || node.op == Criteria::Op::kNe) {
        if (left_null) std::swap(node.left, node.right);
        node.op = node.op == Criteria::Op::kEq ? Criteria::Op::kIsNull : Criteria::Op::kIsNotNull;
      }
    }
    if (node.op == Criteria::Op::kLike && node.right.column < 0 && !right_null) {
      // The pattern is checked once here; a pattern in a column is read per row.
      if (!node.right.literal.IsString()) node.right.literal = Variant(CStr(node.right.literal));
      if (!ReadLikePattern(node.right.literal.Text())) {
        Fail("LIKE takes a * or % only at the end of the pattern or at both ends");
      }
    }
    return node;
  }

  Criteria::Operand ParseOperand(bool& is_null) {
    Criteria::Operand operand;
    switch (token_.kind) {
      case Kind::kText:
      case Kind::kNumber:
      case Kind::kDate:
        operand.literal = token_.value;
        break;
      case Kind::kName:
        operand.column = Resolve(token_.text);
        break;
      case Kind::kWord:
        if (EqualsNoCase(token_.text, "NULL")) {
          is_null = true;
          operand.literal = Variant::Null();
        } else if (EqualsNoCase(token_.text, "TRUE") || EqualsNoCase(token_.text, "FALSE")) {
          // A column of that name wins over the constant.
          const int32_t column = resolve_(token_.text);
          if (column >= 0) {
            operand.column = column;
          } else {
            operand.literal = Variant(EqualsNoCase(token_.text, "TRUE"));
          }
        } else if (EqualsNoCase(token_.text, "AND") || EqualsNoCase(token_.text, "OR") ||
                   EqualsNoCase(token_.text, "LIKE") || EqualsNoCase(token_.text, "IS")) {
          Fail("a value is expected before \"" + std::string(token_.text) + "\"");
        } else {
          operand.column = Resolve(token_.text);
        }
        break;
      case Kind::kEnd:
        Fail("a value is missing at the end");
      default:
        Fail("a value is expected at \"" + std::string(token_.text) + "\"");
    }
    Next();
    return operand;
  }

  int32_t Resolve(std::string_view name) {
    int32_t column = resolve_(name);
    if (column < 0) {
      // Table.Column: the recordset's columns carry the column's own name.
      const size_t dot = name.rfind('.');
      if (dot != std::string_view::npos) column = resolve_(name.substr(dot + 1));
    }
    if (column < 0) FailUnknown(name);
    return column;
  }

  std::string_view text_;
  const Criteria::ResolveColumn& resolve_;
  Criteria& out_;
  size_t pos_ = 0;
  Token token_;
};

Criteria Criteria::Parse(std::string_view text, const ResolveColumn& resolve) {
  Criteria criteria;
  criteria.text_ = std::string(text);
  CriteriaParser parser(criteria.text_, resolve, criteria);
  parser.Run();
  return criteria;
}

bool Criteria::Matches(const Variant* row) const {
  uint32_t begin = 0;
  for (const uint32_t end : ends_) {
    uint32_t i = begin;
    while (i < end && Compare(comparisons_[i], row))
      ++i;
    if (i == end) return true;
    begin = end;
  }
  return false;
}

std::optional<Criteria::Equality> Criteria::ColumnEquals() const {
  if (comparisons_.size() != 1) return std::nullopt;
  const Comparison& node = comparisons_.front();
  if (node.op != Op::kEq) return std::nullopt;
  if (node.left.column >= 0 && node.right.column < 0) {
    return Equality{node.left.column, &node.right.literal};
  }
  if (node.right.column >= 0 && node.left.column < 0) {
    return Equality{node.right.column, &node.left.literal};
  }
  return std::nullopt;
}

bool Criteria::Compare(const Comparison& node, const Variant* row) {
  const Variant& a = node.left.column >= 0 ? row[node.left.column] : node.left.literal;
  switch (node.op) {
    case Op::kIsNull:
      return IsNothing(a);
    case Op::kIsNotNull:
      return !IsNothing(a);
    default:
      break;
  }
  const Variant& b = node.right.column >= 0 ? row[node.right.column] : node.right.literal;
  if (IsNothing(a) || IsNothing(b)) return false;
  if (node.op == Op::kLike) {
    const std::string pattern_text = b.IsString() ? std::string() : CStr(b);
    const std::optional<LikeShape> shape =
        ReadLikePattern(b.IsString() ? b.Text() : std::string_view(pattern_text));
    if (!shape) return false;
    const std::string text = a.IsString() ? std::string() : CStr(a);
    return LikeMatchesShape(*shape, a.IsString() ? a.Text() : std::string_view(text));
  }
  const int order = CompareValues(a, b);
  switch (node.op) {
    case Op::kEq:
      return order == 0;
    case Op::kNe:
      return order != 0;
    case Op::kLt:
      return order < 0;
    case Op::kGt:
      return order > 0;
    case Op::kLe:
      return order <= 0;
    case Op::kGe:
      return order >= 0;
    default:
      return false;
  }
}

}  // namespace kelvary::internal
