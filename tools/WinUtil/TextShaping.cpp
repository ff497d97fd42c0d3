#include "kivtools/WinUtil/TextShaping.h"

#include <algorithm>

#include "core/Numbers.h"

namespace kiv {
namespace {

constexpr TextView kBlanks = "\t\n\r ";

/// The word at the front of `text`, which then starts after it.
TextView TakeWord(TextView& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const TextView word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

std::size_t MissingCharacters(TextView text, std::int32_t length) {
  const auto wanted = static_cast<std::size_t>(std::max(length, 0));
  return wanted > text.size() ? wanted - text.size() : 0;
}

void RequireAtLeastOne(std::int32_t value, TextView what) {
  if (value < 1) {
    throw Error(Text(what) + " " + std::to_string(value) + " este sub 1");
  }
}

/// `count` digits from a position counted from 1; a start before the first digit reads from the first.
TextView Digits(TextView digits, std::ptrdiff_t start, std::ptrdiff_t count) {
  return digits.substr(static_cast<std::size_t>(std::max<std::ptrdiff_t>(start, 1) - 1),
                       static_cast<std::size_t>(std::max<std::ptrdiff_t>(count, 0)));
}

Text JoinWithDots(std::initializer_list<TextView> groups) {
  Text joined;
  for (const TextView group : groups) {
    if (!joined.empty()) {
      joined.push_back('.');
    }
    joined.append(group);
  }
  return joined;
}

}  // namespace

Text TextIntreGhilimele(char quote, TextView text) {
  Text quoted;
  quoted.reserve(text.size() + static_cast<std::size_t>(std::ranges::count(text, quote)) + 2);
  quoted.push_back(quote);
  for (const char character : text) {
    quoted.append(character == quote ? 2 : 1, character);
  }
  quoted.push_back(quote);
  return quoted;
}

Text TextInGhilimele(TextView text) {
  return TextIntreGhilimele('"', text);
}

Text QuoteText(TextView text, char quote) {
  return TextIntreGhilimele(quote, text);
}

Text TextDinGhilimele(TextView text) {
  if (text.size() < 3) {
    return {};
  }
  Text unquoted;
  bool pending = false;
  for (const char character : text.substr(1, text.size() - 2)) {
    if (character == '"') {
      if (pending) {
        unquoted.push_back(character);
      }
      pending = !pending;
    } else if (pending) {
      break;
    } else {
      unquoted.push_back(character);
    }
  }
  return unquoted;
}

Text PadLeft(TextView text, std::int32_t length, char fill) {
  return Text(MissingCharacters(text, length), fill).append(text);
}

Text PadRight(TextView text, std::int32_t length, char fill) {
  return Text(text).append(MissingCharacters(text, length), fill);
}

Text TextDeLatimeFixa(TextView text, std::int32_t width, TextView fill) {
  RequireAtLeastOne(width, "TextDeLatimeFixa: latimea");
  if (fill.empty()) {
    fill = " ";
  }
  const auto wanted = static_cast<std::size_t>(width);
  Text fixed(text);
  while (fixed.size() < wanted) {
    fixed.append(fill);
  }
  fixed.erase(wanted - 1, fixed.size() - wanted);
  return fixed;
}

Text StripDot(TextView text) {
  Text digits;
  std::ranges::copy_if(text, std::back_inserter(digits), ascii::IsDigit<char>);
  return digits;
}

Text StripDotExtract2CifreDupaVirgula(TextView text) {
  Text dotted(text);
  std::ranges::replace(dotted, ',', '.');
  const std::size_t dot = dotted.find('.');
  if (dot == Text::npos) {
    return StripDot(dotted).append("00");
  }
  if (dotted.find('.', dot + 1) != Text::npos) {
    throw Error("\"" + dotted + "\" include mai multe puncte zecimale");
  }
  const TextView decimals = TextView(dotted).substr(dot + 1, 2);
  return StripDot(dotted.substr(0, dot) + PadRight(decimals, 2, '0'));
}

Text PunePuncteInSimbol(TextView text, std::int32_t group) {
  RequireAtLeastOne(group, "PunePuncteInSimbol: grupa");
  const auto step = static_cast<std::size_t>(group);
  Text grouped(text.substr(0, step));
  for (std::size_t at = step; at < text.size(); at += std::min(step, text.size() - at)) {
    grouped.push_back('.');
    grouped.append(text.substr(at, step));
  }
  return grouped;
}

bool RespectaMasca(TextView text, TextView mask) {
  if (mask.empty()) {
    return false;
  }
  for (std::size_t i = 0; i < mask.size(); ++i) {
    if (mask[i] == '*') {
      return true;
    }
    if (i >= text.size()) {
      return false;
    }
    const bool fits = mask[i] == '?' || mask[i] == text[i] || (mask[i] == '#' && ascii::IsDigit(text[i]));
    if (!fits) {
      return false;
    }
  }
  return text.size() == mask.size();
}

bool GuidEgal(const Guid& left, const Guid& right) noexcept {
  return left.data1 == right.data1 && left.data2 == right.data2 && left.data3 == right.data3 &&
         left.data4 == right.data4;
}

Text NumeDinNumeSiPrenume(TextView fullName) {
  return Text(TakeWord(fullName));
}

Text PrenumeDinNumeSiPrenume(TextView fullName) {
  TakeWord(fullName);
  return Text(TakeWord(fullName));
}

Text ScrieFrumosNrTelefon(TextView number) {
  const Text digits = StripDot(number);
  const auto count = static_cast<std::ptrdiff_t>(digits.size());
  if (count < 3) {
    return {};
  }
  const TextView lastThree = Digits(digits, count - 2, 3);
  if ((count == 10 || count == 7) && digits[2] == '1') {
    return JoinWithDots({Digits(digits, 1, 3), Digits(digits, 4, 2), Digits(digits, count - 4, 2), lastThree});
  }
  return JoinWithDots({Digits(digits, 1, count - 6), Digits(digits, count - 5, 3), lastThree});
}

}  // namespace kiv
