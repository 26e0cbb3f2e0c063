// The brand list file is emptied by making its index anew, never through IXINIT: its records are
// those of the brands' table, which must stay as it is.
#include "sub/sel_merken.h"

#include <cstring>

#include "isam/base.h"
#include "isam/formaat.h"
#include "scr/scr.h"
#include "sub/sel_intern.h"
#include "sub/tabeldef.h"
#include "sub/tabellen.h"

namespace {

constexpr uint16_t MERK_GRENS = 10000;
constexpr int WAARSCHUWINGEN = 20;  // a file that is no selection shall not ask for Enter for ever

/// The brands' table, opened for the scope when the run does not hold it open.
struct Merkentabel {
  Merkentabel() : icb(dtmerk), eigen(dtmerk == nullptr) {
    if (eigen) icb = tabel_open("DTMERK", IX_LEES);
  }
  ~Merkentabel() {
    if (eigen) IXCLOSE(icb);
  }
  Merkentabel(const Merkentabel&) = delete;
  Merkentabel& operator=(const Merkentabel&) = delete;
  ICB* icb;
  bool eigen;
};

bool zoek_merk(ICB* tabel, uint16_t nummer, DtMerk* rec) {
  if (nummer >= MERK_GRENS) return false;
  memset(rec, 0, sizeof *rec);
  rec->nummer = nummer;
  return IXREAD(tabel, rec);
}

void zet_in_lijst(ICB* lijst, ICB* tabel, DtMerk* rec) {
  const int32_t plaats = tabel->record_no;
  if (IXEXISTS(lijst, rec)) return;
  lijst->record_no = plaats;  // behind the test, which sets it
  IXADDKEYS(lijst, rec);
}

void waarschuw(uint16_t nummer) {
  if (scr_ctx == nullptr) return;
  msg_waarschuw(txt(T_SEL_FOUT_MERK), str_format("%s %hu", txt(T_SEL_MERKNR), nummer).c_str());
}

}  // namespace

void merklijst_leeg() {
  ICB* icb = IXCREATE(privaat.merk, IX_EXCLUSIEF);
  IXUPDFCB(icb, 0, str_format("merktmp,%d", static_cast<int>(sizeof(DtMerk))).c_str());
  IXUPDFCB(icb, 1, "merknr,NODUPS,I,1,2");
  IXINITIX(icb);
  IXCLOSE(icb);
}

ICB* merklijst_open(int mode) {
  if (!file_exists(privaat.merk)) merklijst_leeg();
  return tabel_open(privaat.merk, mode);
}

std::vector<uint16_t> merklijst_nummers() {
  std::vector<uint16_t> uit;
  if (!file_exists(privaat.merk)) return uit;
  ICB* lijst = tabel_open(privaat.merk, IX_LEES);
  DtMerk rec{};
  for (bool er = IXFIRSTR(lijst, &rec); er; er = IXNEXT(lijst, &rec)) uit.push_back(rec.nummer);
  IXCLOSE(lijst);
  return uit;
}

void merklijst_neem(std::span<const uint16_t> nummers, bool vul) {
  int goed = 0, fout = 0;
  std::vector<bool> gezien(MERK_GRENS);
  {
    const Merkentabel tabel;
    ICB* lijst = vul ? merklijst_open(IX_EXCLUSIEF) : nullptr;
    DtMerk rec;
    for (const uint16_t nummer : nummers) {
      if (!zoek_merk(tabel.icb, nummer, &rec)) {
        if (++fout <= WAARSCHUWINGEN) waarschuw(nummer);
        continue;
      }
      if (gezien[nummer]) continue;
      gezien[nummer] = true;
      if (goed++ == 0) sel_rec.merk = nummer;
      if (lijst != nullptr) zet_in_lijst(lijst, tabel.icb, &rec);
    }
    if (lijst != nullptr) IXCLOSE(lijst);
  }
  merk_aantal = goed;
  merk_een = goed == 1;
  if (goed > 0) return;
  sel_rec.merk = 0;
  sel_op_default('a');
  if (vul) merklijst_leeg();
}
