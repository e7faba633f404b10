#include <gmock/gmock.h>

#include <QFile>
#include <QRandomGenerator>
#include <cmath>

#include "core/HashtagColor.h"
#include "widgets/CatalogParameters.h"
#include "widgets/MacHashtagPill.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

/// What is seen on grounds of the program, and how well it must be made out on each of them.
struct Seen {
  std::string name;
  QColor color;
  std::vector<QColor> grounds;
  double wanted;
};

double weakest(const QColor& color, const std::vector<QColor>& grounds) {
  double least = 21;
  for (const QColor& ground : grounds)
    least = std::min(least, contrastRatio(color, ground));
  return least;
}

void addChips(std::vector<Seen>& all, const QPalette& palette) {
  const auto add = [&](const char* tag, std::optional<bool> isSelected, bool isHovered, bool isPressed) {
    PillContent chip{QLatin1String(tag), isSelected};
    chip.isHovered = isHovered;
    chip.isPressed = isPressed;
    const std::string state = !isSelected ? "plain" : *isSelected ? "selected" : "unselected";
    all.push_back({std::string("chip #") + tag + ' ' + state + (isHovered ? " hovered" : "") +
                       (isPressed ? " pressed" : ""),
                   PillPainter::textColor(chip, palette),
                   {PillPainter::fillColor(chip, palette)},
                   4.5});
  };
  // The two tags have the two accents.
  for (const char* tag : {"a", "b"})
    for (const auto isSelected : {std::optional<bool>(), std::optional(true), std::optional(false)})
      for (const auto& [isHovered, isPressed] : {std::pair(false, false), {true, false}, {true, true}})
        add(tag, isSelected, isHovered, isPressed);
}

/// Every pair of foreground and grounds that a screen shows.
std::vector<Seen> everythingSeen(const QPalette& palette) {
  const auto of = [&palette](QPalette::ColorRole role) { return palette.color(role); };
  const QColor background = of(ThemeRole::background);
  const QColor surface = of(ThemeRole::surface);
  const QColor hover = of(ThemeRole::hover);
  const QColor body = of(ThemeRole::primaryText);
  const QColor accent = of(ThemeRole::accent);
  const QColor row = rowUnderPointer(palette);
  const QColor selectedSection = mixed(background, accent, selectedTint);
  std::vector<Seen> all = {
      {"body", body, {background, surface, hover, of(ThemeRole::pressed), row}, 4.5},
      {"selected section's symbol", body, {selectedSection}, 3.0},
      {"text of Qt's own controls", of(QPalette::Text), {surface, of(QPalette::AlternateBase)}, 4.5},
      {"button text", of(QPalette::ButtonText), {of(QPalette::Button)}, 4.5},
      {"tooltip", of(QPalette::ToolTipText), {of(QPalette::ToolTipBase)}, 4.5},
      {"secondary text", of(ThemeRole::secondaryText), {background, surface, row}, 4.5},
      {"placeholder", of(ThemeRole::placeholder), {background, surface}, 4.5},
      {"selection", of(QPalette::HighlightedText), {of(QPalette::Highlight)}, 4.5},
      {"primary button",
       of(ThemeRole::onAccent),
       {accent, touchedGround(accent, of(ThemeRole::onAccent), 0.1),
        touchedGround(accent, of(ThemeRole::onAccent), 0.2)},
       4.5},
      {"destructive", destructiveColor(palette), {background, surface, hover}, 4.5},
      {"microphone that hears something", destructiveColor(palette), {loudness(palette)}, 3.0},
      {"focus ring", of(ThemeRole::focusRing), {background, surface, hover, selectedSection}, 3.0},
      {"outline of fields", controlOutline(palette), {background, surface}, 3.0},
      {"quiet focus ring", quietFocusRing(palette), {background, surface}, 3.0},
      {"scroll bar", scrollThumb(palette), {background, surface}, 3.0},
  };
  addChips(all, palette);
  return all;
}

/// What stands back while it is disabled: its name, both colours, and what they stand on.
struct Disabled {
  std::string name;
  QColor enabled;
  QColor disabled;
  QColor enabledGround;
  QColor disabledGround;
};

