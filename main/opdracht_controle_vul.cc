// Gathering what an order asked and what was sent on it: its lines, the labels on their way that
// nobody printed a document for, and the sends that tills reported and nobody processed yet. Each
// adds pieces to the row of its branches and series.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "isam/base.h"
#include "isam/ix.h"
#include "main/controle.h"
#include "main/opdracht_controle_in.h"
#include "main/teksten.h"
#include "scr/scr.h"
#include "sub/datacom.h"
#include "sub/ioeti.h"
#include "sub/leesstam.h"
#include "sub/tabeldef.h"
#include "sub/tabelgebruik.h"
#include "sub/tabellen.h"

namespace {

constexpr int PICK_SERIE = 1;  // DTPICK by sending branch and series

struct Vul {
  ControleVraag& vraag;
  ICB* tabel = nullptr;
  Serienr nr{};  // of ser_rec and merk_rec
  bool gelezen = false;
  int kolom = 1;  // of the progress on the last row
};

/// The part of the work on the last row, the running series behind it.
void toon_deel(Vul& vul, const Tekst& deel) {
  if (scr_ctx == nullptr) return;
  scr_clreol(scr_ctx->lines, 1);
  vul.kolom =
      3 + scr_print(A_LABEL, scr_ctx->lines, 1, "%-16.16s - %s", txt(deel), txt(T_CTR_SERIENR));
}
void toon_serie(const Vul& vul, const Serienr& nr) {
  if (scr_ctx != nullptr) scr_print(A_WAARDE, scr_ctx->lines, vul.kolom, "%s", serie_sleutel(nr));
}

/// A series that has gone still shows what was asked and sent of it.
void lees_stam(Vul& vul, const Serienr& nr) {
  if (vul.gelezen && vul.nr == nr) return;
  vul.gelezen = true;
  vul.nr = nr;
  toon_serie(vul, nr);
  if (!lees_serie(dtser, &ser_rec, nr)) ser_rec = {};
  if (!lees_merk(dtmerk, &merk_rec, ser_rec.merk)) merk_rec = {};
}

/// The row of a pair and series, new when there is none; the table stands on its first key.
Controle rij(Vul& vul, uint8_t van, uint8_t naar, const Serienr& nr) {
  Controle c{};
  c.vanfil = van;
  c.naarfil = naar;
  c.nr = nr;
  if (IXREAD(vul.tabel, &c)) return c;
  c = {};
  c.vanfil = van;
  c.naarfil = naar;
  c.nr = nr;
  memcpy(c.model, ser_rec.model, sizeof c.model);
  memcpy(c.merk, merk_rec.zoeknaam, sizeof c.merk);
  memcpy(c.locatie, ser_rec.locatie, sizeof c.locatie);
  return c;
}

void tel_verzonden(Vul& vul, uint8_t van, uint8_t naar, uint8_t maat, uint32_t stuks) {
  if (maat == 0 || maat >= MATEN) return;
  Controle c = rij(vul, van, naar, vul.nr);
  c.verzonden[maat] += stuks;
  IXWRITE(vul.tabel, &c);
}

// The order ---------------------------------------------------------------------------------------

void neem_regel(Vul& vul, const DtPick& r) {
  if (r.opdrachtnr != vul.vraag.opdracht.nummer) return;
  vul.vraag.opdracht.datum = r.orderdatum;
  lees_stam(vul, r.nr);
  Controle c = rij(vul, r.vanfil, r.naarfil, r.nr);
  for (int m = 1; m < MATEN; ++m) c.opdracht[m] += r.aantal[m];
  IXWRITE(vul.tabel, &c);
}

bool vul_opdracht(Vul& vul) {
  toon_deel(vul, T_CTR_VERZAMELOPDRACHT);
  const OpSleutel sleutel(dtpick, PICK_SERIE);
  DtPick r{};
  r.vanfil = vul.vraag.opdracht.vanfil;
  for (bool er = IXFIRSTR(dtpick, &r, 1); er && !scr_interrupted(); er = IXNEXT(dtpick, &r, 1)) {
    neem_regel(vul, r);
  }
  return !scr_interrupted();
}

// On its way --------------------------------------------------------------------------------------

bool telt(const DtGo& r, uint32_t opdrachtnr) {
  return r.opdrachtnr == opdrachtnr && r.printdatum == 0 && r.soort == 1 && r.verzamel == 0;
}

/// A label in its size; one that is gone, or that another series has now, was not sent as this.
void tel_etiket(Vul& vul, uint8_t van, uint8_t naar, int32_t nummer, const Serienr* nr) {
  Etiket e{};
  if (!ioeti('R', &nummer, &e) || (nr != nullptr && !(e.nr == *nr))) return;
  lees_stam(vul, e.nr);
  tel_verzonden(vul, van, naar, e.maat, 1);
}

bool vul_onderweg(Vul& vul) {
  toon_deel(vul, T_CTR_TRANSIT);
  DtGo r{};
  while (IXSEQ(dtgo, &r)) {
    if (scr_interrupted()) {
      IXSEQ_STOP();
      return false;
    }
    if (!telt(r, vul.vraag.opdracht.nummer)) continue;
    const Serienr nr = r.nr;
    tel_etiket(vul, r.vanfil, r.naarfil, static_cast<int32_t>(r.etiket), &nr);
  }
  return true;
}

// Reported ----------------------------------------------------------------------------------------

void neem_melding(Vul& vul, const DcRegel& r) {
  if (r.soort != DC_ZENDEN || r.nummer != vul.vraag.opdracht.nummer) return;
  if (r.vanfil >= filialen() || r.naarfil >= filialen()) return;
  const std::string code = veld_tekst(r.code, sizeof r.code);
  Etiketcode gelezen{};
  if (etikode_lees(code, &gelezen) && gelezen.letter == 0 && gelezen.nummer >= 1) {
    return tel_etiket(vul, r.vanfil, r.naarfil, gelezen.nummer, nullptr);
  }
  static DtEan ean;
  if (!lees_ean(dtean, &ean, code) || ean.soort != 'M') return;
  lees_stam(vul, {ean.artgroep, ean.kleur, ean.volgnr});
  if (ser_rec.maatregistratie == 0) return;
  tel_verzonden(vul, r.vanfil, r.naarfil, ean.maat, r.stuks == DC_GEEN_AANTAL ? 1 : r.stuks);
}

bool vul_datacom(Vul& vul) {
  if (file_size(DC_BESTAND) <= 0) return true;
  toon_deel(vul, T_CTR_DATACOM);
  const std::unique_ptr<FILE, int (*)(FILE*)> bestand(fopen(DC_BESTAND, "rbe"), fclose);
  if (bestand == nullptr) return true;  // somebody has just processed it
  DcRegel r{};
  while (fread(&r, sizeof r, 1, bestand.get()) == 1) {
    if (scr_interrupted()) return false;
    neem_melding(vul, r);
  }
  return true;
}

// The table ---------------------------------------------------------------------------------------

struct Sortveld {
  char letter;
  const char* sleutel;  // its part of the key
};
constexpr Sortveld VELDEN[] = {{'A', ",I,21,24"}, {'K', ",I,25,26"}, {'V', ",I,27,28"},
                               {'R', ",C,29,32"}, {'M', ",C,3,17"},  {'L', ",C,33,38"}};

std::string sleutel(const char* naam, const char* letters, bool enkel) {
  std::string uit = str_format("%s,NODUPS,I,1,1%s", naam, enkel ? ",I,2,2" : "");
  for (const char* p = letters; *p != 0; ++p) {
    for (const Sortveld& v : VELDEN) {
      if (v.letter == *p) uit += v.sleutel;
    }
  }
  return enkel ? uit : uit + ",I,2,2";
}

ICB* maak(const ControleVraag& vraag) {
  const bool enkel = controle_enkel(vraag.opdracht);
  const std::string een = sleutel("key1", "AKV", enkel);
  const std::string twee = sleutel("key2", vraag.volgorde, enkel);
  const TabelDef def{
      "temp_controle", "temp_controle", sizeof(Controle), {een.c_str(), twee.c_str()}};
  tabel_maak(def, controle_bestand().c_str());
  return IXOPEN_LENGTE(controle_bestand().c_str(), IX_EXCLUSIEF, sizeof(Controle));
}

}  // namespace

std::string controle_bestand() { return str_format("%sC", privaat.tp); }

bool controle_enkel(const OpdrKeuze& opdracht) { return opdracht.naarfil < filialen(); }

bool controle_vul(ControleVraag* vraag) {
  Vul vul{*vraag};
  vul.tabel = maak(*vraag);
  if (scr_ctx != nullptr) scr_intr_reset();
  const bool geheel = vul_opdracht(vul) && vul_onderweg(vul) && vul_datacom(vul);
  IXCLOSE(vul.tabel);
  return geheel;
}
