// The definitions of all tables, the open handles and record buffers of a run, the work arrays and
// the names of a terminal's private files.
#include "sub/tabellen.h"

#include <algorithm>

#include "isam/formaat.h"
#include "sub/tabeldef.h"

namespace {

constexpr TabelDef TABELLEN[] = {
    {"DTAANV", "Aanvulinformatie", sizeof(DtAanv), {"key1,NODUPS,I,1,4,I,5,6,I,7,8,I,9,12"}},
    {"DTART",
     "Artikelgroepen",
     sizeof(DtArt),
     {"artg,NODUPS,I,1,4", "oms,C,5,24", "omzg,NODUPS,I,25,26,I,1,4"}},
    {"DTDOELGR", "Doelgroepen", sizeof(DtDoelgr), {"dgr,NODUPS,I,1,1"}},
    {"DTEAN",
     "EAN-codes",
     sizeof(DtEan),
     {"ean,NODUPS,C,1,13", "sermaat,C,14,14,I,17,20,I,15,16,I,21,22,I,23,23"}},
    {"DTFIN",
     "Fin. mutaties",
     sizeof(DtFin),
     {"key1,NODUPS,I,6,6,I,2,2,I,7,8,I,17,20,I,21,24", "key2,NODUPS,I,17,20,I,7,8,I,21,24"}},
    {"DTGO",
     "Goederen onderweg",
     sizeof(DtGo),
     {"key1,NODUPS,I,5,8", "key2,NODUPS,I,1,1,I,2,2,I,5,8",
      "key3,NODUPS,I,9,12,I,13,14,I,15,16,I,5,8"}},
    {"DTHMNU", "Menu", sizeof(DtHmnu), {"key1,NODUPS,I,46,46,I,1,2"}},
    {"DTIO", "Ontvangsten", sizeof(DtIo), {"key1,NODUPS,I,1,1,I,3,4,I,5,8"}},
    {"DTIPA",
     "Prijssets",
     sizeof(DtIpa),
     {"key-1,NODUPS,I,1,4,I,5,6,I,7,8,I,9,10,I,11,12",
      "key-2,NODUPS,I,11,12,I,1,4,I,5,6,I,7,8,I,9,10",
      "key-3,NODUPS,I,1,4,I,5,6,I,7,8,I,11,12,I,9,10",
      "key-4,NODUPS,I,1,4,I,5,6,I,7,8,I,9,10,I,11,12"}},
    {"DTKLT", "Klanten", sizeof(DtKlt), {"klant,NODUPS,I,1,4", "naam,C,5,34"}},
    {"DTKOERS", "Koersen", sizeof(DtKoers), {"koers,NODUPS,C,1,3,I,5,6"}},
    {"DTLEV", "Leveranciers", sizeof(DtLev), {"lvnr,NODUPS,I,1,2", "lvnaam,C,3,32"}},
    {"DTMAAT", "Maatsoorten", sizeof(DtMaat), {"maat,NODUPS,I,1,1,I,2,2"}},
    {"DTMERK",
     "Merken",
     sizeof(DtMerk),
     {"merknr,NODUPS,I,1,2", "mkzn,C,23,26", "merknaam,C,3,12"}},
    {"DTMTOM", "Maat omschrijving", sizeof(DtMtom), {"maatoms,NODUPS,I,1,1,I,2,2,I,3,3"}},
    {"DTPICK",
     "Verzamelopdrachten",
     sizeof(DtPick),
     {"key1,NODUPS,I,2,2,I,5,8,I,9,10,I,11,12,I,3,3,I,13,16",
      "key2,NODUPS,I,5,8,I,9,10,I,11,12,I,2,2,I,3,3,I,13,16",
      "key3,NODUPS,I,2,2,I,3,3,I,13,16,I,5,8,I,9,10,I,11,12"}},
    {"DTREL", "Relaties", sizeof(DtRel), {"key1,NODUPS,I,1,2,I,3,4,I,5,5"}},
    {"DTSER",
     "Series",
     sizeof(DtSer),
     {"key-1,NODUPS,I,1,4,I,5,6,I,7,8", "key-2,NODUPS,I,9,10,I,1,4,C,20,34,I,5,6,I,7,8",
      "key-3,NODUPS,I,1,4,I,16,16,I,5,6,I,7,8"}},
};

}  // namespace

const TabelDef TABEL_TPCK{"tpck", "tpck", 8, {"key1,NODUPS,I,1,1,I,2,2,I,3,3"}};
const TabelDef TABEL_TMPGO{"tmpgo", "tmpgo", sizeof(DtPick), {"opdrnr,NODUPS,I,13,16,I,2,2,I,3,3"}};
const TabelDef TABEL_TMP_BROWSE{"tmp_browse",
                                "tmp_browse",
                                20,
                                {"key1,NODUPS,I,1,4,I,5,5,I,6,6", "key2,NODUPS,I,5,5,I,6,6,I,1,4",
                                 "key3,NODUPS,I,7,8,I,1,4,I,5,5,I,6,6"}};