std::vector<Disabled> everythingDisabled(QPalette palette) {
  std::vector<Disabled> all;
  const auto color = [&palette](QPalette::ColorGroup group, QPalette::ColorRole role) {
    return palette.color(group, role);
  };
  const auto add = [&](const std::string& name, const QColor& enabled, const QColor& disabled) {
    for (const auto ground : {ThemeRole::background, ThemeRole::surface})
      all.push_back({name, enabled, disabled, palette.color(ground), palette.color(ground)});
  };
  const auto addRole = [&](const std::string& name, QPalette::ColorRole role) {
    add(name, color(QPalette::Active, role), color(QPalette::Disabled, role));
  };
  addRole("body", ThemeRole::primaryText);
  addRole("text", QPalette::Text);
  addRole("button text", QPalette::ButtonText);
  addRole("secondary", ThemeRole::secondaryText);
  addRole("tinted symbol", ThemeRole::focusRing);
  all.push_back({"primary button", color(QPalette::Active, ThemeRole::onAccent),
                 color(QPalette::Disabled, ThemeRole::onAccent), color(QPalette::Active, ThemeRole::accent),
                 color(QPalette::Disabled, ThemeRole::accent)});
  const QColor destructive = destructiveColor(palette);
  palette.setCurrentColorGroup(QPalette::Disabled);
  const QColor fadedDestructive = destructiveColor(palette);
  palette.setCurrentColorGroup(QPalette::Active);
  add("destructive", destructive, fadedDestructive);
  return all;
}

QPalette desktopPalette(QRgb window, QRgb text, QRgb base, QRgb highlight) {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::Highlight, highlight);
  return palette;
}

void expectAllLegible(const QPalette& palette) {
  for (const auto& [name, color, grounds, wanted] : everythingSeen(palette))
    EXPECT_GE(weakest(color, grounds), wanted) << name;
  for (const auto& [name, enabled, disabled, enabledGround, disabledGround] : everythingDisabled(palette)) {
    const double contrast = contrastRatio(disabled, disabledGround);
    EXPECT_GE(contrast, 2.0) << "disabled " << name;
    EXPECT_LT(contrast, contrastRatio(enabled, enabledGround)) << "disabled " << name;
  }
}

class ThemeContrastTest : public testing::TestWithParam<AppTheme> {};

TEST_P(ThemeContrastTest, EverythingSeenCanBeMadeOut) {
  expectAllLegible(themePalette(GetParam(), QPalette()));
}

TEST_P(ThemeContrastTest, OnlyWhatCannotBeReadIsMovedAndItKeepsItsHue) {
  const QPalette palette = themePalette(GetParam(), QPalette());
  const std::vector<QColor> grounds = {palette.color(ThemeRole::background),
                                       palette.color(ThemeRole::surface), rowUnderPointer(palette)};
  const QColor given = colorFromHex(GetParam().secondaryHex);
  const QColor shown = palette.color(ThemeRole::secondaryText);
  if (weakest(given, grounds) >= 4.5) {
    EXPECT_EQ(shown, given);
  } else {
    EXPECT_LT(weakest(shown, grounds), 4.7) << "moved further than needed";
    const double turned = std::abs(given.hueF() - shown.hueF());
    EXPECT_LT(std::min(turned, 1 - turned), 0.02);
  }
}

INSTANTIATE_TEST_SUITE_P(Catalog, ThemeContrastTest, everyTheme(), themeTestName);

TEST(ThemeContrastTest, TheDesktopsColoursAreTreatedAlike) {
  AppTheme theme = AppThemeCatalog::themeWithID("solarized-light");
  theme.followsSystem = true;
  expectAllLegible(themePalette(theme, desktopPalette(0xEFF0F1, 0x232629, 0xFFFFFF, 0x3DAEE9)));
  expectAllLegible(themePalette(theme, desktopPalette(0x31363B, 0xEFF0F1, 0x232629, 0x3DAEE9)));
  expectAllLegible(themePalette(theme, desktopPalette(0xFFFFFF, 0x000000, 0xFFFFFF, 0x000000)));
  expectAllLegible(themePalette(theme, desktopPalette(0x2C2C2C, 0xEEEEEE, 0x353535, 0x86A50F)));
}

AppTheme randomTheme(QRandomGenerator& random) {
  const auto code = [&random] { return Rgb::fromHex(std::to_string(random.bounded(1000000))).hexRGB(); };
  AppTheme theme;
  theme.backgroundHex = code();
  // Surfaces lie near their background; else no text at all could be read on both.
  const QColor background = colorFromHex(theme.backgroundHex);
  const QColor surface = mixed(background, random.bounded(2) == 0 ? Qt::white : Qt::black, 0.1);
  theme.surfaceHex = surface.name().mid(1).toStdString();
  theme.primaryHex = code();
  theme.secondaryHex = code();
  theme.accentHex = code();
  theme.alternateAccentHex = code();
  return theme;
}

TEST(ThemeContrastTest, AnyColoursSomebodyPicksAreMadeLegible) {
  QRandomGenerator random(2026);
  int checked = 0;
  for (int round = 0; round < 300; ++round) {
    const AppTheme theme = randomTheme(random);
    const std::vector grounds = {colorFromHex(theme.backgroundHex), colorFromHex(theme.surfaceHex)};
    // On grounds of middling brightness not even black or white is read well on both.
    if (std::max(weakest(Qt::black, grounds), weakest(Qt::white, grounds)) < 5.0)
      continue;
    ++checked;
    SCOPED_TRACE(theme.backgroundHex + ' ' + theme.surfaceHex + ' ' + theme.primaryHex + ' ' +
                 theme.secondaryHex + ' ' + theme.accentHex + ' ' + theme.alternateAccentHex);
    for (const auto& [name, color, under, wanted] : everythingSeen(themePalette(theme, QPalette())))
      EXPECT_GE(weakest(color, under), wanted) << name;
  }
  EXPECT_GT(checked, 150);
}

