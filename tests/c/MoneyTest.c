/* Numbers, sums of money and grades. */
#include "Expect.h"

void MoneyTest(void) {
  int64_t amount = 0;
  GIVES("DOUAMIITREISUTEPATRUZECISICINCI", KivInLitere, 2345);
  GIVES("UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI", KivInLitereCurrency, 12345600);
  GIVES("UNLEU,05BANI", KivInLitereMF, 10500);
  GIVES("minus dou\xE3zeci \xBAi una", KivInCuvinte, -21, KIV_GENDER_FEMININE);
  GIVES("dou\xE3", KivInCuvinte, 2, KIV_GENDER_NEUTER);
  EXPECT(KivInCuvinte(1, 3, NULL, 0) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivInCuvinte(1, -1, NULL, 0) == -KIV_ERROR_ARGUMENT &&
         LastMessageIs("KivInCuvinte: gender: valoare necunoscuta"));
  GIVES("doi euro \xBAi un cent", KivInCuvinteCurrency, 20100, "EUR", 3);
  GIVES("dou\xE3 b", KivInCuvinteCurrency, 20000, "a,b,f,c,d,m", KIV_ZERO_ENDED);
  EXPECT(KivInCuvinteCurrency(1, "XXX", 3, NULL, 0) == -KIV_ERROR_GENERAL);
  GIVES("1.234.567, 89", KivCurrencyToRoStr, 12345678900, 2);
  GIVES("1.234.567,89", KivCurrencyToRoStrFaraSpatiu, 12345678900, 2);
  GIVES("1.234, 5678", KivCurrencyToRoStrRON, 123456780000, 0);
  GIVES("1.234,56", KivScrieFoarteFrumos, 123456, 22);
  EXPECT(KivRoStrToCurrency("-1 234,5", KIV_ZERO_ENDED, &amount) == KIV_OK && amount == -12345000);

  GIVES("(NOU\xC3, 50%)", KivNotaToStr, 950, 3);
  GIVES("NOU\xC3, CINCIZECI", KivNotaToTextLung, 950);
  GIVES(
      "\xAA"
      "APTE, 05",
      KivNotaToTextScurt, 705);
}
