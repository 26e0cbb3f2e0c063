// The house guards itself: for every folder, the folders that it may include.
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

const std::set<std::string> SESSIE = {"controle", "iotab", "iofil", "batchvw"};

/// A file's room: its folder, but main/ is two.
std::string kamer(const std::string& pad) {
  const std::string map = pad.substr(0, pad.find('/'));
  if (map != "main") return map;
  std::string stam = pad.substr(5);
  stam = stam.substr(0, stam.find_first_of("._"));
  return SESSIE.contains(stam) || pad == "main/teksten_sessie.h" ? "sessie" : "main";
}

const std::map<std::string, std::set<std::string>> MAG = {
    {"isam", {"isam", "nls"}},
    {"scr", {"scr", "isam", "nls"}},
    {"prt", {"prt", "scr", "isam", "nls"}},
    {"sessie", {"sessie", "scr", "isam", "nls"}},
    {"sub", {"sub", "sessie", "prt", "scr", "isam", "nls"}},
    {"main", {"main", "sub", "sessie", "prt", "scr", "isam", "nls"}},
    {"nls", {"nls", "isam"}},
    {"tools", {"tools", "main", "sub", "sessie", "prt", "scr", "isam"}},
};

std::vector<std::string> fouten(const std::string& pad, std::istream& bron) {
  static const std::regex include("^\\s*#\\s*include\\s*\"([^\"]+)\"");
  std::vector<std::string> gevonden;
  const auto mag = MAG.find(kamer(pad));
  std::string regel;
  while (std::getline(bron, regel)) {
    std::smatch m;
    if (mag == MAG.end() || !std::regex_search(regel, m, include)) continue;
    if (!mag->second.contains(kamer(m[1]))) gevonden.push_back(pad + " includes " + m[1].str());
  }
  return gevonden;
}

TEST(Huis, IncludesNeverRunUpward) {
  int gelezen = 0;
  for (const char* map : {"isam", "scr", "prt", "main", "sub", "tools", "nls"}) {
    for (const fs::directory_entry& e : fs::directory_iterator(fs::path(SOURCE_DIR) / map)) {
      const std::string soort = e.path().extension();
      if (soort != ".cc" && soort != ".h" && soort != ".def") continue;
      std::ifstream bron(e.path());
      ++gelezen;
      for (const std::string& fout :
           fouten(std::string(map) + "/" + e.path().filename().string(), bron))
        ADD_FAILURE() << fout;
    }
  }
  EXPECT_GT(gelezen, 60);
}

TEST(Huis, AnUpwardIncludeIsSeen) {
  std::istringstream fout("#include \"scr/scr.h\"\n");
  EXPECT_EQ(fouten("isam/boom.cc", fout).size(), 1u);
  std::istringstream sessie("#include \"main/saldo.h\"\n#include \"main/iotab.h\"\n");
  EXPECT_EQ(fouten("main/controle_start.cc", sessie).size(), 1u);
}

/// Only the toolkit speaks to the terminal library.
TEST(Huis, OnlyTheToolkitIncludesCurses) {
  for (const char* map : {"isam", "prt", "main", "sub", "tools"}) {
    for (const fs::directory_entry& e : fs::directory_iterator(fs::path(SOURCE_DIR) / map)) {
      if (!e.is_regular_file()) continue;
      std::ifstream bron(e.path());
      std::string regel;
      while (std::getline(bron, regel)) {
        EXPECT_FALSE(regel.find("#include") == 0 && regel.find("curses") != std::string::npos)
            << e.path();
      }
    }
  }
}

}  // namespace
