#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "EveryType.h"
#include "PacketBytes.h"
#include "dataset/packet/PlainRows.h"
#include "kivtools/dataset/Xml.h"

namespace kiv {
namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Rows that are taken the short way. Which ones they are only shows in how long reading takes, so it is looked at here.

struct Taken {
  std::string left;  // of the text behind the rows that were taken
  std::uint64_t rowsLeft, bytesLeft;
};

Taken Take(std::string_view rows, std::span<const std::uint16_t> order = {}) {
  const packet::XmlFields fields = {{{"id", FieldType::AutoInc, kKey},
                                     {"s", FieldType::Text, 5},
                                     {"nume_lung_de_tot", FieldType::Text, 0},
                                     {"w", FieldType::WideText, 2},
                                     {"b", FieldType::Boolean},
                                     {"n", FieldType::Memo}},
                                    {"id", "s", "nume_lung_de_tot", "w", "b", "n"}};
  const std::string text = "<rows>" + std::string(rows);
  const PacketSource source = SourceOf(BytesOf(text), text.size());
  const Text operation = "t";
  packet::XmlElements in(source, operation);
  in.ExpectStart("rows");
  store::BlockLoader loader("t", Schema(fields.fields));
  packet::PlainRows plain(fields, loader);
  plain.Follow(order);
  packet::PlainRows::Limits limits{3, 6 * 8 * 3 + 12};
  const char* const left = plain.Take(in, limits);
  EXPECT_EQ(3 - limits.rows, loader.Finish()->GetContents().rowCount) << rows;
  return {{left, in.Ahead().data() + in.Ahead().size()}, limits.rows, limits.bytes};
}

TEST(PlainRows, TakeWhatIsWrittenAsProgramsWriteIt) {
  const struct {
    std::string rows;
    std::uint64_t taken, bytes;
    std::string left;
  } kCases[] = {
      {"<r id=\"1\"/>", 1, 0, ""},
      {" \n\t\r<r id=\"1\"/> \n<r id=\"2\"/> </rows>", 2, 0, " </rows>"},
      {"<r id=\"1\" s=\"a'>b\" nume_lung_de_tot=\"0123456789abcdef\" w=\"ab\" b=\"1\" n=\"\"/>", 1, 24, ""},
      {"<r id=\"1\" n=\"" + std::string(108, 'a') + "\"/>", 1, 108, ""},
      {"<r id=\"1\" n=\"" + std::string(109, 'a') + "\"/>", 0, 0, "all"},
      {"<r id=\"1\" s=\"a'>b\" w=\"\xC8\x99\" b=\"true\" n=\"x\"/>", 1, 7, ""},
      {"<r id=\"1\" s=\"\xC8\x99\xC4\x83\xC8\x9B!!\"/>", 1, 5, ""},
      {"<r id=\"1\" nume_lung_de_tot=\"0123456789a\"/>", 1, 11, ""},
      {"<r id=\"1\"/><r id=\"2\"/><r id=\"3\"/><r id=\"4\"/>", 3, 0, "<r id=\"4\"/>"},
      {"<r id=\"1\"/><r id=\"2\" s=\"abcdef\"/>", 1, 0, "<r id=\"2\" s=\"abcdef\"/>"},
      {"<r id=\"1\"/>\n <r id=\"2\" w=\"abc\"/>", 1, 0, "\n <r id=\"2\" w=\"abc\"/>"},
      {"<r id=\"1\" s=\"\xD1\x8F\"/>", 0, 0, "all"},
      {"<r id=\"x\"/>", 0, 0, "all"},
      {"<r s=\"a\"/>", 0, 0, "all"},
      {"<r id=\"1\" s=\"a&amp;b\"/>", 0, 0, "all"},
      {"<r id=\"1\" s=\"a\tb\"/>", 0, 0, "all"},
      {"<r id=\"1\" s=\"a", 0, 0, "all"},
      {"<r id=\"1\" s='a'/>", 0, 0, "all"},
      {"<r id=\"1\" />", 0, 0, "all"},
      {"<r id=\"1\"></r>", 0, 0, "all"},
      {"<r id=\"1\"/", 0, 0, "all"},
      {"<r id=\"1\" nume_lung_de_toT=\"a\"/>", 0, 0, "all"},
      {"<r  id=\"1\"/>", 0, 0, "all"},
      {"<rr id=\"1\"/>", 0, 0, "all"},
      {"<r s=\"a\" id=\"1\"/>", 0, 0, "all"},
      {"<r state=\"inserted\" id=\"1\"/>", 0, 0, "all"},
  };
  for (const auto& [rows, taken, bytes, left] : kCases) {
    const Taken seen = Take(rows);
    EXPECT_EQ(seen.left, left == "all" ? rows : left) << rows;
    EXPECT_EQ(3 - seen.rowsLeft, taken) << rows;
    EXPECT_EQ(6 * 8 * 3 + 12 - seen.bytesLeft, taken * 6 * 8 + bytes) << rows;
  }
}

TEST(PlainRows, FollowTheOrderOfOtherRows) {
  const struct {
    std::vector<std::uint16_t> order;
    std::string row;
    bool isTaken;
  } kCases[] = {
      {{1, 0}, "<r s=\"a\" id=\"1\"/>", true},          {{1, 0}, "<r id=\"1\" s=\"a\"/>", false},
      {{0, 4}, "<r id=\"1\" s=\"a\" b=\"0\"/>", true},  {{4, 0}, "<r b=\"0\" id=\"1\" s=\"a\" n=\"a\"/>", true},
      {{4, 0}, "<r id=\"1\" s=\"a\" b=\"0\"/>", false}, {{5, 4, 3, 2, 1, 0}, "<r n=\"a\" id=\"1\"/>", true},
  };
  for (const auto& [order, row, isTaken] : kCases) {
    EXPECT_EQ(Take(row, order).left, isTaken ? "" : row);
  }
}

TEST(PlainBytes, AreFoundAsOneByOne) {
  const auto isEnd = [](char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '"' || byte == '&' || byte == '<';
  };
  std::mt19937 random(3);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(random() % 40, 'a');
    for (auto odd = random() % 3; odd > 0 && !text.empty(); --odd) {
      text[random() % text.size()] = static_cast<char>(random());
    }
    const auto end = std::ranges::find_if(text, isEnd) - text.begin();
    const bool isAscii = std::all_of(text.begin(), text.begin() + end, [](char byte) { return byte >= 0; });
    std::string known = text.substr(0, text.find('\0'));
    const packet::KnownBytes bytes(known);
    const std::string behind(packet::XmlPull::kBehind, '\x80');
    const std::string all = text + '\0' + behind;
    const packet::PlainPiece piece = packet::FrontOfValue(all.data());
    ASSERT_EQ(piece.end - all.data(), end) << text;
    ASSERT_EQ(piece.isAscii, isAscii) << text;
    ASSERT_TRUE(bytes.Size() == known.size() && bytes.Begins(all.data())) << text;
    if (!known.empty()) {
      known[random() % known.size()] ^= 1;
      ASSERT_FALSE(bytes.Begins((known + text.substr(known.size()) + '\0' + behind).data())) << text;
      known.pop_back();
      ASSERT_FALSE(bytes.Begins((known + '\0' + behind).data())) << text;
    }
  }
}

