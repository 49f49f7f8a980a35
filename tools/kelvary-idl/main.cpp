// kelvary-idl: writes the library's interface definition, generated from
// its member tables, to the file named by its one argument (or to standard
// output without one).
//
//   kelvary-idl src/kelvary/automation/Kelvary.idl
#include <fstream>
#include <iostream>

#include "kelvary/automation/InterfaceText.h"

int main(int argc, char** argv) {
  const std::string text = kelvary::automation::InterfaceDefinition();
  if (argc < 2) {
    std::cout << text;
    return 0;
  }
  std::ofstream out(argv[1], std::ios::binary);
  out << text;
  if (!out) {
    std::cerr << "kelvary-idl: cannot write " << argv[1] << "\n";
    return 1;
  }
  return 0;
}
