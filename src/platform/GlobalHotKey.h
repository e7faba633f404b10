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

  /// Asks for the key. Some desktops answer at once, some after asking the user; a refusal comes as failed().
  virtual void install() = 0;
  /// Gives the key back; nothing happens when it was not obtained.
  virtual void uninstall() = 0;

 Q_SIGNALS:
  void pressed();
  void failed(notlet::GlobalHotKey::Failure failure);
};

} // namespace notlet
