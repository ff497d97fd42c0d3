/// @file
/// The unit WinUtil, all families.
#pragma once

#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "kivtools/WinUtil/Colours.h"
#include "kivtools/WinUtil/DateArithmetic.h"
#include "kivtools/WinUtil/DateText.h"
#include "kivtools/WinUtil/FiscalCode.h"
#include "kivtools/WinUtil/Floppy.h"
#include "kivtools/WinUtil/Forms.h"
#include "kivtools/WinUtil/Grades.h"
#include "kivtools/WinUtil/M1Encoding.h"
#include "kivtools/WinUtil/Money.h"
#include "kivtools/WinUtil/NumbersInWords.h"
#include "kivtools/WinUtil/Paths.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "kivtools/WinUtil/Rounding.h"
#include "kivtools/WinUtil/Strings.h"
#include "kivtools/WinUtil/System.h"
#include "kivtools/WinUtil/TextShaping.h"
#include "kivtools/WinUtil/Transliteration.h"
#include "kivtools/WinUtil/Variants.h"
#include "kivtools/WinUtil/Versions.h"
