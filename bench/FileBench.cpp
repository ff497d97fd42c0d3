// Trees of small files and pairs of large ones, beside the system's programs and the bare calls.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>

#include "CpuTime.h"
#include "Values.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/WinUtil/FileLists.h"
#include "kivtools/WinUtil/FileTrees.h"

namespace kiv {
namespace {

namespace fs = std::filesystem;
using bench::Require;

/// 20,000 files of 0 to 8 KiB in 200 folders, and files of 256 MiB; all of it a hundredth where nothing is timed. In
/// memory, so that no disk is measured. Gone when the program ends.
class Files {
 public:
  static const Files& Get() {
    static const Files files;
    return files;
  }
  ~Files() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

  [[nodiscard]] std::string At(const char* name) const { return root_ / name; }
  [[nodiscard]] std::string Source() const { return At("sursa"); }
  [[nodiscard]] std::string Copy() const { return At("copie"); }
  [[nodiscard]] std::size_t Dbf() const { return count_ / 4; }

  void RemoveCopy() const { fs::remove_all(Copy()); }
  void MakeCopy() const {
    RemoveCopy();
    fs::copy(Source(), Copy(), fs::copy_options::recursive);
  }
  /// Whether the copy has all that the source has.
  void RequireCopy() const {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(Source())) {
      const fs::path copy = Copy() / entry.path().lexically_relative(Source());
      Require(entry.is_directory() ? fs::is_directory(copy) : fs::file_size(copy) == entry.file_size(), copy.native());
      count += entry.is_directory() ? 0 : 1;
    }
    Require(count == count_, "files in the copy");
  }

