#include <random>
#include <string>
#include <thread>

#include "Expect.h"
#include "PacketBytes.h"
#include "SameRows.h"
#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

using namespace kiv::literals;

const Schema& EveryType() {
  static const Schema schema({{"id", FieldType::AutoInc, kKey},
                              {"i2", FieldType::Int16, kNoCheck, std::int64_t{-7}},
                              {"i4", FieldType::Int32, kReadOnly},
                              {"i8", FieldType::Int64},
                              {"c", FieldType::Currency, FieldFlags::None, 12.5_lei},
                              {"f", FieldType::Double},
                              {"d", FieldType::Date, FieldFlags::None, DateTime(45000)},
                              {"t", FieldType::Time},
                              {"m", FieldType::DateTime},
                              {"s", FieldType::Text, 40, kRequired, Text("nimic")},
                              {"x", FieldType::Text},
                              {"w", FieldType::WideText, 0, FieldFlags::None, WideText(u"\u021b")},
                              {"b", FieldType::Boolean},
                              {"g", FieldType::Guid, FieldFlags::None, Guid{1, 2, 3, {4}}},
                              {"n", FieldType::Memo},
                              {"p", FieldType::Blob, kCheck}});
  return schema;
}

/// An empty dataset whose texts have no dictionaries.
Dataset WithHeaps() {
  store::BlockLoader loader("arhiva", EveryType());
  for (const std::size_t field : {9U, 10U, 11U}) {
    loader.UseHeap(field);
  }
  return Dataset(loader.Finish());
}

void AddRows(Dataset& dataset, std::uint32_t count, bool withNulls = true) {
  const auto chosen = [&](std::uint32_t i, std::uint32_t every, ValueView value) {
    return withNulls && i % every == 0 ? ValueView() : value;
  };
  Loader loader(dataset);
  for (std::uint32_t i = 0; i < count; ++i) {
    const Text text = "oras " + std::to_string(i % 300);
    const Bytes bytes(i % 9, static_cast<std::uint8_t>(i));
    const std::u16string wide(i % 5, u'\u0103');
    loader.Add({std::int64_t{i} - 10, chosen(i, 3, i % 200), chosen(i, 4, i * 1000), chosen(i, 5, i * (1LL << 40)),
                chosen(i, 6, Currency::FromRaw(i % 2 == 0 ? 5 : -5)), chosen(i, 7, i * 0.5), chosen(i, 8, DateTime(i)),
                chosen(i, 9, DateTime(0.25)), chosen(i, 10, DateTime(i + 0.5)), text, chosen(i, 2, text),
                chosen(i, 3, wide), chosen(i, 11, i % 3 == 0), chosen(i, 4, Guid{i, 1, 2, {3}}), chosen(i, 100, text),
                chosen(i, 100, bytes)});
  }
  loader.Finish();
}

/// Changes of every kind, on rows of every block.
void Edit(Dataset& dataset, std::uint32_t seed) {
  std::mt19937 random(seed);
  for (int i = 0; i < 200; ++i) {
    const RowId row{static_cast<std::uint32_t>(random() % dataset.GetContents().rowCount)};
    if (!dataset.Exists(row) || dataset.State(row) == RowState::Deleted) {
      if (dataset.Exists(row)) {
        dataset.Changes().RevertRow(row);
      }
      continue;
    }
    switch (random() % 6) {
      case 0:
        dataset.Delete(row);
        break;
      case 1:
        dataset.Insert({{"s", "nou " + std::to_string(i)}, {"n", Text(static_cast<std::size_t>(i), 'n')}});
        break;
      case 2:
        dataset.Update(row, {{"i2", Null{}}, {"g", Guid{9, 9, 9, {static_cast<std::uint8_t>(i)}}}, {"b", i % 2 == 0}});
        break;
      case 3:
        dataset.Update(row, {{"x", Text(static_cast<std::size_t>(i) * 40, 'x')}, {"w", u"\u0218i"}, {"n", "alt"}});
        break;
      default:
        dataset.Update(row, {{"c", Currency::FromRaw(i)}, {"s", "altul " + std::to_string(i)}, {"p", Null{}}});
    }
  }
}

