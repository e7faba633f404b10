#include "widgets/NotletStyle.h"

#include <QPainter>
#include <QStyleOptionSlider>

#include "widgets/SymbolIcon.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int scrollBarWidth = 10;
constexpr int shortestThumb = 28;
constexpr int thumbMargin = 3;

QRect thumbRect(const QStyleOptionSlider& bar) {
  const bool isHorizontal = bar.orientation == Qt::Horizontal;
  const int length = isHorizontal ? bar.rect.width() : bar.rect.height();
  const qint64 range = qint64{bar.maximum} - bar.minimum;
  if (range <= 0)
    return {};
  const auto share = static_cast<int>(qint64{bar.pageStep} * length / (range + bar.pageStep));
  const int thumb = std::clamp(share, std::min(shortestThumb, length), length);
  const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                    length - thumb, bar.upsideDown);
  return isHorizontal ? QRect(bar.rect.x() + start, bar.rect.y(), thumb, bar.rect.height())
                      : QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), thumb);
}

void paintField(QPainter& painter, const QStyleOption& field) {
  constexpr double radius = 6;
  painter.setPen(QPen(controlOutline(field.palette), 1));
  painter.setBrush(field.palette.brush(ThemeRole::surface));
  painter.drawRoundedRect(QRectF(field.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  if (field.state.testFlag(QStyle::State_HasFocus))
    ThemedButton::paintFocusRing(painter, field.rect, radius, field.palette);
}

void paintCheckBox(QPainter& painter, const QStyleOption& box) {
  constexpr double radius = 4;
  constexpr int symbolMargin = 2;
  const bool isOn = box.state.testFlag(QStyle::State_On);
  const auto ground = box.state.testFlag(QStyle::State_Sunken) ? ThemeRole::pressed : ThemeRole::surface;
  painter.setPen(QPen(controlOutline(box.palette), 1));
  painter.setBrush(box.palette.brush(isOn ? ThemeRole::accent : ground));
  painter.drawRoundedRect(QRectF(box.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  if (isOn)
    paintSymbol(painter, Symbol::checkmark,
                box.rect.adjusted(symbolMargin, symbolMargin, -symbolMargin, -symbolMargin),
                box.palette.color(ThemeRole::onAccent));
}

} // namespace

NotletStyle::NotletStyle() : QProxyStyle(QStringLiteral("fusion")) {
}

int NotletStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  if (metric == PM_ScrollBarExtent)
    return scrollBarWidth;
  if (metric == PM_ScrollBarSliderMin)
    return shortestThumb;
  return QProxyStyle::pixelMetric(metric, option, widget);
}

QRect NotletStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                  SubControl subControl, const QWidget* widget) const {
  const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || bar == nullptr)
    return QProxyStyle::subControlRect(control, option, subControl, widget);
  const QRect thumb = thumbRect(*bar);
  const bool isHorizontal = bar->orientation == Qt::Horizontal;
  QRect rect;
  switch (subControl) {
  case SC_ScrollBarGroove:
    return bar->rect;
  case SC_ScrollBarSlider:
    rect = thumb;
    break;
  case SC_ScrollBarSubPage:
    rect = bar->rect;
    isHorizontal ? rect.setRight(thumb.left() - 1) : rect.setBottom(thumb.top() - 1);
    break;
  case SC_ScrollBarAddPage:
    rect = bar->rect;
    isHorizontal ? rect.setLeft(thumb.right() + 1) : rect.setTop(thumb.bottom() + 1);
    break;
  default:
    return {}; // No arrows, and no ends.
  }
  return visualRect(bar->direction, bar->rect, rect);
}

void NotletStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
  const bool isField = element == PE_PanelLineEdit && frame != nullptr && frame->lineWidth > 0;
  const bool isCheckBox = element == PE_IndicatorCheckBox && !option->state.testFlag(State_NoChange);
  if (!isField && !isCheckBox)
    return QProxyStyle::drawPrimitive(element, option, painter, widget);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  isField ? paintField(*painter, *option) : paintCheckBox(*painter, *option);
  painter->restore();
}

void NotletStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || bar == nullptr)
    return QProxyStyle::drawComplexControl(control, option, painter, widget);
  const QRect thumb = subControlRect(control, option, SC_ScrollBarSlider, widget);
  if (thumb.isEmpty())
    return;
  const bool isHeld = bar->state.testFlag(State_Sunken) && bar->activeSubControls == SC_ScrollBarSlider;
  const bool isHovered = bar->state.testFlag(State_MouseOver);
  const double strength = isHeld ? 0.45 : isHovered ? 0.25 : 0;
  const QRectF shape = QRectF(thumb).adjusted(thumbMargin, thumbMargin, -thumbMargin, -thumbMargin);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(mixed(scrollThumb(bar->palette), bar->palette.color(ThemeRole::primaryText), strength));
  const qreal radius = std::min(shape.width(), shape.height()) / 2;
  painter->drawRoundedRect(shape, radius, radius);
  painter->restore();
}

} // namespace notlet
