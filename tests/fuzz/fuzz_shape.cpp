// SHAPE statements: read by the parser, then opened on a small database of
// parents and visits and walked through every level. The database is
// opened read-only; statements that could reach beyond it (ATTACH, VACUUM
// INTO, PRAGMA, temporary tables) are not tried.
#include <cctype>
#include <chrono>
#include <filesystem>
#include <memory>

#include "FuzzSupport.h"
#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"
#include "kelvary/platform/internal/shape/ShapeParser.h"

using namespace kelvary;
using kelvary::fuzz::Refused;

namespace {

// The database file, made once and removed when the run ends.
const std::string& DatabaseFile() {
  struct File {
    std::string path;
    ~File() {
      std::error_code ignored;
      for (const char* suffix : {"", "-wal", "-shm"})
        std::filesystem::remove(path + suffix, ignored);
    }
  };
  static const File file{[] {
    const auto path =
        std::filesystem::temp_directory_path() /
        ("kelvary-fuzz-shape-" +
         std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()) + ".db");
    Connection c;
    c.Open("Provider=SQLite;Data Source=" + path.string() + ";Mode=ReadWriteCreate");
    ExecuteScript(c, R"sql(
      CREATE TABLE p (ID INTEGER PRIMARY KEY, Name TEXT, Born DATE);
      CREATE TABLE v (ID INTEGER PRIMARY KEY, PID INTEGER, Seen DATE, Fee CURRENCY);
      CREATE TABLE n (ID INTEGER PRIMARY KEY, VID INTEGER, Body TEXT);
      INSERT INTO p VALUES (1, 'Smith', '1970-01-02'), (2, 'Jones', NULL), (3, 'O''Brien', '2001-12-31');
      INSERT INTO v VALUES (10, 1, '2024-03-05', 12.5), (11, 1, '2024-03-06', NULL),
        (12, 3, '2024-04-01', 0), (13, NULL, NULL, 1);
      INSERT INTO n VALUES (100, 10, 'first'), (101, 10, 'second'), (102, 12, NULL);
    )sql");
    c.Close();
    return path.string();
  }()};
  return file.path;
}

bool ReachesBeyondTheDatabase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const char* word : {"attach", "vacuum", "pragma", "temp"})
    if (lower.find(word) != std::string::npos) return true;
  return false;
}

void Walk(const std::shared_ptr<Recordset>& rs, int depth) {
  if (!rs || depth > 8) return;
  for (int rows = 0; !rs->Eof() && rows < 50; ++rows, rs->MoveNext()) {
    for (int32_t f = 0; f < rs->FieldCount(); ++f) {
      const Variant value = rs->Fields(f).Value();
      if (auto child = value.ObjectAs<Recordset>()) Walk(child, depth + 1);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > fuzz::kMaxInput) return 0;
  const std::string text(fuzz::AsText(data, size));
  if (ReachesBeyondTheDatabase(text)) return 0;
  Refused([&] { shape::ParseShape(text); });
  static const std::shared_ptr<Connection> connection = [] {
    auto c = std::make_shared<Connection>();
    c->Open("Provider=SQLite;Data Source=" + DatabaseFile() + ";Mode=ReadOnly");
    return c;
  }();
  auto rs = std::make_shared<Recordset>();
  if (Refused([&] { rs->Open(text, connection, adOpenStatic, adLockReadOnly); })) return 0;
  if (rs->State() == adStateOpen) Refused([&] { Walk(rs, 0); });
  return 0;
}
