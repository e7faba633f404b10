#include "platform/linux/QtFileChooser.h"

#include <QApplication>
#include <QFileDialog>
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

QFileDialog* makeDialog(const std::string& title, QFileDialog::AcceptMode mode) {
  auto* dialog = new QFileDialog(widgetInUse(), QString::fromStdString(title));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(mode);
  dialog->setMimeTypeFilters({QStringLiteral("application/json")});
  dialog->setDirectory(firstFolder());
  return dialog;
}

std::filesystem::path pathOf(const QString& file) {
  return QFile::encodeName(file).toStdString();
}

void show(QFileDialog* dialog, FileChooser::Answer answer) {
  QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, answer = std::move(answer)](int code) {
    if (code == QDialog::Accepted && !dialog->selectedFiles().isEmpty())
      answer(pathOf(dialog->selectedFiles().front()));
    else
      answer(std::nullopt);
  });
  dialog->open();
}

} // namespace

void QtFileChooser::chooseFileToOpen(const std::string& title, Answer answer) {
  QFileDialog* dialog = makeDialog(title, QFileDialog::AcceptOpen);
  dialog->setFileMode(QFileDialog::ExistingFile);
  show(dialog, std::move(answer));
}

void QtFileChooser::chooseFileToSave(const std::string& title, const std::string& proposedName,
                                     Answer answer) {
  QFileDialog* dialog = makeDialog(title, QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("json"));
  dialog->selectFile(QString::fromStdString(proposedName));
  show(dialog, std::move(answer));
}

} // namespace notlet