/// Expects the same dataset, and that taking its changes back one by one keeps it so.
void ExpectSame(Dataset& written, Dataset& read) {
  ASSERT_EQ(written.Name(), read.Name());
  ASSERT_EQ(written.GetSchema().Fields().size(), read.GetSchema().Fields().size());
  for (std::size_t i = 0; i < written.GetSchema().Fields().size(); ++i) {
    const FieldDef& left = written.GetSchema().Fields()[i];
    const FieldDef& right = read.GetSchema().Fields()[i];
    EXPECT_EQ(std::tie(left.name, left.type, left.size, left.flags, left.defaultValue),
              std::tie(right.name, right.type, right.size, right.flags, right.defaultValue));
  }
  ExpectSameRows(written, read);
  for (int undone = 0; written.Changes().UndoLast(); ++undone) {
    ASSERT_TRUE(read.Changes().UndoLast());
    if (undone % 50 == 0) {
      ExpectSameRows(written, read);
    }
  }
  ExpectSameRows(written, read);
}

TEST(Packet, HoldsEverythingOnBothSidesOfTheEdgeOfABlock) {
  for (const std::uint32_t rows : {0U, 1U, 7U, 8U, 9U, 8191U, 8192U, 8193U}) {
    for (const bool withNulls : {true, false}) {
      Dataset dataset("arhiva", EveryType());
      AddRows(dataset, rows, withNulls);
      if (rows > 0) {
        Edit(dataset, rows);
      }
      Dataset read = ReadBack(Written(dataset));
      ExpectSame(dataset, read);
    }
  }
}

TEST(Packet, HoldsTextsWithoutDictionary) {
  Dataset dataset = WithHeaps();
  AddRows(dataset, 8200);
  Edit(dataset, 1);
  Dataset read = ReadBack(Written(dataset));
  EXPECT_FALSE(read.GetContents().columns[9].texts.HasDictionary());
  ExpectSame(dataset, read);
}

