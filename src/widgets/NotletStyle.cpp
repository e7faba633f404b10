#include "widgets/NotletStyle.h"

#include <QComboBox>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionSlider>
#include <QTabBar>
#include <QToolButton>
#include <optional>

#include "widgets/ControlPainting.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int scrollBarWidth = 10;
constexpr int shortestThumb = 28;
constexpr int thumbMargin = 3;
constexpr int separatorHeight = 9;
constexpr int menuPadding = 16;

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

QRect chevronPart(const QRect& box) {
  return box.adjusted(box.width() - ControlPainting::chevronWidth, 0, 0, 0);
}

/// The parts of a spin box; nothing for those that are the box itself.
std::optional<QRect> partOfSpinBox(const QStyleOptionComplex& box, QStyle::SubControl part) {
  const QRect chevrons = chevronPart(box.rect);
  switch (part) {
  case QStyle::SC_SpinBoxUp:
    return chevrons.adjusted(0, 2, 0, -chevrons.height() / 2);
  case QStyle::SC_SpinBoxDown:
    return chevrons.adjusted(0, chevrons.height() / 2, 0, -2);
  case QStyle::SC_SpinBoxEditField:
    return box.rect.adjusted(ControlPainting::fieldPadding, 2, -ControlPainting::chevronWidth, -2);
  default:
    return std::nullopt;
  }
}

void paintSpinBox(QPainter& painter, const QStyleOptionSpinBox& box, const QStyle& style,
                  const QWidget* widget) {
  ControlPainting::paintField(painter, box);
  if (box.buttonSymbols == QAbstractSpinBox::NoButtons)
    return;
  const auto paintStep = [&](QStyle::SubControl part, QAbstractSpinBox::StepEnabledFlag step,
                             Qt::ArrowType direction) {
    QPalette palette = box.palette;
    if (!box.stepEnabled.testFlag(step))
      palette.setCurrentColorGroup(QPalette::Disabled);
    const bool isHeld = box.activeSubControls.testFlag(part) && box.state.testFlag(QStyle::State_Sunken);
    ControlPainting::paintChevron(
        painter, style.subControlRect(QStyle::CC_SpinBox, &box, part, widget).adjusted(0, 1, 0, 1), direction,
        palette.color(isHeld ? ThemeRole::focusRing : ThemeRole::primaryText));
  };
  paintStep(QStyle::SC_SpinBoxUp, QAbstractSpinBox::StepUpEnabled, Qt::UpArrow);
  paintStep(QStyle::SC_SpinBoxDown, QAbstractSpinBox::StepDownEnabled, Qt::DownArrow);
}

bool isDefault(const QStyleOptionButton& button) {
  return button.features.testFlag(QStyleOptionButton::DefaultButton);
}

/// Around what has no frame that could show the keyboard.
void paintRing(QPainter& painter, const QStyleOption& ring, const QWidget* widget) {
  // These show it with their own frame.
  if (qobject_cast<const QPushButton*>(widget) != nullptr ||
      qobject_cast<const QComboBox*>(widget) != nullptr || qobject_cast<const QTabBar*>(widget) != nullptr ||
      qobject_cast<const QToolButton*>(widget) != nullptr)
    return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  ThemedButton::paintFocusRing(painter, ring.rect, 4, ring.palette);
  painter.restore();
}

void paintFrame(QPainter& painter, const QStyleOption& frame) {
  painter.save();
  painter.setPen(frame.palette.color(ThemeRole::outline));
  painter.drawRect(frame.rect.adjusted(0, 0, -1, -1));
  painter.restore();
}

void paintComboBox(QPainter& painter, const QStyleOptionComboBox& box) {
  box.editable ? ControlPainting::paintField(painter, box)
               : ControlPainting::paintButton(painter, box, false);
  const QRect arrow = QStyle::visualRect(box.direction, box.rect, chevronPart(box.rect));
  ControlPainting::paintChevron(painter, arrow, Qt::DownArrow, box.palette.color(ThemeRole::primaryText));
}

} // namespace

NotletStyle::NotletStyle() : QProxyStyle(QStringLiteral("fusion")) {
}

int NotletStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
  case PM_ScrollBarExtent:
    return scrollBarWidth;
  case PM_ScrollBarSliderMin:
    return shortestThumb;
  case PM_IndicatorWidth:
  case PM_IndicatorHeight:
    return ControlPainting::boxSide;
  case PM_CheckBoxLabelSpacing:
    return 8;
  case PM_MenuPanelWidth:
    return 1;
  case PM_MenuHMargin:
  case PM_MenuVMargin:
    return 4;
  case PM_ButtonShiftHorizontal:
  case PM_ButtonShiftVertical:
  case PM_TabBarTabShiftHorizontal:
  case PM_TabBarTabShiftVertical:
  case PM_TabBarTabOverlap:
  case PM_TabBarBaseOverlap:
    return 0;
  default:
    return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int NotletStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
  if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
    return 0;
  return QProxyStyle::styleHint(hint, option, widget, returned);
}

QSize NotletStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                    const QWidget* widget) const {
  const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  const auto atLeast = [&size](int wider) {
    return QSize(size.width() + wider, std::max(size.height(), ControlPainting::controlHeight));
  };
  switch (type) {
  case CT_LineEdit: {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    return frame != nullptr && frame->lineWidth > 0 ? atLeast(2 * ControlPainting::fieldPadding) : size;
  }
  case CT_PushButton:
  case CT_ComboBox:
  case CT_SpinBox:
  case CT_TabBarTab:
    return atLeast(ControlPainting::fieldPadding);
  case CT_MenuItem: {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const bool isSeparator = item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator;
    return isSeparator ? QSize(size.width(), separatorHeight) : atLeast(menuPadding);
  }
  default:
    return size;
  }
}

QRect NotletStyle::subElementRect(SubElement element, const QStyleOption* option,
                                  const QWidget* widget) const {
  const QRect rect = QProxyStyle::subElementRect(element, option, widget);
  const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
  if (element != SE_LineEditContents || frame == nullptr || frame->lineWidth <= 0)
    return rect;
  return rect.adjusted(ControlPainting::fieldPadding - frame->lineWidth, 0,
                       frame->lineWidth - ControlPainting::fieldPadding, 0);
}

QRect NotletStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                  SubControl subControl, const QWidget* widget) const {
  if (control == CC_SpinBox && option != nullptr) {
    if (const auto part = partOfSpinBox(*option, subControl))
      return visualRect(option->direction, option->rect, *part);
  }
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
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  switch (element) {
  case PE_PanelLineEdit:
    if (frame != nullptr && frame->lineWidth > 0)
      return ControlPainting::paintField(*painter, *option);
    break;
  case PE_IndicatorCheckBox:
    if (!option->state.testFlag(State_NoChange))
      return ControlPainting::paintCheckBox(*painter, *option);
    break;
  case PE_PanelButtonCommand:
    return ControlPainting::paintButton(*painter, *option, button != nullptr && isDefault(*button));
  case PE_PanelButtonTool:
    return ControlPainting::paintToolButton(*painter, *option);
  case PE_FrameFocusRect:
    return paintRing(*painter, *option, widget);
  case PE_Frame:
    return paintFrame(*painter, *option);
  case PE_PanelMenu:
    return ControlPainting::paintMenu(*painter, *option);
  case PE_FrameMenu: // In the panel.
  case PE_FrameTabBarBase:
  case PE_FrameTabWidget:
    return;
  default:
    break;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void NotletStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  switch (element) {
  case CE_MenuItem:
    if (item != nullptr)
      return ControlPainting::paintMenuItem(*painter, *item);
    break;
  case CE_MenuEmptyArea:
    return painter->fillRect(option->rect, option->palette.brush(ThemeRole::surface));
  case CE_TabBarTabShape:
    return ControlPainting::paintTab(*painter, *option);
  case CE_HeaderSection:
  case CE_HeaderEmptyArea:
    return ControlPainting::paintHeader(*painter, *option);
  case CE_PushButtonLabel:
    if (button != nullptr && isDefault(*button)) {
      QStyleOptionButton label = *button;
      label.palette.setBrush(QPalette::ButtonText, label.palette.brush(ThemeRole::onAccent));
      return QProxyStyle::drawControl(element, &label, painter, widget);
    }
    break;
  default:
    break;
  }
  QProxyStyle::drawControl(element, option, painter, widget);
}

void NotletStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  if (const auto* spinBox = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
      control == CC_SpinBox && spinBox != nullptr)
    return paintSpinBox(*painter, *spinBox, *proxy(), widget);
  if (const auto* comboBox = qstyleoption_cast<const QStyleOptionComboBox*>(option);
      control == CC_ComboBox && comboBox != nullptr)
    return paintComboBox(*painter, *comboBox);
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
