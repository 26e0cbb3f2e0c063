// Correcting the transactions before they are processed: the file, the list of lines, the command.
//
// Lines are changed in place and a line that goes is zeroed, so that line numbers hold while the
// list stands. At the end the lines that are left go into a new file beside the old one, which then
// takes its name: whoever dies in it leaves the old file or the new one, never a part. Nobody else
// appends meanwhile, for the command has its work function to itself.
#include "sub/dc_wijzig.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "isam/base.h"
#include "isam/io.h"
#include "main/batchvw.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

constexpr int FUNCTIE = 2;
constexpr const char* NIEUW = "DTDCIF.TMP";
constexpr int64_t LENGTE = sizeof(DcRegel);
enum Fout { SCHRIJVEN = 1, HERNOEMEN };

constexpr TabelDef TMPCOR{
    "tmpcor", "tmpcor", sizeof(DcwRij), {"key1,NODUPS,I,1,4,I,5,6,I,7,8,C,9,11,I,13,16"}};

std::string lijst_naam() { return std::string(privaat.tp) + "K"; }

bool leeft(const DcRegel& r) { return r.code[0] != 0; }

// The end -----------------------------------------------------------------------------------------

/// Lines that are written one behind the other, some hundreds at a time.
struct Uitvoer {
  int fd;
  int64_t plaats = 0;
  std::vector<DcRegel> stuk{};

  void zet(const DcRegel& r) {
    stuk.push_back(r);
    if (stuk.size() >= 2000) schrijf();
  }
  void schrijf() {
    const auto n = static_cast<int64_t>(stuk.size()) * LENGTE;
    if (io_schrijf(fd, stuk.data(), static_cast<size_t>(n), plaats) != n)
      ctl_fault(DCW_MODULE, SCHRIJVEN);
    plaats += n;
    stuk.clear();
  }
};

void kort_in(const Dcw& d) {
  file_delete(NIEUW);  // of a run that was broken off
  Uitvoer uit{io_open(NIEUW, true)};
  if (uit.fd < 0) ctl_noopen(DCW_MODULE, NIEUW);
  DcRegel r;
  for (uint32_t regel = 0; dcw_lees(d, regel, &r); ++regel)
    if (leeft(r)) uit.zet(r);
  uit.schrijf();
  io_close(uit.fd);
  if (std::rename(NIEUW, DC_BESTAND) != 0) ctl_fault(DCW_MODULE, HERNOEMEN);
}

// What a line is about ----------------------------------------------------------------------------

bool is_etiket(const DcRegel& r, int32_t* nummer) {
  Etiketcode code{};
  if (!etikode_lees(std::string_view(r.code, sizeof r.code), &code)) return false;
  *nummer = code.nummer;
  return code.letter == 0 && code.nummer >= 1;
}

void zet_maat(Dcw& d, const DtSer& serie, uint8_t maat, char (&tekst)[3]) {
  MaatRec rec{};
  rec.maat = maat;
  if (mtkeep(&d.maten, maat_land(), serie.maatsoort, nullptr) == nullptr) return;
  if (mtread(d.maten, 'R', &rec, 1)) memcpy(tekst, rec.tekst, sizeof tekst);
}

/// The codes that the operator typed and a line carries name one article.
bool zelfde_code(const DcRegel& r, const char* getypt) {
  std::string code = veld_tekst(r.code, sizeof r.code), vraag = getypt;
  str_rtrim(code.data());
  str_rtrim(vraag.data());
  if (strcmp(code.c_str(), vraag.c_str()) == 0) return true;
  Etiketcode a{}, b{};
  if (!etikode_lees(code, &a) || !etikode_lees(vraag, &b)) return false;
  return a.letter == 0 && b.letter == 0 && a.nummer >= 1 && a.nummer == b.nummer;
}

bool zelfde_maat(const char (&a)[3], const char (&b)[3]) {
  return std::equal(a, a + 3, b, [](char x, char y) {
    return chr_upper(static_cast<uint8_t>(x)) == chr_upper(static_cast<uint8_t>(y));
  });
}

/// The limits that the line itself answers.
bool past(const DcwGrens& g, const DcRegel& r) {
  const auto fil = [](uint8_t grens, uint8_t f) { return grens == filialen() || grens == f; };
  return leeft(r) && r.soort == g.soort && fil(g.vanfil, r.vanfil) && fil(g.naarfil, r.naarfil) &&
         (g.datum == 0 || g.datum == r.datum) &&
         (g.nummer == DCW_ALLE_NUMMERS || g.nummer == r.nummer) &&
         (g.code[0] == 0 || zelfde_code(r, g.code));
}

bool past(const DcwGrens& g, const DcwArtikel& a) {
  return (g.nr.artgroep == 0 || g.nr.artgroep == a.nr.artgroep) &&
         (g.nr.kleur == 0 || g.nr.kleur == a.nr.kleur) &&
         (g.nr.volgnr == 0 || g.nr.volgnr == a.nr.volgnr) &&
         (g.maat[0] == 0 || zelfde_maat(g.maat, a.maat));
}

