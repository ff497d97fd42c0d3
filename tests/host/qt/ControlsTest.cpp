#include <gtest/gtest.h>

#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <memory>
#include <thread>

#include "Expect.h"
#include "host/qt/Spin.h"
#include "kivtools/Host.h"
#include "kivtools/Host/QtControls.h"
#include "kivtools/UPanelElastic.h"

namespace kiv::host {
namespace {

using namespace literals;

constexpr Anchors kBothSides{true, true, true, false};

template <class Widget = QWidget>
Widget* New(QWidget* parent, const char* name, Rect bounds) {
  auto* const widget = new Widget(parent);
  widget->setObjectName(QString::fromLatin1(name));
  widget->setGeometry(bounds.left, bounds.top, bounds.Width(), bounds.Height());
  return widget;
}

/// A toolbar of three sections, of which two are elastic.
struct Toolbar {
  QWidget window;
  QWidget* bar = New(&window, "pnlSus", Rect::At(0, 0, 1, 40));
  QWidget* a = New(bar, "A", Rect::At(0, 0, 100, 1));
  QWidget* b = New(bar, "B", Rect::At(200, 0, 200, 1));
  QWidget* c = New(bar, "C", Rect::At(500, 0, 100, 1));
  QWidget* editB = New<QLineEdit>(b, "editB", Rect::At(5, 5, 190, 20));
  QWidget* buttonB = New<QPushButton>(b, "buttonB", Rect::At(6, 5, 40, 20));
  QWidget* editC = New<QLineEdit>(c, "editC", Rect::At(5, 5, 90, 20));
  qt::Form form{window};
  qt::Panel support{&form, *bar};
  qt::Panel panelA{&support, *a};
  qt::Panel panelB{&support, *b};
  qt::Panel panelC{&support, *c};
  qt::Control stretchedB{&panelB, *editB};
  qt::Control stretchedC{&panelC, *editC};
  TManagerPanelElastic manager;

  Toolbar() {
    stretchedB.SetAnchors(kBothSides);
    stretchedC.SetAnchors(kBothSides);
    support.SetAlignment(Alignment::Top);
    for (qt::Panel* const section : {&panelA, &panelB, &panelC}) {
      section->SetAlignment(Alignment::Left);
    }
    manager.Initializeaza(support);
  }

