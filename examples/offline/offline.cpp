// An application that works away from the server: it edits an invoice, may stop at any moment, and goes on where it
// was.
//
//     offline FOLDER 3     corrects three lines of the invoice and ends without a word, as in a power cut
//     offline FOLDER       goes on: corrects the rest, writes what the server has to know, and tells
//
// Three files hold its state: invoice.kdp is the invoice as it came from the server, with the changes since; its
// journal has the edits after the last save; to-send.kdp is the delta.
#include <kivtools/Currency.h>
#include <kivtools/dataset/Journal.h>
#include <kivtools/dataset/Loader.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

using namespace kiv;
using namespace kiv::literals;

namespace {

/// What the server would send: an invoice whose prices have to be looked over.
Dataset FetchInvoice() {
  Dataset invoice("factura", {{"id", FieldType::AutoInc, kKey},
                              {"produs", FieldType::Text, 40, kRequired},
                              {"cantitate", FieldType::Int32, kRequired},
                              {"pret", FieldType::Currency, kRequired},
                              {"verificat", FieldType::Boolean, FieldFlags::None, false}});
  Loader loader(invoice);
  loader.Add({101, "Făină albă"_ro, 40, 3.20_lei, false});
  loader.Add({102, "Zahăr"_ro, 25, 4.10_lei, false});
  loader.Add({103, "Ulei"_ro, 12, 8.75_lei, false});
  loader.Add({104, "Drojdie"_ro, 6, 2.30_lei, false});
  loader.Add({105, "Ambalaj"_ro, 1, 15_lei, false});
  loader.Finish();
  return invoice;
}

/// The invoice as it was left, with every edit that was made.
Dataset Open(const std::filesystem::path& file) {
  if (!std::filesystem::exists(file)) {
    return FetchInvoice();
  }
  LoadReport report;
  Dataset invoice = LoadBinary(file, {}, &report);
  std::cout << "found " << report.replayed << " edits after the last save\n";
  return invoice;
}

/// What the user does to one line: a discount of a tenth; what costs nothing to speak of is taken off, its packing too.
void Correct(Dataset& invoice, RowId line) {
  if (invoice.GetInt64(line, "cantitate") == 1) {
    invoice.Delete(line);
    return;
  }
  const Currency price = invoice.GetCurrency(line, "pret");
  invoice.Update(line, {{"pret", Currency::FromRaw(price.Raw() - price.Raw() / 10)}, {"verificat", true}});
}

Currency Total(const Dataset& invoice) {
  std::int64_t total = 0;
  for (const RowId line : invoice.Rows()) {
    total += invoice.GetCurrency(line, "pret").Raw() * invoice.GetInt64(line, "cantitate");
  }
  return Currency::FromRaw(total);
}

void Work(const std::filesystem::path& folder, int editsBeforeTheEnd) {
  const auto file = folder / "invoice.kdp";
  Dataset invoice = Open(file);
  Journal journal(invoice, file);
  for (const RowId line : invoice.Rows()) {
    if (invoice.GetBool(line, "verificat")) {
      continue;
    }
    if (editsBeforeTheEnd-- == 0) {
      std::cout << "the power is gone\n" << std::flush;
      std::_Exit(3);
    }
    Correct(invoice, line);  // is on the disk when this returns
  }
  journal.Save();
  const Delta delta = invoice.Changes().MakeDelta();
  SaveDelta(delta, folder / "to-send.kdp");
  std::cout << "total " << ShownValue(FieldType::Currency, Total(invoice)) << ", " << delta.Count()
            << " lines to send\n";
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) {
    std::cerr << "offline FOLDER [EDITS]\n";
    return 2;
  }
  try {
    std::filesystem::create_directories(arguments[1]);
    Work(arguments[1], count > 2 ? std::atoi(arguments[2]) : -1);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
  return 0;
}
