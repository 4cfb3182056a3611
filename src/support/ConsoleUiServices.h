#pragma once

#include "support/UiServices.h"

namespace ombrelle {

// The service for runs without a display: messages go to standard error as
// "title: text", confirmations and text boxes to standard output; questions are
// answered No, input boxes and dialogs are cancelled.
class ConsoleUiServices : public UiServices {
 public:
  int MsgBox(const QString& text, int style, const QString& title) override;
  void TextBox(const QString& title, const QString& text) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
  QString SaveFileDialog(const FileDialogRequest& request) override;
  QString OpenFileDialog(const FileDialogRequest& request) override;
  QString BrowseFolder(const QString& title, const QString& folder) override;
  bool ShellOpen(const QString& pathOrUrl) override;
  void SetClipboardText(const QString& text) override;
  void SetClipboardPicture(const QImage& image, const QByteArray& emf) override;

 protected:
  void ShowBusy(bool) override {}
};

}  // namespace ombrelle