  [[nodiscard]] std::vector<int> Widths() const { return {a->width(), b->width(), c->width(), editB->width()}; }
};

TEST(QtControls, ElasticSectionsAreRealWidgets) {
  for (const bool shown : {false, true}) {
    Toolbar toolbar;
    toolbar.window.resize(700, 300);
    if (shown) {
      toolbar.window.show();
    }
    ASSERT_EQ(toolbar.manager.Count(), 3);
    EXPECT_EQ(toolbar.manager.Sectiune(1).LatimeMinima, 50);  // the button, which has no control of its own
    EXPECT_EQ(toolbar.manager.Sectiune(2).LatimeMinima, 0);
    const int frame = toolbar.form.Width() - toolbar.window.width();
    toolbar.form.SetWidth(600 + frame);
    const std::vector<int> at600 = {100, 50 + 200 * 450 / 300, 100 * 450 / 300, 340};
    EXPECT_EQ(toolbar.Widths(), at600);
    EXPECT_EQ(toolbar.c->x(), 450);
    EXPECT_EQ(toolbar.support.ClientWidth(), 600);
    toolbar.window.resize(900, 300);  // as the user does
    toolbar.window.show();            // a hidden one hears of it when it is shown
    EXPECT_TRUE(Soon([&] { return toolbar.b->width() == 50 + 200 * 750 / 300; }));
    toolbar.window.resize(600, 300);
    EXPECT_TRUE(Soon([&] { return toolbar.Widths() == at600; }));

    toolbar.c->hide();
    EXPECT_FALSE(toolbar.panelC.Visible());
    toolbar.manager.Redimensioneaza();
    EXPECT_EQ(toolbar.b->width(), 50 + 450);
    toolbar.a->hide();  // its place is taken at once
    EXPECT_EQ(toolbar.b->x(), 0);
  }
}

TEST(QtControls, AreNamedAsTheirWidgets) {
  Toolbar toolbar;
  EXPECT_EQ(toolbar.support.Name(), "pnlSus");
  EXPECT_EQ(toolbar.stretchedB.ClassName(), "QLineEdit");
  EXPECT_TRUE(toolbar.support.OffersResizeHandler());
  const std::vector<host::Control*> children = toolbar.panelB.Children();
  ASSERT_EQ(children.size(), 2U);
  EXPECT_EQ(children[0], &toolbar.stretchedB);
  EXPECT_EQ(children[1]->Name(), "buttonB");
  EXPECT_EQ(toolbar.panelB.Children(), children);
  delete toolbar.buttonB;
  EXPECT_EQ(toolbar.panelB.Children(), (std::vector<host::Control*>{&toolbar.stretchedB}));

  QDialog ownResize;
  EXPECT_FALSE(qt::Panel(nullptr, ownResize).OffersResizeHandler());
  New<QPushButton>(toolbar.bar, "Salveaz\xE3", Rect::At(0, 0, 9, 9))->setObjectName(QStringLiteral(u"Salveaz\u0103"));
  new QDialog(toolbar.bar);  // a window of its own, no part of the panel
  TManagerPanelElastic refused;
  ExpectError<Error>([&] { refused.Initializeaza(toolbar.support); },
                     "Panoul de suport - pnlSus:QWidget trebuie sa contina exclusiv controale de tip TCustomPanel; "
                     "Controlul Salvează:QPushButton *NU* are ce cauta acolo!"_ro);
}

TEST(QtControls, BordersAreNoPartOfTheInnerArea) {
  QWidget window;
  auto* const frame = New<QFrame>(&window, "cadru", Rect::At(0, 0, 200, 100));
  frame->setFrameStyle(QFrame::Box | QFrame::Plain);
  frame->setLineWidth(3);
  auto* const inside = New(frame, "i", Rect::At(0, 0, 10, 10));
  qt::Panel panel(nullptr, *frame);
  qt::Control control(&panel, *inside);
  EXPECT_TRUE(panel.OffersResizeHandler());
  EXPECT_EQ(panel.ClientWidth(), 194);
  control.SetAlignment(Alignment::Client);
  EXPECT_EQ(inside->geometry(), QRect(3, 3, 194, 94));
  EXPECT_EQ(control.Bounds(), Rect::At(0, 0, 194, 94));
  panel.SetBounds(Rect::At(5, 5, 4, 4));  // nothing gets a negative size
  EXPECT_EQ(panel.ClientWidth(), 0);
  EXPECT_EQ(inside->width(), 0);
}

TEST(QtControls, HandlersHearEachSizeOnceAndFailWhereTheResizeWasAsked) {
  QWidget window;
  window.resize(300, 300);
  qt::Panel panel(nullptr, *New(&window, "p", Rect::At(0, 0, 100, 100)));
  int rounds = 0;
  panel.SetResizeHandler([&rounds](Object*) { ++rounds; });
  panel.SetWidth(120);
  EXPECT_EQ(rounds, 1);
  window.show();  // Qt tells of the size only now
  QApplication::processEvents();
  EXPECT_EQ(rounds, 1);
  panel.SetBounds(Rect::At(7, 7, 120, 100));
  EXPECT_EQ(rounds, 1);

  panel.SetResizeHandler([](Object*) { throw DivisionByZero("din handler"); });
  ExpectError<DivisionByZero>([&] { panel.SetWidth(140); }, "din handler");
  EXPECT_EQ(panel.Widget()->width(), 140);
  // Where Qt has resized it, nobody could catch it.
  QString said;
  QTimer::singleShot(0, [&said] {
    auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    said = box->text();
    box->close();
  });
  panel.Widget()->resize(160, 100);
  EXPECT_EQ(said, QStringLiteral("din handler"));
  panel.SetResizeHandler({});
  panel.SetWidth(180);
  EXPECT_EQ(panel.Widget()->width(), 180);
}

TEST(QtControls, LabelsAreAsWideAsTheirTexts) {
  QWidget window;
  auto* const text = New<QLabel>(&window, "lbl", Rect::At(10, 20, 1, 1));
  text->setWordWrap(true);
  qt::Label label(nullptr, *text);
  const struct {
    Text caption;
    QString shown;
  } cases[] = {
      {"C:\\Date\\firmă & fiu\\ţ.dbf"_ro, QStringLiteral(u"C:\\Date\\firm\u0103 & fiu\\\u021B.dbf")},
      {"<b>a</b>", QStringLiteral("<b>a</b>")},
      {"", QString()},
      {"x", QStringLiteral("x")},
      {Text(300, 'm'), QString(300, u'm')},
  };
  for (const bool large : {false, true}) {
    if (large) {
      QFont font = text->font();
      font.setPointSizeF(31);
      text->setFont(font);
    }
    for (const auto& [caption, shown] : cases) {
      label.SetCaption(caption);
      // Besides its steps, the first and the last letter may reach out of theirs.
      const int advance = text->fontMetrics().horizontalAdvance(shown);
      EXPECT_NEAR(label.Width(), advance, advance / 100.0 + (shown.isEmpty() ? 0 : 2)) << shown.toStdString();
      EXPECT_NEAR(label.Height(), text->fontMetrics().height(), 2);
      EXPECT_EQ(label.Bounds().left, 10);
      EXPECT_EQ(label.Bounds().top, 20);
      EXPECT_EQ(label.Caption(), caption);
      EXPECT_EQ(text->text(), shown);
    }
  }
}

TEST(QtControls, LabelsAreDrawnAtOnce) {
  struct Counting : QLabel {
    using QLabel::QLabel;
    void paintEvent(QPaintEvent* event) override {
      ++painted;
      QLabel::paintEvent(event);
    }
    int painted = 0;
  };
  QWidget window;
  auto* const text = new Counting(&window);
  qt::Label label(nullptr, *text);
  label.SetCaption("Copiez...");
  window.show();
  ASSERT_TRUE(Soon([&] { return text->painted > 0; }));
  const int before = text->painted;
  label.SetCaption("Copiez factura 120");
  label.Repaint();
  EXPECT_EQ(text->painted, before + 1);
}

TEST(QtControls, FontsAreScaledOnceWhetherInheritedOrNot) {
  QWidget window;
  QFont font = window.font();
  font.setPixelSize(20);
  window.setFont(font);
  auto* const inner = New(&window, "p", Rect::At(10, 20, 101, 50));
  auto* const inheriting = New<QLabel>(inner, "l", Rect::At(8, 8, 1, 1));
  auto* const button = New<QPushButton>(inner, "b", Rect::At(8, 30, 40, 20));
  QFont own = button->font();
  own.setPointSizeF(8);
  button->setFont(own);
  window.resize(400, 200);
  qt::Form form(window);
  qt::Panel panel(&form, *inner);
  qt::Label label(&panel, *inheriting);
  qt::Control control(&panel, *button);
  label.SetCaption("Total");
  form.ScaleBy(5, 4);
  EXPECT_EQ(window.font().pixelSize(), 25);
  EXPECT_EQ(inner->font().pixelSize(), 25);
  EXPECT_EQ(inheriting->font().pixelSize(), 25);
  EXPECT_EQ(button->font().pointSizeF(), 10);
  EXPECT_EQ(window.size(), QSize(500, 250));
  EXPECT_EQ(panel.Bounds(), Rect::At(13, 25, 126, 63));
  EXPECT_EQ(control.Bounds(), Rect::At(10, 38, 50, 25));
  EXPECT_NEAR(label.Width(), inheriting->fontMetrics().horizontalAdvance(QStringLiteral("Total")), 2);
  panel.ScaleBy(1, 1'000'000);  // Qt has no font without a height
  EXPECT_EQ(inner->font().pixelSize(), 1);
  EXPECT_EQ(button->font().pointSizeF(), 1);
}

TEST(QtControls, WidgetsMayGoFirstAndBeWatchedOnce) {
  auto window = std::make_unique<QWidget>();
  window->setObjectName(QStringLiteral("f"));
  auto panel = std::make_unique<qt::Panel>(nullptr, *window);
  ExpectError<Error>([&] { const qt::Control again(nullptr, *window); }, "Widgetul are deja un control: f:QWidget");
  panel.reset();
  panel = std::make_unique<qt::Panel>(nullptr, *window);  // free again
  auto* const text = new QLabel(window.get());
  qt::Label label(panel.get(), *text);
  qt::Control edit(panel.get(), *new QLineEdit(window.get()));
  window->show();
  window.reset();
  EXPECT_EQ(panel->Widget(), nullptr);
  EXPECT_EQ(label.Widget(), nullptr);
  EXPECT_EQ(panel->Bounds(), Rect());
  EXPECT_EQ(panel->ClientWidth(), 0);
  EXPECT_TRUE(panel->Children().empty());
  EXPECT_FALSE(panel->Visible());
  panel->SetBounds(Rect::At(1, 2, 3, 4));
  panel->ScaleBy(5, 4);
  label.SetCaption("x");
  label.Repaint();
  EXPECT_EQ(label.Caption(), "");

  QWidget mine;
  bool refused = false;
  std::thread([&] {
    try {
      const qt::Control control(nullptr, mine);
    } catch (const Error&) {
      refused = true;
    }
  }).join();
  EXPECT_TRUE(refused);
}

}  // namespace
}  // namespace kiv::host
