// A program on a terminal, as an operator has it: keys go in, the screen comes out as text.
//
// The child runs on a pseudo-terminal and libvterm keeps what it draws. Every call that looks at
// the screen first waits until the child is blocked in a read of that terminal with nothing left to
// read, so a picture is always the one on which the program waits for a key; no test sleeps. A
// program that does not come to rest within 20 seconds fails the test with a picture of its screen.
#pragma once

#include <sys/types.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What the keys send, for Terminal::type.
namespace toets {
inline constexpr const char *Enter = "\r", *Esc = "\x1b", *Tab = "\t", *BackTab = "\x1b[Z",
                            *Back = "\x7f", *Cancel = "\x1b[3;5~";
inline constexpr const char *Up = "\x1bOA", *Down = "\x1bOB", *Right = "\x1bOC", *Left = "\x1bOD",
                            *Home = "\x1bOH", *End = "\x1bOF", *Ins = "\x1b[2~", *Del = "\x1b[3~",
                            *PgUp = "\x1b[5~", *PgDn = "\x1b[6~";
inline constexpr const char *F1 = "\x1bOP", *F2 = "\x1bOQ", *F3 = "\x1bOR", *F4 = "\x1bOS",
                            *F5 = "\x1b[15~", *F6 = "\x1b[17~", *F7 = "\x1b[18~", *F8 = "\x1b[19~",
                            *F9 = "\x1b[20~", *F10 = "\x1b[21~", *F11 = "\x1b[23~",
                            *F12 = "\x1b[24~";
inline std::string in(std::string_view text) { return std::string(text) + Enter; }
}  // namespace toets

struct TerminalOpties {
  std::vector<std::string> env{};  // "NAME=VALUE" over the standard ones; "NAME" takes one away
  std::string dir{};               // working directory; empty: as it is
  int rows = 25, cols = 80;
  bool resizes = false;  // obeys the request for another size, as a configured xterm does
};

struct TerminalStaat;
struct Terminal {
  Terminal();
  ~Terminal();  // kills a child that still runs
  Terminal(Terminal&&) noexcept;
  Terminal& operator=(Terminal&&) noexcept;

  /// Waits until the child reads, then types (UTF-8, or the keys above). All in one go: what is
  /// behind the first key is typed ahead.
  Terminal& type(std::string_view keys);
  /// One after the other, and waits before each.
  template <class... Rest>
  Terminal& type(std::string_view keys, std::string_view then, const Rest&... rest) {
    return type(keys).type(then, rest...);
  }
  /// Types without waiting for the child to read, for a program that is at work.
  void type_now(std::string_view keys);
  /// Waits until the child reads its terminal or has ended. False after 20 seconds.
  bool ready();
  /// Waits until the screen shows a text although the program may be at work.
  bool wait_for(std::string_view text);

  // Rows and columns from 1. These wait first.
  std::string screen();  // all rows, blanks at their ends cut, each with "\n"
  std::string row(int row);
  std::string text(int row, int col, int width);
  bool shows(std::string_view text);
  bool reverse(int row, int col);
  bool bold(int row, int col);
  bool underline(int row, int col);
  int fg(int row, int col);  // palette number, -1 default
  int bg(int row, int col);
  int cursor_row();
  int cursor_col();
  bool cursor_visible();

  /// Everything the child has written up to now, as bytes.
  const std::string& output();
  pid_t pid() const;
  /// Waits for the end: exit status, or 128 + signal; -1 when it does not end.
  int exit_status();
  void resize(int rows, int cols);
  void hang_up();  // the line goes away

  std::unique_ptr<TerminalStaat> staat;
};

/// Runs a program (searched in PATH when it has no "/").
Terminal start(const std::vector<std::string>& argv, const TerminalOpties& opties = {});
/// Runs a function as the child; its return ends the child with status 0.
Terminal start_in_child(const std::function<void()>& werk, const TerminalOpties& opties = {});
/// The folder with the terminal entries of the tests, made at the first call.
const std::string& terminfo_map();

/// That the screen shows all of these texts.
#define EXPECT_SHOWS(terminal, ...) EXPECT_EQ(picture_lacks(terminal, {__VA_ARGS__}), "")
std::string picture_lacks(Terminal& t, std::initializer_list<std::string_view> texts);

/// The rows of a picture, from 1: `soll` starts with a newline and is compared without the blanks
/// at the end of lines.
#define EXPECT_ROWS(terminal, first, soll) \
  EXPECT_EQ(picture(terminal, first, soll), picture_wanted(soll))
std::string picture(Terminal& t, int first, std::string_view soll);
std::string picture_wanted(std::string_view soll);
