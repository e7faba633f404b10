#include "widgets/TextStyle.h"

#include <QGuiApplication>

namespace notlet {

namespace {

struct Step {
  double scale;
  QFont::Weight weight;
};

Step stepOf(TextStyle style) {
  switch (style) {
  case TextStyle::largeTitle:
    return {2.0, QFont::Bold};
  case TextStyle::title:
    return {1.5, QFont::Bold};
  case TextStyle::headline:
    return {1.0, QFont::DemiBold};
  case TextStyle::body:
    return {1.0, QFont::Normal};
  case TextStyle::subheadline:
    return {0.95, QFont::Normal};
  case TextStyle::footnote:
    return {0.9, QFont::Normal};
  case TextStyle::caption:
    return {0.85, QFont::Normal};
  case TextStyle::caption2:
    return {0.78, QFont::Normal};
  }
  return {1.0, QFont::Normal};
}

} // namespace

QFont textFont(TextStyle style) {
  return textFont(style, stepOf(style).weight);
}

QFont textFont(TextStyle style, QFont::Weight weight) {
  QFont font = QGuiApplication::font();
  const double scale = stepOf(style).scale;
  // A font has either of the two sizes, never both.
  if (font.pointSizeF() > 0)
    font.setPointSizeF(font.pointSizeF() * scale);
  else
    font.setPixelSize(qRound(font.pixelSize() * scale));
  font.setWeight(weight);
  return font;
}

QFont displayFont(int pixels) {
  QFont font = QGuiApplication::font();
  font.setPixelSize(pixels);
  font.setWeight(QFont::Bold);
  return font;
}

} // namespace notlet
