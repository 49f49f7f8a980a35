#include "Session.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <system_error>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/SqlScript.h"

namespace kelvary::cli {

namespace fs = std::filesystem;

const OptionDef kSystemOption{"--system", "FILE|DSN",
                              "the system (configuration) database: a SQLite file or an ODBC "
                              "data-source name"};
const OptionDef kMainOption{"--main", "FILE|DSN", "the main (practice) database"};
const OptionDef kDialectOption{"--dialect", "NAME",
                               "the SQL the service object writes: access (default), oracle "
                               "(PostgreSQL runs it) or sqlserver"};

MessageCatcher::MessageCatcher() : messages_(std::make_shared<std::vector<std::string>>()) {
  auto messages = messages_;
  previous_ = SetMessageHandler(
      [messages](const std::string& text, MsgBoxStyle buttons, const std::string&) {
        messages->push_back(text);
        // As the default channel answers: nothing is deleted unasked.
        return buttons == vbYesNo ? vbNo : vbOK;
      });
}

MessageCatcher::~MessageCatcher() {
  SetMessageHandler(previous_);
}

std::vector<std::string> MessageCatcher::Take() {
  std::vector<std::string> taken;
  taken.swap(*messages_);
  return taken;
}

void MessageCatcher::ThrowIfAny() {
  const auto messages = Take();
  if (messages.empty()) return;
  std::string line;
  for (const auto& message : messages) {
    const std::string one = OneLine(message);
    if (line.find(one) != std::string::npos) continue;  // a message shown twice is told once
    line += (line.empty() ? "" : "; ") + one;
  }
  throw CommandError(line);
}

std::string OneLine(const std::string& text) {
  std::string line;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      while (i + 1 < text.size() && (text[i + 1] == '\r' || text[i + 1] == '\n'))
        ++i;
      if (!line.empty() && i + 1 < text.size()) line += "; ";
    } else {
      line += text[i];
    }
  }
  return line;
}

StdDBTypes ParseDialect(const std::string& text) {
  if (text == "access") return sdbAccess;
  if (text == "oracle") return sdbOracle;
  if (text == "sqlserver") return sdbSQLServer;
  throw UsageError("--dialect is access, oracle or sqlserver, not " + text);
}

const char* DialectName(StdDBTypes dialect) {
  switch (dialect) {
    case sdbOracle:
      return "oracle";
    case sdbSQLServer:
      return "sqlserver";
    default:
      return "access";
  }
}

Sources ReadSources(const Arguments& args) {
  Sources sources;
  sources.system = args.Required("--system");
  sources.main = args.Required("--main");
  if (auto dialect = args.Get("--dialect")) sources.dialect = ParseDialect(*dialect);
  return sources;
}

namespace {

std::shared_ptr<Connection> Open(const std::string& role, const std::string& source,
                                 Access access) {
  auto connection = std::make_shared<Connection>();
  connection->CursorLocation(adUseClient);
  try {
    connection->Open(ConnectionStringFor(source, access));
  } catch (const Error& e) {
    throw CommandError("cannot open the " + role + " database " + source + ": " +
                       OneLine(e.Description()));
  }
  return connection;
}

}  // namespace

std::string ConnectionStringFor(const std::string& source, Access access) {
  if (IsSqliteFileName(source)) {
    return "Provider=SQLite;Data Source=" + QuoteConnectionValue(source) +
           (access == Access::kReadOnly ? ";Mode=ReadOnly" : ";Mode=ReadWrite");
  }
  return "Provider=MSDataShape.1;Persist Security Info=False;Data Source=" +
         QuoteConnectionValue(source) + ";Data Provider=MSDASQL";
}

void Connect(InfoLink& link, const Sources& sources, Access access, bool link_opens_main) {
  for (const auto& [role, source] : {std::pair{"main", sources.main}, {"system", sources.system}}) {
    if (source.empty()) throw UsageError(std::string("no ") + role + " database given");
    std::error_code error;
    if (IsSqliteFileName(source) && !fs::is_regular_file(source, error)) {
      throw CommandError(std::string(role) + " database file not found: " + source);
    }
  }
  link.MainDBType = sources.dialect;
  auto main_xion = Open("main", sources.main, access);
  auto system_xion = Open("system", sources.system, access);
  std::optional<std::string> direct;
  if (link_opens_main) {
    main_xion->Close();
    main_xion.reset();
    direct = ConnectionStringFor(sources.main, access);
  }
  MessageCatcher catcher;
  bool connected = false;
  try {
    connected = link.ConnectDefault(main_xion, system_xion, sources.main, sources.system, direct);
  } catch (const Error& e) {
    throw CommandError("cannot read the configuration of the system database " + sources.system +
                       ": " + OneLine(e.Description()));
  }
  // Loading the metadata reports its failures as messages: a file that is
  // not the practice's system database says so here.
  const auto messages = catcher.Take();
  if (!connected || !messages.empty()) {
    throw CommandError("cannot read the configuration of the system database " + sources.system +
                       (messages.empty() ? "" : ": " + LastLine(messages.front())));
  }
  // The main database must hold the practice's tables: the first one the
  // configuration places there is opened.
  const Variant table = link.GetCorrespondingValue(pdsmaindata, "DataTables", "ValuesTable",
                                                   "TableLocation", pdssystem, "");
  if (!table.IsEmpty() && !table.IsNull() && !TextOf(table).empty()) {
    auto rs = std::make_shared<Recordset>();
    rs->MaxRecords(1);
    link.FillRecordSet(pdsmaindata, rs, "Select * From " + TextOf(table), adOpenForwardOnly,
                       adLockReadOnly);
    link.SafelyCloseRecordSet(rs);
    if (const auto failures = catcher.Take(); !failures.empty()) {
      // Without its tables the main database is no practice's: the service
      // object must not try to stamp a session in it either.
      link.AppDataXion(nullptr);
      throw CommandError("the main database " + sources.main + " does not hold the practice's " +
                         TextOf(table) + " table: " + LastLine(failures.front()));
    }
  }
}

