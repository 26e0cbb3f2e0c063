// Showing one field, on its row of the screen or as a line of a report.
#include <cstring>

#include "isam/base.h"
#include "main/iotab.h"
#include "scr/scr.h"
#include "sub/leesstam.h"
#include "sub/pghdl.h"
#include "sub/sel_intern.h"
#include "sub/sel_merken.h"
#include "sub/tabellen.h"
#include "sub/zoek.h"

namespace {

constexpr int FILIAAL_BREEDTE = 50;

/// One end of a period at the default that its code names; short when only set fields are printed.
std::string fase(uint8_t code, char letter) {
  const char* frase = sel_frase(code);
  std::string datum = date_plain(sel_datum(code));
  switch (code) {
    case CODE_EERSTE:
      if (sel_wijze == SelWijze::gezet) return datum;
      if (sel_wijze == SelWijze::scherm && strchr("HMoqsW", letter) != nullptr) {
        return str_format("%s  (%s)", frase, datum);
      }
      return frase;
    case CODE_VANDAAG:
      return sel_wijze == SelWijze::gezet ? datum : str_format("%-7.7s (%s)", frase, datum);
    case CODE_GEEN:
      if (strchr("wxABK", letter) != nullptr) return str_format("%s (%s)", frase, datum);
      return frase;
    default:
      return frase;
  }
}

std::string haakjes(uint8_t code, uint8_t datum_code) {
  return str_format("%-7.7s (%s)", sel_frase(code), date_plain(sel_datum(datum_code)));
}

/// A field at its default.
SelRegel regel_default(char letter) {
  const uint8_t code = sel_stand(letter);
  if (code == CODE_VANDAAG_LAATSTE) {
    return {haakjes(CODE_VANDAAG, CODE_VANDAAG), sel_frase(CODE_LAATSTE), true};
  }
  if (code == CODE_EERSTE_VANDAAG) {
    const bool datum = letter == 'W' && !sel_creatie_tot_vandaag(sel_soort);
    return {haakjes(CODE_EERSTE, CODE_EERSTE),
            datum ? date_plain(sel_datum(CODE_EERSTE)) : sel_frase(CODE_VANDAAG), true};
  }
  if (letter == 'Y') return {txt(T_SEL_ALLE_SERIES), "", false};
  return {fase(code, letter), "", false};
}

SelRegel regel_merk() {
  if (merk_een) {
    static DtMerk merk{};
    if (dtmerk != nullptr)
      lees_merk(dtmerk, &merk, sel_rec.merk);
    else
      lees_merk(&merk, sel_rec.merk);
    return {str_format("%4u  %-4.4s %-.20s", sel_rec.merk, merk.zoeknaam, merk.naam), "", false};
  }
  if (sel_wijze != SelWijze::scherm) return {sel_frase(CODE_MEERDERE), "", false};
  // The comma follows the number in the field; the phrase says what the list holds.
  return {str_format("%4u, ...  %s", sel_rec.merk, sel_frase(CODE_MEERDERE)), "", false};
}

SelRegel regel_doelgroep() {
  std::string uit = doelgroep_naar_tekst(sel_rec.doelgroep);
  if (uit.size() < 3) uit += str_format("  %s", doelgroep_tekst(sel_rec.doelgroep[0]));
  return {uit, "", false};
}

SelRegel regel_jaar_tm() {
  static constexpr char SEIZOEN[] = {' ', 'K', 'Z', 'W'};
  const int code = sel_rec.jaar_tm % 10;
  char letters[3] = {code < 4 ? SEIZOEN[code] : ' ', 0, 0};
  if (letters[0] != ' ') seizoen_vertaal(letters, true);
  return {str_format("%04d %s", sel_rec.jaar_tm / 10, letters), "", false};
}

SelRegel regel_actie() {
  if (sel_rec.actie == 0) return {};
  Actie actie{};
  int32_t nummer = sel_rec.actie;
  iotab('R', &nummer, &actie, SYS_ACTIES);
  return {str_format("%2d  %-.27s", sel_rec.actie, actie.tekst), "", false};
}

SelRegel regel_kenmerk() {
  char naam[20] = {};
  int32_t nummer = sel_rec.kenmerk_nr;
  sys_sub20('R', &nummer, naam);
  return {str_format("%-7d %-2.2s %-.20s", sel_rec.kenmerk_nr, sel_rec.kenmerk_waarde, naam), "",
          false};
}

SelRegel regel_leverancier() {
  static DtLev lev{};
  if (dtlev != nullptr)
    lees_lev(dtlev, &lev, sel_rec.leverancier);
  else
    lees_lev(&lev, sel_rec.leverancier);
  return {str_format("%4u  %-.30s", sel_rec.leverancier, lev.naam), "", false};
}

SelRegel regel_verwijderen() {
  if (sel_rec.verwijderen == 0) return {txt(T_SEL_NEE), "", false};
  return {
      str_format("%s  %s", txt(T_SEL_JA),
                 txt(sel_rec.verwijder_soort == 3 ? T_SEL_PRICAT_ZONDER : T_SEL_ZONDER_ETIKETTEN)),
      "", false};
}

std::string aantal(int32_t waarde) {
  return waarde >= 99999 ? sel_frase(CODE_MAXIMUM) : str_format("%5ld", waarde);
}

SelRegel regel_datums(char letter) {
  SelPeriode p;
  if (!sel_periode(letter, &sel_rec, &p)) return {};
  const auto eind = [letter](uint16_t datum, uint8_t code) {
    return datum == 0 ? fase(code, letter) : std::string(date_plain(datum));
  };
  if (p.tm == nullptr) return {eind(*p.van, p.van_code), "", false};
  return {eind(*p.van, p.van_code), eind(*p.tm, p.tm_code), true};
}

/// A field that holds a value.
SelRegel regel_waarde(char letter) {
  switch (letter) {
    case 'a':
      return regel_merk();
    case 'b':
      return {str_format("%5ld", sel_rec.artgroep_van), "", false};
    case 'c':
      return {str_format("%5ld", sel_rec.artgroep_tm), "", false};
    case 'd':
      return {str_format("%3hu", sel_rec.kleur_van), "", false};
    case 'e':
      return {str_format("%3hu", sel_rec.kleur_tm), "", false};
    case 'f':
      return regel_doelgroep();
    case 'g': {
      char letters[3];
      memcpy(letters, sel_rec.seizoen, sizeof letters);
      seizoen_vertaal(letters, true);
      return {letters, "", false};
    }
    case 'h':
      return {txt(sel_rec.stdmod == 1 ? T_SEL_STANDAARD : T_SEL_MODISCH), "", false};
    case 'i':
      return {str_format("%04d", sel_rec.jaar_van / 10), "", false};
    case 'j':
      return regel_jaar_tm();
    case 'k':
      return regel_actie();
    case 'l':
      return {pg_show('F', sel_rec.filialen, FILIAAL_BREEDTE), "", false};
    case 'y':
      return {str_format("%5ld", sel_rec.voorraad_van), "", false};
    case 'z':
      return {str_format("%5ld", sel_rec.voorraad_tm), "", false};
    case 'C':
      return regel_verwijderen();
    case 'D':
      return regel_leverancier();
    case 'F':
      return {vlaggen_naar_tekst(sel_rec.inkoopcode), "", false};
    case 'G':
      return {vlaggen_naar_tekst(sel_rec.deelseizoen), "", false};
    case 'S':
      return {veld_tekst(sel_rec.model, sizeof sel_rec.model), "", false};
    case 'T':
      return regel_kenmerk();
    case 'U':
      return {str_format("%5ld", sel_rec.ontvangen_van), aantal(sel_rec.ontvangen_tm), true};
    case 'Y':
      return {txt(sel_rec.edi == 1 ? T_SEL_VIA_PRICAT : T_SEL_ALLE_SERIES), "", false};
    default:
      return regel_datums(letter);
  }
}

}  // namespace

