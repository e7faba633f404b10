#include "platform/linux/PortalAppearance.h"

#include <gmock/gmock.h>

#include <QGuiApplication>
#include <QPalette>
#include <QSignalSpy>
#include <QTest>

#include "support/FakePortal.h"
#include "support/PrivateBus.h"

namespace notlet {

namespace {

const QString common = QStringLiteral("org.freedesktop.appearance");
const QString scheme = QStringLiteral("color-scheme");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString plasma = QStringLiteral("org.kde.kdeglobals.KDE");

void setPaletteDark(bool isDark) {
  QGuiApplication::setPalette(
      isDark ? QPalette(Qt::white, Qt::black, Qt::black, Qt::black, Qt::black, Qt::white, Qt::black)
             : QPalette(Qt::black, Qt::white, Qt::white, Qt::white, Qt::white, Qt::black, Qt::white));
}

class PortalAppearanceTest : public testing::Test {
 protected:
  ~PortalAppearanceTest() override { QGuiApplication::setPalette(QPalette()); }

  [[nodiscard]] bool settle() const { return FakePortal::settle(source()); }
  /// Changes a setting and waits until the program has heard of it, has asked, and has the answer.
  [[nodiscard]] bool change(const QString& group, const QString& key, const QVariant& value) {
    portal.changeSetting(group, key, value);
    return settle() && settle();
  }

  PrivateBus bus;
  QDBusConnection desktop = bus.connect();
  BusSource source = bus.source();
  FakePortal portal{desktop};
  PortalAppearance appearance{source};
  QSignalSpy changes{&appearance, &PortalAppearance::changed};
  QSignalSpy motionChanges{&appearance, &PortalAppearance::reducesMotionChanged};
};

} // namespace

TEST_F(PortalAppearanceTest, TheDesktopsPreferenceGoesBeforeThePalette) {
  const struct {
    QVariant scheme;
    bool isPaletteDark;
    bool isDark;
  } cases[] = {
      {1U, false, true},  {2U, true, false},
      {0U, false, false}, {0U, true, true},
      {7U, true, true},   {{}, true, true},
      {{}, false, false}, {QStringLiteral("nonsense"), true, true},
      {1, false, true},   {QByteArray("x"), false, false},
  };
  for (const auto& [value, isPaletteDark, isDark] : cases) {
    portal.settings.clear();
    if (value.isValid())
      portal.settings[common][scheme] = value;
    setPaletteDark(isPaletteDark);
    PortalAppearance asking(source);
    EXPECT_EQ(asking.isDark(), isPaletteDark) << "before the desktop has answered";
    asking.start();
    ASSERT_TRUE(settle());
    EXPECT_EQ(asking.isDark(), isDark) << value.toString().toStdString() << isPaletteDark;
  }
}

TEST_F(PortalAppearanceTest, FollowsTheDesktop) {
  setPaletteDark(false);
  appearance.start();
  ASSERT_TRUE(settle());
  const struct {
    QString group;
    QVariant value;
    bool isDark;
    int changes;
  } steps[] = {
      {common, 1U, true, 1},  {common, 1U, true, 1},  {gnome, 2U, true, 1},
      {common, 0U, false, 2}, {common, 2U, false, 2}, {common, QByteArray("?"), false, 2},
      {common, 1U, true, 3},
  };
  for (const auto& [group, value, isDark, count] : steps) {
    ASSERT_TRUE(change(group, scheme, value));
    EXPECT_EQ(appearance.isDark(), isDark);
    EXPECT_EQ(changes.count(), count);
  }
}

TEST_F(PortalAppearanceTest, FollowsThePaletteWhileTheDesktopHasNoPreference) {
  setPaletteDark(false);
  setPaletteDark(true);
  EXPECT_TRUE(appearance.isDark());
  EXPECT_EQ(changes.count(), 1);
  portal.settings[common][scheme] = 2U;
  appearance.start();
  ASSERT_TRUE(settle());
  EXPECT_FALSE(appearance.isDark());
  setPaletteDark(false);
  setPaletteDark(true);
  EXPECT_FALSE(appearance.isDark());
  EXPECT_EQ(changes.count(), 2);
}

TEST_F(PortalAppearanceTest, TheFirstOfSeveralDesktopsCounts) {
  setPaletteDark(false);
  portal.settings = {{common, {{scheme, 1U}}}};
  portal.moreSettings = {{common, {{scheme, 2U}, {QStringLiteral("reduced-motion"), 1U}}}};
  appearance.start();
  ASSERT_TRUE(settle());
  EXPECT_TRUE(appearance.isDark());
  EXPECT_TRUE(appearance.reducesMotion());
  portal.emitSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                    QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"),
                    {common, scheme, QVariant::fromValue(QDBusVariant(2U))});
  ASSERT_TRUE(settle() && settle());
  EXPECT_TRUE(appearance.isDark());
  EXPECT_EQ(changes.count(), 1);
}

TEST_F(PortalAppearanceTest, MotionStopsHoweverTheDesktopSaysIt) {
  const QString animations = QStringLiteral("enable-animations");
  const QString factor = QStringLiteral("AnimationDurationFactor");
  const QString reduced = QStringLiteral("reduced-motion");
  const struct {
    QString group;
    QString key;
    QVariant value;
    bool reduces;
  } cases[] = {
      {common, reduced, 1U, true},
      {common, reduced, 0U, false},
      {gnome, animations, false, true},
      {gnome, animations, true, false},
      {plasma, factor, QStringLiteral("0"), true},
      {plasma, factor, QStringLiteral("0.5"), false},
      {plasma, factor, QString(), false},
      {plasma, factor, QStringLiteral("fast"), false},
      {plasma, factor, 0.0, true},
  };
  for (const auto& [group, key, value, reduces] : cases) {
    portal.settings = {{group, {{key, value}}}};
    PortalAppearance asking(source);
    asking.start();
    ASSERT_TRUE(settle());
    EXPECT_EQ(asking.reducesMotion(), reduces) << key.toStdString() << value.toString().toStdString();
  }
  appearance.start();
  ASSERT_TRUE(change(gnome, animations, false));
  EXPECT_TRUE(appearance.reducesMotion());
  EXPECT_EQ(motionChanges.count(), 1);
}

TEST_F(PortalAppearanceTest, ARestartedPortalIsAskedAgain) {
  setPaletteDark(false);
  appearance.start();
  ASSERT_TRUE(settle());
  portal.vanish();
  portal.settings[common][scheme] = 1U;
  portal.appear();
  EXPECT_TRUE(changes.wait());
  EXPECT_TRUE(appearance.isDark());
}

// A portal without settings, one that talks nonsense, no portal, no bus.
TEST_F(PortalAppearanceTest, ThePaletteIsAlwaysThere) {
  setPaletteDark(true);
  portal.unknownMethods = {QStringLiteral("ReadAll")};
  appearance.start();
  ASSERT_TRUE(settle());
  portal.emitSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                    QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"),
                    {1, 2, 3});
  ASSERT_TRUE(settle());
  portal.vanish();
  PortalAppearance alone(source);
  alone.start();
  bus.die();
  PortalAppearance lost(source);
  lost.start();
  ASSERT_TRUE(QTest::qWaitFor([this] { return !source().isConnected(); }));
  for (const PortalAppearance* each : {&appearance, &alone, &lost})
    EXPECT_TRUE(each->isDark());
}

} // namespace notlet
