#include <random>
#include <string>
#include <thread>

#include "EveryType.h"
#include "Expect.h"
#include "PacketBytes.h"
#include "SameRows.h"

namespace kiv {
namespace {

/// Expects the same dataset, and that taking its changes back one by one keeps it so.
void ExpectSame(Dataset& written, Dataset& read) {
  ASSERT_EQ(written.Name(), read.Name());
  ASSERT_EQ(written.GetSchema().Fields().size(), read.GetSchema().Fields().size());
  for (std::size_t i = 0; i < written.GetSchema().Fields().size(); ++i) {
    const FieldDef& left = written.GetSchema().Fields()[i];
    const FieldDef& right = read.GetSchema().Fields()[i];
    EXPECT_EQ(std::tie(left.name, left.type, left.size, left.flags, left.defaultValue, left.collation),
              std::tie(right.name, right.type, right.size, right.flags, right.defaultValue, right.collation));
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

TEST(Packet, HoldsTheOrderOfTexts) {
  Dataset dataset("ordini", {{"a", FieldType::Text, 4, kKey | kNoCheck, {}, Collation::Binary},
                             {"b", FieldType::Memo, 0, FieldFlags::None, {}, Collation::RomanianNoCase}});
  Dataset read = ReadBack(Written(dataset));
  ExpectSame(dataset, read);
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

/// A dataset whose packets have every kind of chunk, as small as can be.
Dataset SmallDataset() {
  Dataset dataset("mic", {{"id", FieldType::Int32, kKey}, {"t", FieldType::Text, 8}, {"n", FieldType::Memo}});
  Loader loader(dataset);
  for (int i = 0; i < 3; ++i) {
    loader.Add({i, i == 1 ? ValueView() : ValueView("Iasi"), "memo"});
  }
  loader.Finish();
  dataset.Set(RowId{0}, "t", "Cluj");
  dataset.Delete(RowId{2});
  return dataset;
}

PacketBytes SmallPacket() {
  return Written(SmallDataset());
}

PacketBytes SmallPacketWithNotes() {
  const PacketNotes notes = {{"de la", "ana"}, {"", ""}};
  return Written(SmallDataset(), notes);
}

PacketBytes SmallDelta() {
  Dataset dataset = SmallDataset();
  dataset.Set(RowId{1}, "n", "altul");
  dataset.Insert({{"id", 9}, {"n", "nou"}});
  return Written(dataset.Changes().MakeDelta());
}

/// Reads a dataset or a delta, whichever it is.
void ReadEither(std::span<const std::uint8_t> packet) {
  if (packet.size() > 12 && packet[12] == static_cast<std::uint8_t>(packet::PacketKind::Delta)) {
    static_cast<void>(ReadDelta(SourceOf(packet)));
  } else {
    static_cast<void>(ReadBack(packet));
  }
}

TEST(Packet, EveryPrefixIsRefused) {
  for (const PacketBytes& packet : {SmallPacket(), SmallPacketWithNotes(), SmallDelta()}) {
    for (std::size_t size = 0; size < packet.size(); ++size) {
      try {
        ReadEither(std::span(packet).first(size));
        FAIL() << size;
      } catch (const PacketError& error) {
        EXPECT_LE(error.Offset(), size);
        EXPECT_NE(std::string_view(error.what()).find("octetul "), std::string_view::npos) << error.what();
      }
    }
    EXPECT_NO_THROW(ReadEither(packet));
  }
}

TEST(Packet, EveryFlippedBitIsRefused) {
  for (PacketBytes packet : {SmallPacket(), SmallPacketWithNotes(), SmallDelta()}) {
    for (std::size_t bit = 0; bit < packet.size() * 8; ++bit) {
      packet[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
      EXPECT_THROW(ReadEither(packet), PacketError) << bit;
      packet[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
    }
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
       "dupa ultima bucata, octetul 344: pachetul s-a terminat, dar urmeaza alti octeti"},
      {[](PacketBytes& p) { p[60] ^= 1; }, "bucata 0 (TABL), octetul 32: suma de control nu se potriveste"},
      {[](PacketBytes& p) { p[40] ^= 1; },
       "bucata 0 (TABL), octetul 32: lungimea sau numarul bucatii nu se potriveste"},
      {[](PacketBytes& p) { p[39] ^= 1; },
       "bucata 0 (TABL), octetul 32: lungimea sau numarul bucatii nu se potriveste"},
      {spoiled(kTable, 4, {0xC8}), "bucata 0 (TABL), octetul 49: se termina inainte de vreme"},
      {spoiled(kTable, 8, {0xFF, 0xFF, 0xFF, 0xFF}),
       "bucata 0 (TABL), octetul 70: pachetul are mai multe randuri sau campuri decat este permis"},
      {spoiled(kTable, 8, {4}), "bucata 3 (ROWS), octetul 220: blocul nu are cate randuri trebuie"},
      {spoiled(kTable, 12, {1}), "bucata 4 (LOGR), octetul 312: jurnalul are mai multe inregistrari decat trebuie"},
      {spoiled(kTable, 29, {99}), "bucata 0 (TABL), octetul 80: un camp are un tip care nu exista"},
      {spoiled(kLargeValues, 1, {0, 0, 0, 0x80}),
       "bucata 1 (BLOB), octetul 130: o valoare lunga nu este scrisa cum trebuie"},
      {spoiled(kLargeValues, 9, {3}), "bucata 1 (BLOB), octetul 146: o valoare lunga nu este scrisa cum trebuie"},
      {spoiled(kEntries, 0, {0}), "bucata 2 (TEXT), octetul 186: un dictionar nu este al unui camp care il are"},
      {spoiled(kEntries, 2, {0xFF, 0xFF}), "bucata 2 (TEXT), octetul 188: un text lung lipseste"},
      {spoiled(kRows, 0, {1}), "bucata 3 (ROWS), octetul 220: randurile nu urmeaza unul din altul"},
      {spoiled(kRows, 4, {2}), "bucata 3 (ROWS), octetul 220: blocul nu are cate randuri trebuie"},
      {spoiled(kRows, 6, {1, 0}), "bucata 3 (ROWS), octetul 222: coloanele nu sunt in ordine"},
      {spoiled(kRecords, 0, {0}),
       "bucata 4 (LOGR), octetul 305: Dataset \"mic\": jurnalul are o inregistrare nepermisa"},
      {spoiled(kRecords, 5, {9}), "bucata 4 (LOGR), octetul 307: jurnalul are un camp care nu exista"},
      {spoiled(kRecords, 7, {9}), "bucata 4 (LOGR), octetul 301: jurnalul are un camp care nu exista"},
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
  const std::uint8_t more[] = {'z', 'i', 'a', 'r', 2, 0, 0, 0, 0, 0, 0, 0, 'h', 'i', 0, 0, 0, 0};
  packet.insert(packet.begin() + static_cast<std::ptrdiff_t>(second), std::begin(more), std::end(more));
  Seal(packet);
  EXPECT_EQ(ReadBack(packet).RowCount(), 2U);
  packet[second] = 'Z';
  Seal(packet);
  ExpectError<PacketError>([&] { static_cast<void>(ReadBack(packet)); },
                           "ReadBinary: bucata 1 (Ziar), octetul 105: felul bucatii nu este cunoscut");
}

TEST(Packet, NotesTravelWithIt) {
  PacketNotes notes = {{"de la", "ana"}, {"de la", Text(100'000, 'x')}, {"", ""}};
  const PacketBytes packet = Written(SmallDataset(), notes);
  PacketNotes read;
  EXPECT_EQ(ReadBinary(SourceOf(packet), {}, &read).RowCount(), 2U);
  ASSERT_EQ(read.size(), notes.size());
  for (std::size_t i = 0; i < notes.size(); ++i) {
    EXPECT_EQ(read[i].name, notes[i].name);
    EXPECT_EQ(read[i].value, notes[i].value);
  }
  ExpectError<PacketError>(
      [&] { static_cast<void>(ReadBack(packet, {.maxBytes = 90'000})); },
      "ReadBinary: bucata 1 (meta), octetul 100146: pachetul ar ocupa mai multa memorie decat este permis");
  notes[1].value.assign(16U << 20U, 'x');
  ExpectError<Error>([&] { static_cast<void>(Written(SmallDataset(), notes)); },
                     "WriteBinary: definitiile campurilor sau notele depasesc 16 MiB");
}

TEST(Packet, TemporaryNumbersAreNotGivenAgain) {
  Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}});
  dataset.Delete(dataset.Insert({}));
  dataset.Insert({});
  dataset.Changes().AcceptChanges();
  const RowId row = dataset.Insert({});
  dataset.Set(row, "id", 17);
  Dataset read = ReadBack(Written(dataset));
  EXPECT_EQ(read.GetInt64(read.Insert({}), "id"), -4);
}

TEST(Packet, LimitsHold) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 100);
  const PacketBytes packet = Written(dataset);
  EXPECT_EQ(ReadBack(packet, {.maxRows = 100, .maxFields = 16}).RowCount(), 100U);
  for (const ReadLimits& limits : {ReadLimits{.maxRows = 99}, ReadLimits{.maxFields = 15}}) {
    ExpectError<PacketError>(
        [&] { static_cast<void>(ReadBack(packet, limits)); },
        "ReadBinary: bucata 0 (TABL), octetul 73: pachetul are mai multe randuri sau campuri decat este permis");
  }
  ExpectError<PacketError>(
      [&] { static_cast<void>(ReadBack(packet, {.maxBytes = 9000})); },
      "ReadBinary: bucata 2 (TEXT), octetul 4363: pachetul ar ocupa mai multa memorie decat este permis");
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

TEST(Packet, ASourceThatGivesMoreThanFitsIsRefused) {
  ExpectError<Error>(
      [] { static_cast<void>(ReadBinary([](std::span<std::uint8_t> into) { return into.size() + 1; })); },
      "ReadBinary: sursa da mai multi octeti decat incap");
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
