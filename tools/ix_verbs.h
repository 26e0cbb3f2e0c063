// The verbs of ixtool. Each returns the exit status: 0 sound, 1 a fault, 2 a call that cannot be.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct IxOpdracht {
  std::vector<std::string> namen;
  bool json = false;
  int wacht = 30;          // seconds for a lock that somebody keeps
  bool verouderd = false;  // check: a private index may be older than its table
  bool records = false;    // dump
  int64_t blok = -1;       // dump
  int64_t van = 0, aantal = -1;
  int sleutel = 1;  // walk
  std::vector<std::string> velden, prefix;
  bool wis = false;     // queue
  bool ruw = false;     // dump: bytes in hexadecimal, what load takes back without loss
  std::string bestand;  // load
};

int ix_check(const IxOpdracht&);
int ix_rebuild(const IxOpdracht&);
int ix_dump(const IxOpdracht&);
int ix_walk(const IxOpdracht&);
int ix_stat(const IxOpdracht&);
int ix_queue(const IxOpdracht&);
int ix_load(const IxOpdracht&);

/// What a name stands for.
enum class DoelSoort : uint8_t { tabel, privaat, plat };
struct Doel {
  std::string naam;
  DoelSoort soort;
  bool genoemd;  // asked for by name, so that its absence is a fault
};
/// The names, or without any all that stands in the current directory. Nothing, with a line on
/// standard error, when one of them cannot be a name.
std::optional<std::vector<Doel>> ix_doelen(const std::vector<std::string>& namen);
