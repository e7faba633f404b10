#pragma once

#include <QObject>

namespace notlet {

/// One key combination, Control+Super+J, that reaches the program whatever other program has the keyboard.
class GlobalHotKey : public QObject {
  Q_OBJECT

 public:
  enum class Failure {
    /// The desktop offers no way to hear of the key.
    notInstalled,
    /// Another program has the combination.
    taken,
  };
  Q_ENUM(Failure)

  /// Asks for the key. Some desktops answer at once, some after asking the user; the answer comes as
  /// installed() or failed().
  virtual void install() = 0;
  /// Asks again for a key that another program had. A further refusal is not told.
  virtual void retry() = 0;
  /// Gives the key back; nothing happens when it was not obtained.
  virtual void uninstall() = 0;

 Q_SIGNALS:
  /// Not from within the handling of the event that told of the key.
  void pressed();
  /// The program has the key, perhaps after a refusal.
  void installed();
  void failed(notlet::GlobalHotKey::Failure failure);
};

} // namespace notlet
