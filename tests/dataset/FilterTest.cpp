#include <fstream>

#include "Expect.h"
#include "FixedClock.h"
#include "dataset/query/Tree.h"
#include "kivtools/dataset/Filter.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Lines() {
  return {"linii",
          {{"id", FieldType::AutoInc, kKey},
           {"partener", FieldType::Text, 40},
           {"cont", FieldType::Text},
           {"cnp", FieldType::Text},
           {"cui", FieldType::Text},
           {"siruta", FieldType::Text},
           {"data", FieldType::Date},
           {"ora", FieldType::Time},
           {"moment", FieldType::DateTime},
           {"suma", FieldType::Currency},
           {"cantitate", FieldType::Int32},
           {"pret", FieldType::Double},
           {"platit", FieldType::Boolean},
           {"obs", FieldType::Memo},
           {"mare", FieldType::Int64},
           {"lat", FieldType::WideText},
           {"guid", FieldType::Guid},
           {"bytes", FieldType::Blob},
           {"nocase", FieldType::Text, 0, {}, {}, Collation::RomanianNoCase},
           {"binar", FieldType::Text, 0, {}, {}, Collation::Binary}}};
}

constexpr Guid kGuid{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

RowId AddLine(Dataset& lines) {
  return lines.Insert({{"id", 17},
                       {"partener", "Şapte Arini"_ro},
                       {"cont", "RO49AAAA1B31007593840000"},
                       {"cnp", "1800101221144"},
                       {"cui", "14399840"},
                       {"siruta", "179132"},
                       {"data", DateTime::Encode(2026, 1, 31)},
                       {"ora", DateTime::Encode(1899, 12, 30, 8, 15)},
                       {"moment", DateTime::Encode(2026, 1, 31, 14, 30)},
                       {"suma", 1234.56_lei},
                       {"cantitate", 7},
                       {"pret", 2.5},
                       {"platit", true},
                       {"mare", std::numeric_limits<std::int64_t>::max()},
                       {"lat", u"\u015Fir"},
                       {"guid", kGuid},
                       {"bytes", Bytes{1, 2, 3}},
                       {"nocase", "ARGES"},
                       {"binar", "b"}});
}

class FilterTest : public testing::Test {
 protected:
  Value ValueOf(TextView text, const FilterParameters& parameters = {}) {
    return Expression(lines_, text, parameters).Evaluate(row_);
  }
  FixedClock clock_{DateTime::Encode(2026, 2, 28, 23, 59)};
  Dataset lines_ = Lines();
  RowId row_ = AddLine(lines_);
};

TEST_F(FilterTest, EveryExampleOfTheDocumentIsTrue) {
  std::ifstream document(KIV_FILTER_DOCUMENT);
  std::string called;
  std::string line;
  bool isWithin = false;
  int examples = 0;
  while (std::getline(document, line)) {
    if (line.starts_with("```")) {
      isWithin = line == "```filter";
    } else if (isWithin) {
      EXPECT_TRUE(Filter(lines_, FromUtf8(line)).Test(row_)) << line;
      called += line;
      ++examples;
    }
  }
  EXPECT_GE(examples, 40);
  for (const TextView function :
       {"Lower",    "Upper", "Trim",    "Length",        "Substr",   "Contains",        "StartsWith",
        "Abs",      "Round", "Year",    "Month",         "Day",      "DateOf",          "TimeOf",
        "Coalesce", "Today", "TestCNP", "TestCodFiscal", "EsteIBAN", "ValideazaSIRUTA", "RoToEn"}) {
    EXPECT_NE(called.find(Text(function) + "("), std::string::npos) << function;
  }
}

TEST_F(FilterTest, EveryExpressionHasItsValueAndType) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  const struct {
    TextView text;
    FieldType type;
    Value value;
  } kCases[] = {
      // literals
      {"12", FieldType::Int64, std::int64_t{12}},
      {"-9223372036854775808", FieldType::Int64, -kMost - 1},
      {"12.5", FieldType::Currency, 12.5_lei},
      {"-0.0001", FieldType::Currency, Currency::FromRaw(-1)},
      {"0.00001", FieldType::Double, 0.00001},
      {"922337203685477.5808", FieldType::Double, 922337203685477.5808},
      {"'d''Or'", FieldType::Memo, Text("d'Or")},
      {"''''", FieldType::Memo, Text("'")},
      {"{2026-01-31}", FieldType::Date, DateTime::Encode(2026, 1, 31)},
      {"{2026-01-31 14:30:05.250}", FieldType::DateTime, DateTime::Encode(2026, 1, 31, 14, 30, 5, 250)},
      {"{1850-06-30 06:00}", FieldType::DateTime, DateTime::Encode(1850, 6, 30, 6)},
      {"{14:30}", FieldType::Time, DateTime::Encode(1899, 12, 30, 14, 30)},
      {"null", FieldType::Boolean, Null{}},
      // precedence and grouping
      {"2 + 3 * 4 - 1", FieldType::Int64, std::int64_t{13}},
      {"(2 + 3) * 4", FieldType::Int64, std::int64_t{20}},
      {"10 - 3 - 2", FieldType::Int64, std::int64_t{5}},
      {"-cantitate * 2", FieldType::Int64, std::int64_t{-14}},
      {"5 - -3", FieldType::Int64, std::int64_t{8}},
      {"true or false and false", FieldType::Boolean, true},
      {"not false and false", FieldType::Boolean, false},
      {"not 1 = 2", FieldType::Boolean, true},
      {"SUMA / 2 * 2", FieldType::Currency, 1234.56_lei},
      // arithmetic
      {"7 / 2", FieldType::Double, 3.5},
      {"-7 div 2", FieldType::Int64, std::int64_t{-3}},
      {"-7 mod 2", FieldType::Int64, std::int64_t{-1}},
      {"-9223372036854775808 mod (cantitate - 8)", FieldType::Int64, std::int64_t{0}},
      {"0.5 * 0.0001", FieldType::Currency, Currency::FromRaw(0)},
      {"0.5 * 0.0003", FieldType::Currency, Currency::FromRaw(2)},
      {"-0.5 * 0.0003", FieldType::Currency, Currency::FromRaw(-2)},
      {"300000.0 * 300000.0", FieldType::Currency, 90000000000_lei},
      {"1.0 / 3", FieldType::Currency, 0.3333_lei},
      {"1 / 3.0", FieldType::Currency, 0.3333_lei},
      {"1.0 / 3.0", FieldType::Currency, 0.3333_lei},
      {"922337203685477 + 0.5", FieldType::Currency, 922337203685477.5_lei},
      {"10000000000000000 - 9999999999999998.0", FieldType::Double, 2.0},
      {"1000000000000000 * 0.0001", FieldType::Currency, 100000000000_lei},
      {"suma + pret", FieldType::Double, 1237.06},
      {"{2026-03-01} - 1", FieldType::Date, DateTime::Encode(2026, 2, 28)},
      {"{2024-03-01} - {2024-02-01}", FieldType::Int64, std::int64_t{29}},
      {"'a' || obs", FieldType::Memo, Null{}},
      {"null + 1", FieldType::Int64, Null{}},
      // comparison across kinds
      {"mare > 922337203685477.5807", FieldType::Boolean, true},
      {"mare = suma", FieldType::Boolean, false},
      {"suma < mare", FieldType::Boolean, true},
      {"cantitate = 7.0 and cantitate < 7.1 and cantitate < 7.00001", FieldType::Boolean, true},
      {"data = {2026-01-31 00:00} and moment > data and data < moment", FieldType::Boolean, true},
      {"lat = 'şir' and lat < 'şis' and lat > 'şi'", FieldType::Boolean, true},
      {"nocase = 'arges' and nocase like 'ar%' and nocase in ('arges') and Contains(nocase, 'rg')", FieldType::Boolean,
       true},
      {"Lower(nocase) = 'ARGES' and 'arges' = nocase and StartsWith(nocase, 'ar')", FieldType::Boolean, true},
      {"'arges' = 'ARGES' or partener like 'ŞAPTE%' or Contains(partener, 'ARINI')", FieldType::Boolean, false},
      {"'a' < 'B' and not binar < 'B' and 'ă' < 'b'", FieldType::Boolean, true},
      // three-valued logic
      {"obs = 'x'", FieldType::Boolean, Null{}},
      {"not obs = 'x'", FieldType::Boolean, Null{}},
      {"obs = 'x' or true", FieldType::Boolean, true},
      {"obs = 'x' and false", FieldType::Boolean, false},
      {"obs = 'x' or false", FieldType::Boolean, Null{}},
      {"platit = null", FieldType::Boolean, Null{}},
      {"7 in (1, null)", FieldType::Boolean, Null{}},
      {"7 in (7, null)", FieldType::Boolean, true},
      {"cantitate not in (1, null)", FieldType::Boolean, Null{}},
      {"cantitate between 8 and null", FieldType::Boolean, false},
      {"cantitate between null and 8", FieldType::Boolean, Null{}},
      {"obs like '%'", FieldType::Boolean, Null{}},
      {"partener like null", FieldType::Boolean, Null{}},
      {"null is null and (1 + null) is null", FieldType::Boolean, true},
      // what decides first leaves out what would fail
      {"cantitate = 7 or 1 / 0 = 1", FieldType::Boolean, true},
      {"cantitate <> 7 and 1 / 0 = 1 or platit", FieldType::Boolean, true},
      // like
      {"'' like '' and '' like '%' and not '' like '_'", FieldType::Boolean, true},
      {"'abcabd' like '%ab_' and 'aab' like '%ab' and not 'ab' like '%abc%'", FieldType::Boolean, true},
      {"'a%b' like 'a\\%b' escape '\\' and not 'axb' like 'a\\%b' escape '\\'", FieldType::Boolean, true},
      {"'%%%' like '%' || '_' || '%'", FieldType::Boolean, true},
      // functions
      {"Substr('abcdef', 0, 2) || Substr('abcdef', 6, 9) || Substr('abc', 4) || Substr('abc', 2, -1)", FieldType::Memo,
       Text("abf")},
      {"Length(lat) + Length(bytes) * 10", FieldType::Int64, std::int64_t{33}},
      {"Round(1.00004, 4)", FieldType::Double, 1.0},
      {"Round(2.5)", FieldType::Currency, 2_lei},
      {"Round(-0.0350, 2)", FieldType::Currency, Currency::FromRaw(-400)},
      {"Round(-0.0250, 2)", FieldType::Currency, Currency::FromRaw(-200)},
      {"Round(pret * 3, 1)", FieldType::Double, 7.5},
      {"Round(cantitate, 2)", FieldType::Int64, std::int64_t{7}},
      {"Abs(-2.5)", FieldType::Currency, 2.5_lei},
      {"Year({0001-01-01}) + Month({9999-12-31}) + Day({1899-12-29 06:00})", FieldType::Int64, std::int64_t{42}},
      {"DateOf({1899-12-29 06:00})", FieldType::Date, DateTime::Encode(1899, 12, 29)},
      {"TimeOf({1899-12-29 06:00})", FieldType::Time, DateTime::Encode(1899, 12, 30, 6)},
      {"TimeOf(data)", FieldType::Time, DateTime()},
      {"Coalesce(obs, null)", FieldType::Memo, Null{}},
      {"Coalesce(null, cantitate, 1.5)", FieldType::Currency, 7_lei},
      {"Coalesce(data, moment)", FieldType::DateTime, DateTime::Encode(2026, 1, 31)},
      {"Today()", FieldType::Date, DateTime::Encode(2026, 2, 28)},
      {"upper(LOWER('ŢŞĂÂÎ ß'))", FieldType::Memo, Text("ŢŞĂÂÎ ß"_ro)},
      {"TestCNP(obs)", FieldType::Boolean, Null{}},
      {"TestCNP('') or TestCodFiscal('x') or EsteIBAN('') or ValideazaSIRUTA('')", FieldType::Boolean, false},
      // other kinds
      {"guid", FieldType::Guid, kGuid},
      {"bytes", FieldType::Blob, Bytes{1, 2, 3}},
      {"lat", FieldType::WideText, WideText(u"\u015Fir")},
      {"[obs] is null and bytes is not null", FieldType::Boolean, true},
  };
  for (const auto& [text, type, value] : kCases) {
    const Text code = FromUtf8(text);
    EXPECT_EQ(ValueOf(code), value) << text;
    EXPECT_EQ(Expression(lines_, code).Type(), type) << text;
  }
}

