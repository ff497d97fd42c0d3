/* Numbers, sums of money and grades. */
#include "Expect.h"

void MoneyTest(void) {
  int64_t amount = 0;
  GIVES("DOUAMIITREISUTEPATRUZECISICINCI", KivInLitere, 2345);
  GIVES("UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI", KivInLitereCurrency, 12345600);
  GIVES("UNLEU,05BANI", KivInLitereMF, 10500);
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
