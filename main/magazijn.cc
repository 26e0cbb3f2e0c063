// The list of where series lie in the warehouses, and the location of one series.
#include "main/magazijn.h"

#include <cstring>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/teksten.h"
#include "prt/prt.h"
#include "scr/scr.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/muteren.h"
#include "sub/pghdl.h"
#include "sub/serie_vraag.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"
#include "sub/voortgang.h"

namespace {

constexpr TabelDef TABEL_LOCATIE{
    "locatie", "locatie", sizeof(Locatie), {"key-1,NODUPS,I,1,1,C,2,7,I,9,12,I,13,14,I,15,16"}};
constexpr uint8_t GEEN_MAGAZIJN = 255;

/// What is going on, in front of the series.
std::string bezig(const Tekst& wat) { return str_format("%-9.9s - ", txt(wat)); }

std::string bestand() { return str_format("TP%02ldL", session_terminal); }

bool leeg(const char* veld, size_t n) {
  return veld_tekst(veld, n).find_first_not_of(' ') == std::string::npos;
}

/// The series' labels in its warehouse, by status; false when they cannot be read whole.
bool tel_etiketten(const DtSer& serie, Locatie* rij) {
  EtiReeks reeks(serie);
  while (reeks.volgende()) {
    const Etiket& e = reeks.etiket;
    if (e.filiaal != rij->filiaal) continue;
    if (e.status == ETI_NOTA) ++rij->nota;
    if (e.status == ETI_VOORRAAD) ++rij->voorraad;
    if (e.status == ETI_CORRECTIES && e.reden == 0) ++rij->inventaris;
  }
  return reeks.geheel;
}

/// True when the article group has a warehouse that is wanted.
bool magazijn_telt(uint32_t artgroep, int filiaal) {
  if (!lees_artikel(dtart, &art_rec, artgroep) || art_rec.magazijn == GEEN_MAGAZIJN) return false;
  return filiaal < 0 || art_rec.magazijn == filiaal;
}

}  // namespace

int locaties_vul(int filiaal) {
  tabel_maak(TABEL_LOCATIE, bestand().c_str());
  ICB* tabel = IXOPEN_LENGTE(bestand().c_str(), IX_EXCLUSIEF, sizeof(Locatie));
  const OpSleutel sleutel(dtser, 1);
  SerieVoortgang voortgang(bezig(T_MAG_SORTEREN));
  int aantal = 0;
  bool door = true;
  DtSer serie{};
  while (IXNEXT(dtser, &serie) && (door = !scr_interrupted())) {
    if (!magazijn_telt(serie.nr.artgroep, filiaal)) {
      serie.nr.kleur = serie.nr.volgnr = UINT16_MAX;  // past the rest of the article group
      continue;
    }
    if (leeg(serie.locatie, sizeof serie.locatie)) continue;
    voortgang.toon(serie.nr);
    Locatie rij{};
    rij.filiaal = art_rec.magazijn;
    rij.nr = serie.nr;
    memcpy(rij.locatie, serie.locatie, sizeof rij.locatie);
    if (!tel_etiketten(serie, &rij))
      voortgang.onleesbaar(serie.nr);
    else if (rij.nota + rij.voorraad + rij.inventaris > 0 && IXWRITE(tabel, &rij))
      ++aantal;
  }
  IXCLOSE(tabel);
  if (!door) return -1;
  voortgang.einde();
  return aantal;
}

namespace {

void kop(uint8_t filiaal) {
  print_head(prt_links, "%s%d", txt(T_MAG_KOP), filiaal);
  print_f("%-26.26s %-7.7s %-14.14s ", txt(T_MAG_ARTIKELGROEP), txt(T_OPDRUK_LOCATIE),
          txt(T_MAG_SERIENUMMER));
  print_f("%5.5s %5.5s %5.5s ", txt(T_MAG_NOT), txt(T_MAG_VRD), txt(T_MAG_INV));
  print_f("%-19.19s %-15.15s ", txt(T_OPDRUK_MERK), txt(T_OPDRUK_MODEL));
  print_f("%-12.12s %-12.12s %-2.2s", txt(T_OPDRUK_MATERIAAL), txt(T_OPDRUK_DESSIN), txt(T_MAG_KM));
  print_nl();
  print_rep(132, '-');
  print_nl();
}

void druk_rij(const Locatie& rij) {
  if (!lees_serie(dtser, &ser_rec, rij.nr)) ser_rec.nr = rij.nr;
  const uint32_t artgroep = rij.nr.artgroep;
  lees_artikel(dtart, &art_rec, artgroep);
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
  print_f("%5ld %-20.20s %-7.7s %-14.14s ", artgroep, veld_tekst(art_rec.naam, sizeof art_rec.naam),
          veld_tekst(rij.locatie, sizeof rij.locatie), serie_tekst(rij.nr));
  for (const uint16_t n : {rij.nota, rij.voorraad, rij.inventaris}) {
    print_f("%s ", n == 0 ? std::string(5, ' ') : str_format("%5u", n));
  }
  print_f("%-4.4s %-14.14s %-15.15s ", veld_tekst(merk_rec.zoeknaam, sizeof merk_rec.zoeknaam),
          veld_tekst(merk_rec.naam, sizeof merk_rec.naam),
          veld_tekst(ser_rec.model, sizeof ser_rec.model));
  print_f("%-12.12s %-12.12s %-2.2s", veld_tekst(ser_rec.materiaal, sizeof ser_rec.materiaal),
          veld_tekst(ser_rec.dessin, sizeof ser_rec.dessin),
          veld_tekst(ser_rec.kenmerk, sizeof ser_rec.kenmerk));
  print_nl();
}

}  // namespace

