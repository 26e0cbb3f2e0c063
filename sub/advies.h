// The advice of one series: how its pieces should move between the branches. Pure: everything works
// on the matrices of an Advies; no file, clock or screen inside. adv_vul fills the matrices from
// the tables, adv_opdracht turns what was accepted into order lines, servrd shows it.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "sub/tabellen.h"

inline constexpr uint8_t ADV_AANVUL = 1, ADV_SWITCH = 2, ADV_OVERIG = 4, ADV_RESTANT = 8,
                         ADV_DISTRIBUTIE = 16;

/// What the article group of the series says about dividing.
struct AdvGroep {
  uint8_t magazijn = FILIAAL_GEEN;    // 255 none
  bool pure_magazijn = false;         // the warehouse is no selling branch
  bool alleen_onder = false;          // serve only branches at or below the minimum
  char verdeelsoort = 'A';            // 'A' aims by quantity, 'P' by percentage
  uint8_t minimum = 0;                // pieces of a size in a branch
  uint8_t magazijn_pct = 0;           // kept by the warehouse in a distribution
  std::array<uint8_t, 250> streef{};  // aim a branch; 0 takes no part
};

/// The fair-share score: one a run of a command, kept over the series of one model.
struct Verdeelstand {
  bool per_maat = false;  // the option of the system record; else all sizes share column 0
  bool begonnen = false;
  char model[15] = {};
  MaatMatrix verdeel_stand;              // score a branch, by column
  std::vector<int32_t> verdeel_gewicht;  // a branch; the last is their sum
};

/// What a step of the calculation did, for who asks why. Recorded only while `spoor` is set.
enum class AdvRegel : uint8_t {
  aanvul_verkocht,  // the warehouse replaces what a branch sold
  aanvul_minimum,   // the warehouse brings a branch to its minimum
  switch_minimum,   // another branch does
  restant,          // a remainder gathered in the branch that sells best
  gespreid,         // a remainder outside the longest run, spread by sales
  verdeel_vast,     // a distribution's fixed share
  verdeel_minimum,  // a distribution's round to the minimum
  verdeel_eerlijk,  // a distribution by fair share
  verdeel_rest,     // what is left goes to the keeper
};
/// Why a branch that could have had the piece (or, the last, have given it) did not.
enum class AdvReden : uint8_t {
  geen,            // nothing stands in its way
  geen_ontvanger,  // may not receive, or never had anything of the series
  geen_streef,
  geen_vraag,
  genoeg,
  aan_zichzelf,
  lagere_stand,  // another had the higher claim
  later,         // comes later in the service order
  minder_vrij    // could have given, but another can better
};
struct AdvGepasseerd {
  uint8_t filiaal;
  AdvReden reden;
};
struct AdvStap {
  const MaatMatrix* uitkomst;  // the result that it changed
  AdvRegel regel;
  uint8_t maat, van, naar;  // branches, 255 none
  int32_t stuks;
  std::vector<AdvGepasseerd> gepasseerd;
};

/// One series in hand. Matrices have B + 1 rows, row B the chain's totals; cell 0 of a row its sum.
/// In the results plus is getting and minus is giving.
struct Advies {
  MaatMatrix m_ontvangen, m_order, m_voorraad, m_verkocht, m_correctie, m_vrk_periode;
  MaatMatrix m_uit, m_in, m_besteld, m_aanvul, m_voorlopig;
  MaatMatrix r_aanvul, r_switch, r_herverdeel;
  uint8_t adv_kenmerk = 0;
  AdvGroep groep;
  uint8_t bron_soort = 3;
  std::bitset<256> bron, doel;         // may give, may receive; cut at B
  std::vector<uint8_t> adv_volgorde;   // the service order
  std::vector<uint8_t> maten;          // size indexes of the series in size-bar order
  char model[15] = {};                 // of the series: the fair-share score belongs to it
  Verdeelstand verdeel, verdeel_voor;  // the score, and as it was before this series
  std::vector<AdvStap>* spoor = nullptr;

  int filialen() const { return static_cast<int>(m_voorraad.size()) - 1; }
};
/// The series that the commands work on. adv_open gives it its rows, adv_sluit takes them.
extern Advies advies;

/// Gives every matrix B + 1 rows of zeros. Throws std::bad_alloc; `adv_open` reports it.
void adv_maak(Advies&, int filialen);
/// All matrices, sets and flags empty; the fair-share score stays.
void adv_wis(Advies&);
/// Totals of the input matrices: cell 0 of each row and the chain's row.
void adv_totalen(Advies&);
/// The giving branches `bron` by bron_soort out of `vanuit`; the receiving ones `doel` out of
/// `aanvul`, without those of the brand's own map that received nothing of the series; maps are 32
/// bytes. Then the service order. After the totals.
void adv_verzamelingen(Advies&, const uint8_t* vanuit, const uint8_t* aanvul,
                       const uint8_t* merkkaart);

/// Pieces that a branch will have, and that it can give. `s` 0 is the sum.
int32_t eigen(const Advies&, int b, int s);
int32_t vrij(const Advies&, int b, int s);
/// What the warehouse can give, the minimum of a selling one left out. 0 without a warehouse.
int32_t vrij_magazijn(const Advies&, int s);

// The steps; `vraag` is m_aanvul, m_vrk_periode or m_verkocht, `r` one of the results.
void aanvul_magazijn(Advies&, MaatMatrix& r);
void aanvul_minimum(Advies&, const MaatMatrix& vraag, MaatMatrix& r);
void switch_(Advies&, const MaatMatrix& vraag, MaatMatrix& r);
void restanten(Advies&);    // into r_herverdeel
void distributie(Advies&);  // into r_aanvul
bool toets_nieuw(const Advies&);
bool toets_aanvul(const Advies&, const MaatMatrix& vraag);
bool toets_switch(const Advies&, const MaatMatrix& vraag);
bool toets_restant(const Advies&);
/// Replenishment straight from the information on sold labels: aanvul_magazijn and aanvul_minimum
/// when the warehouse may give, switch_ too when branches may, all into r_aanvul.
void adv_automatisch(Advies&);

/// All three results and the flags. True when the series shows a kind that `krit` asks for. `vraag`
/// is the demand of the command: m_aanvul in manual creation, else m_vrk_periode.
bool adv_bereken(Advies&, const AdvRec& krit, const MaatMatrix& vraag);
/// No entry but zeros in the series' sizes. The chain's row of a result stays zero.
bool adv_leeg(const Advies&, const MaatMatrix&);

/// Why `filiaal` gets or gives what it does of `maat` in result `r` (one of r_aanvul, r_switch,
/// r_herverdeel of `a`): lines in Dutch, code page 850, at most `breedte` wide: stock, sales,
/// minimum, aim, each rule that applied and the branches that were passed over. Calculates again on
/// a copy with a trail.
std::vector<std::string> adv_uitleg(const Advies& a, const MaatMatrix& r, const AdvRec& krit,
                                    const MaatMatrix& vraag, int filiaal, int maat, int breedte);
