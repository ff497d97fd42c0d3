#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Input.h"
#include "apps/kivtools/invoice/InvoiceHtml.h"
#include "apps/kivtools/invoice/InvoicePrinter.h"
#include "apps/kivtools/invoice/InvoiceReader.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/Paths.h"
#include "apps/kivtools/system/SystemError.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 1> kOptions = {{
    {"html",
     "OUT.html",
     {"write a page to print instead, A4; - is standard output",
      "scrie în schimb o pagină A4 de tipărit; - este ieșirea standard"}},
}};

constexpr Phrase kDetails = {
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
    "  due_date,2026-04-04                             may be left out, and so may seller_address, seller_register\n"
    "  currency,EUR                                    (RON, EUR or USD), buyer_address and buyer_register\n"
    "  description,unit,quantity,unit_price,vat_rate\n"
    "  Făină albă,kg,\"1.250,5\",\"3,20\",11\n\n"
    "Amounts are Romanian (1.234,50) or plain (1234.50) with at most four decimals; 1.234 alone could be either\n"
    "and is refused. A line's value is quantity x price rounded to bani (halves away from zero); VAT is worked\n"
    "out on the sum of each rate. docs/invoice.md tells the rest.\n\n"
    "A file that is not right is reported with its line and not printed; the exit code is then 2. A fiscal code\n"
    "or an account number that is wrong is reported and marked on the invoice; the exit code is then 1.\n\n"
    "A page of --html needs nothing beside it. Each invoice of several begins on a sheet of its own, and a long\n"
    "one repeats its heading on every sheet. OUT.html is replaced when the page is whole.\n\n"
    "Examples:\n"
    "  kivtools invoice examples/invoice.csv\n"
    "  kivtools invoice examples/invoice.csv --html factura.html\n",
    "FILE.csv cuprinde o factură; - este intrarea standard, iar un dosar înseamnă fișierele lui *.csv în ordinea\n"
    "numelor. Fișierul spune cine vinde și cine cumpără, apoi rândurile:\n\n"
    "  seller,Moara Veche SRL                          câmpurile sunt despărțite prin , sau ; (sau tabulatori)\n"
    "  seller_code,RO12345674                          și stau între \" unde cuprind un asemenea semn; UTF-8\n"
    "  seller_account,RO95ZZBK0001506072834001         poate lipsi\n"
    "  buyer,Cofetăria Țuțuianu SRL\n"
    "  buyer_code,RO121212125                          poate lipsi\n"
    "  buyer_account,RO26ZZBK0002917364500122          poate lipsi\n"
    "  number,MV 1024\n"
    "  date,2026-03-05                                 sau 05.03.2026\n"
    "  due_date,2026-04-04                             poate lipsi, la fel seller_address, seller_register\n"
    "  currency,EUR                                    (RON, EUR sau USD), buyer_address și buyer_register\n"
    "  description,unit,quantity,unit_price,vat_rate\n"
    "  Făină albă,kg,\"1.250,5\",\"3,20\",11\n\n"
    "Sumele sunt românești (1.234,50) sau simple (1234.50), cu cel mult patru zecimale; 1.234 poate fi oricare și\n"
    "este refuzat. Valoarea unui rând este cantitatea înmulțită cu prețul, rotunjită la bani (jumătățile, dinspre\n"
    "zero); TVA se calculează la suma fiecărei cote. Restul îl spune docs/invoice.md.\n\n"
    "Un fișier care nu este în regulă se anunță, cu rândul, și nu se tipărește; codul de ieșire este atunci 2. Un\n"
    "cod fiscal sau un IBAN greșit se anunță și se însemnează pe factură; codul de ieșire este atunci 1.\n\n"
    "O pagină din --html nu are nevoie de nimic pe lângă ea. Dintre mai multe facturi, fiecare începe pe o foaie\n"
    "nouă, iar una lungă își repetă capul de tabel pe fiecare foaie. OUT.html se înlocuiește când pagina este\n"
    "întreagă.\n\n"
    "Exemple:\n"
    "  kivtools invoice examples/invoice.csv\n"
    "  kivtools invoice examples/invoice.csv --html factura.html\n"};

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
    throw SystemError(Say({"{0}: cannot be listed", "{0}: nu se poate enumera"}, ShownName(folder)), error);
  }
  if (files.empty()) {
    throw InputError(Say({"{0} holds no *.csv file", "{0} nu cuprinde niciun fișier *.csv"}, Shown(folder)));
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
  static constexpr Phrase kCode = {"a valid fiscal code", "un cod fiscal valid"};
  static constexpr Phrase kAccount = {"a valid account number", "un IBAN valid"};
  const struct {
    bool wrong;
    const char* field;
    const std::string& value;
    const Phrase& what;
  } kNumbers[] = {
      {faults.seller.code, "seller_code", invoice.seller.code, kCode},
      {faults.seller.account, "seller_account", invoice.seller.account, kAccount},
      {faults.buyer.code, "buyer_code", invoice.buyer.code, kCode},
      {faults.buyer.account, "buyer_account", invoice.buyer.account, kAccount},
  };
  int result = kDone;
  for (const auto& [wrong, field, value, what] : kNumbers) {
    if (wrong) {
      session.out.Flush();  // so that the message comes after the invoice
      session.Report(
          Say({"{0}: {1}: {2} is not {3}", "{0}: {1}: {2} nu este {3}"}, shownName, field, Shown(value), what));
      result = kCheckSaidNo;
    }
  }
  return result;
}

