#include <gtest/gtest.h>

#include <string>

#include "apps/kivtools/input/Bytes.h"

namespace kivtools {
namespace {

TEST(Bytes, AreFoundWhereverTheyStand) {
  // Every byte at every place of texts shorter and longer than what a processor looks at together.
  for (std::size_t size = 0; size < 70; ++size) {
    std::string text(size, 'a');
    EXPECT_FALSE(HasAny(text, '-', '\xC2', '\0'));
    for (char& byte : text) {
      for (int code = 0; code < 256; ++code) {
        byte = static_cast<char>(code);
        EXPECT_EQ(HasAny(text, '-', '\xC2', '\0'), byte == '-' || byte == '\xC2' || byte == '\0') << code;
      }
      byte = 'a';
    }
  }
}

}  // namespace
}  // namespace kivtools
