// Numbers: ranges of article groups, colours and quantities, action and supplier.
#include <algorithm>

#include "main/iotab.h"
#include "scr/scr.h"
#include "sub/records.h"
#include "sub/sel_intern.h"
#include "sub/zoek.h"

namespace {

constexpr int32_t AANTAL_ALLE = 99999;

/// What article groups and colours share: a start and an end field, each with a list under F5.
struct Nummerveld {
  char van, tm;
  const char* formaat;
  int32_t hoogste;
  uint32_t (*kies)(uint32_t vanaf);
  const Tekst* fout;
};

uint32_t kies_artgroep(uint32_t vanaf) { return artikel_pick(vanaf); }
uint32_t kies_kleur(uint32_t vanaf) { return kleur_pick(static_cast<uint16_t>(vanaf)); }

constexpr Nummerveld ARTGROEP{'b', 'c', "5l,P", 99999, kies_artgroep, &T_SEL_FOUT_ARTGROEP};
constexpr Nummerveld KLEUR{'d', 'e', "3d,P", 999, kies_kleur, &T_SEL_FOUT_KLEUR};

/// The letter picks the size of the variable, and the field engine writes just that.
void voer_nummer(int rij, const Nummerveld& v, int32_t* nummer, int32_t laagste) {
  scr_ctx->ing->min = laagste;
  scr_ctx->ing->max = v.hoogste;
  if (v.hoogste > INT16_MAX) {
    INGAVE(rij, SEL_K_EEN, v.formaat, &K_CANCEL, &K_F5, nummer);
    return;
  }
  auto kort = static_cast<int16_t>(*nummer);
  INGAVE(rij, SEL_K_EEN, v.formaat, &K_CANCEL, &K_F5, &kort);
  *nummer = kort;
}

/// False when the operator left; else *nummer is 0 or within its limits.
bool vraag_nummer(int rij, const Nummerveld& v, int32_t* nummer, int32_t laagste, int32_t lijst) {
  laagste = std::clamp(laagste, 1, v.hoogste);
  *nummer = std::clamp(*nummer, 0, v.hoogste);
  for (;;) {
    voer_nummer(rij, v, nummer, laagste);
    if (weg_toets()) return false;
    if (scr_ctx->last_key != K_F5) return true;
    const auto gekozen = static_cast<int32_t>(
        v.kies(static_cast<uint32_t>(*nummer != 0 && *nummer >= lijst ? *nummer : lijst)));
    if (gekozen == 0) continue;
    if (gekozen >= laagste && gekozen <= v.hoogste) {
      *nummer = gekozen;
      return true;
    }
    scr_error("<%d> %s", gekozen, txt(*v.fout));
  }
}

/// Works on copies of the pair; both stay when the operator leaves.
bool ingave_nummer(char letter, int rij, const Nummerveld& v, int32_t* van, int32_t* tm) {
  const bool start = letter == v.van;
  int32_t nummer = !sel_gezet(letter) ? 0 : start ? *van : *tm;
  const int32_t begin = sel_gezet(v.van) ? *van : 0;
  if (!vraag_nummer(rij, v, &nummer, start ? 1 : begin, start ? 0 : begin)) return false;
  *(start ? van : tm) = nummer;
  sel_zet(letter, nummer != 0);
  if (!start || nummer == 0 || !sel_gezet(v.tm) || nummer <= *tm) return true;
  sel_toon(letter);
  scr_error("%s", txt(*v.fout));
  return true;
}

/// A highest quantity: empty means no limit. False when the operator left.
bool vraag_hoogste(int rij, int kolom, int32_t laagste, int32_t* aantal) {
  int32_t n = std::clamp(*aantal, 0, AANTAL_ALLE);
  const bool geen_limiet = n == AANTAL_ALLE;
  scr_ctx->ing->min = std::clamp(laagste, 0, AANTAL_ALLE);
  scr_ctx->ing->max = AANTAL_ALLE;
  INGAVE(rij, kolom, geen_limiet ? "5l,IPZ" : "5l,PZ", &K_CANCEL, &n);
  if (weg_toets()) return false;
  *aantal = (scr_ctx->ing_result & ING_LEEG) != 0 ? AANTAL_ALLE : n;
  return true;
}

}  // namespace

