#include "dataset/packet/JournalReader.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "core/Crc32c.h"
#include "core/Numbers.h"
#include "dataset/packet/JournalFormat.h"
#include "dataset/store/SchemaData.h"
#include "dataset/store/Store.h"
#include "platform/Files.h"

namespace kiv::packet {
namespace {

using store::Cell;
using store::Edit;
using store::Storage;
using store::TraitsOf;

constexpr std::size_t kStep = std::size_t{64} * 1024;
constexpr TextView kOperation = "LoadBinary";

/// Takes the log apart and does its edits again.
class Replay {
 public:
  Replay(Dataset& dataset, platform::File& file, const std::filesystem::path& path, const ReadLimits& limits)
      : dataset_(dataset), file_(file), path_(path), limits_(limits) {}

  void Run(std::uint64_t identity, LoadReport& report) {
    platform::EntryInfo info;
    file_.Query(info).OrThrow(kOperation, path_);
    size_ = info.size;
    if (!ReadHeader(identity, report)) {
      return;
    }
    while (ReadEntry()) {
      Do();
      ++report.replayed;
      whole_ = offset_;
    }
    report.lostBytes = size_ - whole_;
  }

 private:
  [[noreturn]] void Refuse(TextView why) const {
    Text message = Text(kOperation) + ": " + platform::ShownPath(path_.native()) + ": octetul ";
    AppendDecimal(message, whole_);
    throw PacketError(-1, whole_, message.append(": ").append(why));
  }

  /// The next bytes of the file; false where it ends before.
  bool Read(std::span<std::byte> into) {
    std::size_t count = 0;
    file_.ReadAt(offset_, {reinterpret_cast<std::uint8_t*>(into.data()), into.size()}, count)
        .OrThrow(kOperation, path_);
    offset_ += count;
    return count == into.size();
  }

  bool ReadHeader(std::uint64_t identity, LoadReport& report) {
    std::array<std::byte, kJournalHeaderSize> header{};
    if (!Read(header)) {
      return false;  // it was about to be begun, no edit is in it
    }
    if (header != JournalHeader(identity)) {
      std::uint64_t own = 0;
      std::memcpy(&own, header.data() + 16, sizeof own);
      // One of an older save has nothing that the packet lacks; of a damaged one nobody knows.
      report.lostBytes = header == JournalHeader(own) ? 0 : size_;
      return false;
    }
    std::memcpy(&checksum_, header.data() + header.size() - sizeof checksum_, sizeof checksum_);
    whole_ = offset_;
    return true;
  }

  /// Reads an entry; false where there is none that is whole.
  bool ReadEntry() {
    std::array<std::byte, 4> length{};
    if (!Read(length)) {
      return false;
    }
    std::uint32_t left = 0;
    std::memcpy(&left, length.data(), sizeof left);
    if (left > size_ - std::min(size_, offset_)) {
      return false;
    }
    if (left > limits_.maxBytes) {
      Refuse("jurnalul ar ocupa mai multa memorie decat este permis");
    }
    entry_.clear();
    at_ = 0;
    while (left > 0) {
      const std::size_t step = std::min<std::size_t>(left, kStep);
      entry_.resize(entry_.size() + step);
      if (!Read(std::span(entry_).last(step))) {
        return false;
      }
      left -= static_cast<std::uint32_t>(step);
    }
    std::array<std::byte, 4> sealed{};
    if (!Read(sealed)) {
      return false;
    }
    std::uint32_t checksum = 0;
    std::memcpy(&checksum, sealed.data(), sizeof checksum);
    checksum_ = Crc32c(entry_, Crc32c(length, checksum_));
    return checksum == checksum_;
  }

  std::span<const std::byte> Take(std::size_t size) {
    if (size > entry_.size() - at_) {
      Refuse("o inregistrare se termina inainte de vreme");
    }
    at_ += size;
    return std::span(entry_).subspan(at_ - size, size);
  }
  template <class Number>
  Number Take() {
    Number number;
    std::memcpy(&number, Take(sizeof number).data(), sizeof number);
    return number;
  }

  void Do() {
    try {
      DoEdit();
    } catch (const PacketError&) {
      throw;
    } catch (const Error& error) {
      Refuse(error.what());
    }
  }

