// The four small tables of print destinations, in the directory of KOBPRT. Text fields are code
// page 850, zero-padded, not terminated when full.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr uint16_t PTR_SCHERM = 1;  // printer number of the screen
inline constexpr uint16_t PTR_EINDELOOS = 9999;

inline constexpr const char* TR_PTRG = "TR_PTRG";
inline constexpr const char* TR_PTRC = "TR_PTRC";
inline constexpr const char* TR_PTRP = "TR_PTRP";
inline constexpr const char* TR_PTRCA = "TR_PTRCA";

#pragma pack(push, 1)
/*   OFFSET SIZE FIELD     TR_PTRG: a printer, 16 bytes; keys: 1 number, 2 name
 *        0    2 tr_code   printer number
 *        2    2 nul
 *        4   12 name                                                                          */
struct PtrgRec {
  uint16_t tr_code;
  uint16_t nul;
  char name[12];
};

/*   OFFSET SIZE FIELD     TR_PTRC: a connection, 64 bytes; keys: 1 number, 2 device, 3 name
 *        0    2 tr_code   printer number
 *        2    1 id        connection number
 *        3    1 to_dir    0 the device is a printer or a file, 1 a directory
 *        4   40 device    a queue of lp, a path, "TERMINAL" or "AUX"
 *       44   20 name                                                                          */
struct PtrcRec {
  uint16_t tr_code;
  uint8_t id;
  uint8_t to_dir;
  char device[40];
  char name[20];
};

/*   OFFSET SIZE FIELD     TR_PTRP: a configuration, 284 bytes; keys: 1 number, 2 columns,
 *                         3 description
 *        0    2 tr_code   printer number
 *        2    1 id        configuration number
 *        3    1 portrait  0 landscape
 *        4    2 columns
 *        6    2 rows      of a page; 0 or 9999 endless
 *        8   32 desc
 *       40  122 start     sent before the text; \hh is a byte in hexadecimal, \\ a backslash
 *      162  122 stop      sent after it
 */
struct PtrpRec {
  uint16_t tr_code;
  uint8_t id;
  uint8_t portrait;
  uint16_t columns;
  uint16_t rows;
  char desc[32];
  char start[122];
  char stop[122];
};

/*   OFFSET SIZE FIELD     TR_PTRCA: codes of a capability, 126 bytes; key: all four leading bytes
 */
struct PtrcaRec {
  uint16_t tr_code;
  uint8_t id;
  uint8_t cap;
  char code[122];
};
#pragma pack(pop)
static_assert(sizeof(PtrgRec) == 16 && offsetof(PtrgRec, name) == 4);
static_assert(sizeof(PtrcRec) == 64 && offsetof(PtrcRec, device) == 4 &&
              offsetof(PtrcRec, name) == 44);
static_assert(sizeof(PtrpRec) == 284 && offsetof(PtrpRec, columns) == 4 &&
              offsetof(PtrpRec, rows) == 6);
static_assert(offsetof(PtrpRec, desc) == 8 && offsetof(PtrpRec, start) == 40 &&
              offsetof(PtrpRec, stop) == 162);
static_assert(sizeof(PtrcaRec) == 126 && offsetof(PtrcaRec, code) == 4);
