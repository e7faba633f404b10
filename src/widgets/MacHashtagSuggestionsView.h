#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

namespace notlet {

/// Suggested hashtags as a strip of buttons that wraps into at most two rows; what has no room is left out.
///
/// By keyboard: Tab enters at the first tag, Left and Right walk, Return, Enter and Space choose, Escape
/// leaves.
class MacHashtagSuggestionsView : public QWidget {
  Q_OBJECT

 public:
  /// Takes a tag as it was given, without "#".
  using OnSelect = std::function<void(const std::string& tag)>;

  MacHashtagSuggestionsView(std::vector<std::string> suggestions, OnSelect onSelect,
                            QWidget* parent = nullptr);

  /// Keeps the buttons, and with them the keyboard focus, when the list is the same.
  void setSuggestions(std::vector<std::string> suggestions);
  [[nodiscard]] const std::vector<std::string>& suggestions() const { return m_suggestions; }
  /// Gives the keyboard to the first tag.
  void focusFirst();

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 Q_SIGNALS:
  /// Escape was pressed: the owner takes the keyboard back.
  void dismissed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class Chip;

  void makeChips();
  void orderForTab();
  void placeChips();
  /// Where the chips go in a strip of this width; those left out have no entry.
  [[nodiscard]] std::vector<QRect> placement(int width) const;
  void moveFocus(std::ptrdiff_t step);
  /// Only this chip (or none) is reached by Tab.
  void setTabStop(const QObject* stop);

  std::vector<std::string> m_suggestions;
  OnSelect m_onSelect;
  std::vector<Chip*> m_chips;
  std::size_t m_shownCount = 0;
};

} // namespace notlet
