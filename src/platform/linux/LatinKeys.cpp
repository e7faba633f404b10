#include "platform/linux/LatinKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <string_view>

namespace notlet {

namespace {

/// One row of keys on a keyboard with the letters of the American layout.
struct KeyRow {
  xkb_keycode_t first;
  std::string_view characters;
};

constexpr auto keyRows = std::to_array<KeyRow>({
    {10, "1234567890-="},
    {24, "qwertyuiop[]"},
    {38, "asdfghjkl;'`"},
    {52, "zxcvbnm,./"},
});

/// Others may have a Latin letter or two among their own.
constexpr int fewestLetters = 10;

bool isLatin(xkb_keymap* keymap, xkb_layout_index_t layout) {
  int letters = 0;
  for (const auto& [first, characters] : keyRows) {
    for (xkb_keycode_t key = first; key < first + characters.size(); ++key) {
      const xkb_keysym_t symbol = symbolAt(keymap, key, layout, 0);
      letters += symbol >= XKB_KEY_a && symbol <= XKB_KEY_z ? 1 : 0;
    }
  }
  return letters >= fewestLetters;
}

/// The layout that was in use, as the state of the modifiers tells it.
xkb_layout_index_t layoutOf(const QKeyEvent& event) {
  constexpr quint32 firstBit = 13;
  constexpr quint32 mask = 3;
  return event.nativeModifiers() >> firstBit & mask;
}

} // namespace

std::optional<std::string> charactersOfSymbol(xkb_keysym_t symbol) {
  std::array<char, 8> characters{};
  // Counts the terminating null, too.
  if (xkb_keysym_to_utf8(symbol, characters.data(), characters.size()) <= 1)
    return std::nullopt;
  return std::string(characters.data());
}

std::optional<std::string> americanCharacters(xkb_keycode_t key) {
  for (const auto& [first, characters] : keyRows) {
    if (key >= first && key - first < characters.size())
      return std::string(1, characters[key - first]);
  }
  return std::nullopt;
}

std::optional<std::string> latinCharacters(xkb_keymap* keymap, xkb_keycode_t key,
                                           xkb_layout_index_t layoutInUse) {
  if (isLatin(keymap, layoutInUse))
    return std::nullopt;
  for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts(keymap); ++layout) {
    if (isLatin(keymap, layout))
      return charactersOfSymbol(symbolAt(keymap, key, layout, 0));
  }
  return americanCharacters(key);
}

LatinKeys::LatinKeys() : m_connection(X11Connection::ofApplication().value_or(X11Connection{})) {
  if (m_connection.handle != nullptr)
    qApp->installNativeEventFilter(this);
}

bool LatinKeys::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type == "xcb_generic_event_t" &&
      X11Keymap::isChange(m_connection, *static_cast<const xcb_generic_event_t*>(message)))
    m_keymap.reset();
  return false;
}

std::optional<std::string> LatinKeys::charactersOf(const QKeyEvent& event) {
  if (m_connection.handle == nullptr || event.nativeScanCode() == 0)
    return std::nullopt;
  if (!m_keymap)
    m_keymap = X11Keymap::ask(m_connection);
  if (!m_keymap->keymap)
    return std::nullopt;
  return latinCharacters(m_keymap->keymap.get(), event.nativeScanCode(), layoutOf(event));
}

} // namespace notlet
