// The engine's small steps one by one: what a key image, a comparison and a search cost.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/gegevens.h"
#include "isam/ix_intern.h"

namespace {

constexpr uint32_t RECORDS = 20000;

/// A table of 20,000 series in a folder of its own, open for as long as the program runs.
struct Tabel {
  std::filesystem::path map;
  ICB* icb;
  Tabel() {
    std::string naam = (std::filesystem::current_path() / "ix_benchXXXXXX").string();
    if (mkdtemp(naam.data()) == nullptr) abort();
    map = naam;
    const std::string pad = (map / "DTSER").string();
    ICB* nieuw = IXCREATE(pad.c_str(), IX_EXCLUSIEF);
    meet_definitie(nieuw);
    for (DtSer r : meet_series(0, RECORDS)) IXWRITE(nieuw, &r);
    IXCLOSE(nieuw);
    icb = IXOPEN(pad.c_str(), IX_GEDEELD);
  }
  ~Tabel() {
    IXCLOSE(icb);
    std::error_code stil;
    std::filesystem::remove_all(map, stil);
  }
  Tabel(const Tabel&) = delete;
  Tabel& operator=(const Tabel&) = delete;
};

Tabel& tabel() {
  static Tabel t;
  return t;
}

void beeld(benchmark::State& state) {
  ICB* icb = tabel().icb;
  const IxSleutel& s = icb->keys[state.range(0) - 1];
  const DtSer r = meet_serie(5);
  uint8_t uit[IX_SLEUTELBYTES];
  for (auto _ : state) {
    ix_beeld(icb, s, &r, s.key_length, 1, uit);
    benchmark::DoNotOptimize(uit);
  }
}
BENCHMARK(beeld)->DenseRange(1, 3);

void vergelijk(benchmark::State& state) {
  ICB* icb = tabel().icb;
  const IxSleutel& s = icb->keys[state.range(0) - 1];
  const DtSer a = meet_serie(5), b = meet_serie(6);
  uint8_t x[IX_SLEUTELBYTES], y[IX_SLEUTELBYTES];
  ix_beeld(icb, s, &a, s.key_length, 1, x);
  ix_beeld(icb, s, &b, s.key_length, 2, y);
  for (auto _ : state) benchmark::DoNotOptimize(ix_vergelijk(s, x, y, s.key_length));
}
BENCHMARK(vergelijk)->DenseRange(1, 3);

void collatie(benchmark::State& state) {
  const uint8_t a[] = "PANTALON GEWEVEN", b[] = "Pantalon geweveN";
  for (auto _ : state) benchmark::DoNotOptimize(ix_collatie(a, b, 15));
}
BENCHMARK(collatie);

void lezen(benchmark::State& state) {
  ICB* icb = tabel().icb;
  IXSWITCH(icb, static_cast<int>(state.range(0)));
  Toeval t{9};
  for (auto _ : state) {
    DtSer r = meet_serie(t.tot(RECORDS));
    benchmark::DoNotOptimize(IXREAD(icb, &r));
  }
}
BENCHMARK(lezen)->DenseRange(1, 3);

void volgende(benchmark::State& state) {
  ICB* icb = tabel().icb;
  IXSWITCH(icb, 1);
  DtSer r{};
  for (auto _ : state)
    if (!IXNEXT(icb, &r)) r = {};
}
BENCHMARK(volgende);

void bijwerken(benchmark::State& state) {
  ICB* icb = tabel().icb;
  IXSWITCH(icb, 1);
  Toeval t{9};
  for (auto _ : state) {
    DtSer r = meet_serie(t.tot(RECORDS));
    IXREADL(icb, &r);
    ++r.voorraad;
    IXWRITE(icb, &r);
  }
}
BENCHMARK(bijwerken);

void slotpaar(benchmark::State& state) {
  const int fd = tabel().icb->index_fd;
  for (auto _ : state) {
    file_lock('E', fd, 0, IX_BLOK);
    file_lock('U', fd, 0, IX_BLOK);
  }
}
BENCHMARK(slotpaar);

}  // namespace
