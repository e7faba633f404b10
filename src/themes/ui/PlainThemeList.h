#pragma once

#include <QListWidget>

#include "themes/AppSettings.h"

namespace notlet {

/// All themes by name, the built-in ones first; a click or Return brings one into force.
class PlainThemeList : public QListWidget {
  Q_OBJECT

 public:
  /// The settings must outlive the list.
  explicit PlainThemeList(AppSettings& settings, QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void fill();
  void apply(QListWidgetItem* item);

  AppSettings& m_settings;
};

} // namespace notlet
