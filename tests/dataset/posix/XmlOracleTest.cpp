// What we write and what we accept, read by two other readers.
#include <gtest/gtest.h>

#include <random>

#include "dataset/EveryType.h"
#include "dataset/PacketBytes.h"
#include "dataset/XmlOracles.h"
#include "kivtools/dataset/Xml.h"

namespace kiv {
namespace {

std::string_view TextOf(const PacketBytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST(XmlOracles, WhatIsWrittenIsWellFormedForOthersAndHoldsTheSame) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 2000);
  Edit(dataset, 9);
  PacketBytes text;
  WriteXml(dataset, AppendTo(text));
  const std::string seen = SeenByUs(SourceOf(text));
  EXPECT_EQ(SeenByExpat(TextOf(text)), seen);
  EXPECT_EQ(SeenByPugixml(TextOf(text)), seen);
}

TEST(XmlOracles, WhatIsAcceptedOthersReadAsTheSameValues) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 12);
  dataset.Set(RowId{2}, "s", "<&>\"'\t\r\n ");
  PacketBytes written;
  WriteXml(dataset, AppendTo(written));
  constexpr std::string_view kPieces[] = {"<",    ">",          "&",    "\"",       "'",     "/",
                                          "=",    " ",          "\r\n", "\t",       "&#10;", "&#x219;",
                                          "&lt;", "<!-- x -->", "]]>",  "\xC8\x99", "x",     "1"};
  std::mt19937 random(4);
  int accepted = 0;
  for (int i = 0; i < 20'000; ++i) {
    PacketBytes text = written;
    for (auto edits = 1 + random() % 2; edits > 0; --edits) {
      const auto at = text.begin() + static_cast<std::ptrdiff_t>(random() % text.size());
      const std::string_view piece = kPieces[random() % std::size(kPieces)];
      const auto end = random() % 2 == 0 ? at : at + 1;
      text.insert(text.erase(at, end), piece.begin(), piece.end());
    }
    try {
      static_cast<void>(ReadXml(SourceOf(text)));
    } catch (const TextPacketError&) {
      continue;
    }
    ++accepted;
    const std::string seen = SeenByUs(SourceOf(text));
    ASSERT_EQ(SeenByExpat(TextOf(text)), seen) << TextOf(text);
    ASSERT_EQ(SeenByPugixml(TextOf(text)), seen) << TextOf(text);
  }
  EXPECT_GT(accepted, 1000);
}

}  // namespace
}  // namespace kiv
