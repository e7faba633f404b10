#include "widgets/ExactTextEdit.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <random>

namespace notlet {

namespace {

void paste(ExactTextEdit& edit, const QString& text) {
  QGuiApplication::clipboard()->setText(text);
  edit.paste();
}

QString clipboardText() {
  return QGuiApplication::clipboard()->text();
}

const QString longWord = QString(3 * ExactTextEdit::longestParagraph, u'x');

} // namespace

TEST(ExactTextEdit, KeepsEveryCharacter) {
  const QStringList texts = {
      QString(),
      QStringLiteral("plain"),
      QStringLiteral("no\u00A0break\u202Fspaces\u2007"),
      QStringLiteral("line\u2028separator and paragraph\u2029separator"),
      QStringLiteral("\u2029at both ends\u2029"),
      QStringLiteral("\n\nlines\n \n"),
      QStringLiteral("\u200Fمرحبا\u200E \u202Babc\u202C \u2066x\u2069"),
      QStringLiteral("👩‍👩‍👧‍👦 🇩🇪 ❤️ é e\u0301 \uFEFF \uFFFC"),
      QStringLiteral("tab\tvertical\u000Bform\u000Cfeed next\u0085line"),
      longWord,
      longWord + u'\n' + longWord + QChar(QChar::ParagraphSeparator) + longWord,
      QStringLiteral("words of a long paragraph ").repeated(4000),
      QStringLiteral("👩‍👩‍👧‍👦").repeated(5000),
  };
  for (const QString& text : texts) {
    ExactTextEdit edit;
    edit.setExactText(text);
    EXPECT_EQ(edit.exactText(), text) << qPrintable(text.left(40));
    edit.setExactText(QString());
    EXPECT_EQ(edit.exactText(), QString());
    paste(edit, text);
    EXPECT_EQ(edit.exactText(), text) << qPrintable(text.left(40));
    edit.selectAll();
    edit.copy();
    EXPECT_EQ(clipboardText(), text) << qPrintable(text.left(40));
  }
}

// What both texts have in common stays in the document.
TEST(ExactTextEdit, BecomesAnyTextFromAnyOther) {
  const QStringList texts = {
      QString(),
      QStringLiteral("Buy milk"),
      QStringLiteral("Buy milk and eggs"),
      QStringLiteral("Buy milk\nand eggs"),
      QStringLiteral("Buy milk\u2029and eggs\n"),
      QStringLiteral("Buy 😀"),
      QStringLiteral("Buy 😁"), // Its first half is that of the one before.
      QStringLiteral("Buy\n") + longWord,
      QStringLiteral("Buy\n") + longWord + QStringLiteral("\nmilk"),
      QStringLiteral("Buy\n") + QString(ExactTextEdit::longestParagraph, u'x'),
      QStringLiteral("Buy\n") + QString(ExactTextEdit::longestParagraph + 1, u'x'),
  };
  ExactTextEdit edit;
  for (const QString& from : texts)
    for (const QString& to : texts) {
      edit.setExactText(from);
      edit.setExactText(to);
      EXPECT_EQ(edit.exactText(), to) << qPrintable(from.left(40)) << " to " << qPrintable(to.left(40));
      EXPECT_TRUE(edit.textCursor().atEnd());
      for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next())
        EXPECT_LE(block.length(), ExactTextEdit::longestParagraph + 1);
      edit.undo();
      EXPECT_TRUE(from == to || edit.exactText() == from) << "undone";
    }
}

TEST(ExactTextEdit, TakesForeignLineEndsAsNewlines) {
  ExactTextEdit edit;
  paste(edit, QStringLiteral("one\r\ntwo\rthree\n\r\nfour"));
  EXPECT_EQ(edit.exactText(), QStringLiteral("one\ntwo\nthree\n\nfour"));
}

TEST(ExactTextEdit, ShowsLongParagraphsInPiecesThatDoNotCutCharacters) {
  ExactTextEdit edit;
  const QString family = QStringLiteral("👩‍👩‍👧‍👦");
  edit.setExactText(family.repeated(5000));
  ASSERT_GT(edit.document()->blockCount(), 2);
  for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next()) {
    EXPECT_LE(block.length(), ExactTextEdit::pieceLength + 1);
    EXPECT_EQ(block.text().size() % family.size(), 0);
  }
}

// The seam between two pieces is no character: a key press there acts as if it were not.
TEST(ExactTextEdit, DeletesAcrossASeamOneCharacterAtATime) {
  for (const bool backwards : {true, false}) {
    ExactTextEdit edit;
    edit.setExactText(longWord);
    const int seam = edit.document()->begin().length() - 1;
    QTextCursor cursor = edit.textCursor();
    cursor.setPosition(backwards ? seam + 1 : seam);
    edit.setTextCursor(cursor);
    QTest::keyClick(&edit, backwards ? Qt::Key_Backspace : Qt::Key_Delete);
    EXPECT_EQ(edit.exactText(), longWord.chopped(1));
  }
}

