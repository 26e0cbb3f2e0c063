// The table of the lists per label: its keys, its rows, and the rows of a search list.
#include <cstring>
#include <string>

#include "isam/formaat.h"
#include "isam/ix.h"
#include "main/zoeklijst.h"
#include "sub/ioeti.h"
#include "sub/iomaat.h"
#include "sub/leesstam.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

struct Sortveld {
  char letter;
  const char* sleutel;  // its part of the key
};
constexpr Sortveld VELDEN[] = {{'A', ",I,21,24"}, {'K', ",I,25,26"}, {'V', ",I,27,28"},
                               {'R', ",C,29,32"}, {'M', ",C,3,17"},  {'L', ",C,45,50"}};
constexpr const char *RANG_ETIKET = ",I,51,51,I,33,36", *ZENDDATUM = ",I,55,56";

constexpr int KEY_PAREN = 2;  // DTGO by branch pair and label

const char* naam(ZoekTabel soort) {
  switch (soort) {
    case ZoekTabel::zoek:
      return "temp_zoek";
    case ZoekTabel::annul:
      return "temp_annul";
    default:
      return "temp_nontv";
  }
}

bool hoort_op_lijst(const DtGo& go, uint32_t opdrachtnr) {
  return go.verzamel != 0 && go.afgewerkt == 0 && go.opdrachtnr == opdrachtnr;
}
/// On its way still, or at its destination already when nothing travels in the books.
bool nog_gezonden(const DtGo& go, const Etiket& e) {
  if (!(e.nr == go.nr)) return false;
  if (e.onderweg != 0) return e.filiaal == go.vanfil && e.doel == go.naarfil;
  return e.status == ETI_VOORRAAD && e.filiaal == go.naarfil;
}

}  // namespace

ZoekSerie::~ZoekSerie() { mtlos(&maten); }

bool ZoekSerie::lees(const Serienr& nummer) {
  if (gelezen && nr == nummer) return er;
  nr = nummer;
  gelezen = true;
  er = lees_serie(opzoek, &ser_rec, nr);
  if (!er) return false;
  if (!lees_merk(dtmerk, &merk_rec, ser_rec.merk)) merk_rec = {};
  mtserie(&maten, ser_rec);
  return true;
}

void zoek_maak(ZoekTabel soort, const char* sortering) {
  IXREMOVE(privaat.tp);
  std::string sleutel = "key1,NODUPS";
  sleutel += soort == ZoekTabel::nontv_document ? ",I,41,44" : ",I,1,1";
  sleutel += ",I,2,2";
  for (const char* p = sortering; *p != 0; ++p) {
    for (const Sortveld& v : VELDEN) {
      if (v.letter == *p) sleutel += v.sleutel;
    }
  }
  sleutel += RANG_ETIKET;
  if (soort == ZoekTabel::annul) sleutel += ZENDDATUM;
  ICB* icb = IXCREATE(privaat.tp, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("%s,%d", naam(soort), static_cast<int>(sizeof(Zoekregel))).c_str());
  IXUPDFCB(icb, 1, sleutel.c_str());
  IXINITIX(icb);
  IXCLOSE(icb);
}

Zoekregel zoek_regel(const DtGo& go, int32_t etiketnr, const Etiket& e, MaatHandle* maten) {
  Zoekregel r{};
  r.vanfil = go.vanfil;
  r.naarfil = go.naarfil;
  r.nr = go.nr;
  r.etiket = static_cast<uint32_t>(etiketnr);
  r.prijs = static_cast<uint32_t>(e.vrkpr);
  r.opdrachtnr = go.opdrachtnr;
  r.maat = e.maat;
  r.verzamel = go.verzamel;
  r.zenddatum = go.zenddatum;
  r.per_maat = ser_rec.maatregistratie;
  memcpy(r.model, ser_rec.model, sizeof r.model);
  memcpy(r.locatie, ser_rec.locatie, sizeof r.locatie);
  memcpy(r.merk, merk_rec.zoeknaam, sizeof r.merk);
  MaatRec maat;
  if (mtzoek(maten, e.maat, &maat)) {
    r.rang = maat.positie;
    memcpy(r.maattekst, maat.tekst, sizeof r.maattekst);
  }
  DtEan ean{};
  if (r.per_maat != 0 && lees_ean_maat(dtean, &ean, ser_rec.nr, e.maat)) {
    memcpy(r.ean, ean.code, sizeof r.ean);
  }
  return r;
}

void zoek_vul(uint8_t van, int naar, uint32_t opdrachtnr) {
  ICB* tabel = IXOPEN_LENGTE(privaat.tp, IX_EXCLUSIEF, sizeof(Zoekregel));
  const OpSleutel sleutel(dtgo, KEY_PAREN);
  ZoekSerie serie{dtser};
  DtGo go{};
  go.vanfil = van;
  go.naarfil = naar < 0 ? uint8_t{0} : static_cast<uint8_t>(naar);
  const int velden = naar < 0 ? 1 : 2;
  for (bool er = IXFIRSTR(dtgo, &go, velden); er; er = IXNEXT(dtgo, &go, velden)) {
    if (!hoort_op_lijst(go, opdrachtnr)) continue;
    auto nummer = static_cast<int32_t>(go.etiket);
    Etiket e{};
    if (!ioeti('R', &nummer, &e) || !nog_gezonden(go, e) || !serie.lees(go.nr)) continue;
    Zoekregel r = zoek_regel(go, nummer, e, serie.maten);
    IXWRITE(tabel, &r);
  }
  IXCLOSE(tabel);
}
