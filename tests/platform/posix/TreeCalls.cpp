// tree_calls.py makes system calls of this program fail: it does one operation and says what came of it. The calls
// between two getppid are the operation's own.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileLists.h"
#include "kivtools/WinUtil/FileTrees.h"

namespace {

std::ptrdiff_t OpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// The lines that the operation prints when it is over.
kiv::StringList Done(const kiv::Text& operation, const kiv::Text& a, const kiv::Text& b, kiv::host::Label& label) {
  if (operation == "list") {
    return kiv::InitFileList(a, {"*"});
  }
  if (operation == "copy") {
    kiv::RecursiveCopyWithExt(a, b, {"*"}, label, 350);
  } else if (operation == "delete") {
    kiv::RecursiveDelete(a);
  } else if (operation == "compare") {
    return {kiv::ComparaFisiere(a, b) ? "equal" : "different"};
  } else {
    kiv::CopyNoBuffering(a, b);
  }
  return {};
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) {
    return 2;
  }
  kiv::host::headless::Label label(nullptr, "lblFisier");
  kiv::StringList lines;
  int code = 0;
  std::string error;
  const std::ptrdiff_t before = OpenFiles();
  getppid();
  try {
    lines = Done(arguments[1], arguments[2], arguments[3], label);
  } catch (const kiv::OsError& failure) {
    code = 1;
    error = std::string(failure.what()) + " (" + std::to_string(failure.Code()) + ")";
  } catch (const std::exception& failure) {
    code = 1;
    error = failure.what();
  }
  getppid();
  for (const kiv::Text& line : lines) {
    std::puts(line.c_str());
  }
  if (!error.empty()) {
    std::puts(error.c_str());
  }
  if (OpenFiles() != before) {
    std::puts("left open");
  }
  return code;
}
