// The numbers of public enumerators are compiled into hosts: none may change. constants.txt holds them all; a new one
// is added there.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "headers.inc"

namespace {

TEST(PublicConstants, KeepTheirNumbers) {
  std::ostringstream now;
#define KIV_CONSTANT(name) now << #name " " << static_cast<long long>(name) << '\n';
#include "constants.inc"
  std::ifstream file(KIV_CONSTANTS_FILE);
  std::ostringstream recorded;
  recorded << file.rdbuf();
  const std::string list = testing::TempDir() + "constants.txt";
  if (now.str() != recorded.str()) {
    std::ofstream(list) << now.str();
  }
  EXPECT_EQ(now.str(), recorded.str()) << "the list as it is now lies in " << list;
}

}  // namespace
