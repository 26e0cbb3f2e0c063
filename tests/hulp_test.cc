// What the programs themselves say they can do is in their man pages and in the completion of both
// shells; pages point at pages that are there.
#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

#include "tests/support/bestand.h"
#include "tests/support/draai.h"

namespace {

namespace fs = std::filesystem;
using Woorden = std::vector<std::string>;

const std::string COMPLETION = SOURCE_DIR "/scripts/completion/";

struct Hulp {
  Woorden verbs, opties;
};

/// Verbs and long options in a help text; options of one letter only where there is no long one.
Hulp hulp(const std::string& opdracht) {
  const Gedraaid u = draai(opdracht + " --help");
  EXPECT_EQ(u.status, 0) << opdracht;
  Hulp h;
  std::istringstream in(u.tekst);
  std::string regel, deel;
  while (std::getline(in, regel)) {
    if (regel.starts_with("  ") && regel.size() > 2 && regel[2] != ' ') {
      const std::string woord = regel.substr(2, regel.find(' ', 2) - 2);
      if (deel == "Opdrachten:") h.verbs.push_back(woord);
      if (deel == "Opties:") h.opties.push_back(woord.substr(woord.find("--h") == 3 ? 3 : 0));
    } else if (!regel.empty() && regel[0] != ' ') {
      deel = regel;
    }
  }
  return h;
}

/// Calls `doe` for a program and for each of its verbs: its words so far, and its help.
void elk(const std::string& programma, const std::string& zover, const auto& doe) {
  const Hulp h = hulp(BUILD_DIR "/tools/" + programma + " " + zover);
  doe(zover, h);
  for (const std::string& verb : h.verbs) elk(programma, zover + verb + " ", doe);
}

bool staat_in(const std::string& tekst, const std::string& woord) {
  for (size_t p = tekst.find(woord); p != std::string::npos; p = tekst.find(woord, p + 1)) {
    const size_t einde = p + woord.size();
    const bool voor = p == 0 || tekst[p - 1] == ' ' || tekst[p - 1] == '.';
    if (voor && (einde == tekst.size() || std::string(" \n").find(tekst[einde]) < 2)) return true;
  }
  return false;
}

/// In a page an option stands behind its macro: "Fl -records", "Fl C".
TEST(Hulp, EveryVerbAndOptionIsInTheManPage) {
  for (const std::string programma : {"winkel", "ixtool"}) {
    const std::string pagina = bytes_van(SOURCE_DIR "/docs/man/" + programma + ".1");
    int aantal = 0;
    elk(programma, "", [&](const std::string& waar, const Hulp& h) {
      for (const std::string& verb : h.verbs)
        EXPECT_TRUE(staat_in(pagina, "Cm " + verb)) << programma << " " << waar << verb;
      for (const std::string& optie : h.opties)
        EXPECT_TRUE(staat_in(pagina, "Fl " + optie.substr(1))) << programma << " " << waar << optie;
      aantal += static_cast<int>(h.verbs.size() + h.opties.size());
    });
    EXPECT_GT(aantal, 20) << "the help was not understood";
  }
}

/// What bash offers behind these words.
std::set<std::string> bash_biedt(const std::string& programma, const std::string& zover,
                                 const std::string& begin) {
  const Gedraaid u = draai("PATH=" BUILD_DIR "/tools:$PATH bash -c 'complete() { :; }; . " +
                           COMPLETION + "winkel.bash; COMP_WORDS=(" + programma + " " + zover +
                           "\"" + begin + "\"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _winkel; " +
                           "printf \"%s\\n\" \"${COMPREPLY[@]}\"'");
  std::istringstream in(u.tekst);
  std::set<std::string> uit;
  for (std::string woord; std::getline(in, woord);) uit.insert(woord);
  return uit;
}

TEST(Hulp, EveryVerbAndOptionIsCompletedByBash) {
  for (const std::string programma : {"winkel", "ixtool"}) {
    elk(programma, "", [&](const std::string& waar, const Hulp& h) {
      const std::set<std::string> woorden = bash_biedt(programma, waar, "");
      for (const Woorden& lijst : {h.verbs, h.opties})
        for (const std::string& woord : lijst)
          EXPECT_TRUE(woorden.contains(woord)) << programma << " " << waar << woord;
    });
  }
  EXPECT_EQ(bash_biedt("winkel", "-C /tmp gebruiker ", "re"), std::set<std::string>{"reset"});
  EXPECT_EQ(bash_biedt("ixtool", "dump DTSER ", "--rec"), std::set<std::string>{"--records"});
}

TEST(Hulp, ZshOffersTheSame) {
  if (draai("zsh -c true").status != 0) GTEST_SKIP() << "no zsh here";
  const Gedraaid u = draai("PATH=" BUILD_DIR
                           "/tools:$PATH zsh -c 'compadd() { shift; print -l -- \"$@\"; };"
                           " _files() { :; }; words=(winkel gebruiker add \"\"); CURRENT=4; . " +
                           COMPLETION + "_winkel'");
  const Hulp h = hulp(BUILD_DIR "/tools/winkel gebruiker add");
  EXPECT_GT(h.opties.size(), 4u);
  for (const std::string& optie : h.opties)
    EXPECT_NE(("\n" + u.tekst).find("\n" + optie + "\n"), std::string::npos) << optie << u.tekst;
}

TEST(Hulp, PagesAreNamedAndPointAtEachOther) {
  std::set<std::string> paginas;
  for (const auto& e : fs::directory_iterator(SOURCE_DIR "/docs/man"))
    paginas.insert(e.path().filename().string());
  for (const char* naam : {"hoofdmnu.1", "opdsaldo.1", "voorraad.1", "winkel.1", "ixtool.1",
                           "opdsaldo-files.5", "opdsaldo-tables.7"})
    EXPECT_TRUE(paginas.contains(naam)) << naam;
  for (const std::string& pagina : paginas) {
    std::istringstream in(bytes_van(SOURCE_DIR "/docs/man/" + pagina));
    for (std::string regel; std::getline(in, regel);) {
      std::istringstream woorden(regel);
      std::string macro, naam, deel;
      woorden >> macro >> naam >> deel;
      const bool eigen = naam == "winkel" || naam == "ixtool" || naam == "hoofdmnu" ||
                         naam == "voorraad" || naam.starts_with("opdsaldo");
      if (macro == ".Xr" && eigen) {
        EXPECT_TRUE(paginas.contains(naam + "." + deel)) << pagina << ": " << regel;
      }
    }
  }
}

}  // namespace
