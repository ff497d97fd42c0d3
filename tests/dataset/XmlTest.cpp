#include "Allocations.h"
#include "EveryType.h"
#include "Expect.h"
#include "PacketBytes.h"
#include "Show.h"
#include "dataset/packet/XmlPull.h"
#include "kivtools/dataset/Xml.h"
#include "platform/FailingCalls.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Dataset Read(std::string_view text, std::size_t step = 1000, const ReadLimits& limits = {}) {
  return ReadXml(SourceOf(BytesOf(text), step), limits);
}

std::string Xml(const DatasetView& dataset) {
  PacketBytes bytes;
  WriteXml(dataset, AppendTo(bytes));
  return {bytes.begin(), bytes.end()};
}

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<kivdata version=\"1\" kind=\"offline\">\n"
    " <table name=\"linii\">\n"
    "  <field name=\"id\" type=\"autoinc\" key=\"1\"/>\n"
    "  <field name=\"partener\" type=\"text\" size=\"40\" required=\"1\"/>\n"
    "  <field name=\"suma\" type=\"currency\"/>\n"
    "  <field name=\"obs\" type=\"memo\"/>\n"
    "  <rows>\n";
constexpr std::string_view kTail = "  </rows>\n </table>\n</kivdata>\n";

std::string Whole(std::string_view rows) {
  return std::string(kHead).append(rows).append(kTail);
}

Dataset Lines() {
  Dataset lines("linii", {{"id", FieldType::AutoInc, kKey},
                          {"partener", FieldType::Text, 40, kRequired},
                          {"suma", FieldType::Currency},
                          {"obs", FieldType::Memo}});
  lines.Insert({{"id", 1}, {"partener", "Şapte Arini"_ro}, {"suma", 1234.56_lei}});
  lines.Insert({{"id", 2}, {"partener", "<&>\"'\t\r\n"}, {"suma", 12.5_lei}, {"obs", ""}});
  lines.Insert({{"id", 3}, {"partener", "Y"}, {"obs", "a\x01"}});
  lines.Insert({{"id", 4}, {"partener", "Z"}});
  lines.Changes().AcceptChanges();
  lines.Update(RowId{1}, {{"partener", "X"}, {"suma", 15_lei}, {"obs", Null{}}});
  lines.Delete(RowId{2});
  lines.Update(RowId{3}, {{"suma", 1_lei}, {"obs", "b"}});
  lines.Insert({{"partener", "nou"}});
  return lines;
}

TEST(Xml, IsWrittenAsProgramsOfOtherMakersReadIt) {
  const std::string text = Whole(
      "   <r id=\"1\" partener=\"Șapte Arini\" suma=\"1234.56\"/>\n"
      "   <r state=\"modified\" id=\"2\" partener=\"X\" suma=\"15\">"
      "<was partener=\"&lt;&amp;&gt;&quot;'&#9;&#13;&#10;\" suma=\"12.5\" obs=\"\"/></r>\n"
      "   <r state=\"deleted\" id=\"3\" partener=\"Y\"><v f=\"obs\">YQE=</v></r>\n"
      "   <r state=\"modified\" id=\"4\" partener=\"Z\" suma=\"1\" obs=\"b\"><was null=\"suma obs\"/></r>\n"
      "   <r state=\"inserted\" id=\"-1\" partener=\"nou\"/>\n");
  const Dataset lines = Lines();
  EXPECT_EQ(Xml(lines), text);
  for (const std::size_t step : {1U, 7U, 1000U}) {
    Dataset read = Read(text, step);
    EXPECT_EQ(Show(read), Show(lines));
    EXPECT_EQ(Xml(read), text);
    read.Changes().CancelChanges();
    EXPECT_EQ(read.GetText(*read.Find(2), "partener"), "<&>\"'\t\r\n");
    EXPECT_EQ(read.GetText(*read.Find(3), "obs"), "a\x01");
    EXPECT_TRUE(read.IsNull(*read.Find(4), "obs") && read.RowCount() == 4);
  }
}

