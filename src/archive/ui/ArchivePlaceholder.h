#pragma once

#include <QLabel>
#include <QWidget>

#include "widgets/SymbolIcon.h"

namespace notlet {

/// Stands where the list would be while it is empty.
class ArchivePlaceholder : public QWidget {
  Q_OBJECT

 public:
  explicit ArchivePlaceholder(QWidget* parent = nullptr);

  void setContent(Symbol symbol, const QString& title, const QString& description);

 private:
  SymbolIcon* m_icon;
  QLabel* m_title;
  QLabel* m_description;
};

} // namespace notlet
