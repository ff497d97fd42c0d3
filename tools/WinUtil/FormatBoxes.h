#pragma once

#include <array>

#include "platform/WindowSystem.h"

/// The dialogs of the system's call that formats a diskette, recognised by their English texts.
namespace kiv::format_boxes {

/// A control of the format dialog, and what it is called in Romanian.
struct Control {
  TextView className;
  TextView text;
  TextView otherText;  ///< of another edition, or of a later moment
  TextView romanian;   ///< empty for one that keeps its text
  std::int32_t width;  ///< 0 for one that is wide enough
};

enum ControlNumber : std::size_t { kStartButton = 3, kCloseButton = 4, kQuickOption = 5 };

constexpr std::array<Control, 17> kControls = {{
    {"Static", "Ca&pacity:", "", "Capacitate", 100},
    {"Button", "Format type", "", "Tipul formatului", 0},
    {"Button", "Other options", "Format &options", "Alte optiuni", 0},
    {"Button", "&Start", "", "&Start", 0},
    // Once it has formatted, the system gives it its own text again; until then it has ours.
    {"Button", "&Close", "Inchide", "Inchide", 0},
    {"Button", "&Quick (erase)", "&Quick Format", "Rapid (sterge discheta)", 0},
    {"Button", "&Full", "", "Complet", 0},
    {"Button", "Copy system files &only", "", "Numai copiaza fisiere sistem", 0},
    {"Static", "Label", "Volume &label", "Eticheta", 0},
    {"Button", "&No label", "", "Fara eticheta", 0},
    {"Button", "&Display summary when finished", "", "Afisez un rezumat cand termin", 0},
    {"Button", "Copy s&ystem files", "", "Copiaza fisierele sistem", 0},
    {"Static", "&File system", "", "Sistem de fisiere", 200},
    {"Static", "&Allocation unit size", "", "Dimensiunea unitatii de alocare", 200},
    {"ComboBox", "Default allocation size", "", "", 0},
    {"Button", "&Enable Compression", "", "Activeaza compresia", 0},
    {"Button", "Create an &MS-DOS startup disk", "", "Creaza un disc de pornire Ms-DOS", 0},
}};
constexpr std::int32_t kLabelHeight = 16;

constexpr TextView kRomanianCaption = "Formatez discheta de 3\xBD inch (A:)";

enum class Message : std::uint8_t { None, NoDisk, EraseWarning };

/// What one look at a thread's windows has found; 0 for what is not there.
struct Found {
  Handle main = 0;
  std::array<Handle, kControls.size()> controls{};
  Handle popup = 0;  ///< the system's message box over the format dialog
  Handle popupRetry = 0;
  Handle popupCancel = 0;
  Handle popupOk = 0;
  Handle popupText = 0;
  Message message = Message::None;
  Handle results = 0;
  Handle resultsClose = 0;

  /// 1 and the controls of the format dialog that were found.
  [[nodiscard]] std::int32_t Count() const;
};

Found Look(platform::ThreadWindows& windows);

/// The OK of the box in front that tells that all is formatted.
Handle FindCompletionOk(platform::ThreadWindows& windows);

}  // namespace kiv::format_boxes
