#include "QueryCase.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kelvary::testing {

namespace {

std::string Trim(const std::string& s) {
  const size_t first = s.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  const size_t last = s.find_last_not_of(" \t\r");
  return s.substr(first, last - first + 1);
}

// A quoted line: "text" with "" standing for one quote. The quotes keep
// leading and trailing blanks visible.
std::string Unquote(const std::string& line, const std::string& where) {
  const std::string t = Trim(line);
  if (t.size() < 2 || t.front() != '"' || t.back() != '"') {
    throw std::runtime_error(where + ": expected a quoted line");
  }
  std::string out;
  for (size_t i = 1; i + 1 < t.size(); ++i) {
    if (t[i] == '"' && i + 2 < t.size() && t[i + 1] == '"') ++i;
    out += t[i];
  }
  return out;
}

std::vector<std::string> SplitCells(const std::string& line) {
  std::vector<std::string> cells;
  std::string cell;
  std::istringstream in(line);
  while (std::getline(in, cell, '|'))
    cells.push_back(Trim(cell));
  if (!line.empty() && line.back() == '|') cells.push_back("");
  return cells;
}

}  // namespace

QueryCase ReadQueryCase(const std::string& path, StdDBTypes dialect) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot read " + path);
  QueryCase c;
  c.name = std::filesystem::path(path).stem().string();
  std::string section;
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    const std::string where = path + ":" + std::to_string(number);
    const std::string t = Trim(line);
    if (!t.empty() && t.front() == '[' && t.back() == ']') {
      section = t.substr(1, t.size() - 2);
      const size_t blank = section.find(' ');
      if (blank != std::string::npos) {
        if (section.substr(blank + 1) != "oracle")
          throw std::runtime_error(where + ": no such variant");
        section.resize(blank);
        if (dialect != sdbOracle) {
          section = "other dialect";
          continue;
        }
        // The variant replaces what its section gave.
        if (section == "host") c.host.clear();
        if (section == "statement") c.statement.clear();
        if (section == "conditions") c.conditions.clear();
      }
      if (section == "statement") c.has_statement = true;
      if (section == "conditions") c.has_conditions = true;
      if (section == "rows") c.has_rows = true;
      continue;
    }
    if (section == "other dialect") continue;
    if (section == "definition") {
      c.definition += line + "\n";
      continue;
    }
    if (t.empty()) continue;
    if (t.front() == '#') {
      if (t.rfind("# purpose:", 0) == 0) c.purpose = Trim(t.substr(10));
      continue;
    }
    if (section == "host") {
      std::vector<std::string> words;
      std::istringstream ws(t);
      std::string word;
      ws >> word;
      words.push_back(word);
      // Directives that take a clause keep the rest of the line whole.
      if (word == "where" || word == "having" || word == "sort") {
        std::string level;
        ws >> level;
        words.push_back(level);
        std::string rest;
        std::getline(ws, rest);
        words.push_back(Unquote(rest, where));
      } else {
        while (ws >> word)
          words.push_back(word);
      }
      c.host.push_back(std::move(words));
    } else if (section == "statement") {
      c.statement += Unquote(t, where);
    } else if (section == "conditions") {
      // A line starting with + continues the text before it.
      if (t.front() == '+' && !c.conditions.empty()) {
        c.conditions.back() += Unquote(t.substr(1), where);
      } else {
        c.conditions.push_back(Unquote(t, where));
      }
    } else if (section == "messages") {
      c.messages.push_back(Unquote(t, where));
    } else if (section == "rows") {
      if (c.columns.empty()) {
        c.columns = SplitCells(t);
      } else {
        c.rows.push_back(SplitCells(t));
      }
    } else {
      throw std::runtime_error(where + ": text outside a section");
    }
  }
  return c;
}

std::vector<std::string> QueryCaseFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace kelvary::testing