// Both ways read the same, and refuse the same at the same place. Of a text that comes byte by byte no row is ever
// there as a whole before it is begun, so all of it is read the long way.

std::string Outcome(std::string_view text, std::size_t step, const ReadLimits& limits) {
  PacketBytes bytes;
  try {
    Dataset read = ReadXml(SourceOf(BytesOf(text), step), limits);
    read.Insert({});  // with a number that no row has
    WriteXml(read, AppendTo(bytes));
    return "read " + std::string(bytes.begin(), bytes.end());
  } catch (const TextPacketError& error) {
    return std::string(error.what()) + " [" + std::to_string(error.Line()) + ", " + std::to_string(error.Column()) +
           ", " + std::to_string(error.Offset()) + "]";
  }
}

/// Texts that a field of the type may have as its attribute, mostly right ones.
const std::vector<std::string>& TextsOf(FieldType type) {
  static const std::vector<std::string> kNumbers = {"0",
                                                    "-0",
                                                    "7",
                                                    "-12",
                                                    "007",
                                                    "32767",
                                                    "-32769",
                                                    "123456789012345678",
                                                    "9223372036854775807",
                                                    "9223372036854775808",
                                                    "1.5",
                                                    "",
                                                    " 1",
                                                    "+1",
                                                    "1.",
                                                    "&#49;"};
  static const std::vector<std::string> kDecimals = {"0",
                                                     "-0",
                                                     "-0.0",
                                                     "12.5",
                                                     "-12.3456",
                                                     "1.23450",
                                                     "1.00001",
                                                     "0.1",
                                                     ".5",
                                                     "5.",
                                                     "1.2.3",
                                                     "12345678901234.5",
                                                     "1234567890123.45",
                                                     "922337203685477.5807",
                                                     "922337203685477.5808",
                                                     "9007199254740993",
                                                     "0.000000000000001",
                                                     "123456789.123456",
                                                     "999999999999999",
                                                     "1e22",
                                                     "1e-5",
                                                     "inf",
                                                     "nan",
                                                     "x",
                                                     ""};
  static const std::vector<std::string> kMoments = {
      "2024-02-29",       "2023-02-29", "29.02.2024", "0001-01-01", "9999-12-31T23:59:59.999",
      "2024-01-01 10:20", "10:20:30",   "24:00:00",   "12:00:00.5", "2024-1-1"};
  static const std::vector<std::string> kOthers = {"1", "true", "0", "2", "{00000001-0002-0003-0405-060708090A0B}",
                                                   "zz"};
  static const std::vector<std::string> kTexts = {"",
                                                  "Iasi",
                                                  "Iași",
                                                  "ţară",
                                                  "a'b>c",
                                                  "a&lt;b",
                                                  "a&#10;b",
                                                  "a\nb",
                                                  "a\tb",
                                                  "a\r\nb",
                                                  "я",
                                                  "\U0001F600",
                                                  "€",
                                                  "un text de mai mult de saisprezece",
                                                  std::string(41, 'x'),
                                                  "<",
                                                  "&nbsp;",
                                                  "exact saispreze."};
  switch (type) {
    case FieldType::Int16:
    case FieldType::Int32:
    case FieldType::Int64:
    case FieldType::AutoInc:
      return kNumbers;
    case FieldType::Currency:
    case FieldType::Double:
      return kDecimals;
    case FieldType::Date:
    case FieldType::Time:
    case FieldType::DateTime:
      return kMoments;
    case FieldType::Boolean:
    case FieldType::Guid:
      return kOthers;
    default:
      return kTexts;
  }
}

