#include "EveryType.h"
#include "Expect.h"
#include "PacketBytes.h"

namespace kiv {
namespace {

void ExpectSameTickets(const Delta& written, const Delta& read) {
  EXPECT_EQ(written.Id(), read.Id());
  EXPECT_EQ(written.Name(), read.Name());
  ASSERT_EQ(written.Count(), read.Count());
  for (std::uint32_t ticket = 0; ticket < written.Count(); ++ticket) {
    ASSERT_EQ(written.Kind(ticket), read.Kind(ticket)) << ticket;
    EXPECT_EQ(read.Row(ticket), RowId{ticket});
    for (std::size_t field = 0; field < written.GetSchema().Fields().size(); ++field) {
      ASSERT_EQ(written.IsChanged(ticket, field), read.IsChanged(ticket, field)) << ticket << " " << field;
      ASSERT_EQ(written.HasOriginal(ticket, field), read.HasOriginal(ticket, field));
      if (written.HasOriginal(ticket, field)) {
        ASSERT_EQ(written.Original(ticket, field), read.Original(ticket, field)) << ticket << " " << field;
      }
      if (written.Kind(ticket) != ChangeKind::Delete &&
          (written.IsChanged(ticket, field) || written.HasOriginal(ticket, field))) {
        ASSERT_EQ(written.Current(ticket, field), read.Current(ticket, field)) << ticket << " " << field;
      }
    }
  }
}

TEST(DeltaPacket, HoldsTicketsOriginalsAndNewValues) {
  for (const std::uint32_t rows : {0U, 1U, 100U, 8193U}) {
    for (const bool hasHeap : {false, true}) {
      Dataset dataset = hasHeap ? WithHeaps() : Dataset("arhiva", EveryType());
      AddRows(dataset, rows);
      if (rows > 0) {
        Edit(dataset, rows);
        dataset.Set(RowId{rows / 2}, "x", Text(70'000, 'x'));
      }
      const Delta delta = dataset.Changes().MakeDelta();
      const PacketBytes packet = Written(delta);
      const Delta read = ReadDelta(SourceOf(packet));
      ExpectSameTickets(delta, read);
      const PacketBytes again = Written(read);
      EXPECT_TRUE(std::ranges::equal(std::span(packet).subspan(32 + 12), std::span(again).subspan(32 + 12)));
    }
  }
}

TEST(DeltaPacket, MoreTicketsThanABlockHas) {
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 20'000);
  for (std::uint32_t row = 0; row < 20'000; row += 2) {
    dataset.Update(RowId{row}, {{"i8", 7}, {"n", "alt memo"}});
  }
  const Delta delta = dataset.Changes().MakeDelta();
  ExpectSameTickets(delta, ReadDelta(SourceOf(Written(delta))));
}

TEST(DeltaPacket, HoldsNothingThatNobodyNeeds) {
  Dataset dataset("linii", {{"id", FieldType::Int32, kKey},
                            {"oras", FieldType::Text},
                            {"obs", FieldType::Memo, kRequired},
                            {"suma", FieldType::Currency},
                            {"nota", FieldType::Text, kNoCheck}});
  Loader loader(dataset);
  for (int i = 0; i < 20'000; ++i) {
    loader.Add({i, "orasul" + std::to_string(i), "memoriu" + std::to_string(i), 1_lei, "nota"});
  }
  loader.Finish();
  dataset.Set(RowId{7}, "suma", 2_lei);
  dataset.Set(RowId{8}, "oras", "intre timp");
  dataset.Set(RowId{8}, "obs", "trecator");
  dataset.Delete(RowId{8});
  const Delta delta = dataset.Changes().MakeDelta();
  const PacketBytes packet = Written(delta);
  EXPECT_LT(packet.size(), 500U);
  const std::string_view bytes(reinterpret_cast<const char*>(packet.data()), packet.size());
  for (const TextView absent : {"memoriu", "intre timp", "trecator", "orasul9"}) {
    EXPECT_EQ(bytes.find(absent), std::string_view::npos) << absent;
  }
  EXPECT_NE(bytes.find("orasul8"), std::string_view::npos);
  const Delta read = ReadDelta(SourceOf(packet));
  ExpectSameTickets(delta, read);
  EXPECT_EQ(read.Current(0, 2), Value(Null{}));
}

TEST(DeltaPacket, KeysMayHaveMovedFromRowToRow) {
  Dataset dataset("linii", {{"id", FieldType::Int32, kKey}});
  Loader loader(dataset);
  loader.Add({1});
  loader.Add({2});
  loader.Finish();
  dataset.Set(RowId{1}, "id", 3);
  dataset.Set(RowId{0}, "id", 2);
  const Delta delta = dataset.Changes().MakeDelta();
  ExpectSameTickets(delta, ReadDelta(SourceOf(Written(delta))));
}

TEST(DeltaPacket, IsNoDatasetAndADatasetIsNoDelta) {
  Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}});
  dataset.Insert({});
  ExpectError<PacketError>([&] { static_cast<void>(ReadDelta(SourceOf(Written(dataset)))); },
                           "ReadDelta: antetul, octetul 32: pachetul este de alt fel: nu tine o diferenta");
  const PacketBytes delta = Written(dataset.Changes().MakeDelta());
  ExpectError<PacketError>([&] { static_cast<void>(ReadBack(delta)); },
                           "ReadBinary: antetul, octetul 32: pachetul este de alt fel: nu tine un set de date intreg");
}

TEST(DeltaPacket, WhateverASealedOneSaysIsReadAsADeltaOrRefused) {
  Dataset dataset = WithHeaps();
  AddRows(dataset, 12);
  Edit(dataset, 4);
  const PacketBytes whole = Written(dataset.Changes().MakeDelta());
  std::mt19937 random(12);
  int accepted = 0;
  for (int i = 0; i < 3'000; ++i) {
    PacketBytes packet = whole;
    const auto chunks = ChunksOf(packet);
    const ChunkPlace& chunk = chunks[random() % chunks.size()];
    packet[chunk.payload + random() % chunk.size] =
        static_cast<std::uint8_t>(random() % 3 == 0 ? random() : random() % 4);
    Seal(packet);
    try {
      const Delta read = ReadDelta(SourceOf(packet), {.maxRows = 100'000, .maxBytes = 1 << 20});
      ++accepted;
      ExpectSameTickets(read, ReadDelta(SourceOf(Written(read))));
    } catch (const PacketError& error) {
      EXPECT_LE(error.Offset(), packet.size());
    }
  }
  EXPECT_GT(accepted, 100);
}

TEST(DeltaPacket, TicketsThatChangeNothingAreRefused) {
  using Old = store::BlockLoader::OldValue;
  const Schema schema({{"id", FieldType::Int16, kKey}, {"v", FieldType::Int16, kRequired | kNoCheck}});
  const Old old{1, {.bits = 7, .isNull = false}};
  const auto load = [&](bool isNull, std::uint8_t state, std::initializer_list<ChangeKind> kinds) {
    store::BlockLoader loader("tichete", schema, store::BlockLoader::Purpose::Delta);
    loader.BeginBlock(2);
    const std::int16_t ids[] = {1, 2};
    std::memcpy(loader.Values(0).data(), ids, sizeof ids);
    std::memset(loader.Values(1).data(), 0, 4);
    loader.States()[0] = loader.States()[1] = std::byte{state};
    if (isNull) {
      loader.Nulls(1)[0] = std::byte{3};
    }
    loader.EndBlock();
    std::uint32_t row = 0;
    for (const ChangeKind kind : kinds) {
      loader.AddRecord(kind, row++, std::span(&old, kind == ChangeKind::Update ? 1 : 0));
    }
    loader.Finish();
  };
  using enum ChangeKind;
  EXPECT_NO_THROW(load(false, 2, {Update, Update}));
  EXPECT_NO_THROW(load(true, 3, {Delete, Delete}));
  EXPECT_NO_THROW(load(false, 1, {Insert, Insert}));
  ExpectError<Error>(
      [&] {
        load(true, 2, {Update, Update});
      },
      "Dataset \"tichete\": campul \"v\", randul 0: trebuie completat");  // the new value is missing
  ExpectError<Error>(
      [&] {
        load(true, 1, {Insert, Insert});
      },
      "Dataset \"tichete\": campul \"v\", randul 0: trebuie completat");
  ExpectError<Error>([&] { load(false, 3, {Delete}); },
                     "Dataset \"tichete\": campul \"id\", randul 1: starea nu se potriveste cu jurnalul");
  ExpectError<Error>([&] { load(false, 0, {}); },
                     "Dataset \"tichete\": diferenta nu are cate o inregistrare pentru fiecare tichet");
}

}  // namespace
}  // namespace kiv
