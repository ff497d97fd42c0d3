#include <array>
#include <filesystem>
#include <limits>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Utf8.h"
#include "platform/Console.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{{"json", "", "for machines: an array with an object for each file"}}};

constexpr std::string_view kDetails =
    "Reads the version resource of Windows programs and libraries, on every system. What has none, or is damaged,\n"
    "shows \"<info not available>\".\n\n"
    "Examples:\n"
    "  kivtools version app.exe\n"
    "  kivtools version --json *.dll\n";

constexpr std::string_view kCompareDetails =
    "A version has at most four numbers joined by dots. The difference of the first numbers that differ is printed.\n"
    "Exit code: 0 the versions are equal, 10 A is below B, 11 A is above B, 2 one of them is no version.\n\n"
    "Examples:\n"
    "  kivtools compare-versions 1.10 1.9       1\n"
    "  kivtools compare-versions 1.2 1.2.0.0    0\n";

using Fields = std::vector<Library::VersionField>;

/// The text as a JSON string; U+FFFD stands for bytes that are not UTF-8.
std::string JsonString(std::string_view text) {
  std::string json = "\"";
  for (std::size_t at = 0; at < text.size();) {
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(text, at);
    const std::string_view bytes = text.substr(at, decoded.length == 0 ? 1 : decoded.length);
    if (decoded.length == 0) {
      json += "\\ufffd";
    } else if (decoded.character < 0x20 || decoded.character == 0x7F) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      json.append("\\u00").append(1, kDigits[decoded.character >> 4U]).append(1, kDigits[decoded.character & 15U]);
    } else {
      json.append(decoded.character == U'"' || decoded.character == U'\\' ? "\\" : "").append(bytes);
    }
    at += bytes.size();
  }
  return json += '"';
}

std::string AsJson(const std::string& file, const Fields& fields) {
  std::string json = "{\"file\": " + JsonString(file);
  for (const auto& [name, value] : fields) {
    json += ", " + JsonString(name) + ": " + JsonString(value);
  }
  return json + "}";
}

std::string AsTable(const std::string& file, const Fields& fields) {
  const auto printable = [](const std::string& text) { return WhyNotPrintable(text).empty() ? text : Shown(text); };
  std::string table = printable(file) + "\n";
  for (const auto& [name, value] : fields) {
    table += "  " + (value.empty() ? name : PadEnd(name, 18) + printable(value)) + "\n";
  }
  return table;
}

Fields ReadFields(const Library& library, const std::string& file) {
  const std::filesystem::path path(std::u8string(file.begin(), file.end()));
  kiv::platform::InputStream::Open(path);  // says why a file cannot be read, which the library does not tell
  return library.VersionFields(path);
}

int RunVersion(Session& session, const Arguments& arguments) {
  const bool json = arguments.Has("json");
  int result = kDone;
  std::string separator = json ? "[" : "";
  for (const std::string& file : arguments.Values()) {
    try {
      const Fields fields = ReadFields(session.Lib(), file);
      session.out.Write(separator + (json ? AsJson(file, fields) : AsTable(file, fields)));
      separator = json ? ",\n " : "\n";
    } catch (const kiv::OsError& error) {
      session.Report(Shown(file) + ": " + kiv::ToUtf8(error.what()));
      result = kBadInput;
    }
  }
  if (json) {
    session.out.Write(separator == "[" ? "[]\n" : "]\n");
  }
  return result;
}

int RunCompareVersions(Session& session, const Arguments& arguments) {
  constexpr int kBelow = 10;
  constexpr int kAbove = 11;
  constexpr int kEqual = kDone;
  const std::int32_t difference = session.Lib().CompareVersions(arguments.Values()[0], arguments.Values()[1]);
  session.out.Write(std::to_string(difference) + "\n");
  return difference == 0 ? kEqual : difference < 0 ? kBelow : kAbove;
}

}  // namespace

const Command kVersionCommand = {"version",
                                 "Show the version resources of Windows programs",
                                 "FILE...",
                                 1,
                                 std::numeric_limits<std::size_t>::max(),
                                 kOptions,
                                 kDetails,
                                 RunVersion};

const Command kCompareVersionsCommand = {
    "compare-versions", "Compare two version numbers", "A B", 2, 2, {}, kCompareDetails, RunCompareVersions};

}  // namespace kivtools
