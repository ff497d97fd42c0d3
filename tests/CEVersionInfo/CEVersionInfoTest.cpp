#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "CEVersionInfo/MemorySource.h"
#include "kivtools/CEVersionInfo.h"
#include "kivtools/WinUtil/Versions.h"
#include "tools/CEVersionInfo/ExecutableImage.h"
#include "tools/CEVersionInfo/VersionResource.h"
#include "tools/CEVersionInfo/VersionTexts.h"

namespace kiv {
namespace {

using namespace literals;
using testing::Each;
using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

constexpr TextView kNone = "<info not available>";
constexpr TextView kNoneJoined = "<info not available>.<info not available>.<info not available>.<info not available>";

std::filesystem::path VersionFile(const std::string& name) {
  return std::filesystem::path(KIV_VERSION_FILES) / (name + ".dll");
}

#define SKIP_WITHOUT(name)                   \
  if (!exists(VersionFile(name)))            \
  GTEST_SKIP() << "no " << VersionFile(name) \
               << ": install the packages binutils-mingw-w64-i686 and binutils-mingw-w64-x86-64"

Bytes Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

version::VersionTexts Read(const Bytes& image, std::uint16_t userLanguage = 0, std::size_t limit = 65'536) {
  version::MemorySource source(image);
  auto texts = version::ReadVersionTexts(source, userLanguage);
  EXPECT_LE(source.read, limit);
  return texts;
}

StringList All(const TCEVersionInfo& info) {
  return {info.CompanyName,     info.FileDescription,  info.FileVersion, info.Internalname,   info.LegalCopyright,
          info.LegalTradeMarks, info.OriginalFilename, info.ProductName, info.ProductVersion, info.Comments,
          info.MajorVersion,    info.MinorVersion,     info.Release,     info.Build};
}

TEST(TCEVersionInfo, ReadsRealFiles) {
  const Text n(kNone);
  std::string missing = "complet_i686";
  const struct {
    std::string name;
    StringList expected;
  } kCases[] = {
      {"complet",
       {"Ţară şi Ăâî SRL"_ro, "Facturi – în lei"_ro, "5.12.0.341", "facturi", "© 2024"_ro, "Marcă®"_ro, "facturi.dll",
        "Virgulă: ţş, ?"_ro, "5.12", "", "5", "12", "0", "341"}},
      {"virgule", {"", "", "5, 12, 0, 341", "", "", "", "", "", "", "", "5", " 12", " 0", " 341"}},
      {"fara_traducere", {"Prima", "", "1.2", "", "", "", "", "", "", "", "1", "", "", "2"}},
      {"alta_tabela", {"", "", "", "", "", "", "", "", "", "", n, n, n, n}},
      {"fara_versiune", StringList(14, n)},
      {"cu_nume", StringList(14, n)},
  };
  for (const auto& [name, expected] : kCases) {
    for (const std::string machine : {"_i686", "_x86_64"}) {
      TCEVersionInfo info;
      info.GetInfo(VersionFile(name + machine).string());
      if (exists(VersionFile(name + machine))) {
        EXPECT_EQ(All(info), expected) << name << machine;
      } else {
        missing = name + machine;
      }
    }
  }
  SKIP_WITHOUT(missing);
}

TEST(TCEVersionInfo, FixedInfoFollowsTheFileReadLast) {
  SKIP_WITHOUT("complet_i686");
  TCEVersionInfo info;
  info.GetInfo(VersionFile("complet_i686").string());
  const FixedFileInfo& fixed = info.FixedInfo();
  EXPECT_EQ(fixed.signature, 0xFEEF04BDU);
  EXPECT_EQ(fixed.fileVersionHigh, 0x0005000CU);
  EXPECT_EQ(fixed.fileVersionLow, 341U);
  EXPECT_EQ(fixed.productVersionLow, 0x00070008U);
  EXPECT_EQ(fixed.fileType, 2U);
  info.GetInfo(VersionFile("fara_versiune_i686").string());
  EXPECT_EQ(fixed.signature, 0U);
}

TEST(TCEVersionInfo, FreeFunctionsGiveTheSame) {
  SKIP_WITHOUT("complet_i686");
  const Text path = VersionFile("complet_i686").string();
  EXPECT_EQ(NamedFileVersionInfo(path), "5.12.0.341");
  EXPECT_EQ(GetFileVersionKiv(path), "5.12.0.341");
}

TEST(TCEVersionInfo, TakesAnythingThatIsNoExecutable) {
  const Text folder = std::filesystem::temp_directory_path().string();
  for (const Text& path : {Text(), Text("no such file"), folder, Text("/dev/zero"), Text("/dev/tty"), Text("NUL"),
                           Text("a\0b", 3), Text(100'000, 'x')}) {
    EXPECT_EQ(NamedFileVersionInfo(path), kNoneJoined) << path.substr(0, 40);
    EXPECT_EQ(GetFileVersionKiv(path), kNone) << path.substr(0, 40);
  }
}

TEST(VersionLanguages, NeutralThenTheUsersThenEnglishThenTheFirst) {
  SKIP_WITHOUT("limbi_i686");
  const Bytes several = Contents(VersionFile("limbi_i686"));
  const Bytes withNeutral = Contents(VersionFile("neutra_i686"));
  const struct {
    std::uint16_t user;
    TextView product;
  } kCases[] = {{0x0418, "romana"},    {0x040C, "franceza"}, {0x080C, "franceza"},
                {0x0809, "britanica"}, {0x0407, "engleza"},  {0, "engleza"}};
  for (const auto& [user, product] : kCases) {
    EXPECT_EQ(Read(several, user).strings[7], product) << user;
    EXPECT_EQ(Read(withNeutral, user).strings[7], "neutra") << user;
  }
}

TEST(VersionDamage, EveryCutFileIsReadWholeOrNotAtAll) {
  SKIP_WITHOUT("complet_i686");
  const Bytes whole = Contents(VersionFile("complet_i686"));
  const auto expected = Read(whole).strings;
  std::size_t available = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const auto strings = Read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))).strings;
    available += strings == expected ? 1 : 0;
    if (strings != expected) {
      ASSERT_THAT(strings, Each(kNone)) << length;
      ASSERT_EQ(available, 0U) << length;
    }
  }
  EXPECT_LT(available, 600U) << "only the padding after the resource may be missing";
}

