#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QWidget>
#include <functional>

#include "platform/DesktopCapabilities.h"
#include "shortcuts/ShortcutSettingsDraft.h"
#include "widgets/TextButton.h"

namespace notlet {

class FormCard;

/// The form in which the shortcuts are edited. Return saves.
class ShortcutForm : public QWidget {
  Q_OBJECT

 public:
  using Capabilities = std::function<DesktopCapabilities()>;

  /// The draft must outlive the form. `location` is the path of the shortcut file, `capabilities` is asked
  /// whenever the form comes on screen.
  ShortcutForm(ShortcutSettingsDraft& draft, const QString& location, Capabilities capabilities,
               QWidget* parent = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* makeCards();
  [[nodiscard]] FormCard* makeKeyCard(const QString& title, std::initializer_list<ShortcutField> fields);
  [[nodiscard]] FormCard* makeDesktopCard();
  [[nodiscard]] QWidget* makeFileCard(const QString& location);
  [[nodiscard]] QWidget* makeButtons();
  [[nodiscard]] TextButton* makeButton(const QString& text, TextButton::Look look,
                                       void (ShortcutSettingsDraft::*action)());
  void describeDesktop();
  void render();

  ShortcutSettingsDraft& m_draft;
  Capabilities m_capabilities;
  QLabel* m_desktop;
  QLabel* m_unsaved;
  QBoxLayout* m_buttons;
};

} // namespace notlet