 private:
  Files() {
    const char* const isCheck = std::getenv("KIV_BENCH_CHECK");
    const std::size_t folders = isCheck != nullptr ? 2 : 200;
    const std::size_t largeSize = (isCheck != nullptr ? 2U : 256U) << 20U;
    std::string name = fs::is_directory("/dev/shm") ? "/dev/shm/kiv-bench-XXXXXX" : "/tmp/kiv-bench-XXXXXX";
    Require(mkdtemp(name.data()) != nullptr, "mkdtemp");
    root_ = name;
    std::mt19937 random(4'102);
    std::string content(8'192, '\0');
    for (char& letter : content) {
      letter = static_cast<char>(random());
    }
    for (std::size_t folder = 0; folder < folders; ++folder) {
      const fs::path in = fs::path(Source()) / ("d" + std::to_string(folder));
      fs::create_directories(in);
      for (std::size_t file = 0; file < 100; ++file, ++count_) {
        const std::string ending = file % 4 == 0 ? ".dbf" : ".txt";
        Write(in / ("f" + std::to_string(file) + ending), content, random() % (content.size() + 1));
      }
    }
    Write(At("mare1"), content, largeSize);
    Write(At("mare2"), content, largeSize);
    Write(At("mare3"), content, largeSize + 1);
  }

  static void Write(const fs::path& path, const std::string& content, std::size_t size) {
    std::ofstream file(path, std::ios::binary);
    for (std::size_t left = size; left > 0;) {
      const std::size_t part = std::min(left, content.size());
      file.write(content.data(), static_cast<std::streamsize>(part));
      left -= part;
    }
    Require(file.flush().good(), path.native());
  }

  fs::path root_;
  std::size_t count_ = 0;
};

/// What is timed, in seconds of processor time, with what stands before and after it.
struct Work {
  std::function<double()> run;
  std::function<void()> prepare = [] {};
  std::function<void()> check = [] {};
};

double Own(const std::function<void()>& work) {
  const double start = bench::OwnSeconds();
  work();
  return bench::OwnSeconds() - start;
}

std::function<double()> Program(std::vector<std::string> command) {
  return [command = std::move(command)] { return bench::AwaitedSeconds(bench::Spawned(command)); };
}

/// Calls `visit` for each entry of a folder: its name and whether it is a folder.
template <class Visit>
void ForEachEntry(int folder, Visit&& visit) {
  const auto buffer = std::make_unique_for_overwrite<std::byte[]>(32'768);
  for (ssize_t size = 0; (size = getdents64(folder, buffer.get(), 32'768)) > 0;) {
    for (ssize_t at = 0; at < size;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(buffer.get() + at);
      at += entry->d_reclen;
      if (entry->d_name[0] != '.') {
        visit(entry->d_name, entry->d_type == DT_DIR);
      }
    }
  }
}

int Opened(int at, const char* name, int flags, mode_t mode = 0666) {
  const int file = openat(at, name, flags | O_CLOEXEC, mode);
  Require(file >= 0, name);
  return file;
}

void BareList(int at, const char* name) {
  const int folder = Opened(at, name, O_RDONLY | O_DIRECTORY);
  ForEachEntry(folder, [folder](const char* entry, bool isFolder) {
    if (isFolder) {
      BareList(folder, entry);
    }
  });
  close(folder);
}

/// The content alone, into a file that is emptied if it is there.
void BareCopy(int from, int to, const char* name, const char* newName) {
  static char buffer[65'536];
  const int source = Opened(from, name, O_RDONLY);
  const int copy = Opened(to, newName, O_WRONLY | O_CREAT | O_TRUNC);
  const ssize_t size = read(source, buffer, sizeof buffer);
  Require(write(copy, buffer, static_cast<std::size_t>(size)) == size, name);
  close(source);
  close(copy);
}

/// The same beside the file, which is then replaced.
void BareReplace(int from, int to, const char* name, const char* newName) {
  const std::string beside = std::string(newName) + ".tmp-0123456789abcdef";
  BareCopy(from, to, name, beside.c_str());
  Require(renameat(to, beside.c_str(), to, newName) == 0, name);
}

using CopyFile = void (*)(int from, int to, const char* name, const char* newName);

void BareTreeCopy(int from, const char* name, int to, const char* newName, CopyFile copyFile) {
  const int source = Opened(from, name, O_RDONLY | O_DIRECTORY);
  mkdirat(to, newName, 0777);
  const int copy = Opened(to, newName, O_RDONLY | O_DIRECTORY);
  ForEachEntry(source, [=](const char* entry, bool isFolder) {
    isFolder ? BareTreeCopy(source, entry, copy, entry, copyFile) : copyFile(source, copy, entry, entry);
  });
  close(source);
  close(copy);
}

std::function<double()> BareTreeCopy(CopyFile copyFile) {
  return [copyFile] {
    return Own([copyFile] {
      BareTreeCopy(AT_FDCWD, Files::Get().Source().c_str(), AT_FDCWD, Files::Get().Copy().c_str(), copyFile);
    });
  };
}

bool BareCompare(const std::string& file1, const std::string& file2) {
  struct Mapped {
    explicit Mapped(const std::string& name) : file(Opened(AT_FDCWD, name.c_str(), O_RDONLY)) {
      struct stat status {};
      Require(fstat(file, &status) == 0, name);
      size = static_cast<std::size_t>(status.st_size);
    }
    void Map() {
      bytes = mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0);
      Require(bytes != MAP_FAILED, "mmap");
    }
    ~Mapped() {
      munmap(bytes, size);
      close(file);
    }
    int file;
    std::size_t size = 0;
    void* bytes = nullptr;
  };
  Mapped first(file1);
  Mapped second(file2);
  if (first.size != second.size) {
    return false;
  }
  first.Map();
  second.Map();
  return std::memcmp(first.bytes, second.bytes, first.size) == 0;
}

Work Listing(std::function<double()> run) {
  return {std::move(run)};
}

double ListKiv() {
  StringList files;
  const double seconds = Own([&] { files = InitFileList(Files::Get().Source(), {"dbf"}); });
  Require(files.size() == Files::Get().Dbf(), "files in the list");
  return seconds;
}

double CopyKiv() {
  host::headless::Label label(nullptr, "lblFisier");
  return Own([&] { RecursiveCopyWithExt(Files::Get().Source(), Files::Get().Copy(), {"*"}, label, 350); });
}

Work NewCopy(std::function<double()> run) {
  return {std::move(run), [] { Files::Get().RemoveCopy(); }, [] { Files::Get().RequireCopy(); }};
}

Work Replacing(std::function<double()> run) {
  return {std::move(run), [] { Files::Get().MakeCopy(); }, [] { Files::Get().RequireCopy(); }};
}

Work Deletion(std::function<double()> run) {
  return {std::move(run), [] { Files::Get().MakeCopy(); },
          [] { Require(!fs::exists(Files::Get().Copy()), "what was to be deleted is there"); }};
}

using Compare = bool (*)(const std::string& file1, const std::string& file2);

bool CompareKiv(const std::string& file1, const std::string& file2) {
  return ComparaFisiere(file1, file2);
}

Work Comparison(Compare compare, const char* other, bool expected) {
  return {[=] {
    bool isEqual = false;
    const double seconds = Own([&] { isEqual = compare(Files::Get().At("mare1"), Files::Get().At(other)); });
    Require(isEqual == expected, "a comparison");
    return seconds;
  }};
}

void Measure(benchmark::State& state, const std::function<Work()>& make) {
  static_cast<void>(Files::Get());  // is made before anything is timed
  const Work work = make();
  for (auto _ : state) {
    work.prepare();
    state.SetIterationTime(work.run());
    work.check();
  }
}

void Register(const char* name, const std::function<Work()>& make) {
  benchmark::RegisterBenchmark(name, Measure, make)->UseManualTime();
}

const bool kRegistered = [] {
  const auto source = [] { return Files::Get().Source(); };
  const auto copy = [] { return Files::Get().Copy(); };
  Register("Files/list/kiv", [] { return Listing(&ListKiv); });
  Register("Files/list/find", [=] { return Listing(Program({"find", source(), "-name", "*.dbf"})); });
  Register("Files/list/bfs", [=] { return Listing(Program({"bfs", source(), "-name", "*.dbf"})); });
  Register("Files/list/floor_getdents64",
           [] { return Listing([] { return Own([] { BareList(AT_FDCWD, Files::Get().Source().c_str()); }); }); });
  Register("Files/copy/kiv", [] { return NewCopy(&CopyKiv); });
  Register("Files/copy/cp", [=] { return NewCopy(Program({"cp", "-r", source(), copy()})); });
  Register("Files/copy/floor_read_write", [] { return NewCopy(BareTreeCopy(&BareCopy)); });
  Register("Files/replace/kiv", [] { return Replacing(&CopyKiv); });
  Register("Files/replace/cp", [=] { return Replacing(Program({"cp", "-rT", source(), copy()})); });
  Register("Files/replace/floor_read_write", [] { return Replacing(BareTreeCopy(&BareCopy)); });
  Register("Files/replace/floor_read_write_rename", [] { return Replacing(BareTreeCopy(&BareReplace)); });
  Register("Files/delete/kiv", [=] { return Deletion([=] { return Own([=] { RecursiveDelete(copy()); }); }); });
  Register("Files/delete/rm", [=] { return Deletion(Program({"rm", "-rf", copy()})); });
  Register("Files/compare/kiv", [] { return Comparison(&CompareKiv, "mare2", true); });
  const auto large = [](const char* name) { return Files::Get().At(name); };
  Register("Files/compare/cmp", [=] { return Listing(Program({"cmp", large("mare1"), large("mare2")})); });
  Register("Files/compare/diff", [=] { return Listing(Program({"diff", "-q", large("mare1"), large("mare2")})); });
  Register("Files/compare/floor_mapped", [] { return Comparison(&BareCompare, "mare2", true); });
  Register("Files/compare_sizes/kiv", [] { return Comparison(&CompareKiv, "mare3", false); });
  Register("Files/compare_sizes/floor_fstat", [] { return Comparison(&BareCompare, "mare3", false); });
  return true;
}();

}  // namespace
}  // namespace kiv
