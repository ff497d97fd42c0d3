#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Pictures.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::string_view kVertical = "vertical";
constexpr std::string_view kDithered = "dithered";
constexpr std::array kOptions = {
    Option{kVertical,
           "",
           {"from the top down instead of from left to right", "de sus în jos, nu de la stânga la dreapta"}},
    Option{kDithered,
           "",
           {"through the hues between, with a random grain; 513 columns show it whole",
            "prin nuanțele dintre ele, cu puncte la întâmplare; 513 coloane o arată întreagă"}},
};

constexpr Phrase kDetails = {
    "Colours are #RRGGBB; the sign may be left out. An existing file is replaced.\n\n"
    "Examples:\n"
    "  kivtools gradient 003366 99CCFF 640x48 fond.bmp\n"
    "  kivtools gradient 800000 FFFFFF 640x48 fond.bmp --dithered\n",
    "Culorile sunt #RRGGBB; semnul # poate lipsi. Un fișier existent se înlocuiește.\n\n"
    "Exemple:\n"
    "  kivtools gradient 003366 99CCFF 640x48 fond.bmp\n"
    "  kivtools gradient 800000 FFFFFF 640x48 fond.bmp --dithered\n"};

int RunGradient(Session& session, const Arguments& arguments) {
  if (arguments.Has(kVertical) && arguments.Has(kDithered)) {
    throw InputError(Say({"--vertical and --dithered exclude each other", "--vertical și --dithered se exclud"}));
  }
  const std::vector<std::string>& values = arguments.Values();
  const std::uint32_t from = ReadColour(values[0]);
  const std::uint32_t to = ReadColour(values[1]);
  Picture picture = ReadSize(values[2]);
  session.Lib().Fill(picture,
                     arguments.Has(kVertical)   ? Filling::Vertical
                     : arguments.Has(kDithered) ? Filling::Dithered
                                                : Filling::Horizontal,
                     from, to);
  session.Lib().SavePicture(picture, PathFromUtf8(values[3]));
  return kDone;
}

constexpr Command kCommand = {
    "gradient",
    {"Write a picture that goes from one colour to another", "Scrie o imagine care trece dintr-o culoare în alta"},
    "FROM TO WIDTHxHEIGHT OUT.bmp",
    4,
    4,
    kOptions,
    kDetails,
    RunGradient};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
