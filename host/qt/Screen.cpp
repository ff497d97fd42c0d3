#include <QApplication>
#include <QCursor>
#include <QFontInfo>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPalette>
#include <QScreen>
#include <QWidget>
#include <array>
#include <cmath>

#include "host/qt/Services.h"

namespace kiv::host::qt {
namespace {

Rect FromQt(const QRect& rect) {
  return Rect::At(rect.x(), rect.y(), rect.width(), rect.height());
}

std::int32_t Whole(qreal value) {
  return static_cast<std::int32_t>(std::lround(value));
}

std::int32_t OfScreen(const QScreen& screen, DeviceCapability capability) {
  switch (capability) {
    case DeviceCapability::HorizontalSize:
      return Whole(screen.physicalSize().width());
    case DeviceCapability::VerticalSize:
      return Whole(screen.physicalSize().height());
    case DeviceCapability::HorizontalResolution:
      return screen.geometry().width();
    case DeviceCapability::VerticalResolution:
      return screen.geometry().height();
    default:
      return 0;  // a screen has no sheet
  }
}

/// Sizes are those of the part of the sheet that is printed on.
std::int32_t OfSheet(const QPagedPaintDevice& device, DeviceCapability capability) {
  const QPageLayout layout = device.pageLayout();
  const QRectF printed = layout.paintRect(QPageLayout::Millimeter);
  const QRect printedPixels = layout.paintRectPixels(device.logicalDpiX());
  const QRect sheet = layout.fullRectPixels(device.logicalDpiX());
  switch (capability) {
    case DeviceCapability::HorizontalSize:
      return Whole(printed.width());
    case DeviceCapability::VerticalSize:
      return Whole(printed.height());
    case DeviceCapability::HorizontalResolution:
      return printedPixels.width();
    case DeviceCapability::VerticalResolution:
      return printedPixels.height();
    case DeviceCapability::PhysicalWidth:
      return sheet.width();
    case DeviceCapability::PhysicalHeight:
      return sheet.height();
    case DeviceCapability::PhysicalOffsetHorizontal:
      return printedPixels.x();
    case DeviceCapability::PhysicalOffsetVertical:
      return printedPixels.y();
  }
  return 0;
}

std::int32_t OfPicture(const QPaintDevice& device, DeviceCapability capability) {
  switch (capability) {
    case DeviceCapability::HorizontalSize:
      return device.widthMM();
    case DeviceCapability::VerticalSize:
      return device.heightMM();
    case DeviceCapability::HorizontalResolution:
      return device.width();
    case DeviceCapability::VerticalResolution:
      return device.height();
    default:
      return 0;
  }
}

struct PaletteColour {
  QPalette::ColorRole role;
  QPalette::ColorGroup group = QPalette::Active;
};

/// By the number of the system colour.
constexpr std::array kPalette = {
    PaletteColour{QPalette::Mid},                             //  0 scroll bar
    PaletteColour{QPalette::Dark},                            //  1 desktop
    PaletteColour{QPalette::Highlight},                       //  2 caption of the active window
    PaletteColour{QPalette::Window, QPalette::Inactive},      //  3 caption of other windows
    PaletteColour{QPalette::Window},                          //  4 menu
    PaletteColour{QPalette::Base},                            //  5 background of windows
    PaletteColour{QPalette::Dark},                            //  6 window frame
    PaletteColour{QPalette::WindowText},                      //  7 text in menus
    PaletteColour{QPalette::Text},                            //  8 text in windows
    PaletteColour{QPalette::HighlightedText},                 //  9 text in the active window's caption
    PaletteColour{QPalette::Window},                          // 10 border of the active window
    PaletteColour{QPalette::Window, QPalette::Inactive},      // 11 border of other windows
    PaletteColour{QPalette::Dark},                            // 12 background behind documents
    PaletteColour{QPalette::Highlight},                       // 13 selected item
    PaletteColour{QPalette::HighlightedText},                 // 14 text of the selected item
    PaletteColour{QPalette::Button},                          // 15 face of buttons and dialogs
    PaletteColour{QPalette::Dark},                            // 16 shadow of buttons
    PaletteColour{QPalette::WindowText, QPalette::Disabled},  // 17 grey text
    PaletteColour{QPalette::ButtonText},                      // 18 text on buttons
    PaletteColour{QPalette::WindowText, QPalette::Inactive},  // 19 text in the captions of other windows
    PaletteColour{QPalette::Light},                           // 20 light edge of buttons
    PaletteColour{QPalette::Shadow},                          // 21 dark shadow of buttons
    PaletteColour{QPalette::Midlight},                        // 22 light on buttons
    PaletteColour{QPalette::ToolTipText},                     // 23 text of hints
    PaletteColour{QPalette::ToolTipBase},                     // 24 background of hints
    PaletteColour{QPalette::NoRole},                          // 25 (no colour)
    PaletteColour{QPalette::Link},                            // 26 link
    PaletteColour{QPalette::Highlight},                       // 27 right end of the active caption
    PaletteColour{QPalette::Window, QPalette::Inactive},      // 28 right end of other captions
    PaletteColour{QPalette::Highlight},                       // 29 selected menu item
    PaletteColour{QPalette::Window},                          // 30 menu bar
};

}  // namespace

std::vector<Monitor> Screen::Monitors() const {
  std::vector<Monitor> monitors;
  const QScreen* const primary = QGuiApplication::primaryScreen();
  for (const QScreen* const screen : QGuiApplication::screens()) {
    monitors.insert(screen == primary ? monitors.begin() : monitors.end(),
                    {FromQt(screen->geometry()), FromQt(screen->availableGeometry())});
  }
  return monitors;
}

Point Screen::MousePosition() const {
  const QPoint position = QCursor::pos();
  return {position.x(), position.y()};
}

std::int32_t Screen::PixelsPerInch() const {
  const QScreen* const screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) {
    throw Error("Nu pot afla rezolutia ecranului: nu exista nici unul");
  }
  return Whole(screen->logicalDotsPerInchY());
}

std::int32_t Screen::MessageFontHeight() const {
  return -QFontInfo(QApplication::font("QMessageBox")).pixelSize();
}

std::int32_t Screen::Capability(Handle device, DeviceCapability capability) const {
  const auto* const paints = reinterpret_cast<const QPaintDevice*>(device);
  if (paints == nullptr) {
    return 0;
  }
  if (const auto* const widget = dynamic_cast<const QWidget*>(paints)) {
    return OfScreen(*widget->screen(), capability);
  }
  if (const auto* const paged = dynamic_cast<const QPagedPaintDevice*>(paints)) {
    return OfSheet(*paged, capability);
  }
  return OfPicture(*paints, capability);
}

Colour Colours::SystemColour(std::uint8_t number) const {
  if (number >= kPalette.size() || kPalette.at(number).role == QPalette::NoRole) {
    return 0;
  }
  const auto [role, group] = kPalette.at(number);
  const QColor colour = QApplication::palette().color(group, role);
  return static_cast<Colour>(colour.red() | (colour.green() << 8) | (colour.blue() << 16));
}

}  // namespace kiv::host::qt
