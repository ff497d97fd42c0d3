#include "core/DelimitedList.h"

namespace kiv {
namespace {

class Scanner {
 public:
  Scanner(TextView text, char delimiter) : rest_(text), delimiter_(delimiter) { SkipBlanks(); }

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  Text TakeItem() {
    Text item = rest_.front() == '"' ? TakeQuoted() : TakePlain();
    SkipBlanks();
    return item;
  }

  bool TakeDelimiter() {
    if (AtEnd() || rest_.front() != delimiter_) {
      return false;
    }
    rest_.remove_prefix(1);
    SkipBlanks();
    return true;
  }

 private:
  static bool IsBlank(char character) { return character >= 1 && character <= ' '; }

  void SkipBlanks() {
    while (!AtEnd() && IsBlank(rest_.front())) {
      rest_.remove_prefix(1);
    }
  }

  Text TakePlain() {
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] != delimiter_ && !IsBlank(rest_[length])) {
      ++length;
    }
    Text item(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return item;
  }

  Text TakeQuoted() {
    Text item;
    rest_.remove_prefix(1);
    while (!AtEnd()) {
      const char character = rest_.front();
      rest_.remove_prefix(1);
      if (character == '"') {
        if (AtEnd() || rest_.front() != '"') {
          break;
        }
        rest_.remove_prefix(1);
      }
      item.push_back(character);
    }
    return item;
  }

  TextView rest_;
  char delimiter_;
};

}  // namespace

StringList SplitDelimited(TextView text, char delimiter) {
  StringList items;
  Scanner scanner(text, delimiter);
  while (!scanner.AtEnd()) {
    items.push_back(scanner.TakeItem());
    if (scanner.TakeDelimiter() && scanner.AtEnd()) {
      items.emplace_back();
    }
  }
  return items;
}

}  // namespace kiv
