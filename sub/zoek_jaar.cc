// The year and season fields, and the list of years and seasons in INKSYS.TXT.
#include <fcntl.h>

#include <cstring>
#include <vector>

#include "isam/base.h"
#include "isam/io.h"
#include "sub/records.h"
#include "sub/sel_intern.h"
#include "sub/teksten.h"
#include "sub/zoek.h"
#include "sub/zoek_lijst.h"

namespace {

constexpr const char* BESTAND = "INKSYS.TXT";
constexpr uint16_t JAAR_LAAG = 1980, JAAR_HOOG = 2079;

std::vector<InkSys> seizoenen;

void laad() {
  seizoenen.clear();
  const int64_t grootte = file_size(BESTAND);
  const int fd = grootte > 0 ? io_open(BESTAND, false) : -1;
  if (fd < 0) return;
  for (int64_t i = 0; (i + 1) * static_cast<int64_t>(sizeof(InkSys)) <= grootte; ++i) {
    InkSys rec;
    if (io_lees(fd, &rec, sizeof rec, i * static_cast<int64_t>(sizeof rec)) != sizeof rec) break;
    if (rec.jaar != 0) seizoenen.push_back(rec);
  }
  io_close(fd);
}

const InkSys& rec_van(const BrwRec* b) { return seizoenen[b->current]; }

bool stap(BrwRec* b, int n) {
  if (seizoenen.empty()) return false;
  if (b->current >= seizoenen.size()) b->current = 0;
  for (int i = n; i != 0; i += i < 0 ? 1 : -1) {
    const int64_t naar = static_cast<int64_t>(b->current) + (n < 0 ? -1 : 1);
    if (naar < 0 || naar >= static_cast<int64_t>(seizoenen.size())) return false;
    b->current = static_cast<uint32_t>(naar);
  }
  return true;
}
/// Stands on the first season of the lowest year from this one on; the file has an order of its
/// own.
void ga_naar(BrwRec* b, uint16_t jaar) {
  const InkSys* beste = nullptr;
  for (const InkSys& s : seizoenen) {
    if (s.jaar >= jaar && (beste == nullptr || s.jaar < beste->jaar)) beste = &s;
  }
  if (beste != nullptr) b->current = static_cast<uint32_t>(beste - seizoenen.data());
}

void zoek(BrwRec* b) {
  const int rij = brw_search_row();
  uint16_t jaar = 0;
  const int kol = 3 + scr_print(A_LABEL, rij, 2, "%s", txt(T_ZOEK_JAAR));
  INGAVE(rij, kol, "4u,IZP", &jaar);
  if (scr_ctx->last_key == K_F3) scr_ctx->ing_result |= ING_LEEG;
  if (weg_toets() || (scr_ctx->ing_result & ING_LEEG) != 0) return;
  ga_naar(b, jaar);
}
void kop(BrwRec*) {
  scr_print(A_LABEL, 1, 1, " %-7.7s %-16.16s", txt(T_ZOEK_KOP_SEIZOEN), txt(T_ZOEK_KOP_OMS));
}
const char* regel(BrwRec* b) {
  const InkSys& r = rec_van(b);
  char letter[3] = {r.seizoen, 0, 0};
  seizoen_vertaal(letter, true);
  const std::string code = str_format("%04u%c", r.jaar, letter[0] == 0 ? ' ' : letter[0]);
  str_printf(scr_klad, sizeof scr_klad, "%-7.7s %-16.16s", code,
             veld_tekst(r.tekst, sizeof r.tekst));
  return scr_klad;
}

bool kies_seizoen(uint16_t* jaar, char* seizoen) {
  laad();
  BrwRec* b = brw_new(stap, zoek, kop, regel);
  if (b != nullptr && *jaar != 0) ga_naar(b, *jaar);
  uint32_t keus = 0;
  if (!lijst_kies(b, txt(T_ZOEK_KOP_SEIZOEN), T_ZOEK_GEEN, &keus) || keus >= seizoenen.size())
    return false;
  *jaar = seizoenen[keus].jaar;
  *seizoen = seizoenen[keus].seizoen;
  return true;
}

/// Two digits stand for a year in the century that dates give them.
uint16_t voluit(uint16_t jaar) {
  if (jaar >= 100) return jaar;
  const uint16_t nummer = date_number(str_format("0101%02d", jaar).c_str());
  char tekst[9];
  date_text(tekst, nummer, true);
  return static_cast<uint16_t>((tekst[4] - '0') * 1000 + (tekst[5] - '0') * 100 +
                               (tekst[6] - '0') * 10 + (tekst[7] - '0'));
}

/// True when the year stands between the limits; the message otherwise.
bool jaar_goed(uint16_t jaar, uint16_t laag, uint16_t hoog) {
  if (jaar < JAAR_LAAG || jaar > 2999) {
    scr_error("<%u> %s", jaar, txt(T_ZOEK_JAAR_FOUT));
    return false;
  }
  if (jaar < laag || jaar > hoog) {
    scr_error("<%u> %s %d %s %d %-8.8s", jaar, txt(T_ZOEK_ALLEEN), laag, txt(T_ZOEK_TM), hoog,
              txt(T_ZOEK_MOGELIJK));
    return false;
  }
  return true;
}

}  // namespace

bool ing_jaar(int row, int col, const char* opties, uint16_t laag, uint16_t hoog, uint16_t* jaar,
              char* seizoen) {
  const uint16_t oud = *jaar;
  if (laag == 0) laag = JAAR_LAAG;
  if (hoog == 0) hoog = JAAR_HOOG;
  const bool leeg_goed = strchr(opties, 'E') == nullptr;
  const VeldToetsen toetsen;
  for (;;) {
    uint16_t waarde = *jaar;
    char letter = 0;
    // Typing 00 means the year 2000: an empty field, not the value, tells that there is none.
    char tekst[5] = "";
    if (waarde != 0 && strchr(opties, 'I') == nullptr)
      str_printf(tekst, sizeof tekst, "%04u", waarde);
    toetsen.terug();
    INGAVE(row, col, leeg_goed ? "4s[0123456789]," : "4s[0123456789],E", &K_CANCEL, &K_F5, tekst);
    if (weg_toets()) break;
    if (scr_ctx->last_key == K_F5) {
      if (!kies_seizoen(&waarde, &letter)) continue;
    } else if (tekst[0] == 0) {
      waarde = 0;
    } else {
      waarde = 0;
      for (const char* p = tekst; *p != 0; ++p)
        waarde = static_cast<uint16_t>(waarde * 10 + (*p - '0'));
      waarde = voluit(waarde);
    }
    if (waarde != 0 && !jaar_goed(waarde, laag, hoog)) continue;
    *jaar = waarde;
    if (letter != 0 && seizoen != nullptr) *seizoen = letter;
    if (waarde != 0) scr_print(A_WAARDE, row, col, "%04u", waarde);
    break;
  }
  return *jaar != oud;
}

bool ing_seizoen(int row, int col, char* seizoen) {
  char letter[3] = {*seizoen, 0, 0};
  seizoen_vertaal(letter, true);
  INGAVE(row, col, str_format("1c[%.3s],EU", txt(T_SEL_LETTERS_SEIZOEN)).c_str(), &K_CANCEL,
         &letter[0]);
  if (weg_toets()) return false;
  seizoen_vertaal(letter, false);
  const bool anders = letter[0] != *seizoen;
  *seizoen = letter[0];
  return anders;
}
