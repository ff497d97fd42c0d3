#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::string_view kLevel = "level";
constexpr std::array kOptions = {
    Option{kLevel, "N", {"2 for a little, 3 for more; 2 if left out", "2 puțin, 3 mai mult; altfel 2"}}};

constexpr Phrase kDetails = {
    "IN.bmp is an uncompressed picture of 1 to 32 bits a pixel, OUT.bmp gets 24. Both may be the same file.\n\n"
    "Example:\n"
    "  kivtools blur fond.bmp neted.bmp --level 3\n",
    "IN.bmp este o imagine necomprimată de 1 până la 32 de biți pe punct, OUT.bmp primește 24. Pot fi același\n"
    "fișier.\n\n"
    "Exemplu:\n"
    "  kivtools blur fond.bmp neted.bmp --level 3\n"};

int RunBlur(Session& session, const Arguments& arguments) {
  const std::string level = arguments.ValueOf(kLevel).value_or("2");
  if (level != "2" && level != "3") {
    throw InputError(Say({"the level is 2 or 3, not {0}", "nivelul este 2 sau 3, nu {0}"}, Shown(level)));
  }
  session.Lib().BlurFile(PathFromUtf8(arguments.Values()[0]), PathFromUtf8(arguments.Values()[1]),
                         level == "3" ? 3 : 2);
  return kDone;
}

constexpr Command kCommand = {
    "blur", {"Soften a picture", "Estompează o imagine"}, "IN.bmp OUT.bmp", 2, 2, kOptions, kDetails, RunBlur};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
