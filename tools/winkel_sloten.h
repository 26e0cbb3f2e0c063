// Proof that a directory keeps the promises on which tables are shared: record locks, reads that
// see what others wrote, sizes and names that are the same for all. It is asked of processes that
// work in the directory, through one mount or two, and never of a shared mapping.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// How long each proof goes on: rounds of writing and reading, sums under a lock, changes of a
/// name.
struct SlotMaat {
  int rondes, sommen, wissels;
};
inline constexpr SlotMaat SLOT_KORT{50, 50, 25}, SLOT_LANG{4000, 2000, 1000};

struct SlotRegel {
  const char* wat;  // UTF-8
  double ms;
};

/// Works in a folder of its own inside `map`, seen by half of the processes through `tweede`
/// (empty: the same path), and takes it away. Empty when everything held, else the one thing that
/// did not.
std::string sloten_proef(const std::string& map, const std::string& tweede, const SlotMaat& maat,
                         std::vector<SlotRegel>* verslag = nullptr);

/// The calls that the proof makes; a test puts one that lies in its place.
struct SlotAanroep {
  int (*slot)(int fd, int opdracht, struct flock*);
  ssize_t (*lees)(int fd, void*, size_t n, off_t);
  ssize_t (*schrijf)(int fd, const void*, size_t n, off_t);
  int (*maat)(int fd, struct stat*);
  int (*open)(const char* naam, int wijze);
  int (*hernoem)(const char* van, const char* naar);
};
extern SlotAanroep slot_aanroep;
