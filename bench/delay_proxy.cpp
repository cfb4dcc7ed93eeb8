// A TCP proxy that delays what passes through it, so that the program can be
// measured as against a distant server while the server runs on loopback.
//
//   delay_proxy LISTEN_PORT TARGET_HOST TARGET_PORT DELAY_MS
//
// Listens on 127.0.0.1:LISTEN_PORT; with LISTEN_PORT 0 it takes a free port
// and prints it on stdout as the first line (flushed), for the script or test
// that started it to read. Each accepted connection gets a connection of its
// own to TARGET_HOST:TARGET_PORT, and bytes go both ways, each chunk
// delivered DELAY_MS/2 after it arrived: a request and its answer together
// gain DELAY_MS. Chunks keep their order, and one that arrives while earlier
// ones wait is due DELAY_MS/2 after its own arrival, not after theirs, so the
// proxy adds latency without limiting throughput. When one side stops sending
// (end of stream or an error), the other side's socket is shut for writing
// once what was pending for it has been delivered; a connection is closed
// when both directions are done.
//
// One thread and one ppoll() loop whose timeout is the time until the
// earliest waiting chunk is due. Each byte is copied once, from the socket
// into its chunk; no work is done per byte. The connection to the target is
// made with a blocking connect(), which costs nothing on loopback and keeps
// the loop simple. Runs until killed; exits 2 on bad arguments and 1 when it
// cannot listen or the target's name does not resolve. Linux only.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Past this many bytes waiting in one direction the proxy stops reading from
// its source, so that the kernel's buffers push back on a sender faster than
// the receiver: memory stays bounded. A benchmark run keeps far less in
// flight.
constexpr std::size_t kMaxPendingBytes = std::size_t{64} << 20;
constexpr std::size_t kReadSize = std::size_t{64} << 10;

struct Chunk {
  Clock::time_point due;
  std::string bytes;
  std::size_t sent = 0;  // bytes of it already written
};

// One direction of a connection: what is read from `from` waits in `pending`
// until it is due, then is written to `to`.
struct Direction {
  int from;
  int to;
  std::deque<Chunk> pending;
  std::size_t pending_bytes = 0;
  bool source_ended = false;  // `from` will send nothing more
  bool blocked = false;       // `to` took less than offered: wait until it is writable
  bool done = false;          // nothing more will be written to `to`, which is shut for writing

  bool WantsToRead() const { return !source_ended && pending_bytes < kMaxPendingBytes; }
  bool WantsToWrite() const { return blocked && !done; }
};

struct Connection {
  Connection(int client_fd, int server_fd)
      : client(client_fd), server(server_fd), up{client_fd, server_fd, {}}, down{server_fd, client_fd, {}} {}
  ~Connection() {
    close(client);
    close(server);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  const int client;
  const int server;
  Direction up;    // client to server
  Direction down;  // server to client
};

void SetNonBlocking(int fd) { fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK); }

// Each chunk is written as soon as it is due: Nagle's algorithm would hold
// back a small one until the previous one is acknowledged.
void SetNoDelay(int fd) {
  int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// Reads what `d.from` has now into chunks due `half_delay` from `now`, until
// it would block, ends, or the direction holds its maximum.
void ReadAvailable(Direction& d, Clock::time_point now, Clock::duration half_delay) {
  char buffer[kReadSize];
  while (d.WantsToRead()) {
    ssize_t n = recv(d.from, buffer, sizeof buffer, 0);
    if (n > 0) {
      d.pending.push_back({now + half_delay, std::string(buffer, static_cast<std::size_t>(n))});
      d.pending_bytes += static_cast<std::size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      // An error (a reset) ends the direction as an orderly end does: what
      // was read before still reaches the other side.
      if (n == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) d.source_ended = true;
      return;
    }
  }
}

// Writes the chunks that are due by `now`, in order, until `d.to` would block.
// Once the source has ended and nothing is pending, shuts `d.to` for writing.
void DeliverDue(Direction& d, Clock::time_point now) {
  while (!d.done && !d.blocked && !d.pending.empty() && d.pending.front().due <= now) {
    Chunk& chunk = d.pending.front();
    ssize_t n = send(d.to, chunk.bytes.data() + chunk.sent, chunk.bytes.size() - chunk.sent, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      d.blocked = true;
    } else if (n < 0) {
      // The receiver is gone: what waits for it can never arrive, and what
      // its peer still sends has nowhere to go.
      d.pending.clear();
      d.pending_bytes = 0;
      d.source_ended = true;
      d.done = true;
    } else if ((chunk.sent += static_cast<std::size_t>(n)) == chunk.bytes.size()) {
      d.pending_bytes -= chunk.bytes.size();
      d.pending.pop_front();
    } else {
      d.blocked = true;  // the rest when the socket has room again
    }
  }
  if (!d.done && d.source_ended && d.pending.empty()) {
    shutdown(d.to, SHUT_WR);
    d.done = true;
  }
}

// The earliest time a chunk that can be written now falls due, if any.
bool EarliestDue(const Direction& d, Clock::time_point& earliest) {
  if (d.done || d.blocked || d.pending.empty()) return false;
  if (d.pending.front().due < earliest) earliest = d.pending.front().due;
  return true;
}

int Listen(int port) {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(fd, 128) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

int ListeningPort(int fd) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

// A connected, non-blocking socket to the target, or -1.
int ConnectTarget(const addrinfo* target) {
  for (const addrinfo* a = target; a != nullptr; a = a->ai_next) {
    int fd = socket(a->ai_family, a->ai_socktype | SOCK_CLOEXEC, a->ai_protocol);
    if (fd < 0) continue;
    if (connect(fd, a->ai_addr, a->ai_addrlen) == 0) {
      SetNonBlocking(fd);
      SetNoDelay(fd);
      return fd;
    }
    close(fd);
  }
  return -1;
}

// Accepts every waiting client and pairs it with a new connection to the target.
void AcceptAll(int listener, const addrinfo* target, std::vector<std::unique_ptr<Connection>>& connections) {
  for (;;) {
    int client = accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (client < 0) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return;  // EAGAIN: none left; anything else: try again on the next wake-up
    }
    int server = ConnectTarget(target);
    if (server < 0) {
      std::fprintf(stderr, "delay_proxy: cannot connect to the target: %s\n", std::strerror(errno));
      close(client);
      continue;
    }
    SetNoDelay(client);
    connections.push_back(std::make_unique<Connection>(client, server));
  }
}

bool ParseNumber(const char* text, long low, long high, long& value) {
  char* end = nullptr;
  errno = 0;
  value = std::strtol(text, &end, 10);
  return errno == 0 && end != text && *end == '\0' && value >= low && value <= high;
}

}  // namespace

