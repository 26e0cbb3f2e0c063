// SHA-256 of files, and the list of them that stands in a copy of a data directory: the lines that
// sha256sum writes and checks, in a file of its name.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

inline constexpr const char* MANIFEST = "SHA256SUMS";

struct ManifestRij {
  std::string hash;  // 64 hexadecimal digits
  std::string naam;  // without a directory
};

std::string sha256_van(std::span<const uint8_t> bytes);
/// Of a file as the disk has it, not the memory; empty, with errno, when it cannot be read whole.
std::string sha256_bestand(const std::string& pad);

std::string manifest_tekst(std::span<const ManifestRij>);
/// What is wrong with the files of a directory against the list in it, a line each: a file that
/// differs, is missing, or is not in the list.
std::vector<std::string> manifest_toets(const std::string& map, size_t* aantal);
