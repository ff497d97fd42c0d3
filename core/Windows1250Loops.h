// Included once for each kind of processor, hence without a guard.
//
// The kernels, written once over `Block`, which looks at 32 units at a time, and compiled once for each kind of
// processor. The including file, in an anonymous namespace of kiv::windows1250, defines `Block` and
// KIV_FOR_PROCESSOR, which marks each function with what the processor must offer.
//
// Texts are mostly ASCII with a few letters in every block. So a block is converted as if it were ASCII, and what is
// not is put right by its bits in a mask, three at a time without asking: a loop that stopped at the last bit would
// mislead the branch predictor in every block. Once the mask is used up, the last unit is put right again, which
// changes nothing.

constexpr std::size_t kBlock = 32;
constexpr int kAtOnce = 3;

/// The lowest bit's number, that of the last bit if there is none.
KIV_FOR_PROCESSOR inline unsigned LowestBit(std::uint32_t mask) {
  return static_cast<unsigned>(std::countr_zero(mask | 1U << (kBlock - 1)));
}

KIV_FOR_PROCESSOR inline void BlockToWide(const unsigned char* in, char16_t* out) {
  std::uint32_t mask = Block::Widen(in, out);
  while (mask != 0) {
    for (int i = 0; i < kAtOnce; ++i) {
      const unsigned at = LowestBit(mask);
      out[at] = kUnitOfByte[in[at]];
      mask &= mask - 1;
    }
  }
}

KIV_FOR_PROCESSOR void ToWide(const unsigned char* in, std::size_t length, char16_t* out) {
  if (length < kBlock) {
    for (std::size_t i = 0; i < length; ++i) {
      out[i] = kUnitOfByte[in[i]];
    }
    return;
  }
  for (std::size_t at = 0; at < length - kBlock; at += kBlock) {
    BlockToWide(in + at, out + at);
  }
  BlockToWide(in + length - kBlock, out + length - kBlock);  // may repeat a part of the block before
}

KIV_FOR_PROCESSOR inline void BlockFromWide(const char16_t* in, unsigned char* out) {
  std::uint32_t mask = Block::Narrow(in, out);
  while (mask != 0) {
    for (int i = 0; i < kAtOnce; ++i) {
      const unsigned at = LowestBit(mask);
      out[at] = kNearestByte[in[at]];
      mask &= mask - 1;
    }
  }
}

KIV_FOR_PROCESSOR void FromWide(const char16_t* in, std::size_t length, unsigned char* out) {
  if (length < kBlock) {
    for (std::size_t i = 0; i < length; ++i) {
      out[i] = kNearestByte[in[i]];
    }
    return;
  }
  for (std::size_t at = 0; at < length - kBlock; at += kBlock) {
    BlockFromWide(in + at, out + at);
  }
  BlockFromWide(in + length - kBlock, out + length - kBlock);
}

KIV_FOR_PROCESSOR std::size_t AsciiAhead(const unsigned char* in, std::size_t length) {
  std::size_t at = 0;
  while (length - at >= kBlock && Block::NotAscii(in + at) == 0) {
    at += kBlock;
  }
  if (length - at < kBlock && std::all_of(in + at, in + length, [](unsigned char byte) { return byte < 0x80; })) {
    return length;
  }
  return at;
}

/// The places of the bytes of a window that are not the same in both encodings, in ascending order.
class Places {
 public:
  /// Adds the set bits of a block that starts at `start`.
  KIV_FOR_PROCESSOR void Add(std::uint32_t mask, std::size_t start) {
    std::size_t next = count_;
    count_ += static_cast<std::size_t>(std::popcount(mask));
    while (mask != 0) {
      for (int i = 0; i < kAtOnce; ++i) {
        places_[next++] = static_cast<std::uint16_t>(start + LowestBit(mask));
        mask &= mask - 1;
      }
    }
  }
  KIV_FOR_PROCESSOR void Add(std::size_t place) { places_[count_++] = static_cast<std::uint16_t>(place); }

