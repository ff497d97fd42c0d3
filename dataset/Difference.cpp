#include "kivtools/dataset/Difference.h"

#include <algorithm>
#include <vector>

#include "dataset/store/Cell.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

using store::Quoted;

constexpr TextView kOperation = "Difference";

/// Takes the rows of one dataset into another that has its fields and a key.
class Differ {
 public:
  Differ(const DatasetView& before, const DatasetView& after, std::span<const Text> key)
      : after_(after), dataset_(before.Name(), MakeSchema(before, after, key)) {
    Load(before);
    for (const FieldDef& field : dataset_.GetSchema().Fields()) {
      places_.push_back(after.Field(field.name));
    }
  }

  Dataset Make() {
    std::vector<bool> isMet(dataset_.RowCount());
    for (const RowId row : after_.Rows()) {
      const std::optional<RowId> met = dataset_.Find(KeyOf(row));
      if (!met) {
        dataset_.Insert(ValuesOf(row));
        continue;
      }
      const auto number = static_cast<std::size_t>(*met);
      if (number >= isMet.size() || isMet[number]) {
        RefuseSecond(row);
      }
      isMet[number] = true;
      dataset_.Update(*met, ValuesOf(row));
    }
    for (std::size_t number = 0; number < isMet.size(); ++number) {
      if (!isMet[number]) {
        dataset_.Delete(RowId{static_cast<std::uint32_t>(number)});
      }
    }
    return std::move(dataset_);
  }

 private:
  /// The fields of the one, with room for the texts of both.
  static Schema MakeSchema(const DatasetView& before, const DatasetView& after, std::span<const Text> key) {
    const auto theirs = after.GetSchema().Fields();
    std::vector<FieldDef> fields(before.GetSchema().Fields().begin(), before.GetSchema().Fields().end());
    for (FieldDef& field : fields) {
      const auto place = after.GetSchema().IndexOf(field.name);
      if (!place || theirs[*place].type != field.type) {
        throw Error(Text(kOperation) + ": campul " + Quoted(field.name) +
                    (place ? " este de tip " + Text(store::TraitsOf(field.type).name) + " si " +
                                 store::TraitsOf(theirs[*place].type).name
                           : Text(" lipseste in al doilea set de date")));
      }
      const bool isUnlimited = field.size == 0 || theirs[*place].size == 0;
      field.size = isUnlimited ? 0 : std::max(field.size, theirs[*place].size);
      // A difference sets what an edit may not.
      constexpr auto kKept = static_cast<unsigned>(kKey | kCheck | kNoCheck);
      field.flags = static_cast<FieldFlags>(static_cast<unsigned>(field.flags) & kKept);
    }
    for (const FieldDef& field : theirs) {
      if (!before.GetSchema().IndexOf(field.name)) {
        throw Error(Text(kOperation) + ": campul " + Quoted(field.name) + " lipseste in primul set de date");
      }
    }
    SetKey(before.GetSchema(), key, fields);
    return Schema(std::move(fields));
  }

  static void SetKey(const Schema& schema, std::span<const Text> key, std::vector<FieldDef>& fields) {
    if (key.empty() && schema.KeyFields().empty()) {
      throw Error(Text(kOperation) + ": lipseste cheia dupa care se recunosc randurile");
    }
    for (std::size_t i = 0; !key.empty() && i < fields.size(); ++i) {
      constexpr auto kKept = static_cast<unsigned>(kCheck | kNoCheck);
      fields[i].flags = static_cast<FieldFlags>(static_cast<unsigned>(fields[i].flags) & kKept);
    }
    for (const Text& name : key) {
      const auto place = schema.IndexOf(name);
      if (!place) {
        throw Error(Text(kOperation) + ": campul " + Quoted(name) + " nu exista");
      }
      fields[*place].flags = fields[*place].flags | kKey;
    }
  }

  void Load(const DatasetView& before) {
    Loader loader(dataset_);
    std::vector<ValueView> values(dataset_.GetSchema().Fields().size());
    for (const RowId row : before.Rows()) {
      for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = before.View(row, before.FieldAt(i));
      }
      loader.Add(values);
    }
    loader.Finish();
  }

  std::span<const ValueView> KeyOf(RowId row) {
    key_.clear();
    for (const std::uint16_t field : dataset_.GetSchema().KeyFields()) {
      key_.push_back(after_.View(row, places_[field]));
    }
    return key_;
  }

  std::span<const FieldValue> ValuesOf(RowId row) {
    values_.clear();
    for (std::size_t i = 0; i < places_.size(); ++i) {
      values_.push_back({dataset_.FieldAt(i), after_.View(row, places_[i])});
    }
    return values_;
  }

  [[noreturn]] void RefuseSecond(RowId row) {
    Text shown;
    for (const std::uint16_t field : dataset_.GetSchema().KeyFields()) {
      const FieldType type = dataset_.GetSchema().Fields()[field].type;
      shown += (shown.empty() ? "" : ", ") +
               store::Describe(type, store::MakeCell(dataset_.GetSchema().Fields()[field],
                                                     after_.View(row, places_[field]), kOperation));
    }
    throw Error(Text(kOperation) + ": cheia " + shown + " apare de doua ori in al doilea set de date");
  }

  const DatasetView& after_;
  Dataset dataset_;
  std::vector<FieldRef> places_;  // in the other dataset, by field
  std::vector<ValueView> key_;
  std::vector<FieldValue> values_;
};

}  // namespace

Dataset Difference(const DatasetView& before, const DatasetView& after, std::span<const Text> key) {
  return Differ(before, after, key).Make();
}

}  // namespace kiv
