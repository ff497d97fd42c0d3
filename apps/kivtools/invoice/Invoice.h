#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kivtools {

/// The code of the currency that amounts are in where nothing else is said.
inline constexpr std::string_view kLeiCode = "RON";

/// One side of an invoice; texts are UTF-8. What is below the code may be empty, a buyer's code too.
struct Party {
  std::string name;
  std::string code;
  std::string account;
  std::string address{};
  std::string registration{};  ///< the number in the register of companies

  friend bool operator==(const Party&, const Party&) = default;
};

/// One line of an invoice.
struct InvoiceItem {
  std::string description;     ///< may hold line feeds
  std::string unit;            ///< may be empty
  std::int64_t quantity = 0;   ///< ten-thousandths
  std::int64_t unitPrice = 0;  ///< ten-thousandths of the currency's unit
  std::int32_t vatRate = 0;    ///< hundredths of a percent, 0 to 10000
  std::int64_t value = 0;      ///< bani, without VAT: LineValue(quantity, unitPrice)

  friend bool operator==(const InvoiceItem&, const InvoiceItem&) = default;
};

/// An invoice as its file says it, checked: every amount in it can be printed.
struct Invoice {
  Party seller;
  Party buyer;
  std::string number;
  std::chrono::year_month_day date{};
  std::vector<InvoiceItem> items;
  std::chrono::year_month_day dueDate{};  ///< no date of the calendar where there is none
  std::string currency{kLeiCode};

  friend bool operator==(const Invoice&, const Invoice&) = default;
};

/// The sum of the lines of one VAT rate and the VAT on it, in bani.
struct VatGroup {
  std::int32_t rate = 0;
  std::int64_t base = 0;
  std::int64_t vat = 0;

  friend bool operator==(const VatGroup&, const VatGroup&) = default;
};

/// What an invoice comes to, in bani.
struct InvoiceTotals {
  std::vector<VatGroup> groups;  ///< the highest rate first
  std::int64_t base = 0;
  std::int64_t vat = 0;
  std::int64_t total = 0;
};

/// Quantity times unit price, both in ten-thousandths, in bani: rounded once, halves away from zero. Throws InputError
/// where the result is more than an amount of money can be. Example: 1.5 times 0.33 is 50 bani.
std::int64_t LineValue(std::int64_t quantity, std::int64_t unitPrice);

/// The VAT on `base` bani at `rate` hundredths of a percent, rounded to bani, halves away from zero.
/// Example: 50 bani at 21 % carry 11 bani.
std::int64_t VatOn(std::int64_t base, std::int32_t rate);

/// Sums the lines per rate and works out the VAT on each sum. Throws InputError where a sum is more than an amount of
/// money can be. Example: lines of 0.30 and 0.20 lei at 21 % give one group, 50 bani with 11 bani of VAT.
InvoiceTotals ComputeTotals(const Invoice& invoice);

}  // namespace kivtools
