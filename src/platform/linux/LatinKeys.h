#pragma once

#include <QAbstractNativeEventFilter>
#include <optional>
#include <string>

#include "platform/linux/X11Keymap.h"

class QKeyEvent;

namespace notlet {

/// What a key symbol types, UTF-8; nothing for keys that type nothing.
[[nodiscard]] std::optional<std::string> charactersOfSymbol(xkb_keysym_t symbol);

/// What the key at a place types on the American layout, which stands for all that are Latin.
[[nodiscard]] std::optional<std::string> americanCharacters(xkb_keycode_t key);

/// What a key types on a Latin layout: on one of the keymap, else on the American. Nothing when the layout in
/// use has Latin letters itself.
[[nodiscard]] std::optional<std::string> latinCharacters(xkb_keymap* keymap, xkb_keycode_t key,
                                                         xkb_layout_index_t layoutInUse);

/// The same for the keys pressed in the program's windows, as far as an X server tells. Must go before the
/// application object.
class LatinKeys final : private QAbstractNativeEventFilter {
 public:
  LatinKeys();

  [[nodiscard]] std::optional<std::string> charactersOf(const QKeyEvent& event);

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  /// Without a handle when there is no X server.
  X11Connection m_connection;
  /// Asked for with the first key after a change.
  std::optional<X11Keymap> m_keymap;
};

} // namespace notlet
