#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kivtools/Library.h"

namespace kivtools {

/// The library refused a file of data: what it says, and where.
class DamagedFile : public LibraryError {
 public:
  DamagedFile(const std::string& message, std::int32_t damagedChunk, std::uint64_t damagedOffset)
      : LibraryError(AsItIs(message)), chunk(damagedChunk), offset(damagedOffset) {}

  std::int32_t chunk;  ///< -1 outside of them all
  std::uint64_t offset;
  std::uint64_t line = 0;  ///< of a text, from 1
  std::uint64_t column = 0;
};

/// What a file of text does not say of itself.
struct DataForm {
  /// What is known of a column.
  struct Column {
    std::string name;
    std::int32_t type;  ///< KIV_FIELD_...
  };
  std::vector<Column> columns;
  std::string name;            ///< of the dataset; that of the file where it is empty
  std::int32_t separator = 0;  ///< 0: what stands in the header when it is read, a comma when it is written
  std::int32_t csv = 0;        ///< KIV_CSV_...
};

/// The forms of files of data.
enum class DataFormat : std::uint8_t { Packet, Xml, Csv };
/// That which the file's ending names, case apart. Example: "a.CSV" gives Csv, "a.txt" nothing.
std::optional<DataFormat> FormatNamed(const std::filesystem::path& path);
/// The same; a packet where the ending names none, because applications call theirs as they like.
DataFormat FormatOf(const std::filesystem::path& path);

/// A file of the dataset engine: a dataset with its journal, or a delta. Texts are UTF-8.
class DataFile {
 public:
  /// A value as it is read; nothing for null.
  using Shown = std::optional<std::string>;
  struct Field {
    std::string name;
    std::int32_t type;  ///< KIV_FIELD_...
    bool isKey;
  };
  /// What happened to a row, as KIV_CHANGE_..., and its fields that tell of it.
  struct Change {
    std::int32_t kind;
    struct Value {
      std::size_t field;
      Shown was, is;
      bool isChanged;
    };
    std::vector<Value> values;
  };

  /// Loads the file. Throws DamagedFile and LibraryError.
  DataFile(const Library& library, const std::filesystem::path& path, const DataForm& form = {});

  /// Whether it is one of comma-separated values, which do not say their types.
  [[nodiscard]] bool IsText() const noexcept { return isText_; }
  [[nodiscard]] bool IsDelta() const noexcept { return dataset_ == nullptr; }
  [[nodiscard]] const std::string& Name() const noexcept { return name_; }
  [[nodiscard]] const std::vector<Field>& Fields() const noexcept { return fields_; }
  /// How many rows of a dataset have a state, KIV_ROW_....
  [[nodiscard]] std::size_t CountOf(std::int32_t state) const;
  /// How many changes the log of a dataset remembers.
  [[nodiscard]] std::size_t LogLength() const;
  /// How many edits of the journal were done again, and the bytes of it that were lost.
  [[nodiscard]] std::uint64_t Replayed() const noexcept { return replayed_; }
  [[nodiscard]] std::uint64_t LostBytes() const noexcept { return lostBytes_; }

  /// Saves a dataset in the form that the file's ending names. Throws LibraryError.
  void Save(const std::filesystem::path& path, const DataForm& form) const;

  /// The delta that makes the rows of `after` of this dataset's, by the fields that tell rows apart, saved. Returns how
  /// many rows it has. Throws LibraryError.
  [[nodiscard]] std::size_t SaveDifference(const DataFile& after, const std::vector<std::string>& key,
                                           const std::filesystem::path& path) const;

  /// Makes the rows what they were before all changes.
  void TakeBackChanges();
  /// Whether a row of a dataset has a value in that field.
  [[nodiscard]] bool HasValues(std::size_t field) const;
  /// The place of the field of that name, case apart; nothing where there is none.
  [[nodiscard]] std::optional<std::size_t> FindField(const std::string& name) const;
  /// Which rows of a dataset are wanted, and what of them. An empty text filters nothing and orders by nothing.
  struct Wanted {
    std::string filter;
    std::string order;
    std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    std::vector<std::size_t> fields;
  };
  /// Calls back with the state and the values of each wanted row; deleted ones are left out. Returns how many rows
  /// there are beyond the most. Throws LibraryError for an order or a filter that is none.
  std::uint64_t ForEachRow(const Wanted& wanted,
                           const std::function<void(std::int32_t, const std::vector<Shown>&)>& visit) const;
  /// How many rows of a dataset pass a filter, and what some of their fields come to together; null where none of them
  /// has a value.
  struct Totals {
    std::size_t rows;
    std::vector<Shown> sums;
  };
  /// Throws LibraryError for a filter that is none, a field that is not added up and a sum beyond its type.
  [[nodiscard]] Totals SumUp(const std::string& filter, const std::vector<std::size_t>& fields) const;
  /// Calls back with each row that is not as it was: its key, and of updates what changed.
  void ForEachChange(const std::function<void(const Change&)>& visit) const;

 private:
  void Check(KivStatus status) const;
  void LoadPacket(const std::string& name);
  void LoadXml(const std::string& name);
  void LoadCsv(const std::string& name, const DataForm& form);
  void ReadFields();
  [[nodiscard]] Shown RowValue(std::uint32_t row, std::size_t field) const;
  [[nodiscard]] Shown TicketValue(std::uint32_t ticket, std::size_t field, bool original) const;
  [[nodiscard]] Change ReadChange(std::uint32_t ticket) const;

  const Library& library_;
  std::unique_ptr<KivDataset, decltype(KivDatasetFree)*> dataset_;
  std::unique_ptr<KivDelta, decltype(KivDeltaFree)*> delta_;
  bool isText_ = false;
  std::string name_;
  std::vector<Field> fields_;
  std::uint64_t replayed_ = 0;
  std::uint64_t lostBytes_ = 0;
};

}  // namespace kivtools
