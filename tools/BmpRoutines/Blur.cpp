#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "tools/BmpRoutines/Rasters.h"

namespace kiv::bmp {
namespace {

constexpr std::int32_t kWidestReach = 2;

/// How far a level looks, and what the pixel itself weighs; all others weigh 1.
struct Level {
  std::int32_t reach;
  unsigned ownWeight;
  std::uint8_t shift;  ///< what makes the multiplication exact for every weight that its edges can have
  unsigned (*sum)(const std::uint8_t* const* rows, std::ptrdiff_t at) noexcept;
  BlurRows BlurKernels::*rows;
};

constexpr Level kLevel2 = {1, 5, 0, BlurSum2, &BlurKernels::level2};
constexpr Level kLevel3 = {2, 12, 3, BlurSum3, &BlurKernels::level3};

constexpr Divisor DivisorFor(unsigned weight, std::uint8_t shift) {
  const unsigned scale = 1U << (16U + shift);
  return {static_cast<std::uint16_t>((scale + weight - 1) / weight), shift};
}

/// Whether the multiplication gives the quotient of every sum that the weight allows.
constexpr bool IsExact(unsigned weight, std::uint8_t shift) {
  const Divisor divisor = DivisorFor(weight, shift);
  for (unsigned sum = 0; sum <= 255 * weight; ++sum) {
    if (sum * divisor.multiplier >> (16U + shift) != sum / weight) {
      return false;
    }
  }
  return true;
}

/// So many pixels exist in a direction, as far as a level looks.
struct Room {
  std::int32_t above;
  std::int32_t below;

  friend bool operator==(const Room&, const Room&) = default;
};

unsigned WeightAt(const Level& level, Room rows, std::int32_t left, std::int32_t right) {
  unsigned weight = level.ownWeight - 1;
  for (std::int32_t dy = -rows.above; dy <= rows.below; ++dy) {
    const std::int32_t aside = level.reach - std::abs(dy);
    weight += static_cast<unsigned>(std::min(left, aside) + 1 + std::min(right, aside));
  }
  return weight;
}

/// What the pixels of a row are divided by: one divisor for the inside, a weight for each pixel at an edge.
class RowWeights {
 public:
  RowWeights(const Level& level, Room rows, std::int32_t width)
      : inside(DivisorFor(WeightAt(level, rows, level.reach, level.reach), level.shift)) {
    for (std::int32_t i = 0; i < level.reach; ++i) {
      left[static_cast<std::size_t>(i)] = WeightAt(level, rows, i, std::min(level.reach, width - 1 - i));
      right[static_cast<std::size_t>(i)] = WeightAt(level, rows, std::min(level.reach, width - 1 - i), i);
    }
  }

  Divisor inside;
  std::array<unsigned, kWidestReach> left{};   ///< from the left edge inwards
  std::array<unsigned, kWidestReach> right{};  ///< from the right edge inwards
};

/// Copies of the rows around the two that are written next, with zeros on all sides.
class RowRing {
 public:
  RowRing(const Raster& raster, std::int32_t reach)
      : raster_(raster),
        reach_(reach),
        count_(2 * reach + 2),
        spacing_((raster.RowBytes() + 3 * kRowMargin) / kRowMargin * kRowMargin),
        memory_(spacing_ * static_cast<std::size_t>(count_ + 2) + kRowMargin) {
    void* start = memory_.data();
    std::size_t room = memory_.size();
    start_ = static_cast<std::uint8_t*>(std::align(kRowMargin, spacing_, start, room));
    for (std::int32_t y = 0; y < reach; ++y) {
      Take(y);
    }
  }

  /// Points `step` at the rows around `y` and `y + 1`; to be asked for every second row in turn, before it is written.
  void Fill(BlurStep& step, std::int32_t y) {
    Take(y + reach_);
    Take(y + reach_ + 1);
    for (std::int32_t i = 0; i < count_; ++i) {
      const std::int32_t row = y - reach_ + i;
      step.rows[static_cast<std::size_t>(i)] = row < 0 || row >= raster_.height ? Zeros() : Place(row % count_);
    }
    for (std::int32_t i = 0; i < 2; ++i) {
      step.ahead[static_cast<std::size_t>(i)] = Source(std::min(y + reach_ + 2 + i, raster_.height - 1));
      step.out[static_cast<std::size_t>(i)] = y + i < raster_.height ? raster_.Row(y + i) : Spare();
    }
  }

