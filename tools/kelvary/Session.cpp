#include "Session.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/SqlScript.h"

namespace kelvary::cli {

namespace fs = std::filesystem;

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

bool LooksLikeFile(const std::string& source) {
  if (source.find('/') != std::string::npos || source.find('\\') != std::string::npos) {
    return true;
  }
  for (const char* ending : {".db", ".sqlite", ".sqlite3"}) {
    const std::string e(ending);
    if (source.size() >= e.size() && source.compare(source.size() - e.size(), e.size(), e) == 0) {
      return true;
    }
  }
  return false;
}

void Connect(InfoLink& link, const std::string& main_source, const std::string& system_source) {
  for (const auto& [role, source] : {std::pair{"main", main_source}, {"system", system_source}}) {
    if (source.empty()) throw CommandError(std::string("no ") + role + " database given");
    if (LooksLikeFile(source) && !fs::exists(source)) {
      throw CommandError(std::string(role) + " database file not found: " + source);
    }
  }
  std::shared_ptr<Connection> main_xion;
  std::shared_ptr<Connection> system_xion;
  MessageCatcher catcher;
  if (!link.ConnectDefault(main_xion, system_xion, main_source, system_source)) {
    const auto messages = catcher.Take();
    throw CommandError("cannot connect to the main database " + main_source +
                       " and the system database " + system_source +
                       (messages.empty() ? "" : ": " + OneLine(messages.back())));
  }
}

namespace {

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("cannot read " + path.string());
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void BuildDatabase(const fs::path& file, const fs::path& data_dir,
                   std::initializer_list<const char*> scripts) {
  std::error_code ignored;
  fs::remove(file, ignored);
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + file.string() + ";Mode=ReadWriteCreate");
  for (const char* script : scripts) {
    try {
      ExecuteScript(connection, ReadFile(data_dir / script));
    } catch (const Error& e) {
      throw CommandError(std::string(script) + ": " + OneLine(e.Description()));
    }
  }
  connection.Close();
}

}  // namespace

DemoFiles BuildDemoDatabases(const std::string& folder, const std::string& data_dir) {
  const fs::path data(data_dir);
  if (!fs::is_directory(data)) throw CommandError("data folder not found: " + data_dir);
  const fs::path dir(folder);
  fs::create_directories(dir);
  DemoFiles files{(dir / "system.db").string(), (dir / "main.db").string()};
  BuildDatabase(files.system, data, {"system_schema.sql", "demo_system.sql"});
  BuildDatabase(files.main, data, {"main_schema.sql", "demo_main.sql"});
  return files;
}

std::string DefaultDataDir() {
#ifdef KELVARY_DATA_DIR
  return KELVARY_DATA_DIR;
#else
  return "data";
#endif
}

}  // namespace kelvary::cli
