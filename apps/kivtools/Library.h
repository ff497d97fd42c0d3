#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Pictures.h"
#include "kivtools/Loader.h"
#include "kivtools/kiv.h"

namespace kivtools {

class TextBuffer;

/// What the library answered to a value it refused: its message as UTF-8.
class LibraryError : public InputError {
 public:
  using InputError::InputError;
};

/// How a picture goes from one colour to another.
enum class Filling : std::uint8_t { Horizontal, Vertical, Dithered };

/// The shared library, loaded at run time and called through its C interface. Texts are UTF-8 here, with comma-below
/// letters; amounts are ten-thousandths. Every operation throws LibraryError where the library refuses its input.
class Library {
 public:
  /// Loads the library that the environment variable KIVTOOLS_LIBRARY names, else the one that the program was
  /// installed with. Throws InputError.
  Library();

  /// The library's version. Example: "0.1.0".
  [[nodiscard]] std::string Version() const;

  /// A number in words. Example: 5 gives "CINCI".
  [[nodiscard]] std::string NumberInWords(std::int32_t number) const;
  /// A sum in words. Example: 10000 gives "UNU LEI".
  [[nodiscard]] std::string SumInWords(std::int64_t amount) const;
  /// The same, appended.
  void AppendSumInWords(std::int64_t amount, TextBuffer& out) const;
  /// A sum in words, the compact form. Example: 10000 gives "UNLEU".
  [[nodiscard]] std::string SumInWordsCompact(std::int64_t amount) const;
  /// A sum in words that people read, in a currency that the library knows or that six fields name. Example: 10000 and
  /// "EUR" give "un euro".
  [[nodiscard]] std::string SumInReadableWords(std::int64_t amount, std::string_view currency) const;
  /// A whole number in such words. Example: 21 gives "douăzeci și unu".
  [[nodiscard]] std::string NumberInReadableWords(std::int64_t number) const;

  /// An amount with Romanian separators, its further decimals cut. Example: 12345600 and 2 give "1.234, 56".
  [[nodiscard]] std::string Money(std::int64_t amount, std::int32_t decimals) const;
  /// The same without the blank. Example: "1.234,56".
  [[nodiscard]] std::string MoneyNoSpace(std::int64_t amount, std::int32_t decimals) const;
  /// An amount with two decimals, or four where two are not exact. Example: 12345678 gives "1.234,5678".
  [[nodiscard]] std::string MoneyExact(std::int64_t amount) const;
  /// Reads a Romanian amount. Example: "1.234,56" gives 12345600.
  [[nodiscard]] std::int64_t ReadMoney(std::string_view utf8) const;

  /// The library's day number of a moment.
  [[nodiscard]] double EncodeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) const;
  /// A way to write a moment; null stands for DateToRoText_WithCode.
  using DateForm = decltype(KivDateToRoText);
  [[nodiscard]] DateForm* FindDateForm(const std::string& operation) const;
  [[nodiscard]] std::string DateText(DateForm* form, double days) const;
  /// A moment in the form that the operation of that name writes. Example: "DateToRoCode" gives "05.03.2024".
  [[nodiscard]] std::string DateText(const std::string& operation, double days) const;

  /// A grade times 100 in words, or with its hundredths in figures. Example: 950 gives "NOUĂ, CINCIZECI".
  [[nodiscard]] std::string Grade(std::int32_t grade, bool figures) const;
  /// A grade in brackets, in one of three modes. Example: 950 in mode 2 gives "(NOUĂ, 50)".
  [[nodiscard]] std::string GradeInBrackets(std::int32_t grade, std::int32_t mode) const;

  /// The text with its Romanian diacritics taken off. Example: "Țară" gives "Tara".
  [[nodiscard]] std::string WithoutDiacritics(std::string_view utf8) const;

