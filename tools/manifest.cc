// See manifest.h.
#include "tools/manifest.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sha2.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

namespace {

namespace fs = std::filesystem;

constexpr size_t STUK = 1 << 18;

std::string hex(const uint8_t (&som)[SHA256_DIGEST_LENGTH]) {
  std::string uit;
  for (const uint8_t b : som) uit += fmt::format("{:02x}", b);
  return uit;
}

/// A line "hash  name"; false when it is none. A name that leaves the directory is none.
bool lees_rij(const std::string& regel, ManifestRij* rij) {
  constexpr size_t HASH = 2 * SHA256_DIGEST_LENGTH;
  if (regel.size() <= HASH + 2 || regel[HASH] != ' ') return false;
  rij->hash = regel.substr(0, HASH);
  rij->naam = regel.substr(HASH + 2);
  const bool cijfers = rij->hash.find_first_not_of("0123456789abcdef") == std::string::npos;
  return cijfers && rij->naam.find('/') == std::string::npos && rij->naam != MANIFEST;
}

std::string toets_bestand(const std::string& map, const ManifestRij& rij) {
  const std::string hash = sha256_bestand(map + "/" + rij.naam);
  if (hash.empty()) return fmt::format("{}: {}", rij.naam, std::strerror(errno));
  return hash == rij.hash ? "" : rij.naam + ": wijkt af";
}

}  // namespace

std::string sha256_van(std::span<const uint8_t> bytes) {
  SHA2_CTX ctx;
  SHA256Init(&ctx);
  SHA256Update(&ctx, bytes.data(), bytes.size());
  uint8_t som[SHA256_DIGEST_LENGTH];
  SHA256Final(som, &ctx);
  return hex(som);
}

std::string sha256_bestand(const std::string& pad) {
  const int fd = open(pad.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return {};
  posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
  static thread_local std::array<uint8_t, STUK> stuk;
  SHA2_CTX ctx;
  SHA256Init(&ctx);
  ssize_t n;
  while ((n = read(fd, stuk.data(), stuk.size())) != 0) {
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) break;
    SHA256Update(&ctx, stuk.data(), static_cast<size_t>(n));
  }
  const int fout = errno;
  close(fd);
  errno = fout;
  if (n < 0) return {};
  uint8_t som[SHA256_DIGEST_LENGTH];
  SHA256Final(som, &ctx);
  return hex(som);
}

std::string manifest_tekst(std::span<const ManifestRij> rijen) {
  std::string uit;
  for (const ManifestRij& r : rijen) uit += r.hash + "  " + r.naam + "\n";
  return uit;
}

std::vector<std::string> manifest_toets(const std::string& map, size_t* aantal) {
  *aantal = 0;
  std::ifstream lijst(map + "/" + MANIFEST);
  if (!lijst) return {fmt::format("{}: {}", MANIFEST, std::strerror(errno))};
  std::vector<std::string> fouten;
  std::set<std::string> bekend{MANIFEST};
  std::string regel;
  while (std::getline(lijst, regel)) {
    ManifestRij rij;
    if (!lees_rij(regel, &rij) || !bekend.insert(rij.naam).second) {
      fouten.push_back(fmt::format("{}: regel {} is niet te lezen", MANIFEST, bekend.size()));
      return fouten;
    }
    ++*aantal;
    if (std::string fout = toets_bestand(map, rij); !fout.empty()) fouten.push_back(fout);
  }
  std::error_code stil;
  for (const fs::directory_entry& e : fs::directory_iterator(map, stil)) {
    const std::string naam = e.path().filename().string();
    if (!bekend.contains(naam)) fouten.push_back(naam + ": staat niet in de lijst");
  }
  if (*aantal == 0) fouten.push_back(fmt::format("{}: is leeg", MANIFEST));
  return fouten;
}
