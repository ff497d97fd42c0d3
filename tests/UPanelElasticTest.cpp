#include <gtest/gtest.h>

#include "Expect.h"
#include "kivtools/Host/HeadlessControls.h"
#include "kivtools/UPanelElastic.h"

namespace kiv {
namespace {

using host::Alignment;
using host::Anchors;
using host::Rect;
using host::headless::Control;
using host::headless::Label;
using host::headless::Panel;

constexpr Anchors kBothSides{true, true, true, false};
constexpr Anchors kRightOnly{false, true, true, false};

/// A section of that width; with an elastic one comes a child that makes it so.
struct Section {
  Section(Panel& support, const char* name, std::int32_t width, Alignment alignment, std::int32_t minimum = -1)
      : panel(&support, name) {
    panel.SetBounds(Rect::At(100'000, 0, width, 40));
    panel.SetAlignment(alignment);
    if (minimum >= 0) {
      stretched = std::make_unique<Control>(&panel, "edit");
      stretched->SetAnchors(kBothSides);
      button = std::make_unique<Control>(&panel, "button");
      button->SetBounds(Rect::At(0, 0, minimum - 4, 20));
    }
  }
  Panel panel;
  std::unique_ptr<Control> stretched;
  std::unique_ptr<Control> button;
};

/// The support of 600 with A fixed 100, B elastic 200 (at least 50), C elastic 100 (at least 30).
struct Toolbar {
  Toolbar() { support.SetBounds(Rect::At(0, 0, 600, 40)); }
  Panel support{nullptr, "pnlSus"};
  Section a{support, "A", 100, Alignment::Left};
  Section b{support, "B", 200, Alignment::Left, 50};
  Section c{support, "C", 100, Alignment::Left, 30};

  [[nodiscard]] std::vector<std::int32_t> Widths() const { return {a.panel.Width(), b.panel.Width(), c.panel.Width()}; }
  [[nodiscard]] std::vector<std::int32_t> WidthsAt(std::int32_t width) {
    support.SetWidth(width);
    return Widths();
  }
};
using Widths = std::vector<std::int32_t>;

TEST(PanelElastic, SharesTheWidthAtEveryResize) {
  Toolbar toolbar;
  TManagerPanelElastic manager;
  manager.Redimensioneaza();  // no support yet
  manager.Initializeaza(toolbar.support);
  EXPECT_TRUE(toolbar.support.HasResizeHandler());
  EXPECT_EQ(toolbar.Widths(), (Widths{100, 200, 100}));  // not before the first resize
  ASSERT_EQ(manager.Count(), 3);
  const TInfoPanelSectiune& b = manager.Sectiune(1);
  EXPECT_EQ(b.Panel, &toolbar.b.panel);
  EXPECT_EQ(b.LatimeInitiala, 200);
  EXPECT_EQ(b.LatimeMinima, 50);
  EXPECT_EQ(b.Aliniere, Alignment::Left);
  EXPECT_TRUE(b.Elastic);
  EXPECT_FALSE(manager.Sectiune(0).Elastic);

  manager.Redimensioneaza();
  EXPECT_EQ(toolbar.Widths(), (Widths{100, 330, 170}));
  EXPECT_EQ(toolbar.c.panel.Left(), 430);  // the neighbours move along
  EXPECT_EQ(toolbar.WidthsAt(900), (Widths{100, 530, 270}));
  EXPECT_EQ(toolbar.WidthsAt(604), (Widths{100, 332, 171}));  // 282 and 2/3, 141 and 1/3: the pixel stays free
  EXPECT_EQ(toolbar.WidthsAt(181), (Widths{100, 50, 30}));
  EXPECT_EQ(toolbar.WidthsAt(600), (Widths{100, 330, 170}));
  for (const std::int32_t tooNarrow : {180, 100, 0}) {
    EXPECT_EQ(toolbar.WidthsAt(tooNarrow), (Widths{100, 330, 170})) << tooNarrow;
  }
  toolbar.c.panel.SetVisible(false);
  EXPECT_EQ(toolbar.WidthsAt(600), (Widths{100, 500, 170}));
  toolbar.a.panel.SetVisible(false);
  EXPECT_EQ(toolbar.WidthsAt(600 + 1), (Widths{100, 601, 170}));
  toolbar.b.panel.SetVisible(false);
  EXPECT_EQ(toolbar.WidthsAt(700), (Widths{100, 601, 170}));  // nobody left to share

  manager.Initializeaza(toolbar.support);  // a second set of records
  EXPECT_EQ(manager.Count(), 6);
  EXPECT_EQ(manager.Sectiune(4).LatimeInitiala, 601);
  for (const std::int32_t index : {-1, 6}) {
    ExpectError<ListIndexError>([&] { (void)manager.Sectiune(index); },
                                "Lista de sectiuni: indexul " + std::to_string(index) + " nu exista; sunt 6 sectiuni");
  }
}

TEST(PanelElastic, LeastWidthKeepsTheAnchoredChildrenVisible) {
  Panel support(nullptr, "s");
  support.SetBounds(Rect::At(0, 0, 500, 40));
  Panel section(&support, "p");
  section.SetBounds(Rect::At(0, 0, 200, 40));
  section.SetAlignment(Alignment::Right);
  Control child(&section, "c");
  child.SetBounds(Rect::At(120, 0, 50, 20));
  const struct {
    Anchors anchors;
    std::int32_t least;
    bool elastic;
  } cases[] = {{{true, true, false, false}, 174, false},
               {kRightOnly, 84, false},
               {kBothSides, 0, true},
               {{false, true, false, true}, 0, false}};
  Label elsewhere(&section, "l");
  elsewhere.SetBounds(Rect::At(-60, 0, 50, 20));  // needs nothing: never below 0
  for (const auto& [anchors, least, elastic] : cases) {
    child.SetAnchors(anchors);
    TManagerPanelElastic manager;
    manager.Initializeaza(support);
    EXPECT_EQ(manager.Sectiune(0).LatimeMinima, least);
    EXPECT_EQ(manager.Sectiune(0).Elastic, elastic);
    EXPECT_EQ(manager.Sectiune(0).Aliniere, Alignment::Right);
  }
}

TEST(PanelElastic, RefusesWhatIsNoSection) {
  {
    Toolbar toolbar;
    Control button(&toolbar.support, "Button1");
    TManagerPanelElastic manager;
    ExpectError<Error>([&] { manager.Initializeaza(toolbar.support); },
                       "Panoul de suport - pnlSus:TPanel trebuie sa contina exclusiv controale de tip TCustomPanel; "
                       "Controlul Button1:TButton *NU* are ce cauta acolo!");
    EXPECT_EQ(manager.Count(), 3);  // those before it
    EXPECT_FALSE(toolbar.support.HasResizeHandler());
    manager.Redimensioneaza();  // the support is known
    EXPECT_EQ(toolbar.Widths(), (Widths{100, 330, 170}));
  }
  for (const Alignment wrong : {Alignment::None, Alignment::Top, Alignment::Bottom, Alignment::Custom}) {
    Toolbar toolbar;
    toolbar.b.panel.SetAlignment(wrong);
    TManagerPanelElastic manager;
    ExpectError<Error>([&] { manager.Initializeaza(toolbar.support); },
                       "Toate panourile de sectiune trebuie sa fie aliniate left/client/right; Nu se accepta alte "
                       "alinieri! Verifica alinierea pentru B:TPanel *NU* are ce cauta acolo!");
    EXPECT_EQ(manager.Count(), 1);
  }
  TListaInfoPanelSectiune list;
  ExpectError<InvalidCast>([&] { list.Add(nullptr); }, "Lista de sectiuni: sectiunea lipseste");
  EXPECT_EQ(list.Add(std::make_unique<TInfoPanelSectiune>()), 0);
  EXPECT_EQ(list.Add(std::make_unique<TInfoPanelSectiune>()), 1);
}

TEST(PanelElastic, LeavesAHandlerThatIsThere) {
  Toolbar toolbar;
  int heard = 0;
  toolbar.support.SetResizeHandler([&heard](host::Object*) { ++heard; });
  TManagerPanelElastic manager;
  manager.Initializeaza(toolbar.support);
  EXPECT_EQ(toolbar.WidthsAt(700), (Widths{100, 200, 100}));
  EXPECT_EQ(heard, 1);
  manager.OnResizeSuport(nullptr);
  EXPECT_EQ(toolbar.Widths(), (Widths{100, 396, 203}));

  Panel ownClass(nullptr, "s", "TPanelColorat");  // keeps its handler to itself
  manager.Initializeaza(ownClass);
  EXPECT_FALSE(ownClass.HasResizeHandler());
}

TEST(PanelElastic, ManagerMayGoBeforeTheSupport) {
  Toolbar toolbar;
  {
    TManagerPanelElastic manager;
    manager.Initializeaza(toolbar.support);
  }
  EXPECT_TRUE(toolbar.support.HasResizeHandler());
  EXPECT_EQ(toolbar.WidthsAt(900), (Widths{100, 200, 100}));
}

TEST(PanelElastic, DesignWidthsOfZeroCannotShare) {
  Panel support(nullptr, "s");
  support.SetBounds(Rect::At(0, 0, 100, 40));
  Section only(support, "A", 0, Alignment::Left, 10);
  TManagerPanelElastic manager;
  manager.Initializeaza(support);
  ExpectError<DivisionByZero>([&] { support.SetWidth(200); },
                              "Redimensioneaza: latimile initiale ale sectiunilor elastice au suma zero");
  EXPECT_NO_THROW(support.SetWidth(10));  // nothing free
  only.panel.SetVisible(false);
  EXPECT_NO_THROW(support.SetWidth(300));
}

TEST(PanelElastic, ProductsWrapAt32Bits) {
  const struct {
    std::int32_t support;
    std::int32_t design;
    std::int32_t other;
    std::int32_t width;
  } cases[] = {
      {32'767, 32'767, 1, 10 + 32'746},  // the widest a window can be
      {65'556, 65'536, 65'536, 10},      // 2^32
      {65'557, 65'537, 1, 10 + 1},       // 2^32 and 131073
      {46'360, 46'340, 1, 10 + 46'339},  // just below
  };
  for (const auto& [width, design, other, expected] : cases) {
    Panel support(nullptr, "s");
    Section first(support, "A", design, Alignment::Left, 10);
    Section second(support, "B", other, Alignment::Left, 10);
    TManagerPanelElastic manager;
    manager.Initializeaza(support);
    support.SetWidth(width);
    EXPECT_EQ(first.panel.Width(), expected) << width;
  }
}

}  // namespace
}  // namespace kiv
