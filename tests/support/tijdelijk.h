// A directory for one test, gone at its end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

struct TempDir {
  TempDir() {
    std::string naam = (std::filesystem::temp_directory_path() / "toetsXXXXXX").string();
    if (mkdtemp(naam.data()) == nullptr) std::abort();
    pad = naam;
  }
  ~TempDir() {
    std::error_code stil;
    std::filesystem::remove_all(pad, stil);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  std::string operator/(const std::string& naam) const { return pad + "/" + naam; }

  std::string pad;
};

/// Makes a directory the current one for the length of a scope.
struct InMap {
  explicit InMap(const std::string& map) : terug(std::filesystem::current_path()) {
    std::filesystem::current_path(map);
  }
  ~InMap() {
    std::error_code stil;
    std::filesystem::current_path(terug, stil);
  }
  InMap(const InMap&) = delete;
  InMap& operator=(const InMap&) = delete;

  std::filesystem::path terug;
};
