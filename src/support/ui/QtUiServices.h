#pragma once

#include <memory>

#include <QFileDialog>
#include <QMessageBox>

#include "support/UiServices.h"

class QDialog;
class QMimeData;

namespace ombrelle {

// The user-interface service of a run with a display: message boxes, the
// fixed-pitch text box, input and file dialogs, the desktop's default handler,
// the clipboard and the busy cursor, all as Qt dialogs over the active window.
class QtUiServices : public UiServices {
 public:
  int MsgBox(const QString& text, int style, const QString& title) override;
  void TextBox(const QString& title, const QString& text) override;
  QString InputBox(const QString& prompt, const QString& title,
                   const QString& defaultText) override;
  QString SaveFileDialog(const FileDialogRequest& request) override;
  QString OpenFileDialog(const FileDialogRequest& request) override;
  QString BrowseFolder(const QString& title, const QString& folder) override;
  // The program's own chooser (SelectFolderDialog).
  QString ChooseFolder(const FolderRequest& request) override;
  bool ShellOpen(const QString& pathOrUrl) override;
  void SetClipboardText(const QString& text) override;
  void SetClipboardPicture(const QImage& image, const QByteArray& emf) override;
  // The system's default printer.
  std::unique_ptr<QPagedPaintDevice> OpenPrinter(const QString& documentName) override;
  std::unique_ptr<QPagedPaintDevice> ChoosePrinter(const QString& documentName) override;

  // The pieces the dialogs are made of, built but not shown.

  // A message box for `style`: buttons from its low four bits (0 OK, 1 OK and
  // Cancel, 2 Abort, Retry and Ignore, 3 Yes, No and Cancel, 4 Yes and No,
  // 5 Retry and Cancel), icon from 16, 32, 48 or 64, default button from 256
  // or 512. An empty title stands for the application title.
  static std::unique_ptr<QMessageBox> CreateMessageBox(const QString& text, int style,
                                                       const QString& title, QWidget* parent);
  // The MsgResult value of the button that closed `box` (Cancel, No or OK
  // when it was closed without one).
  static int ResultOf(const QMessageBox& box);
  // The text box: a read-only, unwrapped, fixed-pitch text and an OK button.
  static std::unique_ptr<QDialog> CreateTextBox(const QString& title, const QString& text,
                                                QWidget* parent);
  // A save or open dialog for `request`.
  static std::unique_ptr<QFileDialog> CreateFileDialog(const FileDialogRequest& request,
                                                       QFileDialog::AcceptMode mode,
                                                       QWidget* parent);
  // A picture for the clipboard: the image and, when given, the EMF bytes
  // under "image/x-emf".
  static QMimeData* CreatePictureData(const QImage& image, const QByteArray& emf);

 protected:
  void ShowBusy(bool busy) override;
};

}  // namespace ombrelle
