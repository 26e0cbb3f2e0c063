// winkel import: lines of text into a table. Guarantees that every field of every line was found
// good, and every key free, before anything is written. Records are changed as any program changes
// them, one by one under their locks, so users may be at work; bytes that no field names stay as
// they are. A run that was broken off can be done again.
#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

#include "isam/io.h"
#include "isam/ix.h"
#include "main/batchvw.h"
#include "main/iotab.h"
#include "sub/datacom.h"
#include "sub/ioeti_intern.h"
#include "sub/tabeldef.h"
#include "tools/winkel.h"
#include "tools/winkel_csv.h"

namespace {

constexpr int SESSIE = 99, FUNCTIE_DATACOM = 2;

struct Import {
  std::string map = ".", tabel, bestand;
};

/// A line of the file: the values that it gives, in a record of their own.
struct Opgave {
  int regel;
  std::vector<uint8_t> rec;
  std::vector<const CsvKolom*> gezet;
};

struct Invoer {
  const Import& o;
  std::vector<CsvKolom> kolommen;
  std::vector<Opgave> opgaven;

  [[noreturn]] void fout(int regel, std::string_view reden) const {
    winkel_fout(o.bestand, fmt::format("regel {}: {}", regel, reden));
  }
  [[noreturn]] void veldfout(int regel, std::string_view veld, std::string_view reden) const {
    fout(regel, fmt::format("veld {}: {}", veld, reden));
  }
};

std::string lees_bestand(const std::string& naam) {
  if (naam == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  std::ifstream in(naam, std::ios::binary);
  if (!in) winkel_fout_errno(naam);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Lines to values ---------------------------------------------------------------------------------

const CsvKolom* kolom_van(const Invoer& in, const std::string& naam) {
  const auto k = std::ranges::find(in.kolommen, naam, &CsvKolom::naam);
  return k == in.kolommen.end() ? nullptr : &*k;
}

/// The columns of a line; lines of one heading have the same, which is looked up once.
struct Kop {
  std::vector<std::string> namen;
  std::vector<const CsvKolom*> kolommen;

  void zoek(const Invoer& in, const CsvRij& rij) {
    const bool zelfde = std::ranges::equal(
        rij.waarden, namen, [](const auto& paar, const std::string& n) { return paar.first == n; });
    if (zelfde && !namen.empty()) return;
    namen.clear();
    kolommen.clear();
    for (const auto& [naam, tekst] : rij.waarden) {
      const CsvKolom* k = kolom_van(in, naam);
      if (k == nullptr) in.veldfout(rij.regel, naam, in.o.tabel + " heeft dat veld niet");
      if (std::ranges::find(kolommen, k) != kolommen.end())
        in.veldfout(rij.regel, naam, "staat er twee keer");
      namen.push_back(naam);
      kolommen.push_back(k);
    }
  }
};

void lees_opgaven(Invoer* in, const CsvTekst& tekst, size_t lengte) {
  Kop kop;
  for (const CsvRij& rij : tekst.rijen) {
    kop.zoek(*in, rij);
    Opgave op{rij.regel, std::vector<uint8_t>(lengte), kop.kolommen};
    for (size_t i = 0; i < rij.waarden.size(); ++i) {
      const std::string& waarde = rij.waarden[i].second;
      std::string bezwaar = csv_zet(*kop.kolommen[i], waarde, op.rec);
      const bool past = kop.kolommen[i]->veld->soort != VeldSoort::verhuld ||
                        waarde.size() + 2 <= kop.kolommen[i]->breedte();
      if (bezwaar.empty() && !past) bezwaar = "te lang om te verbergen";
      if (!bezwaar.empty())
        in->veldfout(rij.regel, rij.waarden[i].first, fmt::format("{}: \"{}\"", bezwaar, waarde));
    }
    in->opgaven.push_back(std::move(op));
  }
}

/// The values of a line over a record as it stands.
void leg_op(const Opgave& op, std::vector<uint8_t>* rec) {
  for (const CsvKolom* k : op.gezet) {
    const std::span<const uint8_t> nieuw(op.rec.data() + k->plaats(), k->breedte());
    uint8_t* p = rec->data() + k->plaats();
    auto* veld = reinterpret_cast<char*>(p);
    const std::string tekst = veld_tekst(reinterpret_cast<const char*>(nieuw.data()), nieuw.size());
    switch (k->veld->soort) {
      case VeldSoort::tekst:
        if (veld_tekst(veld, k->breedte()) != tekst) std::ranges::copy(nieuw, p);
        break;
      case VeldSoort::verhuld: {
        if (unscramble_veld(veld, k->breedte()) == tekst) break;
        std::string geheim = tekst + std::string(2, '\0');  // it grows by one
        if (!tekst.empty()) scramble_op(geheim.data(), std::time(nullptr));
        veld_zet(veld, k->breedte(), geheim.c_str());
        break;
      }
      default:
        std::ranges::copy(nieuw, p);
    }
  }
}

/// A record that the lines add begins so: pointers to chains and the warehouse have a value for
/// none.
std::vector<uint8_t> nieuw_record(std::string_view tabel, size_t lengte) {
  std::vector<uint8_t> rec(lengte);
  if (tabel == "DTSER") std::fill_n(rec.begin() + offsetof(DtSer, blok1), 4, uint8_t{255});
  if (tabel == "DTIPA") std::fill_n(rec.begin() + offsetof(DtIpa, groep1), 4, uint8_t{255});
  if (tabel == "DTART") rec[offsetof(DtArt, magazijn)] = FILIAAL_GEEN;
  return rec;
}

/// A series points at a block of its own labels: another's would mix their stock.
struct Blokproef {
  int fd = io_open("DTETI.TXT", false);
  Blokproef() = default;
  ~Blokproef() {
    if (fd >= 0) io_close(fd);
  }
  Blokproef(const Blokproef&) = delete;
  Blokproef& operator=(const Blokproef&) = delete;
  bool goed(const std::vector<uint8_t>& rec) const {
    DtSer s{};
    Serienr eigenaar{};
    std::ranges::copy(rec, reinterpret_cast<uint8_t*>(&s));
    constexpr int64_t n = sizeof eigenaar;
    return s.blok1 == -1 ||
           (s.blok1 >= 0 && fd >= 0 &&
            io_lees(fd, &eigenaar, n, s.blok1 * int64_t{sizeof(EtiBlok)}) == n && eigenaar == s.nr);
  }
};

// Keys --------------------------------------------------------------------------------------------

std::string sleutelbeeld(ICB* icb, int sleutel, const std::vector<uint8_t>& rec) {
  IXSWITCH(icb, sleutel);
  const int n = IXKEYLEN(icb, 0);
  IXBLDKEY(icb, rec.data(), n);
  return {reinterpret_cast<const char*>(icb->key_buf), static_cast<size_t>(n)};
}

/// All bytes of key 1 must be given, or the line names no record.
void keur_kolommen(const Invoer& in, const ICB& icb, const Opgave& op) {
  const IxSleutel& s = icb.keys[0];
  for (int i = 0; i < IX_VELDEN && s.field_type[i] != 0; ++i)
    for (size_t b = s.field_start[i] - 1u; b < s.field_end[i]; ++b) {
      const auto bevat = [b](const CsvKolom* k) {
        return b >= k->plaats() && b < k->plaats() + k->breedte();
      };
      if (std::ranges::any_of(op.gezet, bevat)) continue;
      const auto hoort =
          std::ranges::find_if(in.kolommen, [&](const CsvKolom& k) { return bevat(&k); });
      if (hoort != in.kolommen.end()) in.veldfout(op.regel, hoort->naam, "ontbreekt");
    }
}

bool uniek(const IxSleutel& s) { return s.dup != 'J'; }

/// No two lines with one key, and no other record that has a key of the line.
struct Sleutelproef {
  const Invoer& in;
  ICB* icb;
  std::array<std::set<std::string>, IX_SLEUTELS> gezien{};

  void keur(const Opgave& op, const std::vector<uint8_t>& rec) {
    const std::string eerste = sleutelbeeld(icb, 1, rec);
    for (int s = 1; s <= icb->key_count; ++s) {
      const IxSleutel& def = icb->keys[s - 1];
      if (!uniek(def)) continue;
      const std::string wat =
          fmt::format("sleutel {}", veld_tekst(def.key_name, sizeof def.key_name));
      if (!gezien[static_cast<size_t>(s - 1)].insert(sleutelbeeld(icb, s, rec)).second)
        in.veldfout(op.regel, wat, "staat al op een eerdere regel");
      if (s == 1) continue;
      std::vector<uint8_t> ander = rec;
      IXSWITCH(icb, s);
      if (IXREAD(icb, ander.data()) && sleutelbeeld(icb, 1, ander) != eerste)
        in.veldfout(op.regel, wat, "is van een ander record");
    }
    IXSWITCH(icb, 1);
  }
};

// Into a table ------------------------------------------------------------------------------------

struct Telling {
  int nieuw = 0, gewijzigd = 0, gelijk = 0;
};

void schrijf(const Invoer& in, ICB* icb, const Opgave& op, Telling* t) {
  std::vector<uint8_t> rec = op.rec;
  const bool er = IXREADL(icb, rec.data());
  if (!er) rec = nieuw_record(in.o.tabel, rec.size());
  const std::vector<uint8_t> stond = rec;
  leg_op(op, &rec);
  if (er && rec == stond) {
    IXRELEASE(icb, rec.data());
    ++t->gelijk;
    return;
  }
  if (!IXWRITE(icb, rec.data())) {
    IXRELEASE(icb, rec.data());
    in.fout(op.regel, fmt::format("kan niet geschreven worden; {} regels ervoor wel",
                                  t->nieuw + t->gewijzigd + t->gelijk));
  }
  ++(er ? t->gewijzigd : t->nieuw);
}

void in_tabel(Invoer* in, const TabelDef& def, const CsvTekst& tekst) {
  lees_opgaven(in, tekst, static_cast<size_t>(def.lengte));
  ICB* icb = tabel_open(def.name, IX_GEDEELD);
  Sleutelproef proef{*in, icb};
  const Blokproef blokken;
  const bool series = std::string_view(def.name) == "DTSER";
  for (const Opgave& op : in->opgaven) {
    keur_kolommen(*in, *icb, op);
    std::vector<uint8_t> rec = op.rec;
    IXSWITCH(icb, 1);
    if (!IXREAD(icb, rec.data())) rec = nieuw_record(def.name, rec.size());
    leg_op(op, &rec);
    proef.keur(op, rec);
    if (series && !blokken.goed(rec)) in->veldfout(op.regel, "blok1", "is van een andere serie");
  }
  Telling t;
  for (const Opgave& op : in->opgaven) schrijf(*in, icb, op, &t);
  IXCLOSE(icb);
  fmt::print("{}: {} toegevoegd, {} gewijzigd, {} gelijk\n", def.name, t.nieuw, t.gewijzigd,
             t.gelijk);
}

// Into DTDCIF.TXT ---------------------------------------------------------------------------------

void keur_transactie(const Invoer& in, const Opgave& op) {
  DcRegel r;
  std::ranges::copy(op.rec, reinterpret_cast<uint8_t*>(&r));
  for (const CsvKolom& k : in.kolommen)
    if (std::ranges::find(op.gezet, &k) == op.gezet.end() && k.veld->vorm != VeldVorm::stuks &&
        k.naam != "nummer")
      in.veldfout(op.regel, k.naam, "ontbreekt");
  if (r.code[0] == 0) in.veldfout(op.regel, "code", "is leeg");
  if (r.soort > DC_ONTVANGEN) in.veldfout(op.regel, "soort", "0 verzenden, 1 ontvangen");
  if (r.datum == 0) in.veldfout(op.regel, "datum", "is leeg");
}

/// One write behind what stands there, while nobody processes or corrects it.
void voeg_toe(const std::vector<uint8_t>& bytes) {
  const int fd = io_open(DC_BESTAND, true);
  if (fd < 0) winkel_fout_errno(DC_BESTAND);
  const int64_t heel = io_grootte(fd) / static_cast<int64_t>(sizeof(DcRegel));
  const auto n = static_cast<int64_t>(bytes.size());
  if (io_schrijf(fd, bytes.data(), bytes.size(), heel * static_cast<int64_t>(sizeof(DcRegel))) !=
      n) {
    const int reden = errno;
    io_kap(fd, heel * static_cast<int64_t>(sizeof(DcRegel)));
    errno = reden;
    winkel_fout_errno(DC_BESTAND);
  }
  io_close(fd);
}

void in_datacom(Invoer* in, const CsvTekst& tekst) {
  lees_opgaven(in, tekst, sizeof(DcRegel));
  std::vector<uint8_t> bytes;
  for (Opgave& op : in->opgaven) {
    const CsvKolom* stuks = kolom_van(*in, "stuks");
    if (std::ranges::find(op.gezet, stuks) == op.gezet.end()) csv_zet(*stuks, "", op.rec);
    keur_transactie(*in, op);
    bytes.insert(bytes.end(), op.rec.begin(), op.rec.end());
  }
  session_terminal = SESSIE;
  int32_t n = 1;
  iotab('O', &n, nullptr, SYS_RECORDS);
  if (!vw_claim_excl(FUNCTIE_DATACOM)) {
    fmt::print(stderr, "winkel: een terminal werkt aan de transacties\n");
    std::exit(UIT_BEZET);
  }
  if (!bytes.empty()) voeg_toe(bytes);
  vw_free_excl(FUNCTIE_DATACOM);
  iotab('C', &n, nullptr, SYS_RECORDS);
  fmt::print("DTDCIF: {} toegevoegd\n", in->opgaven.size());
}

void doe_import(const Import& o) {
  const TabelDef* def = tabel_zoek(o.tabel);
  if (def == nullptr && o.tabel != "DTDCIF") winkel_fout(o.tabel, "is geen tabel");
  const std::string bytes = lees_bestand(o.bestand);  // named from where the operator stands
  in_keten(o.map);
  const CsvTekst tekst = csv_lees(bytes);
  Invoer in{o, csv_kolommen(velden_van(o.tabel)), {}};
  if (!tekst.fout.empty()) in.fout(tekst.regel, tekst.fout);
  if (def == nullptr)
    in_datacom(&in, tekst);
  else
    in_tabel(&in, *def, tekst);
}

}  // namespace

void verb_import(CLI::App& app) {
  static Import o;
  CLI::App* verb = app.add_subcommand("import", "records uit een tekst in een tabel");
  optie_map(verb, &o.map);
  verb->add_option("tabel", o.tabel, "DTSER, DTART, ...; DTDCIF: achter wat er staat")
      ->required()
      ->type_name("TABEL");
  verb->add_option("bestand", o.bestand, "als van export, ook JSON; - is standaardinvoer")
      ->required()
      ->type_name("BESTAND");
  verb->callback([] { doe_import(o); });
}