  /// Bytes in a numbered code page as UTF-16, and back; empty for a code page that does not exist. Both end at a zero.
  [[nodiscard]] std::vector<std::uint16_t> ToWide(std::string_view bytes, std::int32_t codePage) const;
  [[nodiscard]] std::string FromWide(std::span<const std::uint16_t> wide, std::int32_t codePage) const;

  /// A function of the C interface that says yes or no to a code.
  using Predicate = KivAnswer(const char*, std::size_t);
  /// The one of that operation. Example: "EsteIBAN".
  [[nodiscard]] Predicate* FindPredicate(const std::string& operation) const {
    return package_.Function<Predicate>(("Kiv" + operation).c_str());
  }
  /// Its answer; a code that it cannot even convert is a no.
  [[nodiscard]] bool Ask(Predicate* predicate, std::string_view code) const {
    const KivAnswer answer = predicate(code.data(), code.size());
    if (answer < 0 && answer != -KIV_ERROR_CONVERSION) {
      ThrowLastError();
    }
    return answer == 1;
  }

  /// A function of the C interface that explains why a code is not valid.
  using Explanation = KivAnswer(const char*, std::size_t, KivCodeFault*);
  /// The one that goes with the predicate of that operation.
  [[nodiscard]] Explanation* FindExplanation(const std::string& operation) const {
    return package_.Function<Explanation>(("KivExplain" + operation).c_str());
  }
  /// Appends what it finds, a part of a sentence in the user's language. Example: "character 3 is not a digit".
  void AppendReason(Explanation* explanation, std::string_view code, TextBuffer& out) const;

  /// The birth date that a personal numeric code says, "CNP incorect" for one that is not valid.
  [[nodiscard]] std::string BirthDate(std::string_view code) const;
  /// The age that it says, in calendar years.
  [[nodiscard]] std::int32_t Age(std::string_view code) const;

  /// The difference of two version numbers. Example: "1.10" and "1.9" give 1.
  [[nodiscard]] std::int32_t CompareVersions(std::string_view a, std::string_view b) const;

  /// Starts a program with its parameters in one text.
  void StartProgram(const std::filesystem::path& program, const std::string& parameters) const;
  /// Writes the data source of an Access database and gives its connection string.
  [[nodiscard]] std::string ConnectionStringForMdb(const std::filesystem::path& file) const;
  /// Names the folder that stands for drive A:.
  void SetFloppyRoot(const std::filesystem::path& folder) const;
  /// What drive A: holds: KIV_FLOPPY_...
  [[nodiscard]] std::int32_t FloppyState() const;
  /// Shows a message of the library to the user: KIV_DIALOG_..., the text with its line ends, KIV_BUTTONS_...; gives
  /// KIV_ANSWER_...
  using ShowDialog = std::function<std::int32_t(std::int32_t kind, const std::string& text, std::int32_t buttons)>;
  /// Copies files to as many places on a diskette and lets the user be asked. What `ask` throws comes out of it.
  void CopyToFloppy(std::span<const std::filesystem::path> sources, std::span<const std::filesystem::path> destinations,
                    const ShowDialog& ask) const;

  /// Gives the paths of a tree's files by their extension, with a greatest depth where there is one.
  void ForEachFile(const std::filesystem::path& root, const std::vector<std::string>& extensions,
                   std::optional<std::int32_t> depth, const std::function<void(const std::string& path)>& take) const;
  /// Copies a tree's files by their extension; with `skip`, but for those of folders with that text in their path.
  void CopyTree(const std::filesystem::path& source, const std::filesystem::path& destination,
                const std::vector<std::string>& extensions, const std::optional<std::string>& skip, KivControl* label,
                std::int32_t maxWidth) const;
  void DeleteTree(const std::filesystem::path& root) const;
  /// Walks through a tree; throws where it cannot begin. What there is, a watcher is told.
  void MeasureTree(const std::filesystem::path& root) const;
  /// Has this thread's operations on trees watched; null ends that.
  void WatchTrees(const KivTreeWatcher* watcher) const;
  /// Writes a file; one that had the name is replaced when it is whole.
  void SaveFile(const std::filesystem::path& path, std::string_view content) const;
  [[nodiscard]] bool FilesAreEqual(const std::filesystem::path& a, const std::filesystem::path& b) const;

