#include "apps/kivtools/invoice/InvoiceTexts.h"

#include <algorithm>

#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Numbers.h"

namespace kivtools {
namespace {

/// An account number in groups of four, as it is read out; one that is written with blanks as it is.
std::string Grouped(const std::string& account) {
  if (account.find(' ') != std::string::npos) {
    return account;
  }
  std::string grouped;
  for (std::size_t at = 0; at < account.size(); at += 4) {
    grouped += (at == 0 ? "" : " ") + account.substr(at, 4);
  }
  return grouped;
}

std::string Marked(const std::string& number, bool wrong) {
  return wrong ? number + " (GREȘIT)" : number;
}

std::string Percent(std::int32_t rate) {
  std::string text = WritePlainAmount(std::int64_t{rate} * 100) + "%";
  std::replace(text.begin(), text.end(), '.', ',');
  return text;
}

std::string Quantity(std::int64_t quantity, const Library& library) {
  std::string text = library.MoneyNoSpace(quantity, 4);
  text.resize(text.find_last_not_of('0') + 1);  // the comma stops it
  if (text.back() == ',') {
    text.pop_back();
  }
  return text;
}

}  // namespace

InvoiceFaults FindFaults(const Invoice& invoice, const Library& library) {
  const auto isWrong = [&library](const char* operation, const std::string& code, bool dropRo) {
    const auto ask = [&](std::string_view asked) { return library.Ask(library.FindPredicate(operation), asked); };
    return !code.empty() && !SaysYes(ask, code, dropRo);
  };
  const auto find = [&isWrong](const Party& party) {
    return PartyFaults{!IsForeign(party.code) && isWrong("TestCodFiscal", party.code, true),
                       isWrong("EsteIBAN", party.account, false)};
  };
  return {find(invoice.seller), find(invoice.buyer)};
}

InvoiceTexts::InvoiceTexts(const Invoice& invoice, const InvoiceTotals& totals, const InvoiceFaults& faults,
                           const Library& library)
    : invoice_(invoice), totals_(totals), faults_(faults), library_(library) {}

std::string InvoiceTexts::Date(std::chrono::year_month_day date) const {
  const double days = library_.EncodeDate(int{date.year()}, static_cast<int>(unsigned{date.month()}),
                                          static_cast<int>(unsigned{date.day()}));
  return library_.DateText("DateToRoText", days);
}

std::vector<InvoiceTexts::Pair> InvoiceTexts::Details(const Party& party, const PartyFaults& faults) const {
  return {{"CUI", Marked(party.code, faults.code)},
          {"Reg.com.", party.registration},
          {"Adresa", party.address},
          {"IBAN", Marked(Grouped(party.account), faults.account)}};
}

InvoiceTexts::Row InvoiceTexts::Cells(std::size_t index) const {
  const InvoiceItem& item = invoice_.items[index];
  return {
      std::to_string(index + 1),           item.description,      item.unit,        Quantity(item.quantity, library_),
      library_.MoneyExact(item.unitPrice), Percent(item.vatRate), Money(item.value)};
}

std::vector<InvoiceTexts::Pair> InvoiceTexts::Sums() const {
  std::vector<Pair> sums = {{"Total fără TVA", Money(totals_.base)}};
  for (const VatGroup& group : totals_.groups) {
    sums.emplace_back("TVA " + Percent(group.rate) + " la " + Money(group.base), Money(group.vat));
  }
  sums.emplace_back("Total de plată (" + (invoice_.currency == kLeiCode ? "lei" : invoice_.currency) + ")",
                    Money(totals_.total));
  return sums;
}

std::string InvoiceTexts::TotalInWords() const {
  if (invoice_.currency != kLeiCode) {
    return TotalInReadableWords();
  }
  const std::int64_t magnitude = totals_.total < 0 ? -totals_.total : totals_.total;
  try {
    return (totals_.total < 0 ? "MINUS " : "") + library_.SumInWords(magnitude * 100);
  } catch (const LibraryError& error) {
    return "(suma nu se poate scrie în litere: " + std::string(error.what()) + ")";
  }
}

std::string InvoiceTexts::TotalInReadableWords() const {
  return library_.SumInReadableWords(totals_.total * 100, invoice_.currency);
}

}  // namespace kivtools