TEST_F(FilterTest, ParametersAreBoundByName) {
  const FilterParameters parameters = {{"prag", 1000_lei},
                                       {"Cont", Text("RO49")},
                                       {"zi", DateTime::Encode(2026, 1, 31)},
                                       {"ora", DateTime::Encode(1899, 12, 30, 8, 15)},
                                       {"guid", kGuid},
                                       {"lat", WideText(u"\u015Fir")},
                                       {"nimic", Null{}},
                                       {"da", true},
                                       {"n", std::int64_t{7}},
                                       {"f", 2.5},
                                       {"b", Bytes{1}}};
  for (const TextView text :
       {"suma > :prag and StartsWith(cont, :CONT)", "data = :zi and :zi + 1 > data and ora = :ora", "guid = :guid",
        "lat = :lat", ":nimic is null and :da", "cantitate in (:n) and pret = :f", "Length(:b) = 1"}) {
    EXPECT_EQ(ValueOf(text, parameters), Value(true)) << text;
  }
  ExpectError<FilterError>([&] { ValueOf("suma > :pragul", parameters); },
                           "Filtru: parametrul \"pragul\" nu are valoare (pozitia 8)");
  ExpectError<FilterError>(
      [&] {
        ValueOf(":x = 1", {{"x", std::numeric_limits<double>::quiet_NaN()}});
      },
      "Filtru: parametrul \"x\" nu este un numar (pozitia 1)");
}

