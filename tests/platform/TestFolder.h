#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kiv {

/// An empty folder of the running test and of nobody else, be it the same test in another build; removed with this
/// object. A test that is run again in a process of its own, to see it end, has the same folder there.
class TestFolder {
 public:
  TestFolder() {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "kivtools-" + std::string(test->test_suite_name()) + "-" + test->name() + "-" +
                       std::to_string(std::filesystem::hash_value(std::filesystem::current_path())) + "-" +
                       std::to_string(alive_++);
    std::ranges::replace(name, '/', '-');
    path_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
    --alive_;
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  static inline int alive_ = 0;
  std::filesystem::path path_;
};

inline void WriteWhole(const std::filesystem::path& path, std::string_view content) {
  std::ofstream(path, std::ios::binary) << content;
}

inline std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kiv
