#include "Expect.h"

static KivCodeFault fault;

/* What an explanation found in a code that is not valid. */
static int Found(KivAnswer answer, int32_t kind, int32_t rule, size_t position, int32_t expected) {
  return answer == 0 && fault.kind == kind && fault.rule == rule && fault.position == position &&
         fault.expected == expected;
}

static void Explanations(void) {
  EXPECT(Found(KivExplainTestCNP("1800101221145", 13, &fault), KIV_CODE_PERSONAL, KIV_CODE_CHECK_DIGIT, 12, 4));
  GIVES("cifra de control (caracterul 13) ar trebui sa fie 4", KivCodeFaultText, &fault, KIV_LANGUAGE_ROMANIAN);
  EXPECT(Found(KivExplainTestCodFiscal("RO123", 5, &fault), KIV_CODE_FISCAL, KIV_CODE_CHARACTER, 0, -1));
  GIVES("character 1 is not a digit", KivCodeFaultText, &fault, KIV_LANGUAGE_ENGLISH);
  EXPECT(Found(KivExplainValideazaIBAN("RO49", 4, &fault), KIV_CODE_ACCOUNT, KIV_CODE_LENGTH, 4, 24));
  EXPECT(Found(KivExplainEsteIBAN("101", 3, &fault), KIV_CODE_ACCOUNT, KIV_CODE_FIRST_CHARACTER, 0, -1));
  EXPECT(Found(KivExplainValideazaSIRUTA("17A132", 6, &fault), KIV_CODE_LOCALITY, KIV_CODE_CHARACTER, 2, -1));
  EXPECT(KivExplainTestCNP("1800101221144", 13, &fault) == 1 && fault.rule == KIV_CODE_VALID);
  EXPECT(KivCodeFaultText(&fault, 2, NULL, 0) == -KIV_ERROR_GENERAL);
  EXPECT(KivCodeFaultText(&fault, 256, NULL, 0) == -KIV_ERROR_GENERAL);
  fault.rule = -1;
  EXPECT(KivCodeFaultText(&fault, KIV_LANGUAGE_ENGLISH, NULL, 0) == -KIV_ERROR_GENERAL);
}

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
  Explanations();
}
