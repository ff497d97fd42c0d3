// A default-made view has no address. Every operation takes it as the empty text, which the sanitizers watch.
#include <gtest/gtest.h>

#include <tuple>

#include "kivtools/CEVersionInfo.h"
#include "kivtools/WideTools.h"
#include "kivtools/WinUtil.h"

namespace kiv {
namespace {

TEST(EmptyText, HasNoAddressAndIsTakenAllTheSame) {
  const TextView none;
  StringList list = Explode(",", none, 5);
  EXPECT_EQ(list, StringList{""});
  SplitTextOnSeparator(none, ",", list);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(Explode(none, none, 5), StringList{""});
  for (Text (*const shape)(TextView) :
       {EncodeM1String, DecodeM1String, NumeDinNumeSiPrenume, PrenumeDinNumeSiPrenume, RemoveDualSlshPath, RoText,
        RoToEn, ScrieFrumosNrTelefon, StripDot, TextDinGhilimele, ExtrageIBANdinIBANCuAnalitic, EliminaCoduriDinIBAN}) {
    EXPECT_EQ(shape(none), "");
  }
  EXPECT_EQ(PadLeft(none, 0, 'x') + PadRight(none, 0, 'x') + PunePuncteInSimbol(none, 1), "");
  EXPECT_EQ(TextInGhilimele(none) + TextDeLatimeFixa(none, 1, none), "\"\" ");
  EXPECT_EQ(MaskReplace(none, {}) + CharReplace(none, 'a', 'b'), "");
  EXPECT_EQ(ToUtf8(none) + FromUtf8({}), "");
  EXPECT_EQ(StringToWideString(none, 1250), u"");
  EXPECT_EQ(WideStringToString({}, 1250), "");
  EXPECT_EQ(StringHash(none) + StripDotExtract2CifreDupaVirgula(none), "000");
  EXPECT_EQ(RoStrToCurrency(none).Raw() + CompareNrVersiune(none, none), 0);
  EXPECT_FALSE(ValideazaIBAN(none) || EsteIBAN(none) || TestCNP(none) || TestCodFiscal(none) || ValideazaSIRUTA(none) ||
               RespectaMasca(none, none));
  EXPECT_THROW(std::ignore = RoCodeToDate(none), ConversionError);
  EXPECT_THROW(std::ignore = SmartStringToDateTime(none), ConversionError);
  EXPECT_EQ(GetFileVersionKiv(none), "<info not available>");
}

}  // namespace
}  // namespace kiv
