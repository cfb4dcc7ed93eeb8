// The benchmark's delaying proxy (bench/delay_proxy.cpp) in front of a test
// server, so that a test can run the program as against a distant server:
// every round trip through the proxy takes `delay_ms` longer. The proxy runs
// as a process of its own while the object lives.
#pragma once

#include <sys/types.h>

#include "support/test_database.h"

class DelayProxy {
 public:
  // Starts the proxy on a free loopback port in front of `target`. When it
  // does not start, the test fails and port() is 0.
  DelayProxy(const TestServer& target, int delay_ms);
  // Stops the proxy (its open connections end with it) and waits for it.
  ~DelayProxy();
  DelayProxy(const DelayProxy&) = delete;
  DelayProxy& operator=(const DelayProxy&) = delete;

  // The loopback port the proxy listens on.
  int port() const { return port_; }

 private:
  pid_t pid_ = -1;
  int port_ = 0;
};
