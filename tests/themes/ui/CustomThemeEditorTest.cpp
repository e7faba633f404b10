#include "themes/ui/CustomThemeEditor.h"

#include <gtest/gtest.h>

#include <QColorDialog>
#include <QTest>

#include "themes/AppThemeCatalog.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

class CustomThemeEditorTest : public testing::Test {
 protected:
  CustomThemeEditorTest() {
    editor->setAttribute(Qt::WA_DeleteOnClose, false);
    editor->open();
  }

  static AppTheme theme() {
    AppTheme made = AppThemeCatalog::themeWithID("dracula");
    made.id = "custom-A";
    return made;
  }
  template<typename Widget>
  [[nodiscard]] Widget* named(const QString& name) const {
    for (auto* widget : editor->findChildren<Widget*>()) {
      if (widget->accessibleName() == name)
        return widget;
    }
    return nullptr;
  }
  [[nodiscard]] TextButton* button(const QString& text) const {
    for (auto* found : editor->findChildren<TextButton*>()) {
      if (found->text() == text)
        return found;
    }
    return nullptr;
  }
  [[nodiscard]] QStringList shownHints() const {
    QStringList hints;
    for (const auto* label : editor->findChildren<QLabel*>()) {
      if (label->isVisible() && label->wordWrap())
        hints.append(label->text());
    }
    return hints;
  }

  std::vector<AppTheme> saved;
  std::unique_ptr<CustomThemeEditor> editor =
      std::make_unique<CustomThemeEditor>(theme(), [this](const AppTheme& made) { saved.push_back(made); });
};

TEST_F(CustomThemeEditorTest, EveryFieldReachesTheSavedTheme) {
  named<QLineEdit>(QStringLiteral("Name"))->setText(QStringLiteral("Tea"));
  editor->findChild<QCheckBox*>()->click();
  AppTheme expected = theme();
  expected.name = "Tea";
  expected.category = "Custom";
  expected.isDark = false;
  const std::array names{"Background",     "Surface", "Primary text",
                         "Secondary text", "Accent",  "Alternate accent"};
  for (std::size_t index = 0; index < names.size(); ++index) {
    const QString name = QString::fromUtf8(names.at(index));
    const QString code = QStringLiteral("00000%1").arg(index);
    auto* line = named<QLineEdit>(name + QStringLiteral(" code"));
    ASSERT_NE(line, nullptr) << names.at(index);
    line->setText(code);
    EXPECT_EQ(named<ColorWell>(name)->color(), colorFromHex(code.toStdString()));
    codeOf(expected, allThemeColors.at(index)) = code.toStdString();
  }
  button(QStringLiteral("Save"))->click();
  EXPECT_EQ(saved, std::vector{expected});
  EXPECT_FALSE(editor->isVisible());
}

TEST_F(CustomThemeEditorTest, APickedColourIsTyped) {
  named<ColorWell>(QStringLiteral("Accent"))->click();
  auto* picker = editor->findChild<QColorDialog*>();
  ASSERT_NE(picker, nullptr);
  EXPECT_EQ(picker->currentColor(), colorFromHex(theme().accentHex));
  EXPECT_FALSE(picker->testOption(QColorDialog::ShowAlphaChannel));
  picker->setCurrentColor(QColor(1, 2, 255));
  picker->accept();
  EXPECT_EQ(named<QLineEdit>(QStringLiteral("Accent code"))->text(), QStringLiteral("0102FF"));
}

TEST_F(CustomThemeEditorTest, NothingIsSavedWithoutANameOrWithHalfACode) {
  auto* name = named<QLineEdit>(QStringLiteral("Name"));
  name->setText(QStringLiteral("   "));
  EXPECT_FALSE(button(QStringLiteral("Save"))->isEnabled());
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_TRUE(editor->isVisible());
  name->setText(QStringLiteral("Tea"));
  named<QLineEdit>(QStringLiteral("Accent code"))->setText(QStringLiteral("12"));
  EXPECT_FALSE(button(QStringLiteral("Save"))->isEnabled());
  EXPECT_EQ(shownHints().join(QChar(u' ')),
            QStringLiteral("A color code has three or six digits from 0 to F."));
  button(QStringLiteral("Cancel"))->click();
  EXPECT_TRUE(saved.empty());
}

TEST_F(CustomThemeEditorTest, FaintTextIsPointedOut) {
  EXPECT_TRUE(shownHints().isEmpty());
  for (const auto& [field, code] : {std::pair("Background code", "FFFFFF"),
                                    {"Surface code", "FFFFFF"},
                                    {"Primary text code", "777777"},
                                    {"Secondary text code", "000"}})
    named<QLineEdit>(QLatin1String(field))->setText(QLatin1String(code));
  EXPECT_EQ(shownHints().join(QChar(u' ')),
            QStringLiteral("Hard to read on the background, below 4.5:1: primary text (4.4:1). Notlet shows "
                           "primary text stronger than chosen."));
  EXPECT_TRUE(button(QStringLiteral("Save"))->isEnabled());
  // Cards are grounds of texts, too.
  named<QLineEdit>(QStringLiteral("Primary text code"))->setText(QStringLiteral("727272"));
  named<QLineEdit>(QStringLiteral("Surface code"))->setText(QStringLiteral("EEEEEE"));
  EXPECT_EQ(shownHints().join(QChar(u' ')),
            QStringLiteral("Notlet shows primary text stronger than chosen."));
}

} // namespace
} // namespace notlet