 private:
  [[nodiscard]] std::uint8_t* Place(std::int32_t index) const {
    return start_ + spacing_ * static_cast<std::size_t>(index) + kRowMargin;
  }
  [[nodiscard]] const std::uint8_t* Zeros() const { return Place(count_); }
  /// Where the second row goes that does not exist under an odd number of rows.
  [[nodiscard]] std::uint8_t* Spare() const { return Place(count_ + 1) - kRowMargin; }
  [[nodiscard]] const std::uint8_t* Source(std::int32_t y) const { return raster_.Row(y); }
  void Take(std::int32_t y) {
    if (y < raster_.height) {
      std::memcpy(Place(y % count_), Source(y), raster_.RowBytes());
    }
  }

  const Raster& raster_;
  std::int32_t reach_;
  std::int32_t count_;
  std::size_t spacing_;
  std::vector<std::uint8_t> memory_;
  std::uint8_t* start_;
};

void WritePixel(const Level& level, const std::uint8_t* const* rows, std::int32_t x, unsigned weight,
                std::uint8_t* row) {
  for (std::ptrdiff_t at = 3 * std::ptrdiff_t{x}; at < 3 * (std::ptrdiff_t{x} + 1); ++at) {
    row[at] = static_cast<std::uint8_t>(level.sum(rows, at) / weight);
  }
}

void WriteEdges(const Level& level, const std::uint8_t* const* rows, const RowWeights& weights, std::int32_t width,
                std::uint8_t* row) {
  for (std::int32_t i = 0; i < std::min(level.reach, width); ++i) {
    WritePixel(level, rows, i, weights.left[static_cast<std::size_t>(i)], row);
    WritePixel(level, rows, width - 1 - i, weights.right[static_cast<std::size_t>(i)], row);
  }
}

/// The weights of one row after the other; most have those of the row before.
class Weights {
 public:
  Weights(const Level& level, const Raster& raster)
      : level_(level), raster_(raster), row_(level, {0, 0}, raster.width) {}

  const RowWeights& At(std::int32_t y) {
    const Room room = {std::min(y, level_.reach), std::clamp(raster_.height - 1 - y, 0, level_.reach)};
    if (room != room_) {
      room_ = room;
      row_ = RowWeights(level_, room, raster_.width);
    }
    return row_;
  }

 private:
  const Level& level_;
  const Raster& raster_;
  Room room_{0, 0};
  RowWeights row_;
};

void BlurWith(const Level& level, BlurRows writeRows, const Raster& raster) {
  RowRing ring(raster, level.reach);
  Weights weights(level, raster);
  BlurStep step{};
  step.bytes = raster.RowBytes();
  for (std::int32_t y = 0; y < raster.height; y += 2) {
    ring.Fill(step, y);
    const std::array<RowWeights, 2> both = {weights.At(y), weights.At(y + 1)};
    step.divisors = {both[0].inside, both[1].inside};
    writeRows(step);
    for (std::size_t i = 0; i < 2; ++i) {
      WriteEdges(level, step.rows.data() + i, both[i], raster.width, step.out[i]);
    }
  }
}

constexpr bool AllWeightsAreExact() {
  bool exact = true;
  for (unsigned weight = 7; weight <= 9; ++weight) {
    exact = exact && IsExact(weight, kLevel2.shift);
  }
  for (unsigned weight = 16; weight <= 24; ++weight) {
    exact = exact && IsExact(weight, kLevel3.shift);
  }
  return exact;
}
static_assert(AllWeightsAreExact());

}  // namespace

void Blur(const Raster& raster, std::int32_t level, const BlurKernels& kernels) {
  if (raster.width == 0 || raster.height == 0) {
    return;
  }
  const Level& chosen = level >= 3 ? kLevel3 : kLevel2;
  BlurWith(chosen, kernels.*chosen.rows, raster);
}

}  // namespace kiv::bmp
