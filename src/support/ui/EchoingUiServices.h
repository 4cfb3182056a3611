#pragma once

#include <functional>

#include "support/UiServices.h"

namespace ombrelle {

// Forwards every request to another service and also writes each message and
// text box as "title: text" to a line writer (standard error by default), so a
// command-line run with a display leaves its messages in the terminal too.
class EchoingUiServices : public UiServices {
 public:
  using LineWriter = std::function<void(const QString&)>;

  // `inner` is not owned and must outlive this object.
  explicit EchoingUiServices(UiServices& inner, LineWriter write = {});

  int MsgBox(const QString& text, int style, const QString& title) override;
  void TextBox(const QString& title, const QString& text) override;
  QString InputBox(const QString& prompt, const QString& title,
                   const QString& defaultText) override;
  QString SaveFileDialog(const FileDialogRequest& request) override;
  QString OpenFileDialog(const FileDialogRequest& request) override;
  QString BrowseFolder(const QString& title, const QString& folder) override;
  QString ChooseFolder(const FolderRequest& request) override;
  bool ShellOpen(const QString& pathOrUrl) override;
  void SetClipboardText(const QString& text) override;
  void SetClipboardPicture(const QImage& image, const QByteArray& emf) override;

 protected:
  void ShowBusy(bool busy) override;

 private:
  void Echo(const QString& title, const QString& text) const;

  UiServices& m_inner;
  LineWriter m_write;
};

}  // namespace ombrelle
