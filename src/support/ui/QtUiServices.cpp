#include "support/ui/QtUiServices.h"

#include <algorithm>

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QInputDialog>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

#include "support/ui/SelectFolderDialog.h"

namespace ombrelle {

namespace {

// Results of the buttons that MsgResult does not name.
constexpr int kAbort = 3;
constexpr int kRetry = 4;
constexpr int kIgnore = 5;

QWidget* DialogParent() { return QApplication::activeWindow(); }

QString CaptionOr(const QString& title) { return title.isEmpty() ? UiServices::AppTitle() : title; }

QMessageBox::StandardButtons ButtonsFor(int style) {
  switch (style & 0x0F) {
    case 1:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case 2:
      return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    case 3:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case 4:
      return QMessageBox::Yes | QMessageBox::No;
    case 5:
      return QMessageBox::Retry | QMessageBox::Cancel;
    default:
      return QMessageBox::Ok;
  }
}

QMessageBox::Icon IconFor(int style) {
  switch (style & 0x70) {
    case 16:
      return QMessageBox::Critical;
    case MsgStyle::Question:
      return QMessageBox::Question;
    case MsgStyle::Exclamation:
      return QMessageBox::Warning;
    case MsgStyle::Information:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

// The buttons of a set in the order they are numbered for the default button.
QList<QMessageBox::StandardButton> OrderedButtons(QMessageBox::StandardButtons buttons) {
  static const QMessageBox::StandardButton order[] = {
      QMessageBox::Ok,  QMessageBox::Abort, QMessageBox::Retry, QMessageBox::Ignore,
      QMessageBox::Yes, QMessageBox::No,    QMessageBox::Cancel};
  QList<QMessageBox::StandardButton> result;
  for (QMessageBox::StandardButton button : order)
    if (buttons.testFlag(button)) result.append(button);
  return result;
}

int ResultOfButton(QMessageBox::StandardButton button) {
  switch (button) {
    case QMessageBox::Ok:
      return MsgResult::Ok;
    case QMessageBox::Cancel:
      return MsgResult::Cancel;
    case QMessageBox::Abort:
      return kAbort;
    case QMessageBox::Retry:
      return kRetry;
    case QMessageBox::Ignore:
      return kIgnore;
    case QMessageBox::Yes:
      return MsgResult::Yes;
    case QMessageBox::No:
      return MsgResult::No;
    default:
      return 0;
  }
}

}  // namespace

std::unique_ptr<QMessageBox> QtUiServices::CreateMessageBox(const QString& text, int style,
                                                            const QString& title, QWidget* parent) {
  const QMessageBox::StandardButtons buttons = ButtonsFor(style);
  auto box = std::make_unique<QMessageBox>(IconFor(style), CaptionOr(title), text, buttons, parent);
  box->setTextFormat(Qt::PlainText);
  const QList<QMessageBox::StandardButton> ordered = OrderedButtons(buttons);
  const int defaultIndex = (style & 0x300) >> 8;  // 0 first, 1 second, 2 third button
  if (defaultIndex < ordered.size()) box->setDefaultButton(ordered[defaultIndex]);
  return box;
}

int QtUiServices::ResultOf(const QMessageBox& box) {
  const int clicked = ResultOfButton(box.standardButton(box.clickedButton()));
  if (clicked != 0) return clicked;
  // Closed without a button: the way out that declines.
  const QMessageBox::StandardButtons buttons = box.standardButtons();
  if (buttons.testFlag(QMessageBox::Cancel)) return MsgResult::Cancel;
  if (buttons.testFlag(QMessageBox::No)) return MsgResult::No;
  return MsgResult::Ok;
}

int QtUiServices::MsgBox(const QString& text, int style, const QString& title) {
  std::unique_ptr<QMessageBox> box = CreateMessageBox(text, style, title, DialogParent());
  box->exec();
  return ResultOf(*box);
}

std::unique_ptr<QDialog> QtUiServices::CreateTextBox(const QString& title, const QString& text,
                                                     QWidget* parent) {
  auto dialog = std::make_unique<QDialog>(parent);
  dialog->setWindowTitle(CaptionOr(title));
  dialog->setModal(true);

  QString body = text;
  body.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  if (body.endsWith(QLatin1Char('\n'))) body.chop(1);

  auto* view = new QPlainTextEdit(dialog.get());
  view->setObjectName(QStringLiteral("txtText"));
  view->setReadOnly(true);
  view->setLineWrapMode(QPlainTextEdit::NoWrap);
  // Tab columns were expanded into blanks; only a fixed-pitch font keeps them
  // lined up.
  view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  view->setPlainText(body);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, dialog.get());
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog.get(), &QDialog::accept);

  auto* layout = new QVBoxLayout(dialog.get());
  layout->addWidget(view);
  layout->addWidget(buttons);

