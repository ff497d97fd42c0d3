#include <array>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Pictures.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

constexpr std::string_view kVertical = "vertical";
constexpr std::string_view kDithered = "dithered";
constexpr std::array kOptions = {
    Option{kVertical, "", "from the top down instead of from left to right"},
    Option{kDithered, "", "through the hues between, with a random grain; 513 columns show it whole"},
};

constexpr std::string_view kDetails =
    "Colours are #RRGGBB; the sign may be left out. An existing file is replaced.\n\n"
    "Examples:\n"
    "  kivtools gradient 003366 99CCFF 640x48 fond.bmp\n"
    "  kivtools gradient 800000 FFFFFF 640x48 fond.bmp --dithered\n";

int RunGradient(Session& session, const Arguments& arguments) {
  if (arguments.Has(kVertical) && arguments.Has(kDithered)) {
    throw InputError("--vertical and --dithered exclude each other");
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

constexpr Command kCommand = {"gradient",
                              "Write a picture that goes from one colour to another",
                              "FROM TO WIDTHxHEIGHT OUT.bmp",
                              4,
                              4,
                              kOptions,
                              kDetails,
                              RunGradient};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