SelRegel sel_regel(char letter) {
  return sel_gezet(letter) ? regel_waarde(letter) : regel_default(letter);
}

void sel_toon(char letter) {
  const int rij = sel_rij(letter);
  const Tekst* label = sel_label(letter);
  if (rij == 0 || label == nullptr || scr_ctx == nullptr) return;
  const SelRegel r = sel_regel(letter);
  scr_clreol(rij, 1);
  const int nummer = sel_nummer(letter);
  if (nummer > 0) scr_print(sel_actief ? A_BALK : A_WAARDE, rij, SEL_K_NUMMER, "%2d", nummer);
  scr_print(A_LABEL, rij, SEL_K_LABEL, "%s", txt(*label));
  scr_print(A_WAARDE, rij, SEL_K_EEN, "%s", r.een);
  if (r.tm) scr_print(A_LABEL, rij, SEL_K_TM, "%s", txt(T_SEL_TM));
  if (!r.twee.empty()) scr_print(A_WAARDE, rij, SEL_K_TWEE, "%s", r.twee);
}

void sel_toon_alles() {
  if (scr_ctx == nullptr) return;
  for (int rij = SEL_BASIS; rij < scr_ctx->lines; ++rij)
    scr_clreol(rij, 1);  // not the message line
  scr_print(A_MERK, SEL_BASIS, 1, "%s", sel_titel);
  if (sel_rec.sel_oms[0] != 0) {
    scr_print(A_WAARDE, SEL_BASIS, scr_ctx->cols - 33, "%2u  %-30.30s", sel_rec.sel_nr,
              sel_rec.sel_oms);
  }
  for (const char* p = sel_letters; *p != 0; ++p) sel_toon(*p);
}