TEST_F(FilterTest, RefusesATextByPlaceAndName) {
  const struct {
    TextView text;
    std::size_t position;
    TextView message;
  } kCases[] = {
      {"", 0, "expresia se incheie prea devreme"},
      {"suma > ", 7, "expresia se incheie prea devreme"},
      {"(suma > 1", 9, "expresia se incheie prea devreme"},
      {"suma > 1)", 8, "\")\" nu are sens aici"},
      {"suma 5", 5, "\"5\" nu are sens aici"},
      {"not not platit", 4, "\"not\" nu are sens aici"},
      {"suma not 5", 9, "\"5\" nu are sens aici"},
      {"suma is 5", 8, "\"5\" nu are sens aici"},
      {"suma # 5", 5, "caracterul \"#\" nu are sens aici"},
      {"partener = 'abc", 11, "textul \"abc\" nu se incheie cu apostrof"},
      {"[suma", 0, "numele dintre paranteze drepte nu se incheie: \"[suma\""},
      {"{2026-01-31", 0, "data dintre acolade nu se incheie: \"{2026-01-31\""},
      {"data > {2026-02-30}", 7, "\"2026-02-30\" nu este o data sau o ora"},
      {"data > {2026-1-30}", 7, "\"2026-1-30\" nu este o data sau o ora"},
      {"data > {2026-01-30 7:00}", 7, "\"2026-01-30 7:00\" nu este o data sau o ora"},
      {"data > {2026-01-30 07:00:00.25}", 7, "\"2026-01-30 07:00:00.25\" nu este o data sau o ora"},
      {"{}", 0, "\"\" nu este o data sau o ora"},
      {"12abc", 0, "\"12abc\" nu este un numar"},
      {"1 + 2.", 4, "\"2.\" nu este un numar"},
      {"1.2.3", 0, "\"1.2.3\" nu este un numar"},
      {"9223372036854775808", 0, "numarul \"9223372036854775808\" nu incape in 64 de biti"},
      {"suma > :", 7, "dupa \":\" lipseste numele parametrului"},
      {"sumaa > 1", 0, "campul \"sumaa\" nu exista"},
      {"1 = [nu exista]", 4, "campul \"nu exista\" nu exista"},
      {"Marime(suma)", 0, "functia \"Marime\" nu exista"},
      {"1 = Substr(cont)", 4, "functia Substr nu are atatea argumente: \"Substr(cont)\""},
      {"Today(1)", 0, "functia Today nu are atatea argumente: \"Today(1)\""},
      {"Lower(suma)", 6, "functia Lower nu primeste o valoare de tip Currency: \"suma\""},
      {"Substr(cont, suma)", 13, "functia Substr nu primeste o valoare de tip Currency: \"suma\""},
      {"Round(suma, 5)", 12, "numarul de zecimale este o constanta de la 0 la 4: \"5\""},
      {"Round(pret, cantitate)", 12, "numarul de zecimale este o constanta de la 0 la 15: \"cantitate\""},
      {"Coalesce(suma, cont)", 15, "argumentele functiei Coalesce nu sunt de acelasi fel: \"cont\""},
      {"platit and suma = 'x'", 11, "tipurile Currency si Text nu se compara: \"suma = 'x'\""},
      {"data = {14:30}", 0, "tipurile Date si Time nu se compara: \"data = {14:30}\""},
      {"bytes = bytes", 0, "tipurile Blob si Blob nu se compara: \"bytes = bytes\""},
      {"cantitate in (1, 'x')", 0, "tipurile Int64 si Text nu se compara: \"cantitate in (1, 'x')\""},
      {"suma between 1 and 'x'", 0, "tipurile Currency si Text nu se compara: \"suma between 1 and 'x'\""},
      {"suma + 'x'", 7, "operatia + nu primeste o valoare de tip Text: \"'x'\""},
      {"cont - 1", 0, "operatia - nu primeste o valoare de tip Text: \"cont\""},
      {"cont || 1", 8, "operatia || nu primeste o valoare de tip Int64: \"1\""},
      {"suma div 2", 0, "operatia div nu primeste o valoare de tip Currency: \"suma\""},
      {"1 = 2 mod 0.5", 10, "operatia mod nu primeste o valoare de tip Currency: \"0.5\""},
      {"-cont", 1, "operatia - nu primeste o valoare de tip Text: \"cont\""},
      {"data + data", 0, "operatia + nu primeste o valoare de tip Date: \"data\""},
      {"suma like '1%'", 0, "operatia like nu primeste o valoare de tip Currency: \"suma\""},
      {"cont like partener", 10, "modelul unui like este un text constant, nu \"partener\""},
      {"cont like 'a' escape 'ab'", 21, "dupa escape sta un singur caracter, nu \"ab\""},
      {"cont like 'a!' escape '!'", 22, "modelul \"a!\" se incheie cu caracterul de escape"},
      {"suma and platit", 0, "\"suma\" nu este o conditie, ci o valoare de tip Currency"},
      {"platit or 5", 10, "\"5\" nu este o conditie, ci o valoare de tip Int64"},
      {"not cont", 4, "\"cont\" nu este o conditie, ci o valoare de tip Text"},
      {"(suma)", 1, "\"suma\" nu este o conditie, ci o valoare de tip Currency"},
  };
  for (const auto& [text, position, message] : kCases) {
    try {
      static_cast<void>(Filter(lines_, text));
      ADD_FAILURE() << text;
    } catch (const FilterError& error) {
      EXPECT_EQ(error.Position(), position) << text;
      EXPECT_EQ(TextView(error.what()), "Filtru: " + Text(message) + " (pozitia " + std::to_string(position + 1) + ")");
    }
  }
}