TEST(VersionDamage, EveryWrongByteEndsWell) {
  SKIP_WITHOUT("complet_i686");
  for (const std::string name : {"complet_i686", "neutra_x86_64"}) {
    Bytes image = Contents(VersionFile(name));
    for (std::size_t at = 0; at < image.size(); ++at) {
      const std::uint8_t right = image[at];
      for (const int wrong : {0x00, 0xFF, 0x80, right ^ 1, right + 4}) {
        image[at] = static_cast<std::uint8_t>(wrong);
        const auto texts = Read(image);
        ASSERT_EQ(texts.strings[0] == kNone, texts.strings[9] == kNone) << name << " at " << at;
      }
      image[at] = right;
    }
  }
}

/// A block of a version resource, its children already laid out.
Bytes MakeBlock(std::u16string_view key, std::uint16_t kind, const Bytes& value, const std::vector<Bytes>& children,
                int valueLength = -1) {
  Bytes block;
  const auto put16 = [&block](std::size_t number) {
    block.push_back(static_cast<std::uint8_t>(number));
    block.push_back(static_cast<std::uint8_t>(number >> 8U));
  };
  const auto append = [&block](const Bytes& more) {
    block.resize((block.size() + 3) / 4 * 4);
    block.insert(block.end(), more.begin(), more.end());
  };
  put16(0);
  put16(valueLength >= 0 ? static_cast<std::size_t>(valueLength) : kind == 1 ? value.size() / 2 : value.size());
  put16(kind);
  for (const char16_t character : key) {
    put16(character);
  }
  put16(0);
  if (!value.empty()) {
    append(value);
  }
  for (const Bytes& child : children) {
    append(child);
  }
  block[0] = static_cast<std::uint8_t>(block.size());
  block[1] = static_cast<std::uint8_t>(block.size() >> 8U);
  return block;
}

