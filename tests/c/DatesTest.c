#include "Expect.h"

static void TestForms(double days) {
  GIVES("5 martie 2024", KivDateToRoText, days);
  GIVES("5 martie", KivDateToRoText2, days);
  GIVES("martie 2024", KivDateToRoText3, days);
  GIVES("05 mar 2024", KivDateToRoText4, days);
  GIVES("5 (Marti)", KivDateToRoText5, days);
  GIVES("5 martie (Marti)", KivDateToRoText6, days);
  GIVES("5.03.2024", KivDateToRoText7, days);
  GIVES("05.03.2024", KivDateToRoCode, days);
  GIVES("05/03", KivDateToRoTextScurt, days);
  GIVES("05/03/24", KivDateToRoTextScurtCuAn, days);
  GIVES("05/03/24 14:07:09", KivDateToRoTextScurtCuAnPlusOra, days);
  GIVES("Marti", KivNumeZiDinSaptamana, days);
  GIVES("14:07:09", KivTimeToStrRoFrumos, days);
  GIVES("14h 7' 9''", KivTimeToStrRo, days);
  GIVES("Ora 14 07 minute 09 sec", KivTimeToStrRo2, days);
  GIVES("14:07:09:250", KivTimeToStrDurataMS, days);
  GIVES("2024:068:50829", KivDateTimeToSmartStrimg, days);
  GIVES("", KivDateToRoText_WithCode, days, 1, 0, 3, 0);
  GIVES("", KivDateToRoText_WithCode, 1e300, 1, 0, 77, 0);
}

static void TestDurations(void) {
  char rest[3];
  double total = 0;
  double remaining = 0;
  KivLength totalLength = 0;
  KivLength restLength = 0;
  EXPECT(KivCalcDurataTotala(1, 1.25, 100, 25, &total, &remaining) == KIV_OK && total == 1 && remaining == 0.75);
  EXPECT(KivCalcDurataTotalaText(1, 1.0625, 100, 25, buffer, sizeof buffer, &totalLength, rest, sizeof rest,
                                 &restLength) == KIV_OK);
  EXPECT(totalLength == (KivLength)strlen(buffer) && totalLength >= 7 && restLength >= 7 && strlen(rest) == 2);
  EXPECT(KivCalcDurataTotalaText(0, 1, 1, 1, NULL, 0, NULL, NULL, 0, NULL) == KIV_OK);
  EXPECT(KivCalcDurataTotalaText(0, 1, 1, 1, NULL, 5, NULL, NULL, 0, NULL) == -KIV_ERROR_ARGUMENT);
}

void DatesTest(void) {
  KivDateParts parts;
  double days = 0;
  EXPECT(KivEncodeDate(2024, 3, 5, 14, 7, 9, 250, &days) == KIV_OK);
  EXPECT(KivDecodeDate(days, &parts) == KIV_OK);
  EXPECT(parts.year == 2024 && parts.month == 3 && parts.day == 5 && parts.hour == 14 && parts.minute == 7);
  EXPECT(parts.second == 9 && parts.millisecond == 250 && parts.dayOfWeek == 3);
  TestForms(days);
  TestDurations();
  EXPECT(KivRoCodeToDate("05.03.2024", KIV_ZERO_ENDED, &days) == KIV_OK && days == 45356);
  EXPECT(KivIncMonth(45322.5, 1, &days) == KIV_OK && days == 45351);
  EXPECT(KivSetDayOfDate(45383, 31, &days) == KIV_OK && days == 45412);
  EXPECT(KivSmartStringToDateTime("2024:068:00000", KIV_ZERO_ENDED, &days) == KIV_OK && days == 45356);
  EXPECT(KivSetShortDateFormat("dd.MM.yyyy", KIV_ZERO_ENDED) == KIV_OK);
}
