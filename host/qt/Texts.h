#pragma once

#include <QString>

#include "kivtools/Text.h"

namespace kiv::host::qt {

/// A text as Qt holds it, each byte one unit, so that nothing can fail.
inline QString ToQt(TextView text, DiacriticForm form) {
  QString units;
  units.reserve(static_cast<qsizetype>(text.size()));
  for (const char byte : text) {
    const char16_t unit = windows1250::ToUnicode(static_cast<unsigned char>(byte));
    units.append(
        QChar(form == DiacriticForm::Cedilla ? unit : static_cast<char16_t>(windows1250::CommaBelowForm(unit))));
  }
  return units;
}

/// A text of Qt's whatever it holds: what Windows-1250 lacks becomes "?".
inline Text FromQt(const QString& units) {
  Text text;
  text.reserve(static_cast<std::size_t>(units.size()));
  for (const QChar unit : units) {
    text.push_back(static_cast<char>(
        windows1250::FromUnicode(windows1250::CedillaForm(unit.unicode())).value_or(static_cast<unsigned char>('?'))));
  }
  return text;
}

}  // namespace kiv::host::qt
