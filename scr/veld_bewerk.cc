// INGAVE: one field from its format to the written variable. Escape always leaves without a change;
// the other exit keys do so at the first position, and keep what was typed elsewhere.
#include <cstring>
#include <ctime>

#include "isam/base.h"
#include "scr/veld_intern.h"

namespace {

const Tekst& fout_tekst(VeldFout fout) {
  switch (fout) {
    case VeldFout::lengte:
      return T_FMT_LENGTE;
    case VeldFout::precisie:
      return T_FMT_PRECISIE;
    case VeldFout::haak:
      return T_FMT_HAAK;
    case VeldFout::bereik:
      return T_FMT_BEREIK;
    case VeldFout::tekst:
      return T_FMT_STRING;
    default:
      return T_FMT_VARTYPE;
  }
}

void eis(VeldFout fout, const char* formaat) {
  if (fout == VeldFout::geen) return;
  scr_abort(txt(T_FMT_MELDING), scr_ctx->veld.row, scr_ctx->veld.col, formaat,
            txt(fout_tekst(fout)));
}

// Preparing ---------------------------------------------------------------------------------------

/// The arguments behind the format: keys lie inside scr_ctx, the first one outside is the variable.
void neem_argumenten(std::span<const IngArg> args) {
  const auto begin = reinterpret_cast<uintptr_t>(scr_ctx);
  veld_werk.variabele = {};
  for (const IngArg& arg : args) {
    const auto adres = reinterpret_cast<uintptr_t>(arg.adres);
    if (adres < begin || adres >= begin + sizeof(ScrCtx)) {
      veld_werk.variabele = arg;
      return;
    }
    if (arg.soort != 'i' || arg.breedte != sizeof(int32_t)) continue;
    int32_t toets;
    memcpy(&toets, arg.adres, sizeof toets);
    key_allow(toets);
  }
}

void neem_formaat(int row, int col, const char* fmt) {
  IngVeld& v = scr_ctx->veld;
  v = IngVeld{};
  v.row = row;
  v.col = col;
  VeldFormaat& f = veld_werk.formaat;
  eis(veld_ontleed(fmt, scr_ctx->money_decimals, f), fmt);
  v.length = f.lengte;
  v.precision = f.precisie;
  v.letter = f.letter;
  memcpy(v.opties, f.opties, sizeof v.opties);
  v.numeriek = f.numeriek();
  v.verborgen = f.optie('S');
  v.scrollt = f.scrollt();
  v.zichtbaar = f.scrollt() ? f.precisie : 0;
}

void sta_toetsen_toe() {
  const VeldFormaat& f = veld_werk.formaat;
  key_allow(TOETS_EXIT);
  key_allow(TOETS_HOME);
  if (f.lengte > 1) {
    for (const int toets : {TOETS_RIGHT, TOETS_LEFT, TOETS_INS, TOETS_DEL, TOETS_BACK}) {
      key_allow(toets);
    }
  }
  if (f.optie('E') || f.optie('F')) {
    key_validate_on(K_UP);
    key_validate_on(K_DOWN);
  }
}

void bereid_voor(int row, int col, const char* fmt, std::span<const IngArg> args) {
  veld_werk = VeldWerk{};
  neem_formaat(row, col, fmt);
  const VeldFormaat& f = veld_werk.formaat;
  IngRec& ing = *scr_ctx->ing;
  veld_tekens(f, txt(T_JA)[0], txt(T_NEE)[0], ing.allowed);
  neem_argumenten(args);
  scr_ctx->veld.variabele = veld_werk.variabele.adres;
  if (veld_werk.variabele.adres == nullptr) eis(VeldFout::vartype, fmt);
  if (f.numeriek() || f.letter == 'D') {
    const bool goed = veld_bereik(f, veld_grenzen(f, scr_ctx->money_decimals), ing.min, ing.max);
    if (!goed) eis(VeldFout::bereik, fmt);
    if (f.numeriek() && ing.min < 0.0) key_allow('-');
  }
  eis(veld_lees(), fmt);
  sta_toetsen_toe();
}

// The loop ----------------------------------------------------------------------------------------

void begin_bewerking() {
  const VeldFormaat& f = veld_werk.formaat;
  // A text of one place may be a blank.
  if (!((f.letter == 'c' || f.letter == 'C') && f.lengte == 1)) str_rtrim(veld_werk.tekst);
  veld_zet_tekst(veld_inhoud());
  scr_busy_off();
  memcpy(veld_werk.oud_tekst, veld_werk.tekst, sizeof veld_werk.oud_tekst);
  veld_werk.oud_waarde = veld_werk.waarde;
  scr_ctx->insert_mode = 0;
  scr_ctx->ing_result = ING_VERVANG;
  veld_werk.bezig = true;
}

int volgende_toets() {
  int toets = TOETS_ENTER;
  if (veld_werk.enter_gepland) {
    veld_werk.enter_gepland = false;
    scr_flush(0);
  } else {
    toets = veld_lees_toets();
  }
  scr_error("");
  scr_ctx->ing_result &= ~ING_FOUT;
  return toets;
}

bool vraagt_hulp(int toets) {
  if (key_allowed(K_HELP)) return false;
  return toets == K_F1 || (toets == K_HELP && veld_werk.cursor == 0);
}

/// The old content again, as if the field had not been entered.
void verlaat() {
  veld_herstel();
  const VeldFormaat& f = veld_werk.formaat;
  if (f.letter == 'b' && veld_inhoud().empty()) veld_zet_tekst({txt(T_NEE), 1});
  if (f.sjabloon()) veld_zet_tekst(datum_zonder_streep(veld_inhoud()));
  scr_ctx->ing_result = 0;
}

/// A key that nobody here knows by number goes on as the first byte that the terminal sends for it.
int als_byte(int toets) {
  const bool eigen = toets == TOETS_CANCEL || toets == TOETS_EXIT || toets == TOETS_HELP;
  return eigen ? toets_eerste_byte(toets) : toets;
}

void na_weigering() {
  veld_werk.cursor = 0;
  veld_werk.schuif = 0;
  veld_werk.enter_gepland = false;
  scr_ctx->ing_result = ING_VERVANG | ING_FOUT;
}

enum class Stap : uint8_t { verder, klaar };

Stap verwerk(int toets) {
  bool enter = toets == TOETS_ENTER;
  if (key_allowed(toets) && (veld_werk.cursor == 0 || toets == TOETS_ESC)) {
    if (toets == TOETS_EXIT) scr_abort("%s", txt(T_EXIT_GEBRUIKT));
    if (key_validates(toets)) {
      enter = true;
    } else if (key_is_exit(toets)) {
      scr_ctx->last_key = toets;
      verlaat();
      return Stap::klaar;
    }
  }
  if (!enter) {
    toets = als_byte(toets);
    const bool tekst =
        std::string_view("cCsS").find(veld_werk.formaat.letter) != std::string_view::npos;
    if (toets == TOETS_F11 && tekst) toets = veld_samenstel();
    enter = toets == TOETS_ENTER ||
            (key_is_exit(toets) && (veld_werk.cursor != 0 || key_validates(toets)));
  }
  if (!enter) {
    veld_toets(toets);
    return Stap::verder;
  }
  scr_ctx->last_key = toets;
  if (veld_controle()) return Stap::klaar;
  na_weigering();
  return Stap::verder;
}

void bewerk() {
  for (;;) {
    veld_teken();
    const int toets = volgende_toets();
    if (vraagt_hulp(toets)) {
      veld_hulpscherm();
    } else if (verwerk(toets) == Stap::klaar) {
      return;
    }
  }
}

// The end -----------------------------------------------------------------------------------------

void rond_af() {
  const VeldFormaat& f = veld_werk.formaat;
  std::string tekst(veld_inhoud());
  if (tekst.empty()) scr_ctx->ing_result |= ING_LEEG;
  const auto lengte = static_cast<size_t>(f.lengte);
  if (f.optie('J') && !tekst.empty() && tekst.size() < lengte) {
    veld_zet_tekst(tekst.insert(0, lengte - tekst.size(), ' '));
  }
  veld_schrijf();
  veld_teken_klaar();
  veld_werk.bezig = false;
  scr_ctx->last_refresh = time(nullptr);
  ing_leeg();
  scr_ctx->veld.scrollt = false;
  scr_ctx->veld.zichtbaar = 0;
  scr_busy_on();
}

}  // namespace

bool ingave_kern(int row, int col, const char* fmt, std::span<const IngArg> args) {
  bereid_voor(row, col, fmt, args);
  begin_bewerking();
  bewerk();
  rond_af();
  return (scr_ctx->ing_result & ING_ANDERS) != 0;
}