bool ingave_artgroep(char letter, int rij) {
  auto van = static_cast<int32_t>(std::min<uint32_t>(sel_rec.artgroep_van, 100000));
  auto tm = static_cast<int32_t>(std::min<uint32_t>(sel_rec.artgroep_tm, 100000));
  if (!ingave_nummer(letter, rij, ARTGROEP, &van, &tm)) return false;
  sel_rec.artgroep_van = static_cast<uint32_t>(van);
  sel_rec.artgroep_tm = static_cast<uint32_t>(tm);
  return letter != 'b' || !sel_gezet('b') || !sel_gezet('c') || van <= tm || sel_voer_in('c');
}

bool ingave_kleur(char letter, int rij) {
  int32_t van = sel_rec.kleur_van, tm = sel_rec.kleur_tm;
  if (!ingave_nummer(letter, rij, KLEUR, &van, &tm)) return false;
  sel_rec.kleur_van = static_cast<uint16_t>(van);
  sel_rec.kleur_tm = static_cast<uint16_t>(tm);
  return letter != 'd' || !sel_gezet('d') || !sel_gezet('e') || van <= tm || sel_voer_in('e');
}

bool ingave_voorraad(char letter, int rij) {
  if (letter == 'y') {
    int32_t n = sel_gezet('y') ? std::clamp(sel_rec.voorraad_van, 0, AANTAL_ALLE) : 0;
    INGAVE(rij, SEL_K_EEN, "5l,ZP", &K_CANCEL, &n);
    if (weg_toets()) return false;
    sel_rec.voorraad_van = n;
    sel_zet('y', n != 0);
    return true;
  }
  int32_t n = sel_gezet('z') ? sel_rec.voorraad_tm : AANTAL_ALLE;
  if (!vraag_hoogste(rij, SEL_K_EEN, sel_gezet('y') ? sel_rec.voorraad_van : 0, &n)) return false;
  sel_rec.voorraad_tm = n;
  sel_zet('z', n != AANTAL_ALLE);
  return true;
}

bool ingave_ontvangen(char letter, int rij) {
  int32_t van = sel_gezet(letter) ? std::clamp(sel_rec.ontvangen_van, 0, AANTAL_ALLE) : 0;
  int32_t tm = sel_gezet(letter) ? sel_rec.ontvangen_tm : AANTAL_ALLE;
  scr_print(A_LABEL, rij, SEL_K_TM, "%s", txt(T_SEL_TM));
  INGAVE(rij, SEL_K_EEN, "5l,ZP", &K_CANCEL, &van);
  if (weg_toets() || !vraag_hoogste(rij, SEL_K_TWEE, van, &tm)) return false;
  sel_rec.ontvangen_van = van;
  sel_rec.ontvangen_tm = tm;
  sel_zet(letter, van != 0 || tm != AANTAL_ALLE);
  return true;
}

bool ingave_actie_nr(char, int rij) {
  uint8_t nummer = sel_rec.actie <= 99 ? sel_rec.actie : uint8_t{0};
  for (;;) {
    INGAVE(rij, SEL_K_EEN, "2U,EP", &K_CANCEL, &K_F5, &nummer);
    if (weg_toets()) return false;
    if (scr_ctx->last_key == K_F5) {
      const int gekozen = actie_pick(nummer);
      if (gekozen < 1 || gekozen > 99) continue;
      nummer = static_cast<uint8_t>(gekozen);
    }
    Actie actie{};
    int32_t n = nummer;
    if (iotab('R', &n, &actie, SYS_ACTIES)) break;
    scr_error("<%d> %s", nummer, txt(T_SEL_FOUT_ACTIE));
  }
  sel_rec.actie = nummer;
  return true;
}

bool ingave_leverancier(char letter, int rij) {
  uint16_t nummer =
      sel_gezet(letter) && sel_rec.leverancier <= 9999 ? sel_rec.leverancier : uint16_t{0};
  INGAVE(rij, SEL_K_EEN, "4u", &K_CANCEL, &nummer);
  if (weg_toets()) return false;
  sel_rec.leverancier = nummer;
  sel_zet(letter, nummer != 0);
  return true;
}
