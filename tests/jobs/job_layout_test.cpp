// The jobs depend on the store, the XML reader and the utilities only: what
// they need of the run reaches them as arguments, never through the driver.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

TEST(JobLayoutTest, NoJobIncludesTheDriver) {
  namespace fs = std::filesystem;
  int files = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(CORVANA_SOURCE_DIR "/src/jobs")) {
    if (!entry.is_regular_file()) continue;
    ++files;
    std::ifstream in(entry.path());
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      bool includes_driver = line.rfind("#include", 0) == 0 && line.find("driver/") != std::string::npos;
      EXPECT_FALSE(includes_driver) << entry.path().string() << ":" << number << ": " << line;
    }
  }
  EXPECT_GT(files, 0);
}

}  // namespace
