#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kivtools {

/// A picture in memory, three bytes a pixel, blue first.
struct Picture {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::vector<std::uint8_t> pixels;  ///< rows without anything between them
};

/// A colour as #RRGGBB, with or without the sign; 0x00BBGGRR. Throws InputError, naming the text.
/// Example: "#0000FF" gives 0xFF0000.
std::uint32_t ReadColour(std::string_view text);

/// The reverse. Example: 0xFF0000 gives "#0000FF".
std::string WriteColour(std::uint32_t colour);

/// A black picture. Throws InputError where it does not fit the memory.
Picture BlackPicture(std::int32_t width, std::int32_t height);

/// The same of a size such as "640x480", each side 1 to 32767. Throws InputError, naming the text, for anything else.
Picture ReadSize(std::string_view text);

}  // namespace kivtools
