// The one place where blocks and records are read and written.
//
// Writes are pwrite. Reads come from a shared mapping on local file systems (isam/kaart.h) and are
// pread elsewhere; nobody above can tell which. A 512-byte write is not atomic against a reader, so
// a re-read that equals what was read whole before is whole, and any other is read again until two
// reads agree. A table's file is opened once a process: handles share descriptors through a
// registry of device and inode, because a close of any descriptor of a file drops all the process's
// locks on it. Tests may count, tear and stop transfers through io_proef.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Opens read-write, or gives another use of a descriptor that the process has on the same file.
/// `maken`: create with 0660 when absent. -1 with errno.
int io_open(const char* pad, bool maken);
/// Gives a use up; the descriptor closes with its last use.
void io_close(int fd) noexcept;
/// True while the process has the file of `pad` open through io_open; its descriptor in *fd.
bool io_bekend(const char* pad, int* fd) noexcept;

/// Tells files apart that had the same descriptor after each other.
uint32_t io_opening(int fd) noexcept;

/// Bytes read, short at the end of file; -1 with errno. EINTR is retried.
int64_t io_lees(int fd, void* buffer, size_t n, int64_t offset) noexcept;
/// Locks that a writer of a piece holds while it writes: one on the piece itself in `stuk_fd`, one
/// on the header of the index `kop_fd`. While either is free nobody is writing the piece; -1: not
/// known.
struct IoSloten {
  int stuk_fd = -1, kop_fd = -1;
};
/// As io_lees, for pieces that another process may be writing: two reads agree.
/// `oud` is what the caller last saw there, or null.
/// A writer that is kept from going on shows half a piece for so long that two reads agree on it,
/// so they only count with a moment between them at which one of `sloten` was free, if any is
/// given. That is waited for some milliseconds; `zeker` tells whether it came.
int64_t io_lees_heel(int fd, void* buffer, size_t n, int64_t offset, const void* oud,
                     IoSloten sloten = {}, bool* zeker = nullptr) noexcept;
/// Does the file hold there what was read whole before?
bool io_zelfde(int fd, const void* oud, size_t n, int64_t offset) noexcept;
/// Asks the processor for a piece that is about to be read; false where reading is no copy in
/// memory.
bool io_raak_aan(int fd, int64_t offset, size_t n) noexcept;
/// Bytes written; callers do not test it. EINTR and short writes go on.
int64_t io_schrijf(int fd, const void* buffer, size_t n, int64_t offset) noexcept;
int64_t io_grootte(int fd) noexcept;
/// Whether reads may come from mappings, from now on; see kaart_zet.
void io_kaarten(bool aan) noexcept;
/// Cuts the file at `grootte`. Counts as a write.
bool io_kap(int fd, int64_t grootte) noexcept;

/// What a test may put between the engine and the file; all null in a program.
struct IoProef {
  void (*voor_schrijf)(int fd, int64_t offset, size_t n);
  void (*na_lees)(int fd, void* buffer, size_t n, int64_t offset);
  uint64_t gelezen, geschreven;  // calls so far
  uint64_t bytes_gelezen;
};
extern IoProef io_proef;
