// The loops of the vector kernels, included once for each kind of vector by the file that says what the processor must
// offer (KIV_FOR_PROCESSOR) and has for each kind of element (Vector16, Vector32, Vector64, VectorDouble): Element,
// Register, kCount, All(value), Load(at), Above(left, right), Either(left, right), Bits(mask). No include guard.

/// What is left of a batch behind the last 64 rows goes through a copy of them.
template <class Vector>
struct Tail {
  std::array<typename Vector::Element, 64> values{};
  Tail(const typename Vector::Element* from, std::size_t count) { std::copy_n(from, count, values.begin()); }
};

/// The mask of the rows beyond `count` of the last word, cleared.
inline std::uint64_t FirstBits(std::size_t count) noexcept {
  return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

enum class Ends : std::uint8_t { Low, High, Both };

template <class Vector, Ends ends>
KIV_FOR_PROCESSOR inline std::uint64_t RangeOf64(const typename Vector::Element* values, typename Vector::Register low,
                                                 typename Vector::Register high) {
  std::uint64_t outside = 0;
  for (std::size_t i = 0; i < 64; i += Vector::kCount) {
    const typename Vector::Register at = Vector::Load(values + i);
    typename Vector::Register mask;
    if constexpr (ends == Ends::Low) {
      mask = Vector::Above(low, at);
    } else if constexpr (ends == Ends::High) {
      mask = Vector::Above(at, high);
    } else {
      mask = Vector::Either(Vector::Above(low, at), Vector::Above(at, high));
    }
    outside |= std::uint64_t{Vector::Bits(mask)} << i;
  }
  return ~outside;
}

template <class Vector, Ends ends>
KIV_FOR_PROCESSOR inline void RangeWith(const typename Vector::Element* values, std::size_t count,
                                        typename Vector::Element low, typename Vector::Element high, Bits& in) {
  const typename Vector::Register lowest = Vector::All(low);
  const typename Vector::Register highest = Vector::All(high);
  std::size_t word = 0;
  for (; word * 64 + 64 <= count; ++word) {
    in[word] = RangeOf64<Vector, ends>(values + word * 64, lowest, highest);
  }
  if (word * 64 < count) {
    const Tail<Vector> tail(values + word * 64, count - word * 64);
    in[word] = RangeOf64<Vector, ends>(tail.values.data(), lowest, highest) & FirstBits(count - word * 64);
    ++word;
  }
  std::fill(in.begin() + static_cast<std::ptrdiff_t>(word), in.end(), 0);
}

template <class Vector>
KIV_FOR_PROCESSOR void Range(const typename Vector::Element* values, std::size_t count, typename Vector::Element low,
                             typename Vector::Element high, Bits& in) {
  using Limits = std::numeric_limits<typename Vector::Element>;
  // One comparison less where there is no end; of doubles infinity is an end that stands for none.
  const auto least = Limits::has_infinity ? -Limits::infinity() : Limits::min();
  const auto most = Limits::has_infinity ? Limits::infinity() : Limits::max();
  if (low == least) {
    RangeWith<Vector, Ends::High>(values, count, low, high, in);
  } else if (high == most) {
    RangeWith<Vector, Ends::Low>(values, count, low, high, in);
  } else {
    RangeWith<Vector, Ends::Both>(values, count, low, high, in);
  }
}

template <class Vector>
KIV_FOR_PROCESSOR inline std::uint64_t AboveOf64(const typename Vector::Element* left,
                                                 const typename Vector::Element* right) {
  std::uint64_t above = 0;
  for (std::size_t i = 0; i < 64; i += Vector::kCount) {
    above |= std::uint64_t{Vector::Bits(Vector::Above(Vector::Load(left + i), Vector::Load(right + i)))} << i;
  }
  return above;
}

template <class Vector>
KIV_FOR_PROCESSOR void Above(const typename Vector::Element* left, const typename Vector::Element* right,
                             std::size_t count, Bits& above) {
  std::size_t word = 0;
  for (; word * 64 + 64 <= count; ++word) {
    above[word] = AboveOf64<Vector>(left + word * 64, right + word * 64);
  }
  if (word * 64 < count) {
    const std::size_t rest = count - word * 64;
    const Tail<Vector> leftTail(left + word * 64, rest);
    const Tail<Vector> rightTail(right + word * 64, rest);
    above[word] = AboveOf64<Vector>(leftTail.values.data(), rightTail.values.data()) & FirstBits(rest);
    ++word;
  }
  std::fill(above.begin() + static_cast<std::ptrdiff_t>(word), above.end(), 0);
}

/// The values are summed in halves, made unsigned by half of their range, so that no sum of a batch leaves its lane.
KIV_FOR_PROCESSOR inline Int128 Sum64(const std::int64_t* values, std::size_t count, const Bits& chosen) {
  typename Vector64::Register lows = Vector64::Zero();
  typename Vector64::Register highs = Vector64::Zero();
  std::size_t summed = 0;
  for (std::size_t word = 0; word * 64 < count; ++word) {
    const std::uint64_t bits = chosen[word];
    if (bits == 0) {
      continue;
    }
    summed += static_cast<std::size_t>(std::popcount(bits));
    if (word * 64 + 64 <= count) {
      Vector64::AddHalves(values + word * 64, bits, lows, highs);
    } else {
      const Tail<Vector64> tail(values + word * 64, count - word * 64);
      Vector64::AddHalves(tail.values.data(), bits, lows, highs);
    }
  }
  const Int128 high = Int128::Product(Vector64::Total(highs), std::int64_t{1} << 32U);
  const Int128 bias = Int128::Product(static_cast<std::int64_t>(summed), std::numeric_limits<std::int64_t>::min());
  return high + Int128(Vector64::Total(lows)) + bias;
}
