// The delaying proxy in front of an echo server: every chunk comes back a
// round trip's delay later, whole and in order, and chunks in flight together
// do not wait for each other.
#include "support/delay_proxy.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

int LoopbackSocket(int port, bool listening) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  auto* at = reinterpret_cast<sockaddr*>(&address);
  if (listening ? bind(fd, at, sizeof address) == 0 && listen(fd, 8) == 0 : connect(fd, at, sizeof address) == 0) {
    return fd;
  }
  close(fd);
  return -1;
}

bool WriteAll(int fd, const char* data, std::size_t size) {
  for (ssize_t n; size > 0; data += n, size -= static_cast<std::size_t>(n)) {
    if ((n = write(fd, data, size)) <= 0) return false;
  }
  return true;
}

struct Exchange {
  std::string received;
  double first_byte_after = -1;  // seconds from the first send to the first byte back
  double all_after = -1;         // ... to the end of the stream
};

// Sends `content` in `chunks` equal chunks 10 ms apart, ends sending and
// reads everything back.
Exchange SendThroughProxy(int port, const std::string& content, int chunks) {
  Exchange result;
  int fd = LoopbackSocket(port, false);
  if (fd < 0) return result;
  Clock::time_point start = Clock::now();
  std::thread sender([&] {
    const std::size_t size = content.size() / chunks;
    for (int i = 0; i < chunks && WriteAll(fd, content.data() + i * size, size); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    shutdown(fd, SHUT_WR);
  });
  char buffer[65536];
  for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;) {
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
  std::thread echo([listener] {
    int fd = accept(listener, nullptr, nullptr);
    char buffer[8192];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0 && WriteAll(fd, buffer, static_cast<std::size_t>(n));) {
    }
    close(fd);
  });

  constexpr double kDelay = 0.2;
  constexpr int kChunks = 20;
  DelayProxy proxy({"127.0.0.1", ntohs(address.sin_port), "", ""}, static_cast<int>(kDelay * 1000));
  std::string sent;
  for (int i = 0; i < kChunks; ++i) sent += std::string(49999, 'a' + i) + "\n";
  Exchange exchange = SendThroughProxy(proxy.port(), sent, kChunks);
  EXPECT_TRUE(exchange.received == sent) << exchange.received.size() << " bytes back of " << sent.size();
  EXPECT_GE(exchange.first_byte_after, kDelay);
  // The last chunk, sent after 0.19 s, is delayed too; but not 20 delays
  // late, as if each chunk waited for the one before.
  EXPECT_GE(exchange.all_after, (kChunks - 1) * 0.010 + kDelay);
  EXPECT_LT(exchange.all_after, 2.0);
  echo.join();
  close(listener);
}

}  // namespace
