#include "apps/kivtools/invoice/InvoiceReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "apps/kivtools/Dates.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Blanks.h"
#include "apps/kivtools/input/Csv.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr std::array<std::string_view, 5> kItemFields = {"description", "unit", "quantity", "unit_price", "vat_rate"};

constexpr std::string_view kCurrencyKey = "currency";
/// The currencies whose names the library has.
constexpr std::array<std::string_view, 3> kCurrencies = {kLeiCode, "EUR", "USD"};

/// What the rows above the lines may say: each key once, in any order.
struct HeaderField {
  std::string_view key;
  bool required;
  std::string& (*text)(Invoice&);  ///< null for a date
  std::chrono::year_month_day& (*date)(Invoice&) = nullptr;
};
constexpr std::array<HeaderField, 14> kHeaderFields = {{
    {"seller", true, [](Invoice& invoice) -> std::string& { return invoice.seller.name; }},
    {"seller_code", true, [](Invoice& invoice) -> std::string& { return invoice.seller.code; }},
    {"seller_account", false, [](Invoice& invoice) -> std::string& { return invoice.seller.account; }},
    {"seller_address", false, [](Invoice& invoice) -> std::string& { return invoice.seller.address; }},
    {"seller_register", false, [](Invoice& invoice) -> std::string& { return invoice.seller.registration; }},
    {"buyer", true, [](Invoice& invoice) -> std::string& { return invoice.buyer.name; }},
    {"buyer_code", false, [](Invoice& invoice) -> std::string& { return invoice.buyer.code; }},
    {"buyer_account", false, [](Invoice& invoice) -> std::string& { return invoice.buyer.account; }},
    {"buyer_address", false, [](Invoice& invoice) -> std::string& { return invoice.buyer.address; }},
    {"buyer_register", false, [](Invoice& invoice) -> std::string& { return invoice.buyer.registration; }},
    {"number", true, [](Invoice& invoice) -> std::string& { return invoice.number; }},
    {"date", true, nullptr, [](Invoice& invoice) -> std::chrono::year_month_day& { return invoice.date; }},
    {"due_date", false, nullptr, [](Invoice& invoice) -> std::chrono::year_month_day& { return invoice.dueDate; }},
    {kCurrencyKey, false, [](Invoice& invoice) -> std::string& { return invoice.currency; }},
}};

/// A field's text for the invoice: blanks around it dropped, line ends (where allowed) as line feeds.
std::string CleanText(std::string_view field, bool lines) {
  std::string text(Trimmed(field));
  if (lines) {
    for (std::size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at)) {
      text.erase(at, 1);
    }
  }
  if (const Phrase* const fault = WhyNotPrintable(text, lines); fault != nullptr) {
    throw InputError(Say(*fault));
  }
  return text;
}

std::chrono::year_month_day ReadInvoiceDate(std::string_view text) {
  const Moment date = ReadDate(text);
  return {std::chrono::year(date.year), std::chrono::month(static_cast<unsigned>(date.month)),
          std::chrono::day(static_cast<unsigned>(date.day))};
}

std::string ReadCurrency(std::string_view text) {
  if (std::ranges::find(kCurrencies, text) == kCurrencies.end()) {
    throw InputError(Say({"is not RON, EUR or USD", "nu este RON, EUR sau USD"}));
  }
  return std::string(text);
}

std::int32_t ReadVatRate(std::string_view text) {
  const bool signedPercent = text.ends_with('%');
  const std::int64_t rate = ReadNumber(signedPercent ? text.substr(0, text.size() - 1) : text, 2);
  if (rate < 0 || rate > 100 * kiv::Currency::kPerUnit) {
    throw InputError(Say({"is not a rate from 0 to 100 percent", "nu este o cotă de la 0 la 100 la sută"}));
  }
  return static_cast<std::int32_t>(rate / 100);
}

class Reader {
 public:
  Reader(ByteSource source, const std::string& name) : csv_(std::move(source)), name_(name) {}

  Invoice Read() try {
    while (NextRow() && !IsItemHeading()) {
      ReadHeaderRow();
    }
    CheckHeader();
    while (NextRow()) {
      ReadItem();
    }
    if (invoice_.items.empty()) {
      throw InputError(Say({"{0}: there are no lines", "{0}: nu are rânduri"}, name_));
    }
    return std::move(invoice_);
  } catch (const LineError& error) {
    throw InputError(AtLine(name_, error.Line(), error.what()));
  }

 private:
  /// Goes to the next row that says something; rows of empty fields only separate.
  bool NextRow() {
    while (csv_.Next()) {
      const auto& fields = csv_.Fields();
      count_ = fields.size();
      while (count_ > 0 && Trimmed(fields[count_ - 1]).empty()) {
        --count_;  // spreadsheets fill short rows up with empty fields
      }
      if (count_ > 0) {
        return true;
      }
    }
    return false;
  }

