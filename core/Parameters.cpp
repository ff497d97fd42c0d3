#include "core/Parameters.h"

#include <utility>

namespace kiv {

StringList SplitParameters(TextView parameters) {
  StringList list;
  Text current;
  bool begun = false;
  bool quoted = false;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const char letter = parameters[i];
    if (letter == '"') {
      if (quoted && parameters.substr(i + 1, 1) == "\"") {
        current.push_back('"');
        ++i;
      } else {
        quoted = !quoted;
      }
      begun = true;
    } else if (!quoted && (letter == ' ' || letter == '\t')) {
      if (std::exchange(begun, false)) {
        list.push_back(std::exchange(current, {}));
      }
    } else {
      current.push_back(letter);
      begun = true;
    }
  }
  if (begun) {
    list.push_back(std::move(current));
  }
  return list;
}

}  // namespace kiv
