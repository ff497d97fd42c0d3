/**
 * @file
 * Small calculations on dates and durations, and the smart date string. A moment is a count of days since 30 December
 * 1899, the fraction being the time of day (see c/DateText.h).
 */
#ifndef KIVTOOLS_C_DATE_ARITHMETIC_H
#define KIVTOOLS_C_DATE_ARITHMETIC_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Stores the date moved by whole months, at 00:00:00; a day that the new month lacks becomes its last one. Fails with
 * KIV_ERROR_DATE outside the years 1 to 9999. Example: 31 January 2024 and 1 store 29 February 2024.
 */
KIV_API KivStatus KivIncMonth(double date, int32_t months, double* result);

/**
 * Stores the date with another day, at 00:00:00; one day too many becomes the last one. Fails with KIV_ERROR_GENERAL
 * for any other day that the month lacks. Example: a day of April and 31 store the 30th.
 */
KIV_API KivStatus KivSetDayOfDate(double date, int32_t day, double* result);

/** Does nothing and gives KIV_OK. Example: "dd.MM.yyyy" changes nothing. */
KIV_API KivStatus KivSetShortDateFormat(const char* format, size_t length);

/**
 * Stores how long a job takes in all and how long it still takes, in days. Example: started at 10:00, 25 of 100 parts
 * done at 10:30 store 2 / 24.0 and 1.5 / 24.0.
 */
KIV_API KivStatus KivCalcDurataTotala(double start, double now, int32_t totalCount, int32_t doneCount, double* total,
                                      double* remaining);

/**
 * The same as times of day in the user's long time format. Each text goes into its own buffer, cut and zero-terminated;
 * its whole length is stored where totalLength and remainingLength are not null. A null buffer with capacity 0 asks for
 * the length. Example: "02:00:00" and "01:30:00".
 */
KIV_API KivStatus KivCalcDurataTotalaText(double start, double now, int32_t totalCount, int32_t doneCount, char* total,
                                          size_t totalCapacity, KivLength* totalLength, char* remaining,
                                          size_t remainingCapacity, KivLength* remainingLength);

/** The time of day with its milliseconds. Example: "14:07:09:250". */
KIV_API KivLength KivTimeToStrDurataMS(double time, char* buffer, size_t capacity);

/** The smart date string of a moment. Example: 5 March 2024 14:07:09 gives "2024:068:50829". */
KIV_API KivLength KivDateTimeToSmartStrimg(double moment, char* buffer, size_t capacity);

/**
 * Reads a smart date string; the date comes back exactly, the time only before 01:00:00. Fails with
 * KIV_ERROR_CONVERSION or KIV_ERROR_DATE. Example: "2024:068:50829" stores 5 March 2024 12:07:09.
 */
KIV_API KivStatus KivSmartStringToDateTime(const char* text, size_t length, double* moment);

#ifdef __cplusplus
}
#endif

#endif
