#include <cstdlib>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Pictures.h"
#include "apps/kivtools/system/Console.h"

namespace kivtools {
namespace {

constexpr Phrase kDetails = {
    "The sign may be left out. On a terminal that shows colours each line begins with a swatch; NO_COLOR, set to\n"
    "anything, leaves them out.\n\n"
    "Example:\n"
    "  kivtools colour '#0080FF'\n",
    "Semnul # poate lipsi. Pe un terminal care arată culori, fiecare rând începe cu o mostră; NO_COLOR, cu orice\n"
    "valoare, le lasă deoparte.\n\n"
    "Exemplu:\n"
    "  kivtools colour '#0080FF'\n"};

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool ShowsColours() {
  if (!TerminalWidth(StandardStream::Output) || IsSet("NO_COLOR")) {
    return false;
  }
  return IsSet("WT_SESSION") || (IsSet("TERM") && std::string_view(std::getenv("TERM")) != "dumb");
}

std::string Swatch(std::uint32_t colour) {
  return "\x1b[48;2;" + std::to_string(colour & 0xFFU) + ";" + std::to_string(colour >> 8U & 0xFFU) + ";" +
         std::to_string(colour >> 16U & 0xFFU) + "m      \x1b[0m  ";
}

int RunColour(Session& session, const Arguments& arguments) {
  const std::uint32_t colour = ReadColour(arguments.Values().front());
  const bool swatches = ShowsColours();
  const auto write = [&](std::string_view name, std::uint32_t shown) {
    session.out.Write((swatches ? Swatch(shown) : "") + PadEnd(name, 16) + WriteColour(shown) + "\n");
  };
  write(Say({"itself", "ea însăși"}), colour);
  for (const char* const name : {"Lite", "LiteLite", "Dark", "DarkDark", "LiteRed", "LiteGreen", "LiteBlue",
                                 "LiteLiteRed", "LiteLiteGreen", "LiteLiteBlue", "TurnRed", "TurnGreen", "TurnBlue"}) {
    write(name, session.Lib().Tint(name, colour));
  }
  return kDone;
}

constexpr Command kCommand = {
    "colour", {"Show the tints of a colour", "Arată nuanțele unei culori"}, "#RRGGBB", 1, 1, {}, kDetails, RunColour};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
