#include "apps/kivtools/Library.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>

#include "apps/kivtools/LibraryCalls.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/Paths.h"
#include "kivtools/Errors.h"
#include "kivtools/Text.h"

/// The exported C function of that name, with its declared type.
#define KIVTOOLS_ENTRY(name) package_.Function<decltype(name)>(#name)

namespace kivtools {
namespace {

kiv::LoadedPackage Load() {
  // By its name alone the system looks for it where programs have their libraries: beside the program on Windows, in
  // the lib folder next to the program's elsewhere (the run path), then in its own folders.
  const auto named = PathFromEnvironment("KIVTOOLS_LIBRARY");
  try {
    return kiv::LoadedPackage::FromNativePath(named ? std::filesystem::absolute(*named) : KIVTOOLS_LIBRARY_FILE);
  } catch (const kiv::Error& error) {
    throw InputError(
        named ? AsItIs(kiv::ToUtf8(error.what()))
              : Say({"{0}; KIVTOOLS_LIBRARY can name the library", "{0}; KIVTOOLS_LIBRARY poate numi biblioteca"},
                    kiv::ToUtf8(error.what())));
  }
}

std::vector<std::string> LibraryPaths(std::span<const std::filesystem::path> paths) {
  std::vector<std::string> texts(paths.size());
  std::ranges::transform(paths, texts.begin(), LibraryPath);
  return texts;
}

std::vector<const char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers(texts.size());
  std::ranges::transform(texts, pointers.begin(), [](const std::string& text) { return text.c_str(); });
  return pointers;
}

}  // namespace

Library::Library()
    : package_(Load()),
      textToUtf8_(KIVTOOLS_ENTRY(KivTextToUtf8)),
      utf8ToText_(KIVTOOLS_ENTRY(KivUtf8ToText)),
      numberInWords_(KIVTOOLS_ENTRY(KivInLitere)),
      sumInWords_(KIVTOOLS_ENTRY(KivInLitereCurrency)),
      sumInWordsCompact_(KIVTOOLS_ENTRY(KivInLitereMF)),
      money_(KIVTOOLS_ENTRY(KivCurrencyToRoStr)),
      moneyNoSpace_(KIVTOOLS_ENTRY(KivCurrencyToRoStrFaraSpatiu)),
      scaledNumber_(KIVTOOLS_ENTRY(KivScrieFoarteFrumos)),
      codeFaultText_(KIVTOOLS_ENTRY(KivCodeFaultText)),
      sumInReadableWords_(KIVTOOLS_ENTRY(KivInCuvinteCurrency)),
      encodeDate_(KIVTOOLS_ENTRY(KivEncodeDate)),
      dateWithCode_(KIVTOOLS_ENTRY(KivDateToRoText_WithCode)),
      grade_(KIVTOOLS_ENTRY(KivNotaToTextLung)),
      gradeInFigures_(KIVTOOLS_ENTRY(KivNotaToTextScurt)),
      gradeInBrackets_(KIVTOOLS_ENTRY(KivNotaToStr)),
      withoutDiacritics_(KIVTOOLS_ENTRY(KivRoToEn)),
      birthDate_(KIVTOOLS_ENTRY(KivDataNasteriiDinCNP)),
      age_(KIVTOOLS_ENTRY(KivVarstaDinCNP)),
      toWide_(KIVTOOLS_ENTRY(KivStringToWideString)),
      fromWide_(KIVTOOLS_ENTRY(KivWideStringToString)) {}

std::string Library::ToUtf8(std::string_view text) const {
  constexpr std::int32_t kCommaBelow = 1;
  std::string utf8(text.size() * 3, '\0');  // no character of the code page takes more
  const KivLength length = textToUtf8_(text.data(), text.size(), kCommaBelow, utf8.data(), utf8.size());
  utf8.resize(static_cast<std::size_t>(length));
  return utf8;
}

std::string Library::FromUtf8(std::string_view utf8) const {
  std::string text(utf8.size() + 1, '\0');
  const KivLength length = utf8ToText_(utf8.data(), utf8.size(), text.data(), text.size());
  if (length < 0) {
    ThrowLastError();
  }
  text.resize(static_cast<std::size_t>(length));
  return text;
}

