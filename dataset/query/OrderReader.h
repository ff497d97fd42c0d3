#pragma once

#include <memory>
#include <vector>

#include "dataset/query/Evaluator.h"
#include "dataset/query/Order.h"

namespace kiv::query {

/// Reads the fields of an order in the rows, those that are calculated too. The order stays while it is used.
class OrderReader {
 public:
  /// Throws std::bad_alloc.
  OrderReader(const store::Contents& contents, const Order& order);

  /// The value of a field of the order; the bytes of a calculated one until the next row is asked for it. Throws
  /// FilterError where it has none.
  [[nodiscard]] store::Cell Read(std::size_t place, std::uint32_t row) {
    return columns_.empty() || columns_[place] == nullptr ? contents_.Read(row, order_[place].field)
                                                          : columns_[place]->Read(contents_, row);
  }
  /// The same, null where it throws: HasFailed() says that it has.
  [[nodiscard]] store::Cell TryRead(std::size_t place, std::uint32_t row) noexcept {
    return columns_.empty() ? contents_.Read(row, order_[place].field) : TryCalculate(place, row);
  }
  [[nodiscard]] bool HasFailed() const noexcept { return hasFailed_; }
  void ForgetFailure() noexcept { hasFailed_ = false; }

  /// Whether a field of the order is calculated.
  [[nodiscard]] bool Calculates() const noexcept { return !columns_.empty(); }
  /// Whether the order depends on what a field of the dataset holds.
  [[nodiscard]] bool Reads(std::uint16_t field) const noexcept;
  /// Grows with what the look-ups among its fields depend on.
  [[nodiscard]] std::uint64_t Version() const noexcept;

 private:
  struct Calculated {
    explicit Calculated(std::shared_ptr<const Tree> calculated);
    const store::Cell& Read(const store::Contents& contents, std::uint32_t row) {
      return evaluator.Evaluate(tree->Root(), contents, row);
    }
    std::shared_ptr<const Tree> tree;
    Evaluator evaluator;
    std::vector<std::uint16_t> reads;
  };
  [[nodiscard]] store::Cell TryCalculate(std::size_t place, std::uint32_t row) noexcept;

  const store::Contents& contents_;
  const Order& order_;
  /// By field of the order, null for those of the dataset; empty where there are only such.
  std::vector<std::unique_ptr<Calculated>> columns_;
  bool hasFailed_ = false;
};

}  // namespace kiv::query
