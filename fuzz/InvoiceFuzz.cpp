#include <cstdlib>

#include "apps/kivtools/CsvWriting.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/invoice/InvoiceReader.h"

// An invoice that is accepted, written back and read again is the same invoice, and its totals add up.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kivtools;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Invoice invoice;
  InvoiceTotals totals;
  try {
    invoice = ReadInvoice(SourceOf(text), "fuzz.csv");
    totals = ComputeTotals(invoice);
  } catch (const InputError&) {
    return 0;
  }
  std::int64_t sum = 0;
  for (const VatGroup& group : totals.groups) {
    sum += group.base + group.vat;
  }
  // Reading again must not throw: an exception that leaves this function is a finding.
  if (sum != totals.total || !(ReadInvoice(SourceOf(WriteInvoice(invoice)), "again.csv") == invoice)) {
    std::abort();
  }
  return 0;
}
