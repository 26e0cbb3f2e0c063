// The first phase: every line of DTDCIF.TXT takes the route of labels or of sizes, or ends on the
// list. The file is read in pieces, so its length does not matter; a last line that is not whole is
// none.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "isam/base.h"
#include "main/controle.h"
#include "scr/scr.h"
#include "sub/dc_intern.h"
#include "sub/leesstam.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

namespace {

/// The lines of the file, one after the other.
struct Bestand {
  Bestand() : fd(open(DC_BESTAND, O_RDONLY | O_CLOEXEC)) {
    if (fd < 0) ctl_noopen(DC_MODULE, DC_BESTAND);
  }
  ~Bestand() { close(fd); }
  Bestand(const Bestand&) = delete;
  Bestand& operator=(const Bestand&) = delete;

  bool volgende(DcRegel* regel) {
    if (plaats + sizeof *regel > gevuld && !vul()) return false;
    memcpy(regel, buffer + plaats, sizeof *regel);
    plaats += sizeof *regel;
    return true;
  }

 private:
  /// What is left goes to the front, and the file behind it.
  bool vul() {
    gevuld -= plaats;
    memmove(buffer, buffer + plaats, gevuld);
    plaats = 0;
    while (gevuld < sizeof buffer) {
      const ssize_t n = read(fd, buffer + gevuld, sizeof buffer - gevuld);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      gevuld += static_cast<size_t>(n);
    }
    return gevuld >= sizeof(DcRegel);
  }

  int fd;
  char buffer[1024 * sizeof(DcRegel)];
  size_t gevuld = 0, plaats = 0;
};

DcTrans trans_van(const DcRegel& r, uint32_t regel) {
  DcTrans t{};
  t.datum = r.datum;
  t.vanfil = r.vanfil;
  t.naarfil = r.naarfil;
  t.stuks = r.stuks;
  t.nummer = r.nummer;
  t.regel = regel;
  t.soort = r.soort == DC_ZENDEN ? DC_ZENDEN : DC_ONTVANGEN;
  memcpy(t.code, r.code, sizeof t.code);
  return t;
}

bool serie_van(DcTrans& t, const Serienr& nr) {
  t.nr = nr;
  if (lees_serie(dtser, &ser_rec, nr)) return true;
  dc_meld(DcOpm::geen_serie, t);
  return false;
}

/// Equal lines become one record with the sum of their pieces; what adds up past the last count
/// stays at it.
void schrijf_maat(DcTrans t, uint8_t maat) {
  if (t.stuks == DC_GEEN_AANTAL) t.stuks = 1;
  t.etiket = 0;
  t.maat = maat;
  t.rang = t.soort == DC_ONTVANGEN && t.nummer != 0 ? t.nummer : DC_RANG_LAATST;
  DcTrans er = t;
  if (!IXREAD(dc.maten, &er)) {
    IXWRITE(dc.maten, &t);
    return;
  }
  const uint32_t ruimte = DC_GEEN_AANTAL - 1 - er.stuks;
  er.stuks += t.stuks < ruimte ? t.stuks : ruimte;
  er.regel = 0;
  IXWRITE(dc.maten, &er);
}

/// A label of a series that counts by size stands for one piece of its size.
void etiket_als_maat(DcTrans t, const Etiket& e) {
  DtEan ean{};
  if (!lees_ean_maat(dtean, &ean, e.nr, e.maat))
    return dc_meld(DcOpm::maat_geen_ean, t, {.maat = e.maat});
  const std::string etiket = dc_code_tekst(t.code);
  memcpy(t.code, ean.code, sizeof t.code);
  dc_meld(DcOpm::maat_ean, t, {.code = etiket});
  schrijf_maat(t, e.maat);
}

void neem_etiket(DcTrans t, int32_t nummer) {
  t.etiket = static_cast<uint32_t>(nummer);
  Etiket e{};
  if (!ioeti('R', &nummer, &e)) return dc_meld(DcOpm::geen_etiket, t);
  if (!serie_van(t, e.nr)) return;
  if (ser_rec.maatregistratie != 0) return etiket_als_maat(t, e);
  t.stuks = 1;
  IXWRITE(dc.etiketten, &t);
}

void neem_ean(DcTrans t) {
  DtEan ean{};
  if (!lees_ean(dtean, &ean, veld_tekst(t.code, sizeof t.code))) return dc_meld(DcOpm::geen_ean, t);
  if (ean.soort != 'M') return dc_meld(DcOpm::klein_artikel, t);
  if (!serie_van(t, {ean.artgroep, ean.kleur, ean.volgnr})) return;
  if (ser_rec.maatregistratie == 0) return dc_meld(DcOpm::geen_maat, t, {.maat = ean.maat});
  schrijf_maat(t, ean.maat);
}

void neem(const DcTrans& t) {
  if (t.vanfil >= filialen() || t.naarfil >= filialen()) return dc_meld(DcOpm::filiaal, t);
  Etiketcode code{};
  const bool is_code = etikode_lees(veld_tekst(t.code, sizeof t.code), &code);
  if (is_code && code.letter == 0 && code.nummer >= 1) return neem_etiket(t, code.nummer);
  neem_ean(t);
}

/// How many lines were taken, on the last row.
void toon(uint32_t aantal) {
  if (scr_ctx == nullptr) return;
  const char* woord = txt(T_DC_TRANSACTIES);
  const int kolom = static_cast<int>(strlen(woord)) + 2;
  if (aantal == 0) {
    scr_clreol(scr_ctx->lines, 1);
    scr_print(A_LABEL, scr_ctx->lines, 1, "%s", woord);
  }
  scr_print(A_WAARDE, scr_ctx->lines, kolom, "%8lu", aantal);
}

}  // namespace

void dc_lees() {
  constexpr uint32_t STAP = 100;
  Bestand bestand;
  DcRegel r;
  uint32_t aantal = 0;
  toon(0);
  while (!scr_interrupted() && bestand.volgende(&r)) {
    neem(trans_van(r, ++aantal));
    if (aantal % STAP == 0) toon(aantal);
  }
  if (aantal != 0) toon(aantal);
}
