#include "KeyCommand.h"

#include <limits>

#include "Session.h"

namespace kelvary::cli {

namespace {

const char* MethodName(CodeGenMethods method) {
  switch (method) {
    case cgmDefault:
      return "cgmDefault";
    case cgmMaxCollection:
      return "cgmMaxCollection";
    case cgmRawGenerate:
      return "cgmRawGenerate";
    case cgmDynamicTables:
      return "cgmDynamicTables";
    case cgmDCOM:
      return "cgmDCOM";
    case cgmStoredProcedure:
      return "cgmStoredProcedure";
    case cgmNetworkServer:
      return "cgmNetworkServer";
    case cgmPhysicalLocationWise:
      return "cgmPhysicalLocationWise";
  }
  return "";
}

ProjectDataSources SourceOf(const Arguments& args) {
  const std::string source = args.Get("--source").value_or("main");
  if (source == "main") return pdsmaindata;
  if (source == "system") return pdssystem;
  throw UsageError("--source is main or system, not " + source);
}

std::string Joined(const std::vector<std::string>& messages) {
  std::string text;
  for (const auto& m : messages)
    text += (text.empty() ? "" : "; ") + OneLine(m);
  return text;
}

// Both connections in a transaction for the time of a dry run; rolled back
// when it ends, whatever happened.
class DryRun {
 public:
  DryRun(InfoLink& link, bool active) {
    if (!active) return;
    for (const auto& xion : {link.AppDataXion(), link.ConfigsXion()}) {
      xion->BeginTrans();
      open_.push_back(xion);
    }
  }
  ~DryRun() {
    for (const auto& xion : open_) {
      try {
        xion->RollbackTrans();
      } catch (...) {  // a destructor must not throw; the connection closes with the link
      }
    }
  }
  DryRun(const DryRun&) = delete;
  DryRun& operator=(const DryRun&) = delete;

 private:
  std::vector<std::shared_ptr<Connection>> open_;
};

}  // namespace

int KeyCommand(const Arguments& args, Output& out) {
  const Sources sources = ReadSources(args);
  const bool dry_run = args.Has("--dry-run");
  Document document;

  if (args.Has("--regno")) {
    const std::string first = args.Required("--first");
    const std::string middle = args.Get("--middle").value_or("");
    const std::string last = args.Required("--last");
    InfoLink link;
    Connect(link, sources, Access::kReadOnly);
    MessageCatcher catcher;
    const std::string regno = link.GetRegNo(first, middle, last);
    catcher.ThrowIfAny();
    Rows rows{{"member", "value"}, {{Variant("GetRegNo"), Variant(regno)}}, true};
    document.sections.push_back({"key", std::move(rows)});
    out.Print(document);
    return 0;
  }

  const std::string table = args.Required("--table");
  const std::string field = args.Required("--field");
  const ProjectDataSources source = SourceOf(args);
  const auto limit = args.Get("--limit");
  const std::string method_text = args.Get("--method").value_or("0");
  std::vector<CodeGenMethods> methods;
  if (method_text == "all") {
    for (int m = cgmDefault; m <= cgmPhysicalLocationWise; ++m)
      methods.push_back(static_cast<CodeGenMethods>(m));
  } else {
    methods.push_back(static_cast<CodeGenMethods>(ParseInteger(method_text, "--method", 0, 7)));
  }
  const auto location = static_cast<int32_t>(
      args.Integer("--location", 0, std::numeric_limits<int32_t>::max()).value_or(0));
  const auto prefix = static_cast<int32_t>(
      args.Integer("--prefix", 0, std::numeric_limits<int32_t>::max()).value_or(0));

  Rows rows;
  rows.columns = {"Method", "Name", "Key", "Messages"};
  for (const CodeGenMethods method : methods) {
    // Method 7 advances its counters on a connection of its own, which no
    // transaction here reaches.
    if (dry_run && method == cgmPhysicalLocationWise) {
      const std::string why =
          "--dry-run cannot roll back method 7: its counters are written on a connection of "
          "their own";
      if (methods.size() == 1) throw CommandError(why);
      rows.rows.push_back({Variant(static_cast<int32_t>(method)), Variant(MethodName(method)),
                           Variant::Null(), Variant("skipped: " + why)});
      continue;
    }
    InfoLink link;
    link.GenCodeMethod = method;
    link.CurrentPhysicalLocationID = location;
    link.CurrPhysLocIDPrefix = prefix;
    Connect(link, sources, Access::kReadWrite, method == cgmPhysicalLocationWise);
    MessageCatcher catcher;
    Variant key;
    std::string failure;
    {
      DryRun transaction(link, dry_run);
      try {
        key = Variant(link.GenerateNumericCode(source, table, field, limit));
      } catch (const Error& e) {
        failure = OneLine(e.Description());
      }
    }
    if (!failure.empty() && methods.size() == 1) throw CommandError(failure);
    std::vector<std::string> messages = catcher.Take();
    if (!failure.empty()) messages.push_back(failure);
    if (method == cgmNetworkServer) {
      messages.push_back("the key comes from the host through RequestRemoteNextID; none answered");
    }
    rows.rows.push_back({Variant(static_cast<int32_t>(method)), Variant(MethodName(method)),
                         failure.empty() ? key : Variant::Null(), Variant(Joined(messages))});
  }
  document.sections.push_back({"keys", std::move(rows)});
  if (dry_run) document.notes.push_back("(dry run: every change rolled back)");
  out.Print(document);
  return 0;
}

}  // namespace kelvary::cli
