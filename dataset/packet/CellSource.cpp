#include "dataset/packet/CellSource.h"

namespace kiv::packet {

using store::Cell;
using store::StoredState;

bool CellSource::IsChanged(std::uint32_t row, std::size_t field) const noexcept {
  return contents_.StateOf(row) == StoredState::Modified &&
         !store::AreEqual(contents_.columns[field].type, contents_.Read(row, field),
                          contents_.ReadOriginal(row, field));
}

Cell CellSource::At(std::uint32_t row, std::size_t field) const noexcept {
  const StoredState state = contents_.StateOf(row);
  if (!isDelta_ || state == StoredState::Inserted) {
    return contents_.Read(row, field);
  }
  const FieldDef& definition = contents_.schemaData->fields[field];
  if (!Has(definition.flags, kKey) && !definition.IsChecked() && !IsChanged(row, field)) {
    return {};
  }
  return state == StoredState::Deleted ? contents_.ReadOriginal(row, field) : contents_.Read(row, field);
}

}  // namespace kiv::packet
