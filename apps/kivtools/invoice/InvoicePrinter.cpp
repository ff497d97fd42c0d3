#include "apps/kivtools/invoice/InvoicePrinter.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "apps/kivtools/Layout.h"

namespace kivtools {
namespace {

constexpr std::size_t kUsualWidth = 80;
/// The narrowest that anything is fitted to, so that there is room beside labels.
constexpr std::size_t kNarrowestTerminal = 24;
constexpr std::size_t kNarrowestDescription = 24;
constexpr std::size_t kNarrowestFitted = 12;  ///< the same where it has to fit
constexpr std::size_t kNarrowestSide = 28;    ///< of a party beside the other
constexpr std::size_t kWidestUnit = 12;
constexpr std::size_t kLabelWidth = 9;

class Printer {
 public:
  Printer(const Invoice& invoice, const InvoiceTexts& texts, std::optional<std::size_t> terminal, Output& out)
      : invoice_(invoice),
        texts_(texts),
        out_(out),
        fitted_(terminal.has_value()),
        width_(std::clamp(terminal.value_or(kUsualWidth), kNarrowestTerminal, kUsualWidth)),
        progress_(2 * static_cast<std::uint64_t>(invoice.items.size())) {}

  void Print() {
    Measure();
    PrintHeading();
    if (stacked_) {
      PrintStack();
    } else {
      PrintTable();
    }
    PrintTotals();
    PrintWrapped("\nTotal în litere: " + texts_.TotalInWords());
  }

 private:
  using Row = InvoiceTexts::Row;

  /// Finds the columns' widths, so that the rows can be printed one by one afterwards.
  void Measure() {
    std::transform(kTitles.begin(), kTitles.end(), widths_.begin(), DisplayWidth);
    for (std::size_t i = 0; i < invoice_.items.size(); ++i) {
      const Row row = texts_.Cells(i);
      for (std::size_t column = 0; column < kColumns; ++column) {
        widths_[column] = std::max(widths_[column], DisplayWidth(row[column]));
      }
      progress_.Advance(1);
    }
    widths_[kUnit] = std::min(widths_[kUnit], kWidestUnit);
    const auto sums = texts_.Sums();
    widths_[kValue] = std::max({widths_[kValue], sums.front().second.size(), sums.back().second.size()});
    // The descriptions get what the other columns leave of the width.
    const std::size_t others =
        std::accumulate(widths_.begin(), widths_.end(), 3 * kColumns + 1) - widths_[kDescription];
    const std::size_t left = width_ > others ? width_ - others : 0;
    const std::size_t least = fitted_ ? kNarrowestFitted : kNarrowestDescription;
    widths_[kDescription] = std::min(widths_[kDescription], std::max(left, least));
    tableWidth_ = others + widths_[kDescription];
    stacked_ = fitted_ && tableWidth_ > width_;
    tableWidth_ = stacked_ ? width_ : tableWidth_;
  }

  void PrintHeading() {
    PrintPair("FACTURA " + invoice_.number, texts_.Date(invoice_.date));
    if (invoice_.dueDate.ok()) {
      PrintPair("", "scadența " + texts_.Date(invoice_.dueDate));
    }
    out_.Write("\n");
    const auto seller = WithName("Furnizor", invoice_.seller, texts_.SellerDetails());
    const auto buyer = WithName("Client", invoice_.buyer, texts_.BuyerDetails());
    const std::size_t half = fitted_ ? width_ / 2 : std::max(tableWidth_, kUsualWidth) / 2;
    if (half < kNarrowestSide) {
      for (const auto& party : {seller, buyer}) {
        PrintSides(party, {}, width_);
        out_.Write("\n");
      }
    } else {
      PrintSides(seller, buyer, half);
      out_.Write("\n");
    }
  }

  static std::vector<InvoiceTexts::Pair> WithName(const char* role, const Party& party,
                                                  std::vector<InvoiceTexts::Pair> details) {
    details.insert(details.begin(), {role, party.name});
    return details;
  }

  /// A text at each edge; on lines of their own where they do not fit on one.
  void PrintPair(const std::string& left, const std::string& right) {
    const std::size_t taken = DisplayWidth(left) + DisplayWidth(right);
    if (fitted_ && taken + 2 > width_) {
      PrintWrapped(left);
      PrintWrapped(PadStart(right, width_));
      return;
    }
    out_.Write(left + std::string(taken < tableWidth_ ? tableWidth_ - taken : 2, ' ') + right + "\n");
  }

  /// A text as it is, in lines of the terminal's width.
  void PrintWrapped(const std::string& text) {
    if (!fitted_) {
      out_.Write(text + "\n");
      return;
    }
    for (const std::string& line : Wrap(text, width_)) {
      out_.Write(line + "\n");
    }
  }

  /// What belongs to one party on the left, to another on the right, each with its label and wrapped in its half.
  void PrintSides(const std::vector<InvoiceTexts::Pair>& left, const std::vector<InvoiceTexts::Pair>& right,
                  std::size_t half) {
    const std::size_t room = half - kLabelWidth - 2;
    for (std::size_t row = 0; row < left.size(); ++row) {
      const auto leftLines = Wrap(left[row].second, room);
      const auto rightLines = right.empty() ? std::vector<std::string>() : Wrap(right[row].second, room);
      for (std::size_t i = 0; i < std::max(leftLines.size(), rightLines.size()); ++i) {
        std::string line = Labelled(left[row].first, leftLines, i);
        if (!right.empty()) {
          if (const std::string other = Labelled(right[row].first, rightLines, i); !other.empty()) {
            line = PadEnd(line, half) + other;
          }
        }
        out_.Write(line.empty() ? "" : line + "\n");
      }
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
      PrintRow(texts_.Cells(i));
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

  /// The lines of the invoice below one another: what it is, then the figures.
  void PrintStack() {
    const std::string rule = Repeat("─", width_) + "\n";
    for (std::size_t i = 0; i < invoice_.items.size(); ++i) {
      const Row row = texts_.Cells(i);
      out_.Write(rule);
      PrintWrapped(row[kNumber] + ". " + row[kDescription]);
      PrintPair(
          row[kQuantity] + (row[kUnit].empty() ? "" : " " + row[kUnit]) + " × " + row[kPrice] + ", TVA " + row[kRate],
          row[kValue]);
      progress_.Advance(1);
    }
    out_.Write(rule);
  }

  void PrintTotals() {
    for (const auto& [label, amount] : texts_.Sums()) {
      if (stacked_) {
        PrintPair(label, amount);
      } else {
        const std::size_t labelEnd = tableWidth_ - widths_[kValue] - 5;
        out_.Write(PadStart(label, labelEnd) + "   " + PadStart(amount, widths_[kValue]) + "\n");
      }
    }
  }

  const Invoice& invoice_;
  const InvoiceTexts& texts_;
  Output& out_;
  bool fitted_;
  std::size_t width_;
  Progress progress_;
  std::array<std::size_t, kColumns> widths_{};
  std::size_t tableWidth_ = 0;
  bool stacked_ = false;
};

}  // namespace

void PrintInvoice(const Invoice& invoice, const InvoiceTexts& texts, std::optional<std::size_t> terminal, Output& out) {
  Printer(invoice, texts, terminal, out).Print();
}

}  // namespace kivtools
