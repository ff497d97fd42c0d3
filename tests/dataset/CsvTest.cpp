#include <random>

#include "Allocations.h"
#include "EveryType.h"
#include "Expect.h"
#include "PacketBytes.h"
#include "Show.h"
#include "kivtools/dataset/Csv.h"
#include "platform/FailingCalls.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Dataset Read(std::string_view text, const CsvReadOptions& options = {}, std::size_t step = 1000) {
  return ReadCsv(SourceOf(BytesOf(text), step), "t", options);
}

std::string Csv(const DatasetView& dataset, const CsvWriteOptions& options = {}) {
  PacketBytes bytes;
  WriteCsv(dataset, AppendTo(bytes), options);
  return {bytes.begin(), bytes.end()};
}

/// The fields as "name:type", then the rows as they are shown, each with "|" before it.
std::string Seen(const DatasetView& dataset) {
  std::string seen;
  for (const FieldDef& field : dataset.GetSchema().Fields()) {
    seen += (seen.empty() ? "" : " ") + field.name + ":" + store::TraitsOf(field.type).name;
  }
  for (const RowId row : dataset.Rows()) {
    seen += " |";
    for (std::size_t i = 0; i < dataset.GetSchema().Fields().size(); ++i) {
      const FieldRef field = dataset.FieldAt(i);
      seen += " " + (dataset.IsNull(row, field)
                         ? "null"
                         : "<" + ShownValue(dataset.GetSchema().Fields()[i].type, dataset.View(row, field)) + ">");
    }
  }
  return seen;
}

TEST(Csv, TypesAreFoundOverTheWholeFile) {
  const struct {
    std::string_view text, seen;
  } kCases[] = {
      {"a,b\n1,x\n2,\n", "a:Int64 b:Text | <1> <x> | <2> null"},
      {"cod;suma\r\n007;1\r\n12;2.5\r\n", "cod:Text suma:Currency | <007> <1.0000> | <12> <2.5000>"},
      {"zi\tora\n31.01.2026\t1\n2026-02-01\t\n", "zi:Date ora:Int64 | <2026-01-31> <1> | <2026-02-01> null"},
      {"zi,n\n31.01.2026,1\n5,2026-01-01\n", "zi:Text n:Text | <31.01.2026> <1> | <5> <2026-01-01>"},
      {"a,b\n,\"\"\n", "a:Text b:Text | null <>"},
      {"a,b\n1,\"\"\n2,3\n", "a:Int64 b:Text | <1> <> | <2> <3>"},
      {"a,b\n\"1\",\"x, \"\"y\"\"\r\nz\"\n", "a:Int64 b:Text | <1> <x, \"y\"\r\nz>"},
      {"a\n12,5\n\nb;c\n", "a:Text | <12,5> | null | <b;c>"},
      {"a,b\n\n1,2\n\n", "a:Int64 b:Int64 | <1> <2>"},
      {"\xEF\xBB\xBF\"a\",b", "a:Text b:Text"},
      {"nume,oras\nȚuțu,Iași\n", "nume:Text oras:Text | <Țuțu> <Iași>"},
      {"nume,oras\n\xFE"
       "u,Ia\xBAi\n",
       "nume:Text oras:Text | <țu> <Iași>"},
      {"a,b\nПривет,😀\nx,1\n", "a:WideText b:WideText | <Привет> <😀> | <x> <1>"},
      {"Suma totală,1x,,a,A\n1,2,3,4,5\n",
       "Suma_total\xE3:Int64 _1x:Int64 _:Int64 a:Int64 A_2:Int64 | <1> <2> <3> <4> <5>"},
      {"a,b\r\n1,\"x\"\r\n", "a:Int64 b:Text | <1> <x>"},
      {"a,b\n1,x\ry\n", "a:Int64 b:Text | <1> <x\ry>"},
  };
  for (const auto& [text, seen] : kCases) {
    for (const std::size_t step : {1U, 2U, 1000U}) {
      EXPECT_EQ(Seen(Read(text, {}, step)), seen) << text;
    }
  }
}