void Library::ThrowLastError() const {
  std::array<char, 1024> message{};
  KIVTOOLS_ENTRY(KivLastErrorMessage)(message.data(), message.size());
  throw LibraryError(SystemMessage(message.data(), KIVTOOLS_ENTRY(KivLastSystemCode)()));
}

void Library::Check(KivStatus status) const {
  if (status != KIV_OK) {
    ThrowLastError();
  }
}

std::string Library::Version() const {
  return Text(KIVTOOLS_ENTRY(KivVersion));
}

std::string Library::NumberInWords(std::int32_t number) const {
  return Text(numberInWords_, number);
}

std::string Library::SumInWords(std::int64_t amount) const {
  return Text(sumInWords_, amount);
}

void Library::AppendSumInWords(std::int64_t amount, TextBuffer& out) const {
  AppendText(out, sumInWords_, amount);
}

std::string Library::SumInWordsCompact(std::int64_t amount) const {
  return Text(sumInWordsCompact_, amount);
}

std::string Library::SumInReadableWords(std::int64_t amount, std::string_view currency) const {
  const std::string names = FromUtf8(currency);
  return Text(sumInReadableWords_, amount, names.data(), names.size());
}

std::string Library::NumberInReadableWords(std::int64_t number) const {
  return Text(KIVTOOLS_ENTRY(KivInCuvinte), number, KIV_GENDER_MASCULINE);
}

std::string Library::Money(std::int64_t amount, std::int32_t decimals) const {
  return Text(money_, amount, decimals);
}

std::string Library::MoneyNoSpace(std::int64_t amount, std::int32_t decimals) const {
  return Text(moneyNoSpace_, amount, decimals);
}

std::string Library::MoneyExact(std::int64_t amount) const {
  constexpr std::int32_t kAsExact = 422;
  return Text(scaledNumber_, amount, kAsExact);
}

std::int64_t Library::ReadMoney(std::string_view utf8) const {
  const std::string text = FromUtf8(utf8);
  std::int64_t amount = 0;
  Check(KIVTOOLS_ENTRY(KivRoStrToCurrency)(text.data(), text.size(), &amount));
  return amount;
}

double Library::EncodeDate(int year, int month, int day, int hour, int minute, int second) const {
  double days = 0;
  Check(encodeDate_(year, month, day, hour, minute, second, 0, &days));
  return days;
}

Library::DateForm* Library::FindDateForm(const std::string& operation) const {
  return operation == "DateToRoText_WithCode" ? nullptr : package_.Function<DateForm>(("Kiv" + operation).c_str());
}

std::string Library::DateText(DateForm* form, double days) const {
  return form == nullptr ? Text(dateWithCode_, days, 0, 0, 0, 0) : Text(form, days);
}

std::string Library::DateText(const std::string& operation, double days) const {
  return DateText(FindDateForm(operation), days);
}

std::string Library::Grade(std::int32_t grade, bool figures) const {
  return Text(figures ? gradeInFigures_ : grade_, grade);
}

std::string Library::GradeInBrackets(std::int32_t grade, std::int32_t mode) const {
  return Text(gradeInBrackets_, grade, mode);
}

std::string Library::WithoutDiacritics(std::string_view utf8) const {
  const std::string text = FromUtf8(utf8);
  return Text(withoutDiacritics_, text.data(), text.size());
}

void Library::AppendReason(Explanation* explanation, std::string_view code, TextBuffer& out) const {
  KivCodeFault fault{};
  if (explanation(code.data(), code.size(), &fault) < 0) {
    ThrowLastError();
  }
  const std::int32_t language =
      CurrentSpeech().language == Language::Romanian ? KIV_LANGUAGE_ROMANIAN : KIV_LANGUAGE_ENGLISH;
  AppendText(out, codeFaultText_, &fault, language);
}

std::string Library::BirthDate(std::string_view code) const {
  return Text(birthDate_, code.data(), code.size());
}

std::int32_t Library::Age(std::string_view code) const {
  std::int32_t age = 0;
  Check(age_(code.data(), code.size(), &age));
  return age;
}

