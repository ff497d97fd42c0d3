#include <gtest/gtest.h>

#include <QBuffer>
#include <QClipboard>
#include <QCursor>
#include <QDialog>
#include <QImage>
#include <QMessageBox>
#include <QPageLayout>
#include <QPdfWriter>
#include <QPushButton>
#include <QTimer>
#include <thread>

#include "host/qt/Spin.h"
#include "kivtools/Host/Qt.h"

namespace kiv::host {
namespace {

using namespace literals;

TEST(QtScreen, HasTheMonitorsOfTheDisplay) {
  Screen& screen = Current().GetScreen();
  if (OnScreensOfTheFile()) {
    EXPECT_EQ(screen.Monitors(), (std::vector<Monitor>{{{0, 0, 1920, 1080}, {0, 0, 1920, 1080}},
                                                       {{-600, -300, 0, 500}, {-600, -300, 0, 500}}}));
    EXPECT_EQ(screen.PixelsPerInch(), 96);
  } else {
    EXPECT_EQ(screen.Monitors(), (std::vector<Monitor>{{{0, 0, 1280, 1024}, {0, 0, 1280, 1024}}}));
  }
  QCursor::setPos(123, 45);
  EXPECT_EQ(screen.MousePosition(), (Point{123, 45}));
  QFont font = QApplication::font("QMessageBox");
  font.setPixelSize(13);
  QApplication::setFont(font, "QMessageBox");
  EXPECT_EQ(screen.MessageFontHeight(), -13);
}

TEST(QtScreen, AsksWidgetsSheetsAndPicturesForTheirSizes) {
  const auto capabilities = [](const QPaintDevice* device) {
    std::vector<std::int32_t> values;
    for (const std::int32_t number : {4, 6, 8, 10, 110, 111, 112, 113}) {
      values.push_back(Current().GetScreen().Capability(reinterpret_cast<Handle>(device), DeviceCapability{number}));
    }
    return values;
  };
  EXPECT_EQ(capabilities(nullptr), std::vector<std::int32_t>(8, 0));

  const QWidget widget;
  const Rect bounds = Current().GetScreen().Monitors().front().bounds;
  const std::vector<std::int32_t> ofScreen = capabilities(&widget);
  EXPECT_EQ(ofScreen[2], bounds.Width());
  EXPECT_EQ(ofScreen[3], bounds.Height());
  EXPECT_GT(ofScreen[0], ofScreen[1]);
  EXPECT_EQ(ofScreen[4], 0);

  QBuffer file;
  file.open(QIODevice::WriteOnly);
  QPdfWriter sheet(&file);
  sheet.setResolution(254);
  sheet.setPageLayout(QPageLayout(QPageSize(QSizeF(210, 297), QPageSize::Millimeter), QPageLayout::Portrait,
                                  QMarginsF(10, 20, 30, 7), QPageLayout::Millimeter));
  const std::vector<std::int32_t> expected = {170, 270, 1700, 2700, 2100, 2970, 100, 200};
  const std::vector<std::int32_t> ofSheet = capabilities(&sheet);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(ofSheet[i], expected[i], i < 2 ? 1 : 6) << i;  // Qt keeps margins and sheets in points
  }

