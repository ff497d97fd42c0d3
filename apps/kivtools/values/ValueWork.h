#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/values/TextBuffer.h"

namespace kivtools {

/// What a command makes of each of its values. The answers are asked for from several threads at once. An InputError
/// about a value names it.
class ValueWork {
 public:
  /// `member` names the answer in JSON.
  explicit ValueWork(std::string member) : member_(std::move(member)) {}
  virtual ~ValueWork() = default;
  ValueWork(const ValueWork&) = delete;
  ValueWork& operator=(const ValueWork&) = delete;

  /// Appends the answer, one line without its end. Returns whether the value is valid, which only a check may deny.
  virtual bool AppendAnswer(std::string_view value, TextBuffer& out) const = 0;
  /// Appends the line, without its end, for a value of a file; the answer unless that says too little without the
  /// value.
  virtual bool AppendLine(std::string_view value, TextBuffer& out) const { return AppendAnswer(value, out); }
  /// Appends the lines for a value that is typed.
  virtual bool AppendLines(std::string_view value, TextBuffer& out) const;
  /// Appends why a value that is denied is not valid.
  virtual void AppendReason(std::string_view /*value*/, TextBuffer& /*out*/) const {}
  /// Appends the answer as members of a JSON object, each behind ", ".
  virtual bool AppendMembers(std::string_view value, TextBuffer& out) const;

 private:
  std::string member_;
};

/// What else the mechanism below has to know of a command.
struct ValueRules {
  std::string_view what;      ///< what messages call a value: "AMOUNT"
  bool isCheck = false;       ///< counts values, passes over blank lines, reads standard input where none is given
  bool invalidOnly = false;   ///< answers only to what is not valid
  bool reasons = false;       ///< a copied record gets the reason beside the answer
  bool inParagraphs = false;  ///< what is typed gets several lines, with an empty one between two values
};

inline constexpr std::string_view kAdd = "add";
inline constexpr std::string_view kReasons = "reasons";  ///< of a check alone

/// The options of every command that takes values.
inline constexpr std::array<Option, 4> kValueOptions = {{
    {"csv",
     "COLUMN",
     {"take one column of FILEs, by its name in the first row or its number from 1",
      "o coloană a fișierelor, după numele din primul rând sau numărul ei, de la 1"}},
    {kAdd,
     "NAME",
     {"with --csv: copy the FILE with the answers as one more column",
      "cu --csv: copiază fișierul, cu răspunsurile într-o coloană în plus"}},
    {"files", "", {"take the lines of FILEs", "rândurile fișierelor"}},
    {"json", "", {"for machines: an object a line", "pentru programe: un obiect pe rând"}},
}};

/// A command's own options and those.
template <std::size_t N>
constexpr std::array<Option, N + kValueOptions.size()> WithValueOptions(const std::array<Option, N>& own) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return std::array<Option, N + kValueOptions.size()>{(I < N ? own[I] : kValueOptions[I - N])...};
  }
  (std::make_index_sequence<N + kValueOptions.size()>());
}

/// Answers all values that the arguments give, in constant memory and in their order: those typed, the lines of
/// standard input or files, or a column of separated values. What was worked out before a fault is printed before it is
/// thrown. Returns an ExitCode.
int AnswerValues(Session& session, const Arguments& arguments, std::span<const std::string> values,
                 const ValueWork& work, const ValueRules& rules);

}  // namespace kivtools
