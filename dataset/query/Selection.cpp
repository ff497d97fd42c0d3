#include "dataset/query/Selection.h"

#include <bit>
#include <cmath>
#include <memory>
#include <optional>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/VectorRun.h"
#include "dataset/store/SchemaData.h"

namespace kiv::query {
namespace {

/// Calls back with the first row of each batch and its chosen rows.
template <class Callback>
void ForEachBatch(VectorRun& run, const store::Contents& contents, Callback callback) {
  for (std::uint32_t first = 0; first < contents.rowCount; first += kBatch) {
    callback(first, run.Select(first));
  }
}

template <class Callback>
void ForEachRow(std::uint32_t first, const Bits& rows, Callback callback) {
  for (std::size_t word = 0; word < kWords; ++word) {
    for (std::uint64_t left = rows[word]; left != 0; left &= left - 1) {
      callback(first + static_cast<std::uint32_t>(word * 64) + static_cast<std::uint32_t>(std::countr_zero(left)));
    }
  }
}

std::size_t CountOf(const Bits& rows) noexcept {
  std::size_t count = 0;
  for (const std::uint64_t word : rows) {
    count += static_cast<std::size_t>(std::popcount(word));
  }
  return count;
}

/// Adds the values of a column up, batch by batch.
class Summation {
 public:
  Summation(const store::Contents& contents, std::size_t field, const Kernels& kernels)
      : contents_(contents), field_(FieldAt(contents, field)), kernels_(kernels) {
    if (!IsNumber(query::KindOf(field_.type))) {
      throw InvalidCast(contents.owner + ": campul " + store::Quoted(field_.name) + " este de tip " +
                        store::TraitsOf(field_.type).name + " si nu se aduna");
    }
    if (const CalculatedColumn* const calculated = CalculatedAt(contents, field)) {
      tree_ = calculated->GetTree();
      evaluator_.emplace(*tree_);
    } else {
      column_ = &contents.columns[field];
    }
  }

  void Add(std::uint32_t first, const Bits& rows, std::size_t count) {
    if (column_ == nullptr) {
      ForEachRow(first, rows, [this](std::uint32_t row) { AddCalculated(row); });
    } else {
      AddColumn(*column_, first, rows, count);
    }
  }

  [[nodiscard]] Value Result() const {
    if (count_ == 0) {
      return Null{};
    }
    if (field_.type == FieldType::Double) {
      return std::isfinite(total_) ? total_ : Refuse();
    }
    const auto sum = sum_.In64Bits();
    const std::int64_t value = sum ? *sum : (Refuse(), 0);
    return field_.type == FieldType::Currency ? Value(Currency::FromRaw(value)) : Value(value);
  }

 private:
  void AddCalculated(std::uint32_t row) {
    const store::Cell& cell = evaluator_->Evaluate(tree_->Root(), contents_, row);
    count_ += cell.isNull ? 0 : 1;
    if (field_.type == FieldType::Double) {
      total_ += cell.isNull ? 0 : std::bit_cast<double>(cell.bits);
    } else {
      sum_ += cell.isNull ? 0 : IntegerOf(cell);
    }
  }

  void AddColumn(const store::Column& column, std::uint32_t first, Bits rows, std::size_t count) {
    const auto nulls = column.nulls.BlockBytes(store::BlockOf(first));
    const std::size_t offset = store::PlaceInBlock(first) / 8;
    if (nulls.size() > offset) {
      Bits isNull{};
      std::memcpy(isNull.data(), nulls.data() + offset, std::min(sizeof isNull, nulls.size() - offset));
      for (std::size_t word = 0; word < kWords; ++word) {
        rows[word] &= ~isNull[word];
      }
    }
    const std::size_t values = CountOf(rows);
    count_ += values;
    if (values == 0) {
      return;
    }
    if (column.type == FieldType::Double) {
      ForEachRow(first, rows, [&](std::uint32_t row) { total_ += column.values.At<double>(row); });
    } else if (column.values.ElementWidth() == store::Plane::Width::Eight) {
      const auto* const block = reinterpret_cast<const std::int64_t*>(column.values.BlockAt(first));
      sum_ += kernels_.sum64(block + store::PlaceInBlock(first), count, rows);
    } else {
      ForEachRow(first, rows, [&](std::uint32_t row) { sum_ += static_cast<std::int64_t>(column.Load(row).bits); });
    }
  }

  [[noreturn]] double Refuse() const {
    throw Error(contents_.owner + ": suma campului " + store::Quoted(field_.name) + " nu incape in tipul sau");
  }

  const store::Contents& contents_;
  const FieldDef& field_;
  const store::Column* column_ = nullptr;  // null where the values are calculated
  std::shared_ptr<const Tree> tree_;
  std::optional<Evaluator> evaluator_;
  const Kernels& kernels_;
  std::size_t count_ = 0;
  Int128 sum_;
  double total_ = 0;
};

}  // namespace

std::vector<RowId> SelectRows(const Tree& tree, const store::Contents& contents, const Kernels& kernels) {
  VectorRun run(tree, contents, kernels);
  std::vector<RowId> selected;
  ForEachBatch(run, contents, [&](std::uint32_t first, const Bits& rows) {
    ForEachRow(first, rows, [&](std::uint32_t row) { selected.push_back(RowId{row}); });
  });
  return selected;
}

std::size_t CountRows(const Tree& tree, const store::Contents& contents, const Kernels& kernels) {
  VectorRun run(tree, contents, kernels);
  std::size_t count = 0;
  ForEachBatch(run, contents, [&](std::uint32_t, const Bits& rows) { count += CountOf(rows); });
  return count;
}

Value SumRows(const Tree& tree, const store::Contents& contents, std::size_t field, const Kernels& kernels) {
  Summation summation(contents, field, kernels);
  VectorRun run(tree, contents, kernels);
  ForEachBatch(run, contents, [&](std::uint32_t first, const Bits& rows) { summation.Add(first, rows, run.Count()); });
  return summation.Result();
}

}  // namespace kiv::query
