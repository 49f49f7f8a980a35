// What the kelvary command's subcommands share: opening the practice's two
// databases through a service object, building the demo databases from the
// data/ scripts, and catching the system's messages so that they can be
// reported as the command's own lines.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Arguments.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::cli {

// CommandError: a problem the command reports as one line and exit status 1.
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
  // ThrowIfAny: the messages collected so far, if any, as one CommandError.
  void ThrowIfAny();

 private:
  std::shared_ptr<std::vector<std::string>> messages_;
  MessageHandler previous_;
};

// LastLine: the reason of a failure message: what follows its first line
// (which quotes the statement), on one line. A server's reason takes several
// lines (its message, the driver's, the SQLSTATE, the text sent); all are
// kept.
std::string LastLine(const std::string& message);

// OneLine: text with its line breaks turned into "; ", for one-line reports.
std::string OneLine(const std::string& text);

// Sources: the databases a command works on (--system, --main: a SQLite
// file or an ODBC data-source name) and the dialect the service object
// writes (--dialect).
struct Sources {
  std::string main;
  std::string system;
  StdDBTypes dialect = sdbAccess;
};

// The options every command that opens the databases declares.
extern const OptionDef kSystemOption;
extern const OptionDef kMainOption;
extern const OptionDef kDialectOption;

// ReadSources: the three options; --system and --main are required.
Sources ReadSources(const Arguments& args);
// ParseDialect: access, oracle or sqlserver.
StdDBTypes ParseDialect(const std::string& text);
const char* DialectName(StdDBTypes dialect);

enum class Access {
  kReadOnly,   // nothing is written: a SQLite file is opened read-only
  kReadWrite,  // the command writes (keys, the demo's safe delete)
};

// ConnectionStringFor: the connection string that opens source. A file's
// path is passed as one quoted value, so that ';', '=' or blanks in it
// stay part of the path; the file is never created.
std::string ConnectionStringFor(const std::string& source, Access access);

// Connect opens the main and system databases and hands them to
// link.ConnectDefault (which loads the metadata caches and makes link the
// active service object); link.MainDBType is set to the dialect. When
// link_opens_main, the main connection is opened by ConnectDefault from the
// same connection string (it then also opens the sequence-generator
// connection that key method 7 needs). A missing file, a database that
// cannot be opened or is not the practice's (the real reason included)
// raises CommandError.
void Connect(InfoLink& link, const Sources& sources, Access access, bool link_opens_main = false);

// DemoFiles: the two databases of a demo folder.
struct DemoFiles {
  std::string system;
  std::string main;
};

// BuildDemoDatabases builds system.db and main.db from the scripts in
// data_dir in a temporary folder beside folder, and moves them into folder
// (created when missing) only when every script ran: a failure leaves
// folder and any databases already in it as they were.
DemoFiles BuildDemoDatabases(const std::string& folder, const std::string& data_dir);

// DefaultDataDir: the data/ folder of the build, or of the installation.
std::string DefaultDataDir();

}  // namespace kelvary::cli
