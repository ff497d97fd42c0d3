#include <algorithm>
#include <filesystem>
#include <limits>
#include <vector>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/InvoicePrinter.h"
#include "apps/kivtools/InvoiceReader.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Errors.h"
#include "kivtools/Text.h"
#include "platform/Console.h"

namespace kivtools {
namespace {

constexpr std::string_view kDetails =
    "FILE.csv holds one invoice; - is standard input, a folder stands for its *.csv files in the order of their\n"
    "names. The file says who sells and buys, then the lines:\n\n"
    "  seller,Moara Veche SRL                          fields are separated by , or ; (or tabulators) and quoted\n"
    "  seller_code,RO12345674                          with \" where they hold one; UTF-8\n"
    "  seller_account,RO95ZZBK0001506072834001         may be left out\n"
    "  buyer,Cofetăria Țuțuianu SRL\n"
    "  buyer_code,RO121212125                          may be left out\n"
    "  buyer_account,RO26ZZBK0002917364500122          may be left out\n"
    "  number,MV 1024\n"
    "  date,2026-03-05                                 or 05.03.2026\n"
    "  description,unit,quantity,unit_price,vat_rate\n"
    "  Făină albă,kg,\"1.250,5\",\"3,20\",11\n\n"
    "Amounts are Romanian (1.234,50) or plain (1234.50) with at most four decimals; 1.234 alone could be either and\n"
    "is refused. A line's value is quantity x price rounded to bani (halves away from zero); VAT is worked out on the\n"
    "sum of each rate. docs/invoice.md tells the rest.\n\n"
    "A file that is not right is reported with its line and not printed; the exit code is then 2. A fiscal code or an\n"
    "account number that is wrong is reported and marked on the invoice; the exit code is then 1.\n\n"
    "Example:\n"
    "  kivtools invoice examples/invoice.csv\n";

std::filesystem::path PathFromUtf8(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

std::string NameOf(const std::filesystem::path& path) {
  const std::u8string name = path.generic_u8string();
  return {name.begin(), name.end()};
}

bool EndsInCsv(const std::filesystem::path& path) {
  std::string extension = NameOf(path.extension());
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; });
  return extension == ".csv";
}

/// The folder's *.csv files in the order of their names.
std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(PathFromUtf8(folder))) {
    if (EndsInCsv(entry.path()) && !entry.is_directory()) {
      files.push_back(NameOf(entry.path()));
    }
  }
  if (files.empty()) {
    throw InputError(Shown(folder) + " holds no *.csv file");
  }
  std::sort(files.begin(), files.end());
  return files;
}

Invoice ReadInvoiceFile(const std::string& file, const std::string& shownName) {
  using kiv::platform::InputStream;
  try {
    InputStream stream = file == "-" ? InputStream::Standard() : InputStream::Open(PathFromUtf8(file));
    Progress progress(stream.Size());
    return ReadInvoice(
        [&](char* into, std::size_t capacity) {
          const std::size_t count = stream.Read(into, capacity);
          progress.Advance(count);
          return count;
        },
        shownName);
  } catch (const kiv::OsError& error) {
    throw InputError(shownName + ": " + kiv::ToUtf8(error.what()));
  }
}

/// Says which numbers of the parties are wrong.
int ReportFaults(Session& session, const Invoice& invoice, const InvoiceFaults& faults, const std::string& shownName) {
  const struct {
    bool wrong;
    const char* field;
    const std::string& value;
    const char* what;
  } kNumbers[] = {
      {faults.seller.code, "seller_code", invoice.seller.code, "a valid fiscal code"},
      {faults.seller.account, "seller_account", invoice.seller.account, "a valid account number"},
      {faults.buyer.code, "buyer_code", invoice.buyer.code, "a valid fiscal code"},
      {faults.buyer.account, "buyer_account", invoice.buyer.account, "a valid account number"},
  };
  int result = kDone;
  for (const auto& [wrong, field, value, what] : kNumbers) {
    if (wrong) {
      session.out.Flush();  // so that the message stands behind the invoice
      session.Report(shownName + ": " + field + ": " + Shown(value) + " is not " + what);
      result = kCheckSaidNo;
    }
  }
  return result;
}

int PrintFile(Session& session, const std::string& file, bool first) {
  const std::string shownName = WhyNotPrintable(file).empty() ? file : Shown(file);
  const Invoice invoice = ReadInvoiceFile(file, shownName);
  InvoiceTotals totals;
  try {
    totals = ComputeTotals(invoice);
  } catch (const InputError& error) {
    throw InputError(shownName + ": " + error.what());
  }
  session.out.Write(first ? "" : "\n\n");
  const InvoiceFaults faults = FindFaults(invoice, session.Lib());
  PrintInvoice(invoice, totals, faults, session.Lib(), session.out);
  return ReportFaults(session, invoice, faults, shownName);
}

int RunInvoice(Session& session, const Arguments& arguments) {
  std::vector<std::string> files;
  for (const std::string& given : arguments.Values()) {
    std::error_code error;
    if (std::filesystem::is_directory(PathFromUtf8(given), error)) {
      const auto inside = FilesIn(given);
      files.insert(files.end(), inside.begin(), inside.end());
    } else {
      files.push_back(given);
    }
  }
  int result = kDone;
  bool first = true;
  for (const std::string& file : files) {
    try {
      result = std::max(result, PrintFile(session, file, first));
      first = false;
    } catch (const InputError& error) {
      session.out.Flush();  // so that the message stands behind the invoices before it
      session.Report(error.what());
      result = kBadInput;
    }
  }
  return result;
}

}  // namespace

const Command kInvoiceCommand = {"invoice",
                                 "Print an invoice from a CSV file",
                                 "FILE.csv|FOLDER|- ...",
                                 1,
                                 std::numeric_limits<std::size_t>::max(),
                                 {},
                                 kDetails,
                                 RunInvoice};

}  // namespace kivtools
