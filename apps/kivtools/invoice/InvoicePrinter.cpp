#include "apps/kivtools/invoice/InvoicePrinter.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Numbers.h"

namespace kivtools {
namespace {

enum Column : std::size_t { kNumber, kDescription, kUnit, kQuantity, kPrice, kRate, kValue, kColumns };
constexpr std::array<std::string_view, kColumns> kTitles = {"Nr.",         "Denumire", "UM",     "Cant.",
                                                            "Preț unitar", "TVA",      "Valoare"};
constexpr std::size_t kTerminalWidth = 80;
constexpr std::size_t kNarrowestDescription = 24;
constexpr std::size_t kWidestUnit = 12;
constexpr std::size_t kLabelWidth = 9;

constexpr bool IsText(std::size_t column) noexcept {
  return column == kDescription || column == kUnit;
}

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

class Printer {
 public:
  Printer(const Invoice& invoice, const InvoiceTotals& totals, const InvoiceFaults& faults, const Library& library,
          Output& out)
      : invoice_(invoice),
        totals_(totals),
        faults_(faults),
        library_(library),
        out_(out),
        progress_(2 * static_cast<std::uint64_t>(invoice.items.size())) {}

  void Print() {
    Measure();
    PrintHeading();
    PrintTable();
    PrintTotals();
    out_.Write("\nTotal în litere: " + TotalInWords() + "\n");
  }

 private:
  using Row = std::array<std::string, kColumns>;

  [[nodiscard]] std::string Lei(std::int64_t bani) const { return library_.MoneyNoSpace(bani * 100, 2); }

  [[nodiscard]] std::string Quantity(std::int64_t quantity) const {
    std::string text = library_.MoneyNoSpace(quantity, 4);
    text.resize(text.find_last_not_of('0') + 1);  // the comma stops it
    if (text.back() == ',') {
      text.pop_back();
    }
    return text;
  }

  [[nodiscard]] Row Cells(std::size_t index) const {
    const InvoiceItem& item = invoice_.items[index];
    return {std::to_string(index + 1),           item.description,      item.unit,      Quantity(item.quantity),
            library_.MoneyExact(item.unitPrice), Percent(item.vatRate), Lei(item.value)};
  }

  /// Finds the columns' widths, so that the rows can be printed one by one afterwards.
  void Measure() {
    std::transform(kTitles.begin(), kTitles.end(), widths_.begin(), DisplayWidth);
    for (std::size_t i = 0; i < invoice_.items.size(); ++i) {
      const Row row = Cells(i);
      for (std::size_t column = 0; column < kColumns; ++column) {
        widths_[column] = std::max(widths_[column], DisplayWidth(row[column]));
      }
      progress_.Advance(1);
    }
    widths_[kUnit] = std::min(widths_[kUnit], kWidestUnit);
    widths_[kValue] = std::max({widths_[kValue], Lei(totals_.base).size(), Lei(totals_.total).size()});
    // The descriptions get what the other columns leave of a terminal's width.
    const std::size_t others =
        std::accumulate(widths_.begin(), widths_.end(), 3 * kColumns + 1) - widths_[kDescription];
    const std::size_t left = kTerminalWidth > others ? kTerminalWidth - others : 0;
    widths_[kDescription] = std::min(widths_[kDescription], std::max(left, kNarrowestDescription));
    tableWidth_ = others + widths_[kDescription];
  }

  void PrintHeading() {
    const auto& [year, month, day] = std::tuple(invoice_.date.year(), invoice_.date.month(), invoice_.date.day());
    const double days =
        library_.EncodeDate(int{year}, static_cast<int>(unsigned{month}), static_cast<int>(unsigned{day}));
    PrintPair("FACTURA " + invoice_.number, library_.DateText("DateToRoText", days));
    out_.Write("\n");
    const Party& seller = invoice_.seller;
    const Party& buyer = invoice_.buyer;
    PrintSides("Furnizor", seller.name, "Client", buyer.name);
    PrintSides("CUI", Marked(seller.code, faults_.seller.code), "CUI", Marked(buyer.code, faults_.buyer.code));
    PrintSides("IBAN", Marked(Grouped(seller.account), faults_.seller.account), "IBAN",
               Marked(Grouped(buyer.account), faults_.buyer.account));
    out_.Write("\n");
  }

  void PrintPair(const std::string& left, const std::string& right) {
    const std::size_t taken = DisplayWidth(left) + DisplayWidth(right);
    out_.Write(left + std::string(taken < tableWidth_ ? tableWidth_ - taken : 2, ' ') + right + "\n");
  }

