// Running the administrator's programs as he does: a line for the shell, its status, what it said.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct Gedraaid {
  int status;
  std::string tekst;  // standard output and errors
};

inline Gedraaid draai(const std::string& opdracht) {
  Gedraaid u{-1, {}};
  FILE* pijp = popen(("exec 2>&1 </dev/null; " + opdracht).c_str(), "r");
  if (pijp == nullptr) return u;
  char stuk[4096];
  for (size_t n; (n = fread(stuk, 1, sizeof stuk, pijp)) > 0;) u.tekst.append(stuk, n);
  const int status = pclose(pijp);
  u.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return u;
}

inline Gedraaid draai_winkel(const std::string& argumenten) {
  return draai(BUILD_DIR "/tools/winkel " + argumenten);
}
inline Gedraaid draai_ixtool(const std::string& argumenten) {
  return draai(BUILD_DIR "/tools/ixtool " + argumenten);
}
