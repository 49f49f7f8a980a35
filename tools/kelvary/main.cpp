// kelvary: the command-line face of the library, for the people who
// configure and support the practice application. The commands are in the
// command table (Commands.h); a problem is one line on standard error and a
// non-zero exit.
#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvary::cli::RunCommandLine(words, std::cout, std::cerr);
}
