// Work exclusion between processes: what a claim meets, and that it goes with its process.
#include "main/batchvw.h"

#include "tests/support/agent.h"
#include "tests/support/proefsysteem.h"

namespace {

// "12 c9" is session 12 that claims function 9; e exclusive, f and g free the two.
std::string doe(const std::string& opdracht) {
  int sessie = 0, functie = 0;
  char soort = 0;
  if (sscanf(opdracht.c_str(), "%d %c%d", &sessie, &soort, &functie) != 3) return "?";
  session_terminal = sessie;
  if (iotab_fd() < 0) ProefSysteem::open();
  if (soort == 'f') return vw_free(functie), "vrij";
  if (soort == 'g') return vw_free_excl(functie), "vrij";
  // Without a screen the answer is wanted at once, as in the unattended session.
  if (soort == 'c')
    return vw_lock('S', iotab_fd(), 40084 + 99 * functie + sessie, 1) ? "ja" : "nee";
  session_terminal = 99;
  return vw_claim_excl(functie) ? "ja" : "nee";
}

struct Werk : testing::Test {
  ProefSysteem systeem;
  ~Werk() override {
    ProefSysteem::sluit();
    session_terminal = 0;
  }
};

TEST_F(Werk, PrimitiveIsSoleAndNeverWaits) {
  Agent ander([](const std::string& op) {
    if (iotab_fd() < 0) ProefSysteem::open();
    return vw_lock(op[0], iotab_fd(), 50000, 10) ? "ja" : "nee";
  });
  ProefSysteem::open();
  const int fd = iotab_fd();
  EXPECT_TRUE(vw_lock('S', fd, 50000, 10));
  EXPECT_TRUE(vw_lock('S', fd, 50000, 10));  // one's own locks do not meet
  EXPECT_EQ(ander.ask("S"), "nee");
  EXPECT_TRUE(vw_lock('T', fd, 50000, 10));  // the refused one left nothing behind
  EXPECT_EQ(ander.ask("T"), "nee");
  EXPECT_EQ(ander.ask("E"), "nee");
  vw_lock('U', fd, 50000, 10);
  EXPECT_EQ(ander.ask("E"), "ja");
  EXPECT_FALSE(vw_lock('S', fd, 50009, 1));
  EXPECT_TRUE(vw_lock('S', fd, 50010, 1));
  ander.kill_now();
  EXPECT_TRUE(vw_lock('S', fd, 50000, 10));
}

TEST_F(Werk, ClaimsOfOneFunction) {
  Agent een(doe), twee(doe);
  EXPECT_EQ(een.ask("1 c9"), "ja");
  EXPECT_EQ(twee.ask("2 c9"), "ja");   // sessions side by side
  EXPECT_EQ(twee.ask("2 e9"), "nee");  // the whole function is not free
  EXPECT_EQ(twee.ask("2 e10"), "ja");
  EXPECT_EQ(een.ask("1 c10"), "nee");
  EXPECT_EQ(een.ask("1 e10"), "nee");
  EXPECT_EQ(een.ask("1 f9"), "vrij");
  EXPECT_EQ(twee.ask("2 e9"), "ja");
  EXPECT_EQ(twee.ask("2 g9"), "vrij");
  EXPECT_EQ(twee.ask("2 f3"), "vrij");  // never claimed
  EXPECT_EQ(een.ask("7 c9"), "ja");
  EXPECT_EQ(twee.ask("7 c9"), "nee");  // the same session number twice
  een.kill_now();
  EXPECT_EQ(twee.ask("7 c9"), "ja");
}

// The band is one state a byte: a refusal takes the session's own byte with it.
TEST_F(Werk, RefusedExclusiveClaimGivesUpTheOwnByte) {
  Agent een(doe), twee(doe);
  EXPECT_EQ(een.ask("1 c9"), "ja");
  EXPECT_EQ(twee.ask("2 c9"), "ja");
  EXPECT_EQ(twee.ask("2 e9"), "nee");
  een.ask("1 f9");
  EXPECT_EQ(een.ask("1 e9"), "ja");
}

TEST_F(Werk, UnattendedSessionDoesNotAsk) {
  Agent een(doe);
  een.ask("1 e10");
  ProefSysteem::open();
  session_terminal = 99;
  EXPECT_FALSE(vw_claim_excl(10));
  EXPECT_FALSE(vw_claim(10, true));
  een.kill_now();
  EXPECT_TRUE(vw_claim(10, true));
  EXPECT_EQ(file_size("DTSYS.TXT"), SYS_GROOTTE);
}

}  // namespace
