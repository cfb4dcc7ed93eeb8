#include "support/delay_proxy.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

extern char** environ;

namespace {

// The first line the process writes on `fd`, or "" when none comes within
// ten seconds (or the process ends first).
std::string FirstLine(int fd) {
  std::string line;
  pollfd readable{fd, POLLIN, 0};
  char c;
  while (poll(&readable, 1, 10000) > 0 && read(fd, &c, 1) == 1 && c != '\n') line += c;
  return line;
}

}  // namespace

DelayProxy::DelayProxy(const TestServer& target, int delay_ms) {
  int out[2];
  if (pipe(out) != 0) {
    ADD_FAILURE() << "no pipe for the delay proxy";
    return;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclose(&actions, out[0]);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, out[1]);
  std::string target_port = std::to_string(target.port);
  std::string delay = std::to_string(delay_ms);
  char* argv[] = {const_cast<char*>(CORVANA_DELAY_PROXY), const_cast<char*>("0"),
                  const_cast<char*>(target.host.c_str()), target_port.data(), delay.data(), nullptr};
  int spawned = posix_spawn(&pid_, CORVANA_DELAY_PROXY, &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  close(out[1]);
  if (spawned != 0) {
    pid_ = -1;
    close(out[0]);
    ADD_FAILURE() << "cannot start " << CORVANA_DELAY_PROXY;
    return;
  }
  // The proxy prints its port once it listens; nothing else follows.
  std::string line = FirstLine(out[0]);
  close(out[0]);
  port_ = std::atoi(line.c_str());
  if (port_ == 0) ADD_FAILURE() << CORVANA_DELAY_PROXY << " did not say which port it listens on";
}

DelayProxy::~DelayProxy() {
  if (pid_ <= 0) return;
  kill(pid_, SIGTERM);
  int status = 0;
  waitpid(pid_, &status, 0);
}
