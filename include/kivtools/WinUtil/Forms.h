/// @file
/// Forms in the middle of the monitor that the user works on. Meant for the application's main thread.
#pragma once

#include "kivtools/Host/Controls.h"
#include "kivtools/Types.h"

namespace kiv {

/// Puts a form in the middle of the work area of the monitor that is nearest to the mouse; halves are cut toward zero.
/// A form that is larger overhangs to the right and below, so that its title stays within reach.
///
/// With `allowEnlarging` a form that is wider and higher than the work area less 12 pixels is handed to
/// CentreazaSiRedimensioneazaForm instead. Throws Error where the host knows no monitor.
///
///     CentreazaForm(form, false);   // 300 x 200 on a work area of {0, 0, 1920, 1040}: at (810, 420)
KIV_API void CentreazaForm(host::Form& form, bool allowEnlarging);

/// Lets a form fill a small monitor: on one that is narrower than 1200 pixels, or not wider than high, the form takes
/// the work area less 15 pixels on each side and is maximised as soon as its window is shown, within 30 seconds. On
/// other monitors it is only centred, as by CentreazaForm(form, false).
///
/// The window is watched by a thread of the library, which keeps the library loaded until it ends; the form may go
/// before. Throws OsError where the system gives no thread; the form then has its place already. Throws Error where the
/// host knows no monitor.
///
///     CentreazaSiRedimensioneazaForm(form);   // 1024 x 768, work area 1024 x 738: 994 x 708 at (15, 15)
KIV_API void CentreazaSiRedimensioneazaForm(host::Form& form);

}  // namespace kiv
