// Operations are safe from any thread: each gives in eight threads at once what it gives in one, also those that share
// something inside (counters, the user's language, converters, the run's own version). Built with the thread sanitizer
// as well, which sees what equal results do not show. scripts/check-lists names an operation that is missing here.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <latch>
#include <random>
#include <thread>
#include <vector>

#include "kivtools/Bitmap.h"
#include "kivtools/BmpRoutines.h"
#include "kivtools/CEVersionInfo.h"
#include "kivtools/DateTime.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/Types.h"
#include "kivtools/WideTools.h"
#include "kivtools/WinUtil.h"
#include "kivtools/dataset/Arrow.h"
#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Difference.h"
#include "kivtools/dataset/Xml.h"
#include "kivtools/kiv.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

using Operation = Text (*)(std::uint32_t number);

DateTime DateOf(std::uint32_t number) {
  return DateTime(static_cast<double>(number % 2'900'000) + static_cast<double>(number % 86'400) / 86'400);
}

Currency AmountOf(std::uint32_t number) {
  return Currency::FromRaw(std::int64_t{number} * (std::int64_t{number % 1999} - 999));
}

Text TextOf(std::uint32_t number) {
  Text text;
  for (std::mt19937 random(number); text.size() < 20;) {
    text.push_back(static_cast<char>(random() % 255 + 1));
  }
  return text;
}

/// The message of a failed call is each thread's own.
Text OfRefusal(std::uint32_t number) {
  const std::string utf8 = std::string(number % 50, 'a') + "漢";
  std::array<char, 128> message{};
  EXPECT_EQ(KivUtf8ToText(utf8.data(), utf8.size(), nullptr, 0), -KIV_ERROR_CONVERSION);
  EXPECT_GT(KivLastErrorMessage(message.data(), message.size()), 0);
  return message.data();
}

/// Every form of a date: the month names that they share are read by all threads.
Text OfDate(std::uint32_t number) {
  const DateTime date = DateOf(number);
  Text all;
  for (const auto form :
       {DateToRoText, DateToRoText2, DateToRoText3, DateToRoText4, DateToRoText5, DateToRoText6, DateToRoText7,
        DateToRoCode, DateToRoTextScurt, DateToRoTextScurtCuAn, DateToRoTextScurtCuAnPlusOra, NumeZiDinSaptamana,
        TimeToStrRoFrumos, TimeToStrRo, TimeToStrRo2}) {
    all += form(date) + '|';
  }
  all += DateToRoText_WithCode(date, true, true, scriu_nume_luna, true);
  return all;
}

/// A result as text, so that all can be compared alike.
Text Shown(const Text& text) {
  return text + '|';
}
Text Shown(const CodeFault& fault) {
  return CodeFaultText(fault) + '|';
}
Text Shown(double number) {
  return std::to_string(number) + '|';
}
Text Shown(DateTime date) {
  return Shown(date.Days());
}
Text Shown(const WideText& wide) {
  Text bytes;
  for (const char16_t unit : wide) {
    bytes += std::to_string(unit) + ' ';
  }
  return bytes + '|';
}

/// What an operation gives, or how it refuses.
template <class Call>
Text Outcome(Call&& operation) {
  try {
    return Shown(operation());
  } catch (const Error& error) {
    return Shown(Text(error.what()));
  }
}

/// What several operations make of the same argument.
template <class Argument, class... Results>
Text Outcomes(const Argument& argument, Results (*... operations)(Argument)) {
  return (Outcome([&] { return operations(argument); }) + ...);
}

Text OfText(std::uint32_t number) {
  const Text text = TextOf(number);
  return Outcomes<TextView>(text, NumeDinNumeSiPrenume, PrenumeDinNumeSiPrenume, RemoveDualSlshPath, RoText, RoToEn,
                            ScrieFrumosNrTelefon, StringHash, StripDot, StripDotExtract2CifreDupaVirgula,
                            TextDinGhilimele, TextInGhilimele, DecodeM1String, ExtrageIBANdinIBANCuAnalitic,
                            EliminaCoduriDinIBAN, RoCodeToDate, SmartStringToDateTime, ValideazaSIRUTA) +
         DecodeM1String(EncodeM1String(text));
}

/// Identifiers with letters and digits as in real ones: the checks go to their ends.
Text OfIdentifier(std::uint32_t number) {
  const Text code = "1800101" + std::to_string(100'000 + number % 899'999);
  return Outcomes<TextView>(code, TestCNP, AnulNasteriiDinCnp, DataNasteriiDinCNP, DataNasteriiDinCNP_scurt,
                            VarstaDinCNP, TestCodFiscal, ValideazaSIRUTA) +
         Outcomes<TextView>("RO49 AAAA " + code, ValideazaIBAN, EsteIBAN) +
         Shown(TestCodFiscal(std::to_string(number))) +
         Outcomes<TextView>(code, ExplainTestCNP, ExplainTestCodFiscal, ExplainValideazaIBAN, ExplainEsteIBAN,
                            ExplainValideazaSIRUTA);
}

Text OfShaping(std::uint32_t number) {
  const Text text = TextOf(number);
  const auto width = static_cast<std::int32_t>(number % 30);
  const auto letter = static_cast<char>(number);
  const Guid guid{number, 0, 0, {}};
  return PadLeft(text, width, letter) + PadRight(text, width, letter) + TextIntreGhilimele(letter, text) +
         QuoteText(text, letter) + TextDeLatimeFixa(text, width + 1, "-") + PunePuncteInSimbol(text, width + 1) +
         CharReplace(text, letter, 'x') + MaskReplace(text + "%1", {"%1", text}) + Shown(RespectaMasca(text, "*?")) +
         Shown(GuidEgal(guid, guid));
}

Text OfCodePages(std::uint32_t number) {
  const Text text = TextOf(number);
  Text all = Shown(IsWinOsUnicode());
  for (const std::int32_t page : {1250, 1251, 932, 65001, 7}) {
    const WideText wide = StringToWideString(text, page);
    all += Shown(wide) + WideStringToString(wide, page) + UpCaseAsCodePage(text, page);
  }
  return all;
}

Text OfDateArithmetic(std::uint32_t number) {
  const DateTime date = DateOf(number);
  const auto count = static_cast<std::int32_t>(number % 100);
  DateTime total;
  DateTime remaining;
  CalcDurataTotala(date, DateTime(date.Days() + 1), 100, count + 1, total, remaining);
  Text totalText;
  Text remainingText;
  CalcDurataTotala(date, DateTime(date.Days() + 1), 100, count + 1, totalText, remainingText);
  const Text smart = DateTimeToSmartStrimg(date);
  return Shown(total) + Shown(remaining) + totalText + remainingText + TimeToStrDurataMS(date) + smart +
         Outcome([&] { return SmartStringToDateTime(smart); }) + Outcome([&] { return IncMonth(date, count); }) +
         Outcome([&] { return SetDayOfDate(date, count % 32); });
}

Text OfColours(std::uint32_t number) {
  const Colour colour = number & 0xFF'FFFFU;
  std::int32_t channel[3] = {};
  ExtractRGB(colour, channel[0], channel[1], channel[2]);
  double hue = 0;
  double saturation = 0;
  double value = 0;
  RGB2HSV(static_cast<std::uint8_t>(channel[0]), static_cast<std::uint8_t>(channel[1]),
          static_cast<std::uint8_t>(channel[2]), hue, saturation, value);
  std::uint8_t again[3] = {};
  HSV2RGB(hue, saturation, value, again[0], again[1], again[2]);
  std::array<Colour, 20> gradient{};
  GenerateGradientFillColorArray(colour, 0, gradient);
  return Outcomes<Colour>(colour, Lite, LiteLite, Dark, DarkDark, LiteRed, LiteGreen, LiteBlue, LiteLiteRed,
                          LiteLiteGreen, LiteLiteBlue, TurnBlue, TurnRed, TurnGreen) +
         Shown(DeltaCuloare(1, 2, 3, colour)) + Shown(hue) + Shown(again[0]) + Shown(gradient[7]);
}

Text OfPictures(std::uint32_t number) {
  const Colour colour = number & 0xFF'FFFFU;
  Bitmap across = GenerateHorizFountainFill(8, 3, colour, 0);
  AntiAliasBmp(across, colour, 2);
  Bitmap grained(520, 1);
  GenerateGradientFillBitmap(colour, 0, grained);  // each time another grain
  return Shown(across.Pixel(4, 1)) + Shown(GenerateVertFountainFill(3, 8, colour, 0).Pixel(1, 4)) +
         Shown(grained.Width());
}

Text OfGrades(std::uint32_t number) {
  const auto grade = static_cast<std::int32_t>(number % 1100);
  return Outcomes<std::int32_t>(grade, NotaToTextLung, NotaToTextScurt, TrimestruLuna) +
         Outcome([&] { return NotaToStr(grade, static_cast<std::int32_t>(number % 3)); });
}

Text OfSystem(std::uint32_t number) {
  const Text file = "no file " + std::to_string(number);
  return NamedFileVersionInfo(file) + GetFileVersionKiv(file) + ThisExeVersionInfo() + LogOnUserName() +
         ReadWindowsTempPath() + GetMyDocumentsFolder() + GetDesktopPath() + GetAppDataFolder() +
         RemoveDoubleSlash(file + "//x") + Shown(EsteWindowsVista());
}

/// A folder for each call, so that the threads meet in the library alone. What comes out does not depend on its name.
Text OfFiles(std::uint32_t number) {
  if (number % 8 != 0) {
    return {};
  }
  static std::atomic<int> calls = 0;
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("kivtools-threads-" + std::to_string(++calls));
  const auto at = [&](const char* name) { return platform::TextFromPath(folder / name); };
  std::filesystem::create_directories(folder / "sursa" / "s");
  WriteWhole(folder / "sursa" / "a.txt", std::to_string(number));
  WriteWhole(folder / "sursa" / "s" / "b.dbf", "x");
  host::headless::Label label(nullptr, "lblFisier");
  RecursiveCopyWithExt(at("sursa"), at("copie"), {"*"}, label, 100);
  RecursiveCopyWithExtSkipFolders(at("sursa"), at("alta"), {"txt", "dbf"}, label, "alta", 100);
  CopyNoBuffering(at("copie/a.txt"), at("nou"));
  SalveazaFisier(at("salvat"), "abc");
  Text all = Shown(ComparaFisiere(at("nou"), at("sursa/a.txt")));
  all += Outcomes<TextView>(at("nou"), DimensiuneFisier, IsFileReadOnly);
  all += Shown(ForceDelete(at("nou")));
  all += Shown(FileAgeByName(at("nou")));
  all += Shown(static_cast<double>(InitFileList(at(""), {"*"}).size()));
  all += Shown(static_cast<double>(InitFileListMaxDepth(at(""), {"*"}, 1).size()));
  all += Shown(static_cast<double>(MeasureTree(at("alta")).bytes));
  all += Shown(ConnectionStringForMdb(at("firma.mdb")).starts_with("Provider="));
  Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}, {"nume", FieldType::Text}});
  dataset.Insert({{"nume", TextOf(number)}});
  SaveBinary(dataset, folder / "linii.kdp");
  all += LoadBinary(folder / "linii.kdp").GetText(RowId{0}, "nume");
  all += Shown(ContentOf(folder / "linii.kdp") == PacketContent::Dataset);
  SaveDelta(dataset.Changes().MakeDelta(), folder / "diferenta.kdp");
  all += Shown(static_cast<double>(LoadDelta(folder / "diferenta.kdp").Count()));
  SaveXml(dataset, folder / "linii.xml");
  const Dataset fromXml = LoadXml(folder / "linii.xml");
  all += Shown(static_cast<double>(Difference(dataset, fromXml).ChangeCount()));
  ArrowArrayStream columns;
  ExportArrow(dataset.TakeSnapshot(), columns);
  all += ImportArrow(columns, "linii").GetText(RowId{0}, "nume");
  SaveCsv(dataset, folder / "linii.csv");
  all += LoadCsv(folder / "linii.csv").GetText(RowId{0}, "nume");
  RecursiveDelete(at(""));
  return all + Shown(std::filesystem::exists(folder));
}

