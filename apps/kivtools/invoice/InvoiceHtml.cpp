#include "apps/kivtools/invoice/InvoiceHtml.h"

namespace kivtools {
namespace {

constexpr std::string_view kStyle = R"(
@page { size: A4; margin: 15mm 14mm 18mm; }
* { box-sizing: border-box; }
body { margin: 0; color: #1c1c1c; background: #e9e9e9; font: 10pt/1.35 "Liberation Sans", Arial, sans-serif; }
article { width: 210mm; min-height: 297mm; margin: 8mm auto; padding: 15mm 14mm 18mm; background: #fff; }
header { display: flex; justify-content: space-between; align-items: baseline; border-bottom: 1.5pt solid #1c1c1c; }
h1 { margin: 0 0 2mm; font-size: 18pt; overflow-wrap: anywhere; }
header p { margin: 0 0 2mm 8mm; text-align: right; white-space: nowrap; }
.parties { display: flex; gap: 8mm; margin: 5mm 0 6mm; }
.parties section { flex: 1 1 0; min-width: 0; }
h2 { margin: 0; font-size: 8pt; font-weight: normal; text-transform: uppercase; letter-spacing: .06em; color: #666; }
.name { margin: 0 0 1mm; font-size: 11pt; font-weight: bold; overflow-wrap: anywhere; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: 0 3mm; margin: 0; }
dt { color: #666; }
dd { margin: 0; overflow-wrap: anywhere; }
table { width: 100%; border-collapse: collapse; font-variant-numeric: tabular-nums; }
thead { display: table-header-group; }
tr { break-inside: avoid; }
th { padding: 1.5mm 2mm; border-bottom: 1pt solid #1c1c1c; font-size: 8.5pt; text-align: left; vertical-align: bottom; }
td { padding: 1.2mm 2mm; border-bottom: .5pt solid #ccc; vertical-align: top; }
.text { white-space: pre-line; overflow-wrap: anywhere; }
.figure { text-align: right; white-space: nowrap; }
footer { break-inside: avoid; }
.sums { width: auto; margin: 3mm 0 0 auto; }
.sums td { border: 0; padding: .6mm 2mm; }
.sums tr:last-child td { border-top: 1pt solid #1c1c1c; font-size: 11.5pt; font-weight: bold; }
.words { margin: 5mm 0 0; }
@media print {
  body { background: none; }
  article { width: auto; min-height: 0; margin: 0; padding: 0; }
  article + article { break-before: page; }
}
)";

/// Appends texts as they are to be read, and tags around them.
class Html {
 public:
  Html& Raw(std::string_view markup) {
    html_ += markup;
    return *this;
  }
  Html& Text(std::string_view text) {
    for (const char character : text) {
      switch (character) {
        case '&':
          html_ += "&amp;";
          break;
        case '<':
          html_ += "&lt;";
          break;
        case '>':
          html_ += "&gt;";
          break;
        case '"':
          html_ += "&quot;";
          break;
        default:
          html_ += character;
      }
    }
    return *this;
  }
  std::string Take() { return std::move(html_); }

 private:
  std::string html_;
};

void AppendParty(Html& html, std::string_view role, const std::string& name,
                 const std::vector<InvoiceTexts::Pair>& details) {
  html.Raw("<section>\n<h2>").Text(role).Raw("</h2>\n<p class=\"name\">").Text(name).Raw("</p>\n<dl>\n");
  for (const auto& [label, value] : details) {
    if (!value.empty()) {
      html.Raw("<dt>").Text(label).Raw("</dt><dd>").Text(value).Raw("</dd>\n");
    }
  }
  html.Raw("</dl>\n</section>\n");
}

std::string_view ClassOf(std::size_t column) {
  return IsText(column) ? "text" : "figure";
}

void AppendTable(Html& html, const Invoice& invoice, const InvoiceTexts& texts) {
  html.Raw("<table>\n<thead><tr>");
  for (std::size_t column = 0; column < kColumns; ++column) {
    html.Raw("<th scope=\"col\" class=\"").Raw(ClassOf(column)).Raw("\">").Text(kTitles.at(column)).Raw("</th>");
  }
  html.Raw("</tr></thead>\n<tbody>\n");
  for (std::size_t i = 0; i < invoice.items.size(); ++i) {
    const InvoiceTexts::Row cells = texts.Cells(i);
    html.Raw("<tr>");
    for (std::size_t column = 0; column < kColumns; ++column) {
      html.Raw("<td class=\"").Raw(ClassOf(column)).Raw("\">").Text(cells.at(column)).Raw("</td>");
    }
    html.Raw("</tr>\n");
  }
  html.Raw("</tbody>\n</table>\n");
}

void AppendSums(Html& html, const InvoiceTexts& texts) {
  html.Raw("<footer>\n<table class=\"sums\">\n<tbody>\n");
  for (const auto& [label, amount] : texts.Sums()) {
    html.Raw("<tr><td>").Text(label).Raw("</td><td class=\"figure\">").Text(amount).Raw("</td></tr>\n");
  }
  html.Raw("</tbody>\n</table>\n<p class=\"words\">Total în litere: ").Text(texts.TotalInReadableWords());
  html.Raw("</p>\n</footer>\n");
}

}  // namespace

std::string InvoiceAsHtml(const Invoice& invoice, const InvoiceTexts& texts) {
  Html html;
  html.Raw("<article>\n<header>\n<h1>Factura ").Text(invoice.number).Raw("</h1>\n<p>").Text(texts.Date(invoice.date));
  if (invoice.dueDate.ok()) {
    html.Raw("<br/>Scadența: ").Text(texts.Date(invoice.dueDate));
  }
  html.Raw("</p>\n</header>\n<div class=\"parties\">\n");
  AppendParty(html, "Furnizor", invoice.seller.name, texts.SellerDetails());
  AppendParty(html, "Client", invoice.buyer.name, texts.BuyerDetails());
  html.Raw("</div>\n");
  AppendTable(html, invoice, texts);
  AppendSums(html, texts);
  html.Raw("</article>\n");
  return html.Take();
}

std::string HtmlPage(std::string_view title, std::string_view invoices) {
  Html html;
  html.Raw("<!DOCTYPE html>\n<html lang=\"ro\">\n<head>\n<meta charset=\"utf-8\"/>\n<title>").Text(title);
  html.Raw("</title>\n<style>").Raw(kStyle).Raw("</style>\n</head>\n<body>\n").Raw(invoices);
  html.Raw("</body>\n</html>\n");
  return html.Take();
}

}  // namespace kivtools
