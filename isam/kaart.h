// Read-only shared mappings of the engine's files, so that a read of a block or record is a copy in
// memory instead of a call to the system. Only where reads and other processes' writes are known to
// meet in one page cache: a file on a local file system (ext4, xfs, btrfs, tmpfs). Anywhere else,
// and for whatever a mapping cannot tell for certain, there is no piece and the caller reads
// plainly.
#pragma once

#include <cstddef>
#include <cstdint>

/// The longest piece that is given. What is read in longer ones is read through once: then a
/// mapping gains nothing and fills the process with pages.
inline constexpr size_t KAART_STUK = 4096;

/// Where `n` bytes from `offset` of the file behind `fd` stand in memory; null: read them plainly.
/// Other processes may be writing there. What was taken counts only if kaart_heel says so after it.
const uint8_t* kaart_stuk(int fd, int64_t offset, size_t n) noexcept;
/// False when the file was cut short under the piece: zeros were read that are not in it.
bool kaart_heel(int fd) noexcept;
/// Files that were not opened here have no mapping: their descriptors come and go unseen.
void kaart_open(int fd) noexcept;
void kaart_sluit(int fd) noexcept;
/// After this process cut the file.
void kaart_vergeet(int fd) noexcept;
/// Whether files get a mapping from now on; those that there are go. The environment's
/// OPDSALDO_KAART=nee has the same effect from the start.
void kaart_zet(bool aan) noexcept;
