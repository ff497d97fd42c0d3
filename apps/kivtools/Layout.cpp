#include "apps/kivtools/Layout.h"

#include <algorithm>
#include <array>

#include "kivtools/Utf8.h"

namespace kivtools {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};
constexpr std::array<Range, 5> kNoWidth = {
    {{0x300, 0x36F}, {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}}};
constexpr std::array<Range, 8> kWide = {{{0x1100, 0x115F},
                                         {0x2E80, 0x303E},
                                         {0x3041, 0xA4CF},
                                         {0xAC00, 0xD7A3},
                                         {0xF900, 0xFAFF},
                                         {0xFE30, 0xFE6F},
                                         {0xFF00, 0xFF60},
                                         {0x1F300, 0x1FAFF}}};

template <std::size_t Size>
bool IsIn(const std::array<Range, Size>& ranges, char32_t character) noexcept {
  return std::any_of(ranges.begin(), ranges.end(),
                     [character](Range range) { return character >= range.first && character <= range.last; });
}

struct Cell {
  std::size_t bytes;
  std::size_t width;
};

Cell CellAt(std::string_view text, std::size_t at) noexcept {
  const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(text, at);
  if (decoded.length <= 1) {
    return {1, 1};
  }
  if (decoded.character < 0x300) {
    return {decoded.length, 1};
  }
  return {decoded.length, IsIn(kNoWidth, decoded.character) ? 0U : IsIn(kWide, decoded.character) ? 2U : 1U};
}

/// How many bytes of the text fit into `width` columns; one character at least.
std::size_t FittingBytes(std::string_view text, std::size_t width) noexcept {
  std::size_t at = 0;
  for (std::size_t taken = 0; at < text.size();) {
    const Cell cell = CellAt(text, at);
    taken += cell.width;
    if (taken > width && at > 0) {
      break;
    }
    at += cell.bytes;
  }
  return at;
}

void WrapLine(std::string_view line, std::size_t width, std::vector<std::string>& lines) {
  for (;;) {
    const std::size_t fitting = FittingBytes(line, width);
    if (fitting == line.size()) {
      lines.emplace_back(line);
      return;
    }
    const std::size_t blank = line.rfind(' ', fitting);
    const std::size_t end = blank == std::string_view::npos || blank == 0 ? fitting : blank;
    lines.emplace_back(line.substr(0, end));
    line.remove_prefix(end);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (line.empty()) {
      return;
    }
  }
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) noexcept {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Cell cell = CellAt(text, at);
    width += cell.width;
    at += cell.bytes;
  }
  return width;
}

std::string PadEnd(std::string_view text, std::size_t width) {
  const std::size_t own = DisplayWidth(text);
  return std::string(text) + std::string(width > own ? width - own : 0, ' ');
}

std::string PadStart(std::string_view text, std::size_t width) {
  const std::size_t own = DisplayWidth(text);
  return std::string(width > own ? width - own : 0, ' ') + std::string(text);
}

std::vector<std::string> Wrap(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    WrapLine(text.substr(at, end - at), width, lines);
    at = end + 1;
  }
  return lines;
}

std::string Repeat(std::string_view piece, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) {
    repeated += piece;
  }
  return repeated;
}

}  // namespace kivtools
