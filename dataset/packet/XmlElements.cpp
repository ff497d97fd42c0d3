#include "dataset/packet/XmlElements.h"

#include <algorithm>

namespace kiv::packet {

XmlPull::Event XmlElements::NextElement() {
  for (;;) {
    const Event event = Next();
    taken_ = 0;
    if (event != Event::Text) {
      return event;
    }
    if (const auto text = std::ranges::find_if_not(Content(), IsBlank); text != Content().end()) {
      RefuseAt(&*text, "text unde trebuie elemente");
    }
  }
}

void XmlElements::ExpectStart(std::string_view name) {
  if (NextElement() != Event::Start || Name() != name) {
    Refuse("trebuie elementul <" + Text(name) + ">");
  }
}

void XmlElements::ExpectEnd() {
  if (NextElement() != Event::End) {
    Refuse("elementul nu are voie sa tina altele");
  }
}

bool XmlElements::HasAttribute(std::string_view name) const noexcept {
  return std::ranges::find(Attributes(), name, &Attribute::name) != Attributes().end();
}

std::string XmlElements::TakeAttribute(std::string_view name) {
  const auto found = std::ranges::find(Attributes(), name, &Attribute::name);
  if (found == Attributes().end()) {
    return {};
  }
  ++taken_;
  return std::string(found->value);
}

void XmlElements::EndOfAttributes() const {
  if (taken_ != Attributes().size()) {
    Refuse("un atribut nu este cunoscut sau apare de doua ori");
  }
}

std::size_t XmlElements::IndexOf(std::string_view name, std::span<const std::string_view> names) const {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) {
    Refuse(ShownPiece(name) + " nu este cunoscut");
  }
  return static_cast<std::size_t>(found - names.begin());
}

}  // namespace kiv::packet