  std::string_view Field(std::size_t index) const {
    const auto& fields = csv_.Fields();
    return index < fields.size() ? Trimmed(fields[index]) : std::string_view();
  }

  [[noreturn]] void Fail(const Said& what) const { throw InputError(AtLine(name_, csv_.Line(), what.Text())); }

  /// Reads one field by `read`; a refusal becomes a message with line, field name and value.
  template <class Read>
  auto Take(std::string_view fieldName, std::string_view value, Read&& read) const {
    try {
      return read(value);
    } catch (const InputError& error) {
      Fail(AsItIs(std::string(fieldName) + ": " + Shown(value) + " " + error.what()));
    }
  }

  std::string TakeText(std::string_view fieldName, std::string_view value, bool required, bool lines = false) const {
    if (required && value.empty()) {
      Fail(Say({"{0}: \"\" is empty", "{0}: \"\" este gol"}, fieldName));
    }
    return Take(fieldName, value, [lines](std::string_view text) { return CleanText(text, lines); });
  }

  bool IsItemHeading() const {
    if (Field(0) != kItemFields.front()) {
      return false;
    }
    for (std::size_t i = 0; i < std::max(count_, kItemFields.size()); ++i) {
      if (i >= kItemFields.size() || Field(i) != kItemFields[i]) {
        Fail(i < kItemFields.size()
                 ? Say({"field {0}: {1} is not the heading {2}", "câmpul {0}: {1} nu este titlul {2}"}, i + 1,
                       Shown(Field(i)), Shown(kItemFields[i]))
                 : Say({"field {0}: {1} is not the heading of anything",
                        "câmpul {0}: {1} nu este titlul niciunei coloane"},
                       i + 1, Shown(Field(i))));
      }
    }
    headingSeen_ = true;
    return true;
  }

  void ReadHeaderRow() {
    const std::string_view key = Field(0);
    const auto* const field =
        std::find_if(kHeaderFields.begin(), kHeaderFields.end(), [key](const auto& known) { return known.key == key; });
    if (field == kHeaderFields.end()) {
      Fail(Say({"field 1: {0} is neither a key (seller, ...) nor the heading \"description\"",
                "câmpul 1: {0} nu este nici o cheie (seller, ...), nici titlul \"description\""},
               Shown(key)));
    }
    if (std::exchange(seen_[static_cast<std::size_t>(field - kHeaderFields.begin())], true)) {
      Fail(Say({"{0}: {1} is given a second time", "{0}: {1} este dat a doua oară"}, key, Shown(Field(1))));
    }
    if (count_ > 2) {
      Fail(Say({"{0}: {1} stands behind the value", "{0}: {1} stă după valoare"}, key, Shown(Field(2))));
    }
    if (field->date != nullptr) {
      if (field->required || !Field(1).empty()) {
        field->date(invoice_) = Take(key, Field(1), ReadInvoiceDate);
      }
    } else if (key != kCurrencyKey) {
      field->text(invoice_) = TakeText(key, Field(1), field->required);
    } else if (!Field(1).empty()) {
      field->text(invoice_) = Take(key, Field(1), ReadCurrency);
    }
  }

  void CheckHeader() const {
    for (std::size_t i = 0; i < kHeaderFields.size(); ++i) {
      if (kHeaderFields[i].required && !seen_[i]) {
        Fail(IsMissing(kHeaderFields[i].key));
      }
    }
    if (!headingSeen_) {
      Fail(Say({"the row \"description,unit,quantity,unit_price,vat_rate\" is missing",
                "lipsește rândul \"description,unit,quantity,unit_price,vat_rate\""}));
    }
  }

  void ReadItem() {
    if (count_ > kItemFields.size()) {
      Fail(Say({"field 6: {0} is one too many (is a value with a comma not in quotes?)",
                "câmpul 6: {0} este în plus (stă o valoare cu virgulă fără ghilimele?)"},
               Shown(Field(5))));
    }
    InvoiceItem item;
    item.description = TakeText(kItemFields[0], Field(0), true, true);
    item.unit = TakeText(kItemFields[1], Field(1), false);
    item.quantity = Take(kItemFields[2], Field(2), [](auto text) { return ReadNumber(text); });
    item.unitPrice = Take(kItemFields[3], Field(3), ReadLei);
    item.vatRate = Take(kItemFields[4], Field(4), ReadVatRate);
    item.value = Take(kItemFields[3], Field(3), [&item](auto) { return LineValue(item.quantity, item.unitPrice); });
    invoice_.items.push_back(std::move(item));
  }

  CsvReader csv_;
  const std::string& name_;
  Invoice invoice_;
  std::array<bool, kHeaderFields.size()> seen_{};
  mutable bool headingSeen_ = false;
  std::size_t count_ = 0;  ///< fields of the row without empty ones at its end
};

}  // namespace

Invoice ReadInvoice(ByteSource source, const std::string& name) {
  return Reader(std::move(source), name).Read();
}

}  // namespace kivtools
