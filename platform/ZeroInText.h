#pragma once

namespace kiv::platform {

/// Whether a text that goes to the system zero-terminated would be cut short there; narrow or wide.
template <class Text>
bool HasZero(const Text& text) noexcept {
  return text.find(typename Text::value_type{}) != Text::npos;
}

}  // namespace kiv::platform
