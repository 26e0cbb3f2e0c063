// Order numbers: the counter, the check digit, what may be typed.
#include <cstring>

#include "scr/scr.h"
#include "sub/opdrnr.h"
#include "tests/support/keten.h"
#include "tests/support/terminal.h"

namespace {

TEST(Opdrachtnummer, CheckDigits) {
  EXPECT_EQ(opdrnr_cijfer(1), 20000011u);
  EXPECT_EQ(opdrnr_cijfer(123456), 21234569u);
  for (const uint32_t teller : {2u, 77u, 999999u}) {
    const std::string tekst = std::to_string(opdrnr_cijfer(teller));
    EXPECT_TRUE(opdrnr_ok(tekst.c_str())) << tekst;
    for (size_t i = 0; i < tekst.size(); ++i) {
      std::string fout = tekst;
      fout[i] = fout[i] == '9' ? '0' : static_cast<char>(fout[i] + 1);
      EXPECT_FALSE(opdrnr_ok(fout.c_str())) << fout;
    }
  }
  EXPECT_FALSE(opdrnr_ok("2123456"));
  EXPECT_FALSE(opdrnr_ok("212345691"));
  EXPECT_FALSE(opdrnr_ok("2123456x"));
}

TEST(Opdrachtnummer, TheCounterStartsAtOneAndWraps) {
  Keten keten;
  keten.open();
  EXPECT_EQ(opdrnr_nieuw(), 20000011u);
  EXPECT_EQ(opdrnr_nieuw(), opdrnr_cijfer(2));
  uint32_t teller = 999998;
  Keten::sysrec_zet(18, &teller, sizeof teller);
  EXPECT_EQ(opdrnr_nieuw(), opdrnr_cijfer(999999));
  EXPECT_EQ(opdrnr_nieuw(), 20000011u);
  std::memcpy(&teller, Keten::sysrec(18).data(), 4);
  EXPECT_EQ(teller, 1u);
}

std::string norm(const char* getypt) {
  char tekst[16] = "";
  std::strcpy(tekst, getypt);
  return opdrnr_norm(tekst) ? tekst : "geen";
}

TEST(Opdrachtnummer, TypedForms) {
  EXPECT_EQ(norm("21234569"), "21234569");
  EXPECT_EQ(norm("1234569"), "21234569");
  EXPECT_EQ(norm("11"), "20000011");
  EXPECT_EQ(norm("0000011"), "20000011");
  for (const char* fout : {"", "0", "9", "20000000", "20000009", "21234568", "11234569", "1234568",
                           "212345691", "12345x9", "-11"}) {
    EXPECT_EQ(norm(fout), "geen") << fout;
  }
}

TEST(Opdrachtnummer, TheFieldRepeatsUntilItIsOne) {
  Terminal t = start_in_child([] {
    SCRINIT();
    uint32_t nummer = 0;
    bool goed = opdrnr_ingave(3, 10, &nummer);
    scr_print(A_WAARDE, 5, 1, "%d %lu", goed, nummer);
    goed = opdrnr_ingave(4, 10, &nummer);
    scr_print(A_WAARDE, 6, 1, "%d %lu", goed, nummer);
    nummer = 5;
    goed = opdrnr_ingave(3, 10, &nummer);
    scr_print(A_WAARDE, 7, 1, "%d %lu", goed, nummer);
    scr_getkey("x");
  });
  EXPECT_SHOWS(t.type("1234568\r"), "Ongeldig nummer");
  EXPECT_EQ(t.type("1234569\r").row(5), "1 21234569");
  EXPECT_EQ(t.type(std::string(toets::Back) + toets::Enter).row(6), "1 0");  // emptied
  EXPECT_EQ(t.type(toets::Esc).row(7), "0 5");
}

}  // namespace
