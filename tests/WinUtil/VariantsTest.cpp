#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "Expect.h"
#include "kivtools/WinUtil/Variants.h"

namespace kiv {
namespace {

using namespace literals;

TEST(Variants, ConvertByKind) {
  const struct {
    Variant value;
    double days;
    std::int32_t integer;
  } kCases[] = {
      {Null{}, 11.5, 22},
      {true, -1, -1},
      {false, 0, 0},
      {std::int32_t{-7}, -7, -7},
      {std::int64_t{2147483647}, 2147483647, INT32_MAX},
      {2.5, 2.5, 2},
      {-3.5, -3.5, -4},
      {-0.5, -0.5, 0},
      {2147483647.4, 2147483647.4, INT32_MAX},
      {-2147483648.5, -2147483648.5, INT32_MIN},
      {1.5_lei, 1.5, 2},
      {DateTime(45356.25), 45356.25, 45356},
      {Text("12"), 12, 12},
      {Text("  -12.5"), -12.5, -12},
      {Text("+.5"), 0.5, 0},
      {Text("7."), 7, 7},
      {Text("0." + Text(400, '0') + "1"), 0, 0},
  };
  for (const auto& [value, days, integer] : kCases) {
    EXPECT_EQ(VarToDateDef(value, DateTime(11.5)).Days(), days) << value.index() << " " << days;
    EXPECT_EQ(VarToIntDef(value, 22), integer) << value.index() << " " << days;
  }
  for (const Text text : {"", " ", "x", "12 ", "1,5", "1e3", "0x10", "--1", "+-1", ".", "inf", "nan", "1.2.3"}) {
    EXPECT_THROW(std::ignore = VarToIntDef(text, 0), ConversionError) << text;
    EXPECT_THROW(std::ignore = VarToDateDef(text, {}), ConversionError) << text;
  }
  for (const Variant& large :
       {Variant(2147483647.5), Variant(std::int64_t{-2147483649}), Variant(std::numeric_limits<double>::quiet_NaN()),
        Variant(std::numeric_limits<double>::infinity()), Variant(Text("2147483648")), Variant(DateTime(1e10)),
        Variant(922337203685477.5807_lei)}) {
    EXPECT_THROW(std::ignore = VarToIntDef(large, 0), ConversionError) << large.index();
  }
  EXPECT_THROW(std::ignore = VarToDateDef(Text(400, '9'), {}), ConversionError);
  ExpectError<ConversionError>([] { return VarToIntDef(std::int64_t{1} << 40, 0); },
                               "VarToIntDef: 1099511627776 nu incape in 32 de biti");
}

}  // namespace
}  // namespace kiv