TEST_F(FilterTest, AFaultInARowNamesThePartAndTheRow) {
  const TextView kOverflow = "rezultatul nu incape in tipul sau: ";
  const TextView kByZero = "impartire la zero: ";
  const struct {
    TextView text;
    TextView part;
    TextView why;
  } kCases[] = {
      {"suma / (cantitate - 7) > 1", "suma / (cantitate - 7)", kByZero},
      {"platit and 1 / 0 = 1", "1 / 0", kByZero},
      {"pret / 0 > 1", "pret / 0", kByZero},
      {"cantitate div 0 = 1", "cantitate div 0", kByZero},
      {"cantitate mod 0 = 1", "cantitate mod 0", kByZero},
      {"0 < mare + 1", "mare + 1", kOverflow},
      {"-mare - 2 < 0", "-mare - 2", kOverflow},
      {"mare * 2 > 0", "mare * 2", kOverflow},
      {"(-mare - 1) div -1 > 0", "(-mare - 1) div -1", kOverflow},
      {"-(-mare - 1) > 0", "-(-mare - 1)", kOverflow},
      {"Abs(-mare - 1) > 0", "Abs(-mare - 1)", kOverflow},
      {"mare + 0.1 > 0", "mare + 0.1", kOverflow},
      {"mare * 0.5 * 3 > 0", "mare * 0.5", kOverflow},
      {"suma * 900000000000.0 > 0", "suma * 900000000000.0", kOverflow},
      {"900000000000000.0 / 0.5 > 0", "900000000000000.0 / 0.5", kOverflow},
      {"Round(922337203685477.5807) > 0", "Round(922337203685477.5807)", kOverflow},
      {"Coalesce(mare, 1.5) > 0", "Coalesce(mare, 1.5)", kOverflow},
      {"data + 3000000 > data", "data + 3000000", kOverflow},
      {"data - 3000000 > data", "data - 3000000", kOverflow},
  };
  for (const auto& [text, part, why] : kCases) {
    const Filter filter(lines_, text);
    ExpectError<FilterError>([&] { static_cast<void>(filter.Test(row_)); },
                             "Filtru: " + Text(why) + "\"" + Text(part) + "\", randul 0");
  }
  const Filter any(lines_, "true");
  ExpectError<Error>([&] { static_cast<void>(any.Test(RowId{5})); }, "Dataset \"linii\": randul 5 nu exista");
}

