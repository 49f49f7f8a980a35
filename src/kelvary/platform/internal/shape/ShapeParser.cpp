#include "kelvary/platform/internal/shape/ShapeParser.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::shape {
namespace {

constexpr std::array<std::string_view, 10> kKeywords = {
    "SHAPE", "APPEND", "AS", "RELATE", "TO", "COMPUTE", "BY", "NEW", "PARAMETER", "TABLE"};

constexpr std::array<std::string_view, 7> kAggregates = {"SUM",   "AVG",   "MIN", "MAX",
                                                         "COUNT", "STDEV", "ANY"};

bool IsKeyword(std::string_view word) {
  for (std::string_view k : kKeywords) {
    if (EqualsNoCase(word, k)) return true;
  }
  return false;
}

// A plain name runs to a blank or to one of the marks the grammar uses.
bool IsNameChar(char c) {
  switch (c) {
    case '(':
    case ')':
    case '{':
    case '}':
    case ',':
    case '\'':
    case '"':
    case '[':
    case ']':
      return false;
    default:
      return !std::isspace(static_cast<unsigned char>(c));
  }
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  ShapeLevel Statement() {
    ExpectKeyword("SHAPE");
    ShapeLevel level = ShapeBody(0);
    SkipBlanks();
    if (pos_ < text_.size()) Fail(pos_, "APPEND, COMPUTE or the end of the command");
    return level;
  }

 private:
  // ShapeBody: what follows the word SHAPE.
  ShapeLevel ShapeBody(int depth) {
    if (depth >= kMaxShapeNesting) {
      throw Error(kErrProviderFailure,
                  "SHAPE command at position " + std::to_string(pos_ + 1) +
                      ": levels are nested more than " + std::to_string(kMaxShapeNesting) + " deep",
                  "Shape")
          .WithStatement(std::string(text_));
    }
    ShapeLevel level = Table(depth);
    Alias(level.alias);
    SkipBlanks();
    if (AcceptKeyword("COMPUTE")) return Compute(std::move(level));
    if (AcceptKeyword("APPEND")) {
      do {
        SkipBlanks();
        if (Peek() == '(') {
          level.children.push_back(Child(depth));
        } else {
          level.columns.push_back(Column());
        }
      } while (Accept(',') || AcceptKeyword("APPEND"));
    }
    return level;
  }

  // Compute: the level read so far grouped; "COMPUTE alias" names it.
  ShapeLevel Compute(ShapeLevel grouped) {
    SkipBlanks();
    const size_t at = pos_;
    const std::string name = Name("the alias of the rows to compute");
    if (!EqualsNoCase(name, grouped.alias)) {
      SkipBlanks();
      Fail(at, "the alias of the rows before COMPUTE (" +
                   (grouped.alias.empty() ? std::string("none was given") : grouped.alias) + ")");
    }
    ShapeLevel level;
    level.compute = true;
    ShapeChild child;
    child.level = std::move(grouped);
    Alias(child.chapter_name);
    level.children.push_back(std::move(child));
    while (Accept(','))
      level.columns.push_back(Column());
    SkipBlanks();
    if (AcceptKeyword("BY")) {
      do {
        level.by.push_back(Name("a field to group by"));
      } while (Accept(','));
    }
    return level;
  }

  // Column: an aggregate, CALC(...) or NEW type, with its alias.
  ShapeColumn Column() {
    SkipBlanks();
    const size_t at = pos_;
    ShapeColumn column;
    const std::string word = UpperCase(Word());
    if (word == "NEW") {
      column.kind = ShapeColumn::kNew;
      column.type = Name("a type after NEW");
      if (Accept('(')) {
        SkipBlanks();
        const size_t digits = pos_;
        while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
          ++pos_;
        if (pos_ == digits || pos_ - digits > 9) Fail(digits, "a size");
        column.size = std::stoi(std::string(text_.substr(digits, pos_ - digits)));
        while (Accept(',')) {  // precision and scale: read and not needed
          SkipBlanks();
          while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
            ++pos_;
        }
        Expect(')');
      }
    } else if (word == "CALC") {
      column.kind = ShapeColumn::kCalc;
      Expect('(');
      const size_t open = pos_;
      int parens = 1;
      while (pos_ < text_.size() && parens > 0) {
        const char c = text_[pos_++];
        if (c == '"' || c == '\'') {
          while (pos_ < text_.size() && text_[pos_] != c)
            ++pos_;
          if (pos_ < text_.size()) ++pos_;
        } else if (c == '(') {
          ++parens;
        } else if (c == ')') {
          --parens;
        }
      }
      if (parens > 0) Fail(text_.size(), ") closing CALC");
      column.expression = std::string(TrimSpace(text_.substr(open, pos_ - 1 - open)));
      if (column.expression.empty()) Fail(open, "an expression");
    } else if (std::find(kAggregates.begin(), kAggregates.end(), word) != kAggregates.end()) {
      column.function = word;
      Expect('(');
      column.chapter = Name("a chapter name");
      if (const size_t dot = column.chapter.find('.'); dot != std::string::npos) {
        column.field = column.chapter.substr(dot + 1);
        column.chapter.resize(dot);
      } else if (Peek() == '.') {
        ++pos_;
        column.field = Name("a field name");
      }
      if (column.chapter.empty()) Fail(at, "a chapter name");
      if (column.field.empty() && word != "COUNT") Fail(pos_, ". and a field of the chapter");
      Expect(')');
    } else {
      pos_ = at;
      Fail(at, "( or SUM, AVG, MIN, MAX, COUNT, STDEV, ANY, CALC or NEW");
    }
    Alias(column.name);
    return column;
  }

  // Word: the plain word at the position, taken.
  std::string_view Word() {
    std::string_view word = PeekWord();
    const size_t paren = word.find('(');
    if (paren != std::string_view::npos) word = word.substr(0, paren);
    pos_ += word.size();
    return word;
  }

  // Table: {provider command}, TABLE name or (SHAPE ...).
  ShapeLevel Table(int depth) {
    SkipBlanks();
    if (Peek() == '{') {
      ShapeLevel level;
      level.command = Command();
      return level;
    }
    if (Peek() == '(') {
      ++pos_;
      ExpectKeyword("SHAPE");
      ShapeLevel level = ShapeBody(depth + 1);
      Expect(')');
      return level;
    }
    if (AcceptKeyword("TABLE")) {
      ShapeLevel level;
      level.command = "SELECT * FROM " + SqlName(Name("a table name after TABLE"));
      return level;
    }
    Fail(pos_, "{, ( or TABLE");
  }

  // SqlName: a table name as the provider's SQL writes it.
  static std::string SqlName(const std::string& name) {
    bool plain = !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0]));
    for (char c : name) {
      if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_' && c != '.') plain = false;
    }
    if (plain) return name;
    std::string quoted = "\"";
    for (char c : name) {
      if (c == '"') quoted += '"';
      quoted += c;
    }
    return quoted + "\"";
  }

  ShapeChild Child(int depth) {
    Expect('(');
    ShapeChild child;
    SkipBlanks();
    if (AcceptKeyword("SHAPE")) {
      child.level = ShapeBody(depth + 1);
    } else {
      child.level = Table(depth + 1);
      Alias(child.level.alias);
    }
    SkipBlanks();
    if (!AcceptKeyword("RELATE")) Fail(pos_, "RELATE");
    do {
      RelatePair pair;
      pair.parent_column = Name("a column name of the parent");
      SkipBlanks();
      if (!AcceptKeyword("TO")) Fail(pos_, "TO");
      SkipBlanks();
      if (AcceptKeyword("PARAMETER")) {
        SkipBlanks();
        const size_t digits = pos_;
        while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
          ++pos_;
        if (pos_ == digits || pos_ - digits > 4) Fail(digits, "a parameter number");
        pair.parameter = std::stoi(std::string(text_.substr(digits, pos_ - digits)));
      } else {
        pair.child_column = Name("a column name of the child");
      }
      child.relations.push_back(std::move(pair));
    } while (Accept(','));
    Expect(')');
    Alias(child.chapter_name);
    return child;
  }

  // Alias: [AS] name, when one follows.
  void Alias(std::string& alias) {
    SkipBlanks();
    if (AcceptKeyword("AS")) {
      alias = Name("a name after AS");
      return;
    }
    const char c = Peek();
    if (c == '\'' || c == '"' || c == '[') {
      alias = Quoted();
      return;
    }
    const std::string_view word = PeekWord();
    if (!word.empty() && !IsKeyword(word)) {
      alias = std::string(word);
      pos_ += word.size();
    }
  }

  std::string Name(const char* what) {
    SkipBlanks();
    const char c = Peek();
    if (c == '\'' || c == '"' || c == '[') return Quoted();
    const std::string_view word = PeekWord();
    if (word.empty() || IsKeyword(word)) Fail(pos_, what);
    pos_ += word.size();
    return std::string(word);
  }

  // Quoted: a name in apostrophes, double quotes or brackets; the closing
  // mark doubled stands for itself.
  std::string Quoted() {
    const size_t start = pos_;
    const char close = text_[pos_] == '[' ? ']' : text_[pos_];
    ++pos_;
    std::string name;
    for (;;) {
      if (pos_ >= text_.size()) {
        Fail(pos_, std::string(1, close) + " closing the name that opens at position " +
                       std::to_string(start + 1));
      }
      const char c = text_[pos_++];
      if (c != close) {
        name += c;
      } else if (pos_ < text_.size() && text_[pos_] == close) {
        name += c;
        ++pos_;
      } else {
        break;
      }
    }
    if (name.empty()) Fail(start, "a name");
    return name;
  }

  // Command: the provider command between braces. Braces inside quoted text
  // or brackets belong to the command; nested pairs are kept whole.
  std::string Command() {
    const size_t open = pos_++;
    int depth = 1;
    size_t i = pos_;
    while (i < text_.size()) {
      const char c = text_[i];
      if (c == '\'' || c == '"' || c == '[') {
        const char close = c == '[' ? ']' : c;
        ++i;
        while (i < text_.size() && text_[i] != close)
          ++i;
        if (i < text_.size()) ++i;  // a doubled mark simply reopens the text
        continue;
      }
      if (c == '{') ++depth;
      if (c == '}' && --depth == 0) break;
      ++i;
    }
    if (i >= text_.size()) {
      Fail(text_.size(),
           "} closing the command that opens at position " + std::to_string(open + 1));
    }
    std::string_view command = text_.substr(pos_, i - pos_);
    while (!command.empty() && std::isspace(static_cast<unsigned char>(command.front())))
      command.remove_prefix(1);
    while (!command.empty() && std::isspace(static_cast<unsigned char>(command.back())))
      command.remove_suffix(1);
    if (command.empty()) Fail(pos_, "a provider command");
    pos_ = i + 1;
    return std::string(command);
  }

  void SkipBlanks() {
    while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
  }
  char Peek() const { return pos_ < text_.size() ? text_[pos_] : '\0'; }
  std::string_view PeekWord() const {
    size_t end = pos_;
    while (end < text_.size() && IsNameChar(text_[end]))
      ++end;
    return text_.substr(pos_, end - pos_);
  }
  bool Accept(char c) {
    SkipBlanks();
    if (Peek() != c) return false;
    ++pos_;
    return true;
  }
  void Expect(char c) {
    if (!Accept(c)) Fail(pos_, std::string(1, c));
  }
  bool AcceptKeyword(std::string_view keyword) {
    SkipBlanks();
    const std::string_view word = PeekWord();
    if (!EqualsNoCase(word, keyword)) return false;
    pos_ += word.size();
    return true;
  }
  void ExpectKeyword(std::string_view keyword) {
    if (!AcceptKeyword(keyword)) Fail(pos_, std::string(keyword));
  }

  // What stands at a position, for messages: a word or quoted name whole,
  // a mark alone.
  std::string Found(size_t at) const {
    if (at >= text_.size()) return "the end of the text";
    size_t end = at;
    const char c = text_[at];
    if (c == '\'' || c == '"' || c == '[') {
      const char close = c == '[' ? ']' : c;
      end = text_.find(close, at + 1);
      end = end == std::string_view::npos ? text_.size() : end + 1;
    } else {
      while (end < text_.size() && IsNameChar(text_[end]))
        ++end;
      if (end == at) end = at + 1;
    }
    constexpr size_t kShown = 30;
    std::string shown(text_.substr(at, std::min(end - at, kShown)));
    if (end - at > kShown) shown += "...";
    return "\"" + shown + "\"";
  }

  [[noreturn]] void Fail(size_t at, const std::string& expected) const {
    throw Error(kErrProviderFailure,
                "Syntax error in SHAPE command at position " + std::to_string(at + 1) +
                    ": expected " + expected + ", found " + Found(at),
                "Shape")
        .WithStatement(std::string(text_));
  }
  std::string_view text_;
  size_t pos_ = 0;
};

}  // namespace

ShapeLevel ParseShape(std::string_view text) {
  return Parser(text).Statement();
}

}  // namespace kelvary::shape
