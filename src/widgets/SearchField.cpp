#include "widgets/SearchField.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>

#include "widgets/IconButton.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double radius = 9;

} // namespace

SearchField::SearchField(const QString& placeholder, const QString& clearName, QWidget* parent)
    : QWidget(parent),
      m_lineEdit(new QLineEdit),
      m_clear(new IconButton(Symbol::xmarkCircleFill, clearName)) {
  m_lineEdit->setPlaceholderText(placeholder);
  m_lineEdit->setAccessibleName(placeholder);
  m_lineEdit->setFont(textFont(TextStyle::body));
  m_lineEdit->setFrame(false);
  m_lineEdit->installEventFilter(this);
  m_clear->setSides(16, 22);
  m_clear->setShape(IconButton::Shape::round);
  m_clear->hide();
  setFocusProxy(m_lineEdit);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(10, 6, 8, 6);
  layout->setSpacing(8);
  layout->addWidget(new SymbolIcon(Symbol::magnifyingglass, 16, ThemeRole::secondaryText));
  layout->addWidget(m_lineEdit);
  layout->addWidget(m_clear);
  // The bar keeps its height when the button comes and goes.
  setMinimumHeight(layout->contentsMargins().top() + layout->contentsMargins().bottom() +
                   m_clear->sizeHint().height());

  connect(m_lineEdit, &QLineEdit::textChanged, this, [this](const QString& text) {
    m_clear->setVisible(!text.isEmpty());
    Q_EMIT textChanged(text);
  });
  connect(m_clear, &IconButton::clicked, this, [this] {
    // The button is about to go, and must not take the keyboard with it.
    if (m_clear->hasFocus())
      m_lineEdit->setFocus();
    m_lineEdit->clear();
  });
}

QString SearchField::text() const {
  return m_lineEdit->text();
}

void SearchField::setText(const QString& text) {
  if (text != m_lineEdit->text())
    m_lineEdit->setText(text);
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
  const bool isFocusChange = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
  // A menu over the line takes the keys for a while; the line gets them back by itself.
  if (isFocusChange && static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
    update();
    Q_EMIT focusChanged(event->type() == QEvent::FocusIn);
  }
  return QWidget::eventFilter(watched, event);
}

void SearchField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(ThemeRole::separator), 1));
  painter.setBrush(palette().brush(ThemeRole::surface));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  if (m_lineEdit->hasFocus())
    ThemedButton::paintFocusRing(painter, rect(), radius, palette());
}

} // namespace notlet
