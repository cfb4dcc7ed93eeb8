#include "driver/ini_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "support/test_database.h"

namespace {

std::string Get(IniFile& ini, const char* section, const char* key) {
  Text<128> out{};
  ini.IniGetString(section, key, "<default>", out);
  return out.c_str();
}

TEST(IniFileTest, MissingFileIsCreatedAndGivesDefaults) {
  std::string path = MakeTempDir() + "/CorvanaDataImporter.ini";
  IniFile ini(path.c_str());
  EXPECT_EQ(Get(ini, "MYSQL", "Server"), "<default>");
  EXPECT_EQ(ini.IniGetInt("MYSQL", "Port", 3306), 3306);
  EXPECT_EQ(ReadFile(path), "\n");
  struct stat info {};
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);  // it will hold a password
}

// A file that is there but cannot be read holds the operator's settings: the
// lookups give their defaults (so the connection fails with its message) and
// nothing is created or written in its place.
TEST(IniFileTest, AnExistingFileIsNeverReplaced) {
  std::string dir = MakeTempDir();
  ASSERT_EQ(chmod(dir.c_str(), 0777), 0);
  const std::string settings = "[MYSQL]\nServer=db.example\n";

  std::string unreadable = dir + "/unreadable.ini";
  WriteFile(unreadable, settings);
  ASSERT_EQ(chmod(unreadable.c_str(), 0222), 0);  // writable, not readable
  std::string folder = dir + "/folder.ini";
  ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
  std::string dangling = dir + "/dangling.ini";
  ASSERT_EQ(symlink((dir + "/elsewhere.ini").c_str(), dangling.c_str()), 0);

  // Root reads any file; look as an ordinary user would.
  bool as_root = geteuid() == 0;
  if (as_root) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  std::string results;
  for (const std::string& path : {unreadable, folder, dangling}) {
    IniFile ini(path.c_str());
    results += Get(ini, "MYSQL", "Server") + "|" + std::to_string(ini.IniLoad()) + " ";
  }
  if (as_root) {
    ASSERT_EQ(seteuid(0), 0);
  }

  EXPECT_EQ(results, "<default>|1 <default>|1 <default>|1 ");
  EXPECT_EQ(ReadFile(unreadable), settings);
  struct stat info {};
  EXPECT_TRUE(stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode));
  EXPECT_NE(lstat((dir + "/elsewhere.ini").c_str(), &info), 0);  // not created through the link
}

TEST(IniFileTest, ReadingRules) {
  std::string path = MakeTempDir() + "/test.ini";
  WriteFile(path,
            "Server=outside\r\n"
            "[ MYSQL ] trailing words\r\n"
            "Port = 3307 \r\n"
            "Server = db.example=primary ; not a comment\r\n"
            "Server = second\r\n"
            "; Database=commented\r\n"
            "no equals sign here\r\n"
            "[mysql]\r\n"
            "Username=lower\r\n"
            "[BROKEN\r\n"
            "Password=still lower section\r\n"
            "[MYSQL]\r\n"
            "Database=\"quoted\"\r\n"
            "Number=3307x\r\n"
            "server=lowercase key\r\n");
  IniFile ini(path.c_str());
  EXPECT_EQ(Get(ini, "MYSQL", "Server"), "db.example=primary ; not a comment");  // the first wins
  EXPECT_EQ(Get(ini, "", "Server"), "outside");
  EXPECT_EQ(ini.IniGetInt("MYSQL", "Port", 1), 3307);
  EXPECT_EQ(ini.IniGetInt("MYSQL", "Number", 1), 3307);
  EXPECT_EQ(Get(ini, "MYSQL", "Username"), "<default>");
  EXPECT_EQ(Get(ini, "mysql", "Username"), "lower");
  EXPECT_EQ(Get(ini, "mysql", "Password"), "still lower section");
  EXPECT_EQ(Get(ini, "MYSQL", "Database"), "\"quoted\"");
  EXPECT_EQ(Get(ini, "MYSQL", "server"), "lowercase key");
}

TEST(IniFileTest, LongLinesAreReadInPiecesAndValuesCut) {
  std::string path = MakeTempDir() + "/long.ini";
  WriteFile(path, "[MYSQL]\nServer=" + std::string(300, 'v') + "\nPassword=" + std::string(250, 'p') + "=x\n");
  IniFile ini(path.c_str());
  // The first 255 characters form a line; its value is cut to the field's 127.
  EXPECT_EQ(Get(ini, "MYSQL", "Server"), std::string(127, 'v'));
  Text<32> password{};
  ini.IniGetString("MYSQL", "Password", "", password);
  EXPECT_EQ(password, std::string(31, 'p'));
  // The rest of the 257-character line is a line of its own, without '='.
  EXPECT_EQ(Get(ini, "MYSQL", "x"), "<default>");
}

}  // namespace
