#pragma once

#include <QPlainTextEdit>

namespace notlet {

/// A plain-text editor whose text is what the user typed, character by character.
///
/// A stock text widget turns no-break spaces, line separators and paragraph separators into others when it is
/// read, and a paragraph of megabytes stalls it at every key. This one reads its document raw, remembers
/// which paragraph separators came in as such, and shows very long paragraphs in pieces that are joined again
/// when the text is read or copied.
class ExactTextEdit : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit ExactTextEdit(QWidget* parent = nullptr);

  /// The text with "\n" between lines, separators as they came in.
  [[nodiscard]] QString exactText() const;
  /// What undo takes back at once.
  enum class UndoStep { own, joinsPrevious };

  /// Replaces the text; the caret goes to the end.
  void setExactText(const QString& text, UndoStep step = UndoStep::own);
  /// True while an input method holds text that is not committed yet.
  [[nodiscard]] bool isComposing() const;

  /// Whether Return without any modifier is reported (as in the beginning) or makes a new line as the others
  /// do.
  void setReportsReturn(bool reports) { m_reportsReturn = reports; }

  /// Characters after which a paragraph is shown in pieces, and the size of a piece.
  static constexpr qsizetype longestParagraph = 16'384;
  static constexpr qsizetype pieceLength = 4'096;

 Q_SIGNALS:
  /// Return was pressed without any modifier and without a composition under way, and such are reported.
  void returnPressed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void insertFromMimeData(const QMimeData* source) override;
  [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;

 private:
  void insertExactly(QTextCursor& cursor, const QString& text) const;
  [[nodiscard]] QString exactText(int from, int to) const;
  /// How much of the text stands in the document already and may stay there.
  [[nodiscard]] qsizetype commonStart(const QString& text) const;
  void deleteAcrossPiece(const QKeyEvent* event);

  bool m_reportsReturn = true;
};

} // namespace notlet
