// Date numbers, date texts and times of day.
//
// The calendar is the plain one of the data: every year that four divides has a 29 February, 1900
// too. The texts come from static buffers, so a caller that shows two dates copies the first.
#include <cstring>
#include <ctime>

#include "isam/base.h"

namespace {

constexpr int VOOR_MAAND[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
constexpr int MAAND[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr uint16_t EEUW_20 = 36526;  // 1 January 2000

char datum_buffer[12];
char tijd_buffer[16];

tm plaatselijk() {
  const time_t nu = std::time(nullptr);
  tm delen{};
  localtime_r(&nu, &delen);
  return delen;
}

int twee(const char* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

int32_t nummer_van(int dag, int maand, int jaar) {
  const int schrikkel = jaar % 4 == 0 && maand > 2 ? 1 : 0;
  return (jaar * 36525 + 99) / 100 + VOOR_MAAND[maand - 1] + dag + schrikkel;
}

struct Dag {
  int dag, maand, jaar;
};

Dag delen_van(uint16_t nummer) {
  const int jaar = (nummer * 100 - 99) / 36525;
  int dag = nummer - (jaar * 36525 + 99) / 100;
  int maand = 0;
  for (; maand < 11; ++maand) {
    const int lengte = MAAND[maand] + (maand == 1 && jaar % 4 == 0 ? 1 : 0);
    if (dag <= lengte) break;
    dag -= lengte;
  }
  return {dag, maand + 1, jaar};
}

const char* met_streepjes(uint16_t nummer, bool lang) {
  char plat[9];
  date_text(plat, nummer, lang);
  str_printf(datum_buffer, sizeof datum_buffer, "%.2s-%.2s-%s", plat, plat + 2, plat + 4);
  return datum_buffer;
}

}  // namespace

uint16_t date_today() {
  const tm nu = plaatselijk();
  const int32_t nummer = nummer_van(nu.tm_mday, nu.tm_mon + 1, nu.tm_year);
  return nummer > 0 && nummer <= UINT16_MAX ? static_cast<uint16_t>(nummer) : uint16_t{0};
}

int32_t time_now() {
  const tm nu = plaatselijk();
  return nu.tm_hour * 3600 + nu.tm_min * 60 + nu.tm_sec;
}

bool date_valid(const char* tekst) {
  const size_t n = strnlen(tekst, 9);
  if (n != 6 && n != 8) return false;
  for (size_t i = 0; i < n; ++i)
    if (tekst[i] < '0' || tekst[i] > '9') return false;
  const int dag = twee(tekst), maand = twee(tekst + 2);
  if (maand < 1 || maand > 12) return false;
  const bool schrikkel = maand == 2 && twee(tekst + n - 2) % 4 == 0;
  return dag >= 1 && dag <= MAAND[maand - 1] + (schrikkel ? 1 : 0);
}

uint16_t date_number(const char* tekst) {
  if (!date_valid(tekst)) return 0;
  int jaar = twee(tekst + 4);
  if (tekst[6] == 0)
    jaar += jaar < 51 ? 100 : 0;
  else
    jaar = jaar * 100 + twee(tekst + 6) - 1900;
  if (jaar < 0) return 0;
  const int32_t nummer = nummer_van(twee(tekst), twee(tekst + 2), jaar);
  return nummer <= UINT16_MAX ? static_cast<uint16_t>(nummer) : uint16_t{0};
}

void date_text(char* buffer, uint16_t nummer, bool lang) {
  if (nummer == 0) {
    std::strcpy(buffer, lang ? "        " : "      ");
    return;
  }
  const Dag d = delen_van(nummer);
  const char* eeuw = !lang ? "" : nummer < EEUW_20 ? "19" : "20";
  str_printf(buffer, lang ? 9 : 7, "%02d%02d%s%02d", d.dag, d.maand, eeuw, d.jaar % 100);
}

const char* date_show(uint16_t nummer) { return met_streepjes(nummer, false); }

const char* date_show_long(uint16_t nummer) { return met_streepjes(nummer, true); }

const char* date_plain(uint16_t nummer) {
  date_text(datum_buffer, nummer, false);
  return datum_buffer;
}

const char* time_show(int32_t nummer) {
  str_printf(tijd_buffer, sizeof tijd_buffer, "%02ld:%02ld:%02ld", nummer / 3600, nummer / 60 % 60,
             nummer % 60);
  return tijd_buffer;
}
