// What the kelvary command's subcommands share: opening the practice's two
// databases through a service object, building the demo databases from the
// data/ scripts, and catching the system's messages so that they can be
// reported as the command's own lines.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvary/platform/Messages.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::cli {

// CommandError: a problem the command reports as one line and a non-zero
// exit.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// MessageCatcher: while it lives, the system's messages are collected
// instead of shown; Take hands over those collected so far.
class MessageCatcher {
 public:
  MessageCatcher();
  ~MessageCatcher();
  MessageCatcher(const MessageCatcher&) = delete;
  MessageCatcher& operator=(const MessageCatcher&) = delete;
  std::vector<std::string> Take();

 private:
  std::shared_ptr<std::vector<std::string>> messages_;
  MessageHandler previous_;
};

// OneLine: text with its line breaks turned into "; ", for one-line reports.
std::string OneLine(const std::string& text);

// LooksLikeFile: whether a data-source argument names a database file (the
// rule the connection uses: a path separator, or a .db, .sqlite or .sqlite3
// ending) rather than an ODBC data-source name.
bool LooksLikeFile(const std::string& source);

// Connect opens the main and system databases (files or data-source names)
// through link.ConnectDefault, which also makes link the active one. A
// missing file or a failed connection raises CommandError.
void Connect(InfoLink& link, const std::string& main_source, const std::string& system_source);

// DemoFiles: the two databases of a demo folder.
struct DemoFiles {
  std::string system;
  std::string main;
};

// BuildDemoDatabases creates folder (when missing) and in it system.db and
// main.db afresh from the scripts in data_dir: the schemas, then the demo
// rows.
DemoFiles BuildDemoDatabases(const std::string& folder, const std::string& data_dir);

// DefaultDataDir: the data/ folder the command was built with.
std::string DefaultDataDir();

}  // namespace kelvary::cli
