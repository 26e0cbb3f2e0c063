// DTSYS.TXT, the one non-keyed file of the system: numbered records of a few tables, read and
// written through one routine with action letters. The open descriptor also carries the locks of
// the terminal records and the work-exclusion bands, so it is opened once and stays open from first
// to last.
#pragma once

#include <cstdint>

struct SysTabel {
  int32_t basis;  // offset of record 1
  int32_t aantal;
  int32_t lengte;
};
inline constexpr SysTabel SYS_RECORDS{0, 25, 64};
inline constexpr SysTabel SYS_TERMINALS{2640, 99, 64};
inline constexpr SysTabel SYS_FILIAALREEKSEN{8976, 99, 56};
inline constexpr SysTabel SYS_VALUTA{14880, 99, 36};
inline constexpr SysTabel SYS_KLEUREN{18444, 999, 20};
inline constexpr SysTabel SYS_CODES_ACTIE{38424, 10, 30};
inline constexpr SysTabel SYS_CODES_CORRECTIE{38724, 10, 30};
inline constexpr SysTabel SYS_CODES_INKOOP{39024, 10, 30};
inline constexpr SysTabel SYS_CODES_SEIZOEN{39324, 10, 30};
inline constexpr SysTabel SYS_ACTIES{41984, 99, 64};
inline constexpr SysTabel SYS_SUB20{65460, 100, 20};
inline constexpr SysTabel SYS_SUB52{67460, 100, 52};
inline constexpr int64_t SYS_GROOTTE = 72660;

/// 'O' open, 'C' close, 'R' read, 'N' next, 'P' previous, 'F' first from here, 'W' write and
/// unlock, 'w' write and keep the lock, 'D' delete, 'X' lock (waits, two seconds a round) and read,
/// 'T' lock test, 'U' unlock. A record of zeros reads as false although the bytes are in the buffer
/// (and under 'X' locked). A number out of range gives false; writes of one do nothing.
bool iotab(char actie, int32_t* nummer, void* buffer, int32_t basis, int32_t aantal,
           int32_t lengte);
inline bool iotab(char actie, int32_t* nummer, void* buffer, const SysTabel& t) {
  return iotab(actie, nummer, buffer, t.basis, t.aantal, t.lengte);
}
/// Descriptor of DTSYS.TXT, -1 while closed.
int iotab_fd() noexcept;

/// Tables of the terminal's own group (byte 62 of its record): the digit 0-9 goes in and out.
bool sys_sub20(char actie, int32_t* nummer, void* buffer);
bool sys_sub52(char actie, int32_t* nummer, void* buffer);

// The shared texts of who holds a lock live in controle.
