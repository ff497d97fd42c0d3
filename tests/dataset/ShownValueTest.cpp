#include <gtest/gtest.h>

#include "kivtools/Types.h"
#include "kivtools/dataset/Schema.h"

namespace kiv {
namespace {

using namespace kiv::literals;

TEST(ShownValue, IsWhatAPersonReads) {
  const struct {
    FieldType type;
    Value value;
    std::string_view shown;
  } kCases[] = {
      {FieldType::Int64, Value(std::int64_t{-17}), "-17"},
      {FieldType::Currency, Value(1234.5_lei), "1234.5000"},
      {FieldType::Currency, Value(Currency::FromRaw(-5)), "-0.0005"},
      {FieldType::Currency, Value(Currency::FromRaw(INT64_MIN)), "-922337203685477.5808"},
      {FieldType::Double, Value(0.1), "0.1"},
      {FieldType::Date, Value(DateTime(45356.0)), "2024-03-05"},
      {FieldType::Time, Value(DateTime(0.5)), "12:00:00"},
      {FieldType::DateTime, Value(DateTime(45356.25)), "2024-03-05 06:00:00"},
      {FieldType::DateTime, Value(DateTime(45356.0 + 1.0 / 86'400'000)), "2024-03-05 00:00:00.001"},
      {FieldType::Boolean, Value(true), "true"},
      {FieldType::Text,
       Value(Text("\xAA"
                  "apte")),
       "\u0218apte"},
      {FieldType::WideText, Value(WideText(u"a\u0103\u20AC\U0001F600")), "a\u0103\u20AC\U0001F600"},
      {FieldType::Guid, Value(Guid{0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}}),
       "{12345678-9ABC-DEF0-0102-030405060708}"},
      {FieldType::Blob, Value(Bytes{1, 2}), "2 bytes"},
      {FieldType::Blob, Value(Bytes{1}), "1 byte"},
      {FieldType::Int16, Value(Null{}), ""},
  };
  for (const auto& [type, value, shown] : kCases) {
    EXPECT_EQ(ShownValue(type, value), shown);
  }
}

}  // namespace
}  // namespace kiv
