#pragma once

#include <cstddef>
#include <optional>

#include "apps/kivtools/Output.h"
#include "apps/kivtools/invoice/InvoiceTexts.h"

namespace kivtools {

/// Prints an invoice in columns: the parties, the lines, VAT per rate, the total and the total in words. Memory does
/// not grow with the number of lines. Numbers that are wrong are marked. On a terminal, of which `terminal` are the
/// columns, nothing is wider than it: where the table would be, each line of the invoice gets lines of its own.
void PrintInvoice(const Invoice& invoice, const InvoiceTexts& texts, std::optional<std::size_t> terminal, Output& out);

}  // namespace kivtools
