#include "kelvary/platform/internal/shape/ShapeParser.h"

#include <array>
#include <cctype>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"

namespace kelvary::shape {
namespace {

constexpr std::array<std::string_view, 8> kKeywords = {"SHAPE", "APPEND",  "AS", "RELATE",
                                                       "TO",    "COMPUTE", "BY", "NEW"};

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
    ShapeLevel level = ShapeBody();
    SkipBlanks();
    if (pos_ < text_.size()) {
      if (EqualsNoCase(PeekWord(), "COMPUTE")) Unsupported("COMPUTE");
      Fail(pos_, "APPEND or the end of the command");
    }
    return level;
  }

 private:
  // ShapeBody: what follows the word SHAPE.
  ShapeLevel ShapeBody() {
    ShapeLevel level = Table();
    Alias(level.alias);
    SkipBlanks();
    if (AcceptKeyword("APPEND")) {
      do {
        level.children.push_back(Child());
      } while (Accept(',') || AcceptKeyword("APPEND"));
    }
    return level;
  }

  // Table: {provider command} or (SHAPE ...).
  ShapeLevel Table() {
    SkipBlanks();
    if (Peek() == '{') {
      ShapeLevel level;
      level.command = Command();
      return level;
    }
    if (Peek() == '(') {
      ++pos_;
      ExpectKeyword("SHAPE");
      ShapeLevel level = ShapeBody();
      Expect(')');
      return level;
    }
    if (EqualsNoCase(PeekWord(), "NEW")) Unsupported("NEW");
    Fail(pos_, "{ or (");
  }

  ShapeChild Child() {
    Expect('(');
    ShapeChild child;
    SkipBlanks();
    if (AcceptKeyword("SHAPE")) {
      child.level = ShapeBody();
    } else {
      child.level = Table();
      Alias(child.level.alias);
    }
    SkipBlanks();
    if (!AcceptKeyword("RELATE")) Fail(pos_, "RELATE");
    do {
      RelatePair pair;
      pair.parent_column = Name("a column name of the parent");
      SkipBlanks();
      if (!AcceptKeyword("TO")) Fail(pos_, "TO");
      pair.child_column = Name("a column name of the child");
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
  [[noreturn]] void Unsupported(const char* keyword) const {
    throw Error(kErrProviderFailure,
                "SHAPE command at position " + std::to_string(pos_ + 1) + ": " + keyword +
                    " is not supported; only APPEND with RELATE is",
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
