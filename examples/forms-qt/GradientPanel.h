#pragma once

#include <kivtools/BmpRoutines.h>

#include <QImage>
#include <QPainter>
#include <QWidget>

/// A panel on the library's fill, from dark to light blue; the panels in it let it through.
class GradientPanel : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const kiv::Bitmap fill = kiv::GenerateHorizFountainFill(width(), height(), 0x00A06020, 0x00F8E8D0);
    if (fill.Width() > 0 && fill.Height() > 0) {
      const QImage image(fill.ScanLine(0), fill.Width(), fill.Height(), fill.Stride(), QImage::Format_BGR888);
      QPainter(this).drawImage(0, 0, image);
    }
  }
};
