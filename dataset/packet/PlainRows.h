#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "dataset/packet/PlainBytes.h"
#include "dataset/packet/XmlFields.h"
#include "dataset/packet/XmlPull.h"
#include "dataset/packet/XmlValues.h"
#include "dataset/store/BlockLoader.h"

namespace kiv::packet {

/// The short way of rows that are written as programs write them: `<r id="17" oras="Iasi"/>`, no state, one blank
/// before each attribute, no references, the attributes in the same order from row to row. All others, and those in
/// which something is wrong, are left alone for the long way: what a text means and how it is refused is settled there.
class PlainRows {
 public:
  PlainRows(const XmlFields& fields, store::BlockLoader& loader);

  /// How many rows, and bytes of memory, there may still be.
  struct Limits {
    std::uint64_t rows;
    std::uint64_t bytes;
  };
  /// Adds the rows at the front of what has come of the text, up to the first that is not plain or not all there.
  /// Returns where that one begins, with the blanks before it. Refuses rows as the loader does.
  const char* Take(const XmlPull& in, Limits& limits);
  /// Expects attributes in the order in which a row that was read the long way had them.
  void Follow(std::span<const std::uint16_t> fields);

 private:
  /// What may come next in a row.
  struct Attribute {
    KnownBytes front;  // up to its value
    std::uint16_t field;
    FieldType type;
    bool mayBeNull;
    std::size_t longest;  // of the texts that need no other check
  };
  struct Bytes {
    std::uint16_t field;
    std::string_view bytes;
  };

  const char* ReadRow(const char* at);
  const char* ReadValue(const Attribute& attribute, const char* at);
  bool TakeOther(const Attribute& attribute, std::string_view text);
  bool Spend(Limits& limits) const noexcept;
  void AddRow();

  const XmlFields& fields_;
  store::BlockLoader& loader_;
  std::vector<Attribute> attributes_;  // in the order in which they are expected
  std::vector<std::uint16_t> places_;  // by field, where among them
  std::vector<XmlValue> holders_;
  // Of the row that is being read.
  std::vector<Bytes> bytes_;
  std::vector<std::uint16_t> nulls_;
  std::vector<store::Cell> autoIncs_;
};

}  // namespace kiv::packet
