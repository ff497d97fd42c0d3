#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/input/Csv.h"
#include "apps/kivtools/invoice/Invoice.h"

/// The way back from what the command line reads, for tests and fuzzers: reading what is written here must give the
/// same again.
namespace kivtools {

/// A source that gives the bytes in pieces of at most `piece`.
inline ByteSource SourceOf(std::string_view bytes, std::size_t piece = std::string_view::npos) {
  return [bytes, piece](char* into, std::size_t capacity) mutable {
    const std::size_t count = bytes.copy(into, std::min(capacity, piece));
    bytes.remove_prefix(count);
    return count;
  };
}

using Records = std::vector<std::vector<std::string>>;

inline Records ReadRecords(std::string_view bytes, std::size_t piece = std::string_view::npos) {
  CsvReader reader(SourceOf(bytes, piece));
  Records records;
  while (reader.Next()) {
    records.emplace_back(reader.Fields().begin(), reader.Fields().end());
  }
  return records;
}

inline std::string WriteRecord(const std::vector<std::string>& fields, char separator, std::string_view lineEnd) {
  std::string line;
  for (const std::string& field : fields) {
    line += line.empty() ? "\"" : std::string(1, separator) + '"';
    for (const char character : field) {
      line.append(character == '"' ? 2 : 1, character);
    }
    line += '"';
  }
  return line.append(lineEnd);
}

inline std::string WriteInvoice(const Invoice& invoice) {
  const auto amount = [](std::int64_t value) {
    // Always with decimals that do not look like a group of three.
    std::string text = WritePlainAmount(value);
    text += text.find('.') == std::string::npos ? ".0" : "";
    text += text.size() - text.find('.') == 4 ? "0" : "";
    return text;
  };
  const auto two = [](unsigned number) { return std::to_string(number + 100).substr(1); };
  const auto day = [&two](std::chrono::year_month_day date) {
    return date.ok() ? std::to_string(int{date.year()} + 10000).substr(1) + "-" + two(unsigned{date.month()}) + "-" +
                           two(unsigned{date.day()})
                     : std::string();
  };
  Records records = {{"seller", invoice.seller.name},
                     {"seller_code", invoice.seller.code},
                     {"seller_account", invoice.seller.account},
                     {"buyer", invoice.buyer.name},
                     {"buyer_code", invoice.buyer.code},
                     {"buyer_account", invoice.buyer.account},
                     {"seller_address", invoice.seller.address},
                     {"seller_register", invoice.seller.registration},
                     {"buyer_address", invoice.buyer.address},
                     {"buyer_register", invoice.buyer.registration},
                     {"due_date", day(invoice.dueDate)},
                     {"currency", invoice.currency},
                     {"number", invoice.number},
                     {"date", day(invoice.date)},
                     {"description", "unit", "quantity", "unit_price", "vat_rate"}};
  for (const InvoiceItem& item : invoice.items) {
    records.push_back({item.description, item.unit, amount(item.quantity), amount(item.unitPrice),
                       amount(std::int64_t{item.vatRate} * 100)});
  }
  std::string text;
  for (const auto& record : records) {
    text += WriteRecord(record, ';', "\r\n");
  }
  return text;
}

}  // namespace kivtools