Bytes Wide(std::string_view ascii) {
  Bytes wide;
  for (const char character : ascii) {
    wide.push_back(static_cast<std::uint8_t>(character));
    wide.push_back(0);
  }
  return wide;
}

Bytes MakeResource(const Bytes& text) {
  return MakeBlock(u"VS_VERSION_INFO", 0, Bytes(52),
                   {MakeBlock(u"StringFileInfo", 1, {}, {MakeBlock(u"t", 1, {}, {text})})});
}

TEST(VersionBlocks, TakesWhatCompilersWrite) {
  using namespace std::string_view_literals;
  const Bytes abc = Wide("abc\0"sv);
  const struct {
    const char* what;
    Bytes text;
    TextView expected;
  } kCases[] = {
      {"as it should be", MakeBlock(u"K", 1, abc, {}), "abc"},
      {"length in bytes", MakeBlock(u"K", 1, abc, {}, 8), "abc"},
      {"length far too large", MakeBlock(u"K", 1, abc, {}, 0xFFFF), "abc"},
      {"length without the zero, no zero", MakeBlock(u"K", 1, Wide("abc"), {}), "abc"},
      {"length shorter than the text", MakeBlock(u"K", 1, abc, {}, 2), "ab"},
      {"claims to be binary", MakeBlock(u"K", 0, abc, {}, 4), "abc"},
      {"no value", MakeBlock(u"K", 1, {}, {}), ""},
      {"key in other letters", MakeBlock(u"k", 1, abc, {}), "abc"},
      {"another key", MakeBlock(u"KK", 1, abc, {}), ""},
  };
  for (const auto& [what, text, expected] : kCases) {
    const auto resource = version::VersionResource::Parse(MakeResource(text));
    ASSERT_TRUE(resource) << what;
    EXPECT_EQ(resource->FirstTableText("K"), expected) << what;
    EXPECT_EQ(resource->QueryText("\\StringFileInfo\\T\\k"), expected) << what;
    EXPECT_EQ(resource->QueryText("\\\\StringFileInfo\\\\t\\\\\\K"), expected) << what;
    EXPECT_EQ(resource->Query("\\").size(), 52U) << what;
    EXPECT_TRUE(resource->Query("\\StringFileInfo\\t\\K\\more").empty()) << what;
  }
}

TEST(VersionBlocks, OnlyARootOfTheRightNameCounts) {
  const Bytes value(52);
  EXPECT_TRUE(version::VersionResource::Parse(MakeBlock(u"vs_version_info", 0, value, {})));
  for (const auto* const key : {u"VS_VERSION_INF", u"VS_VERSION_INFX", u"VS_VERSION_INFO_", u""}) {
    EXPECT_FALSE(version::VersionResource::Parse(MakeBlock(key, 0, value, {})));
  }
}

TEST(VersionBlocks, ChildrenMayCountThePaddingButNotMore) {
  const Bytes odd = MakeBlock(u"KK", 1, Wide("abc"), {});  // ends two bytes past a multiple of four
  for (int extra = 0; extra <= 6; extra += 2) {
    Bytes text = odd;
    text[0] = static_cast<std::uint8_t>(text[0] + extra);
    const auto resource = version::VersionResource::Parse(MakeResource(text));
    EXPECT_EQ(resource.has_value(), extra <= 2) << extra;
  }
  Bytes padded = MakeResource(MakeBlock(u"K", 1, Wide("ab"), {}));
  padded.resize(padded.size() + 64);  // the resource may be larger than its root says
  EXPECT_TRUE(version::VersionResource::Parse(padded));
}

constexpr std::uint8_t kResourceSection[8] = {'.', 'r', 's', 'r', 'c'};