std::string LastLine(const std::string& message) {
  const size_t end = message.find_last_not_of("\r\n");
  if (end == std::string::npos) return message;
  const size_t first = message.find_first_of("\r\n");
  if (first == std::string::npos || first > end) return message.substr(0, end + 1);
  return OneLine(message.substr(message.find_first_not_of("\r\n", first)));
}

namespace {

struct Script {
  const char* name;
  std::string text;
};

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("cannot read " + path.string());
  std::ostringstream text;
  text << in.rdbuf();
  if (!in.good() && !in.eof()) throw CommandError("cannot read " + path.string());
  return text.str();
}

void BuildDatabase(const fs::path& file, const std::vector<Script>& scripts) {
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + QuoteConnectionValue(file.string()) +
                  ";Mode=ReadWriteCreate");
  for (const auto& script : scripts) {
    try {
      ExecuteScript(connection, script.text);
    } catch (const Error& e) {
      throw CommandError(std::string(script.name) + ": " + OneLine(e.Description()));
    }
  }
  connection.Close();
}

// A folder that removes itself (and what is in it) unless kept.
class ScratchFolder {
 public:
  explicit ScratchFolder(const fs::path& beside) {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
      const fs::path candidate =
          beside.parent_path() /
          ("." + beside.filename().string() + ".building-" + std::to_string(random() % 1000000));
      std::error_code error;
      if (fs::create_directory(candidate, error)) {
        path_ = candidate;
        return;
      }
      if (error) {
        throw CommandError("cannot create a folder beside " + beside.string() + ": " +
                           error.message());
      }
    }
    throw CommandError("cannot create a folder beside " + beside.string());
  }
  ~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const fs::path& path() const { return path_; }
  void Release() { path_.clear(); }

 private:
  fs::path path_;
};

}  // namespace

DemoFiles BuildDemoDatabases(const std::string& folder, const std::string& data_dir) {
  const fs::path data(data_dir);
  if (!fs::is_directory(data)) throw CommandError("data folder not found: " + data_dir);
  // Every input is read before anything is written.
  std::vector<Script> system_scripts{{"system_schema.sql", ""}, {"demo_system.sql", ""}};
  std::vector<Script> main_scripts{{"main_schema.sql", ""}, {"demo_main.sql", ""}};
  for (auto* scripts : {&system_scripts, &main_scripts}) {
    for (auto& script : *scripts) {
      script.text = ReadFile(data / script.name);
      if (script.text.find_first_not_of(" \t\r\n") == std::string::npos) {
        throw CommandError((data / script.name).string() + " is empty");
      }
    }
  }

  const fs::path dir = fs::absolute(fs::path(folder)).lexically_normal();
  const fs::path target = dir.has_filename() ? dir : dir.parent_path();
  std::error_code error;
  const bool exists = fs::exists(target, error);
  if (exists && !fs::is_directory(target, error)) {
    throw CommandError(folder + " is not a folder");
  }
  if (!exists && !fs::is_directory(target.parent_path(), error)) {
    throw CommandError("folder not found: " + target.parent_path().string());
  }

  ScratchFolder scratch(target);
  BuildDatabase(scratch.path() / "system.db", system_scripts);
  BuildDatabase(scratch.path() / "main.db", main_scripts);

  DemoFiles files{(fs::path(folder) / "system.db").string(),
                  (fs::path(folder) / "main.db").string()};
  if (!exists) {
    fs::rename(scratch.path(), target, error);
    if (error) throw CommandError("cannot create " + folder + ": " + error.message());
    scratch.Release();
    return files;
  }
  for (const char* name : {"system.db", "main.db"}) {
    // A journal left by an earlier database must not be applied to the new one.
    for (const char* suffix : {"-wal", "-shm", "-journal"})
      fs::remove(target / (std::string(name) + suffix), error);
    fs::rename(scratch.path() / name, target / name, error);
    if (error) throw CommandError("cannot move the new " + std::string(name) + " into " + folder);
  }
  return files;
}

std::string DefaultDataDir() {
#ifdef __linux__
  // An installed program finds the demo data beside it: <prefix>/share/kelvary/data.
  std::error_code error;
  const fs::path exe = fs::read_symlink("/proc/self/exe", error);
  if (!error) {
    const fs::path installed = exe.parent_path().parent_path() / "share" / "kelvary" / "data";
    if (fs::is_regular_file(installed / "system_schema.sql", error)) return installed.string();
  }
#endif
#ifdef KELVARY_DATA_DIR
  return KELVARY_DATA_DIR;
#else
  return "data";
#endif
}

}  // namespace kelvary::cli