class Documents {
 public:
  explicit Documents(std::uint32_t seed) : random_(seed) {
    // Most texts are ones that can be read, or hardly a document would be.
    for (const FieldDef& field : EveryType().Fields()) {
      for (const std::string& text : TextsOf(field.type)) {
        std::string row = "<r";
        for (const auto& [name, usual] : {std::pair{"id", "1"}, std::pair{"s", "s"}}) {
          row += field.name == name ? "" : " " + std::string(name) + "=\"" + usual + "\"";
        }
        row = Head() + row + " " + std::string(field.name) + "=\"" + text + "\"/>" + kTail;
        const bool isRight = Outcome(row, row.size(), {}).starts_with("read ");
        (isRight ? right_ : wrong_)[field.name].push_back(text);
      }
    }
  }

  std::string Next() {
    std::string text = Head();
    const std::uint32_t oddity = Below(40);  // how rare they are
    for (std::uint32_t row = 0, rows = Below(30); row < rows; ++row) {
      AppendRow(text, row, oddity);
    }
    return text + kTail;
  }
  std::uint32_t Below(std::uint32_t count) { return static_cast<std::uint32_t>(random_() % count); }

 private:
  static constexpr const char* kTail = "</rows>\n</table></kivdata>";

  static std::string Head() {
    static const std::string head = [] {
      PacketBytes bytes;
      WriteXml(Dataset("t", EveryType()), AppendTo(bytes));
      const std::string text(bytes.begin(), bytes.end());
      return text.substr(0, text.find("<rows") + 5) + ">\n";
    }();
    return head;
  }
  bool IsOdd(std::uint32_t oddity) { return oddity != 0 && Below(oddity * 20) == 0; }
  template <class Choices>
  std::string Chosen(const Choices& choices) {
    return choices[Below(static_cast<std::uint32_t>(choices.size()))];
  }
  template <class... Choices>
  std::string Usually(std::uint32_t oddity, const char* usual, Choices... others) {
    const std::array choices{others...};
    return IsOdd(oddity) ? Chosen(choices) : usual;
  }

