// Shell commands, apart from the operator's terminal.
#pragma once

#include <string>
#include <string_view>

/// A word for the shell: plain names stay bare, all else stands between single quotes.
std::string sh_quote(std::string_view woord);
/// Runs `sh -c opdracht` in a session of its own, its three streams /dev/null, and waits for that
/// shell; what it put in the background goes on. Exit status, -1 when it could not run.
/// `klaar` (may be null) gets a descriptor that reads as ended once the background has ended too.
int sh_systeem(const std::string& opdracht, int* klaar = nullptr);
/// Waits until `pad` is gone, at most so long; false when it still stands, or `stop` answered true.
bool sh_wacht_weg(const char* pad, int ms, bool (*stop)());
/// The same for the descriptor of sh_systeem, which is closed.
bool sh_wacht_klaar(int klaar, int ms, bool (*stop)());
