#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/Output.h"
#include "apps/kivtools/input/Blanks.h"
#include "apps/kivtools/values/ValueWork.h"

namespace kivtools {

/// How many values were answered, and how.
struct ValueCounts {
  std::uint64_t answered = 0;
  std::uint64_t invalid = 0;
  std::uint64_t blank = 0;
  std::uint64_t tooShort = 0;

  ValueCounts& operator+=(const ValueCounts& other) noexcept;
};

/// The answers to a part of the input as they are printed. Lines are counted from the part's first one, so their
/// numbers are put in when it is printed.
class Answers {
 public:
  void Clear() noexcept;
  void Print(Output& out, std::uint64_t firstLine) const;
  [[nodiscard]] const ValueCounts& Counts() const noexcept { return counts_; }

 private:
  friend class Answerer;
  struct LineNumber {
    std::size_t place;
    std::uint64_t line;
  };

  TextBuffer text_;
  std::vector<LineNumber> lines_;
  TextBuffer answer_;  // one that is not ready to be printed yet
  TextBuffer reason_;
  ValueCounts counts_;
};

/// Writes the answers to values in the form that was asked for. One serves all threads.
class Answerer {
 public:
  /// `file` is told in JSON.
  Answerer(const ValueWork& work, const ValueRules& rules, bool json, std::string_view file = {});

  /// A value that is typed.
  void Typed(std::string_view value, Answers& answers) const;
  /// A value on that line. An InputError becomes a LineError.
  void OnLine(std::string_view value, std::uint64_t line, Answers& answers) const;
  /// A line, or a record, with nothing on it.
  void Blank(std::uint64_t line, Answers& answers) const;
  /// A record that has no such field, counted from 0. A check says so, anything else throws LineError.
  void TooShort(std::size_t field, std::uint64_t line, Answers& answers) const;

  /// A record that is copied, and what is known of it.
  struct Record {
    std::string_view raw;  ///< with its line end
    std::size_t fields;
    std::size_t width;  ///< the fields that it should have
    std::size_t place;  ///< of the value among them, from 0
    char separator;
    std::uint64_t line;
  };
  /// The record with the answer to its value as one more field, which is empty where the value is, and if the rules
  /// have reasons, with why it is denied as another one. Throws LineError for
  /// one with too many fields and, but for a check, for one without the value.
  void Added(const Record& record, std::optional<std::string_view> value, Answers& answers) const;
  /// A record with nothing on it as it is.
  void Copied(std::string_view record, Answers& answers) const;

 private:
  /// Whether the value is an empty field; only a check has something to say about that.
  [[nodiscard]] bool IsNothing(std::string_view value) const noexcept {
    return !rules_.isCheck && Trimmed(value).empty();
  }
  template <class Append>
  void Answer(std::uint64_t line, Answers& answers, const Append& append) const;
  void AppendReason(const Record& record, std::optional<std::string_view> value, TextBuffer& out) const;
  void BeginReason(std::uint64_t line, Answers& answers) const;
  void BeginObject(std::optional<std::string_view> value, std::optional<std::uint64_t> line, Answers& answers) const;

  const ValueWork& work_;
  const ValueRules& rules_;
  bool json_;
  std::string beforeLine_;
  std::string fileMember_;
};

/// Appends the record with more fields, in quotes where they need them, before its line end and behind `gap` empty
/// ones. Example: with ';' and the field "c;d" the record "a;b\r\n" becomes "a;b;\"c;d\"\r\n".
void AppendWithFields(std::string_view record, std::size_t gap, char separator,
                      std::span<const std::string_view> fields, TextBuffer& out);

}  // namespace kivtools