TEST(Csv, WhatTheCallerSaysOfColumnsStands) {
  const CsvReadOptions options{.separator = ';',
                               .encoding = CsvEncoding::Utf8,
                               .numbers = CsvNumbers::Romanian,
                               .fields = {{"SUMA", FieldType::Double}, {"id", FieldType::AutoInc, kKey}}};
  const Dataset read = Read("id;x;suma\n5;1.234,5;1.000,25\n", options);
  EXPECT_EQ(Seen(read), "id:AutoInc x:Currency SUMA:Double | <5> <1234.5000> <1000.25>");
  EXPECT_TRUE(read.Find(5).has_value() && read.CountOf(RowState::Unmodified) == 1 && read.ChangeCount() == 0);
}

TEST(Csv, ErrorsNameLineAndColumnAndNothingIsRead) {
  const CsvReadOptions typed{.fields = {{"a", FieldType::Int16, kKey}, {"b", FieldType::Text, 3}}};
  const struct {
    std::string_view text;
    const CsvReadOptions options;
    std::uint64_t line, column;
    std::string_view message;
  } kCases[] = {
      {"", {}, 1, 0, "textul este gol: lipsesc numele coloanelor"},
      {"a,b\n1,2\n1\n", {}, 3, 0, "randul are 1 valori, nu 2"},
      {"a,b\n1,2,3\n", {}, 2, 0, "randul are 3 valori, nu 2"},
      {"a,b\n\"x\ny\",2\n1,\"2", {}, 4, 2, "lipsesc ghilimelele de la sfarsit"},
      {"a,b\n1,x\"y\n", {}, 2, 2, "ghilimele in interiorul valorii"},
      {"a,b\n1,\"x\"y\n", {}, 2, 2, "text dupa ghilimelele de la sfarsit"},
      {"a,b\n1,x\n40000,y\n", typed, 3, 1, "\"a\": \"40000\" nu este o valoare de tip Int16"},
      {"a,b\n1,lung\n", typed, 2, 2, "Dataset \"t\": campul \"b\" tine cel mult 3 octeti, nu 4"},
      {"a,b\n,x\n", typed, 2, 1, "Dataset \"t\": campul \"a\" trebuie completat"},
      {"a,b\n1,x\n1,y\n1,z\n", typed, 3, 1, "Dataset \"t\": cheia 1 exista deja"},
      {"a,b\n5,\"x\ny\"\n\n2,q\n5,z\n3,u\n", typed, 6, 1, "Dataset \"t\": cheia 5 exista deja"},
      {"n,a,b\n7,1,x\n8,2,x\n9,1,x\n",
       {.fields = {{"a", FieldType::Int16, kKey}, {"b", FieldType::Text, kKey}}},
       4,
       2,
       "Dataset \"t\": cheia 1, \"x\" exista deja"},
      {"b,c\n1,x\n", typed, 1, 0, "coloana \"a\" lipseste sau apare de doua ori"},
      {"a,b\n1,\xC8\n", {.encoding = CsvEncoding::Utf8}, 2, 2, "\"b\": \"\xC8\" nu este o valoare de tip Text"},
      {"a,b\n1,я\n", typed, 2, 2, "\"b\": \"?\" nu este o valoare de tip Text"},
      {"\xFF\xFE"
       "a",
       {},
       1,
       0,
       "textul este UTF-16, nu UTF-8 sau Windows-1250"},
  };
  for (const auto& [text, options, line, column, message] : kCases) {
    for (const std::size_t step : {1U, 1000U}) {
      try {
        static_cast<void>(Read(text, options, step));
        ADD_FAILURE() << text;
      } catch (const TextPacketError& error) {
        EXPECT_EQ(error.Line(), line) << text;
        EXPECT_EQ(error.Column(), column) << text;
        EXPECT_EQ(error.Chunk(), -1);
        const std::string_view before = text.substr(0, static_cast<std::size_t>(error.Offset()));
        EXPECT_EQ(1 + static_cast<std::uint64_t>(std::ranges::count(before, '\n')), line) << text;
        EXPECT_TRUE(before.empty() || before.ends_with('\n')) << text;
        EXPECT_TRUE(std::string_view(error.what()).ends_with(message)) << error.what();
        EXPECT_EQ(std::string_view(error.what()).substr(0, 16), "ReadCsv: linia " + std::to_string(line))
            << error.what();
      }
    }
  }
}

