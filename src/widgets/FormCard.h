#pragma once

#include <QVBoxLayout>
#include <QWidget>

class QLabel;

namespace notlet {

/// A group of rows on a raised surface, under a heading.
class FormCard : public QWidget {
  Q_OBJECT

 public:
  explicit FormCard(const QString& title, QWidget* parent = nullptr);

  /// The heading of what stands among cards and is none.
  [[nodiscard]] static QLabel* makeHeading(const QString& title);

  /// Takes the row as its child; a hairline parts it from the one above.
  void addRow(QWidget* row);

 private:
  QVBoxLayout* m_rows;
};

/// The space between the edge of a card and what is in its rows, in logical pixels.
inline constexpr int cardPadding = 16;

} // namespace notlet
