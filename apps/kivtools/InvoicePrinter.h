#pragma once

#include "apps/kivtools/Invoice.h"
#include "apps/kivtools/Library.h"
#include "apps/kivtools/Output.h"

namespace kivtools {

/// Prints an invoice in columns: the parties, the lines, VAT per rate, the total and the total in words. All amounts
/// are written by the library. Memory does not grow with the number of lines.
void PrintInvoice(const Invoice& invoice, const InvoiceTotals& totals, const Library& library, Output& out);

}  // namespace kivtools
