#include "dataset/query/Parameter.h"

#include <cmath>

#include "core/Calendar.h"
#include "dataset/query/Calculation.h"
#include "dataset/store/SchemaData.h"

namespace kiv::query {
namespace {

/// A value from outside as one of the language.
class Bound {
 public:
  Bound(Tree& tree, const FilterParameter& parameter, Span span) noexcept
      : tree_(tree), parameter_(parameter), span_(span) {}

  Literal operator()(Null) const { return {Kind::Null, {}}; }
  Literal operator()(bool value) const { return Fixed(Kind::Boolean, value ? 1 : 0); }
  Literal operator()(std::int64_t value) const { return Fixed(Kind::Integer, value); }
  Literal operator()(Currency value) const { return Fixed(Kind::Currency, value.Raw()); }
  Literal operator()(double value) const {
    if (std::isnan(value)) {
      Refuse(span_.from, "parametrul " + store::Quoted(parameter_.name) + " nu este un numar");
    }
    return OfField(Kind::Double, FieldType::Double, value);
  }
  Literal operator()(DateTime value) const {
    const Literal moment = OfField(Kind::Moment, FieldType::DateTime, value);
    const std::int64_t milliseconds = IntegerOf(moment.cell);
    return milliseconds % kMillisecondsPerDay == 0 ? Fixed(Kind::Date, milliseconds / kMillisecondsPerDay) : moment;
  }
  Literal operator()(const Text& value) const { return {Kind::Text, {.bytes = Keep(value), .isNull = false}}; }
  Literal operator()(const WideText& value) const {
    return OfField(Kind::Wide, FieldType::WideText, std::u16string_view(value));
  }
  Literal operator()(const Guid& value) const { return OfField(Kind::Guid, FieldType::Guid, value); }
  Literal operator()(const Bytes& value) const { return OfField(Kind::Bytes, FieldType::Blob, BytesView(value)); }

 private:
  static Literal Fixed(Kind kind, std::int64_t value) {
    return {kind, {.bits = static_cast<std::uint64_t>(value), .isNull = false}};
  }
  [[nodiscard]] TextView Keep(TextView bytes) const { return tree_.bytes.emplace_back(bytes); }
  /// As a field of that type would hold it.
  [[nodiscard]] Literal OfField(Kind kind, FieldType type, const ValueView& value) const {
    try {
      Literal literal{kind, store::MakeCell({parameter_.name, type}, value, "Filtru")};
      literal.cell.bytes = literal.cell.bytes.empty() ? TextView() : Keep(literal.cell.bytes);
      return literal;
    } catch (const Error& error) {
      throw FilterError(span_.from, error.what());
    }
  }

  Tree& tree_;
  const FilterParameter& parameter_;
  Span span_;
};

}  // namespace

Literal LiteralOf(Tree& tree, const FilterParameter& parameter, Span span) {
  return std::visit(Bound(tree, parameter, span), parameter.value);
}

}  // namespace kiv::query