void bij(Dcw& d, const DcwArtikel& a, const DcRegel& r, uint32_t regel) {
  d.rij = DcwRij{};
  d.rij.nr = a.nr;
  memcpy(d.rij.maat, a.maat, sizeof d.rij.maat);
  d.rij.regel = regel;
  memcpy(d.rij.code, r.code, sizeof d.rij.code);
  IXWRITE(d.lijst, &d.rij);
}

}  // namespace

Dcw::Dcw() : fd(io_open(DC_BESTAND, false)), lijst(nullptr) {
  if (fd < 0) ctl_noopen(DCW_MODULE, DC_BESTAND);
  const std::string naam = lijst_naam();
  if (!tabel_maak(TMPCOR, naam.c_str())) ctl_noopen(DCW_MODULE, naam.c_str());
  lijst = IXOPEN_LENGTE(naam.c_str(), IX_EXCLUSIEF, sizeof(DcwRij));
}

Dcw::~Dcw() {
  IXCLOSE(lijst);
  IXREMOVE(lijst_naam().c_str());
  if (maten != nullptr) mtclose(maten);
  if (gewist) kort_in(*this);
  io_close(fd);
}

bool dcw_lees(const Dcw& d, uint32_t regel, DcRegel* r) {
  return io_lees(d.fd, r, sizeof *r, int64_t{regel} * LENGTE) == LENGTE;
}

void dcw_schrijf(const Dcw& d, uint32_t regel, const DcRegel& r) {
  if (io_schrijf(d.fd, &r, sizeof r, int64_t{regel} * LENGTE) != LENGTE)
    ctl_fault(DCW_MODULE, SCHRIJVEN);
}

DcwArtikel dcw_artikel(Dcw& d, const DcRegel& r) {
  DcwArtikel a{};
  uint8_t maat = 0;
  int32_t nummer = 0;
  const bool etiket = is_etiket(r, &nummer);
  if (etiket) {
    Etiket e{};
    if (!ioeti('R', &nummer, &e)) {
      a.stand = DcwStand::etiket_weg;
      return a;
    }
    a.nr = e.nr;
    maat = e.maat;
  } else {
    DtEan ean{};
    if (!lees_ean(dtean, &ean, std::string_view(r.code, sizeof r.code))) {
      a.stand = DcwStand::serie_weg;
      return a;
    }
    a.nr = {ean.artgroep, ean.kleur, ean.volgnr};
    maat = ean.maat;
  }
  DtSer serie{};
  if (!lees_serie(dtser, &serie, a.nr)) {
    a.stand = DcwStand::serie_weg;
    return a;
  }
  a.per_stuk = etiket && serie.maatregistratie == 0;
  zet_maat(d, serie, maat, a.maat);
  return a;
}

int dcw_verzamel(Dcw& d, const DcwGrens& g) {
  IXINIT(d.lijst);
  const int rij = scr_ctx->lines;
  const int kol = scr_print(A_LABEL, rij, 1, "%s", txt(T_DCW_VOLGNR)) + 2;
  int aantal = 0;
  DcRegel r;
  scr_intr_reset();
  for (uint32_t regel = 0; dcw_lees(d, regel, &r); ++regel) {
    scr_print(A_WAARDE, rij, kol, "%lu", regel + 1);
    if (scr_interrupted()) {
      aantal = -1;
      break;
    }
    if (!past(g, r)) continue;
    const DcwArtikel a = dcw_artikel(d, r);
    if (!past(g, a)) continue;
    bij(d, a, r, regel);
    ++aantal;
  }
  scr_clreol(rij, 1);
  return aantal;
}

void dcw_wis(Dcw& d) {
  dcw_schrijf(d, d.rij.regel, DcRegel{});
  d.gewist = true;
  if (IXREADL(d.lijst, &d.rij)) {
    IXDELETE(d.lijst, &d.rij);
  } else {
    IXRELEASE(d.lijst, &d.rij);
  }
}

std::vector<uint32_t> dcw_regels(Dcw& d) {
  std::vector<uint32_t> uit;
  DcwRij rij{};
  for (bool er = IXFIRSTR(d.lijst, &rij); er; er = IXNEXT(d.lijst, &rij)) uit.push_back(rij.regel);
  return uit;
}

// The command -------------------------------------------------------------------------------------

namespace {

Dcw* open_dcw;  // of the menu's items, which take no arguments

void per_selectie() { dcw_selectie(*open_dcw); }
void per_artikel() { dcw_artikelnummer(*open_dcw); }

}  // namespace

void dc_wijzigen() {
  hdr_line('C', "%s", txt(T_DCW_TITEL));
  if (!vw_claim_excl(FUNCTIE)) return;
  const Werkclaim_excl claim(FUNCTIE);
  if (file_size(DC_BESTAND) < LENGTE) {  // processed since the menu was shown
    msg_info(txt(T_DCW_GEEN));
    return;
  }
  Dcw d;
  open_dcw = &d;
  do {
    menu_begin(1);
    hdr_line('E', "%s", txt(T_DCW_TITEL));
    menu_item(true, true, txt(T_DCW_PER_SELECTIE), per_selectie);
    menu_item(true, true, txt(T_DCW_PER_ARTIKEL), per_artikel);
  } while (menu_run() != 0);
  open_dcw = nullptr;
}
