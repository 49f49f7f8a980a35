#include "support/TempDir.h"

#include <stdlib.h>

#include <stdexcept>
#include <system_error>

namespace kelvary::testing {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "kelvary-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot create a temp folder");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace kelvary::testing
