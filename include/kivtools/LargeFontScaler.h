/// @file
/// Forms for large system fonts: sizes scaled by the ratio in "LargeFonts.txt" beside the running program.
///
/// The file's first line holds a multiplier, ":" and a divisor, "5:4" for a quarter more; blanks and other characters
/// are passed over, a part that is no number counts as 8. Where the file is missing it is made with "1:1". Where it
/// cannot be made, in a folder that may not be written, the ratio follows the system's message font: its height to 8,
/// or to 11 where the system gives the height of the letters.
///
/// The ratio is read at the first use and kept, unless its divisor is 0. Meant for the application's main thread.
#pragma once

#include "kivtools/Host/Controls.h"
#include "kivtools/Types.h"

namespace kiv {

/// value x multiplier / divisor x pixels per inch / 96, each division cut toward zero and each product wrapped at 32
/// bits. Throws DivisionByZero for a divisor of 0 and OsError where the file exists and cannot be read. Example: with
/// "5:4" on a screen of 120 pixels per inch `IntegerScale(100)` is 156.
[[nodiscard]] KIV_API std::int32_t IntegerScale(std::int32_t value);

/// Scales a container by the ratio, with everything in it, as its framework does; the bounds of any other control by
/// IntegerScale, which counts the pixels per inch as well. Throws like IntegerScale; nothing has changed then.
/// Example: with "5:4" a panel 100 wide gets 125, a label at (8, 16) on a screen of 96 pixels per inch moves to (10,
/// 20).
KIV_API void ScaleControl(host::Control& control);

}  // namespace kiv
