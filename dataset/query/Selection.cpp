#include "dataset/query/Selection.h"

#include <bit>
#include <cmath>

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
      : contents_(contents), column_(contents.columns[field]), field_(field), kernels_(kernels) {
    if (!IsNumber(query::KindOf(column_.type))) {
      throw InvalidCast(contents.owner + ": campul " + Name() + " este de tip " + store::TraitsOf(column_.type).name +
                        " si nu se aduna");
    }
  }

  void Add(std::uint32_t first, Bits rows, std::size_t count) {
    const auto nulls = column_.nulls.BlockBytes(store::BlockOf(first));
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
    if (column_.type == FieldType::Double) {
      ForEachRow(first, rows, [&](std::uint32_t row) { total_ += column_.values.At<double>(row); });
    } else if (column_.values.ElementWidth() == store::Plane::Width::Eight) {
      const auto* const block = reinterpret_cast<const std::int64_t*>(column_.values.BlockAt(first));
      sum_ += kernels_.sum64(block + store::PlaceInBlock(first), count, rows);
    } else {
      ForEachRow(first, rows, [&](std::uint32_t row) { sum_ += static_cast<std::int64_t>(column_.Load(row).bits); });
    }
  }

  [[nodiscard]] Value Result() const {
    if (count_ == 0) {
      return Null{};
    }
    if (column_.type == FieldType::Double) {
      return std::isfinite(total_) ? total_ : Refuse();
    }
    const auto sum = sum_.In64Bits();
    const std::int64_t value = sum ? *sum : (Refuse(), 0);
    return column_.type == FieldType::Currency ? Value(Currency::FromRaw(value)) : Value(value);
  }

 private:
  [[nodiscard]] Text Name() const { return store::Quoted(contents_.schemaData->fields[field_].name); }
  [[noreturn]] double Refuse() const {
    throw Error(contents_.owner + ": suma campului " + Name() + " nu incape in tipul sau");
  }

  const store::Contents& contents_;
  const store::Column& column_;
  std::size_t field_;
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