  QImage picture(1000, 500, QImage::Format_RGB32);
  picture.setDotsPerMeterX(5'000);
  picture.setDotsPerMeterY(2'500);
  EXPECT_EQ(capabilities(&picture), (std::vector<std::int32_t>{200, 200, 1000, 500, 0, 0, 0, 0}));
}

TEST(QtDialogs, GiveTheButtonThatWasPressed) {
  constexpr int kClosed = 0;
  const struct {
    DialogKind kind;
    const char* title;
    QMessageBox::Icon icon;
    DialogButtons buttons;
    int pressed;
    DialogAnswer answer;
  } cases[] = {
      {DialogKind::Information, "Informare", QMessageBox::Information, DialogButtons::Ok, QMessageBox::Ok,
       DialogAnswer::Ok},
      {DialogKind::Warning, "Avertizare", QMessageBox::Warning, DialogButtons::Ok, kClosed, DialogAnswer::Ok},
      {DialogKind::Information, "Informare", QMessageBox::Information, DialogButtons::OkCancel, QMessageBox::Ok,
       DialogAnswer::Ok},
      {DialogKind::Error, "Eroare", QMessageBox::Critical, DialogButtons::OkCancel, QMessageBox::Cancel,
       DialogAnswer::Cancel},
      {DialogKind::Error, "Eroare", QMessageBox::Critical, DialogButtons::OkCancel, kClosed, DialogAnswer::Cancel},
      {DialogKind::Warning, "Avertizare", QMessageBox::Warning, DialogButtons::YesNo, QMessageBox::Yes,
       DialogAnswer::Yes},
      {DialogKind::Warning, "Avertizare", QMessageBox::Warning, DialogButtons::YesNo, kClosed, DialogAnswer::No},
      {DialogKind::Error, "Eroare", QMessageBox::Critical, DialogButtons::RetryCancel, QMessageBox::Retry,
       DialogAnswer::Retry},
      {DialogKind::Error, "Eroare", QMessageBox::Critical, DialogButtons::RetryCancel, kClosed, DialogAnswer::Cancel},
  };
  for (const auto& dialog : cases) {
    bool asked = false;
    QTimer::singleShot(0, [&] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      asked = true;
      EXPECT_EQ(box->windowTitle(), QString::fromLatin1(dialog.title));
      EXPECT_EQ(box->icon(), dialog.icon);
      EXPECT_EQ(box->text(), QStringLiteral(u"\u0218terge\u021Bi <b>tot</b>?\nNu se mai \u00EEntorc."));
      EXPECT_EQ(box->textFormat(), Qt::PlainText);
      EXPECT_EQ(box->buttons().size(), dialog.buttons == DialogButtons::Ok ? 1 : 2);
      EXPECT_EQ(box->defaultButton(), box->buttons().first());
      if (dialog.pressed == kClosed) {
        box->close();
      } else {
        box->button(static_cast<QMessageBox::StandardButton>(dialog.pressed))->click();
      }
    });
    EXPECT_EQ(Current().GetDialogs().Ask(dialog.kind, "Ştergeţi <b>tot</b>?\r\nNu se mai întorc."_ro, dialog.buttons),
              dialog.answer);
    EXPECT_TRUE(asked);
  }
  EXPECT_THROW((void)Current().GetDialogs().Ask(DialogKind{3}, "x", DialogButtons::Ok), Error);
  EXPECT_THROW((void)Current().GetDialogs().Ask(DialogKind::Error, "x", DialogButtons{4}), Error);
}

TEST(QtClipboard, CarriesTextsOfTheCodePage) {
  Clipboard& clipboard = Current().GetClipboard();
  clipboard.SetText("Şaţă 12 lei\r\n"_ro);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral(u"\u015Ea\u0163\u0103 12 lei\r\n"));
  EXPECT_EQ(clipboard.GetText(), "Şaţă 12 lei\r\n"_ro);
  QGuiApplication::clipboard()->setText(QStringLiteral(u"\u021Bar\u0103 \u4E2D"));
  EXPECT_EQ(clipboard.GetText(), "ţară ?"_ro);
  QGuiApplication::clipboard()->clear();
  EXPECT_EQ(clipboard.GetText(), "");
}

TEST(QtColours, AreThePalettes) {
  const QPalette before = QApplication::palette();
  QPalette palette = before;
  for (int role = 0; role < QPalette::NColorRoles; ++role) {
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
      palette.setColor(static_cast<QPalette::ColorGroup>(group), static_cast<QPalette::ColorRole>(role),
                       QColor(role, 0x40 + group, 0x80 + role));
    }
  }
  QApplication::setPalette(palette);
  const auto expected = [](int role, int group) {
    return static_cast<Colour>(role | (0x40 + group) << 8 | (0x80 + role) << 16);
  };
  const Colours& colours = Current().GetColours();
  EXPECT_EQ(colours.Resolve(0x80000005), expected(QPalette::Base, QPalette::Active));
  EXPECT_EQ(colours.Resolve(0xFF000008), expected(QPalette::Text, QPalette::Active));
  EXPECT_EQ(colours.SystemColour(13), expected(QPalette::Highlight, QPalette::Active));
  EXPECT_EQ(colours.SystemColour(15), expected(QPalette::Button, QPalette::Active));
  EXPECT_EQ(colours.SystemColour(17), expected(QPalette::WindowText, QPalette::Disabled));
  EXPECT_EQ(colours.SystemColour(24), expected(QPalette::ToolTipBase, QPalette::Active));
  EXPECT_EQ(colours.SystemColour(30), expected(QPalette::Window, QPalette::Active));
  for (const int none : {25, 31, 255}) {
    EXPECT_EQ(colours.SystemColour(static_cast<std::uint8_t>(none)), 0U);
  }
  QApplication::setPalette(before);
}

TEST(QtApplication, ServesEventsAndKnowsItsMainWindow) {
  Application& application = Current().GetApplication();
  EXPECT_TRUE(application.OnMainThread());
  bool onAnother = true;
  std::thread([&] { onAnother = application.OnMainThread(); }).join();
  EXPECT_FALSE(onAnother);

  int rounds = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&rounds] { ++rounds; });
  timer.start(0);
  application.ProcessMessages();
  EXPECT_GT(rounds, 0);
  timer.stop();

  EXPECT_EQ(application.MainWindow(), 0U);
  QDialog dialog;
  dialog.show();
  EXPECT_EQ(application.MainWindow(), 0U);
  QWidget first;
  QWidget second;
  first.show();
  second.show();
  EXPECT_EQ(application.MainWindow(), static_cast<Handle>(first.winId()));
  first.hide();
  EXPECT_EQ(application.MainWindow(), static_cast<Handle>(second.winId()));
}

}  // namespace
}  // namespace kiv::host