/// The file offset of the resources in a small image, found by their section's name.
std::size_t ResourceOffset(const Bytes& image) {
  const auto header = std::search(image.begin(), image.end(), std::begin(kResourceSection), std::end(kResourceSection));
  return header == image.end()
             ? 0
             : version::Number32(std::span(image).subspan(static_cast<std::size_t>(header - image.begin()) + 20));
}

TEST(VersionDamage, RefusesHostileDirectories) {
  SKIP_WITHOUT("complet_i686");
  const Bytes whole = Contents(VersionFile("complet_i686"));
  const std::size_t resources = ResourceOffset(whole);
  ASSERT_NE(resources, 0U);
  // Three directories of one entry each, then the data entry: at 0, 24, 48 and 72.
  const struct {
    const char* what;
    std::size_t at;
    std::uint32_t value;
  } kCases[] = {
      {"types within themselves", 20, 0x80000000},
      {"names are the types", 44, 0x80000000},
      {"names within themselves", 44, 0x80000018},
      {"languages are a leaf's place", 68, 0x80000048},
      {"a type that is a leaf", 20, 0x00000048},
      {"a directory past the section", 20, 0x8FFFFFF0},
      {"65535 types and 65535 more", 12, 0xFFFFFFFF},
      {"65535 names and 65535 more", 36, 0xFFFFFFFF},
      {"data far away", 72, 0xFFFFFFF0},
      {"data larger than the section", 76, 0x00100000},
      {"data of no bytes", 76, 0},
      {"data of seven bytes", 76, 7},
      {"another type", 16, 17},
      {"a version resource numbered 2", 40, 2},
      {"a version resource by name", 40, 0x80000001},
      {"a type by name", 16, 0x80000010},
  };
  for (const auto& [what, at, value] : kCases) {
    Bytes image = whole;
    for (std::size_t i = 0; i < 4; ++i) {
      image[resources + at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    if (value == 0xFFFFFFFF) {
      image[resources + at + 4] = 99;  // else the first entry would do
    }
    EXPECT_THAT(Read(image, 0, at < 24 ? 4'096 : 65'536).strings, Each(kNone)) << what;
  }
}

TEST(VersionDamage, RefusesADirectoryThatTheOptionalHeaderIsTooShortFor) {
  SKIP_WITHOUT("complet_i686");
  const Bytes whole = Contents(VersionFile("complet_i686"));
  const std::size_t header = version::Number32(std::span(whole).subspan(60)) + 24;
  const std::size_t sections = header + version::Number16(std::span(whole).subspan(header - 4));
  // The section headers come straight after the optional one, wherever that ends.
  for (const std::size_t length : {120U, 119U, 116U}) {
    Bytes image = whole;
    image[header - 4] = static_cast<std::uint8_t>(length);
    std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(sections), 40 * whole[header - 18],
                image.begin() + static_cast<std::ptrdiff_t>(header + length));
    EXPECT_EQ(Read(image).strings[6], length == 120 ? "facturi.dll" : kNone) << length;
  }
}

TEST(VersionDamage, AHugeResourceIsReadAsFarAsIsAllowed) {
  SKIP_WITHOUT("complet_i686");
  Bytes image = Contents(VersionFile("complet_i686"));
  const std::size_t resources = ResourceOffset(image);
  image.resize(image.size() + 0x100000);
  const auto sectionHeader =
      std::search(image.begin(), image.end(), std::begin(kResourceSection), std::end(kResourceSection));
  sectionHeader[18] = 0x10;          // the section is a mebibyte longer in the file
  image[resources + 76 + 2] = 0x08;  // and the resource half of one
  EXPECT_EQ(Read(image).strings[6], "facturi.dll");
}

/// A block as 16-bit programs have it: characters of one byte, no kind.
std::string MakeNarrowBlock(const std::string& key, const std::string& value,
                            const std::vector<std::string>& children) {
  const auto pad = [](std::string& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); };
  std::string block = std::string("\0\0", 2) + static_cast<char>(value.size()) + '\0' + key + '\0';
  pad(block);
  block += value;
  for (const std::string& child : children) {
    pad(block);
    block += child;
  }
  block[0] = static_cast<char>(block.size());
  block[1] = static_cast<char>(block.size() >> 8U);
  return block;
}