TEST(Csv, LimitsHold) {
  const struct {
    std::string text;
    ReadLimits limits;
    TextView message;
  } kCases[] = {
      {"a\n1\n2\n",
       {.maxRows = 1},
       "ReadCsv: linia 3: textul are mai multe randuri sau ar ocupa mai multa memorie decat este permis"},
      {"a,b\n", {.maxFields = 1}, "ReadCsv: linia 1: textul are mai multe coloane decat este permis"},
      {"a\nxxxxxxxx\n",
       {.maxBytes = 15},
       "ReadCsv: linia 2: textul are mai multe randuri sau ar ocupa mai multa memorie decat este permis"},
  };
  for (const auto& [text, limits, message] : kCases) {
    ExpectError<TextPacketError>(
        [&, &csv = text, &most = limits] { static_cast<void>(ReadCsv(SourceOf(BytesOf(csv)), "t", {}, most)); },
        message);
  }
}

/// The same fields without what a text does not hold.
CsvReadOptions TypesOf(const Schema& schema, const CsvWriteOptions& written) {
  CsvReadOptions options{.separator = written.separator, .encoding = written.encoding, .numbers = written.numbers};
  options.fields.assign(schema.Fields().begin(), schema.Fields().end());
  return options;
}

TEST(Csv, RowsOfEveryTypeComeBackAsTheyWere) {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 20'000);
  dataset.Update(RowId{3}, {{"s", "\"a\",;\t\r\n\"\""}, {"x", "="}, {"n", Text("\0\x01\xFF", 3)}, {"f", 1e-300}});
  dataset.Update(RowId{5}, {{"s", "\""}, {"x", " "}, {"n", ""}, {"f", -1.0 / 3}, {"m", DateTime(-5.25)}});
  dataset.Delete(RowId{7});
  dataset.Compact();
  dataset.Changes().AcceptChanges();
  dataset.Compact();
  for (const CsvWriteOptions& options :
       {CsvWriteOptions{},
        CsvWriteOptions{.separator = ';', .encoding = CsvEncoding::Utf8, .numbers = CsvNumbers::Romanian, .mark = true},
        CsvWriteOptions{.separator = '\t', .encoding = CsvEncoding::Windows1250}}) {
    dataset.Set(RowId{4}, "w",
                options.encoding == CsvEncoding::Windows1250 ? ValueView(u"\u0163") : ValueView(u"\u021b\U0001F600"));
    const std::string text = Csv(dataset, options);
    const Dataset read = Read(text, TypesOf(dataset.GetSchema(), options), 4096);
    dataset.Changes().AcceptChanges();
    ASSERT_EQ(Show(read), Show(dataset));
    EXPECT_EQ(Csv(read, options), text);
  }
}

TEST(Csv, IsWrittenForPeopleAndSpreadsheetsAsAskedFor) {
  Dataset dataset("t", {{"id", FieldType::Int32}, {"ş"_ro, FieldType::Text}, {"c", FieldType::Currency}});
  dataset.Insert({{"id", 1}, {"ş"_ro, "=1+1"}, {"c", Currency::FromRaw(-12345000)}});
  dataset.Insert({{"id", 2}, {"ş"_ro, "ţ;"_ro}});
  dataset.Insert({{"ş"_ro, ""}});
  const RowId gone = dataset.Insert({{"id", 4}});
  dataset.Delete(gone);
  EXPECT_EQ(Csv(dataset), "id,ș,c\r\n1,=1+1,-1234.5\r\n2,ț;,\r\n,\"\",\r\n");
  EXPECT_EQ(Csv(dataset, {.separator = ';', .numbers = CsvNumbers::Romanian, .mark = true, .forSpreadsheet = true}),
            "\xEF\xBB\xBFid;ș;c\r\n1;'=1+1;-1234,5\r\n2;\"ț;\";\r\n;\"\";\r\n");
  EXPECT_EQ(Csv(dataset, {.encoding = CsvEncoding::Windows1250, .numbers = CsvNumbers::Romanian, .mark = true}),
            "id,\xBA,c\r\n1,=1+1,\"-1234,5\"\r\n2,\xFE;,\r\n,\"\",\r\n");
  for (const char separator : {'"', '\n', '\r', '0', '\0', '\xBA'}) {
    EXPECT_THROW(static_cast<void>(Csv(dataset, {.separator = separator})), Error) << separator;
  }
  Dataset wide("t", {{"w", FieldType::WideText}});
  wide.Insert({{"w", u"\u0444"}});
  try {
    static_cast<void>(Csv(wide, {.encoding = CsvEncoding::Windows1250}));
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(std::string_view(error.what())
                    .starts_with("Dataset \"t\": campul \"w\", randul 0: FromUtf8: caracterul U+0444"));
  }
}

