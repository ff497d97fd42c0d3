#include <algorithm>
#include <array>
#include <span>

#include "kivtools/Host/Headless.h"

namespace kiv::host::headless {
namespace {

bool HasButton(DialogButtons buttons, DialogAnswer answer) {
  switch (buttons) {
    case DialogButtons::Ok:
      return answer == DialogAnswer::Ok;
    case DialogButtons::OkCancel:
      return answer == DialogAnswer::Ok || answer == DialogAnswer::Cancel;
    case DialogButtons::YesNo:
      return answer == DialogAnswer::Yes || answer == DialogAnswer::No;
    case DialogButtons::RetryCancel:
      return answer == DialogAnswer::Retry || answer == DialogAnswer::Cancel;
  }
  return false;
}

/// One of the names by number; the number itself where it has none.
Text Named(std::span<const char* const> names, std::int32_t number) {
  const auto index = static_cast<std::size_t>(number);
  return number >= 0 && index < names.size() ? names[index] : std::to_string(number);
}

Text Described(const Dialogs::Dialog& dialog) {
  static constexpr std::array kKinds = {"informare", "avertizare", "eroare"};
  static constexpr std::array kButtons = {"OK", "OK/Cancel", "Yes/No", "Retry/Cancel"};
  return Named(kKinds, static_cast<std::int32_t>(dialog.kind)) + " \"" + dialog.text + "\" (" +
         Named(kButtons, static_cast<std::int32_t>(dialog.buttons)) + ")";
}

}  // namespace

DialogAnswer Dialogs::Ask(DialogKind kind, TextView text, DialogButtons buttons) {
  const Dialog asked{kind, Text(text), buttons};
  if (script_.empty() || script_.front().dialog != asked) {
    throw Error("Dialog neasteptat: " + Described(asked) + "; se astepta " +
                (script_.empty() ? "nici unul" : Described(script_.front().dialog)));
  }
  const DialogAnswer answer = script_.front().answer;
  script_.pop_front();
  return answer;
}

void Dialogs::Expect(Dialog dialog, DialogAnswer answer) {
  if (!HasButton(dialog.buttons, answer)) {
    throw Error("Dialogul nu are butonul raspunsului: " + Described(dialog));
  }
  script_.push_back({std::move(dialog), answer});
}

}  // namespace kiv::host::headless
