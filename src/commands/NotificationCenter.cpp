#include "commands/NotificationCenter.h"

namespace notlet {

void NotificationCenter::post(CommandName name, const CommandObject& object) {
  Q_EMIT posted(name, object);
}

void NotificationCenter::observe(CommandName name, QObject* context, Handler handler) {
  connect(this, &NotificationCenter::posted, context,
          [name, call = std::move(handler)](CommandName posted, const CommandObject& object) {
            if (posted == name)
              call(object);
          });
}

} // namespace notlet