TEST(TCEVersionInfo, ReadsSixteenBitPrograms) {
  const auto string = [](const std::string& key, const std::string& text) {
    return MakeNarrowBlock(key, text + '\0', {});
  };
  const std::string resource =
      MakeNarrowBlock("VS_VERSION_INFO", std::string("\xBD\x04\xEF\xFE", 4) + std::string(48, '\0'),
                      {MakeNarrowBlock("StringFileInfo", "",
                                       {MakeNarrowBlock("041804E2", "",
                                                        {string("FileVersion", "3.1.0.7"), string("CompanyName",
                                                                                                  "\xDE"
                                                                                                  "ar\xE3")})}),
                       MakeNarrowBlock("VarFileInfo", "", {MakeNarrowBlock("Translation", "\x18\x04\xE2\x04", {})})});
  std::string program(512, '\0');
  const auto put16 = [&program](std::size_t at, std::size_t number) {
    program[at] = static_cast<char>(number);
    program[at + 1] = static_cast<char>(number >> 8U);
  };
  program.replace(0, 2, "MZ");
  put16(60, 64);
  program.replace(64, 2, "NE");
  put16(64 + 36, 64);                 // the table of resources, from the header on
  put16(128, 4);                      // its unit: 16 bytes
  put16(130, 0x8003), put16(132, 2);  // two icons before
  put16(162, 0x8010), put16(164, 2);  // two version resources, of which that numbered 1 counts
  put16(170, 0), put16(172, 4), put16(176, 0x8002);
  put16(182, 512 / 16), put16(184, (resource.size() + 15) / 16), put16(188, 0x8001);
  program += resource + std::string(16, '\0');

  const Bytes image(program.begin(), program.end());
  const auto texts = Read(image);
  EXPECT_EQ(texts.strings[0], "Ţară"_ro);
  EXPECT_THAT(texts.parts, ElementsAre("3", "1", "0", "7"));
  EXPECT_EQ(texts.fixedInfo.signature, 0xFEEF04BDU);
  for (std::size_t length = 0; length < 512 + resource.size(); ++length) {
    ASSERT_THAT(Read(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length))).strings, Each(kNone));
  }
}

TEST(TCEVersionInfo, BelongsToItsOwnerAndToThePalette) {
  struct Form : host::Component {
    using Component::Component;
    [[nodiscard]] TextView ClassName() const override { return "TForm"; }
  };
  struct Counted : TCEVersionInfo {
    Counted(Component* owner, int& count) : TCEVersionInfo(owner), alive(count) { ++alive; }
    ~Counted() override { --alive; }
    int& alive;
  };
  int alive = 0;
  {
    Form form;
    auto* const first = new Counted(&form, alive);
    new Counted(first, alive);
    new Counted(&form, alive);
    {
      const Counted passing(&form, alive);
      EXPECT_EQ(form.Components().size(), 3U);
      EXPECT_EQ(passing.Owner(), &form);
    }
    EXPECT_EQ(alive, 3);
    delete form.Components()[1];
    EXPECT_THAT(form.Components(), ElementsAre(first));
  }
  EXPECT_EQ(alive, 0);

  host::Host mine;
  host::Install(mine);
  Register();
  Register();
  ASSERT_EQ(mine.Palette().size(), 1U);
  EXPECT_EQ(mine.Palette()[0].page, "CESystem");
  EXPECT_EQ(mine.Palette()[0].name, "TCEVersionInfo");
  const std::unique_ptr<host::Component> made(mine.Palette()[0].create(nullptr));
  EXPECT_EQ(made->ClassName(), "TCEVersionInfo");
}

}  // namespace
}  // namespace kiv
