#include "support/scratch_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include <cstdio>
#include <filesystem>

namespace {

// A port nobody listens on right now; the kernel hands out a free one.
int FreePort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) return 0;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  int port = 0;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    port = ntohs(address.sin_port);
  }
  close(fd);
  return port;
}

}  // namespace

ScratchServer::ScratchServer(std::string sql_mode, std::string server_args)
    : dir_(MakeTempDir()), port_(FreePort()), sql_mode_(std::move(sql_mode)), server_args_(std::move(server_args)) {}

ScratchServer::~ScratchServer() {
  Stop();
  std::error_code ignored;
  std::filesystem::remove_all(dir_, ignored);
}

bool ScratchServer::Script(const std::string& command) {
  std::string line = "CORVANA_DB_DIR=" + ShellQuote(dir_) + " CORVANA_DB_PORT=" + std::to_string(port_) +
                     " CORVANA_DB_SQL_MODE=" + ShellQuote(sql_mode_) + " CORVANA_DB_SERVER_ARGS=" + ShellQuote(server_args_) +
                     " " + ShellQuote(CORVANA_SOURCE_DIR "/scripts/db.sh") +
                     " " + command + " 2>&1";
  log_ += "$ db.sh " + command + "\n";
  std::FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return false;
  char buffer[1024];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) log_.append(buffer, n);
  return pclose(pipe) == 0;
}

bool ScratchServer::Start() {
  if (dir_.empty()) return false;
  // The free port may be taken meanwhile (by another test's server, or as
  // the local end of some client's connection): try another.
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (port_ != 0 && Script("start")) {
      if (AnswersOverTcp()) return true;
      log_ += "the server did not answer on 127.0.0.1:" + std::to_string(port_) + ": " + last_error_ + "\n";
      std::string server_log = ReadFile(dir_ + "/mariadb.err");
      log_ += server_log.substr(server_log.size() > 2000 ? server_log.size() - 2000 : 0);
      Stop();
    }
    port_ = FreePort();
  }
  return false;
}

bool ScratchServer::AnswersOverTcp() {
  TestServer address = server();
  // A loaded machine (two sanitizer test runs side by side) can take seconds
  // between the socket file appearing and the TCP port accepting logins.
  for (int attempt = 0; attempt < 100; ++attempt) {
    MYSQL* connection = mysql_init(nullptr);
    my_bool use_tls = 1;  // a server that requires TLS must answer too
    mysql_options(connection, MYSQL_OPT_SSL_ENFORCE, &use_tls);
    bool answered = mysql_real_connect(connection, address.host.c_str(), address.user.c_str(),
                                       address.password.c_str(), nullptr, static_cast<unsigned>(address.port),
                                       nullptr, 0) != nullptr;
    if (!answered) last_error_ = mysql_error(connection);
    mysql_close(connection);
    if (answered) return true;
    usleep(100000);
  }
  return false;
}

void ScratchServer::Stop() { Script("stop"); }

void ScratchServer::Kill() {
  std::string pid_text = ReadFile(dir_ + "/mariadb.pid");
  pid_t pid = static_cast<pid_t>(std::atol(pid_text.c_str()));
  if (pid <= 0 || kill(pid, SIGKILL) != 0) return;
  for (int waited = 0; waited < 300 && kill(pid, 0) == 0; ++waited) usleep(10000);
}

TestServer ScratchServer::server() const {
  // db.sh creates the same account as on the shared server.
  TestServer shared = TestServer::FromEnvironment();
  return {"127.0.0.1", port_, shared.user, shared.password};
}