  /// What belongs to the seller on the left, to the buyer on the right, each with its label and wrapped in its half.
  void PrintSides(std::string_view leftLabel, const std::string& left, std::string_view rightLabel,
                  const std::string& right) {
    const std::size_t half = std::max(tableWidth_, kTerminalWidth) / 2;
    const std::size_t room = half - kLabelWidth - 2;
    const auto leftLines = Wrap(left, room);
    const auto rightLines = Wrap(right, room);
    for (std::size_t i = 0; i < std::max(leftLines.size(), rightLines.size()); ++i) {
      std::string line = Labelled(leftLabel, leftLines, i);
      if (const std::string other = Labelled(rightLabel, rightLines, i); !other.empty()) {
        line = PadEnd(line, half) + other;
      }
      out_.Write(line.empty() ? "" : line + "\n");
    }
  }

  static std::string Labelled(std::string_view label, const std::vector<std::string>& lines, std::size_t index) {
    if (index >= lines.size() || lines[index].empty()) {
      return {};
    }
    return PadEnd(index == 0 ? label : std::string_view(), kLabelWidth) + lines[index];
  }

  void PrintTable() {
    PrintRule("┌", "┬", "┐");
    Row titles;
    std::copy(kTitles.begin(), kTitles.end(), titles.begin());
    PrintRow(titles);
    PrintRule("├", "┼", "┤");
    for (std::size_t i = 0; i < invoice_.items.size(); ++i) {
      PrintRow(Cells(i));
      progress_.Advance(1);
    }
    PrintRule("└", "┴", "┘");
  }

  void PrintRule(std::string_view left, std::string_view middle, std::string_view right) {
    std::string rule(left);
    for (std::size_t column = 0; column < kColumns; ++column) {
      rule += column == 0 ? "" : middle;
      rule += Repeat("─", widths_[column] + 2);
    }
    out_.Write(rule + std::string(right) + "\n");
  }

  /// A row takes as many lines as its description and unit need; the figures stand on the first.
  void PrintRow(const Row& row) {
    const auto description = Wrap(row[kDescription], widths_[kDescription]);
    const auto unit = Wrap(row[kUnit], widths_[kUnit]);
    for (std::size_t i = 0; i < std::max(description.size(), unit.size()); ++i) {
      std::string line = "│";
      for (std::size_t column = 0; column < kColumns; ++column) {
        const auto& lines = column == kDescription ? description : unit;
        if (IsText(column)) {
          line += " " + PadEnd(i < lines.size() ? lines[i] : "", widths_[column]) + " │";
        } else {
          line += " " + PadStart(i == 0 ? row[column] : "", widths_[column]) + " │";
        }
      }
      out_.Write(line + "\n");
    }
  }

  void PrintTotals() {
    PrintTotal("Total fără TVA", totals_.base);
    for (const VatGroup& group : totals_.groups) {
      PrintTotal("TVA " + Percent(group.rate) + " la " + Lei(group.base), group.vat);
    }
    PrintTotal("Total de plată (lei)", totals_.total);
  }

  void PrintTotal(const std::string& label, std::int64_t bani) {
    const std::size_t labelEnd = tableWidth_ - widths_[kValue] - 5;
    out_.Write(PadStart(label, labelEnd) + "   " + PadStart(Lei(bani), widths_[kValue]) + "\n");
  }

  /// A negative total is the words of its magnitude behind "MINUS"; one that has no words is said to have none.
  [[nodiscard]] std::string TotalInWords() const {
    const std::int64_t magnitude = totals_.total < 0 ? -totals_.total : totals_.total;
    try {
      return (totals_.total < 0 ? "MINUS " : "") + library_.SumInWords(magnitude * 100);
    } catch (const LibraryError& error) {
      return "(suma nu se poate scrie în litere: " + std::string(error.what()) + ")";
    }
  }

  const Invoice& invoice_;
  const InvoiceTotals& totals_;
  const InvoiceFaults& faults_;
  const Library& library_;
  Output& out_;
  Progress progress_;
  std::array<std::size_t, kColumns> widths_{};
  std::size_t tableWidth_ = 0;
};

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

void PrintInvoice(const Invoice& invoice, const InvoiceTotals& totals, const InvoiceFaults& faults,
                  const Library& library, Output& out) {
  Printer(invoice, totals, faults, library, out).Print();
}

}  // namespace kivtools
