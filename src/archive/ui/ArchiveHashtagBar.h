#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace notlet {

/// The hashtags to filter by, as one row of chips that scrolls sideways.
///
/// Only the chips in sight are widgets, so ten thousand hashtags cost no more than twenty.
class ArchiveHashtagBar : public QWidget {
  Q_OBJECT

 public:
  explicit ArchiveHashtagBar(QWidget* parent = nullptr);

  /// Without "#", from left to right.
  void setTags(const std::vector<std::string>& tags);
  void setSelectedTags(const std::set<std::string>& tags);
  /// Where the keyboard points, maybe beyond the last tag, and whether it does so at the moment. Another
  /// index is brought to the middle.
  void setPointer(int index, bool isShown);
  /// What was typed to search the hashtags; empty hides it.
  void setSearchInput(const QString& input);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

 Q_SIGNALS:
  /// A chip was clicked; its tag, as it was given.
  void chosen(const std::string& tag);
  /// The keyboard came here by Tab.
  void entered();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  class Chip;
  class SearchLabel;

  [[nodiscard]] int widthOf(std::size_t index);
  [[nodiscard]] int leftOf(std::size_t index) const;
  void measureThrough(std::size_t index);
  void measureUpTo(int x);
  [[nodiscard]] bool isMeasured() const { return m_rightEdges.size() == m_tags.size(); }
  [[nodiscard]] std::size_t firstInSight() const;

  void arrange();
  void measureAnew();
  void scrollTo(int x);
  void scrollToPointer(bool animated);
  void placeChips();
  void namePointer();
  [[nodiscard]] Chip* chip(std::size_t number);

  SearchLabel* m_searchLabel;
  QWidget* m_strip;
  std::vector<Chip*> m_chips;
  std::vector<std::string> m_tags;
  std::set<std::string> m_selectedTags;
  int m_pointedIndex = 0;
  bool m_pointerIsShown = false;
  // How far the strip is scrolled, in pixels from its first chip.
  int m_scroll = 0;
  QVariantAnimation m_scrolling;
  // Of as many chips as were needed so far.
  std::vector<int> m_rightEdges;
  std::unordered_map<std::string, int> m_plainWidths;
};

} // namespace notlet
