// Datasets handed out as columns and taken in again.
#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "Allocations.h"
#include "EveryType.h"
#include "Expect.h"
#include "HandMadeArrow.h"
#include "dataset/arrow/Owned.h"
#include "dataset/store/Contents.h"

namespace kiv {
namespace {

using arrow::OwnedArray;
using arrow::OwnedSchema;
using arrow::OwnedStream;

OwnedStream Open(Dataset& dataset, ArrowAmounts amounts = ArrowAmounts::Decimal) {
  ArrowArrayStream stream;
  ExportArrow(dataset.TakeSnapshot(), stream, {.amounts = amounts});
  return OwnedStream(stream);
}

OwnedSchema SchemaOf(OwnedStream& stream) {
  OwnedSchema schema;
  EXPECT_EQ(stream->get_schema(stream.Get(), schema.Get()), 0);
  return schema;
}

OwnedArray NextOf(OwnedStream& stream) {
  OwnedArray batch;
  EXPECT_EQ(stream->get_next(stream.Get(), batch.Get()), 0);
  return batch;
}

std::vector<FieldDef> FieldsOf(const DatasetView& dataset) {
  const auto fields = dataset.GetSchema().Fields();
  return {fields.begin(), fields.end()};
}

void ExpectSamePresentRows(const DatasetView& left, const DatasetView& right) {
  ASSERT_EQ(left.RowCount(), right.RowCount());
  auto other = right.Rows().begin();
  for (const RowId row : left.Rows()) {
    for (std::size_t field = 0; field < left.GetSchema().Fields().size(); ++field) {
      ASSERT_EQ(left.Get(row, left.FieldAt(field)), right.Get(*other, right.FieldAt(field)))
          << field << " " << static_cast<std::uint32_t>(row);
    }
    ++other;
  }
}

TEST(Arrow, WhatIsHandedOutIsTakenInAsItWas) {
  for (const bool hasHeaps : {false, true}) {
    for (const std::uint32_t rows : {0U, 1U, 63U, 65U, 8191U, 8193U, 20'000U}) {
      for (const ArrowAmounts amounts : {ArrowAmounts::Decimal, ArrowAmounts::TenThousandths}) {
        Dataset dataset = hasHeaps ? WithHeaps() : Dataset("t", EveryType());
        AddRows(dataset, rows, rows != 65);
        if (rows % 2 == 1 && rows > 1) {
          Edit(dataset, rows);
        }
        ArrowArrayStream stream = Open(dataset, amounts).Release();
        const Dataset read = ImportArrow(stream, "t", {.fields = FieldsOf(dataset), .amounts = amounts});
        EXPECT_EQ(stream.release, nullptr);
        ExpectSamePresentRows(dataset, read);
      }
    }
  }
}

TEST(Arrow, ColumnsSayWhatTheyAre) {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 9);
  const Dataset heaps = WithHeaps();
  OwnedStream stream = Open(dataset);
  const OwnedSchema schema = SchemaOf(stream);
  ASSERT_EQ(schema->n_children, 16);
  std::string formats;
  for (std::int64_t i = 0; i < schema->n_children; ++i) {
    const ArrowSchema& column = *schema->children[i];
    formats += column.format;
    formats += column.dictionary == nullptr ? " " : std::string("[") + column.dictionary->format + "] ";
    EXPECT_EQ(column.name, dataset.GetSchema().Fields()[static_cast<std::size_t>(i)].name);
    EXPECT_EQ(column.flags, i == 0 || i == 9 ? 0 : ARROW_FLAG_NULLABLE) << i;
  }
  EXPECT_EQ(formats, "l s i l d:19,4 g tdD ttm tsm: i[u] i[u] u b w:16 u z ");
  constexpr std::string_view kGuid("\x01\0\0\0\x14\0\0\0ARROW:extension:name\x0A\0\0\0arrow.uuid", 42);
  ASSERT_NE(schema->children[13]->metadata, nullptr);
  EXPECT_EQ(std::string_view(schema->children[13]->metadata, kGuid.size()), kGuid);
  EXPECT_EQ(std::string_view(schema->format), "+s");
}

TEST(Arrow, ElementsAreThoseOfTheInterface) {
  Dataset dataset("t", {{"ziua", FieldType::Date},
                        {"clipa", FieldType::DateTime},
                        {"suma", FieldType::Currency},
                        {"cod", FieldType::Guid},
                        {"t", FieldType::Text},
                        {"m", FieldType::Memo}});
  dataset.Insert({{"ziua", DateTime(25570)},
                  {"clipa", DateTime(25569.5)},
                  {"suma", Currency::FromRaw(-3)},
                  {"cod", Guid{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}}},
                  {"t", "ş€"_ro},
                  {"m", "Ţ"_ro}});
  dataset.Insert({});
  OwnedStream stream = Open(dataset);
  const OwnedArray batch = NextOf(stream);
  ASSERT_EQ(batch->length, 2);
  const auto first = [&]<class Element>(std::int64_t column, Element element) {
    std::memcpy(&element, batch->children[column]->buffers[1], sizeof element);
    return element;
  };
  EXPECT_EQ(first(0, std::int32_t{}), 1);
  EXPECT_EQ(first(1, std::int64_t{}), 43'200'000);
  EXPECT_EQ(first(2, std::array<std::int64_t, 2>{}), (std::array<std::int64_t, 2>{-3, -1}));
  EXPECT_EQ(first(3, std::array<std::uint8_t, 16>{}),
            (std::array<std::uint8_t, 16>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
  const ArrowArray& entries = *batch->children[4]->dictionary;
  EXPECT_EQ(std::string_view(static_cast<const char*>(entries.buffers[2]), 5), "ș€");
  EXPECT_EQ(first(5, std::array<std::int32_t, 3>{}), (std::array<std::int32_t, 3>{0, 2, 2}));
  for (std::int64_t i = 0; i < batch->n_children; ++i) {
    EXPECT_EQ(batch->children[i]->null_count, 1);
    EXPECT_EQ(*static_cast<const std::uint8_t*>(batch->children[i]->buffers[0]), 1);
  }
}

TEST(Arrow, WholeBlocksAreTheDatasetsOwnMemory) {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 10'000);
  dataset.Delete(RowId{8192});
  OwnedStream stream = Open(dataset, ArrowAmounts::TenThousandths);
  for (std::uint32_t block = 0; block < 2; ++block) {
    const OwnedArray batch = NextOf(stream);
    ASSERT_EQ(batch->length, block == 0 ? 8192 : 1807);
    std::string shared;
    for (std::size_t i = 0; i < 16; ++i) {
      const bool isShared =
          batch->children[i]->buffers[1] == dataset.GetContents().columns[i].values.BlockAt(block * store::kBlockRows);
      shared += isShared ? dataset.GetContents().schema.Fields()[i].name : "";
    }
    EXPECT_EQ(shared, block == 0 ? "idi2i4i8cftsxb" : "");
  }
  EXPECT_EQ(NextOf(stream)->release, nullptr);
  EXPECT_EQ(NextOf(stream)->release, nullptr);
}

TEST(Arrow, WhatIsHandedOutOutlivesDatasetStreamAndTheRestOfItsBatch) {
  OwnedArray numbers;
  OwnedArray texts;
  OwnedSchema moved;
  {
    Dataset dataset("t", EveryType());
    AddRows(dataset, 100);
    OwnedStream stream = Open(dataset);
    OwnedSchema schema = SchemaOf(stream);
    moved = OwnedSchema(*schema->children[1]);
    OwnedArray batch = NextOf(stream);
    dataset.Set(RowId{5}, "i2", 999);
    numbers = OwnedArray(*batch->children[1]);
    texts = OwnedArray(*batch->children[9]->dictionary);
  }
  std::int16_t fifth = 0;
  std::memcpy(&fifth, static_cast<const std::int16_t*>(numbers->buffers[1]) + 5, sizeof fifth);
  EXPECT_EQ(fifth, 5);
  EXPECT_EQ(std::string_view(static_cast<const char*>(texts->buffers[2]), 12), "oras 0oras 1");
  EXPECT_STREQ(moved->name, "i2");
}

TEST(Arrow, BlocksWithoutRowsAreLeftOut) {
  Dataset dataset("t", {{"n", FieldType::Int32}});
  Loader loader(dataset);
  for (int i = 0; i < 3 * 8192; ++i) {
    loader.Add({i});
  }
  loader.Finish();
  for (std::uint32_t row = 0; row < 2 * store::kBlockRows; ++row) {
    dataset.Delete(RowId{row});
  }
  OwnedStream stream = Open(dataset);
  EXPECT_EQ(NextOf(stream)->length, 8192);
  EXPECT_EQ(NextOf(stream)->release, nullptr);
}

TEST(Arrow, LongTextsHaveLongOffsets) {
  // So many rows share one value that those of the last block together need more than 31 bits.
  store::BlockLoader loader("t", Schema({{"n", FieldType::Memo}, {"b", FieldType::Blob}}));
  const std::uint32_t small = loader.AddLarge("mic");
  const std::uint32_t large = loader.AddLarge(std::string(300'000, 'x'));
  for (const std::uint32_t number : {small, large}) {
    loader.BeginBlock(store::kBlockRows);
    for (const std::size_t field : {0U, 1U}) {
      const auto values = loader.Values(field);
      for (std::uint32_t row = 0; row < store::kBlockRows; ++row) {
        std::memcpy(values.data() + row * sizeof number, field == 0 ? &number : &small, sizeof number);
      }
    }
    loader.EndBlock();
  }
  Dataset dataset(loader.Finish());
  OwnedStream stream = Open(dataset);
  const OwnedSchema schema = SchemaOf(stream);
  EXPECT_STREQ(schema->children[0]->format, "U");
  EXPECT_STREQ(schema->children[1]->format, "z");
  const OwnedArray batch = NextOf(stream);
  std::int64_t ends[2] = {};
  std::memcpy(ends, static_cast<const std::int64_t*>(batch->children[0]->buffers[1]) + 8191, sizeof ends);
  EXPECT_EQ(ends[0], 3 * 8191);
  EXPECT_EQ(ends[1], 3 * 8192);
}

TEST(Arrow, EachFormatIsTakenIn) {
  using Made = HandMade;
  const auto ofEntries = [](Made column) {
    column.dictionary = {Made::Of<std::int32_t>("", "u", {0, 1, 2}, "ab")};
    return column;
  };
  const struct {
    Made column;
    FieldType type;
    std::vector<Value> values;
  } kCases[] = {
      {Made::Of<std::int8_t>("n", "c", {-1, 2}), FieldType::Int16, {std::int64_t{-1}, std::int64_t{2}}},
      {Made::Of<std::uint8_t>("n", "C", {255}), FieldType::Int16, {std::int64_t{255}}},
      {Made::Of<std::int16_t>("n", "s", {-300}), FieldType::Int16, {std::int64_t{-300}}},
      {Made::Of<std::uint16_t>("n", "S", {65'535}), FieldType::Int32, {std::int64_t{65'535}}},
      {Made::Of<std::int32_t>("n", "i", {-70'000}), FieldType::Int32, {std::int64_t{-70'000}}},
      {Made::Of<std::uint32_t>("n", "I", {0xFFFFFFFF}), FieldType::Int64, {std::int64_t{0xFFFFFFFF}}},
      {Made::Of<std::int64_t>("n", "l", {-5}), FieldType::Int64, {std::int64_t{-5}}},
      {Made::Of<std::uint64_t>("n", "L", {1ULL << 62U}), FieldType::Int64, {std::int64_t{1} << 62}},
      {Made::Of<float>("n", "f", {0.5F, -0.0F}), FieldType::Double, {0.5, 0.0}},
      {Made::Of<double>("n", "g", {1e300, -0.0}), FieldType::Double, {1e300, 0.0}},
      {Made::Of<std::uint8_t>("n", "b", {5}), FieldType::Boolean, {true}},
      {Made::Of<std::int64_t>("n", "d:19,4", {-15, -1}), FieldType::Currency, {Currency::FromRaw(-15)}},
      {Made::Of<std::int64_t>("n", "d:5,0", {7, 0}), FieldType::Currency, {7_lei}},
      {Made::Of<std::int64_t>("n", "d:5,2,128", {-7, -1}), FieldType::Currency, {Currency::FromRaw(-700)}},
      {Made::Of<std::int32_t>("n", "tdD", {-1}), FieldType::Date, {DateTime(25568)}},
      {Made::Of<std::int64_t>("n", "tdm", {172'800'000}), FieldType::Date, {DateTime(25571)}},
      {Made::Of<std::int32_t>("n", "tts", {86'399}), FieldType::Time, {DateTime(86'399.0 / 86'400)}},
      {Made::Of<std::int32_t>("n", "ttm", {43'200'000}), FieldType::Time, {DateTime(0.5)}},
      {Made::Of<std::int64_t>("n", "ttu", {43'200'000'000}), FieldType::Time, {DateTime(0.5)}},
      {Made::Of<std::int64_t>("n", "ttn", {43'200'000'000'000}), FieldType::Time, {DateTime(0.5)}},
      {Made::Of<std::int64_t>("n", "tss:", {-43'200}), FieldType::DateTime, {DateTime(25568.5)}},
      {Made::Of<std::int64_t>("n", "tsm:", {43'200'000}), FieldType::DateTime, {DateTime(25569.5)}},
      {Made::Of<std::int64_t>("n", "tsu:", {43'200'000'000}), FieldType::DateTime, {DateTime(25569.5)}},
      {Made::Of<std::int64_t>("n", "tsn:", {43'200'000'000'000}), FieldType::DateTime, {DateTime(25569.5)}},
      {Made::Of<std::uint64_t>("n", "w:16", {0x0807060504030201, 0x100F0E0D0C0B0A09}),
       FieldType::Guid,
       {Guid{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}}}},
      {Made::Of<std::int32_t>("n", "u", {0, 2, 2}, "ș"), FieldType::Text, {"ş"_ro, Text()}},
      {Made::Of<std::int64_t>("n", "U", {1, 3}, "-ж"), FieldType::WideText, {WideText(u"ж")}},
      {Made::Of<std::int32_t>("n", "z", {0, 2}, "\x01\xFF"), FieldType::Blob, {Bytes{1, 255}}},
      {Made::Of<std::int64_t>("n", "Z", {0, 1}, "z"), FieldType::Blob, {Bytes{'z'}}},
      {ofEntries(Made::Of<std::uint8_t>("n", "C", {1, 0})), FieldType::Text, {Text("b"), Text("a")}},
      {ofEntries(Made::Of<std::int64_t>("n", "l", {0, 0})), FieldType::Text, {Text("a"), Text("a")}},
  };
  for (const auto& [column, type, values] : kCases) {
    HandMade shortened = column;  // "b" and decimals have other elements than their numbers
    shortened.length = static_cast<std::int64_t>(values.size());
    HandMadeStream stream(shortened);
    const Dataset read = Import(stream);
    EXPECT_EQ(stream.Live(), 0);
    EXPECT_EQ(read.GetSchema().Fields()[0].type, type) << column.format;
    ASSERT_EQ(read.RowCount(), values.size()) << column.format;
    for (std::uint32_t row = 0; row < values.size(); ++row) {
      EXPECT_EQ(read.Get(RowId{row}, "n"), values[row]) << column.format;
    }
  }
}

TEST(Arrow, SlicesAndNullsAreReadFromWhereTheyBegin) {
  // Bits 3 to 7 of 10110100 tell which of the five are not null.
  HandMade numbers = HandMade::Of<std::int32_t>("n", "i", {0, 1, 2, 3, 4, 5, 6, 7}).Nulls({0b10110100}, 2);
  numbers.offset = 3;
  numbers.length = 5;
  HandMade flags = HandMade::Of<std::uint8_t>("b", "b", {0b00101000});
  flags.offset = 3;
  flags.length = 5;
  HandMade texts = HandMade::Of<std::int32_t>("t", "u", {0, 1, 2, 3, 4, 5, 6, 7, 8}, "abcdefgh");
  texts.offset = 3;
  texts.length = 5;
  HandMade entries = HandMade::Of<std::int8_t>("e", "c", {9, 9, 0, 1, 2, 1, 0});
  entries.offset = 2;
  entries.length = 5;
  entries.dictionary = {HandMade::Of<std::int32_t>("", "u", {0, 0, 1, 2, 3}, "xyz").Nulls({0b1101}, 1)};
  entries.dictionary[0].offset = 1;
  entries.dictionary[0].length = 3;
  HandMadeStream stream({{numbers, flags, texts, entries}});
  // The rows themselves begin one further on.
  stream.damageBatch = [](ArrowArray& batch) {
    batch.offset = 1;
    batch.length = 4;
  };
  const Dataset read = Import(stream);
  std::string seen;
  for (const RowId row : read.Rows()) {
    const auto shown = [&](const char* field, FieldType type) {
      return read.IsNull(row, field) ? std::string("-") : ShownValue(type, read.View(row, field));
    };
    seen += shown("n", FieldType::Int32) + shown("b", FieldType::Boolean) + shown("t", FieldType::Text) +
            shown("e", FieldType::Text) + " ";
  }
  EXPECT_EQ(seen, "4falseey 5truefz -falsegy 7falseh- ");
  EXPECT_EQ(stream.Live(), 0);
}

TEST(Arrow, BatchesFollowEachOtherAndFieldsAreAsTheyAreKnown) {
  const auto batch = [](std::int32_t first, const char* text) -> HandMadeBatch {
    return {HandMade::Of<std::int32_t>("Suma totală", "i", {first, first + 1}),
            HandMade::Of<std::int32_t>("suma TOTALĂ", "u", {0, 1, 2}, text)};
  };
  HandMadeStream stream({batch(1, "ab"), {HandMade{"", "i"}, HandMade{"", "u"}}, batch(3, "cd")});
  const Dataset read =
      Import(stream, {.fields = {{"Suma_total\xE3", FieldType::Int64, kKey}, {"suma_TOTAL\xC3_2", FieldType::Memo}}});
  ASSERT_EQ(read.RowCount(), 4U);
  EXPECT_EQ(read.Find(4), RowId{3});
  EXPECT_EQ(read.GetText(RowId{3}, "suma_TOTAL\xC3_2"), "d");
}

TEST(Arrow, WithoutMemoryNothingIsHandedOutAndItMayBeTriedAgain) {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 300);
  dataset.Delete(RowId{7});
  OwnedStream stream;
  OwnedSchema schema;
  OwnedArray batch;
  // Each step is done once it has failed at each of its allocations.
  const auto tryAll = [](const std::function<bool()>& step) {
    for (std::uint64_t failing = 0;; ++failing) {
      ASSERT_LT(failing, 10'000U);
      Allocations::FailFrom(failing);
      const bool isDone = step();
      ASSERT_NE(Allocations::Stop(), isDone);
      if (isDone) {
        return;
      }
    }
  };
  const Snapshot snapshot = dataset.TakeSnapshot();
  tryAll([&] {
    try {
      ExportArrow(snapshot, *stream.Get());
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  });
  tryAll([&] { return stream->get_schema(stream.Get(), schema.Get()) == 0; });
  EXPECT_EQ(stream->get_last_error(stream.Get()), nullptr);
  tryAll([&] {
    const int code = stream->get_next(stream.Get(), batch.Get());
    EXPECT_TRUE(code == 0 || (code == ENOMEM && stream->get_last_error(stream.Get()) != nullptr));
    return code == 0;
  });
  EXPECT_EQ(batch->length, 299);
}

TEST(Arrow, WithoutMemoryAllThatWasTakenOverIsGivenBack) {
  HandMade entries = HandMade::Of<std::int8_t>("e", "c", {0, 0});
  entries.dictionary = {HandMade::Of<std::int32_t>("", "u", {0, 3}, "ța")};
  const HandMadeBatch batch = {HandMade::Of<std::int32_t>("n", "i", {1, 2}),
                               HandMade::Of<std::int32_t>("t", "u", {0, 2, 3}, "жb"), entries};
  bool hasFailed = true;
  for (std::uint64_t failing = 0; hasFailed; ++failing) {
    HandMadeStream stream({batch, batch});
    ArrowArrayStream opened = stream.Open();
    Allocations::FailFrom(failing);
    try {
      static_cast<void>(ImportArrow(opened, "t"));
    } catch (const std::bad_alloc&) {
    }
    hasFailed = Allocations::Stop();
    EXPECT_EQ(opened.release, nullptr);
    ASSERT_EQ(stream.Live(), 0) << failing;
  }
}

}  // namespace
}  // namespace kiv
