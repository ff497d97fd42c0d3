#include <algorithm>
#include <filesystem>
#include <vector>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Input.h"
#include "apps/kivtools/invoice/InvoicePrinter.h"
#include "apps/kivtools/invoice/InvoiceReader.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"
#include "kivtools/Ascii.h"

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

bool EndsInCsv(const std::filesystem::path& path) {
  std::string extension = Utf8FromPath(path.extension());
  std::ranges::transform(extension, extension.begin(), kiv::ascii::ToLower<char>);
  return extension == ".csv";
}

/// The folder's *.csv files in the order of their names.
std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> files;
  std::error_code error;
  std::filesystem::directory_iterator at(PathFromUtf8(folder), error);
  for (; !error && at != std::filesystem::directory_iterator(); at.increment(error)) {
    std::error_code unknown;  // what cannot be asked is tried as a file
    if (EndsInCsv(at->path()) && !at->is_directory(unknown)) {
      files.push_back(Utf8FromPath(at->path()));
    }
  }
  if (error) {
    throw SystemError(ShownName(folder) + ": cannot be listed", error);
  }
  if (files.empty()) {
    throw InputError(Shown(folder) + " holds no *.csv file");
  }
  std::sort(files.begin(), files.end());
  return files;
}

Invoice ReadInvoiceFile(const std::string& file, const std::string& shownName) {
  Input input(file);
  return ReadInvoice(input.Source(), shownName);
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
      session.out.Flush();  // so that the message comes after the invoice
      session.Report(shownName + ": " + field + ": " + Shown(value) + " is not " + what);
      result = kCheckSaidNo;
    }
  }
  return result;
}

int PrintFile(Session& session, const std::string& file, bool first) {
  const std::string shownName = ShownName(file);
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

/// The files that an argument stands for.
std::vector<std::string> FilesOf(const std::string& given) {
  std::error_code unknown;  // what cannot be asked is tried as a file, which tells why
  const bool isFolder = given != "-" && std::filesystem::is_directory(PathFromUtf8(given), unknown);
  return isFolder ? FilesIn(given) : std::vector{given};
}

int RunInvoice(Session& session, const Arguments& arguments) {
  int result = kDone;
  const auto report = [&](const InputError& error) {
    session.out.Flush();  // so that the message comes after the invoices before it
    session.Report(error.what());
    result = kBadInput;
  };
  bool first = true;
  const auto print = [&](const std::string& file) {
    try {
      result = std::max(result, PrintFile(session, file, first));
      first = false;
    } catch (const InputError& error) {
      report(error);
    }
  };
  for (const std::string& given : arguments.Values()) {
    try {
      std::ranges::for_each(FilesOf(given), print);
    } catch (const InputError& error) {
      report(error);
    }
  }
  return result;
}

constexpr Command kCommand = {
    "invoice", "Print an invoice from a CSV file", "FILE.csv|FOLDER|- ...", 1, kAnyNumber, {}, kDetails, RunInvoice};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
