#include "widgets/FormCard.h"

#include <QLabel>
#include <QPainter>

#include "widgets/Hairline.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double radius = 10;

/// The surface that the rows stand on.
class CardGround : public QWidget {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(ThemeRole::separator), 1));
    painter.setBrush(palette().brush(ThemeRole::surface));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  }
};

} // namespace

FormCard::FormCard(const QString& title, QWidget* parent) : QWidget(parent), m_rows(nullptr) {
  auto* ground = new CardGround;
  m_rows = new QVBoxLayout(ground);
  m_rows->setContentsMargins(1, 1, 1, 1);
  m_rows->setSpacing(0);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins({});
  column->setSpacing(8);
  column->addWidget(makeHeading(title));
  column->addWidget(ground);
}

QLabel* FormCard::makeHeading(const QString& title) {
  auto* heading = new QLabel(title);
  heading->setFont(textFont(TextStyle::subheadline, QFont::DemiBold));
  heading->setContentsMargins(cardPadding, 0, cardPadding, 0);
  return heading;
}

void FormCard::addRow(QWidget* row) {
  if (!m_rows->isEmpty()) {
    auto* line = new QVBoxLayout;
    line->setContentsMargins(cardPadding, 0, 0, 0);
    line->addWidget(new Hairline(Qt::Horizontal));
    m_rows->addLayout(line);
  }
  m_rows->addWidget(row);
}

} // namespace notlet
