// kelvary-idl: writes the library's interface definition, generated from
// its member tables, to the file named by its first argument (or to
// standard output without one), and the vtable side of its dual interfaces
// to the file named by its second.
//
//   kelvary-idl src/kelvary/automation/Kelvary.idl src/kelvary/automation/com/DualInterfaces.cpp
#include <fstream>
#include <iostream>
#include <string>

#include "kelvary/automation/InterfaceText.h"

namespace {

bool Write(const char* path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  if (!out) {
    std::cerr << "kelvary-idl: cannot write " << path << "\n";
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string text = kelvary::automation::InterfaceDefinition();
  if (argc < 2) {
    std::cout << text;
    return 0;
  }
  if (!Write(argv[1], text)) return 1;
  if (argc > 2 && !Write(argv[2], kelvary::automation::DualInterfaceStubs())) return 1;
  return 0;
}