std::vector<std::uint16_t> Library::ToWide(std::string_view bytes, std::int32_t codePage) const {
  std::vector<std::uint16_t> wide(bytes.size() + 1);  // no byte gives more than one unit
  const KivLength length = toWide_(bytes.data(), bytes.size(), codePage, wide.data(), wide.size());
  if (length < 0) {
    ThrowLastError();
  }
  wide.resize(std::min(static_cast<std::size_t>(length), wide.size() - 1));
  return wide;
}

std::string Library::FromWide(std::span<const std::uint16_t> wide, std::int32_t codePage) const {
  std::string bytes(wide.size() + 3, '\0');  // the library gives two bytes beyond the number of units at most
  const KivLength length = fromWide_(wide.data(), wide.size(), codePage, bytes.data(), bytes.size());
  if (length < 0) {
    ThrowLastError();
  }
  bytes.resize(std::min(static_cast<std::size_t>(length), bytes.size() - 1));
  return bytes;
}

std::int32_t Library::CompareVersions(std::string_view a, std::string_view b) const {
  const std::string left = FromUtf8(a);
  const std::string right = FromUtf8(b);
  std::int32_t difference = 0;
  Check(KIVTOOLS_ENTRY(KivCompareNrVersiune)(left.data(), left.size(), right.data(), right.size(), &difference));
  return difference;
}

void Library::StartProgram(const std::filesystem::path& program, const std::string& parameters) const {
  const std::string path = LibraryPath(program);
  const std::string given = LibraryPath(PathFromUtf8(parameters));  // they may hold paths
  std::uintptr_t process = 0;
  Check(KIVTOOLS_ENTRY(KivStartProgram)(path.data(), path.size(), given.data(), given.size(), &process));
}

std::string Library::ConnectionStringForMdb(const std::filesystem::path& file) const {
  const std::string path = LibraryPath(file);
  return PathText(KIVTOOLS_ENTRY(KivConnectionStringForMdb), path.data(), path.size());
}

void Library::SetFloppyRoot(const std::filesystem::path& folder) const {
  const std::string path = LibraryPath(folder);
  Check(KIVTOOLS_ENTRY(KivSetFloppyRoot)(path.data(), path.size()));
}

std::int32_t Library::FloppyState() const {
  const std::int32_t state = KIVTOOLS_ENTRY(KivStareFloppy)();
  if (state < 0) {
    ThrowLastError();
  }
  return state;
}

/// Who is asked, and what came of it: no exception may pass through the library.
struct Library::Asking {
  const Library& library;
  const ShowDialog& ask;
  std::exception_ptr failure;
};

std::int32_t Library::PassOn(void* asking, std::int32_t kind, const char* text, std::size_t length,
                             std::int32_t buttons) {
  auto& [library, ask, failure] = *static_cast<Asking*>(asking);
  try {
    return ask(kind, library.ToUtf8({text, length}), buttons);
  } catch (...) {
    failure = std::current_exception();
    return -1;
  }
}

void Library::CopyToFloppy(std::span<const std::filesystem::path> sources,
                           std::span<const std::filesystem::path> destinations, const ShowDialog& ask) const {
  const std::vector<std::string> from = LibraryPaths(sources);
  const std::vector<std::string> to = LibraryPaths(destinations);
  Asking asking{*this, ask, nullptr};
  KivHostTable table{};
  table.size = sizeof table;
  table.context = &asking;
  table.ask = &PassOn;
  Check(KIVTOOLS_ENTRY(KivHostInstall)(&table));
  const KivStatus status = KIVTOOLS_ENTRY(KivCopiazaPeDischetaMulti)(Pointers(from).data(), nullptr, from.size(),
                                                                     Pointers(to).data(), nullptr, to.size());
  KIVTOOLS_ENTRY(KivHostRemove)();
  if (asking.failure) {
    std::rethrow_exception(asking.failure);
  }
  Check(status);
}

