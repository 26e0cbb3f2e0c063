// Combinations that suit: read from the tables, matched against the mask, shown in a browser.
#include "prt/lijst.h"

#include <algorithm>
#include <new>
#include <string>

#include "isam/base.h"
#include "isam/ix.h"
#include "prt/prt.h"
#include "prt/teksten.h"
#include "scr/scr.h"

bool prt_annuleren_mag = true;

namespace {

struct Tabel {
  ICB* icb;
  Tabel(const char* naam, int lengte) : icb(IXOPEN_LENGTE(prt_path(naam), IX_LEES, lengte)) {}
  ~Tabel() { IXCLOSE(icb); }
  Tabel(const Tabel&) = delete;
  Tabel& operator=(const Tabel&) = delete;
};

void configuraties(ICB* tabel, int widths, const PrtKeuze& basis, std::vector<PrtKeuze>& lijst) {
  PrtKeuze keuze = basis;
  PtrpRec& rec = keuze.configuratie;
  rec = PtrpRec{};
  rec.tr_code = basis.printer.tr_code;
  for (bool er = IXFIRSTR(tabel, &rec, 1); er; er = IXNEXT(tabel, &rec, 1)) {
    if (prt_past(widths, rec.columns, rec.rows)) lijst.push_back(keuze);
  }
}

void verbindingen(ICB* tabel, ICB* config, int widths, const PrtKeuze& basis,
                  std::vector<PrtKeuze>& lijst) {
  PrtKeuze keuze = basis;
  PtrcRec& rec = keuze.verbinding;
  rec = PtrcRec{};
  rec.tr_code = basis.printer.tr_code;
  for (bool er = IXFIRSTR(tabel, &rec, 1); er; er = IXNEXT(tabel, &rec, 1)) {
    configuraties(config, widths, keuze, lijst);
  }
}

bool verbinding_lees(ICB* tabel, uint16_t printer, uint8_t nummer, PtrcRec& rec) {
  rec = PtrcRec{};
  rec.tr_code = printer;
  rec.id = nummer;
  if (nummer != 0) return IXREAD(tabel, &rec);
  if (!IXFIRSTR(tabel, &rec, 1)) return false;
  PtrcRec tweede = rec;
  return !IXNEXT(tabel, &tweede, 1);
}

[[noreturn]] void lijst_geheugen() { scr_abort(txt(T_PRT_LIJST_GEHEUGEN), txt(T_PRT_GEHEUGEN)); }

// Browser over the list: `current` is the index.
const std::vector<PrtKeuze>& lijst_van(const BrwRec* b) {
  return *static_cast<const std::vector<PrtKeuze>*>(b->data);
}

bool lijst_stap(BrwRec* b, int n) {
  const int64_t aantal = static_cast<int64_t>(lijst_van(b).size());
  if (b->current == UINT32_MAX) b->current = 0;
  const int64_t doel = static_cast<int64_t>(b->current) + n;
  if (aantal == 0) return false;
  b->current = static_cast<uint32_t>(std::clamp<int64_t>(doel, 0, aantal - 1));
  return doel >= 0 && doel < aantal;
}

std::string printer_naam(const PrtKeuze& k) {
  return veld_tekst(k.printer.name, sizeof k.printer.name);
}

void lijst_zoek(BrwRec* b) {
  char naam[13] = "";
  const int rij = brw_search_row();
  scr_clreol(rij, 1);
  const int breed = scr_print(A_LABEL, rij, 2, "%s ", txt(T_PRT_KOP_PRINTER));
  INGAVE(rij, 2 + breed, "12s,I", naam);
  if (scr_ctx->last_key == K_F3) {
    scr_ctx->last_key = TOETS_ENTER;
    scr_ctx->ing_result |= ING_LEEG;
  }
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  str_upper(naam);
  const std::vector<PrtKeuze>& lijst = lijst_van(b);
  for (size_t i = 0; i < lijst.size(); ++i) {
    std::string gevonden = printer_naam(lijst[i]);
    if (std::string(str_upper(gevonden.data())).starts_with(naam)) {
      b->current = static_cast<uint32_t>(i);
      return;
    }
  }
}

void lijst_kop(BrwRec*) {
  scr_print(A_LABEL, 1, 2, "%s", txt(T_PRT_KOP_PRINTER));
  scr_print(A_LABEL, 1, 15, "%s", txt(T_PRT_KOP_DEVICE));
  scr_print(A_LABEL, 1, 36, "%s", txt(T_PRT_KOP_CONFIG));
  scr_print(A_LABEL, 1, 66, "%s", txt(T_PRT_KOP_MATEN));
}

const char* lijst_regel(BrwRec* b) {
  const std::vector<PrtKeuze>& lijst = lijst_van(b);
  if (b->current >= lijst.size()) return "";
  const PrtKeuze& k = lijst[b->current];
  str_printf(scr_klad, sizeof scr_klad, "%-12.12s %-20.20s %-29.29s %3hd %4hd %-1.1s %1s",
             printer_naam(k), veld_tekst(k.verbinding.name, sizeof k.verbinding.name),
             veld_tekst(k.configuratie.desc, sizeof k.configuratie.desc), k.configuratie.columns,
             k.configuratie.rows, k.configuratie.portrait != 0 ? "P" : "L",
             k.verbinding.to_dir != 0 ? "J" : "N");
  return scr_klad;
}

int kies_een(std::vector<PrtKeuze>& lijst) {
  BrwRec* b = brw_new(lijst_stap, lijst_zoek, lijst_kop, lijst_regel);
  if (b == nullptr) lijst_geheugen();
  b->no_cursor = 1;
  b->title = str_format(" %s ", txt(T_PRT_BESTEMMING));
  b->data = &lijst;
  const bool gekozen = brw_run(b, 0) != 0 && b->current < lijst.size();
  const int index = gekozen ? static_cast<int>(b->current) : -1;
  brw_free(b);
  return index;
}

}  // namespace

