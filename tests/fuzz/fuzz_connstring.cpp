// Connection strings: items read, written back with each value quoted as
// it needs, and read again must be the same items; and what is handed on
// to ODBC must read back as the items the caller gave (the provider's own
// keys aside), so that no value is cut and no key is slipped in.
#include "FuzzSupport.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/ConnectionString.h"

using namespace kelvary::internal;
using kelvary::fuzz::Refused;
using kelvary::fuzz::Violation;

namespace {

std::string Show(const ConnectionStringItems& parsed) {
  std::string out;
  for (const auto& [key, value] : parsed.items)
    out += "<" + key + "=" + value + "> ";
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kelvary::fuzz::kMaxInput) return 0;
  const std::string_view input = kelvary::fuzz::AsText(data, size);
  const ConnectionStringItems items = ParseConnectionString(input);
  std::string rebuilt;
  for (const auto& [key, value] : items.items) {
    if (key.find_first_of(";=") != std::string::npos) Violation("a key holding ; or =", input);
    rebuilt += key + "=" + QuoteConnectionValue(value) + ";";
  }
  const ConnectionStringItems again = ParseConnectionString(rebuilt);
  if (again.items != items.items) {
    Violation("rebuilt [" + rebuilt + "] reads " + Show(again) + "instead of " + Show(items),
              input);
  }

  DriverChoice choice;
  if (Refused([&] { choice = ChooseDriver(input); })) return 0;
  if (choice.kind == DriverChoice::kOdbc && !items.Get("Driver") && !items.Get("Data Source")) {
    ConnectionStringItems expected;
    for (const auto& item : items.items) {
      const std::string key = kelvary::LowerCase(item.first);
      if (key != "provider" && key != "data provider") expected.items.push_back(item);
    }
    const ConnectionStringItems handed_on = ParseConnectionString(choice.odbc_string);
    if (handed_on.items != expected.items) {
      Violation("handed on [" + choice.odbc_string + "] reads " + Show(handed_on) + "instead of " +
                    Show(expected),
                input);
    }
  }
  return 0;
}
