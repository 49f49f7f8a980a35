// kelvary: the command-line face of the library, for the people who
// configure and support the practice application.
#include <iostream>
#include <string>

namespace {

constexpr const char* kUsage =
    "usage: kelvary <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  demo [DIR]     build the demo practice databases in DIR and walk through them\n"
    "  help           show this text\n";

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "help";
  if (command == "help" || command == "--help" || command == "-h") {
    std::cout << kUsage;
    return 0;
  }
  std::cerr << "kelvary: unknown command '" << command << "'\n" << kUsage;
  return 2;
}
