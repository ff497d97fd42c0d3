#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "dataset/store/Contents.h"
#include "kivtools/dataset/Cursor.h"

namespace kiv {

using Values = std::vector<Value>;

/// A row of the model that random edits are held against.
struct ModelRow {
  Values values;
  std::optional<Values> original;
  bool isPresent = true;
  bool operator==(const ModelRow&) const = default;

  [[nodiscard]] store::StoredState State() const {
    if (!isPresent) {
      return original ? store::StoredState::Deleted : store::StoredState::Gone;
    }
    return !original             ? store::StoredState::Inserted
           : values == *original ? store::StoredState::Unmodified
                                 : store::StoredState::Modified;
  }
};

using Rows = std::vector<ModelRow>;

/// An order, and what the model knows of it.
struct ModelOrder {
  struct By {
    std::size_t field;
    Collation collation = Collation::Romanian;
    bool isDescending = false;
    bool nullsLast = false;
  };
  const char* order;
  std::vector<By> fields;
  const char* from = nullptr;
  const char* to = nullptr;
  const char* filter = nullptr;
  bool (*passes)(const Values& values) = nullptr;
};

/// Cursors on a dataset and where the model says that they stand. The first `base` rows of the dataset are not in the
/// model: their first field is a number and all others are null, and they never change.
class ModelCursors {
 public:
  ModelCursors(Dataset& dataset, std::uint32_t base) : base_(base) {
    for (const Kind& kind : kKinds) {
      Standing& standing = cursors_.emplace_back(Standing{kind, Cursor(dataset), std::nullopt});
      standing.cursor.OrderBy(kind.order);
      if (kind.from != nullptr) {
        standing.cursor.SetRange({kind.from}, {kind.to});
      }
      if (kind.filter != nullptr) {
        standing.cursor.Filter(kind.filter);
      }
    }
  }

  /// One row has become another, or has come or gone.
  void Follow(const Rows& before, const Rows& after) {
    for (Standing& standing : cursors_) {
      if (standing.row && *standing.row >= base_ && !IsSeen(standing.kind, after, *standing.row - base_)) {
        standing.row = Next(standing.kind, before, *standing.row);
      }
    }
  }

  void Renumber(const std::vector<std::size_t>& numbers) {
    for (Standing& standing : cursors_) {
      if (standing.row && *standing.row >= base_) {
        standing.row = base_ + static_cast<std::uint32_t>(numbers[*standing.row - base_]);
      }
    }
  }

  /// Holds where the cursors stand against the model, and the whole order of one of them; one that stands nowhere goes
  /// to a row.
  void Check(const Rows& rows, std::uint64_t step) {
    for (Standing& standing : cursors_) {
      ASSERT_EQ(standing.cursor.AtEnd(), !standing.row.has_value() && !standing.isNew) << standing.kind.order;
      if (standing.row) {
        ASSERT_EQ(standing.cursor.Row(), RowId{*standing.row}) << standing.kind.order;
      } else if (standing.cursor.First()) {
        standing.cursor.GoTo(static_cast<std::size_t>(step % standing.cursor.Count()));
        standing.row = static_cast<std::uint32_t>(standing.cursor.Row());
      }
      standing.isNew = false;
    }
    if (step % 4 == 0) {
      CheckOrder(cursors_[static_cast<std::size_t>(step / 4 % cursors_.size())], rows);
    }
  }

 private:
  using Kind = ModelOrder;
  static inline const std::vector<Kind> kKinds = {
      {"", {}},
      {"t nocase, c desc nulls last", {{1, Collation::RomanianNoCase}, {2, {}, true, true}}},
      {"d desc, b, t binary desc", {{6, {}, true}, {3}, {1, Collation::Binary, true}}},
      {"g, m desc nulls last, k desc", {{4}, {5, {}, true, true}, {0, {}, true}}},
      {"t", {{1}}, "t1", "t3"},
      {"d, t",
       {{6}, {1}},
       nullptr,
       nullptr,
       "b or c > 0.0001",
       [](const Values& values) {
         return values[3] == Value(true) || (values[2].index() != 0 && std::get<Currency>(values[2]).Raw() > 1);
       }},
  };
  /// Whether the base is among its rows.
  [[nodiscard]] static bool HasBase(const Kind& kind) { return kind.from == nullptr && kind.filter == nullptr; }
  struct Standing {
    Kind kind;
    Cursor cursor;
    std::optional<std::uint32_t> row;
    bool isNew = true;
  };

  static std::int64_t NumberOf(const Value& value) {
    const auto* const amount = std::get_if<Currency>(&value);
    const auto* const yes = std::get_if<bool>(&value);
    return amount != nullptr ? amount->Raw() : yes != nullptr ? std::int64_t{*yes} : std::get<std::int64_t>(value);
  }

