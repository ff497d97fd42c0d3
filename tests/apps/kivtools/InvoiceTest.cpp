#include <gmock/gmock.h>

#include <limits>
#include <random>

#include "apps/kivtools/CsvWriting.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/invoice/Invoice.h"
#include "apps/kivtools/invoice/InvoiceReader.h"

namespace kivtools {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::string_view kHeader =
    "seller,Moară SRL\nseller_code,RO1\nbuyer,Țesut SRL\nnumber,7\ndate,2026-03-05\n"
    "description,unit,quantity,unit_price,vat_rate\n";

Invoice ReadText(const std::string& text) {
  return ReadInvoice(SourceOf(text), "x.csv");
}

TEST(LineValue, RoundsOnceHalvesAwayFromZero) {
  const struct {
    std::int64_t quantity, unitPrice, bani;
  } kCases[] = {
      {10000, 10000, 100},
      {15000, 3300, 50},
      {-15000, 3300, -50},
      {15000, 3299, 49},
      {1, 4999, 0},
      {1, 1000000, 1},
      {10000, 50, 1},
      {10000, 49, 0},
      {-10000, -50, 1},
      {9999, 9999, 100},
      {3333, 3333, 11},
      {kMost, 9999, 92224496996510903},  // 64 bits alone would not hold the product
      {10000, kMost, kMost / 100},       // the largest: 922337203685477,58 lei
  };
  for (const auto& [quantity, unitPrice, bani] : kCases) {
    EXPECT_EQ(LineValue(quantity, unitPrice), bani) << quantity << " x " << unitPrice;
    EXPECT_EQ(LineValue(unitPrice, quantity), bani) << unitPrice << " x " << quantity;
  }
  EXPECT_THROW(LineValue(10001, kMost), InputError);
  EXPECT_THROW(LineValue(kMost, kMost), InputError);
  EXPECT_THROW(LineValue(std::numeric_limits<std::int64_t>::min(), kMost), InputError);
}

#ifdef __SIZEOF_INT128__
TEST(LineValue, EqualsTheProductIn128Bits) {
  __extension__ using Wide = __int128;
  std::mt19937_64 random(3);
  for (int i = 0; i < 200000; ++i) {
    const auto quantity = static_cast<std::int64_t>(random()) >> (random() % 64);
    const auto unitPrice = static_cast<std::int64_t>(random()) >> (random() % 64);
    const Wide product = Wide{quantity} * unitPrice;
    const Wide bani = (product + (product < 0 ? -500'000 : 500'000)) / 1'000'000;
    if (bani > kMost / 100 || bani < -(kMost / 100)) {
      EXPECT_THROW(LineValue(quantity, unitPrice), InputError) << quantity << " x " << unitPrice;
    } else {
      EXPECT_EQ(LineValue(quantity, unitPrice), static_cast<std::int64_t>(bani)) << quantity << " x " << unitPrice;
    }
  }
}
#endif

TEST(Totals, WorkOutVatOnTheSumOfEachRate) {
  // Line by line the VAT of three lines of 0,02 lei at 21 % would be nothing; on their sum it is one ban.
  Invoice invoice;
  const auto add = [&invoice](std::int64_t value, std::int32_t rate) {
    invoice.items.emplace_back().value = value;
    invoice.items.back().vatRate = rate;
  };
  for (int i = 0; i < 3; ++i) {
    add(2, 2100);
  }
  add(1000, 1100);
  add(-100, 0);
  add(200, 550);
  const InvoiceTotals totals = ComputeTotals(invoice);
  EXPECT_THAT(totals.groups, testing::ElementsAre(VatGroup{2100, 6, 1}, VatGroup{1100, 1000, 110},
                                                  VatGroup{550, 200, 11}, VatGroup{0, -100, 0}));
  EXPECT_EQ(totals.base, 1106);
  EXPECT_EQ(totals.vat, 122);
  EXPECT_EQ(totals.total, 1228);
  EXPECT_EQ(VatOn(-50, 2100), -11);
  EXPECT_EQ(VatOn(kMost / 100, 10000), kMost / 100);
  add(kMost / 100 - 1106, 0);
  EXPECT_THROW(ComputeTotals(invoice), InputError) << "the total with VAT is out of range";
  add(kMost / 100, 0);
  EXPECT_THROW(ComputeTotals(invoice), InputError) << "the sum of the lines is out of range";
}

TEST(InvoiceReader, TakesWhatSpreadsheetsWrite) {
  const Invoice invoice = ReadText(
      "\xEF\xBB\xBFnumber; MV 7 ;;;\r\ndate;05.03.2026;;;\r\nseller;\"Moară; SRL\";;;\r\nseller_code;RO1;;;\r\n"
      "buyer;Țesut SRL;;;\r\nbuyer_account;RO2;;;\r\n;;;;\r\ndescription;unit;quantity;unit_price;vat_rate\r\n"
      "\"Făină\r\nalbă\";kg;1.250,5;3,20;11 %\r\n\r\nRabat;;-1;0.0001;5,5");
  const Invoice expected{{"Moară; SRL", "RO1", ""},
                         {"Țesut SRL", "", "RO2"},
                         "MV 7",
                         std::chrono::year{2026} / 3 / 5,
                         {{"Făină\nalbă", "kg", 12505000, 32000, 1100, 400160}, {"Rabat", "", -10000, 1, 550, 0}}};
  EXPECT_TRUE(invoice == expected);
  EXPECT_TRUE(ReadText(WriteInvoice(invoice)) == invoice);
}

TEST(InvoiceReader, TakesWhatOnlySomeInvoicesSay) {
  const std::string more =
      "due_date,2026-04-04\ncurrency,EUR\nseller_address,Șona 1\nseller_register,J08/1\nbuyer_address,Cluj\n"
      "buyer_register,J12/2\n";
  const Invoice invoice = ReadText(more + std::string(kHeader) + "a,kg,1,2,11\n");
  EXPECT_EQ(invoice.dueDate, std::chrono::year{2026} / 4 / 4);
  EXPECT_THAT((std::vector{invoice.currency, invoice.seller.address, invoice.seller.registration, invoice.buyer.address,
                           invoice.buyer.registration}),
              testing::ElementsAre("EUR", "Șona 1", "J08/1", "Cluj", "J12/2"));
  EXPECT_TRUE(ReadText(WriteInvoice(invoice)) == invoice);
  const Invoice plain = ReadText("due_date,\ncurrency,\n" + std::string(kHeader) + "a,kg,1,2,11\n");
  EXPECT_FALSE(plain.dueDate.ok());
  EXPECT_EQ(plain.currency, "RON");
}

TEST(InvoiceReader, NamesFileLineFieldAndValueOfWhatIsWrong) {
  const std::string header(kHeader);
  const struct {
    std::string text;
    const char* message;
  } kCases[] = {
      {"", "x.csv:1: seller is missing"},
      {"seller,A\nsellr_code,RO1\n",
       "x.csv:2: field 1: \"sellr_code\" is neither a key (seller, ...) nor the heading \"description\""},
      {"seller,A\nseller,B\n", "x.csv:2: seller: \"B\" is given a second time"},
      {"seller,A,B\n", "x.csv:1: seller: \"B\" stands behind the value"},
      {"seller,\n", "x.csv:1: seller: \"\" is empty"},
      {"seller,\x1B[2J\n", "x.csv:1: seller: \"\\x1B[2J\" has a control character"},
      {"seller,S\xAA\n", "x.csv:1: seller: \"S\\xAA\" is not UTF-8"},
      {"date,2026-02-30\n", "x.csv:1: date: \"2026-02-30\" is not a date that the calendar has"},
      {"date,0000-01-01\n", "x.csv:1: date: \"0000-01-01\" is not a date that the calendar has"},
      {"currency,GBP\n", "x.csv:1: currency: \"GBP\" is not RON, EUR or USD"},
      {"due_date,4.4\n", "x.csv:1: due_date: \"4.4\" is not a date such as 2026-03-05, 05.03.2026 or 5 martie 2026"},
      {"date,5/3/2026\n", "x.csv:1: date: \"5/3/2026\" is not a date such as 2026-03-05, 05.03.2026 or 5 martie 2026"},
      {"date,2026--3-05\n",
       "x.csv:1: date: \"2026--3-05\" is not a date such as 2026-03-05, 05.03.2026 or 5 martie 2026"},
      {"seller,A\n\ndescription,unit,price\n", "x.csv:3: field 3: \"price\" is not the heading \"quantity\""},
      {"seller,A\ndescription,unit,quantity,unit_price,vat_rate\n", "x.csv:2: seller_code is missing"},
      {header.substr(0, header.find("desc")),
       "x.csv:6: the row \"description,unit,quantity,unit_price,vat_rate\" is missing"},
      {header, "x.csv: there are no lines"},
      {header + ",kg,1,1,11\n", "x.csv:7: description: \"\" is empty"},
      {header + "\n\"a\n b\",kg,1,1,11\na,kg,x,1,11\n",
       "x.csv:10: quantity: \"x\" is not an amount such as 1.234,56 or 1234.56"},
      {header + "a,kg,1,1.234,11\n",
       "x.csv:7: unit_price: \"1.234\" can be read in two ways: write 1234 for the whole number or 1,234 for decimals"},
      {header + "a,kg,1,2\n", "x.csv:7: vat_rate: \"\" is not an amount such as 1.234,56 or 1234.56"},
      {header + "a,kg,1,2,101\n", "x.csv:7: vat_rate: \"101\" is not a rate from 0 to 100 percent"},
      {header + "a,kg,1,2,-1\n", "x.csv:7: vat_rate: \"-1\" is not a rate from 0 to 100 percent"},
      {header + "a,kg,1,2,50,11\n",
       "x.csv:7: field 6: \"11\" is one too many (is a value with a comma not in quotes?)"},
      {header + "a,kg,1000000000,1000000000,11\n",
       "x.csv:7: unit_price: \"1000000000\" times the quantity is more than 922.337.203.685.477,58 lei"},
      {header + "a,24\" x,1,1,11\n", "x.csv:7: field 2: a quote inside a field that is not quoted"},
  };
  for (const auto& [text, message] : kCases) {
    try {
      ReadText(text);
      ADD_FAILURE() << text;
    } catch (const InputError& error) {
      EXPECT_STREQ(error.what(), message) << text;
    }
  }
}

}  // namespace
}  // namespace kivtools
