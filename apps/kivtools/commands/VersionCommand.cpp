#include <array>
#include <filesystem>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Json.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/InputStream.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{{"json",
                                              "",
                                              {"for machines: an array with an object for each file",
                                               "pentru programe: un tablou cu câte un obiect de fișier"}}}};

constexpr Phrase kDetails = {
    "Reads the version resource of Windows programs and libraries, on every system. What has none, or is damaged,\n"
    "shows \"<info not available>\".\n\n"
    "Examples:\n"
    "  kivtools version app.exe\n"
    "  kivtools version --json *.dll\n",
    "Citește resursa de versiune a programelor și bibliotecilor Windows, pe orice sistem. Ce nu are una, sau o\n"
    "are stricată, arată \"<info not available>\".\n\n"
    "Exemple:\n"
    "  kivtools version app.exe\n"
    "  kivtools version --json *.dll\n"};

using Fields = std::vector<Library::VersionField>;

std::string AsJson(const std::string& file, const Fields& fields) {
  std::string json = "{\"file\": " + JsonString(file);
  for (const auto& [name, value] : fields) {
    json += ", " + JsonString(name) + ": " + JsonString(value);
  }
  return json + "}";
}

std::string AsTable(const std::string& file, const Fields& fields) {
  std::string table = ShownName(file) + "\n";
  for (const auto& [name, value] : fields) {
    table += "  " + (value.empty() ? name : PadEnd(name, 18) + ShownName(value)) + "\n";
  }
  return table;
}

Fields ReadFields(const Library& library, const std::string& file) {
  const std::filesystem::path path = PathFromUtf8(file);
  // Says why a file cannot be read, which the library does not tell, and never waits for the writer of a pipe.
  InputStream::Open(path, InputStream::What::File);
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
    } catch (const InputError& error) {
      session.out.Flush();  // so that the message comes after the files before it
      session.Report(AsItIs(error.what()));
      result = kBadInput;
    }
  }
  if (json) {
    session.out.Write(separator == "[" ? "[]\n" : "]\n");
  }
  return result;
}

constexpr Command kCommand = {
    "version",  {"Show the version resources of Windows programs", "Arată versiunea programelor Windows"},
    "FILE...",  1,
    kAnyNumber, kOptions,
    kDetails,   RunVersion};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