  void DoEdit() {
    const auto kind = Take<Edit::Kind>();
    const auto number = Take<std::uint32_t>();
    const bool hasValues = kind == Edit::Kind::Insert || kind == Edit::Kind::Update;
    TakeValues(hasValues ? Take<std::uint16_t>() : 0);
    if (at_ != entry_.size()) {
      Refuse("o inregistrare are octeti in plus");
    }
    const RowId row{number};
    switch (kind) {
      case Edit::Kind::Insert:
        if (dataset_.GetContents().rowCount >= limits_.maxRows || dataset_.Insert(values_) != row) {
          Refuse("un rand nou are alt numar decat trebuie");
        }
        return;
      case Edit::Kind::Update:
        return dataset_.Update(row, values_);
      case Edit::Kind::Delete:
        return dataset_.Delete(row);
      case Edit::Kind::Restore:
        return dataset_.Changes().RevertRow(row);
      case Edit::Kind::UndoTo:
        if (number > dataset_.GetContents().log.Count()) {
          Refuse("jurnalul revine la o modificare care nu exista");
        }
        return dataset_.GetStore().UndoTo(number);
      case Edit::Kind::Accept:
        return dataset_.Changes().AcceptChanges();
      case Edit::Kind::Compact:
        return dataset_.Compact();
    }
    Refuse("jurnalul are o inregistrare de un fel necunoscut");
  }

  void TakeValues(std::uint32_t count) {
    values_.clear();
    wide_.clear();
    for (; count > 0; --count) {
      const auto number = Take<std::uint16_t>();
      const auto index = static_cast<std::uint16_t>(number & (kNullInEntry - 1U));
      const auto fields = dataset_.GetSchema().Fields();
      if (index >= fields.size()) {
        Refuse("jurnalul are un camp care nu exista");
      }
      Cell cell;
      if ((number & kNullInEntry) == 0) {
        cell = TakeCell(fields[index].type);
        store::CheckCell(fields[index], cell, dataset_.GetContents().owner);
      }
      values_.push_back({dataset_.FieldAt(index), store::ViewOf(fields[index].type, cell)});
    }
  }

  Cell TakeCell(FieldType type) {
    Cell cell{.isNull = false};
    if (TraitsOf(type).storage == Storage::Fixed) {
      cell.bits = Take<std::uint64_t>();
      cell.more = type == FieldType::Guid ? Take<std::uint64_t>() : 0;
      return cell;
    }
    const auto bytes = Take(Take<std::uint32_t>());
    cell.bytes = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    if (type == FieldType::WideText) {
      if (bytes.size() % 2 != 0) {
        Refuse("un text UTF-16 are un numar impar de octeti");
      }
      // Where it stands in the entry it need not be aligned.
      std::u16string& aligned = wide_.emplace_back(bytes.size() / 2, u'\0');
      std::ranges::copy(cell.bytes, reinterpret_cast<char*>(aligned.data()));
      cell.bytes = {reinterpret_cast<const char*>(aligned.data()), bytes.size()};
    }
    return cell;
  }

  Dataset& dataset_;
  platform::File& file_;
  const std::filesystem::path& path_;
  const ReadLimits& limits_;
  std::uint64_t size_ = 0;
  std::uint64_t offset_ = 0;
  std::uint64_t whole_ = 0;  // the bytes of header and whole entries
  std::uint32_t checksum_ = 0;
  std::vector<std::byte> entry_;
  std::size_t at_ = 0;
  std::vector<FieldValue> values_;
  std::deque<std::u16string> wide_;
};

}  // namespace

void ReplayJournal(Dataset& dataset, const std::filesystem::path& path, std::uint64_t identity,
                   const ReadLimits& limits, LoadReport& report) {
  const std::filesystem::path logPath = JournalPath(path);
  platform::File file;
  const platform::SystemStatus opened = file.Open(logPath, platform::OpenMode::ReadFile);
  if (opened.IsMissing()) {
    return;
  }
  opened.OrThrow(kOperation, logPath);
  Replay(dataset, file, logPath, limits).Run(identity, report);
}

}  // namespace kiv::packet
