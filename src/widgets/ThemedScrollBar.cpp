#include "widgets/ThemedScrollBar.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int shortestThumb = 32;
constexpr double thumbInset = 3;

/// Where the thumb is follows from the style alone, for painting and for the mouse.
class ScrollBarStyle final : public QProxyStyle {
 public:
  [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                const QWidget* widget) const override {
    if (metric == PM_ScrollBarExtent)
      return ThemedScrollBar::breadth;
    if (metric == PM_ScrollBarSliderMin)
      return shortestThumb;
    return QProxyStyle::pixelMetric(metric, option, widget);
  }

  [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                     SubControl part, const QWidget* widget) const override {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || bar == nullptr)
      return QProxyStyle::subControlRect(control, option, part, widget);
    const bool isUpright = bar->orientation == Qt::Vertical;
    const int length = isUpright ? bar->rect.height() : bar->rect.width();
    const auto span = [&](int start, int extent) {
      return isUpright ? QRect(0, start, bar->rect.width(), extent)
                       : QRect(start, 0, extent, bar->rect.height());
    };
    const int thumb = thumbLength(*bar, length);
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                              bar->upsideDown);
    switch (part) {
    case SC_ScrollBarSlider:
      return span(start, thumb);
    case SC_ScrollBarSubPage:
      return span(0, start);
    case SC_ScrollBarAddPage:
      return span(start + thumb, length - start - thumb);
    case SC_ScrollBarGroove:
      return span(0, length);
    default:
      return {};
    }
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || bar == nullptr)
      return QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (bar->minimum == bar->maximum)
      return;
    const QRectF thumb = QRectF(subControlRect(control, option, SC_ScrollBarSlider, widget))
                             .adjusted(thumbInset, thumbInset, -thumbInset, -thumbInset);
    const bool isTouched = bar->state & (State_MouseOver | State_Sunken);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(mixed(bar->palette.color(ThemeRole::background),
                            bar->palette.color(ThemeRole::primaryText), isTouched ? 0.5 : 0.3));
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter->drawRoundedRect(thumb, radius, radius);
  }

 private:
  [[nodiscard]] static int thumbLength(const QStyleOptionSlider& bar, int length) {
    const double all = static_cast<double>(bar.maximum) - bar.minimum + bar.pageStep;
    const int share = static_cast<int>(length * (bar.pageStep / std::max(1.0, all)));
    return std::clamp(share, std::min(shortestThumb, length), length);
  }
};

} // namespace

ThemedScrollBar::ThemedScrollBar(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent) {
  auto* look = new ScrollBarStyle;
  look->setParent(this);
  setStyle(look);
  setAttribute(Qt::WA_Hover);
  setAttribute(Qt::WA_OpaquePaintEvent, false); // The ground shows beside the thumb.
}

void ThemedScrollBar::install(QAbstractScrollArea& area) {
  area.setVerticalScrollBar(new ThemedScrollBar(Qt::Vertical));
}

} // namespace notlet