bool prt_past(int widths, int columns, int rows) noexcept {
  const bool alles = widths == PRT_ALLES;
  const bool kolommen = (columns == 40 && (widths & PRT_40) != 0) ||
                        (columns == 80 && (widths & PRT_80) != 0) ||
                        (columns == 132 && (widths & PRT_132) != 0);
  if (alles || !kolommen) return alles;
  if (rows == 0 || rows == PTR_EINDELOOS) return true;
  if ((widths & (PRT_LANG | PRT_KORT)) == 0) widths |= PRT_KORT;
  return (widths & (rows > 66 ? PRT_LANG : PRT_KORT)) != 0;
}

std::vector<PrtKeuze> prt_lijst_alles(int widths) {
  std::vector<PrtKeuze> lijst;
  Tabel printers(TR_PTRG, sizeof(PtrgRec)), verbinding(TR_PTRC, sizeof(PtrcRec)),
      config(TR_PTRP, sizeof(PtrpRec));
  PrtKeuze keuze{};
  try {
    for (bool er = IXFIRSTR(printers.icb, &keuze.printer); er;
         er = IXNEXT(printers.icb, &keuze.printer)) {
      verbindingen(verbinding.icb, config.icb, widths, keuze, lijst);
    }
  } catch (const std::bad_alloc&) {
    lijst_geheugen();
  }
  return lijst;
}

bool prt_lijst_printer(uint16_t printer, uint8_t verbinding, int widths, PrtKeuze* basis,
                       std::vector<PrtKeuze>* lijst) {
  Tabel printers(TR_PTRG, sizeof(PtrgRec)), connecties(TR_PTRC, sizeof(PtrcRec)),
      config(TR_PTRP, sizeof(PtrpRec));
  *basis = PrtKeuze{};
  basis->printer.tr_code = printer;
  if (!IXREAD(printers.icb, &basis->printer)) return false;
  if (!verbinding_lees(connecties.icb, printer, verbinding, basis->verbinding)) return false;
  configuraties(config.icb, widths, *basis, *lijst);
  return true;
}

int prt_lijst_kies(std::vector<PrtKeuze>& lijst) {
  if (lijst.empty()) return -1;
  if (lijst.size() == 1) return 0;
  if (scr_ctx == nullptr) return -1;
  const IngBewaar bewaar;
  for (;;) {
    const int index = kies_een(lijst);
    if (index >= 0) return index;
    if (prt_annuleren_mag && weg_toets()) return -1;
    msg_fout(txt(T_PRT_KIES));
  }
}
