// The delaying proxy on its own, in front of an echo server: every chunk comes
// back a round trip's delay later, whole and in order, chunks in flight
// together do not wait for each other, and an end of sending passes through.
#include "support/delay_proxy.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

int LoopbackSocket(int port, bool listening) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  bool ok = listening ? bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(fd, 8) == 0
                      : connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  if (!ok) {
    close(fd);
    return -1;
  }
  return fd;
}

bool WriteAll(int fd, const char* data, std::size_t size) {
  for (std::size_t at = 0; at < size;) {
    ssize_t n = write(fd, data + at, size - at);
    if (n <= 0) return false;
    at += static_cast<std::size_t>(n);
  }
  return true;
}

// Sends back what it receives, until the sender ends; then closes.
void Echo(int fd) {
  char buffer[8192];
  ssize_t n;
  while ((n = read(fd, buffer, sizeof buffer)) > 0) {
    if (!WriteAll(fd, buffer, static_cast<std::size_t>(n))) break;
  }
  close(fd);
}

struct Exchange {
  std::string received;
  double first_byte_after;  // seconds from the first send to the first byte back
  double all_after;         // ... to the end of the stream
};

// Sends `chunks` chunks of `content`, 10 ms apart, ends sending and reads
// everything back.
Exchange SendThroughProxy(int port, const std::string& content, int chunks) {
  Exchange result{"", -1, -1};
  int fd = LoopbackSocket(port, false);
  if (fd < 0) return result;
  Clock::time_point start = Clock::now();
  std::thread sender([&] {
    for (int i = 0; i < chunks; ++i) {
      if (!WriteAll(fd, content.data(), content.size())) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    shutdown(fd, SHUT_WR);
  });
  char buffer[65536];
  ssize_t n;
  while ((n = read(fd, buffer, sizeof buffer)) > 0) {
    if (result.received.empty()) result.first_byte_after = std::chrono::duration<double>(Clock::now() - start).count();
    result.received.append(buffer, static_cast<std::size_t>(n));
  }
  result.all_after = std::chrono::duration<double>(Clock::now() - start).count();
  sender.join();
  close(fd);
  return result;
}

TEST(DelayProxyTest, DelaysEachRoundTripWithoutQueueingChunksBehindEachOther) {
  int listener = LoopbackSocket(0, true);
  ASSERT_GE(listener, 0);
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
  constexpr int kConnections = 2;
  std::thread echo_server([listener] {
    std::vector<std::thread> echoes;
    for (int i = 0; i < kConnections; ++i) echoes.emplace_back(Echo, accept(listener, nullptr, nullptr));
    for (std::thread& echo : echoes) echo.join();
  });

  constexpr double kDelay = 0.2;
  constexpr int kChunks = 20;
  DelayProxy proxy({"127.0.0.1", ntohs(address.sin_port), "", ""}, static_cast<int>(kDelay * 1000));
  // Two clients at once, each with its own content.
  std::vector<std::future<Exchange>> clients;
  for (char fill : {'a', 'b'}) {
    std::string content(50000, fill);
    content.back() = '\n';
    clients.push_back(std::async(std::launch::async, SendThroughProxy, proxy.port(), content, kChunks));
  }
  for (char fill : {'a', 'b'}) {
    Exchange exchange = clients[static_cast<std::size_t>(fill - 'a')].get();
    std::string sent;
    for (int i = 0; i < kChunks; ++i) sent += std::string(49999, fill) + "\n";
    EXPECT_TRUE(exchange.received == sent) << fill << ": " << exchange.received.size() << " bytes back of "
                                           << sent.size();
    EXPECT_GE(exchange.first_byte_after, kDelay) << fill;
    // Sent over 0.2 s: back 0.2 s later, not 20 delays later as if each
    // chunk waited for the one before.
    EXPECT_LT(exchange.all_after, 2.0) << fill;
  }
  echo_server.join();
  close(listener);
}

}  // namespace
