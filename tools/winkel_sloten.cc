// The proofs, one after the other; each goes both ways between two processes, and stops at the
// first thing that a shared table could not live with.
#include "tools/winkel_sloten.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include "tools/winkel_sloten_agent.h"

namespace {

constexpr int64_t GROOT = int64_t{6} << 30;  // beyond what 32 bits can say

constexpr short SOORTEN[] = {F_WRLCK, F_RDLCK};

struct Proef {
  SlotAgent &a, &b;
  std::string map_a;  // where another process at a's side works
  const SlotMaat& maat;
};

SlotAntwoord doe(SlotAgent& wie, SlotDoe wat, int64_t van = 0, int64_t getal = 0) {
  return wie.vraag({wat, 0, van, SLOT_BLOK, getal, {}});
}

SlotAntwoord slot(SlotAgent& wie, SlotDoe wat, short soort, int64_t van, int64_t lengte) {
  return wie.vraag({wat, soort, van, lengte, 0, {}});
}

bool neem(SlotAgent& wie, short soort, int64_t van, int64_t lengte) {
  return slot(wie, SlotDoe::slot, soort, van, lengte).uit == 0;
}

bool los(SlotAgent& wie) { return neem(wie, F_UNLCK, 0, 0); }

bool geweigerd(const SlotAntwoord& s) {
  return s.uit != 0 && (s.fout == EAGAIN || s.fout == EACCES);
}

std::string met_fout(const char* wat, const SlotAntwoord& s) {
  if (s.uit != -1) return wat;
  return fmt::format("{} ({})", wat, s.fout == EILSEQ ? "geen heel blok" : std::strerror(s.fout));
}

/// A name that was looked for in vain is found as soon as it is made, and gone with its removal.
std::string namen(const Proef& p) {
  for (int n = 1; n <= 3; ++n) {
    if (doe(p.b, SlotDoe::is_er).uit != 0) return "een weggehaald bestand is er nog";
    const SlotAntwoord w = doe(p.a, SlotDoe::wissel, 0, n);
    if (w.uit != 0) return met_fout("een bestand krijgt zijn naam niet", w);
    const SlotAntwoord s = doe(p.b, SlotDoe::toon);
    if (s.uit != n) return met_fout("een nieuw bestand is bij een ander proces niet te lezen", s);
    const SlotAntwoord weg = doe(p.b, SlotDoe::wis);
    if (weg.uit != 0) return met_fout("een bestand is niet weg te halen", weg);
    if (doe(p.a, SlotDoe::is_er).uit != 0) return "een weggehaald bestand is er nog";
  }
  return "";
}

struct Bereik {
  int64_t van, lengte;
};

std::string overlap(const Proef& p) {
  constexpr Bereik RAAKT[] = {{512, 512}, {0, 513}, {1023, 1}, {600, 10}, {0, 0}, {1000, 9000}};
  constexpr Bereik VRIJ[] = {{0, 512}, {1024, 512}, {1024, 0}, {GROOT, 512}};
  if (!neem(p.a, F_WRLCK, 512, 512)) return "een vrij bereik wordt geweigerd";
  for (const Bereik& r : RAAKT)
    for (const short soort : SOORTEN)
      if (!geweigerd(slot(p.b, SlotDoe::slot, soort, r.van, r.lengte)))
        return "een slot op wat een ander proces vasthoudt, wordt niet geweigerd";
  for (const Bereik& r : VRIJ)
    if (!neem(p.b, F_WRLCK, r.van, r.lengte)) return "een vrij bereik wordt geweigerd";
  if (!los(p.b) || !los(p.a)) return "een slot kan niet los";
  if (!neem(p.a, F_WRLCK, GROOT, 512)) return "een slot ver in een bestand wordt geweigerd";
  if (!geweigerd(slot(p.b, SlotDoe::slot, F_WRLCK, GROOT, 1)))
    return "een slot ver in een bestand houdt niemand tegen";
  if (!neem(p.b, F_WRLCK, GROOT & 0xFFFFFFFF, 512))
    return "een slot ver in een bestand staat op een verkeerde plaats";
  return los(p.a) && los(p.b) ? "" : "een slot kan niet los";
}

/// Read locks go together; a lock gives up its middle and keeps its ends.
std::string delen(const Proef& p) {
  if (!neem(p.a, F_RDLCK, 0, 100) || !neem(p.b, F_RDLCK, 0, 100))
    return "twee leessloten gaan niet samen";
  if (!geweigerd(slot(p.b, SlotDoe::slot, F_WRLCK, 0, 100)))
    return "een leesslot houdt geen schrijver tegen";
  if (!los(p.b) || !los(p.a)) return "een slot kan niet los";
  if (!neem(p.a, F_WRLCK, 0, 300) || !neem(p.a, F_UNLCK, 100, 100) || !neem(p.b, F_WRLCK, 100, 100))
    return "het midden van een slot kan niet los";
  for (const int64_t van : {99, 200})
    if (!geweigerd(slot(p.b, SlotDoe::slot, F_WRLCK, van, 1)))
      return "van een slot dat in het midden los ging, staan de einden niet meer";
  return los(p.a) && los(p.b) ? "" : "een slot kan niet los";
}

std::string houder(const Proef& p) {
  for (const short soort : SOORTEN) {
    if (!neem(p.a, soort, 1000, 152)) return "een vrij bereik wordt geweigerd";
    const SlotAntwoord s = slot(p.b, SlotDoe::wie, F_WRLCK, 0, 0);
    if (s.uit != 0 || s.slot.l_type == F_UNLCK) return "van een slot is geen houder te vinden";
    if (s.slot.l_pid != p.a.pid)
      return fmt::format("van een slot van proces {} heet {} de houder", p.a.pid, s.slot.l_pid);
    if (s.slot.l_type != soort || s.slot.l_start != 1000 || s.slot.l_len != 152)
      return "van een slot klopt het gemelde bereik niet";
    const SlotAntwoord vrij = slot(p.b, SlotDoe::wie, F_WRLCK, 1152, 0);
    if (vrij.uit != 0 || vrij.slot.l_type != F_UNLCK) return "een vrij bereik heet bezet";
    if (!los(p.a)) return "een slot kan niet los";
  }
  return "";
}

std::string dode(const Proef& p) {
  SlotAgent ander(p.map_a);
  if (doe(ander, SlotDoe::open).uit != 0 || !neem(ander, F_WRLCK, 512, 512))
    return "een derde proces krijgt geen slot";
  if (!geweigerd(slot(p.b, SlotDoe::slot, F_WRLCK, 512, 512)))
    return "een slot op wat een ander proces vasthoudt, wordt niet geweigerd";
  ander.dood();
  const timespec even{0, 1000000};
  for (int n = 0; !neem(p.b, F_WRLCK, 512, 512); ++n) {
    if (n >= 5000) return "het slot van een gestorven proces staat na 5 seconden nog";
    nanosleep(&even, nullptr);
  }
  return los(p.b) ? "" : "een slot kan niet los";
}

/// Blocks in turn, on page borders and across them.
std::string lezen(const Proef& p) {
  constexpr int64_t PLAATSEN[] = {0, 512, 3584, 4000, 8100, 65300};
  int n = 0;
  for (int64_t getal = 1; getal <= p.maat.rondes; ++getal) {
    const int64_t van = PLAATSEN[static_cast<size_t>(n++) % std::size(PLAATSEN)];
    const SlotAntwoord s = doe(p.a, SlotDoe::schrijf, van, getal);
    if (s.uit != 0) return met_fout("een blok kan niet geschreven worden", s);
    const SlotAntwoord l = doe(p.b, SlotDoe::lees, van);
    if (l.uit != getal)
      return met_fout("wat een proces schreef, leest een ander niet meteen terug", l);
  }
  return "";
}

std::string tellen(const Proef& p) {
  const SlotAntwoord s = doe(p.a, SlotDoe::schrijf, 0, 0);
  if (s.uit != 0) return met_fout("een blok kan niet geschreven worden", s);
  const SlotVraag tel{SlotDoe::tel, 0, 0, SLOT_BLOK, p.maat.sommen, {}};
  p.a.zeg(tel);
  p.b.zeg(tel);
  for (SlotAgent* wie : {&p.a, &p.b}) {
    const SlotAntwoord t = wie->hoor();
    if (t.uit != p.maat.sommen) return met_fout("tellen onder een slot mislukt", t);
  }
  for (SlotAgent* wie : {&p.a, &p.b})
    if (doe(*wie, SlotDoe::lees).uit != 2 * int64_t{p.maat.sommen})
      return "een wijziging onder een slot is door een andere overschreven";
  return "";
}

std::string groei(const Proef& p) {
  const SlotAntwoord s = doe(p.a, SlotDoe::maat);
  if (s.uit < 0) return met_fout("een bestand heeft geen grootte", s);
  int64_t einde = s.uit;
  for (int64_t n = 1; n <= 20; ++n) {
    if (doe(p.a, SlotDoe::schrijf, einde, n).uit != 0) return "een bestand kan niet groeien";
    if (doe(p.b, SlotDoe::maat).uit != einde + SLOT_BLOK)
      return "een bestand dat groeide, heeft bij een ander proces zijn oude grootte";
    if (doe(p.b, SlotDoe::lees, einde).uit != n)
      return "wat achter aan een bestand kwam, leest een ander proces niet";
    einde += SLOT_BLOK;
  }
  if (doe(p.b, SlotDoe::kap, 100).uit != 0) return "een bestand kan niet korter worden";
  if (doe(p.a, SlotDoe::maat).uit != 100)
    return "een bestand dat korter werd, heeft bij een ander proces zijn oude grootte";
  return "";
}

std::string naamwissel(const Proef& p) {
  const SlotAntwoord s = doe(p.a, SlotDoe::wissel, 0, 0);
  if (s.uit != 0) return met_fout("een bestand krijgt zijn naam niet", s);
  p.b.zeg({SlotDoe::kijk, 0, 0, 0, p.maat.wissels, {}});
  p.a.zeg({SlotDoe::wissels, 0, 0, 0, p.maat.wissels, {}});
  const SlotAntwoord w = p.a.hoor();
  if (w.uit != p.maat.wissels) return met_fout("een bestand krijgt zijn naam niet", w);
  const SlotAntwoord k = p.b.hoor();
  if (k.uit == -1 && k.fout == ENOENT) return "een naam die van bestand wisselt, is even weg";
  if (k.uit == -1 && k.fout == ESTALE)
    return "een naam die van bestand wisselt, geeft nog het oude bestand";
  if (k.uit != p.maat.wissels) return met_fout("een naam die van bestand wisselt, leest niet", k);
  return doe(p.b, SlotDoe::wis).uit == 0 ? "" : "een bestand is niet weg te halen";
}

constexpr struct {
  const char* wat;
  std::string (*doe)(const Proef&);
} PROEVEN[] = {{"dezelfde namen voor alle processen", namen},
               {"een slot weigert wat overlapt, en niets anders", overlap},
               {"leessloten gaan samen, sloten splitsen", delen},
               {"van een slot zijn houder en bereik bekend", houder},
               {"een gestorven proces laat geen slot na", dode},
               {"wat de een schrijft, leest de ander meteen", lezen},
               {"onder een slot gaat geen wijziging verloren", tellen},
               {"een bestand groeit en krimpt voor allen", groei},
               {"een naam wisselt in een keer van bestand", naamwissel}};

std::string alle_proeven(const Proef& heen, const Proef& terug, std::vector<SlotRegel>* verslag) {
  using klok = std::chrono::steady_clock;
  for (const auto& proef : PROEVEN) {
    const auto begin = klok::now();
    for (const Proef* p : {&heen, &terug})
      if (std::string fout = proef.doe(*p); !fout.empty()) return fout;
    const std::chrono::duration<double, std::milli> duur = klok::now() - begin;
    if (verslag != nullptr) verslag->push_back({proef.wat, duur.count()});
  }
  return "";
}

}  // namespace