  void AppendRow(std::string& text, std::uint32_t row, std::uint32_t oddity) {
    std::vector<std::string> attributes;
    for (const FieldDef& field : EveryType().Fields()) {
      if (field.type == FieldType::Blob || (field.name != "id" && field.name != "s" && Below(4) == 0)) {
        continue;
      }
      const bool isWrong = Below(3) == 0 && IsOdd(oddity);
      const auto& texts = (isWrong ? wrong_ : right_)[field.name];
      std::string value =
          field.name == "id" && !IsOdd(oddity) ? (oddity % 2 == 0 ? "" : "-") + std::to_string(row + 1) : Chosen(texts);
      const std::string quote = Usually(oddity, "\"", "'");
      attributes.push_back(Usually(oddity, " ", "  ", "\n", "\t", "") + std::string(field.name) +
                           Usually(oddity, "=", " =", "= ") + quote + value + quote);
    }
    if (IsOdd(oddity)) {
      std::ranges::shuffle(attributes, random_);
      if (Below(4) == 0) {
        attributes.push_back(attributes.front());
      }
    }
    text += Usually(oddity, "  <r", "<!-- a --><r", "x<r", "<rr", " \r\n\t<r") +
            Usually(oddity, "", " state=\"inserted\"", " state=\"deleted\"", " p=\"\"");
    for (const std::string& attribute : attributes) {
      text += attribute;
    }
    text += Usually(oddity, "/>\n", " />", "></r>", "/ >", "><v f=\"p\">YQ==</v></r>", "/>");
  }

  std::mt19937 random_;
  std::map<Text, std::vector<std::string>> right_;
  std::map<Text, std::vector<std::string>> wrong_;
};

TEST(PlainRows, AreReadAndRefusedAsTheLongWayDoes) {
  Documents documents(7);
  std::size_t read = 0;
  std::size_t refused = 0;
  for (int i = 0; i < 300; ++i) {
    const std::string text = documents.Next();
    ReadLimits limits;
    if (i % 5 == 0) {
      limits = {.maxRows = documents.Below(30), .maxBytes = documents.Below(5000)};
    }
    const std::string expected = Outcome(text, 1, limits);
    (expected.starts_with("read ") ? read : refused) += 1;
    for (const std::size_t step :
         {std::size_t{2} + documents.Below(60), std::size_t{100} + documents.Below(1000), text.size()}) {
      ASSERT_EQ(Outcome(text, step, limits), expected) << text << "\nin pieces of " << step;
    }
  }
  EXPECT_GT(read, 50U);
  EXPECT_GT(refused, 50U);
}

}  // namespace
}  // namespace kiv
