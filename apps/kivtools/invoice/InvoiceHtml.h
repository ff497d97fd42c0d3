#pragma once

#include <string>
#include <string_view>

#include "apps/kivtools/invoice/InvoiceTexts.h"

namespace kivtools {

/// An invoice as a piece of a page: the parties, the lines, the sums and the total in words. Every text is escaped.
std::string InvoiceAsHtml(const Invoice& invoice, const InvoiceTexts& texts);

/// A page of invoices that needs nothing beside it: its style sheet is within, and there is no script. Printed, each
/// invoice begins on a sheet of its own, A4; pages break between the lines of an invoice and repeat their heading.
/// It is well-formed XML too.
std::string HtmlPage(std::string_view title, std::string_view invoices);

}  // namespace kivtools
