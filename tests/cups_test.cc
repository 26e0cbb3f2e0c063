// A report through a real print system: a scheduler of the test's own with one raw queue, whose
// printer is a socket of the test.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "prt/intern.h"
#include "prt/schil.h"
#include "tests/support/tijdelijk.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* CUPSD = "/usr/sbin/cupsd";
constexpr int GEDULD_MS = 20000;

/// The printer: listens, and reads one job to its end.
struct Printer {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int poort = 0;

  Printer() {
    sockaddr_in adres{};
    adres.sin_family = AF_INET;
    adres.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t n = sizeof adres;
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&adres), n), 0);
    EXPECT_EQ(listen(fd, 4), 0);
    EXPECT_EQ(getsockname(fd, reinterpret_cast<sockaddr*>(&adres), &n), 0);
    poort = ntohs(adres.sin_port);
  }
  ~Printer() { close(fd); }
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  std::string opdracht() {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, GEDULD_MS) <= 0) return "(geen opdracht)";
    const int lijn = accept(fd, nullptr, nullptr);
    std::string alles;
    char blok[512];
    pollfd q{lijn, POLLIN, 0};
    while (poll(&q, 1, GEDULD_MS) > 0) {
      const ssize_t n = read(lijn, blok, sizeof blok);
      if (n <= 0) break;
      alles.append(blok, static_cast<size_t>(n));
    }
    close(lijn);
    return alles;
  }
};

/// A scheduler whose files all lie in one folder.
struct Cups {
  TempDir map;
  pid_t pid = -1;

  Cups() {
    fs::permissions(map.pad, fs::perms(0755));
    for (const char* d : {"etc", "spool", "cache", "run", "tmp"}) fs::create_directory(map / d);
    const passwd* wie = getpwnam("lp");
    const bool root = geteuid() == 0 && wie != nullptr;
    if (!root) wie = getpwuid(geteuid());
    std::ofstream files(map / "etc/cups-files.conf");
    files << "User " << wie->pw_name << "\nGroup " << wie->pw_gid << "\nSystemGroup root\n"
          << "ServerRoot " << (map / "etc") << "\nRequestRoot " << (map / "spool") << "\nCacheDir "
          << (map / "cache") << "\nStateDir " << (map / "run") << "\nTempDir " << (map / "tmp")
          << "\nErrorLog " << (map / "error") << "\nAccessLog " << (map / "access") << "\nPageLog "
          << (map / "page") << "\n";
    std::ofstream conf(map / "etc/cupsd.conf");
    conf << "Listen " << (map / "sock") << "\nBrowsing Off\nDefaultAuthType None\nLogLevel debug\n"
         << "<Location />\nOrder allow,deny\nAllow all\n</Location>\n"
         << "<Location /admin>\nOrder allow,deny\nAllow all\n</Location>\n"
         << "<Policy default>\n<Limit All>\nOrder deny,allow\nAllow all\n</Limit>\n</Policy>\n";
  }
  ~Cups() {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
  }
  Cups(const Cups&) = delete;
  Cups& operator=(const Cups&) = delete;

  bool start() {
    const std::string conf = map / "etc/cupsd.conf", files = map / "etc/cups-files.conf";
    pid = fork();
    if (pid == 0) {
      execl(CUPSD, CUPSD, "-f", "-c", conf.c_str(), "-s", files.c_str(),
            static_cast<char*>(nullptr));
      _exit(127);
    }
    setenv("CUPS_SERVER", (map / "sock").c_str(), 1);
    for (int ms = 0; ms < GEDULD_MS; ms += 50) {
      if (sh_systeem("lpstat -r | grep -q 'is running'") == 0) return true;
      if (waitpid(pid, nullptr, WNOHANG) == pid) break;
      usleep(50000);
    }
    return false;
  }
};

}  // namespace

TEST(Cups, AQueueBringsTheReportToItsPrinter) {
  if (access(CUPSD, X_OK) != 0 ||
      sh_systeem("command -v lpadmin && command -v lp && command -v lpstat") != 0) {
    GTEST_SKIP() << "no print system on this machine";
  }
  Cups cups;
  Printer printer;
  ASSERT_TRUE(cups.start());
  const std::string uri = "socket://127.0.0.1:" + std::to_string(printer.poort);
  ASSERT_EQ(sh_systeem("lpadmin -p TOETS -E -v " + sh_quote(uri)), 0);
  const fs::path terug = fs::current_path();
  fs::create_directory(cups.map / "werk");
  fs::current_path(cups.map / "werk");
  unsetenv("KOBPRTCODE");
  ASSERT_EQ(XPRT_OPEN(static_cast<uint32_t>(PRT_BESTAND), PRT_80, "TOETS"), 1);
  EXPECT_EQ(prt_rec.is_lp, 1);
  prt_rec.copies = 2;
  print_ff();
  print_f("caf%c", '\x82');
  print_close("");
  const std::string spool = prt_rec.spool_name;
  EXPECT_EQ(printer.opdracht(), "caf\xC3\xA9\n\fcaf\xC3\xA9\n\f");
  EXPECT_TRUE(sh_wacht_weg(spool.c_str(), GEDULD_MS, nullptr));
  fs::current_path(terug);
  unsetenv("CUPS_SERVER");
}