TEST(Packet, HoldsValuesLongerThanAChunk) {
  for (const bool hasHeap : {false, true}) {
    Dataset dataset = hasHeap ? WithHeaps() : Dataset("arhiva", EveryType());
    AddRows(dataset, 20);
    for (std::uint32_t row = 0; row < 20; ++row) {
      const std::size_t size = row % 3 == 0 ? 10 : row % 3 == 1 ? 32'001 : 700'000;
      const Text text(size + row, static_cast<char>('a' + row));
      const Bytes bytes(size, static_cast<std::uint8_t>(row));
      dataset.Update(RowId{row}, {{"x", text}, {"w", std::u16string(size, u'w')}, {"n", text}, {"p", bytes}});
      dataset.Update(RowId{row}, {{"x", "scurt"}, {"w", u"s"}, {"p", Bytes{}}});
    }
    Dataset read = ReadBack(Written(dataset), {}, 100'000);
    ExpectSame(dataset, read);
  }
}

TEST(Packet, LeavesOutWhatNobodyCanReachAnyMore) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 20'000);
  for (std::uint32_t row = 0; row < 20'000; ++row) {
    if (row % 3 == 0 || (row > 9000 && row < 18'000)) {
      dataset.Delete(RowId{row});
    }
  }
  dataset.Changes().AcceptChanges();
  Edit(dataset, 3);
  Dataset read = ReadBack(Written(dataset));
  EXPECT_LT(read.GetContents().rowCount, 8'500U);
  EXPECT_LT(read.GetContents().large.Count(), 17'500U);
  dataset.Compact();
  ExpectSame(dataset, read);
}

TEST(Packet, ASnapshotIsWrittenWhileItsDatasetIsEdited) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 9000);
  const PacketBytes before = Written(dataset);
  const Snapshot snapshot = dataset.TakeSnapshot();
  PacketBytes meanwhile;
  std::jthread writer([&] { meanwhile = Written(snapshot); });
  Edit(dataset, 5);
  writer.join();
  const auto rest = [](const PacketBytes& bytes) { return std::span(bytes).subspan(packet::kHeaderSize); };
  EXPECT_TRUE(std::ranges::equal(rest(before), rest(meanwhile)));
}

/// A packet with every kind of chunk, as small as can be.
PacketBytes SmallPacket() {
  Dataset dataset("mic", {{"id", FieldType::Int32, kKey}, {"t", FieldType::Text, 8}, {"n", FieldType::Memo}});
  Loader loader(dataset);
  for (int i = 0; i < 3; ++i) {
    loader.Add({i, i == 1 ? ValueView() : ValueView("Iasi"), "memo"});
  }
  loader.Finish();
  dataset.Set(RowId{0}, "t", "Cluj");
  dataset.Delete(RowId{2});
  return Written(dataset);
}

TEST(Packet, EveryPrefixIsRefused) {
  const PacketBytes packet = SmallPacket();
  for (std::size_t size = 0; size < packet.size(); ++size) {
    try {
      static_cast<void>(ReadBack(std::span(packet).first(size)));
      FAIL() << size;
    } catch (const PacketError& error) {
      EXPECT_LE(error.Offset(), size);
      EXPECT_NE(std::string_view(error.what()).find("octetul "), std::string_view::npos) << error.what();
    }
  }
  EXPECT_EQ(ReadBack(packet).RowCount(), 2U);
}

TEST(Packet, EveryFlippedBitIsRefused) {
  PacketBytes packet = SmallPacket();
  for (std::size_t bit = 0; bit < packet.size() * 8; ++bit) {
    packet[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
    EXPECT_THROW(static_cast<void>(ReadBack(packet)), PacketError) << bit;
    packet[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
  }
}

TEST(Packet, RefusalsNameChunkAndByte) {
  const auto spoiled = [](packet::ChunkType type, std::size_t at, std::initializer_list<std::uint8_t> bytes) {
    return [=, bytes = std::vector(bytes)](PacketBytes& packet) {
      const auto chunks = ChunksOf(packet);
      const auto chunk = std::ranges::find(chunks, type, &ChunkPlace::type);
      std::ranges::copy(bytes, packet.begin() + static_cast<std::ptrdiff_t>(chunk->payload + at));
      Seal(packet);
    };
  };
  const auto header = [](std::size_t at, std::uint8_t byte) {
    return [=](PacketBytes& packet) {
      packet[at] = byte;
      Seal(packet);
    };
  };
  using namespace packet;
  const struct {
    std::function<void(PacketBytes&)> spoil;
    TextView message;
  } kCases[] = {
      {header(0, 'M'), "antetul, octetul 0: nu este un pachet de date"},
      {header(8, 2), "antetul, octetul 8: pachetul are versiunea 2, iar aici se citeste versiunea 1"},
      {header(12, 2), "antetul, octetul 32: pachetul este de alt fel: nu tine un set de date intreg"},
      {[](PacketBytes& p) { p.push_back(0); },
       "dupa ultima bucata, octetul 328: pachetul s-a terminat, dar urmeaza alti octeti"},
      {[](PacketBytes& p) { p[60] ^= 1; }, "bucata 0 (TABL), octetul 32: suma de control nu se potriveste"},
      {spoiled(kTable, 0, {0xC8}), "bucata 0 (TABL), octetul 45: se termina inainte de vreme"},
      {spoiled(kTable, 4, {0xFF, 0xFF, 0xFF, 0xFF}),
       "bucata 0 (TABL), octetul 58: pachetul are mai multe randuri sau campuri decat este permis"},
      {spoiled(kTable, 4, {4}), "bucata 3 (ROWS), octetul 208: blocul nu are cate randuri trebuie"},
      {spoiled(kTable, 8, {1}), "bucata 4 (LOGR), octetul 300: jurnalul are mai multe inregistrari decat trebuie"},
      {spoiled(kTable, 17, {99}), "bucata 0 (TABL), octetul 68: un camp are un tip care nu exista"},
      {spoiled(kLargeValues, 1, {0, 0, 0, 0x80}),
       "bucata 1 (BLOB), octetul 118: o valoare lunga nu este scrisa cum trebuie"},
      {spoiled(kLargeValues, 9, {3}), "bucata 1 (BLOB), octetul 134: o valoare lunga nu este scrisa cum trebuie"},
      {spoiled(kEntries, 0, {0}), "bucata 2 (TEXT), octetul 174: un dictionar nu este al unui camp care il are"},
      {spoiled(kEntries, 2, {0xFF, 0xFF}), "bucata 2 (TEXT), octetul 176: un text lung lipseste"},
      {spoiled(kRows, 0, {1}), "bucata 3 (ROWS), octetul 208: randurile nu urmeaza unul din altul"},
      {spoiled(kRows, 4, {2}), "bucata 3 (ROWS), octetul 208: blocul nu are cate randuri trebuie"},
      {spoiled(kRows, 6, {1, 0}), "bucata 3 (ROWS), octetul 210: coloanele nu sunt in ordine"},
      {spoiled(kRecords, 0, {0}),
       "bucata 4 (LOGR), octetul 293: Dataset \"mic\": jurnalul are o inregistrare nepermisa"},
      {spoiled(kRecords, 5, {9}), "bucata 4 (LOGR), octetul 295: jurnalul are un camp care nu exista"},
      {spoiled(kRecords, 7, {9}), "bucata 4 (LOGR), octetul 289: jurnalul are un camp care nu exista"},
  };
  for (const auto& [spoil, message] : kCases) {
    PacketBytes packet = SmallPacket();
    spoil(packet);
    Text told;
    try {
      static_cast<void>(ReadBack(packet));
    } catch (const PacketError& error) {
      told = error.what();
    }
    EXPECT_EQ(told, "ReadBinary: " + Text(message));
  }
}

TEST(Packet, MayHoldChunksThatOnlyOthersKnow) {
  PacketBytes packet = SmallPacket();
  const std::size_t second = ChunksOf(packet)[1].payload - packet::kChunkHeaderSize;
  const std::uint8_t more[] = {'m', 'e', 't', 'a', 2, 0, 0, 0, 0, 0, 0, 0, 'h', 'i', 0, 0, 0, 0};
  packet.insert(packet.begin() + static_cast<std::ptrdiff_t>(second), std::begin(more), std::end(more));
  Seal(packet);
  EXPECT_EQ(ReadBack(packet).RowCount(), 2U);
  packet[second] = 'M';
  Seal(packet);
  EXPECT_THROW(static_cast<void>(ReadBack(packet)), PacketError);
}

TEST(Packet, LimitsHold) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 100);
  const PacketBytes packet = Written(dataset);
  EXPECT_EQ(ReadBack(packet, {.maxRows = 100, .maxFields = 16}).RowCount(), 100U);
  EXPECT_THROW(static_cast<void>(ReadBack(packet, {.maxRows = 99})), PacketError);
  EXPECT_THROW(static_cast<void>(ReadBack(packet, {.maxFields = 15})), PacketError);
  EXPECT_THROW(static_cast<void>(ReadBack(packet, {.maxBytes = 9000})), PacketError);
  EXPECT_NO_THROW(static_cast<void>(ReadBack(packet, {.maxBytes = 40'000})));
}

TEST(Packet, WhateverASealedPacketSaysIsReadAsADatasetOrRefused) {
  Dataset dataset = WithHeaps();
  AddRows(dataset, 12);
  Edit(dataset, 4);
  std::mt19937 random(11);
  int accepted = 0;
  for (const PacketBytes& whole : {SmallPacket(), Written(dataset)}) {
    for (int i = 0; i < 2'000; ++i) {
      PacketBytes packet = whole;
      for (auto change = random() % 3 + 1; change > 0; --change) {
        const auto chunks = ChunksOf(packet);
        const ChunkPlace& chunk = chunks[random() % chunks.size()];
        packet[chunk.payload + random() % chunk.size] =
            static_cast<std::uint8_t>(random() % 3 == 0 ? random() : random() % 4);
      }
      Seal(packet);
      std::optional<Dataset> read;
      try {
        read = ReadBack(packet, {.maxRows = 100'000, .maxBytes = 1 << 20});
      } catch (const PacketError&) {
        continue;
      }
      ++accepted;
      Dataset again = ReadBack(Written(*read));
      ExpectSame(*read, again);
    }
  }
  EXPECT_GT(accepted, 100);
}

TEST(Packet, WhatSinkAndSourceThrowComesThrough) {
  struct Full {};
  const PacketBytes packet = SmallPacket();
  for (std::size_t allowed = 0; allowed < packet.size(); allowed += 10) {
    std::size_t left = allowed;
    EXPECT_THROW(static_cast<void>(ReadBinary([&](std::span<std::uint8_t> into) {
                   if (into.size() > left) {
                     throw Full();
                   }
                   std::copy_n(packet.begin() + static_cast<std::ptrdiff_t>(allowed - left), into.size(), into.begin());
                   left -= into.size();
                   return into.size();
                 })),
                 Full);
  }
  const Dataset dataset = ReadBack(packet);
  for (int allowed = 0; allowed < 6; ++allowed) {
    int left = allowed;
    EXPECT_THROW(WriteBinary(dataset,
                             [&](std::span<const std::uint8_t>) {
                               if (left-- == 0) {
                                 throw Full();
                               }
                             }),
                 Full);
  }
}

}  // namespace
}  // namespace kiv
