/**
 * @file
 * Dates and times as Romanian text. A moment is a count of days since 30 December 1899, the fraction being the time of
 * day; before that day the date is cut toward zero and the time of day is the absolute value of the fraction. The
 * examples are for Tuesday 5 March 2024, 14:07:09. The writing functions fail with KIV_ERROR_DATE outside the years 1
 * to 9999.
 */
#ifndef KIVTOOLS_C_DATE_TEXT_H
#define KIVTOOLS_C_DATE_TEXT_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A moment taken apart: month 1 to 12, dayOfWeek 1 = Sunday to 7 = Saturday. */
typedef struct KivDateParts {
  int32_t year, month, day, hour, minute, second, millisecond, dayOfWeek;
} KivDateParts;

/**
 * Builds a moment from year 1 to 9999, month, day, hour, minute, second and millisecond; stores it in *days. Fails with
 * KIV_ERROR_DATE for what the calendar lacks. Example: 2024, 3, 5, 12, 0, 0, 0 gives 45356.5.
 */
KIV_API KivStatus KivEncodeDate(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
                                int32_t millisecond, double* days);

/** Takes a moment apart, rounded to the millisecond. Example: 45356.5 gives 2024, 3, 5, 12, 0, 0, 0, 3. */
KIV_API KivStatus KivDecodeDate(double days, KivDateParts* parts);

/** Day, month in letters, year. Example: "5 martie 2024". */
KIV_API KivLength KivDateToRoText(double days, char* buffer, size_t capacity);

/** Day, month in letters. Example: "5 martie". */
KIV_API KivLength KivDateToRoText2(double days, char* buffer, size_t capacity);

/** Month in letters, year. Example: "martie 2024". */
KIV_API KivLength KivDateToRoText3(double days, char* buffer, size_t capacity);

/** Day in two digits, month in three letters (November is "noi"), year. Example: "05 mar 2024". */
KIV_API KivLength KivDateToRoText4(double days, char* buffer, size_t capacity);

/** Day and weekday. Example: "5 (Marti)". */
KIV_API KivLength KivDateToRoText5(double days, char* buffer, size_t capacity);

/** Day, month in letters and weekday. Example: "5 martie (Marti)". */
KIV_API KivLength KivDateToRoText6(double days, char* buffer, size_t capacity);

/** Day without a leading zero, month in two digits, year. Example: "5.03.2024". */
KIV_API KivLength KivDateToRoText7(double days, char* buffer, size_t capacity);

/** Day and month in two digits, year in four. Example: "05.03.2024". */
KIV_API KivLength KivDateToRoCode(double days, char* buffer, size_t capacity);

/** Day and month in two digits. Example: "05/03". */
KIV_API KivLength KivDateToRoTextScurt(double days, char* buffer, size_t capacity);

/** Day, month, last two characters of the year. Example: "05/03/24". */
KIV_API KivLength KivDateToRoTextScurtCuAn(double days, char* buffer, size_t capacity);

/** The same with the time of day. Example: "05/03/24 14:07:09". */
KIV_API KivLength KivDateToRoTextScurtCuAnPlusOra(double days, char* buffer, size_t capacity);

/** The weekday. Example: "Marti". */
KIV_API KivLength KivNumeZiDinSaptamana(double days, char* buffer, size_t capacity);

/** Time of day, the hour without a leading zero. Example: "14:07:09". */
KIV_API KivLength KivTimeToStrRoFrumos(double days, char* buffer, size_t capacity);

/** Time of day without its zero parts. Example: "14h 7' 9''". */
KIV_API KivLength KivTimeToStrRo(double days, char* buffer, size_t capacity);

/** Time of day in words. Example: "Ora 14 07 minute 09 sec". */
KIV_API KivLength KivTimeToStrRo2(double days, char* buffer, size_t capacity);

/**
 * Reads day, month and year between dots; stores the date in *days. Fails with KIV_ERROR_CONVERSION or KIV_ERROR_DATE.
 * Example: "05.03.2024" gives 45356.
 */
KIV_API KivStatus KivRoCodeToDate(const char* text, size_t length, double* days);

/** Always the empty Text, whatever the arguments; hosts rely on it. Example: the length 0. */
KIV_API KivLength KivDateToRoText_WithCode(double days, int32_t first, int32_t second, int32_t month, int32_t third,
                                           char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
