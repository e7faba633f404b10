#include "platform/linux/QtFileChooser.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QStandardPaths>

namespace notlet {

namespace {

/// The dialog takes on the looks of the widget in use, and goes with its window.
QWidget* widgetInUse() {
  QWidget* focused = QApplication::focusWidget();
  return focused != nullptr ? focused : QApplication::activeWindow();
}

QString firstFolder() {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

/// The stock dialog looks at what is marked in its list first, which need not be what was typed: a path may
/// make it enter a folder and forget the path.
class FileDialog final : public QFileDialog {
 public:
  using QFileDialog::QFileDialog;

  /// The file that was typed, else what is marked.
  [[nodiscard]] QString chosenFile() const {
    const QStringList marked = selectedFiles();
    return !m_typed.isEmpty() || marked.isEmpty() ? m_typed : marked.front();
  }

 protected:
  void accept() override {
    const QFileInfo typed(typedFile());
    if (acceptMode() != AcceptOpen || !typed.isFile())
      return QFileDialog::accept();
    m_typed = typed.absoluteFilePath();
    done(Accepted);
  }

 private:
  /// The desktop's own dialog has no such line.
  [[nodiscard]] QString typedFile() const {
    const auto* line = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    return line == nullptr || line->text().isEmpty() ? QString() : directory().filePath(line->text());
  }

  QString m_typed;
};

FileDialog* makeDialog(const std::string& title, QFileDialog::AcceptMode mode) {
  auto* dialog = new FileDialog(widgetInUse(), QString::fromStdString(title));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(mode);
  dialog->setMimeTypeFilters({QStringLiteral("application/json")});
  dialog->setDirectory(firstFolder());
  return dialog;
}

std::filesystem::path pathOf(const QString& file) {
  return QFile::encodeName(file).toStdString();
}

void show(FileDialog* dialog, FileChooser::Answer answer) {
  QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, answer = std::move(answer)](int code) {
    if (const QString file = dialog->chosenFile(); code == QDialog::Accepted && !file.isEmpty())
      answer(pathOf(file));
    else
      answer(std::nullopt);
  });
  dialog->open();
}

} // namespace

void QtFileChooser::chooseFileToOpen(const std::string& title, Answer answer) {
  FileDialog* dialog = makeDialog(title, QFileDialog::AcceptOpen);
  dialog->setFileMode(QFileDialog::ExistingFile);
  show(dialog, std::move(answer));
}

void QtFileChooser::chooseFileToSave(const std::string& title, const std::string& proposedName,
                                     Answer answer) {
  FileDialog* dialog = makeDialog(title, QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("json"));
  dialog->selectFile(QString::fromStdString(proposedName));
  show(dialog, std::move(answer));
}

} // namespace notlet
