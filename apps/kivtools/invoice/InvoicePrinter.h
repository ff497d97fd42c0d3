#pragma once

#include "apps/kivtools/Library.h"
#include "apps/kivtools/Output.h"
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

/// Prints an invoice in columns: the parties, the lines, VAT per rate, the total and the total in words. All amounts
/// are written by the library. Memory does not grow with the number of lines. Numbers that are wrong are marked.
void PrintInvoice(const Invoice& invoice, const InvoiceTotals& totals, const InvoiceFaults& faults,
                  const Library& library, Output& out);

}  // namespace kivtools
