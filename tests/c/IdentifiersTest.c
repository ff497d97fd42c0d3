#include "Expect.h"

void IdentifiersTest(void) {
  static const char code[] = "1800101221144";
  int32_t number = 0;
  EXPECT(KivTestCNP(code, 13) == 1 && KivTestCNP("1800101221145", 13) == 0);
  EXPECT(KivAnulNasteriiDinCnp(code, 13, &number) == KIV_OK && number == 1980);
  EXPECT(KivAnulNasteriiDinCnp("1x0", 3, &number) == -KIV_ERROR_CONVERSION && number == 1980);
  EXPECT(KivVarstaDinCNP(code, 13, &number) == KIV_OK && number >= 44 && number < 200);
  EXPECT(KivVarstaDinCNP("1", 1, &number) == KIV_OK && number == 0);
  GIVES("1 Ianuarie 1980", KivDataNasteriiDinCNP, code, 13);
  GIVES("1 ian 1980", KivDataNasteriiDinCNP_scurt, code, 13);
  EXPECT(KivTestCodFiscal("12345674", 8) == 1 && KivTestCodFiscal("RO12345674", KIV_ZERO_ENDED) == 0);
  EXPECT(KivValideazaIBAN("ro49 aaaa 1b31 0075 9384 0000", KIV_ZERO_ENDED) == 1 && KivValideazaIBAN("101", 3) == 1);
  EXPECT(KivEsteIBAN("ro49 aaaa 1b31 0075 9384 0000", KIV_ZERO_ENDED) == 1 && KivEsteIBAN("101", 3) == 0);
  GIVES("RO49AAAA1B31", KivExtrageIBANdinIBANCuAnalitic, "RO49AAAA1B31-01", KIV_ZERO_ENDED);
  GIVES("AAAA 1B31", KivEliminaCoduriDinIBAN, "RO49 AAAA 1B31", KIV_ZERO_ENDED);
  EXPECT(KivValideazaSIRUTA("179132", 6) == 1 && KivValideazaSIRUTA("54976", 5) == 0);
  EXPECT(KivValideazaSIRUTA("17A132", 6) == -KIV_ERROR_CONVERSION && LastMessageIs("\"A\" nu este un numar intreg"));
}
