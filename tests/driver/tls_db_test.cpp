// Records and the password cross the network to a server that is often on
// another machine: the program uses TLS whenever the server offers it, and
// the configuration file can require it or have the certificate verified.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "store/connection.h"
#include "support/program_run.h"
#include "support/scratch_server.h"
#include "support/test_database.h"

namespace {

// A test CA, a server certificate it signed for `name` (a SAN entry such as
// "IP:127.0.0.1"), and a second CA that signed nothing. Returns false when
// openssl failed.
bool MakeCertificates(const std::string& dir, const std::string& name) {
  std::string script =
      "cd '" + dir + "' && "
      "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=TestCA -keyout ca-key.pem -out ca.pem && "
      "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=OtherCA -keyout other-key.pem -out other-ca.pem && "
      "openssl req -newkey rsa:2048 -nodes -subj /CN=corvana-db -keyout server-key.pem -out server.csr && "
      "printf 'subjectAltName=" + name + "\\n' > san.ext && "
      "openssl x509 -req -in server.csr -CA ca.pem -CAkey ca-key.pem -CAcreateserial -days 2 "
      "-extfile san.ext -out server.pem";
  return std::system((script + " >/dev/null 2>&1").c_str()) == 0;
}

std::string TlsServerArgs(const std::string& dir) {
  return "--ssl-ca=" + dir + "/ca.pem --ssl-cert=" + dir + "/server.pem --ssl-key=" + dir +
         "/server-key.pem --require-secure-transport=ON";
}

class TlsTest : public DatabaseTest {
 protected:
  static void SetUpTestSuite() {
    certificates_ = new std::string(MakeTempDir());
    bool made = MakeCertificates(*certificates_, "IP:127.0.0.1");
    server_under_test_ = new ScratchServer("NO_ENGINE_SUBSTITUTION", TlsServerArgs(*certificates_));
    started_ = made && server_under_test_->Start();
  }
  static void TearDownTestSuite() {
    delete server_under_test_;
    delete certificates_;
  }
  void SetUp() override {
    ASSERT_TRUE(started_) << server_under_test_->log();
    SetUpOn(server_under_test_->server());
    dir_ = MakeTempDir();
  }

  // Runs a job that only connects, with `extra` lines added to the
  // configuration file's "MYSQL" section, and returns the exit code and log.
  ProgramRun Connect(const std::string& extra) {
    WriteIni(dir_);
    WriteFile(dir_ + "/CorvanaDataImporter.ini", ReadFile(dir_ + "/CorvanaDataImporter.ini") + extra);
    return RunProgram(dir_, {"-org", "HWC", "-type", "none", "-year", "2012"});
  }

  std::string Refused() const {
    return "Can't connect to '" + database_ + "' on '127.0.0.1:" + std::to_string(server_.port) + "' as user '" +
           server_.user + "'!\n";
  }

  static inline std::string* certificates_ = nullptr;
  static inline ScratchServer* server_under_test_ = nullptr;
  static inline bool started_ = false;
  std::string dir_;
};

TEST_F(TlsTest, ModesAgainstAServerThatRequiresTls) {
  // The test's own connection is encrypted, so the server really offers TLS.
  EXPECT_STRNE(ConnectionCipher(), "");

  const std::string ca = "SslCa=" + *certificates_ + "/ca.pem\r\n";
  const struct {
    std::string settings;
    bool connects;
  } cases[] = {
      {"", true},  // preferred by default
      {"SslMode=preferred\r\n", true},
      {"SslMode=required\r\n", true},
      {"SslMode=VERIFY\r\n" + ca, true},
      {"SslMode=verify\r\nSslCa=" + *certificates_ + "/other-ca.pem\r\n", false},  // signed by another CA
      {"SslMode=verify\r\nSslCa=" + *certificates_ + "/missing.pem\r\n", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.settings);
    ProgramRun run = Connect(c.settings);
    EXPECT_EQ(run.exit_code, c.connects ? 0 : 1);
    if (c.connects) {
      EXPECT_NE(run.output.find("connected successfully"), std::string::npos) << run.output << run.errors;
    } else {
      EXPECT_EQ(run.output, Refused());
      EXPECT_NE(run.errors.find("The server said: "), std::string::npos) << run.errors;
    }
  }

  // A mode the program does not know never connects less safely than asked.
  ProgramRun run = Connect("SslMode=sometimes\r\n");
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, Refused());
  EXPECT_EQ(run.errors, "Unknown SslMode 'sometimes' in the configuration file: use preferred, required or verify\n");
}

// The certificate must name the server the program connects to.
TEST_F(TlsTest, VerifyRefusesACertificateForAnotherName) {
  std::string other = MakeTempDir();
  ASSERT_TRUE(MakeCertificates(other, "DNS:db.elsewhere.test"));
  ScratchServer misnamed("NO_ENGINE_SUBSTITUTION", TlsServerArgs(other));
  ASSERT_TRUE(misnamed.Start()) << misnamed.log();
  TestServer server = misnamed.server();
  ConnectOptions options;
  options.ssl_mode = SslMode::kVerify;
  options.ssl_ca = other + "/ca.pem";
  CloseDatabase();
  EXPECT_EQ(ConnectDatabase(server.host.c_str(), "mysql", server.user.c_str(), server.password.c_str(), server.port,
                            options),
            1);
  options.ssl_mode = SslMode::kRequired;  // encrypted, but nothing checked
  EXPECT_EQ(ConnectDatabase(server.host.c_str(), "mysql", server.user.c_str(), server.password.c_str(), server.port,
                            options),
            0)
      << LastDbError();
  EXPECT_STRNE(ConnectionCipher(), "");
}

// The shared test server offers no TLS: preferred talks plain, required refuses.
using PlainServerTest = DatabaseTest;

TEST_F(PlainServerTest, RequiredRefusesAServerWithoutTls) {
  EXPECT_STREQ(ConnectionCipher(), "");
  std::string dir = MakeTempDir();
  WriteIni(dir);
  WriteFile(dir + "/CorvanaDataImporter.ini", ReadFile(dir + "/CorvanaDataImporter.ini") + "SslMode=required\r\n");
  ProgramRun run = RunProgram(dir, {"-org", "HWC", "-type", "none", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output.rfind("Can't connect to '", 0), 0u) << run.output;
}

}  // namespace
