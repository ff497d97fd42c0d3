#include <QApplication>
#include <QMessageBox>
#include <array>

#include "host/qt/Services.h"
#include "host/qt/Texts.h"

namespace kiv::host::qt {
namespace {

struct Appearance {
  QMessageBox::Icon icon;
  const char* title;
};

Appearance AppearanceOf(DialogKind kind) {
  switch (kind) {
    case DialogKind::Information:
      return {QMessageBox::Information, "Informare"};
    case DialogKind::Warning:
      return {QMessageBox::Warning, "Avertizare"};
    case DialogKind::Error:
      return {QMessageBox::Critical, "Eroare"};
  }
  throw Error("Tip de dialog necunoscut: " + std::to_string(static_cast<std::int32_t>(kind)));
}

/// The first is what Enter presses, the last what closing the box answers.
QList<QMessageBox::StandardButton> ButtonsOf(DialogButtons buttons) {
  switch (buttons) {
    case DialogButtons::Ok:
      return {QMessageBox::Ok};
    case DialogButtons::OkCancel:
      return {QMessageBox::Ok, QMessageBox::Cancel};
    case DialogButtons::YesNo:
      return {QMessageBox::Yes, QMessageBox::No};
    case DialogButtons::RetryCancel:
      return {QMessageBox::Retry, QMessageBox::Cancel};
  }
  throw Error("Butoane de dialog necunoscute: " + std::to_string(static_cast<std::int32_t>(buttons)));
}

DialogAnswer AnswerOf(int pressed, DialogAnswer closed) {
  switch (pressed) {
    case QMessageBox::Ok:
      return DialogAnswer::Ok;
    case QMessageBox::Cancel:
      return DialogAnswer::Cancel;
    case QMessageBox::Yes:
      return DialogAnswer::Yes;
    case QMessageBox::No:
      return DialogAnswer::No;
    case QMessageBox::Retry:
      return DialogAnswer::Retry;
    default:
      return closed;
  }
}

}  // namespace

DialogAnswer Dialogs::Ask(DialogKind kind, TextView text, DialogButtons buttons) {
  const auto [icon, title] = AppearanceOf(kind);
  const QList<QMessageBox::StandardButton> shown = ButtonsOf(buttons);
  QMessageBox box(icon, QString::fromLatin1(title), QString(), QMessageBox::NoButton, QApplication::activeWindow());
  // A path or a name must not be taken for marked-up text.
  box.setTextFormat(Qt::PlainText);
  box.setText(ToQt(text, DiacriticForm::CommaBelow).remove(u'\r'));
  for (const QMessageBox::StandardButton button : shown) {
    box.addButton(button);
  }
  box.setDefaultButton(shown.first());
  box.setEscapeButton(shown.last());
  // An application that quits meanwhile ends the wait without a button.
  return AnswerOf(box.exec(), AnswerOf(shown.last(), DialogAnswer::Cancel));
}

}  // namespace kiv::host::qt