namespace {

/// Texts as the C interface takes a list of them.
class TextList {
 public:
  explicit TextList(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      kept_.push_back(LibraryPath(PathFromUtf8(text)));
    }
    for (const std::string& text : kept_) {
      texts_.push_back(text.data());
      lengths_.push_back(text.size());
    }
  }
  [[nodiscard]] const char* const* Texts() const noexcept { return texts_.data(); }
  [[nodiscard]] const std::size_t* Lengths() const noexcept { return lengths_.data(); }
  [[nodiscard]] std::size_t Count() const noexcept { return texts_.size(); }

 private:
  std::vector<std::string> kept_;
  std::vector<const char*> texts_;
  std::vector<std::size_t> lengths_;
};

}  // namespace

void Library::ForEachFile(const std::filesystem::path& root, const std::vector<std::string>& extensions,
                          std::optional<std::int32_t> depth,
                          const std::function<void(const std::string& path)>& take) const {
  const std::string folder = LibraryPath(root);
  const TextList chosen(extensions);
  const std::unique_ptr<KivStringList, decltype(KivStringListFree)*> list(KIVTOOLS_ENTRY(KivStringListNew)(),
                                                                          KIVTOOLS_ENTRY(KivStringListFree));
  Check(depth ? KIVTOOLS_ENTRY(KivInitFileListMaxDepth)(folder.data(), folder.size(), chosen.Texts(), chosen.Lengths(),
                                                        chosen.Count(), *depth, list.get())
              : KIVTOOLS_ENTRY(KivInitFileList)(folder.data(), folder.size(), chosen.Texts(), chosen.Lengths(),
                                                chosen.Count(), list.get()));
  auto* const item = KIVTOOLS_ENTRY(KivStringListItem);
  const KivLength count = KIVTOOLS_ENTRY(KivStringListCount)(list.get());
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    take(PathText(item, list.get(), i));
  }
}

void Library::CopyTree(const std::filesystem::path& source, const std::filesystem::path& destination,
                       const std::vector<std::string>& extensions, const std::optional<std::string>& skip,
                       KivControl* label, std::int32_t maxWidth) const {
  const std::string from = LibraryPath(source);
  const std::string to = LibraryPath(destination);
  const TextList chosen(extensions);
  if (!skip) {
    Check(KIVTOOLS_ENTRY(KivRecursiveCopyWithExt)(from.data(), from.size(), to.data(), to.size(), chosen.Texts(),
                                                  chosen.Lengths(), chosen.Count(), label, maxWidth));
    return;
  }
  const std::string without = LibraryPath(PathFromUtf8(*skip));
  Check(KIVTOOLS_ENTRY(KivRecursiveCopyWithExtSkipFolders)(from.data(), from.size(), to.data(), to.size(),
                                                           chosen.Texts(), chosen.Lengths(), chosen.Count(), label,
                                                           without.data(), without.size(), maxWidth));
}

void Library::DeleteTree(const std::filesystem::path& root) const {
  const std::string folder = LibraryPath(root);
  Check(KIVTOOLS_ENTRY(KivRecursiveDelete)(folder.data(), folder.size()));
}

void Library::MeasureTree(const std::filesystem::path& root) const {
  const std::string folder = LibraryPath(root);
  KivTreeSize size{};
  Check(KIVTOOLS_ENTRY(KivMeasureTree)(folder.data(), folder.size(), &size));
}

void Library::WatchTrees(const KivTreeWatcher* watcher) const {
  Check(KIVTOOLS_ENTRY(KivWatchTrees)(watcher));
}

void Library::SaveFile(const std::filesystem::path& path, std::string_view content) const {
  const std::string name = LibraryPath(path);
  Check(KIVTOOLS_ENTRY(KivSalveazaFisier)(name.data(), name.size(), content.data(), content.size()));
}

bool Library::FilesAreEqual(const std::filesystem::path& a, const std::filesystem::path& b) const {
  const std::string left = LibraryPath(a);
  const std::string right = LibraryPath(b);
  const KivAnswer answer = KIVTOOLS_ENTRY(KivComparaFisiere)(left.data(), left.size(), right.data(), right.size());
  if (answer < 0) {
    ThrowLastError();
  }
  return answer == 1;
}

