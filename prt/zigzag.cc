// The line pair: pieces of a format, the choice of line and column, and the growth of the buffers.
#include "prt/zigzag.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <new>

#include "prt/teksten.h"

namespace {

constexpr std::string_view GEHEEL = "dioxXu";
constexpr std::string_view BREUK = "efgEG";

bool een_van(char c, std::string_view tekens) { return tekens.find(c) != std::string_view::npos; }

bool is_cijfer(char c) { return c >= '0' && c <= '9'; }

// What one print call remembers between its pieces: numbers may zigzag from its start on; behind a
// text it takes two numbers in a row before they may again.
struct Loop {
  bool mag;
  bool half = false;
};

// The next argument as a width or precision, within what the buffers hold.
int32_t maat_argument(std::span<const Arg>& args, int32_t hoogste) {
  if (args.empty()) return 0;
  const Arg a = args.front();
  args = args.subspan(1);
  if (a.soort == Arg::Soort::getal) {
    return static_cast<int32_t>(std::clamp<int64_t>(a.i, -hoogste, hoogste));
  }
  if (a.soort == Arg::Soort::natuurlijk) {
    return static_cast<int32_t>(std::min<uint64_t>(a.u, static_cast<uint64_t>(hoogste)));
  }
  return 0;
}

void voeg_getal(std::string& uit, int32_t v) {
  char cijfers[12];
  size_t n = sizeof cijfers;
  uint32_t rest = v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
  do {
    cijfers[--n] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (v < 0) cijfers[--n] = '-';
  uit.append(cijfers + n, sizeof cijfers - n);
}

// A width or precision at `p`: digits or a "*". Adds it to the piece and says whether one stood
// there.
bool maat_over(std::string_view stuk, size_t& p, int32_t hoogste, std::span<const Arg>& args,
               std::string& uit) {
  if (p < stuk.size() && stuk[p] == '*') {
    ++p;
    voeg_getal(uit, maat_argument(args, hoogste));
    return true;
  }
  if (p >= stuk.size() || !is_cijfer(stuk[p])) return false;
  int32_t v = 0;
  for (; p < stuk.size() && is_cijfer(stuk[p]); ++p)
    v = std::min(v * 10 + (stuk[p] - '0'), hoogste);
  voeg_getal(uit, v);
  return true;
}

// Writes the conversion anew, "*" filled in and no wider than the buffers. True when it has a
// width.
bool conversie_schoon(PrtFmt& f, const Conversie& van, std::span<const Arg>& args,
                      Conversie& naar) {
  const int32_t hoogste = f.fmt_size - 1;
  std::string& uit = f.piece_buf;
  uit.assign(1, '%');
  size_t p = 1;
  while (p < van.tekst.size() && een_van(van.tekst[p], "-+ #0") && uit.size() < 6)
    uit += van.tekst[p++];
  while (p < van.tekst.size() && een_van(van.tekst[p], "-+ #0")) ++p;
  const bool breedte = maat_over(van.tekst, p, hoogste, args, uit);
  if (p < van.tekst.size() && van.tekst[p] == '.') {
    uit += van.tekst[p++];
    const size_t begin = uit.size();
    if (maat_over(van.tekst, p, hoogste, args, uit) && uit[begin] == '-') uit.resize(begin - 1);
  }
  naar.voor = van.voor == 'L' ? 'l' : van.voor;
  naar.letter = van.letter;
  if (naar.voor != 0) uit += naar.voor;
  uit += naar.letter;
  naar.tekst = uit;
  return breedte;
}

// The argument as the conversion's width cuts it: 32 bits for integers, single precision for a
// fraction without "l".
Arg argument_snij(const Arg& a, const Conversie& c) {
  if (een_van(c.letter, BREUK)) {
    const bool past =
        a.soort == Arg::Soort::breuk && std::fabs(a.f) <= static_cast<double>(FLT_MAX);
    return past && c.voor == 0 ? Arg(static_cast<float>(a.f)) : a;
  }
  const bool teken = c.letter == 'd' || c.letter == 'i';
  if (a.soort == Arg::Soort::getal || a.soort == Arg::Soort::natuurlijk) {
    const uint32_t bits = static_cast<uint32_t>(a.u);
    return teken ? Arg(static_cast<int32_t>(bits)) : Arg(bits);
  }
  return a;
}

void formaat_waarde(std::string& uit, const Conversie& c, const Arg& a, size_t hoogste) {
  uit.clear();
  std::span<const Arg> een(&a, 1);
  formaat_een(uit, c, een);
  uit.resize(std::min({uit.size(), uit.find('\0'), hoogste}));
}

// A number: its value, and the room that a zero takes.
void getal_stuk(PrtFmt& f, const Conversie& c, bool breedte, const Arg& a, Loop& loop) {
  const size_t hoogste = static_cast<size_t>(f.fmt_size - 1);
  formaat_waarde(f.val_buf, c, argument_snij(a, c), hoogste);
  if (breedte) {
    formaat_waarde(f.ref_buf, c, een_van(c.letter, BREUK) ? Arg(0.0) : Arg(0), hoogste);
  } else {
    f.ref_buf = f.val_buf;
  }
  if (!f.zigzag_on) return;
  if (loop.half) loop.mag = true;
  loop.half = !loop.half;
}

// Fills val_buf and ref_buf with the next piece; false when nothing is to be placed.
bool stuk_maak(PrtFmt& f, const Conversie& van, std::span<const Arg>& args, Loop& loop) {
  const size_t hoogste = static_cast<size_t>(f.fmt_size - 1);
  if (van.letter == 0) {
    f.val_buf.assign(van.tekst.substr(0, hoogste));
    f.ref_buf = f.val_buf;
    loop = {false, false};
    return true;
  }
  Conversie c;
  const bool breedte = conversie_schoon(f, van, args, c);
  if (args.empty()) return false;
  const Arg a = args.front();
  args = args.subspan(1);
  if (c.letter == 's' || c.letter == 'c') {
    formaat_waarde(f.val_buf, c, a, hoogste);
    if (c.letter == 'c')
      formaat_waarde(f.ref_buf, c, Arg('c'), hoogste);
    else
      f.ref_buf = f.val_buf;
    loop = {false, false};
  } else {
    getal_stuk(f, c, breedte, a, loop);
  }
  return true;
}

// 1 when the value must step down: it would touch the number before it, or has grown over it.
int kies_regel(const PrtFmt& f, size_t lengte, bool mag) {
  if (!mag || f.last_pos < 0 || lengte == 0) return 0;
  const std::string& boven = f.line[0];
  if (lengte <= f.ref_buf.size()) {
    return f.val_buf[0] != ' ' && is_cijfer(boven.back()) ? 1 : 0;
  }
  const size_t terug = std::min(lengte - f.ref_buf.size() + 1, boven.size());
  return zz_zichtbaar(std::string_view(boven).substr(boven.size() - terug)) ? 1 : 0;
}

ZzUitslag groei(PrtFmt& f, int32_t nodig) noexcept {
  if (f.buf_max != 0 && nodig > f.buf_max) return {ZzFout::maximum, nodig};
  if (nodig <= f.buf_size) return {};
  if (nodig > ZZ_HOOGSTE) return {ZzFout::te_lang, nodig};
  f.buf_size = nodig + 5;
  return zz_begin(f) ? ZzUitslag{} : ZzUitslag{ZzFout::geheugen};
}

ZzUitslag plaats(PrtFmt& f, int regel, int32_t kolom, std::string_view tekst) {
  std::string& doel = f.line[regel];
  const size_t vol = doel.find_last_not_of(' ');
  size_t k = static_cast<size_t>(std::max(kolom, 0));
  if (vol != std::string::npos) k = std::max(k, vol + 1);
  const size_t eind = k + tekst.size();
  const ZzUitslag uitslag = groei(f, static_cast<int32_t>(std::min<size_t>(eind + 1, INT32_MAX)));
  if (uitslag.fout != ZzFout::geen) return uitslag;
  const size_t lengte = std::max(eind, doel.size());
  doel.resize(lengte, ' ');
  doel.replace(k, tekst.size(), tekst);
  f.line[1 - regel].resize(lengte, ' ');
  f.last_pos = static_cast<int32_t>(lengte) - 1;
  return {};
}

// Places the value; each newline in it ends the pair, and what follows starts a new one.
ZzUitslag plaats_regels(PrtFmt& f, int regel, int32_t kolom, const ZzUit& uit) {
  std::string_view rest = f.val_buf;
  for (;;) {
    const size_t nl = rest.find('\n');
    const ZzUitslag uitslag = plaats(f, regel, kolom, rest.substr(0, nl));
    if (uitslag.fout != ZzFout::geen || nl == std::string_view::npos) return uitslag;
    if (!f.line[0].empty() && f.line[0].back() == '\r') f.line[1].back() = '\r';
    zz_flush(f, uit);
    rest.remove_prefix(nl + 1);
    if (rest.empty()) return {};
    regel = 0;
    kolom = 0;
  }
}

}  // namespace

bool zz_zichtbaar(std::string_view regel) noexcept {
  return regel.find_first_not_of(" \r\n") != std::string_view::npos;
}

void zz_leeg(PrtFmt& f) noexcept {
  f.line[0].clear();
  f.line[1].clear();
  f.last_pos = -1;
}

void zz_flush(PrtFmt& f, const ZzUit& uit) {
  uit.paar(uit.wie, f.line[0], f.line[1]);
  zz_leeg(f);
}

bool zz_begin(PrtFmt& f) noexcept {
  try {
    for (std::string& regel : f.line) regel.reserve(static_cast<size_t>(f.buf_size));
    for (std::string* s : {&f.val_buf, &f.ref_buf, &f.piece_buf})
      s->reserve(static_cast<size_t>(f.fmt_size));
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

std::string zz_instellen(PrtFmt& f, const char* maxfmt, const char* sysbuf, const char* maxsysbuf) {
  const auto onleesbaar = [](const Tekst& t) { return str_format(txt(t), txt(T_PRT_ONBEKEND)); };
  const auto lees = [](const char* s) {
    return static_cast<int32_t>(std::clamp(std::strtol(s, nullptr, 10), 0L, 1L << 24));
  };
  f.fmt_size = maxfmt == nullptr ? ZZ_FORMAAT : lees(maxfmt);
  if (f.fmt_size == 0) return onleesbaar(T_PRT_MMEINI);
  f.buf_size = sysbuf == nullptr ? ZZ_REGEL : lees(sysbuf);
  if (f.buf_size == 0) return onleesbaar(T_PRT_SYSBUF);
  if (f.buf_size > ZZ_HOOGSTE) return txt(T_PRT_SYSBUF_HOOG);
  f.buf_max = 0;
  if (maxsysbuf == nullptr) return {};
  f.buf_max = lees(maxsysbuf);
  if (f.buf_max == 0) return onleesbaar(T_PRT_MAXSYSBUF);
  if (f.buf_max > ZZ_HOOGSTE) return txt(T_PRT_MAXSYSBUF_HOOG);
  if (sysbuf == nullptr && f.buf_max < ZZ_REGEL) return txt(T_PRT_MAXSYSBUF_300);
  if (f.buf_max < f.buf_size) return txt(T_PRT_MAXSYSBUF_LAAG);
  return {};
}

ZzUitslag zz_print(PrtFmt& f, std::string_view formaat, std::span<const Arg> args,
                   const ZzUit& uit) {
  Loop loop{f.zigzag_on};
  Conversie stuk;
  while (formaat_volgende(formaat, stuk)) {
    if (stuk.letter != 0 && stuk.letter != 's' && stuk.letter != 'c' &&
        !een_van(stuk.letter, GEHEEL) && !een_van(stuk.letter, BREUK)) {
      return {ZzFout::letter, 0, stuk.letter};
    }
    if (!stuk_maak(f, stuk, args, loop)) continue;
    const int regel = kies_regel(f, f.val_buf.size(), loop.mag);
    const int32_t kolom = f.last_pos + static_cast<int32_t>(f.ref_buf.size()) -
                          static_cast<int32_t>(f.val_buf.size()) + 1;
    const ZzUitslag uitslag = plaats_regels(f, regel, kolom, uit);
    if (uitslag.fout != ZzFout::geen) return uitslag;
  }
  return {};
}