std::span<const TabelDef> tabel_alle() noexcept { return TABELLEN; }

const TabelDef* tabel_zoek(std::string_view naam) noexcept {
  const auto* t = std::ranges::find_if(TABELLEN, [&](const TabelDef& d) { return naam == d.name; });
  return t == std::end(TABELLEN) ? nullptr : t;
}

bool tabel_maak(const TabelDef& def, const char* naam) {
  if (!IXREMOVE(naam)) return false;
  ICB* icb = IXCREATE(naam, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("%s,%d", def.omschrijving, def.lengte).c_str());
  int sleutel = 0;
  for (const char* definitie : def.sleutels) {
    if (definitie != nullptr) IXUPDFCB(icb, ++sleutel, definitie);
  }
  const bool goed = IXINITIX(icb);
  IXCLOSE(icb);
  return goed;
}

// The run's own -----------------------------------------------------------------------------------

ICB *dtart, *dtean, *dtgo, *dtfin, *dtio, *dtlev, *dtkoers;
ICB *dtmaat, *dtmerk, *dtmtom, *dtpick, *dtser, *dtaanv;
ICB *dtser_a, *dtser_o;
ICB* dtser_opzoek;
ICB *tpck, *tmpgo;

DtSer ser_rec;
DtArt art_rec;
DtMerk merk_rec;
DtLev lev_rec;
DtPick pick_rec;
DtGo go_rec;
DtFin fin_rec;
DtIo io_rec;
DtAanv aanv_rec;
DtKoers koers_rec;
SysRec20 sys_rec20;

MaatMatrix werk1, werk2, werk3, werk4, werk8, werk9, werk10, werk11, werk16, werk17;
std::vector<Vijfrij> werk5;
std::array<Maatrij, 4> prijswerk;

AdvRec adv_rec;
std::array<AdvRec, 7> adv_sets;

PrivateNamen privaat;

void privaat_maak(int terminal) {
  const auto zet = [terminal](char(&naam)[16], const char* formaat) {
    str_printf(naam, sizeof naam, formaat, terminal);
  };
  zet(privaat.v, "DTSER.V%02ld");
  zet(privaat.o, "DTSER.O%02ld");
  zet(privaat.a, "DTSER.A%02ld");
  zet(privaat.r, "DTSER.R%02ld");
  zet(privaat.s, "DTSER.S%02ld");
  zet(privaat.merk, "DTMERK.%02ld");
  zet(privaat.tp, "TP%02ld");
  zet(privaat.tpck, "TP%02ldP");
  zet(privaat.tmpgo, "TP%02ldG");
  zet(privaat.browse, "TP%02ldB");
  zet(privaat.tpdtse, "TPDTSE%02ld");
  zet(privaat.advset, "DTSELVRD.%03ld");
}

namespace {

/// A series number may stand at an odd address in a record, where no reference may point.
std::string serie_vorm(const char* formaat, const Serienr& nr) {
  const uint32_t artgroep = nr.artgroep;
  const uint16_t kleur = nr.kleur, volgnr = nr.volgnr;
  return str_format(formaat, artgroep, kleur, volgnr);
}

}  // namespace

ICB* tabel_open(const char* naam, int mode) {
  const std::string_view tabel = std::string_view(naam).substr(0, std::string_view(naam).find('.'));
  const TabelDef* def = tabel_zoek(tabel);
  return def == nullptr ? IXOPEN(naam, mode) : IXOPEN_LENGTE(naam, mode, def->lengte);
}

std::string serie_sleutel(const Serienr& nr) { return serie_vorm("%05ld%03hu%04hu", nr); }

std::string serie_tekst(const Serienr& nr) { return serie_vorm("%ld.%hu.%hu", nr); }

namespace {

/// Sums of quantities wrap like the records' own 32 bits; a broken file must not stop the report.
int32_t plus(int32_t a, uint32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + b); }

}  // namespace

void matrix_wis(MaatMatrix& m) {
  for (Maatrij& rij : m) rij.fill(0);
}

void matrix_add(MaatMatrix& m, int filiaal, std::span<const uint32_t, MATEN> rij) {
  if (filiaal < 0 || static_cast<size_t>(filiaal) + 1 >= m.size()) return;
  Maatrij& eigen = m[static_cast<size_t>(filiaal)];
  Maatrij& totaal = m.back();
  uint32_t som = 0;
  for (size_t i = 1; i < rij.size(); ++i) {
    eigen[i] = static_cast<int32_t>(rij[i]);
    totaal[i] = plus(totaal[i], rij[i]);
    som += rij[i];
  }
  eigen[0] = static_cast<int32_t>(som);
  totaal[0] = plus(totaal[0], som);
}
