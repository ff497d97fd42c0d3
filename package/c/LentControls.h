#pragma once

#include <memory>

#include "kivtools/Host/Controls.h"
#include "kivtools/c/Host.h"

namespace kiv::c {

/// The table in use. Controls keep the one that they came from; it is alive for as long as any does.
using SharedTable = std::shared_ptr<const KivHostTable>;

/// A control of the table, as its kind says it is.
std::unique_ptr<host::Control> MakeLentControl(const SharedTable& table, KivControl* control);

/// One of the table's functions; throws Error with its name where the application has not got it.
template <class Function>
Function* Needed(Function* function, const char* name) {
  if (function == nullptr) {
    throw Error(Text("Aplicatia nu ofera functia ") + name);
  }
  return function;
}

/// A text that one of the table's functions writes into a buffer. Throws Error with the function's name for a failure.
template <class Write>
Text WrittenText(Write&& write, const char* name) {
  Text text(64, '\0');
  for (;;) {
    const KivLength length = write(text.data(), text.size() + 1);
    if (length < 0) {
      throw Error(Text("Aplicatia nu da textul: ") + name);
    }
    const bool whole = static_cast<std::size_t>(length) <= text.size();
    text.resize(static_cast<std::size_t>(length));
    if (whole) {
      return text;
    }
  }
}

/// What one of the table's functions lists into a buffer; again with more room where there were more.
template <class Item, class List>
std::vector<Item> Listed(List&& list) {
  std::vector<Item> items(16);
  for (;;) {
    const std::size_t count = list(items.data(), items.size());
    const bool whole = count <= items.size();
    items.resize(count);
    if (whole) {
      return items;
    }
  }
}

}  // namespace kiv::c
