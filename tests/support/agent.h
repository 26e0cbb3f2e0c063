// A second process that does what the test asks, for locks and shared files.
//
// Fork it before the test opens a file: record locks belong to a process, and a child that inherits
// descriptors would drop its parent's when it closes them. The handler runs in the agent, once a
// command, and its result is the answer. An agent killed is gone with its locks when kill_now
// returns.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

struct Agent {
  /// Answers come from `doe`. The agent ends when the Agent does.
  explicit Agent(const std::function<std::string(const std::string&)>& doe);
  ~Agent();
  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

  std::string ask(const std::string& opdracht);  // sends and waits; "" and a failure when it died
  void send(const std::string& opdracht);        // sends only, for a command that will block
  bool answered();                               // whether an answer stands ready
  std::string answer();                          // waits for it, 20 seconds at most
  void kill_now();                               // SIGKILL
  void stop(bool stil);                          // SIGSTOP, SIGCONT

  pid_t pid = -1;
  int naar = -1, van = -1;
};