  /// Makes this program the library's host; null ends that.
  void InstallHost(const KivHostTable* table) const;
  /// A path as the library writes it.
  [[nodiscard]] std::string PathToUtf8(std::string_view path) const;
  /// A message of the library's about a failure of the system's, with its code.
  [[nodiscard]] Said SystemMessage(std::string_view message, std::int32_t code) const;

  /// What the operation of that name makes of a colour. Example: "Lite".
  [[nodiscard]] std::uint32_t Tint(const std::string& operation, std::uint32_t colour) const;
  /// Fills a picture with the way from one colour to another.
  void Fill(Picture& picture, Filling filling, std::uint32_t from, std::uint32_t to) const;
  /// Writes a .bmp file.
  void SavePicture(const Picture& picture, const std::filesystem::path& file) const;
  /// Reads a .bmp file, softens it by 2 or 3 and writes it.
  void BlurFile(const std::filesystem::path& in, const std::filesystem::path& out, std::int32_t level) const;

  /// A text of a version resource by its name. Example: "FileVersion" and "5.12.0.341".
  struct VersionField {
    std::string name, value;
  };
  /// The texts of a file's version resource in the library's order.
  [[nodiscard]] std::vector<VersionField> VersionFields(const std::filesystem::path& file) const;

 private:
  friend class DataFile;
  [[noreturn]] void ThrowLastError() const;
  [[nodiscard]] std::string ToUtf8(std::string_view text) const;
  [[nodiscard]] std::string FromUtf8(std::string_view utf8) const;
  void Check(KivStatus status) const;
  struct Asking;
  static std::int32_t PassOn(void* asking, std::int32_t kind, const char* text, std::size_t length,
                             std::int32_t buttons);

  /// The text that a function of the C interface gives, as the library has it.
  template <class Function, class... Arguments>
  std::string LibraryText(Function* function, Arguments... arguments) const;
  /// The same appended as UTF-8.
  template <class Function, class... Arguments>
  void AppendText(TextBuffer& out, Function* function, Arguments... arguments) const;
  /// The same as UTF-8.
  template <class Function, class... Arguments>
  std::string Text(Function* function, Arguments... arguments) const;
  /// The same for a text made of paths.
  template <class Function, class... Arguments>
  std::string PathText(Function* function, Arguments... arguments) const;

  kiv::LoadedPackage package_;
  // Called for every line of a file; the others are looked up when they are needed.
  decltype(KivTextToUtf8)* textToUtf8_;
  decltype(KivUtf8ToText)* utf8ToText_;
  decltype(KivInLitere)* numberInWords_;
  decltype(KivInLitereCurrency)* sumInWords_;
  decltype(KivInLitereMF)* sumInWordsCompact_;
  decltype(KivCurrencyToRoStr)* money_;
  decltype(KivCurrencyToRoStrFaraSpatiu)* moneyNoSpace_;
  decltype(KivScrieFoarteFrumos)* scaledNumber_;
  decltype(KivCodeFaultText)* codeFaultText_;
  decltype(KivInCuvinteCurrency)* sumInReadableWords_;
  decltype(KivEncodeDate)* encodeDate_;
  decltype(KivDateToRoText_WithCode)* dateWithCode_;
  decltype(KivNotaToTextLung)* grade_;
  decltype(KivNotaToTextScurt)* gradeInFigures_;
  decltype(KivNotaToStr)* gradeInBrackets_;
  decltype(KivRoToEn)* withoutDiacritics_;
  decltype(KivDataNasteriiDinCNP)* birthDate_;
  decltype(KivVarstaDinCNP)* age_;
  decltype(KivStringToWideString)* toWide_;
  decltype(KivWideStringToString)* fromWide_;
};

}  // namespace kivtools
