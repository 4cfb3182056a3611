#pragma once

#include <deque>
#include <vector>

#include <QByteArray>
#include <QImage>

#include "support/UiServices.h"

namespace ombrelle {

// A fake service for tests: records every request and answers from queues.
// Message boxes without an answer queued give No for questions and Ok else;
// input and file dialogs without an answer queued are cancelled.
class ScriptedUiServices : public UiServices {
 public:
  struct Message {
    QString text;
    int style = 0;
    QString title;
  };

  int MsgBox(const QString& text, int style, const QString& title) override;
  void TextBox(const QString& title, const QString& text) override;
  QString InputBox(const QString& prompt, const QString& title,
                   const QString& defaultText) override;
  QString SaveFileDialog(const FileDialogRequest& request) override;
  QString OpenFileDialog(const FileDialogRequest& request) override;
  QString BrowseFolder(const QString& title, const QString& folder) override;
  bool ShellOpen(const QString& pathOrUrl) override;
  void SetClipboardText(const QString& text) override;
  void SetClipboardPicture(const QImage& image, const QByteArray& emf) override;
  // A PDF writer on `printerPdf` when that is set; else no printer.
  std::unique_ptr<QPagedPaintDevice> OpenPrinter(const QString& documentName) override;

  // Answers, taken in order.
  std::deque<int> msgAnswers;
  std::deque<QString> inputAnswers;
  std::deque<QString> fileAnswers;  // save, open and folder dialogs alike
  std::deque<int> filterAnswers;    // filters chosen in save dialogs that ask for it

  // What was asked.
  std::vector<Message> messages;
  std::vector<Message> textBoxes;  // text and title; style 0
  std::vector<QString> inputPrompts;
  std::vector<FileDialogRequest> fileRequests;
  std::vector<QString> opened;
  QString clipboardText;
  QByteArray clipboardEmf;
  QImage clipboardImage;
  QString printerPdf;            // where "the printer" writes; empty: none
  QStringList printedDocuments;  // document names given to OpenPrinter
  int busyShown = 0;             // times the cursor went from idle to busy

  // Texts of all messages, in order.
  QStringList MessageTexts() const;

 protected:
  void ShowBusy(bool busy) override;
};

// Installs a ScriptedUiServices for the life of the object (tests).
class ScopedScriptedUi {
 public:
  ScopedScriptedUi() : m_previous(SetUi(&ui)) {}
  ~ScopedScriptedUi() { SetUi(m_previous); }
  ScopedScriptedUi(const ScopedScriptedUi&) = delete;
  ScopedScriptedUi& operator=(const ScopedScriptedUi&) = delete;
  ScriptedUiServices ui;

 private:
  UiServices* m_previous;
};

}  // namespace ombrelle