/// Shows invoices one after another, on standard output or on a page.
class Shower {
 public:
  Shower(Session& session, std::optional<std::string> page)
      : session_(session), page_(std::move(page)), terminal_(TerminalWidth(StandardStream::Output)) {}

  /// Returns an ExitCode; throws InputError where the invoice is not right.
  int Show(const std::string& file) {
    const std::string shownName = ShownName(file);
    const Invoice invoice = ReadInvoiceFile(file, shownName);
    InvoiceTotals totals;
    try {
      totals = ComputeTotals(invoice);
    } catch (const InputError& error) {
      throw InputError(AsItIs(shownName + ": " + error.what()));
    }
    const InvoiceFaults faults = FindFaults(invoice, session_.Lib());
    const InvoiceTexts texts(invoice, totals, faults, session_.Lib());
    if (page_) {
      title_ += (title_.empty() ? "Factura " : ", ") + invoice.number;
      invoices_ += InvoiceAsHtml(invoice, texts);
    } else {
      session_.out.Write(std::exchange(first_, false) ? "" : "\n\n");
      PrintInvoice(invoice, texts, terminal_, session_.out);
    }
    return ReportFaults(session_, invoice, faults, shownName);
  }

  /// Writes the page, if there is anything to be on it.
  void Finish() {
    if (!page_ || invoices_.empty()) {
      return;
    }
    const std::string page = HtmlPage(title_, invoices_);
    if (*page_ == "-") {
      session_.out.Write(page);
    } else {
      session_.Lib().SaveFile(PathFromUtf8(*page_), page);
    }
  }

  /// Throws for an invoice that the page would replace.
  void RefuseAsPage(const std::string& file) const {
    std::error_code unknown;  // what cannot be asked is not the same
    if (page_ && file != "-" && std::filesystem::equivalent(PathFromUtf8(file), PathFromUtf8(*page_), unknown)) {
      throw InputError(
          Say({"{0} is an invoice that is read", "{0} este o factură care se citește"}, ShownName(*page_)));
    }
  }

 private:
  Session& session_;
  std::optional<std::string> page_;
  std::optional<std::size_t> terminal_;
  bool first_ = true;
  std::string title_;
  std::string invoices_;
};

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
    session.Report(AsItIs(error.what()));
    result = kBadInput;
  };
  Shower shower(session, arguments.ValueOf("html"));
  const auto show = [&](const std::string& file) {
    shower.RefuseAsPage(file);
    try {
      result = std::max(result, shower.Show(file));
    } catch (const InputError& error) {
      report(error);
    }
  };
  for (const std::string& given : arguments.Values()) {
    std::vector<std::string> files;
    try {
      files = FilesOf(given);
    } catch (const InputError& error) {
      report(error);
    }
    std::ranges::for_each(files, show);
  }
  shower.Finish();
  return result;
}

constexpr Command kCommand = {"invoice",
                              {"Print an invoice from a CSV file", "Tipărește o factură dintr-un fișier CSV"},
                              "FILE.csv|FOLDER|- ...",
                              1,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunInvoice};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
