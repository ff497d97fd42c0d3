#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "host/qt/Spin.h"
#include "kivtools/Host.h"
#include "kivtools/Host/QtControls.h"
#include "kivtools/LargeFontScaler.h"
#include "kivtools/WinUtil/Forms.h"

namespace kiv::host {
namespace {

TEST(QtForms, AreCentredOnTheMonitorUnderTheMouse) {
  for (const Monitor& monitor : Current().GetScreen().Monitors()) {
    const Rect& area = monitor.workArea;
    QCursor::setPos(area.left + 5, area.top + 5);
    for (const bool shown : {false, true}) {
      QWidget window;
      window.resize(300, 200);
      window.setVisible(shown);
      QApplication::processEvents();
      qt::Form form(window);
      CentreazaForm(form, false);
      QApplication::processEvents();
      CentreazaForm(form, false);  // now the window system has told how wide the frame is
      EXPECT_EQ(form.Left(), area.left + (area.Width() - form.Width()) / 2) << shown;
      EXPECT_EQ(form.Top(), area.top + (area.Height() - form.Height()) / 2) << shown;
      EXPECT_EQ(window.size(), QSize(300, 200));
    }
  }
  QCursor::setPos(1, 1);
}

TEST(QtForms, FillAnUprightMonitorAndAreMaximisedOnceTheyAreShown) {
  if (!OnScreensOfTheFile()) {
    GTEST_SKIP() << "the display has one large monitor";
  }
  QCursor::setPos(-10, -10);
  QWidget window;
  window.resize(900, 900);
  qt::Form form(window);
  CentreazaForm(form, true);
  EXPECT_EQ(form.Bounds(), Rect::At(-600 + 15, -300 + 15, 570, 770));
  EXPECT_FALSE(window.isMaximized());
  window.show();
  EXPECT_TRUE(Soon([&] { return window.isMaximized(); }));
  QCursor::setPos(1, 1);
}

TEST(QtForms, TheirWindowsMayBeAskedFromAnyThreadAndOutliveThem) {
  std::shared_ptr<Window> window;
  std::shared_ptr<Window> ofWidget;
  std::atomic<bool> ended{false};
  std::thread asking;
  {
    QWidget widget;
    auto shortLived = std::make_unique<QWidget>();
    qt::Form form(widget);
    qt::Form emptied(*shortLived);
    window = form.GetWindow();
    ofWidget = emptied.GetWindow();
    asking = std::thread([&] {
      while (!ended) {
        std::ignore = window->Visible();
        window->Maximise();
        ofWidget->Maximise();
        std::this_thread::yield();
      }
    });
    EXPECT_FALSE(window->Visible());
    QApplication::processEvents();
    EXPECT_FALSE(widget.isVisible());  // maximising does not show what is hidden
    widget.show();
    shortLived->show();
    EXPECT_TRUE(window->Visible());
    EXPECT_TRUE(Soon([&] { return widget.isMaximized(); }));
    widget.hide();
    EXPECT_FALSE(window->Visible());
    EXPECT_TRUE(ofWidget->Visible());
    shortLived.reset();
    EXPECT_FALSE(ofWidget->Visible());
    widget.show();
  }
  EXPECT_FALSE(window->Visible());
  QApplication::processEvents();
  ended = true;
  asking.join();
}

TEST(QtForms, FollowTheFileOfLargeFonts) {
  std::ofstream(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "LargeFonts.txt") << "5:4\n";
  QWidget window;
  window.resize(240, 100);
  QPushButton button(&window);
  button.setGeometry(40, 56, 70, 26);
  QLabel text(&window);
  text.setGeometry(16, 16, 1, 1);
  qt::Form form(window);
  qt::Control yes(&form, button);
  qt::Label label(&form, text);
  label.SetCaption("Tiparesc factura 120?");
  const Rect before = label.Bounds();
  ScaleControl(form);
  EXPECT_EQ(window.size(), QSize(300, 125));
  EXPECT_EQ(button.geometry(), QRect(50, 70, 88, 33));
  EXPECT_EQ(label.Left(), 20);
  EXPECT_GT(label.Width(), before.Width() * 11 / 10);
  EXPECT_GT(label.Height(), before.Height());
}

}  // namespace
}  // namespace kiv::host
