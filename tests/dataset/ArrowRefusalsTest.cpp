// What other programs hand over is refused by the column's name and the reason, and given back.
#include <gtest/gtest.h>

#include <limits>

#include "HandMadeArrow.h"

namespace kiv {
namespace {

using Made = HandMade;

/// What a stream is refused with; empty where it is taken. All of it has been given back then.
Text Refusal(HandMadeStream& stream, const ArrowImportOptions& options = {}, const ReadLimits& limits = {}) {
  Text why;
  try {
    static_cast<void>(Import(stream, options, limits));
  } catch (const PacketError& error) {
    why = error.what();
  }
  EXPECT_EQ(stream.Live(), 0) << why;
  return why;
}

Text Refusal(const HandMade& column, const ArrowImportOptions& options = {}, const ReadLimits& limits = {}) {
  HandMadeStream stream(column);
  return Refusal(stream, options, limits);
}

TEST(ArrowRefusals, FormatsAreNamed) {
  for (const char* const format :
       {"n",    "e",      "+l",         "+s",   "+r",      "vu",   "vz",      "tsm:UTC", "tdd", "tDm", "tiM",
        "w:15", "d:19,5", "d:38,4,256", "d:19", "d:19,4,", "d:,4", "d:19,-1", "ll",      "",    "\xC8"}) {
    const Text refusal = Refusal(Made{"x", format, 0});
    EXPECT_EQ(refusal, "ImportArrow: coloana \"x\": formatul \"" + Text(format) + "\" nu poate fi preluat") << format;
  }
  Made codes = Made::Of<std::int32_t>("x", "i", {0});
  codes.dictionary = {Made::Of<std::int32_t>("", "i", {5})};
  EXPECT_EQ(Refusal(codes), "ImportArrow: coloana \"x\": dictionarul de \"i\" nu poate fi preluat");
  codes = Made::Of<double>("x", "g", {0});
  codes.dictionary = {Made::Of<std::int32_t>("", "u", {0, 1}, "a")};
  EXPECT_EQ(Refusal(codes), "ImportArrow: coloana \"x\": dictionarul de \"u\" nu poate fi preluat");
}

TEST(ArrowRefusals, ValuesThatAFieldCannotHoldAreRefusedInTheirRow) {
  const struct {
    Made column;
    FieldType type;
    std::string_view why;
  } kCases[] = {
      {Made::Of<std::int32_t>("x", "i", {1, 32'768}), FieldType::Int16,
       "valoarea nu incape intocmai intr-un camp de tip Int16"},
      {Made::Of<std::int32_t>("x", "i", {1, -32'769}), FieldType::Int16, "de tip Int16"},
      {Made::Of<std::int64_t>("x", "l", {1, 1LL << 31U}), FieldType::Int32, "de tip Int32"},
      {Made::Of<std::uint64_t>("x", "L", {1, 1ULL << 63U}), FieldType::Int64, "de tip Int64"},
      {Made::Of<double>("x", "g", {1, std::numeric_limits<double>::quiet_NaN()}), FieldType::Double, "de tip Double"},
      {Made::Of<std::int64_t>("x", "d:19,3", {1, 0, 1LL << 60U, 0}), FieldType::Currency, "de tip Currency"},
      {Made::Of<std::int64_t>("x", "d:19,4", {1, 0, 1, 1}), FieldType::Currency, "de tip Currency"},
      {Made::Of<std::int64_t>("x", "d:19,4", {1, 0, 1, -1}), FieldType::Currency, "de tip Currency"},
      {Made::Of<std::int64_t>("x", "tdm", {0, 1}), FieldType::Date, "de tip Date"},
      {Made::Of<std::int32_t>("x", "tdD", {0, 2'932'897}), FieldType::Date, "de tip Date"},
      {Made::Of<std::int32_t>("x", "tdD", {0, -719'163}), FieldType::Date, "de tip Date"},
      {Made::Of<std::int32_t>("x", "tts", {0, 86'400}), FieldType::Time, "de tip Time"},
      {Made::Of<std::int32_t>("x", "ttm", {0, -1}), FieldType::Time, "de tip Time"},
      {Made::Of<std::int64_t>("x", "ttu", {0, 1}), FieldType::Time, "de tip Time"},
      {Made::Of<std::int64_t>("x", "tsu:", {0, 1}), FieldType::DateTime, "de tip DateTime"},
      {Made::Of<std::int64_t>("x", "tss:", {0, 1LL << 60U}), FieldType::DateTime, "de tip DateTime"},
      {Made::Of<std::int64_t>("x", "tsm:", {0, std::numeric_limits<std::int64_t>::max()}), FieldType::DateTime,
       "de tip DateTime"},
      {Made::Of<std::int32_t>("x", "u", {0, 1, 3}, "aж"), FieldType::Text, "Windows-1250"},
      {Made::Of<std::int32_t>("x", "u", {0, 1, 3}, "abc"), FieldType::Text, "cel mult 1 octeti"},
      {Made::Of<std::int32_t>("x", "u", {0, 1, 2}, "a\xFF"), FieldType::WideText, "textul nu este UTF-8"},
      {Made::Of<std::int32_t>("x", "u", {1, 2, 1}, "abc"), FieldType::Memo,
       "textul incepe sau se termina unde nu poate"},
      {Made::Of<std::int32_t>("x", "u", {0, 0, 1}), FieldType::Memo, "textul incepe sau se termina unde nu poate"},
      {Made::Of<std::int64_t>("x", "Z", {0, 0, 1LL << 31U}, "z"), FieldType::Blob,
       "textul incepe sau se termina unde nu poate"},
      {Made::Of<std::int32_t>("x", "z", {0, 0, -1}, "z"), FieldType::Blob,
       "textul incepe sau se termina unde nu poate"},
  };
  for (const auto& [column, type, why] : kCases) {
    Made shortened = column;
    shortened.length = 2;
    HandMadeStream stream(shortened);
    const std::int32_t size = type == FieldType::Text ? 1 : 0;
    ArrowArrayStream opened = stream.Open();
    try {
      static_cast<void>(ImportArrow(opened, "t", {.fields = {FieldDef("x", type, size)}}));
      ADD_FAILURE() << column.format << " " << why;
    } catch (const PacketError& error) {
      EXPECT_EQ(error.Chunk(), 0);
      EXPECT_EQ(error.Offset(), 1U) << error.what();
      EXPECT_EQ(Text(error.what()).find("ImportArrow: lotul 0, randul 1: "), 0U) << error.what();
      EXPECT_NE(Text(error.what()).find(why), Text::npos) << error.what();
      EXPECT_NE(Text(error.what()).find("\"x\""), Text::npos) << error.what();
    }
    EXPECT_EQ(stream.Live(), 0);
  }
}

TEST(ArrowRefusals, FieldsAreThoseOfTheColumns) {
  const auto refusal = [](const char* format, const FieldDef& field, ArrowAmounts amounts = ArrowAmounts::Decimal) {
    return Refusal(Made{"x", format, 0}, {.fields = {field}, .amounts = amounts});
  };
  EXPECT_EQ(refusal("i", {"y", FieldType::Int32}), "ImportArrow: coloana \"y\" lipseste sau apare de doua ori");
  EXPECT_EQ(refusal("l", {"x", FieldType::Currency}),
            "ImportArrow: coloana \"x\": formatul nu este al unui camp de tip Currency");
  EXPECT_EQ(refusal("l", {"x", FieldType::Currency}, ArrowAmounts::TenThousandths), "");
  EXPECT_EQ(refusal("g", {"x", FieldType::Currency}, ArrowAmounts::TenThousandths).substr(0, 12), "ImportArrow:");
  EXPECT_EQ(refusal("z", {"x", FieldType::Text}).substr(0, 12), "ImportArrow:");
  EXPECT_EQ(refusal("tdD", {"x", FieldType::DateTime}).substr(0, 12), "ImportArrow:");
}

TEST(ArrowRefusals, ContradictionsAreNamed) {
  const Made text = Made::Of<std::int32_t>("t", "u", {0, 1, 2}, "ab");
  Made codes = Made::Of<std::int32_t>("c", "i", {0, 1});
  codes.dictionary = {Made::Of<std::int32_t>("", "u", {0, 1, 2}, "xy")};
  const HandMadeBatch rows = {Made::Of<std::int32_t>("n", "i", {1, 2}), text, codes};
  using Schema = ArrowSchema;
  using Array = ArrowArray;
  const std::pair<std::string_view, void (*)(Schema&)> kSchemas[] = {
      {"schema nu este a unor randuri", [](Schema& s) { s.format = "i"; }},
      {"schema nu este a unor randuri", [](Schema& s) { s.format = nullptr; }},
      {"schema are un numar nepermis de coloane", [](Schema& s) { s.n_children = 0; }},
      {"schema are un numar nepermis de coloane", [](Schema& s) { s.n_children = -1; }},
      {"schema are un numar nepermis de coloane", [](Schema& s) { s.n_children = 1025; }},
      {"schema are un numar nepermis de coloane", [](Schema& s) { s.children = nullptr; }},
      {"o coloana lipseste din schema", [](Schema& s) { s.children[1] = nullptr; }},
      {"coloana \"n\": formatul \"\" nu poate fi preluat", [](Schema& s) { s.children[0]->format = nullptr; }},
      {"coloana \"n\": formatul \"i\" nu poate fi preluat", [](Schema& s) { s.children[0]->n_children = 1; }},
      {"coloana \"t\": lotul", [](Schema& s) { s.children[1]->format = "i"; }},
  };
  const std::pair<std::string_view, void (*)(Array&)> kBatches[] = {
      {"randurile: lungimea sau inceputul nu pot fi ale unei coloane", [](Array& a) { a.length = -1; }},
      {"randurile: lungimea sau inceputul nu pot fi ale unei coloane",
       [](Array& a) { a.offset = std::numeric_limits<std::int64_t>::max(); }},
      {"randurile: are alt numar de zone de memorie decat formatul ei", [](Array& a) { a.n_buffers = 2; }},
      {"randurile: are alt numar de zone de memorie decat formatul ei", [](Array& a) { a.buffers = nullptr; }},
      {"lotul nu are coloanele schemei", [](Array& a) { a.n_children = 2; }},
      {"lotul nu are coloanele schemei", [](Array& a) { a.children = nullptr; }},
      {"lotul nu are coloanele schemei", [](Array& a) { a.dictionary = a.children[0]; }},
      {"un rand intreg este nul", [](Array& a) { a.null_count = 1; }},
      {"coloana \"n\": are mai putine valori decat lotul randuri", [](Array& a) { a.offset = 1; }},
      {"coloana \"n\": lipseste din lot", [](Array& a) { a.children[0] = nullptr; }},
      {"coloana \"n\": lipseste din lot", [](Array& a) { a.children[0]->release = nullptr; }},
      {"coloana \"n\": lungimea sau inceputul nu pot fi ale unei coloane",
       [](Array& a) { a.children[0]->offset = -1; }},
      {"coloana \"n\": lungimea sau inceputul nu pot fi ale unei coloane",
       [](Array& a) { a.children[0]->length = 1LL << 60U; }},
      {"coloana \"n\": numarul de valori nule nu poate fi al coloanei",
       [](Array& a) { a.children[0]->null_count = -2; }},
      {"coloana \"n\": numarul de valori nule nu poate fi al coloanei",
       [](Array& a) { a.children[0]->null_count = 3; }},
      {"coloana \"n\": numarul de valori nule nu este cel al bitilor", [](Array& a) { a.children[0]->null_count = 1; }},
      {"coloana \"n\": are alt numar de zone de memorie decat formatul ei",
       [](Array& a) { a.children[0]->n_buffers = 3; }},
      {"coloana \"n\": nu are valori", [](Array& a) { a.children[0]->buffers[1] = nullptr; }},
      {"coloana \"n\": are alte coloane in ea", [](Array& a) { a.children[0]->n_children = 1; }},
      {"coloana \"t\": are mai putine valori decat lotul randuri", [](Array& a) { a.children[1]->length = 1; }},
      {"coloana \"t\": dictionarul lotului nu este cel al schemei",
       [](Array& a) { a.children[1]->dictionary = a.children[0]; }},
      {"coloana \"c\": dictionarul lotului nu este cel al schemei",
       [](Array& a) { a.children[2]->dictionary = nullptr; }},
      {"coloana \"c\": dictionarul are alt numar", [](Array& a) { a.children[2]->dictionary->n_buffers = 2; }},
      {"coloana \"c\": trimite in afara dictionarului", [](Array& a) { a.children[2]->dictionary->length = 1; }},
  };
  const auto check = [&](std::string_view why, void (*schema)(Schema&), void (*batch)(Array&)) {
    HandMadeStream stream({rows});
    stream.damageSchema = schema == nullptr ? stream.damageSchema : schema;
    stream.damageBatch = batch == nullptr ? stream.damageBatch : batch;
    const Text refusal = Refusal(stream);
    EXPECT_NE(refusal.find(schema != nullptr && why.find("lotul") != why.npos ? "coloana \"t\"" : why), Text::npos)
        << why << " | " << refusal;
  };
  for (const auto& [why, damage] : kSchemas) {
    check(why, damage, nullptr);
  }
  for (const auto& [why, damage] : kBatches) {
    check(why, nullptr, damage);
  }
  HandMadeStream whole({rows});
  EXPECT_EQ(Refusal(whole), "");
  EXPECT_NE(Refusal(rows[0].Nulls({0b01}, 0)).find("numarul de valori nule nu este cel al bitilor"), Text::npos);
  Made negative = codes;
  negative.values[3] = 0x80;
  EXPECT_NE(Refusal(negative).find("trimite in afara dictionarului"), Text::npos);
}

TEST(ArrowRefusals, LimitsHold) {
  HandMadeBatch batch = {Made::Of<std::int32_t>("n", "i", {1, 2}), Made::Of<std::int32_t>("t", "u", {0, 1, 3}, "abc")};
  const auto refusal = [&](const ReadLimits& limits) {
    HandMadeStream stream({batch, batch});
    return Refusal(stream, {}, limits);
  };
  EXPECT_EQ(refusal({.maxRows = 4, .maxFields = 2, .maxBytes = 70}), "");
  EXPECT_NE(refusal({.maxRows = 3}).find("lotul 1, randul 0: sunt mai multe randuri decat este permis"), Text::npos);
  EXPECT_NE(refusal({.maxFields = 1}).find("numar nepermis de coloane"), Text::npos);
  EXPECT_NE(refusal({.maxBytes = 69}).find("lotul 1, randul 1: datele ar ocupa mai multa memorie decat este permis"),
            Text::npos);
  EXPECT_NE(refusal({.maxBytes = 40}).find("lotul 1, randul 0: datele ar ocupa mai multa memorie decat este permis"),
            Text::npos);
}

TEST(ArrowRefusals, FailuresOfTheStreamAreTold) {
  const HandMade column = Made::Of<std::int32_t>("n", "i", {1});
  for (const std::size_t failing : {0U, 1U, 2U}) {
    HandMadeStream stream(column);
    stream.failingCall = failing;
    const Text where = failing == 0 ? "" : "lotul " + std::to_string(failing - 1) + ", randul 0: ";
    const Text told = "ImportArrow: " + where + "sursa a raspuns cu eroarea " + std::to_string(EIO);
    EXPECT_EQ(Refusal(stream), told);
    HandMadeStream telling(column);
    telling.failingCall = failing;
    telling.fault = "rețea";
    EXPECT_EQ(Refusal(telling), told +
                                    ": re\xFE"
                                    "ea");
  }
  HandMadeStream keys({{column}, {column}});
  EXPECT_EQ(Refusal(keys, {.fields = {{"n", FieldType::Int32, kKey}}}),
            "ImportArrow: lotul 1, randul 0: Dataset \"t\": cheia 1 exista deja");
  ArrowArrayStream released{};
  EXPECT_THROW(static_cast<void>(ImportArrow(released, "t")), PacketError);
}

}  // namespace
}  // namespace kiv
