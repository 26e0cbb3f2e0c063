// What a check of a table found: faults and remarks, each a line that names its place. Text is
// UTF-8. A broken file can have a fault a record; only the first ones are kept, all are counted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

/// Where: key from 1 (0 none), block and record from 0 (-1 none).
struct Plek {
  int sleutel = 0;
  int64_t blok = -1, record = -1;
};

struct Bevinding {
  bool fout;  // else a remark
  Plek plek;
  std::string wat;
};

struct Verslag {
  std::string tabel;
  std::vector<Bevinding> rijen;
  size_t fouten = 0, noten = 0;
  std::string stand;  // what to say of a sound table: "120 records, 3 verwijderd"

  void fout(const Plek& plek, std::string wat);
  void noot(const Plek& plek, std::string wat);
  bool in_orde() const { return fouten == 0; }
};

/// "DTPICK, sleutel 2, blok 17: ..." without a newline.
std::string verslag_regel(const Verslag&, const Bevinding&);
/// All lines on standard output.
void verslag_toon(const Verslag&);
nlohmann::ordered_json verslag_json(const Verslag&);
/// A JSON text on standard output; bytes that are no UTF-8 are replaced.
void json_toon(const nlohmann::ordered_json&);