void Library::InstallHost(const KivHostTable* table) const {
  Check(table != nullptr ? KIVTOOLS_ENTRY(KivHostInstall)(table) : KIVTOOLS_ENTRY(KivHostRemove)());
}

std::string Library::PathToUtf8(std::string_view path) const {
  return LibraryPathsAreUtf8() ? std::string(path) : ToUtf8(path);
}

Said Library::SystemMessage(std::string_view message, std::int32_t code) const {
  return code == 0 ? AsItIs(ToUtf8(message)) : Say({"{0} (error {1})", "{0} (eroarea {1})"}, ToUtf8(message), code);
}

std::uint32_t Library::Tint(const std::string& operation, std::uint32_t colour) const {
  std::uint32_t tint = 0;
  Check(package_.Function<decltype(KivLite)>(("Kiv" + operation).c_str())(colour, &tint));
  return tint;
}

void Library::Fill(Picture& picture, Filling filling, std::uint32_t from, std::uint32_t to) const {
  const auto fill = [&](auto* function, Picture& filled) {
    Check(function(filled.pixels.data(), std::ptrdiff_t{3} * filled.width, filled.width, filled.height, from, to));
  };
  if (filling == Filling::Horizontal) {
    fill(KIVTOOLS_ENTRY(KivGenerateHorizFountainFill), picture);
  } else if (filling == Filling::Vertical) {
    fill(KIVTOOLS_ENTRY(KivGenerateVertFountainFill), picture);
  } else {
    // The last row and the last column of what is painted are left out there.
    Picture larger = BlackPicture(picture.width + 1, picture.height + 1);
    fill(KIVTOOLS_ENTRY(KivGenerateGradientFillBitmap), larger);
    const std::size_t row = std::size_t{3} * static_cast<std::uint32_t>(picture.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
      std::copy_n(&larger.pixels[y * (row + 3)], row, &picture.pixels[y * row]);
    }
  }
}

void Library::SavePicture(const Picture& picture, const std::filesystem::path& file) const {
  const std::string path = LibraryPath(file);
  Check(KIVTOOLS_ENTRY(KivSaveBitmap)(picture.pixels.data(), std::ptrdiff_t{3} * picture.width, picture.width,
                                      picture.height, path.data(), path.size()));
}

void Library::BlurFile(const std::filesystem::path& in, const std::filesystem::path& out, std::int32_t level) const {
  const std::string from = LibraryPath(in);
  const std::string to = LibraryPath(out);
  KivBitmap* opened = nullptr;
  Check(KIVTOOLS_ENTRY(KivOpenBitmap)(from.data(), from.size(), &opened));
  const std::unique_ptr<KivBitmap, decltype(KivCloseBitmap)*> bitmap(opened, KIVTOOLS_ENTRY(KivCloseBitmap));
  std::uint8_t* pixels = nullptr;
  std::ptrdiff_t stride = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  Check(KIVTOOLS_ENTRY(KivBitmapPixels)(bitmap.get(), &pixels, &stride, &width, &height));
  Check(KIVTOOLS_ENTRY(KivAntiAliasBmp)(pixels, stride, width, height, level));
  Check(KIVTOOLS_ENTRY(KivSaveBitmap)(pixels, stride, width, height, to.data(), to.size()));
}

std::vector<Library::VersionField> Library::VersionFields(const std::filesystem::path& file) const {
  const std::string path = LibraryPath(file);
  const std::unique_ptr<KivStringList, decltype(KivStringListFree)*> list(KIVTOOLS_ENTRY(KivStringListNew)(),
                                                                          KIVTOOLS_ENTRY(KivStringListFree));
  Check(KIVTOOLS_ENTRY(KivVersionInfo)(path.data(), path.size(), list.get(), nullptr));
  std::vector<VersionField> fields;
  fields.reserve(KIV_VERSION_FIELDS);
  for (std::int32_t i = 0; i < KIV_VERSION_FIELDS; ++i) {
    fields.push_back({Text(KIVTOOLS_ENTRY(KivVersionFieldName), i),
                      Text(KIVTOOLS_ENTRY(KivStringListItem), list.get(), static_cast<std::size_t>(i))});
  }
  return fields;
}

}  // namespace kivtools