  // Large enough for the whole text where the screen allows.
  const QFontMetrics metrics(view->font());
  int width = 0;
  const QStringList lines = body.split(QLatin1Char('\n'));
  for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line));
  QSize size(width + 60, metrics.lineSpacing() * (static_cast<int>(lines.size()) + 2) + 80);
  if (const QScreen* screen = QGuiApplication::primaryScreen())
    size = size.boundedTo(screen->availableSize() * 9 / 10);
  dialog->resize(size);
  return dialog;
}

void QtUiServices::TextBox(const QString& title, const QString& text) {
  CreateTextBox(title, text, DialogParent())->exec();
}

QString QtUiServices::InputBox(const QString& prompt, const QString& title,
                               const QString& defaultText) {
  QInputDialog dialog(DialogParent());
  dialog.setObjectName(QStringLiteral("InputForm"));
  dialog.setWindowTitle(CaptionOr(title));
  dialog.setLabelText(prompt);
  dialog.setTextValue(defaultText);
  return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

std::unique_ptr<QFileDialog> QtUiServices::CreateFileDialog(const FileDialogRequest& request,
                                                            QFileDialog::AcceptMode mode,
                                                            QWidget* parent) {
  auto dialog = std::make_unique<QFileDialog>(parent, CaptionOr(request.title), request.folder);
  dialog->setAcceptMode(mode);
  dialog->setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                      : QFileDialog::ExistingFile);
  if (!request.filter.isEmpty()) {
    const QStringList filters = request.filter.split(QStringLiteral(";;"), Qt::SkipEmptyParts);
    dialog->setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
      dialog->selectNameFilter(filters.at(request.filterIndex - 1));
  }
  if (!request.defaultExtension.isEmpty()) dialog->setDefaultSuffix(request.defaultExtension);
  dialog->setOption(QFileDialog::DontConfirmOverwrite, !request.overwritePrompt);
  if (!request.fileName.isEmpty()) dialog->selectFile(request.fileName);
  return dialog;
}

QString QtUiServices::SaveFileDialog(const FileDialogRequest& request) {
  std::unique_ptr<QFileDialog> dialog =
      CreateFileDialog(request, QFileDialog::AcceptSave, DialogParent());
  if (dialog->exec() != QDialog::Accepted) return {};
  if (request.chosenFilterIndex) {
    const int chosen = dialog->nameFilters().indexOf(dialog->selectedNameFilter());
    if (chosen >= 0) *request.chosenFilterIndex = chosen + 1;
  }
  return dialog->selectedFiles().value(0);
}

QString QtUiServices::OpenFileDialog(const FileDialogRequest& request) {
  std::unique_ptr<QFileDialog> dialog =
      CreateFileDialog(request, QFileDialog::AcceptOpen, DialogParent());
  if (dialog->exec() != QDialog::Accepted) return {};
  return dialog->selectedFiles().value(0);
}

QString QtUiServices::BrowseFolder(const QString& title, const QString& folder) {
  return QFileDialog::getExistingDirectory(DialogParent(), CaptionOr(title), folder);
}

QString QtUiServices::ChooseFolder(const FolderRequest& request) {
  SelectFolderDialog dialog(request, DialogParent());
  return dialog.exec() == QDialog::Accepted ? dialog.Folder() : QString();
}

bool QtUiServices::ShellOpen(const QString& pathOrUrl) {
  const QUrl url = QUrl::fromUserInput(pathOrUrl, QDir::currentPath(), QUrl::AssumeLocalFile);
  return url.isValid() && QDesktopServices::openUrl(url);
}

void QtUiServices::SetClipboardText(const QString& text) {
  QGuiApplication::clipboard()->setText(text);
}

QMimeData* QtUiServices::CreatePictureData(const QImage& image, const QByteArray& emf) {
  auto* data = new QMimeData;
  data->setImageData(image);
  if (!emf.isEmpty()) data->setData(QStringLiteral("image/x-emf"), emf);
  return data;
}

void QtUiServices::SetClipboardPicture(const QImage& image, const QByteArray& emf) {
  QGuiApplication::clipboard()->setMimeData(
      CreatePictureData(image, emf));  // the clipboard owns it
}

std::unique_ptr<QPagedPaintDevice> QtUiServices::OpenPrinter(const QString& documentName) {
  auto printer = std::make_unique<QPrinter>(QPrinterInfo::defaultPrinter());
  if (!printer->isValid()) return nullptr;
  printer->setDocName(documentName);
  return printer;
}

std::unique_ptr<QPagedPaintDevice> QtUiServices::ChoosePrinter(const QString& documentName) {
  auto printer = std::make_unique<QPrinter>(QPrinterInfo::defaultPrinter());
  printer->setDocName(documentName);
  QPrintDialog dialog(printer.get(), DialogParent());
  if (dialog.exec() != QDialog::Accepted || !printer->isValid()) return nullptr;
  return printer;
}

void QtUiServices::ShowBusy(bool busy) {
  if (busy)
    QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
  else
    QGuiApplication::restoreOverrideCursor();
}

}  // namespace ombrelle
