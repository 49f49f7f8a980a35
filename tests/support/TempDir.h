// TempDir: a fresh folder under the system's temporary directory, removed
// with everything in it when the object goes.
#pragma once

#include <filesystem>
#include <string>

namespace kelvary::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  // File: the path of a file name inside the folder, as text.
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace kelvary::testing
