#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/kivtools/Library.h"
#include "apps/kivtools/invoice/Invoice.h"

namespace kivtools {

/// Which of a party's numbers are wrong.
struct PartyFaults {
  bool code = false;
  bool account = false;
};

/// Which numbers of an invoice are wrong, by the library's checks. An empty one is not, and neither is a fiscal code
/// with another country's letters in front; "RO" before a Romanian one is dropped.
struct InvoiceFaults {
  PartyFaults seller;
  PartyFaults buyer;
};
InvoiceFaults FindFaults(const Invoice& invoice, const Library& library);

/// The columns of an invoice's lines.
enum InvoiceColumn : std::size_t { kNumber, kDescription, kUnit, kQuantity, kPrice, kRate, kValue, kColumns };
constexpr std::array<std::string_view, kColumns> kTitles = {"Nr.",         "Denumire", "UM",     "Cant.",
                                                            "Preț unitar", "TVA",      "Valoare"};
/// Whether a column holds text, which may take several lines; the others hold figures.
constexpr bool IsText(std::size_t column) noexcept {
  return column == kDescription || column == kUnit;
}

/// What an invoice says, piece by piece: what a terminal and a page have in common. All amounts are written by the
/// library.
class InvoiceTexts {
 public:
  using Row = std::array<std::string, kColumns>;
  /// A label and what it stands for.
  using Pair = std::pair<std::string, std::string>;

  InvoiceTexts(const Invoice& invoice, const InvoiceTotals& totals, const InvoiceFaults& faults,
               const Library& library);

  /// "5 martie 2026"
  [[nodiscard]] std::string Date(std::chrono::year_month_day date) const;
  /// "1.234,50"
  [[nodiscard]] std::string Money(std::int64_t bani) const { return library_.MoneyNoSpace(bani * 100, 2); }
  /// A party's numbers and address, each with its label and in the same order for both; what is not given is empty.
  [[nodiscard]] std::vector<Pair> Details(const Party& party, const PartyFaults& faults) const;
  [[nodiscard]] std::vector<Pair> SellerDetails() const { return Details(invoice_.seller, faults_.seller); }
  [[nodiscard]] std::vector<Pair> BuyerDetails() const { return Details(invoice_.buyer, faults_.buyer); }
  /// The cells of one line.
  [[nodiscard]] Row Cells(std::size_t index) const;
  /// The sums from the one without VAT to the one to be paid.
  [[nodiscard]] std::vector<Pair> Sums() const;
  /// The total in capitals, as payment orders have it; in another currency than lei as people read it. A negative one
  /// is the words of its magnitude behind "MINUS"; one that has no words is said to have none.
  [[nodiscard]] std::string TotalInWords() const;
  /// The total as people read it.
  [[nodiscard]] std::string TotalInReadableWords() const;

 private:
  const Invoice& invoice_;
  const InvoiceTotals& totals_;
  const InvoiceFaults& faults_;
  const Library& library_;
};

}  // namespace kivtools
