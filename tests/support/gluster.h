// One brick and the mounts of it on this machine, for the length of a test. The volume files are
// written by hand: the daemon that would make them refuses the loopback address. Every process is a
// child of the test and ends with it.
#pragma once

#include <arpa/inet.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/tijdelijk.h"

/// Where a program stands in PATH or in the administrator's folders; empty when nowhere.
inline std::string programma_pad(const std::string& naam) {
  const char* pad = getenv("PATH");
  const std::string waar = std::string(pad == nullptr ? "" : pad) + ":/usr/sbin:/sbin:";
  for (size_t van = 0, tot; (tot = waar.find(':', van)) != std::string::npos; van = tot + 1) {
    const std::string hier = waar.substr(van, tot - van) + "/" + naam;
    if (tot > van && access(hier.c_str(), X_OK) == 0) return hier;
  }
  return "";
}

/// Why no cluster can be tried here; empty when it can.
inline std::string gluster_ontbreekt() {
  for (const char* naam : {"glusterfsd", "glusterfs"})
    if (programma_pad(naam).empty()) return std::string(naam) + " is not installed";
  if (access("/dev/fuse", R_OK | W_OK) != 0) return "/dev/fuse is not there for us";
  if (geteuid() != 0) return "only root can mount";
  const TempDir proef;
  if (mount("proef", proef.pad.c_str(), "tmpfs", 0, "") != 0) return "mounting is not allowed";
  umount(proef.pad.c_str());
  return "";
}

inline std::string volfile_brick(const std::string& map, int poort) {
  return "volume posix\n  type storage/posix\n  option directory " + map +
         "\nend-volume\n"
         "volume locks\n  type features/locks\n  subvolumes posix\nend-volume\n"
         "volume server\n  type protocol/server\n  option transport-type tcp\n"
         "  option transport.socket.bind-address 127.0.0.1\n"
         "  option transport.socket.listen-port " +
         std::to_string(poort) +
         "\n  option auth.addr.locks.allow 127.0.0.1\n  subvolumes locks\nend-volume\n";
}

/// `streng`: a file whose locks went with the connection answers nothing but errors afterwards.
inline std::string volfile_koppel(int poort, bool streng) {
  return "volume client\n  type protocol/client\n  option transport-type tcp\n"
         "  option remote-host 127.0.0.1\n  option remote-port " +
         std::to_string(poort) + "\n  option remote-subvolume locks\n" +
         (streng ? "  option strict-locks on\n" : "") + "end-volume\n";
}

/// A port that nobody listens on at this moment.
inline int vrije_poort() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in adres{};
  adres.sin_family = AF_INET;
  adres.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t n = sizeof adres;
  auto* a = reinterpret_cast<sockaddr*>(&adres);
  const bool goed = fd >= 0 && bind(fd, a, n) == 0 && getsockname(fd, a, &n) == 0;
  close(fd);
  return goed ? ntohs(adres.sin_port) : 0;
}

struct Gluster {
  struct Koppel {
    std::string map;
    pid_t pid;
  };

  explicit Gluster(bool streng = false) : poort(vrije_poort()) {
    mkdir(brick().c_str(), 0770);
    std::ofstream(map / "brick.vol") << volfile_brick(brick(), poort);
    std::ofstream(map / "koppel.vol") << volfile_koppel(poort, streng);
    start_brick();
  }
  ~Gluster() {
    for (const Koppel& k : koppels) {
      umount2(k.map.c_str(), MNT_DETACH);
      stop(k.pid);
    }
    stop_brick();
  }
  Gluster(const Gluster&) = delete;
  Gluster& operator=(const Gluster&) = delete;

  std::string brick() const { return map / "brick"; }

  void start_brick() {
    brick_pid = start({"glusterfsd", "-N", "-f", map / "brick.vol", "-l", map / "brick.log"});
  }
  /// As a machine that falls: nothing is said to anybody.
  void stop_brick() {
    stop(brick_pid);
    brick_pid = -1;
  }

  static std::vector<std::string> zonder_caches() {
    return {"--direct-io-mode=enable", "--attribute-timeout=0", "--entry-timeout=0"};
  }

  /// One more mount; empty when it does not come within 20 seconds.
  std::string koppel(const std::vector<std::string>& opties = zonder_caches()) {
    const std::string naam = "koppel" + std::to_string(koppels.size() + 1), hier = map / naam;
    mkdir(hier.c_str(), 0770);
    std::vector<std::string> woorden = {"glusterfs",        "-N", "-f",
                                        map / "koppel.vol", "-l", map / (naam + ".log")};
    woorden.insert(woorden.end(), opties.begin(), opties.end());
    woorden.push_back(hier);
    koppels.push_back({hier, start(woorden)});
    return wacht_op(hier) ? hier : "";
  }

  /// The brick answers through this mount.
  bool wacht_op(const std::string& hier) const {
    struct stat buiten, binnen;
    stat(map.pad.c_str(), &buiten);
    for (int n = 0; n < 2000; ++n) {
      if (stat(hier.c_str(), &binnen) == 0 && binnen.st_dev != buiten.st_dev) {
        const std::string merk = hier + "/merk";
        const int fd = creat(merk.c_str(), 0660);
        if (fd >= 0) close(fd);
        if (fd >= 0 && unlink(merk.c_str()) == 0) return true;
      }
      usleep(10000);
    }
    return false;
  }

  TempDir map;
  int poort;
  pid_t brick_pid = -1;
  std::vector<Koppel> koppels;

 private:
  static pid_t start(const std::vector<std::string>& woorden) {
    const std::string pad = programma_pad(woorden[0]);
    std::vector<char*> argv;
    for (const std::string& w : woorden) argv.push_back(const_cast<char*>(w.c_str()));
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid != 0) return pid;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execv(pad.c_str(), argv.data());
    _exit(127);
  }
  static void stop(pid_t pid) {
    if (pid <= 0) return;
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
};