/// Programs that run at the same time, each ended by the thread that has started it.
Text OfPrograms(std::uint32_t number) {
  if (number % 32 != 0) {
    return {};
  }
  constexpr bool kOnWindows = std::filesystem::path::preferred_separator == '\\';
  const Handle program =
      kOnWindows ? StartProgram("C:\\windows\\system32\\cmd.exe", "/c pause") : StartProgram("/bin/sleep", "100");
  return Shown(TerminateProgram(program));
}

Text OfTextOrder(std::uint32_t number) {
  const Text left = TextOf(number);
  const Text right = TextOf(number + 1);
  return Shown(CompareTexts(left, right, Collation::Romanian)) +
         Shown(CollationPrefix(left, Collation::RomanianNoCase) < CollationPrefix(right, Collation::RomanianNoCase));
}

Text OfVersions(std::uint32_t number) {
  const Text version = std::to_string(number % 50) + ".7.1." + std::to_string(number % 9);
  std::int32_t part[4] = {};
  const bool valid = AnalizeazaNrVersiune(part[0], part[1], part[2], part[3], version);
  return Shown(valid) + Shown(part[0]) + Shown(part[3]) + Shown(NumarulDeVersiuneEsteValid(version)) +
         Shown(CompareNrVersiune(version, "7.1"));
}