// A new line made beside a seam must not itself become a seam, which would swallow it.
TEST(ExactTextEdit, ANewlineTypedAtASeamIsKept) {
  for (const int offset : {0, 1, 2}) {
    ExactTextEdit edit;
    edit.setExactText(longWord);
    const int seam = edit.document()->begin().length() - 1;
    QTextCursor cursor = edit.textCursor();
    cursor.setPosition(seam + offset);
    edit.setTextCursor(cursor);
    QTest::keyClick(&edit, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(&edit, QStringLiteral("y"));
    QString expected = longWord;
    expected.insert(seam + std::max(offset - 1, 0), QStringLiteral("\ny"));
    EXPECT_EQ(edit.exactText(), expected) << offset;
  }
}

TEST(ExactTextEdit, ReturnAloneIsReportedAndEveryOtherReturnMakesALine) {
  const struct {
    Qt::KeyboardModifiers modifiers;
    bool isReported;
  } cases[] = {{Qt::NoModifier, true},       {Qt::KeypadModifier, true}, {Qt::ShiftModifier, false},
               {Qt::ControlModifier, false}, {Qt::AltModifier, false},   {Qt::MetaModifier, false}};
  for (const auto& [modifiers, isReported] : cases) {
    ExactTextEdit edit;
    edit.setExactText(QStringLiteral("a"));
    const QSignalSpy spy(&edit, &ExactTextEdit::returnPressed);
    QTest::keyClick(&edit, Qt::Key_Return, modifiers);
    EXPECT_EQ(spy.count(), isReported ? 1 : 0) << modifiers;
    EXPECT_EQ(edit.exactText(), isReported ? QStringLiteral("a") : QStringLiteral("a\n")) << modifiers;
  }
}

TEST(ExactTextEdit, NoKeyChangesATextThatIsOnlyRead) {
  ExactTextEdit edit;
  edit.setExactText(longWord);
  edit.setReadOnly(true);
  const QSignalSpy spy(&edit, &ExactTextEdit::returnPressed);
  const QSignalSpy changes(edit.document(), &QTextDocument::contentsChanged);
  for (const auto key : {Qt::Key_Return, Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_X}) {
    for (const auto modifiers : {Qt::NoModifier, Qt::ShiftModifier}) {
      QTextCursor cursor = edit.textCursor();
      cursor.setPosition(edit.document()->begin().length()); // Beside a seam.
      edit.setTextCursor(cursor);
      QTest::keyClick(&edit, key, modifiers);
    }
  }
  EXPECT_EQ(spy.count(), 0);
  EXPECT_EQ(changes.count(), 0);
  EXPECT_EQ(edit.exactText(), longWord);
}

TEST(ExactTextEdit, ReturnIsLeftToAnInputMethodThatIsComposing) {
  ExactTextEdit edit;
  const QSignalSpy spy(&edit, &ExactTextEdit::returnPressed);
  QInputMethodEvent composing(QStringLiteral("ni"), {});
  QCoreApplication::sendEvent(&edit, &composing);
  ASSERT_TRUE(edit.isComposing());
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(spy.count(), 0);
  QInputMethodEvent commit(QString(), {});
  commit.setCommitString(QStringLiteral("你"));
  QCoreApplication::sendEvent(&edit, &commit);
  EXPECT_FALSE(edit.isComposing());
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(spy.count(), 1);
}

// Holds the editor against a plain string through thousands of edits at random places, undo included.
TEST(ExactTextEdit, AgreesWithAPlainStringThroughRandomEdits) {
  std::mt19937 random(7);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const QStringList inserts = {QStringLiteral("a"),
                               QStringLiteral("\n"),
                               QStringLiteral("two words"),
                               QStringLiteral("x\u2029y\nz"),
                               QStringLiteral("\u2028\u00A0"),
                               longWord.left(ExactTextEdit::longestParagraph + 900)};
  ExactTextEdit edit;
  QString model;
  for (int step = 0; step < 1500; ++step) {
    // A caret beside a seam stands at two places of the document but one of the text; either will do.
    QTextCursor cursor = edit.textCursor();
    cursor.setPosition(below(edit.document()->characterCount()));
    QTextCursor start(edit.document());
    start.setPosition(cursor.position(), QTextCursor::KeepAnchor);
    edit.setTextCursor(start);
    edit.copy();
    const auto place = start.hasSelection() ? clipboardText().size() : 0;
    edit.setTextCursor(cursor);
    if (below(3) == 0 && place < model.size()) {
      QTest::keyClick(&edit, Qt::Key_Delete);
      model.remove(place, 1);
    } else if (model.size() < 100'000) {
      const QString& text = inserts[below(static_cast<int>(inserts.size()))];
      paste(edit, text);
      model.insert(place, text);
      if (below(4) == 0) {
        edit.undo();
        model.remove(place, text.size());
        edit.redo();
        model.insert(place, text);
      }
    } else {
      edit.selectAll();
      QTest::keyClick(&edit, Qt::Key_Backspace);
      model.clear();
    }
    ASSERT_EQ(edit.exactText().size(), model.size()) << "step " << step;
    ASSERT_TRUE(edit.exactText() == model) << "step " << step;
  }
}

} // namespace notlet
