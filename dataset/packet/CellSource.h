#pragma once

#include "dataset/packet/Format.h"
#include "dataset/store/Contents.h"

namespace kiv::packet {

/// What the fields of the rows hold in a packet. In that of a delta it is what its receiver needs: the key and the
/// fields that tell of conflicts, all that was inserted, what was changed; of deleted rows the original values.
class CellSource {
 public:
  CellSource(const store::Contents& contents, PacketKind kind) noexcept
      : contents_(contents), isDelta_(kind == PacketKind::Delta) {}

  [[nodiscard]] const store::Contents& GetContents() const noexcept { return contents_; }
  [[nodiscard]] bool IsDelta() const noexcept { return isDelta_; }
  /// Whether the texts of the field stand in the rows. Those of a delta do: it has few rows.
  [[nodiscard]] bool HasHeap(std::size_t field) const noexcept {
    const store::Column& column = contents_.columns[field];
    return store::TraitsOf(column.type).storage == store::Storage::Texts && (isDelta_ || !column.texts.HasDictionary());
  }
  /// The value with its bytes, null where it is left out.
  [[nodiscard]] store::Cell At(std::uint32_t row, std::size_t field) const noexcept;
  /// The same without its bytes.
  [[nodiscard]] store::Cell LoadAt(std::uint32_t row, std::size_t field) const noexcept {
    return isDelta_ ? At(row, field) : contents_.columns[field].Load(row);
  }
  /// Whether a row of a delta had another value in the field.
  [[nodiscard]] bool IsChanged(std::uint32_t row, std::size_t field) const noexcept;

 private:
  const store::Contents& contents_;
  bool isDelta_;
};

}  // namespace kiv::packet