TEST(ThemeContrastTest, LegibleMovesNoFurtherThanAsked) {
  const QColor grey(120, 120, 120);
  EXPECT_EQ(legible(Qt::red, std::array{QColor(Qt::black)}, 4.5), QColor(Qt::red)) << "5.3:1 as it is";
  const QColor moved = legible(grey, std::array{QColor(Qt::white)}, 7.0);
  EXPECT_LT(moved.lightness(), grey.lightness());
  EXPECT_NEAR(contrastRatio(moved, Qt::white), 7.0, 0.15);
  // Between black and white only a grey in the middle is seen on both.
  const QColor between = legible(Qt::white, std::array{QColor(Qt::black), QColor(Qt::white)}, 4.5);
  EXPECT_GE(weakest(between, {Qt::black, Qt::white}), 4.5);
  const QColor best = legible(grey, std::array{grey}, 21);
  EXPECT_EQ(best, strongestOn(grey)) << "the best there is";
}

// The table of docs/themes.md.

/// One decimal, never rounded up over what is asked.
QString figure(double contrast) {
  return QString::number(std::floor(contrast * 10) / 10, 'f', 1);
}

QString change(double given, double shown) {
  const QString before = figure(given);
  const QString after = figure(shown);
  return before == after ? after : before + QStringLiteral(" → **") + after + QStringLiteral("**");
}

QString chip(const char* tag, const QPalette& palette) {
  const PillContent content{QLatin1String(tag)};
  const QColor fill = PillPainter::fillColor(content, palette);
  const Rgb plain = HashtagColor::contrastingText(Rgb::fromHex(fill.name().toStdString()));
  return change(contrastRatio(QColor(plain.red, plain.green, plain.blue), fill),
                contrastRatio(PillPainter::textColor(content, palette), fill));
}

QString rowOf(const AppTheme& theme) {
  const QPalette palette = themePalette(theme, QPalette());
  const std::vector grounds = {palette.color(ThemeRole::background), palette.color(ThemeRole::surface)};
  const auto figureOf = [&](const QColor& color) { return figure(weakest(color, grounds)); };
  const auto changeOf = [&](const std::string& given, QPalette::ColorRole role) {
    return change(weakest(colorFromHex(given), grounds), weakest(palette.color(role), grounds));
  };
  const QColor body = palette.color(ThemeRole::primaryText);
  const QStringList cells = {QString::fromStdString(theme.name),
                             figure(contrastRatio(body, grounds[0])),
                             figure(contrastRatio(body, grounds[1])),
                             changeOf(theme.secondaryHex, ThemeRole::secondaryText),
                             figureOf(palette.color(ThemeRole::placeholder)),
                             figureOf(palette.color(QPalette::Disabled, ThemeRole::primaryText)),
                             changeOf(theme.accentHex, ThemeRole::focusRing),
                             chip("a", palette),
                             chip("b", palette),
                             figureOf(destructiveColor(palette))};
  return QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
}

QString table() {
  QString text =
      QStringLiteral("| Theme | Body on background | Body on surface | Secondary text | Placeholder | "
                     "Disabled | Focus ring | Chip, accent | Chip, alternate | Destructive |\n"
                     "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
  for (const AppTheme& theme : AppThemeCatalog::themes())
    text += rowOf(theme);
  return text;
}

TEST(ThemeContrastTest, TheDocumentShowsTheFiguresOfToday) {
  QFile document(QStringLiteral(NOTLET_DOCS_DIR "/themes.md"));
  ASSERT_TRUE(document.open(QIODevice::ReadOnly));
  const QString text = QString::fromUtf8(document.readAll());
  document.close();
  const QString begin = QStringLiteral("<!-- figures -->\n");
  const QString end = QStringLiteral("<!-- end of figures -->\n");
  const qsizetype from = text.indexOf(begin) + begin.size();
  const qsizetype to = text.indexOf(end);
  ASSERT_GE(from, begin.size());
  ASSERT_GE(to, from);
  const QString current = text.left(from) + table() + text.mid(to);
  if (qEnvironmentVariableIsSet("NOTLET_WRITE_FIGURES") && current != text) {
    ASSERT_TRUE(document.open(QIODevice::WriteOnly));
    ASSERT_EQ(document.write(current.toUtf8()), current.toUtf8().size());
    return;
  }
  EXPECT_TRUE(current == text) << "docs/themes.md tells how to write the table anew";
}

} // namespace
} // namespace notlet
