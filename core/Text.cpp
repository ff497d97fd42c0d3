#include "kivtools/Text.h"

#include "core/Windows1250Codec.h"

namespace kiv {

std::string ToUtf8(TextView text, DiacriticForm form) {
  return windows1250::ToUtf8(text, form);
}

Text FromUtf8(std::string_view utf8) {
  return windows1250::FromUtf8(utf8);
}

}  // namespace kiv