  [[nodiscard]] KIV_FOR_PROCESSOR const std::uint16_t* begin() const { return places_.data(); }
  [[nodiscard]] KIV_FOR_PROCESSOR const std::uint16_t* end() const { return places_.data() + count_; }

 private:
  std::array<std::uint16_t, kWindow + kAtOnce> places_;
  std::size_t count_ = 0;
};

/// Copies what is the same in both encodings, `from` to `to`; by whole blocks as long as the input has them.
KIV_FOR_PROCESSOR inline unsigned char* CopyRun(const unsigned char* in, std::size_t from, std::size_t to,
                                                std::size_t length, unsigned char* out) {
  unsigned char* const end = out + (to - from);
  for (; length - from >= kBlock; from += kBlock, out += kBlock) {
    std::memcpy(out, in + from, kBlock);
    if (from + kBlock >= to) {
      return end;
    }
  }
  if (from < to) {  // an empty text may have no address
    std::memcpy(out, in + from, to - from);
  }
  return end;
}

KIV_FOR_PROCESSOR std::size_t ToUtf8(const unsigned char* in, std::size_t length, const Utf8Table& table,
                                     unsigned char* out) {
  Places places;
  std::size_t at = 0;
  for (; length - at >= kBlock; at += kBlock) {
    places.Add(Block::NotAscii(in + at), at);
  }
  for (; at < length; ++at) {
    if (in[at] >= 0x80) {
      places.Add(at);
    }
  }
  unsigned char* next = out;
  std::size_t done = 0;
  for (const std::size_t place : places) {
    next = CopyRun(in, done, place, length, next);
    const Utf8Form& utf8 = table[in[place]];
    std::memcpy(next, &utf8, sizeof utf8);
    next += utf8.length;
    done = place + 1;
  }
  next = CopyRun(in, done, length, length, next);
  return static_cast<std::size_t>(next - out);
}

/// The byte of the pair of UTF-8 bytes at `at`, 0 where there is none or the code page lacks its character.
KIV_FOR_PROCESSOR inline unsigned char BytePairAt(const unsigned char* in, std::size_t at, std::size_t length) {
  const bool isPair = in[at] >= 0xC0 && at + 1 < length && (in[at + 1] & 0xC0U) == 0x80;
  return isPair ? kByteOfUtf8Pair[(in[at] & 0x3FU) << 6U | (in[at + 1] & 0x3FU)] : 0;
}

/// The lead bytes of a window of UTF-8 up to its first block that holds something other than ASCII and pairs of a lead
/// and a continuation byte; returns where that block starts.
KIV_FOR_PROCESSOR inline std::size_t FindPairs(const unsigned char* in, std::size_t length, Places& leads) {
  std::size_t at = 0;
  std::uint32_t pending = 0;  // 1 if the block before ended with a lead
  for (; length - at >= kBlock; at += kBlock) {
    const auto [notAscii, lead] = Block::Utf8Bytes(in + at);
    const std::uint32_t continuations = notAscii & ~lead;
    if (continuations != (lead << 1U | pending)) {
      break;
    }
    leads.Add(lead, at);
    pending = lead >> (kBlock - 1);
  }
  return at;
}

KIV_FOR_PROCESSOR Progress FromUtf8(const unsigned char* in, std::size_t length, unsigned char* out) {
  Places leads;
  const std::size_t end = FindPairs(in, length, leads);
  unsigned char* next = out;
  std::size_t done = 0;
  for (const std::size_t place : leads) {
    next = CopyRun(in, done, place, length, next);
    const unsigned char byte = BytePairAt(in, place, length);
    if (byte == 0) {
      return {place, static_cast<std::size_t>(next - out)};
    }
    *next++ = byte;
    done = place + 2;
  }
  if (done < end) {
    next = CopyRun(in, done, end, length, next);
    done = end;
  }
  while (done < length) {
    const bool isAscii = in[done] < 0x80;
    const unsigned char byte = isAscii ? in[done] : BytePairAt(in, done, length);
    if (!isAscii && byte == 0) {
      break;
    }
    *next++ = byte;
    done += isAscii ? 1 : 2;
  }
  return {done, static_cast<std::size_t>(next - out)};
}
