/**
 * @file
 * The C interface: plain C11 functions over the library's operations, for hosts of any compiler or language. Its rules
 * are in c/Base.h; each family has its header.
 */
#ifndef KIVTOOLS_KIV_H
#define KIVTOOLS_KIV_H

#include "kivtools/c/AvlIndex.h"
#include "kivtools/c/BankAndLocalityCodes.h"
#include "kivtools/c/Base.h"
#include "kivtools/c/Bitmaps.h"
#include "kivtools/c/CodeFaults.h"
#include "kivtools/c/CodePages.h"
#include "kivtools/c/Colours.h"
#include "kivtools/c/Dataset.h"
#include "kivtools/c/DatasetAggregate.h"
#include "kivtools/c/DatasetArrow.h"
#include "kivtools/c/DatasetCursor.h"
#include "kivtools/c/DatasetExchange.h"
#include "kivtools/c/DatasetFilter.h"
#include "kivtools/c/DatasetPackets.h"
#include "kivtools/c/DateArithmetic.h"
#include "kivtools/c/DateText.h"
#include "kivtools/c/FileLists.h"
#include "kivtools/c/FileTrees.h"
#include "kivtools/c/FiscalCode.h"
#include "kivtools/c/Floppy.h"
#include "kivtools/c/Forms.h"
#include "kivtools/c/Grades.h"
#include "kivtools/c/Host.h"
#include "kivtools/c/LifetimeTracker.h"
#include "kivtools/c/M1Encoding.h"
#include "kivtools/c/Money.h"
#include "kivtools/c/NumbersInWords.h"
#include "kivtools/c/Paths.h"
#include "kivtools/c/PersonalNumericCode.h"
#include "kivtools/c/Processes.h"
#include "kivtools/c/Rounding.h"
#include "kivtools/c/StringList.h"
#include "kivtools/c/Strings.h"
#include "kivtools/c/System.h"
#include "kivtools/c/TextShaping.h"
#include "kivtools/c/Transliteration.h"
#include "kivtools/c/Variants.h"
#include "kivtools/c/Versions.h"

#endif
