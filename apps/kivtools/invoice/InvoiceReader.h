#pragma once

#include <string>

#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/invoice/Invoice.h"

namespace kivtools {

/// Reads an invoice in the layout of docs/invoice.md. `name` stands for the file in messages. Throws InputError that
/// gives name, line, field and value for whatever is malformed; nothing is guessed.
///
///     ReadInvoice(source, "march.csv")   // throws "march.csv:9: unit_price: \"12a\" is not an amount such as ..."
Invoice ReadInvoice(ByteSource source, const std::string& name);

}  // namespace kivtools