TEST(Csv, LongValuesAndManyColumnsAreRead) {
  const std::string longText(600'000, 'x');
  std::string header = "c0";
  std::string row = longText;
  for (int i = 1; i < 1024; ++i) {
    header += ",c" + std::to_string(i);
    row += "," + std::to_string(i);
  }
  const Dataset read = Read(header + "\n" + row + "\n", {}, 100'000);
  EXPECT_EQ(read.GetText(RowId{0}, "c0"), longText);
  EXPECT_EQ(read.GetInt64(RowId{0}, "c1023"), 1023);
  EXPECT_THROW(static_cast<void>(Read(header + ",c1024\n")), TextPacketError);
}

TEST(Csv, AFileIsLoadedInPiecesAndNamesTheDataset) {
  const TestFolder folder;
  std::string text = "id,nume\n";
  for (int i = 0; i < 200'000; ++i) {
    text += std::to_string(i) + ",acelasi\n";
  }
  WriteWhole(folder / "extras banca.2.csv", text);
  Allocations::WatchLargest();
  const Dataset read = LoadCsv(folder / "extras banca.2.csv");
  EXPECT_LE(Allocations::Largest(), 260U * 1024);
  EXPECT_EQ(read.Name(), "extras_banca_2");
  EXPECT_EQ(read.RowCount(), 200'000U);
  EXPECT_EQ(LoadCsv(folder / "extras banca.2.csv", {}, "linii").Name(), "linii");
  WriteWhole(folder / "gresit.csv", "a,b\n1\n");
  try {
    static_cast<void>(LoadCsv(folder / "gresit.csv"));
    FAIL();
  } catch (const TextPacketError& error) {
    EXPECT_TRUE(std::string_view(error.what()).ends_with("gresit.csv: linia 2: randul are 1 valori, nu 2"));
  }
  EXPECT_THROW(static_cast<void>(LoadCsv(folder / "lipsa.csv")), OsError);
}

TEST(Csv, WhicheverCallFailsTheFileIsWholeAndALoadSaysSo) {
  const TestFolder folder;
  const auto path = folder / "t.csv";
  const Dataset before = Read("a\n1\n");
  std::string many = "a\n";
  for (int i = 0; i < 50'000; ++i) {
    many += std::to_string(i) + "\n";
  }
  const Dataset after = Read(many);
  for (std::size_t number = 0;; ++number) {
    SaveCsv(before, path, {}, {.flush = false});
    bool failed = false;
    {
      const FailingCalls failing(number);
      EXPECT_TRUE([&] {
        try {
          SaveCsv(after, path);
          return true;
        } catch (const OsError& error) {
          return error.Code() == 5;
        }
      }());
      failed = failing.Failed();
    }
    const std::size_t rows = LoadCsv(path).RowCount();
    EXPECT_TRUE(rows == 50'000 || rows == 1) << number;
    if (!failed) {
      EXPECT_EQ(rows, 50'000U);
      break;
    }
  }
  for (std::size_t number = 0;; ++number) {
    const FailingCalls failing(number);
    try {
      EXPECT_EQ(LoadCsv(path).RowCount(), 50'000U);
      if (!failing.Failed()) {
        EXPECT_GE(number, 10U) << "the file was not read twice";
        break;
      }
      EXPECT_EQ(failing.Seen().at(number), platform::SystemCall::Close) << number;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), 5) << number;
    }
  }
}

TEST(Csv, AFailureAtAnyAllocationLosesNothing) {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 100);
  const std::string text = Csv(dataset);
  const CsvReadOptions types = TypesOf(dataset.GetSchema(), {});
  bool hasFailed = true;
  for (std::uint64_t failing = 0; hasFailed; ++failing) {
    ASSERT_LT(failing, 20'000U);
    std::string rows;
    Allocations::FailFrom(failing);
    try {
      const Dataset typed = Read(text, types);
      const Dataset guessed = Read(text);
      WriteCsv(typed, [](std::span<const std::uint8_t>) {});
      hasFailed = Allocations::Stop();
      ASSERT_FALSE(hasFailed) << "a failure went unnoticed";
      ASSERT_EQ(Show(typed), Show(dataset));
    } catch (const std::bad_alloc&) {
      ASSERT_TRUE(Allocations::Stop());
    }
  }
}

}  // namespace
}  // namespace kiv
