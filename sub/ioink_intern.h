// The price files' inner side: groups on disk, and the rule for overlapping periods.
#pragma once

#include "isam/ix.h"
#include "sub/ioink.h"

struct InkStand {
  ICB* dtipa = nullptr;
  int fd = -1;  // DTIPG.TXT
  int mode = 0;
  char actie = 0;  // for the reports
};
extern InkStand ink;

enum Inkfout { INK_DICHT = 1, INK_REEDS_OPEN = 2 };
/// What a failed read of a group leads to.
enum class Niveau { stil, waarschuw, fataal };

void ink_moet_open();
/// Group `nummer`; with a set, it must be of that series and period.
bool ink_lees_groep(int32_t nummer, Niveau niveau, DtIpg* groep, const DtIpa* set);
void ink_schrijf_groep(int32_t nummer, const DtIpg& groep);
/// Numbers of the set's groups in chain order, as far as they read and belong to it.
std::vector<Prijsgroep> ink_keten(const DtIpa& set, Niveau niveau);
/// The set with the key of `rec` in `rec`; a missing one ends the program.
void ink_moet_er_zijn(DtIpa* rec);
/// Other processes may have changed the index: read it anew where price work is shared.
void ink_heropen();

enum class Overlap { geen, wissen, begin_later, eind_eerder, splitsen };

/// What happens to a set that runs from `begin` to `eind` when a new one takes [van, tm]. Both ends
/// count; periods that only touch leave each other alone.
constexpr Overlap ink_overlap(uint16_t begin, uint16_t eind, uint16_t van, uint16_t tm) {
  if (van <= begin && eind <= tm) return Overlap::wissen;
  if (van <= begin && begin <= tm) return Overlap::begin_later;
  if (van <= eind && eind <= tm) return Overlap::eind_eerder;
  if (begin < van && eind > tm) return Overlap::splitsen;
  return Overlap::geen;
}