void locaties_druk() {
  ICB* tabel = IXOPEN_LENGTE(bestand().c_str(), IX_EXCLUSIEF, sizeof(Locatie));
  const SerieVoortgang voortgang(bezig(T_MAG_AFDRUKKEN));
  int vorige = -1;
  Locatie rij{};
  while (IXNEXT(tabel, &rij) && !scr_interrupted()) {
    voortgang.toon(rij.nr);
    if (rij.filiaal != vorige || print_vol()) kop(rij.filiaal);
    vorige = rij.filiaal;
    druk_rij(rij);
  }
  IXCLOSE(tabel);
  IXREMOVE(bestand().c_str());
}

namespace {

/// A branch, or -1 for all; false when the operator left.
bool vraag_filiaal(int* filiaal) {
  constexpr int RIJ = 3;
  const char* label = txt(T_MAG_FILIAAL);
  const int kolom = static_cast<int>(strlen(label)) + 3;
  scr_print(A_LABEL, RIJ, 1, "%s", label);
  scr_print(A_LABEL, scr_ctx->lines - 1, 1, "%s", txt(T_MAG_ENTER_ALLE));
  uint8_t nummer = 0;
  key_allow(K_CANCEL);
  fil_field(RIJ, kolom, "IZP", &nummer);
  scr_clreol(scr_ctx->lines - 1, 1);
  if (weg_toets()) return false;
  *filiaal = (scr_ctx->ing_result & ING_LEEG) != 0 ? -1 : nummer;
  if (*filiaal < 0) scr_print(A_WAARDE, RIJ, kolom, "%s", txt(T_MAG_ALLE));
  return true;
}

}  // namespace

void mag_locaties() {
  hdr_line('C', "%s", txt(T_MENU_LOCATIES));
  int filiaal = -1;
  if (!vraag_filiaal(&filiaal)) return;
  const int aantal = locaties_vul(filiaal);
  if (aantal == 0) return msg_info(txt(T_MAG_GEEN_INFO));
  if (aantal < 0 || !XPRT_OPEN(PRT_SCHERM, PRT_132, nullptr)) return;
  locaties_druk();
  print_close("");
}

// One series --------------------------------------------------------------------------------------

namespace {

constexpr int RIJ_SERIE = 3, RIJ_MAGAZIJN = 6, RIJ_LOCATIE = 8, KOLOM = 14;

void toon_gegevens() {
  hdr_line('C', "%s", txt(T_MENU_LOCATIE_SERIE));
  lees_merk(dtmerk, &merk_rec, ser_rec.merk);
  scr_print(A_LABEL, RIJ_SERIE, 1, "%s", txt(T_SERIENUMMER));
  scr_print(A_WAARDE, RIJ_SERIE, KOLOM, "%s", serie_tekst(ser_rec.nr));
  scr_print(A_WAARDE, RIJ_SERIE + 1, KOLOM, "%-20.20s %-15.15s %-20.20s",
            veld_tekst(merk_rec.naam, sizeof merk_rec.naam),
            veld_tekst(ser_rec.model, sizeof ser_rec.model),
            veld_tekst(ser_rec.omschrijving, sizeof ser_rec.omschrijving));
}

/// Writes a new location into the series as it is now. The lock is only taken here: the operator
/// may have been away. False when somebody else has given it another location meanwhile.
bool schrijf_locatie(const Serienr& nr, const char* getoond, const char* nieuw) {
  if (!serie_wacht(nr)) return false;
  if (memcmp(ser_rec.locatie, getoond, sizeof ser_rec.locatie) != 0) {
    serie_los();
    return false;
  }
  memcpy(ser_rec.locatie, nieuw, sizeof ser_rec.locatie);
  serie_schrijf();
  return true;
}

void vraag_locatie(const Serienr& nr) {
  scr_print(A_LABEL, RIJ_MAGAZIJN, 1, "%s", txt(T_MAG_MAGAZIJN));
  scr_print(A_WAARDE, RIJ_MAGAZIJN, KOLOM, "%s%d", txt(T_MAG_FILIAAL_NR), art_rec.magazijn);
  scr_print(A_LABEL, RIJ_LOCATIE, 1, "%s", txt(T_MAG_LOCATIE));
  char getoond[sizeof ser_rec.locatie], nieuw[sizeof ser_rec.locatie];
  memcpy(getoond, ser_rec.locatie, sizeof getoond);
  memcpy(nieuw, getoond, sizeof nieuw);
  key_allow(K_CANCEL);
  const bool anders = INGAVE(RIJ_LOCATIE, KOLOM, "6c,U", &K_CANCEL, &nieuw[0]);
  if (weg_toets() || !anders) return;
  if (schrijf_locatie(nr, getoond, nieuw)) return;
  scr_print(A_WAARDE, RIJ_LOCATIE + 2, 1, "%s", txt(T_MAG_GEWIJZIGD));
  scr_enter(RIJ_LOCATIE + 4, 1);
}

}  // namespace

void serie_locatie() {
  for (Serienr nr{}; serie_vraag(SerieVraag::nummer, &nr);) {
    if (!lees_serie(dtser, &ser_rec, nr)) continue;
    toon_gegevens();
    const bool er = lees_artikel(dtart, &art_rec, nr.artgroep);
    if (er && art_rec.magazijn != GEEN_MAGAZIJN) {
      vraag_locatie(nr);
      continue;
    }
    scr_print(A_WAARDE, RIJ_MAGAZIJN, 1, "%s", txt(T_MAG_GEEN));
    scr_enter(RIJ_LOCATIE, 1);
  }
}
