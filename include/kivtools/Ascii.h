/// @file
/// The classes of ASCII characters. Bytes and characters outside ASCII belong to none of them, whatever the locale.
#pragma once

namespace kiv::ascii {

/// Whether the character is a decimal digit. Example: true for '7'.
template <class Character>
constexpr bool IsDigit(Character character) noexcept {
  return character >= '0' && character <= '9';
}

/// Whether the character is a capital from A to Z.
template <class Character>
constexpr bool IsUpper(Character character) noexcept {
  return character >= 'A' && character <= 'Z';
}

/// Whether the character is a small letter from a to z.
template <class Character>
constexpr bool IsLower(Character character) noexcept {
  return character >= 'a' && character <= 'z';
}

/// Whether the character is a control character: 0 to 31 and 127. Example: true for a tab.
template <class Character>
constexpr bool IsControl(Character character) noexcept {
  return (character >= 0 && character < ' ') || character == 0x7F;
}

/// The capital of a small letter from a to z; other characters as they are. Example: 'q' gives 'Q'.
template <class Character>
constexpr Character ToUpper(Character character) noexcept {
  return IsLower(character) ? static_cast<Character>(character - 'a' + 'A') : character;
}

/// The small letter of a capital from A to Z; other characters as they are. Example: 'Q' gives 'q'.
template <class Character>
constexpr Character ToLower(Character character) noexcept {
  return IsUpper(character) ? static_cast<Character>(character - 'A' + 'a') : character;
}

}  // namespace kiv::ascii