TEST_F(FilterTest, KeepsItsLimits) {
  const auto nested = [](std::size_t levels) { return Text(levels, '(') + "platit" + Text(levels, ')'); };
  EXPECT_TRUE(Filter(lines_, nested(query::kMostDepth)).Test(row_));
  ExpectError<FilterError>([&] { Filter(lines_, nested(query::kMostDepth + 1)); },
                           "Filtru: parantezele sunt pe mai mult de 64 de niveluri (pozitia 65)");
  // A condition and a guard for each part after the first.
  Text chain = "platit";
  for (std::size_t i = 0; i < (query::kMostNodes - 1) / 3; ++i) {
    chain += " and platit";
  }
  EXPECT_TRUE(Filter(lines_, chain).Test(row_));
  ExpectError<FilterError>([&] { Filter(lines_, chain + " and platit"); },
                           "Filtru: expresia are peste 4096 de parti (pozitia 1)");
  ExpectError<FilterError>([&] { Filter(lines_, "pret < 1" + Text(400, '0') + ".5"); },
                           "Filtru: numarul \"1" + Text(62, '0') + "\" este prea mare (pozitia 8)");
  EXPECT_TRUE(Filter(lines_, "platit" + Text(query::kMostText - 6, ' ')).Test(row_));
  ExpectError<FilterError>([&] { Filter(lines_, "platit" + Text(query::kMostText - 5, ' ')); },
                           "Filtru: textul are peste 65536 de octeti (pozitia 65537)");
  // What is worked out beforehand takes no part.
  Text sum = "1";
  for (int i = 0; i < 5000; ++i) {
    sum += "+1";
  }
  EXPECT_EQ(ValueOf(sum), Value(std::int64_t{5001}));
}

TEST_F(FilterTest, FollowsEditsAndSnapshots) {
  const Filter large(lines_, "suma > 1000");
  const Snapshot before = lines_.TakeSnapshot();
  const Filter asItWas(before, "suma > 1000");
  Dataset moved = std::move(lines_);
  EXPECT_TRUE(large.Test(row_));
  moved.Set(row_, "suma", 5_lei);
  moved.Compact();
  EXPECT_FALSE(large.Test(row_));
  EXPECT_TRUE(asItWas.Test(row_));
  moved.Set(row_, "suma", Null{});
  EXPECT_FALSE(large.Test(row_));
}

}  // namespace
}  // namespace kiv
