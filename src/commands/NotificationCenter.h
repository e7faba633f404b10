#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <string>

#include "commands/CommandName.h"

namespace notlet {

/// What travels with a command: nothing, but for `searchMacHashtags`, which carries the key's name (UTF-8).
using CommandObject = std::optional<std::string>;

/// Delivers commands to whoever observes them at that moment, at once and on the main thread.
///
/// Observers must not rely on the order in which they are called. A command that nobody observes is lost.
class NotificationCenter : public QObject {
  Q_OBJECT

 public:
  using Handler = std::function<void(const CommandObject&)>;

  void post(CommandName name, const CommandObject& object = std::nullopt);

  /// Calls the handler for each post of the name, for as long as `context` lives.
  void observe(CommandName name, QObject* context, Handler handler);

 Q_SIGNALS:
  void posted(notlet::CommandName name, const notlet::CommandObject& object);
};

} // namespace notlet