  static int CompareValues(const Kind::By& by, const Value& left, const Value& right) {
    const bool leftIsNull = left.index() == 0;
    if (leftIsNull || right.index() == 0) {
      const int nullsFirst = (right.index() == 0 ? 1 : 0) - (leftIsNull ? 1 : 0);
      return by.nullsLast ? -nullsFirst : nullsFirst;
    }
    int order = 0;
    if (const auto* const text = std::get_if<Text>(&left)) {
      order = CompareTexts(*text, std::get<Text>(right), by.collation);
    } else if (const auto* const guid = std::get_if<Guid>(&left)) {
      const Guid& other = std::get<Guid>(right);
      order = std::tie(guid->data1, guid->data4) < std::tie(other.data1, other.data4) ? -1 : *guid == other ? 0 : 1;
    } else if (const auto* const date = std::get_if<DateTime>(&left)) {
      const double difference = date->Days() - std::get<DateTime>(right).Days();
      order = difference < 0 ? -1 : difference > 0 ? 1 : 0;
    } else {
      const std::int64_t difference = NumberOf(left) - NumberOf(right);
      order = difference < 0 ? -1 : difference > 0 ? 1 : 0;
    }
    return by.isDescending ? -order : order;
  }

  /// The values of a row; those of the base are null but for the key, which is greater than most.
  [[nodiscard]] Values ValuesOf(const Rows& rows, std::uint32_t row) const {
    return row >= base_ ? rows[row - base_].values : Values{std::int64_t{1'000'000} + row, {}, {}, {}, {}, {}, {}};
  }

  [[nodiscard]] bool IsBefore(const Kind& kind, const Rows& rows, std::uint32_t left, std::uint32_t right) const {
    const Values leftValues = ValuesOf(rows, left);
    const Values rightValues = ValuesOf(rows, right);
    for (const Kind::By& by : kind.fields) {
      if (const int order = CompareValues(by, leftValues[by.field], rightValues[by.field]); order != 0) {
        return order < 0;
      }
    }
    return left < right;
  }

  [[nodiscard]] static bool IsSeen(const Kind& kind, const Rows& rows, std::size_t row) {
    if (!rows[row].isPresent || kind.from == nullptr) {
      return rows[row].isPresent && (kind.passes == nullptr || kind.passes(rows[row].values));
    }
    const auto* const text = std::get_if<Text>(&rows[row].values[1]);
    return text != nullptr && CompareTexts(*text, kind.from, Collation::Romanian) >= 0 &&
           CompareTexts(*text, kind.to, Collation::Romanian) <= 0;
  }

  [[nodiscard]] std::optional<std::uint32_t> Next(const Kind& kind, const Rows& rows, std::uint32_t row) const {
    std::optional<std::uint32_t> next;
    const auto consider = [&](std::uint32_t other) {
      if (IsBefore(kind, rows, row, other) && (!next || IsBefore(kind, rows, other, *next))) {
        next = other;
      }
    };
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      if (IsSeen(kind, rows, i)) {
        consider(base_ + i);
      }
    }
    if (HasBase(kind)) {
      consider(0);
      consider(base_ - 1);
    }
    return next;
  }

  void CheckOrder(const Standing& standing, const Rows& rows) {
    Cursor clone = standing.cursor;
    std::size_t expected = HasBase(standing.kind) ? base_ : 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      expected += IsSeen(standing.kind, rows, i) ? 1 : 0;
    }
    ASSERT_EQ(clone.Count(), expected) << standing.kind.order;
    std::optional<std::uint32_t> before;
    bool hasMetBase = false;
    for (std::size_t position = 0; position < expected; ++position) {
      clone.GoTo(position);
      const auto row = static_cast<std::uint32_t>(clone.Row());
      ASSERT_TRUE(!before || IsBefore(standing.kind, rows, *before, row)) << standing.kind.order << " " << position;
      ASSERT_TRUE(row < base_ || IsSeen(standing.kind, rows, row - base_)) << standing.kind.order << " " << position;
      before = row;
      if (row < base_ && !hasMetBase) {
        hasMetBase = true;
        position += base_ - 2;  // the base lies in one piece, of which the ends are enough
      }
    }
    if (standing.row) {
      ASSERT_TRUE(clone.GoTo(RowId{*standing.row}));
      const std::size_t position = clone.Position();
      clone.GoTo(position);
      ASSERT_EQ(clone.Row(), RowId{*standing.row});
    }
  }

  std::uint32_t base_;
  std::vector<Standing> cursors_;
};

}  // namespace kiv
