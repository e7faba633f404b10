#pragma once

#include <QObject>

namespace notlet {

/// Whether the desktop is dark or light.
class Appearance : public QObject {
  Q_OBJECT

 public:
  [[nodiscard]] virtual bool isDark() const = 0;

 Q_SIGNALS:
  void changed();
};

} // namespace notlet
