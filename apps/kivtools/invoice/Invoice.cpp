#include "apps/kivtools/invoice/Invoice.h"

#include <functional>
#include <limits>
#include <map>

#include "apps/kivtools/InputError.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr std::int64_t kUnit = kiv::Currency::kPerUnit;
/// The most bani that are still an amount of money when counted in ten-thousandths.
constexpr std::int64_t kMostBani = std::numeric_limits<std::int64_t>::max() / 100;

std::int64_t InRange(std::int64_t bani, const Phrase& what) {
  if (bani > kMostBani || bani < -kMostBani) {
    throw InputError(
        Say({"{0} is more than 922.337.203.685.477,58 lei", "{0} depășește 922.337.203.685.477,58 lei"}, what));
  }
  return bani;
}

std::int64_t RoundedQuotient(std::int64_t value, std::int64_t divisor) noexcept {
  const std::int64_t half = value < 0 ? -divisor / 2 : divisor / 2;
  return (value + half) / divisor;
}

}  // namespace

std::int64_t LineValue(std::int64_t quantity, std::int64_t unitPrice) {
  // With q = a * 10^4 + b and p = c * 10^4 + d the product in bani is a * c * 100 + (a * d + b * c) / 100 + b * d /
  // 10^6; what the divisions leave is put together before it is rounded.
  const std::int64_t a = quantity / kUnit;
  const std::int64_t b = quantity % kUnit;
  const std::int64_t c = unitPrice / kUnit;
  const std::int64_t d = unitPrice % kUnit;
  std::int64_t whole = 0;
  std::int64_t middle = 0;
  if (__builtin_mul_overflow(a, c, &whole) || __builtin_mul_overflow(whole, 100, &whole) ||
      __builtin_add_overflow(a * d, b * c, &middle) || __builtin_add_overflow(whole, middle / 100, &whole) ||
      __builtin_add_overflow(whole, RoundedQuotient(middle % 100 * kUnit + b * d, 1'000'000), &whole)) {
    whole = std::numeric_limits<std::int64_t>::max();
  }
  return InRange(whole, {"times the quantity", "înmulțit cu cantitatea"});
}

std::int64_t VatOn(std::int64_t base, std::int32_t rate) {
  constexpr std::int64_t kWhole = 10'000;  // hundredths of a percent
  return base / kWhole * rate + RoundedQuotient(base % kWhole * rate, kWhole);
}

InvoiceTotals ComputeTotals(const Invoice& invoice) {
  std::map<std::int32_t, std::int64_t, std::greater<>> bases;
  InvoiceTotals totals;
  for (const InvoiceItem& item : invoice.items) {
    std::int64_t& base = bases[item.vatRate];
    base =
        InRange(base + item.value, {"the sum of the lines of one VAT rate", "suma rândurilor cu aceeași cotă de TVA"});
    totals.base = InRange(totals.base + item.value, {"the sum of the lines", "suma rândurilor"});
  }
  for (const auto& [rate, base] : bases) {
    totals.groups.push_back({rate, base, VatOn(base, rate)});
    totals.vat = InRange(totals.vat + totals.groups.back().vat, {"the sum of VAT", "suma TVA"});
  }
  totals.total = InRange(totals.base + totals.vat, {"the total", "totalul"});
  return totals;
}

}  // namespace kivtools