std::string sloten_proef(const std::string& map, const std::string& tweede, const SlotMaat& maat,
                         std::vector<SlotRegel>* verslag) {
  const std::string& langs = tweede.empty() ? map : tweede;
  SlotVraag in{SlotDoe::map_maak, 0, 0, 0, 0, {}};
  const std::string naam = fmt::format("proef-sloten-{}", getpid());
  naam.copy(in.naam, sizeof in.naam - 1);
  SlotAgent a(map), b(langs);
  const SlotAntwoord gemaakt = a.vraag(in);
  if (gemaakt.uit != 0) return met_fout("in de map kan niets gemaakt worden", gemaakt);
  in.doe = SlotDoe::map_in;
  std::string fout;
  if (b.vraag(in).uit != 0) fout = langs + " toont niet wat hier gemaakt is";
  const SlotAntwoord open = doe(a, SlotDoe::open);
  if (fout.empty() && (open.uit != 0 || doe(b, SlotDoe::open).uit != 0))
    fout = met_fout("een bestand kan niet geopend worden", open);
  const std::string onder = "/" + naam;
  if (fout.empty())
    fout = alle_proeven({a, b, map + onder, maat}, {b, a, langs + onder, maat}, verslag);
  b.dood();  // a mount keeps the names of open files that are removed
  in.doe = SlotDoe::map_weg;
  const SlotAntwoord weg = a.vraag(in);
  if (fout.empty() && weg.uit != 0) fout = met_fout("een map is niet weg te halen", weg);
  return fout;
}
