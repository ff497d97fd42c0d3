// Any bytes are a filter or are refused at a place within them; in a row it has a value or is refused again.
#include <optional>

#include "fuzz/Property.h"
#include "kivtools/dataset/Filter.h"
#include "tests/dataset/EveryType.h"

namespace {

const kiv::Dataset& Rows() {
  static const kiv::Dataset rows = [] {
    kiv::Dataset made("rows", kiv::EveryType());
    kiv::AddRows(made, 40);
    return made;
  }();
  return rows;
}

template <class Operation>
auto Tried(std::size_t size, Operation&& operation) -> std::optional<decltype(operation())> {
  try {
    return operation();
  } catch (const kiv::FilterError& error) {
    REQUIRE(error.Position() <= size);
    REQUIRE(kiv::TextView(error.what()).starts_with("Filtru: "));
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  const kiv::FilterParameters parameters = {
      {"p", kiv::Currency::FromRaw(105000)}, {"t", kiv::Text("oras 7")}, {"d", kiv::DateTime(45000)}};
  const auto value = Tried(size, [&] { return kiv::Expression(Rows(), text, parameters); });
  const auto condition = Tried(size, [&] { return kiv::Filter(Rows(), text, parameters); });
  REQUIRE(!condition || value);
  if (!value) {
    return 0;
  }
  std::vector<kiv::RowId> passed;
  bool isWhole = condition.has_value();
  for (const kiv::RowId row : Rows().Rows()) {
    const auto is = Tried(size, [&] { return value->Evaluate(row); });
    REQUIRE(!condition || Tried(size, [&] { return condition->Test(row); }) ==
                              (is ? std::optional(*is == kiv::Value(true)) : std::nullopt));
    isWhole = isWhole && is;
    if (is && *is == kiv::Value(true)) {
      passed.push_back(row);
    }
  }
  if (condition) {
    REQUIRE(Tried(size, [&] { return condition->Select(); }) == (isWhole ? std::optional(passed) : std::nullopt));
  }
  return 0;
}
