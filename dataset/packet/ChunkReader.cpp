#include "dataset/packet/ChunkReader.h"

#include <algorithm>

#include "core/Crc32c.h"
#include "core/Numbers.h"

namespace kiv::packet {
namespace {

constexpr std::size_t kStep = std::size_t{64} * 1024;

template <class Number>
Number NumberAt(std::span<const std::byte> bytes, std::size_t at) {
  Number number;
  std::memcpy(&number, bytes.data() + at, sizeof number);
  return number;
}

std::array<char, 4> LettersOf(ChunkType type) noexcept {
  std::array<char, 4> letters{};
  std::memcpy(letters.data(), &type, letters.size());
  // A damaged type is shown as well as it can be.
  std::ranges::replace_if(
      letters, [](char letter) { return letter < ' ' || letter > '~'; }, '?');
  return letters;
}

bool MayBeSkipped(ChunkType type) noexcept {
  const std::uint32_t first = static_cast<std::uint32_t>(type) & 0xFFU;
  return first >= 'a' && first <= 'z';
}

bool IsKnown(ChunkType type) noexcept {
  constexpr std::array kKnown = {kTable, kNotes, kLargeValues, kEntries, kRows, kRecords, kEnd};
  return std::ranges::find(kKnown, type) != kKnown.end();
}

}  // namespace

ChunkReader::ChunkReader(const PacketSource& source, Text operation)
    : source_(source), operation_(std::move(operation)) {
  ReadHeader();
}

void ChunkReader::RefuseAt(std::uint64_t offset, TextView why) const {
  Text message = operation_ + ": ";
  if (isInChunk_) {
    const auto letters = LettersOf(type_);
    message += "bucata ";
    AppendDecimal(message, count_);
    message.append(" (").append(letters.data(), letters.size()).append("), ");
  } else {
    message += count_ == 0 && read_ <= kHeaderSize ? "antetul, " : "dupa ultima bucata, ";
  }
  message += "octetul ";
  AppendDecimal(message, offset);
  throw PacketError(isInChunk_ ? static_cast<std::int32_t>(count_) : -1, offset, message.append(": ").append(why));
}

void ChunkReader::Refuse(TextView why) const {
  RefuseAt(isInChunk_ ? chunkStart_ + kChunkHeaderSize + at_ : read_, why);
}

std::size_t ChunkReader::Fill(std::span<std::byte> bytes) {
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const auto rest = bytes.subspan(filled);
    const std::size_t count = source_({reinterpret_cast<std::uint8_t*>(rest.data()), rest.size()});
    if (count == 0) {
      break;
    }
    if (count > rest.size()) {
      throw Error(operation_ + ": sursa da mai multi octeti decat incap");
    }
    filled += count;
  }
  read_ += filled;
  return filled;
}

void ChunkReader::ReadHeader() {
  std::array<std::byte, kHeaderSize> header{};
  const std::size_t size = Fill(header);
  if (std::memcmp(header.data(), kMagic.data(), std::min(size, kMagic.size())) != 0 || size == 0) {
    RefuseAt(0, "nu este un pachet de date");
  }
  if (size < header.size()) {
    RefuseAt(size, "pachetul se termina inainte de vreme");
  }
  const std::span<const std::byte> all(header);
  if (Crc32c(all.first(28)) != NumberAt<std::uint32_t>(all, 28)) {
    RefuseAt(0, "suma de control nu se potriveste");
  }
  if (const auto major = NumberAt<std::uint16_t>(all, 8); major != kMajorVersion) {
    Text why = "pachetul are versiunea ";
    AppendDecimal(why, major);
    RefuseAt(8, why + ", iar aici se citeste versiunea 1");
  }
  kind_ = NumberAt<PacketKind>(all, 12);
  identity_ = NumberAt<std::uint64_t>(all, 16);
}

void ChunkReader::ReadPayload(std::uint32_t length) {
  payload_.clear();
  at_ = 0;
  // Step by step, so that a length that is a lie costs no more memory than the bytes that are there.
  for (std::size_t left = length; left > 0;) {
    const std::size_t step = std::min(left, kStep);
    payload_.resize(payload_.size() + step);
    const std::size_t filled = Fill(std::span(payload_).last(step));
    if (filled < step) {
      RefuseAt(read_, "pachetul se termina inainte de vreme");
    }
    left -= step;
  }
}

bool ChunkReader::Next() {
  do {
    if (isInChunk_) {
      ++count_;
      if (type_ == kEnd) {
        CheckEnd();
        return false;
      }
    }
    chunkStart_ = read_;
    isInChunk_ = true;
    type_ = {};
    std::array<std::byte, kChunkHeaderSize> header{};
    if (Fill(header) < header.size()) {
      RefuseAt(read_, "pachetul se termina inainte de vreme");
    }
    type_ = NumberAt<ChunkType>(header, 0);
    const auto length = NumberAt<std::uint32_t>(header, 4);
    if (length > kMostPayload || NumberAt<std::uint32_t>(header, 8) != count_) {
      RefuseAt(chunkStart_, "lungimea sau numarul bucatii nu se potriveste");
    }
    ReadPayload(length);
    std::array<std::byte, kChecksumSize> checksum{};
    if (Fill(checksum) < checksum.size()) {
      RefuseAt(read_, "pachetul se termina inainte de vreme");
    }
    if (Crc32c(payload_, Crc32c(header)) != NumberAt<std::uint32_t>(checksum, 0)) {
      RefuseAt(chunkStart_, "suma de control nu se potriveste");
    }
    if (type_ == kEnd) {
      CheckSums();
    }
    checksums_ = Crc32c(checksum, checksums_);
    if (!MayBeSkipped(type_) && !IsKnown(type_)) {
      RefuseAt(chunkStart_, "felul bucatii nu este cunoscut");
    }
  } while (!IsKnown(type_));
  return true;
}

void ChunkReader::CheckSums() {
  const bool isWhole = Take<std::uint32_t>() == count_;
  rows_ = Take<std::uint32_t>();
  if (!isWhole || Take<std::uint32_t>() != checksums_ || !AtEnd()) {
    Refuse("sfarsitul nu se potriveste cu bucatile");
  }
}

void ChunkReader::CheckEnd() {
  isInChunk_ = false;
  std::array<std::byte, 1> more{};
  if (Fill(more) > 0) {
    RefuseAt(read_ - 1, "pachetul s-a terminat, dar urmeaza alti octeti");
  }
}

}  // namespace kiv::packet
