// The input record and the work areas of the fields: which keys the next field accepts, and how a
// field in the middle of its editing is set aside for a screen that comes over it.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "scr/veld_intern.h"

VeldWerk veld_werk;

namespace {

constexpr int CODES = 512;

bool code_goed(int code) { return code >= 0 && code < CODES; }

void zet_bit(int code, bool aan) {
  if (!code_goed(code)) return;
  uint8_t& byte = scr_ctx->ing->allowed[code / 8];
  const auto bit = static_cast<uint8_t>(1u << (code % 8));
  byte = static_cast<uint8_t>(aan ? byte | bit : byte & ~bit);
}

/// Index of a code in the key table, -1 when it is none. Unused entries are 0 and name no key.
int toets_index(int code) {
  if (code <= 0) return -1;
  for (int i = 0; i < SCR_TOETSEN; ++i) {
    if (scr_ctx->key_table[i] == code) return i;
  }
  return -1;
}

void zet_validatie(int code, bool aan) {
  const int index = toets_index(code);
  if (index < 0) return;
  const uint32_t bit = 1u << index;
  uint32_t& masker = scr_ctx->ing->validate;
  masker = aan ? masker | bit : masker & ~bit;
}

void neem_over(IngRec& naar, const IngRec& van) {
  memcpy(naar.allowed, van.allowed, sizeof naar.allowed);
  naar.min = van.min;
  naar.max = van.max;
  naar.validate = van.validate;
}

void maak_leeg(IngRec& rec) {
  memset(rec.allowed, 0, sizeof rec.allowed);
  rec.min = 0.0;
  rec.max = -1.0;
  rec.validate = 0;
}

/// All that a screen in between must find back.
struct Bewaard {
  VeldWerk werk;
  IngVeld veld;
  IngRec* ing;
  int32_t resultaat, toets, invoegen;
};

}  // namespace

void veld_begin() {
  veld_werk = VeldWerk{};
  scr_ctx->ing = ing_new(100);
}

void veld_eind() {
  ing_free(scr_ctx->ing);
  scr_ctx->ing = nullptr;
}

void key_allow(int code) {
  zet_bit(code, true);
  if (code == K_CANCEL) zet_bit(K_ESC, true);
  if (code == K_HELP) zet_bit(K_F1, true);
}

void key_deny(int code) { zet_bit(code, false); }

bool key_allowed(int code) {
  return code_goed(code) && (scr_ctx->ing->allowed[code / 8] >> (code % 8) & 1) != 0;
}

bool key_is_exit(int code) { return key_allowed(code) && toets_index(code) >= 0; }

bool key_validates(int code) {
  return key_is_exit(code) && (scr_ctx->ing->validate >> toets_index(code) & 1) != 0;
}

void key_validate_on(int code) { zet_validatie(code, true); }
void key_validate_off(int code) { zet_validatie(code, false); }

void ing_leeg() { maak_leeg(*scr_ctx->ing); }

IngRec* ing_new(int grootte) {
  const int plaats = std::max(grootte, 1);
  auto* rec = static_cast<IngRec*>(calloc(1, sizeof(IngRec)));
  auto* tekst = static_cast<char*>(calloc(static_cast<size_t>(plaats), 1));
  if (rec == nullptr || tekst == nullptr) {
    free(rec);
    free(tekst);
    scr_abort("%s", txt(T_GEEN_GEHEUGEN));
  }
  rec->text = tekst;
  rec->text_size = plaats;
  if (scr_ctx->ing != nullptr) {
    neem_over(*rec, *scr_ctx->ing);
  } else {
    maak_leeg(*rec);
  }
  return rec;
}

void ing_restore(const IngRec* bewaard) {
  if (bewaard != nullptr) neem_over(*scr_ctx->ing, *bewaard);
}

void ing_free(IngRec* rec) {
  if (rec == nullptr) return;
  free(rec->text);
  free(rec);
}

IngBewaar::IngBewaar() : staat(new (std::nothrow) Bewaard) {
  if (staat == nullptr) scr_abort("%s", txt(T_GEEN_GEHEUGEN));
  *static_cast<Bewaard*>(staat) = {veld_werk,           scr_ctx->veld,     ing_new(1),
                                   scr_ctx->ing_result, scr_ctx->last_key, scr_ctx->insert_mode};
  veld_werk.bezig = false;
  ing_leeg();
}

IngBewaar::~IngBewaar() {
  auto* oud = static_cast<Bewaard*>(staat);
  if (scr_ctx != nullptr) {  // else the program is on its way out
    veld_werk = oud->werk;
    scr_ctx->veld = oud->veld;
    ing_restore(oud->ing);
    scr_ctx->ing_result = oud->resultaat;
    scr_ctx->last_key = oud->toets;
    scr_ctx->insert_mode = oud->invoegen;
    if (veld_werk.bezig) veld_plaats_cursor();
  }
  ing_free(oud->ing);
  delete oud;
}
