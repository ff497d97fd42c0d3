#include "kivtools/dataset/Journal.h"

#include <cstring>
#include <utility>
#include <vector>

#include "core/Crc32c.h"
#include "dataset/packet/JournalFormat.h"
#include "dataset/packet/PacketFile.h"
#include "dataset/packet/RowNumbers.h"
#include "dataset/packet/SaveLock.h"
#include "dataset/store/SchemaData.h"
#include "dataset/store/Store.h"
#include "platform/Clock.h"
#include "platform/Files.h"

namespace kiv {

using store::Edit;
using store::FieldCell;
using store::Storage;
using store::StoredState;
using store::TraitsOf;

std::array<std::byte, packet::kJournalHeaderSize> packet::JournalHeader(std::uint64_t identity) noexcept {
  std::array<std::byte, kJournalHeaderSize> header{};
  std::memcpy(header.data(), kJournalMagic.data(), kJournalMagic.size());
  std::memcpy(header.data() + 8, &kJournalVersion, sizeof kJournalVersion);
  std::memcpy(header.data() + 16, &identity, sizeof identity);
  const std::uint32_t checksum = Crc32c(std::span(header).first(24));
  std::memcpy(header.data() + 24, &checksum, sizeof checksum);
  return header;
}

std::filesystem::path packet::JournalPath(const std::filesystem::path& path) {
  std::filesystem::path log = path;
  return log += ".log";
}

namespace {

constexpr TextView kOperation = "Journal";
constexpr double kSecond = 1.0 / 86'400;

/// Puts an entry together.
class EntryWriter {
 public:
  explicit EntryWriter(std::vector<std::byte>& entry) : entry_(entry) {
    entry_.clear();
    Put(std::uint32_t{0});  // the length, once it is known
  }

  template <class Number>
  void Put(Number number) {
    Put(&number, sizeof number);
  }
  void Put(const store::Contents& contents, const FieldCell& value) {
    const auto [field, cell] = value;
    if (cell.isNull) {
      Put(static_cast<std::uint16_t>(field | packet::kNullInEntry));
      return;
    }
    Put(field);
    const FieldType type = contents.columns[field].type;
    if (TraitsOf(type).storage == Storage::Fixed) {
      Put(cell.bits);
      if (type == FieldType::Guid) {
        Put(cell.more);
      }
    } else {
      Put(static_cast<std::uint32_t>(cell.bytes.size()));
      Put(cell.bytes.data(), cell.bytes.size());
    }
  }
  /// Returns the checksum, which the next entry goes on from.
  std::uint32_t Seal(std::uint32_t before) {
    const auto length = static_cast<std::uint32_t>(entry_.size() - sizeof(std::uint32_t));
    std::memcpy(entry_.data(), &length, sizeof length);
    const std::uint32_t checksum = Crc32c(entry_, before);
    Put(checksum);
    return checksum;
  }

 private:
  void Put(const void* from, std::size_t size) {
    if (size > 0) {
      entry_.resize(entry_.size() + size);
      std::memcpy(entry_.data() + entry_.size() - size, from, size);
    }
  }

  std::vector<std::byte>& entry_;
};

}  // namespace

class Journal::Log final : public store::EditRecorder {
 public:
  Log(Dataset& dataset, std::filesystem::path path, JournalOptions options)
      : dataset_(dataset),
        store_(dataset.GetStore()),
        path_(std::move(path)),
        logPath_(packet::JournalPath(path_)),
        options_(std::move(options)) {
    packet::SaveLock::LockJournal(lock_, logPath_, kOperation);
    store_.SetRecorder(this);
    try {
      Save();
    } catch (...) {
      store_.SetRecorder(nullptr);
      throw;
    }
  }
  ~Log() override {
    store_.SetRecorder(nullptr);
    if (!isStopped_ && options_.flush != JournalFlush::Never) {
      static_cast<void>(content_.Flush());
    }
  }

  void Save() {
    packet::SaveLock lock(path_, kOperation, packet::SaveLock::Log::Own);
    // Where the save fails behind its last step but one, the file is the new one already and the log of no more use.
    isStopped_ = true;
    const std::uint64_t identity = packet::SaveDataset(dataset_, path_, options_.save, kOperation, lock);
    // The packet lacks these, so that the rows behind them have other numbers when it is loaded.
    dropped_ = packet::DroppedRows(store_.GetContents());
    const auto header = packet::JournalHeader(identity);
    content_.Open(logPath_, platform::OpenMode::Overwrite).OrThrow(kOperation, logPath_);
    Write(header);
    if (options_.flush != JournalFlush::Never) {
      Flush();
    }
    size_ = header.size();
    std::memcpy(&checksum_, header.data() + header.size() - sizeof checksum_, sizeof checksum_);
    isStopped_ = false;
  }

  void Flush() { content_.Flush().OrThrow(kOperation, logPath_); }
  [[nodiscard]] std::uint64_t Size() const noexcept { return size_; }

  void Record(const Edit& edit) override {
    if (isStopped_) {
      throw Error(Text(kOperation) + ": " + platform::ShownPath(logPath_.native()) +
                  ": jurnalul s-a oprit; setul de date trebuie salvat");
    }
    EntryWriter entry(entry_);
    const bool isOfRow = edit.kind <= Edit::Kind::Restore;
    entry.Put(edit.kind);
    entry.Put(isOfRow ? packet::NewNumber(dropped_, edit.number) : edit.number);
    if (edit.kind == Edit::Kind::Insert || edit.kind == Edit::Kind::Update) {
      entry.Put(static_cast<std::uint16_t>(edit.values.size()));
      for (const FieldCell& value : edit.values) {
        entry.Put(store_.GetContents(), value);
      }
    }
    const std::uint32_t checksum = entry.Seal(checksum_);
    try {
      Write(entry_);
      FlushIfDue();
    } catch (...) {
      // The edit is not made, so it may not be found in the log; and nothing may come behind what cannot be cut off.
      isStopped_ = true;
      static_cast<void>(content_.Resize(size_));
      throw;
    }
    size_ += entry_.size();
    checksum_ = checksum;
    if (edit.kind == Edit::Kind::Compact) {
      dropped_.clear();
    }
  }

 private:
  void Write(std::span<const std::byte> bytes) {
    content_.Write({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}).OrThrow(kOperation, logPath_);
  }

  void FlushIfDue() {
    if (options_.flush == JournalFlush::Never) {
      return;
    }
    if (options_.flush == JournalFlush::EachSecond) {
      const double now = platform::clock_service.Current().Now().Days();
      // A clock that was put back makes it due, too.
      if (now >= flushed_ && now < flushed_ + kSecond) {
        return;
      }
      flushed_ = now;
    }
    Flush();
  }

  Dataset& dataset_;
  store::Store& store_;
  std::filesystem::path path_;
  std::filesystem::path logPath_;
  JournalOptions options_;
  platform::File lock_;
  platform::File content_;
  std::uint64_t size_ = 0;
  std::uint32_t checksum_ = 0;
  double flushed_ = 0;
  bool isStopped_ = true;
  std::vector<std::uint32_t> dropped_;
  std::vector<std::byte> entry_;
};

Journal::Journal(Dataset& dataset, const std::filesystem::path& path, const JournalOptions& options)
    : log_(std::make_unique<Log>(dataset, path, options)) {}
Journal::~Journal() = default;

void Journal::Save() {
  log_->Save();
}

void Journal::Flush() {
  log_->Flush();
}

std::uint64_t Journal::Size() const noexcept {
  return log_->Size();
}

}  // namespace kiv