Text OfNumbers(std::uint32_t number) {
  const Variant variant = Text(std::to_string(number % 3000));
  return Shown(SmartRound(number / 8.0)) + Shown(SmartRoundTo(number / 8.0, -2)) + Shown(VarToIntDef(variant, 0)) +
         Shown(VarToDateDef(variant, DateTime())) + ScrieFoarteFrumos(number, 42);
}

constexpr Operation kOperations[] = {
    OfCodePages,
    OfColours,
    OfDate,
    OfDateArithmetic,
    OfFiles,
    OfGrades,
    OfIdentifier,
    OfNumbers,
    OfPictures,
    OfPrograms,
    OfRefusal,
    OfShaping,
    OfSystem,
    OfText,
    OfTextOrder,
    OfVersions,
    [](std::uint32_t number) { return FromUtf8(ToUtf8(TextOf(number), DiacriticForm::CommaBelow)); },
    [](std::uint32_t number) { return ToUtf8(TextOf(number)); },
    [](std::uint32_t number) { return InLitere(std::int64_t{number % 1'000'000'000}); },
    [](std::uint32_t number) { return InLitere(Currency::FromRaw(number)) + InLitereMF(Currency::FromRaw(number)); },
    [](std::uint32_t number) { return InCuvinte(AmountOf(number), CurrencyNamesOf("a,b,f,c,d,n")); },
    [](std::uint32_t number) {
      return CurrencyToRoStr(AmountOf(number), 2) + CurrencyToRoStrFaraSpatiu(AmountOf(number), 2) +
             CurrencyToRoStrRON(AmountOf(number), 2);
    },
    [](std::uint32_t number) {
      const Currency again = RoStrToCurrency(CurrencyToRoStr(AmountOf(number), 4));
      return std::to_string(again.Raw());
    },
    [](std::uint32_t number) {
      const DateTime date = DateOf(number);
      const DateTime::Parts parts = date.Decode();
      return std::to_string(DateTime::Encode(parts.year, parts.month, parts.day, parts.hour, parts.minute).Days()) +
             std::to_string(RoCodeToDate(DateToRoCode(date)).Days());
    },
    [](std::uint32_t number) {
      StringList pieces = Explode("abc", TextOf(number), 5);
      SplitTextOnSeparator(TextOf(number), "efg", pieces);
      return pieces.back();
    },
    [](std::uint32_t number) {
      Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}, {"nume", FieldType::Text}});
      dataset.Insert({{"nume", TextOf(number)}});
      std::vector<std::uint8_t> packet;
      const PacketSink sink = [&](auto bytes) { packet.insert(packet.end(), bytes.begin(), bytes.end()); };
      std::size_t at = 0;
      const PacketSource source = [&](std::span<std::uint8_t> into) {
        const std::size_t count = std::min(into.size(), packet.size() - at);
        std::copy_n(packet.data() + at, count, into.data());
        at += count;
        return count;
      };
      WriteBinary(dataset, sink);
      const Dataset read = ReadBinary(source);
      WriteDelta(dataset.Changes().MakeDelta(), sink);
      const Delta delta = ReadDelta(source);
      WriteXml(read, sink);
      const Dataset sameAgain = ReadXml(source);
      WriteCsv(sameAgain, sink);
      const Dataset again = ReadCsv(source, "linii", {.fields = {{"nume", FieldType::Text}}});
      return Text(read.GetText(RowId{0}, "nume")) + Text(again.GetText(RowId{0}, "nume")) +
             ShownValue(FieldType::Text, delta.Current(0, 1));
    },
};

TEST(Threads, OperationsGiveInEightThreadsWhatTheyGiveInOne) {
  constexpr std::size_t kThreads = 8;
  constexpr std::size_t kCalls = 150;
  std::mt19937 random(8);  // fixed, so that a failure repeats
  std::vector<std::uint32_t> numbers(kCalls);
  for (std::uint32_t& number : numbers) {
    number = static_cast<std::uint32_t>(random());
  }
  std::vector<std::vector<Text>> expected;
  for (const Operation operation : kOperations) {
    auto& results = expected.emplace_back();
    for (const std::uint32_t number : numbers) {
      results.push_back(operation(number));
    }
  }

  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (std::size_t call = 0; call < kCalls; ++call) {
        for (std::size_t i = 0; i < std::size(kOperations); ++i) {
          const std::size_t chosen = (i + thread) % std::size(kOperations);  // different operations meet
          ASSERT_EQ(kOperations[chosen](numbers[call]), expected[chosen][call]) << chosen << ' ' << numbers[call];
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace
}  // namespace kiv