int main(int argc, char** argv) {
  long listen_port = 0, target_port = 0, delay_ms = 0;
  if (argc != 5 || !ParseNumber(argv[1], 0, 65535, listen_port) || !ParseNumber(argv[3], 1, 65535, target_port) ||
      !ParseNumber(argv[4], 0, 600000, delay_ms)) {
    std::fprintf(stderr, "usage: delay_proxy LISTEN_PORT TARGET_HOST TARGET_PORT DELAY_MS\n");
    return 2;
  }
  std::signal(SIGPIPE, SIG_IGN);
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* target = nullptr;
  if (int error = getaddrinfo(argv[2], argv[3], &hints, &target); error != 0) {
    std::fprintf(stderr, "delay_proxy: %s: %s\n", argv[2], gai_strerror(error));
    return 1;
  }
  int listener = Listen(static_cast<int>(listen_port));
  if (listener < 0) {
    std::fprintf(stderr, "delay_proxy: cannot listen on 127.0.0.1:%ld: %s\n", listen_port, std::strerror(errno));
    return 1;
  }
  std::printf("%d\n", ListeningPort(listener));
  std::fflush(stdout);

  // Half the round trip's delay on the way there, half on the way back.
  const Clock::duration half_delay = std::chrono::microseconds(delay_ms * 500);
  std::vector<std::unique_ptr<Connection>> connections;
  std::vector<pollfd> fds;
  for (;;) {
    // fds[0] is the listener; then each connection's client and server
    // socket, asked for what its two directions need (-1: nothing, so that
    // a socket the peer has hung up on does not wake the loop for ever).
    fds.assign(1, {listener, POLLIN, 0});
    Clock::time_point earliest = Clock::time_point::max();
    bool timed = false;
    for (const auto& c : connections) {
      short client_events = static_cast<short>((c->up.WantsToRead() ? POLLIN : 0) | (c->down.WantsToWrite() ? POLLOUT : 0));
      short server_events = static_cast<short>((c->down.WantsToRead() ? POLLIN : 0) | (c->up.WantsToWrite() ? POLLOUT : 0));
      fds.push_back({client_events != 0 ? c->client : -1, client_events, 0});
      fds.push_back({server_events != 0 ? c->server : -1, server_events, 0});
      timed |= EarliestDue(c->up, earliest);
      timed |= EarliestDue(c->down, earliest);
    }
    timespec timeout{};
    if (timed) {
      auto wait = std::chrono::duration_cast<std::chrono::nanoseconds>(earliest - Clock::now());
      if (wait.count() > 0) {
        timeout.tv_sec = static_cast<time_t>(wait.count() / 1000000000);
        timeout.tv_nsec = static_cast<long>(wait.count() % 1000000000);
      }
    }
    if (ppoll(fds.data(), fds.size(), timed ? &timeout : nullptr, nullptr) < 0 && errno != EINTR) {
      std::fprintf(stderr, "delay_proxy: poll: %s\n", std::strerror(errno));
      return 1;
    }
    const Clock::time_point now = Clock::now();
    for (std::size_t i = 0; i < connections.size(); ++i) {
      Connection& c = *connections[i];
      short client_events = fds[1 + 2 * i].revents;
      short server_events = fds[1 + 2 * i + 1].revents;
      // An error or hang-up shows in revents whatever was asked: the read or
      // write that follows finds out which.
      if ((client_events & (POLLIN | POLLHUP | POLLERR)) && c.up.WantsToRead()) ReadAvailable(c.up, now, half_delay);
      if ((server_events & (POLLIN | POLLHUP | POLLERR)) && c.down.WantsToRead()) {
        ReadAvailable(c.down, now, half_delay);
      }
      if (client_events & (POLLOUT | POLLHUP | POLLERR)) c.down.blocked = false;
      if (server_events & (POLLOUT | POLLHUP | POLLERR)) c.up.blocked = false;
      DeliverDue(c.up, now);
      DeliverDue(c.down, now);
    }
    std::erase_if(connections, [](const auto& c) { return c->up.done && c->down.done; });
    if (fds[0].revents & POLLIN) AcceptAll(listener, target, connections);
  }
}
