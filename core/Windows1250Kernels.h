#pragma once

#include <cstddef>
#include <cstdint>

#include "core/Windows1250Tables.h"

namespace kiv::windows1250 {

/// The most units that one call of a UTF-8 kernel takes.
inline constexpr std::size_t kWindow = 2048;
/// What a UTF-8 kernel may overwrite in its output: its result, at most three bytes for each one, and this much more.
inline constexpr std::size_t kSlack = 32;

/// How far a kernel came.
struct Progress {
  std::size_t read = 0;
  std::size_t written = 0;
};

/// The loops over whole texts. Every set of kernels gives the same results; they differ in what the processor must
/// offer. None reads past its input.
struct Kernels {
  /// The character of each byte.
  void (*toWide)(const unsigned char* in, std::size_t length, char16_t* out);
  /// The nearest byte of each unit.
  void (*fromWide)(const char16_t* in, std::size_t length, unsigned char* out);
  /// A lower bound for the number of ASCII bytes at the front, exact where they are all or a multiple of 32.
  std::size_t (*asciiAhead)(const unsigned char* in, std::size_t length);
  /// The UTF-8 bytes of at most kWindow bytes; returns their number.
  std::size_t (*toUtf8)(const unsigned char* in, std::size_t length, const Utf8Table& table, unsigned char* out);
  /// The bytes of at most kWindow bytes of UTF-8, up to the first thing other than ASCII and characters of two bytes
  /// that the code page has.
  Progress (*fromUtf8)(const unsigned char* in, std::size_t length, unsigned char* out);
};

/// Kernels in plain C++.
extern const Kernels kPortableKernels;

/// Kernels for processors with 32-byte vectors; null where this processor has none.
const Kernels* VectorKernels() noexcept;

/// The fastest kernels that this processor runs.
const Kernels& BestKernels() noexcept;

}  // namespace kiv::windows1250