TEST(Xml, RowsOfEveryTypeComeBackAsTheyWere) {
  for (const bool withHeaps : {false, true}) {
    Dataset dataset = withHeaps ? WithHeaps() : Dataset("arhiva", EveryType());
    AddRows(dataset, 9000);
    Edit(dataset, 5);
    dataset.Set(*dataset.NextRow({}), "w", u"\uFFFE\x01\U0001F600");
    dataset.Set(*dataset.NextRow({}), "n", Text(2'000'000, '"'));
    const std::string text = Xml(dataset);
    Dataset read = Read(text, 100'000);
    EXPECT_EQ(Xml(read), text);
    EXPECT_EQ(read.CountOf(RowState::Modified), dataset.CountOf(RowState::Modified));
    EXPECT_EQ(read.CountOf(RowState::Deleted), dataset.CountOf(RowState::Deleted));
    EXPECT_EQ(read.CountOf(RowState::Inserted), dataset.CountOf(RowState::Inserted));
    read.Changes().CancelChanges();
    dataset.Changes().CancelChanges();
    EXPECT_EQ(Xml(read), Xml(dataset));
  }
}

TEST(Xml, NamesThatNoAttributeCanHaveAreNumbered) {
  Dataset dataset("t", {{"state", FieldType::Int32, kKey},
                        {"null", FieldType::Int32},
                        {"XmlId", FieldType::Text, 0, kNoCheck},
                        {"f0", FieldType::Text, 5, kReadOnly | kCheck, Text("\x01")},
                        {"Şt"_ro, FieldType::Text, 5, FieldFlags::None, Text("\"a\""), Collation::Binary}});
  dataset.Insert({{"state", 1}, {"null", 2}, {"XmlId", "x"}, {"f0", "y"}, {"Şt"_ro, "z"}});
  const std::string text = Xml(dataset);
  EXPECT_NE(text.find("<field name=\"state\" attr=\"f0\" type=\"int32\" key=\"1\"/>"), std::string::npos) << text;
  EXPECT_NE(text.find("<field name=\"XmlId\" attr=\"f2\" type=\"text\" check=\"0\"/>"), std::string::npos);
  EXPECT_NE(
      text.find(
          "<field name=\"f0\" attr=\"f3\" type=\"text\" size=\"5\" readonly=\"1\" check=\"1\" default64=\"AQ==\"/>"),
      std::string::npos);
  EXPECT_NE(
      text.find(
          "<field name=\"Șt\" attr=\"Şt\" type=\"text\" size=\"5\" collation=\"binary\" default=\"&quot;a&quot;\"/>"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("f0=\"1\" f1=\"2\" f2=\"x\" f3=\"y\" Şt=\"z\""), std::string::npos);
  EXPECT_EQ(Xml(Read(text)), text);
}

TEST(Xml, Windows1250IsReadWhereTheTextSaysSo) {
  std::string text = Whole(
      "   <r id=\"1\" partener=\"\xAA"
      "apte &#537;\" obs=\"\x8A\x80\"/>\n");
  text.replace(text.find("UTF-8"), 5, "Windows-1250");
  for (const std::size_t step : {1U, 100'000U}) {
    const Dataset read = Read(text, step);
    EXPECT_EQ(read.GetText(RowId{0}, "partener"), "Şapte ş"_ro);
    EXPECT_EQ(read.GetText(RowId{0}, "obs"), "\x8A\x80");
  }
}

TEST(Xml, KeysAreTakenAfterTheyAreLeft) {
  Dataset dataset("t", {{"k", FieldType::Text, 5, kKey}, {"n", FieldType::Int32}});
  for (const char* key : {"a", "b", "c", "d"}) {
    dataset.Insert({{"k", key}});
  }
  dataset.Changes().AcceptChanges();
  dataset.Delete(RowId{3});
  dataset.Set(RowId{2}, "k", "d");
  dataset.Update(RowId{1}, {{"k", "c"}, {"n", 5}});
  dataset.Set(RowId{0}, "k", "b");
  dataset.Insert({{"k", "a"}});
  Dataset read = Read(Xml(dataset));
  EXPECT_EQ(Show(read), Show(dataset));
  while (read.Changes().UndoLast()) {
  }
  dataset.Changes().CancelChanges();
  EXPECT_EQ(Show(read).substr(0, Show(dataset).size()), Show(dataset));
}

TEST(Xml, RowsThatHaveExchangedTheirKeysAreReadAsTheyAreAndWere) {
  for (const std::uint32_t size : {2U, 3U, 5U}) {
    Dataset dataset("t", {{"k", FieldType::Text, 5, kKey}, {"n", FieldType::Int32}});
    for (std::uint32_t row = 0; row < size + 2; ++row) {
      dataset.Insert({{"k", std::to_string(row)}});
    }
    dataset.Changes().AcceptChanges();
    // A ring, and a row outside that takes the key of one which leaves.
    dataset.Set(RowId{0}, "k", "x");
    for (std::uint32_t row = 1; row < size; ++row) {
      dataset.Set(RowId{row}, "k", std::to_string(row - 1));
    }
    dataset.Update(RowId{0}, {{"k", std::to_string(size - 1)}, {"n", 7}});
    dataset.Set(RowId{size}, "k", "y");
    dataset.Set(RowId{size + 1}, "k", std::to_string(size));
    const std::string written = Xml(dataset);
    Dataset read = Read(written);
    EXPECT_EQ(Xml(read), written);
    EXPECT_EQ(Show(read), Show(dataset));
    EXPECT_EQ(read.Changes().MakeDelta().Count(), size + 2);
    const Dataset again = ReadBack(Written(read));
    EXPECT_EQ(Xml(again), written);
    read.Changes().RevertRow(RowId{size + 1});
    read.Changes().UndoLast();
    EXPECT_EQ(Xml(read), written);
    while (read.Changes().UndoLast()) {
    }
    dataset.Changes().CancelChanges();
    EXPECT_EQ(Show(read).substr(0, Show(dataset).size()), Show(dataset));
  }
}

TEST(Xml, WhatIsNotKnownOrNotAllowedIsRefusedAtItsPlace) {
  const std::string row = "   <r id=\"1\" partener=\"a\"/>\n";
  const auto replaced = [&](std::string_view from, std::string_view to) {
    std::string text = Whole(row);
    return text.replace(text.find(from), from.size(), to);
  };
  const struct {
    std::string text;
    std::uint64_t line, column;
    std::string_view message;
  } kCases[] = {
      {"", 1, 1, "textul este retezat"},
      {"\xEF\xBB\xBF", 1, 4, "textul este retezat"},
      {"<kivdata", 1, 1, "textul este retezat"},
      {"<x/>", 1, 1, "trebuie elementul <kivdata>"},
      {replaced("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", "<!DOCTYPE a [<!ENTITY b \"c\">]>"), 1, 1,
       "declaratii DOCTYPE, CDATA si instructiuni de prelucrare nu sunt permise"},
      {replaced("UTF-8", "UTF-16"), 1, 1,
       "declaratia XML nu este una cunoscuta: version 1.0, encoding UTF-8 sau windows-1250"},
      {replaced("\"1.0\"", "\"1.1\""), 1, 1,
       "declaratia XML nu este una cunoscuta: version 1.0, encoding UTF-8 sau windows-1250"},
      {replaced("version=\"1\"", "version=\"2\""), 2, 1, "textul este de alt fel sau de alta versiune"},
      {replaced("offline", "delta"), 2, 1, "textul este de alt fel sau de alta versiune"},
      {replaced("kind=", "fel=\"\" kind="), 2, 1, "un atribut nu este cunoscut sau apare de doua ori"},
      {replaced("\"autoinc\"", "\"numar\""), 4, 3, "\"numar\" nu este cunoscut"},
      {replaced("size=\"40\"", "size=\"x\""), 5, 3, "\"x\" nu este o lungime"},
      {replaced("required=\"1\"", "required=\"da\""), 5, 3, "\"da\" nu este 0 sau 1"},
      {replaced("name=\"obs\"", "name=\"ID\""), 8, 3, "apare de doua ori"},
      {replaced("name=\"obs\"", "name=\"obs\" attr=\"alt\""), 7, 3, "campul \"obs\" are alt atribut decat obs"},
      {replaced("size=\"40\"", "size=\"40\" default64=\"A\""), 5, 3, "valoarea implicita nu este una a campului"},
      {replaced("<rows>", "<row>"), 8, 3, "trebuie elementul <rows>"},
      {replaced("<rows>", "<rows><s/>"), 8, 9, "trebuie elementul <r>"},
      {replaced("<rows>", "<rows><r><was/><a/>"), 8, 12, "randul are un element care nu este cunoscut sau nu are loc"},
      {replaced("\"a\"/>", "\"a\"><v f=\"obs\"><b/></v></r>"), 9, 38, "elementul nu are voie sa tina altele"},
      {replaced("?>", ""), 1, 1, "declaratia XML nu se termina"},
      {"<?xml version=\"1.0\"" + std::string(5000, ' ') + "?>", 1, 1, "declaratia XML nu se termina"},
      {"\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"windows-1250\"?><kivdata/>", 1, 4,
       "declaratia XML spune Windows-1250, semnul din fata UTF-8"},
      {replaced("<rows>", "<rows/>"), 9, 4, "elementul nu are voie sa tina altele"},
      {replaced("<rows>", "<rows>x"), 8, 9, "text unde trebuie elemente"},
      {replaced("partener=\"a\"", "partener=\"a\" id=\"2\""), 9, 4, "campul \"id\" are doua valori"},
      {replaced("partener=\"a\"", "nume=\"a\""), 9, 14, "\"nume\" nu este un camp"},
      {replaced("id=\"1\"", "id=\"1x\""), 9, 11, "campul \"id\": \"1x\" nu este o valoare de tip AutoInc"},
      {replaced("\"a\"", "\"я\""), 9, 24, "campul \"partener\": \"?\" nu este o valoare de tip Text"},
      {replaced(" partener=\"a\"", ""), 9, 4, "campul \"partener\" trebuie completat"},
      {replaced("\"a\"", "\"a<b\""), 9, 25, "\"<\" in valoarea unui atribut"},
      {replaced("\"a\"", "\"&nbsp;\""), 9, 24, "referinta nu este una dintre cele permise"},
      {replaced("\"a\"", "\"&#1;\""), 9, 24, "referinta nu este una dintre cele permise"},
      {replaced("\"a\"", "\"&#xD800;\""), 9, 24, "referinta nu este una dintre cele permise"},
      {replaced("\"a\"", "\"\x01\""), 9, 24, "caracter nepermis in XML"},
      {replaced("\"a\"", "\"\xC8\""), 9, 24, "secventa UTF-8 gresita"},
      {replaced("\"a\"", "a"), 9, 14, "atributul nu este scris cum trebuie"},
      {replaced("\"1\" partener", "\"1\"partener"), 9, 13, "eticheta nu este scrisa cum trebuie"},
      {replaced("<r id", "<r state=\"nou\" id"), 9, 4, "\"nou\" nu este cunoscut"},
      {replaced("<r id", "<r state=\"modified\" id"), 9, 4, "un rand modificat are un element <was>, si numai el"},
      {replaced("\"a\"/>", "\"a\"><was id=\"2\"/></r>"), 9, 27,
       "randul are un element care nu este cunoscut sau nu are loc"},
      {replaced("<r id=\"1\" partener=\"a\"/>",
                "<r state=\"modified\" id=\"1\" partener=\"a\"><was partener=\"a\"/></r>"),
       9, 63, "campul \"partener\" a fost ce este si acum"},
      {replaced("\"a\"/>", "\"a\"><v f=\"obs\">A</v></r>"), 9, 39,
       "campul \"obs\": \"A\" nu este o valoare de tip Memo"},
      {replaced("\"a\"/>", "\"a\"><v f=\"alt\">AAAA</v></r>"), 9, 27, "\"alt\" nu este un camp"},
      {replaced("\"a\"/>", "\"a\"></s>"), 9, 27, "eticheta de sfarsit nu este a elementului inceput"},
      {replaced("   <r", "<!-- a -- b --><r"), 9, 8, "\"--\" in interiorul unui comentariu"},
      {replaced("   <r", "&#32;<r"), 9, 1, "referintele sunt permise numai in atribute"},
      {Whole(row + row), 13, 1, "cheia 1 exista deja"},
      {Whole(row) + "<a/>", 13, 1, "al doilea element radacina"},
      {Whole(row) + "x", 13, 1, "text in afara elementelor"},
      {Whole(row).substr(0, Whole(row).size() - 12), 11, 10, "textul este retezat"},
  };
  for (const auto& [text, line, column, message] : kCases) {
    for (const std::size_t step : {1U, 1000U}) {
      try {
        static_cast<void>(Read(text, step));
        ADD_FAILURE() << message;
      } catch (const TextPacketError& error) {
        EXPECT_EQ(error.Line(), line) << error.what();
        EXPECT_EQ(error.Column(), column) << error.what();
        EXPECT_TRUE(std::string_view(error.what()).starts_with("ReadXml: linia ")) << error.what();
        EXPECT_NE(std::string_view(error.what()).find(message), std::string_view::npos) << error.what();
      }
    }
  }
}

TEST(Xml, AByteThatIsNotAllowedIsFoundWhereverItStands) {
  const auto placeOf = [](const std::string& text) -> std::uint64_t {
    try {
      static_cast<void>(Read(text, text.size()));
    } catch (const TextPacketError& error) {
      const std::string_view before = std::string_view(text).substr(0, static_cast<std::size_t>(error.Offset()));
      EXPECT_EQ(error.Line(), 1 + static_cast<std::uint64_t>(std::ranges::count(before, '\n')));
      return error.Offset();
    }
    return 0;
  };
  const std::string blanks =
      std::string(70, '\n') + std::string(70, ' ') + std::string(70, '\t') + std::string(900, '\n');
  const std::string text = "<kivdata version=\"1\" kind=\"offline\">" + blanks +
                           "<table name=\"t\"><field name=\"a\" " + "type=\"text\"/><rows/></table></kivdata>";
  EXPECT_EQ(placeOf(text), 0U);
  for (std::size_t at = text.find('\n'); at < text.size(); at += at < 300 ? 1 : 37) {
    for (const char bad : {'\x01', '\x08', '\x0B', '\x0C', '\x0E', '\x1F', '\x80', '\xFF', '\0'}) {
      std::string broken = text;
      broken[at] = bad;
      ASSERT_EQ(placeOf(broken), at) << static_cast<int>(bad);
    }
  }
}

TEST(Xml, EveryPrefixIsRefused) {
  const std::string text = Xml(Lines());
  for (std::size_t size = 0; size + 1 < text.size(); ++size) {
    EXPECT_THROW(static_cast<void>(Read(std::string_view(text).substr(0, size))), TextPacketError) << size;
  }
  static_cast<void>(Read(std::string_view(text).substr(0, text.size() - 1)));
}

TEST(Xml, DepthLengthAndCountsAreLimited) {
  std::string deep;
  for (int i = 0; i < 17; ++i) {
    deep += "<a>";
  }
  const Text operation = "t";
  const PacketSource source = SourceOf(BytesOf(deep));
  packet::XmlPull pull(source, operation);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(pull.Next(), packet::XmlPull::Event::Start);
  }
  ExpectError<TextPacketError>([&] { static_cast<void>(pull.Next()); },
                               "t: linia 1, coloana 49: elementele sunt prea adanci");
  const auto refusal = [&](const std::string& text, const ReadLimits& limits = {}) -> Text {
    try {
      static_cast<void>(Read(text, 1'000'000, limits));
    } catch (const TextPacketError& error) {
      return error.what();
    }
    return "";
  };
  std::string many = "<kivdata";
  for (int i = 0; i < 1101; ++i) {
    many += " a" + std::to_string(i) + "=''";
  }
  EXPECT_NE(refusal(many + "/>").find("elementul are prea multe atribute"), Text::npos);
  const std::string rows = Whole("<r id=\"1\" partener=\"abc\"/><r id=\"2\" partener=\"abc\"/>");
  EXPECT_NE(refusal(rows, {.maxRows = 1}).find("textul are mai multe randuri decat este permis"), Text::npos);
  EXPECT_NE(refusal(rows, {.maxFields = 3}).find("textul are mai multe campuri decat este permis"), Text::npos);
  EXPECT_NE(refusal(rows, {.maxBytes = 69}).find("textul ar ocupa mai multa memorie decat este permis"), Text::npos);
  EXPECT_EQ(refusal(rows, {.maxRows = 2, .maxFields = 4, .maxBytes = 70}), "");
  EXPECT_NE(refusal(Whole("<r id=\"1\" partener=\"" + std::string(33U << 20U, 'x') + "\"/>"))
                .find("un element sau un comentariu este mai lung de 16 MiB"),
            Text::npos);
  EXPECT_NE(refusal(Whole("<r id=\"1\" partener=\"a\"><v f=\"obs\">" + std::string(4U << 20U, 'A') + "</v></r>"),
                    {.maxBytes = 1'000'000})
                .find("textul ar ocupa mai multa memorie decat este permis"),
            Text::npos);
  EXPECT_EQ(
      Read(Whole(
               "<!-- un comentariu --><r id=\"1\" partener='a\"\n\tb'><!---->\n<v f=\"obs\"> YQ<!-- a -->==\n</v></r>"))
          .GetText(RowId{0}, "partener"),
      "a\"  b");
}

TEST(Xml, WhicheverCallFailsTheFileIsWholeAndALoadSaysSo) {
  const TestFolder folder;
  const auto path = folder / "linii.xml";
  Dataset few = Lines();
  Dataset many("arhiva", EveryType());
  AddRows(many, 3000);
  for (std::size_t number = 0;; ++number) {
    SaveXml(few, path, {.flush = false});
    bool failed = false;
    {
      const FailingCalls failing(number);
      EXPECT_TRUE([&] {
        try {
          SaveXml(many, path);
          return true;
        } catch (const OsError& error) {
          return error.Code() == 5;
        }
      }());
      failed = failing.Failed();
    }
    const std::size_t rows = LoadXml(path).RowCount();
    EXPECT_TRUE(rows == 3000 || rows == few.RowCount()) << number;
    if (!failed) {
      EXPECT_EQ(rows, 3000U);
      break;
    }
  }
  for (std::size_t number = 0;; ++number) {
    const FailingCalls failing(number);
    try {
      EXPECT_EQ(LoadXml(path).RowCount(), 3000U);
      if (!failing.Failed()) {
        EXPECT_GT(number, 3U);
        break;
      }
      EXPECT_EQ(failing.Seen().at(number), platform::SystemCall::Close) << number;
    } catch (const OsError& error) {
      EXPECT_EQ(error.Code(), 5) << number;
    }
  }
}

TEST(Xml, AFailureAtAnyAllocationLosesNothing) {
  const Dataset lines = Lines();
  const std::string text = Xml(lines);
  bool hasFailed = true;
  for (std::uint64_t failing = 0; hasFailed; ++failing) {
    ASSERT_LT(failing, 20'000U);
    Allocations::FailFrom(failing);
    try {
      const Dataset read = Read(text);
      WriteXml(read, [](std::span<const std::uint8_t>) {});
      hasFailed = Allocations::Stop();
      ASSERT_FALSE(hasFailed) << "a failure went unnoticed";
      ASSERT_EQ(Show(read), Show(lines));
    } catch (const std::bad_alloc&) {
      ASSERT_TRUE(Allocations::Stop());
    }
  }
}

}  // namespace
}  // namespace kiv
