#include "support/ScriptedUiServices.h"

#include <QPdfWriter>

namespace ombrelle {

namespace {
template <typename T>
T Take(std::deque<T>& queue, T fallback) {
  if (queue.empty()) return fallback;
  T value = std::move(queue.front());
  queue.pop_front();
  return value;
}
}  // namespace

int ScriptedUiServices::MsgBox(const QString& text, int style, const QString& title) {
  messages.push_back({text, style, title});
  const bool question = (style & 0x0F) == MsgStyle::YesNo;
  return Take(msgAnswers, question ? MsgResult::No : MsgResult::Ok);
}

void ScriptedUiServices::TextBox(const QString& title, const QString& text) {
  textBoxes.push_back({text, 0, title});
}

QString ScriptedUiServices::InputBox(const QString& prompt, const QString&, const QString&) {
  inputPrompts.push_back(prompt);
  return Take(inputAnswers, QString());
}

QString ScriptedUiServices::SaveFileDialog(const FileDialogRequest& request) {
  fileRequests.push_back(request);
  if (request.chosenFilterIndex && !filterAnswers.empty())
    *request.chosenFilterIndex = Take(filterAnswers, 0);
  return Take(fileAnswers, QString());
}

QString ScriptedUiServices::OpenFileDialog(const FileDialogRequest& request) {
  fileRequests.push_back(request);
  return Take(fileAnswers, QString());
}

QString ScriptedUiServices::BrowseFolder(const QString& title, const QString& folder) {
  FileDialogRequest request;
  request.title = title;
  request.folder = folder;
  fileRequests.push_back(request);
  return Take(fileAnswers, QString());
}

bool ScriptedUiServices::ShellOpen(const QString& pathOrUrl) {
  opened.push_back(pathOrUrl);
  return true;
}

void ScriptedUiServices::SetClipboardText(const QString& text) { clipboardText = text; }

void ScriptedUiServices::SetClipboardPicture(const QImage& image, const QByteArray& emf) {
  clipboardText.clear();
  clipboardImage = image;
  clipboardEmf = emf;
}

std::unique_ptr<QPagedPaintDevice> ScriptedUiServices::OpenPrinter(const QString& documentName) {
  printedDocuments.push_back(documentName);
  if (printerPdf.isEmpty()) return nullptr;
  auto writer = std::make_unique<QPdfWriter>(printerPdf);
  writer->setTitle(documentName);
  return writer;
}

QStringList ScriptedUiServices::MessageTexts() const {
  QStringList texts;
  for (const Message& m : messages) texts << m.text;
  return texts;
}

void ScriptedUiServices::ShowBusy(bool busy) {
  if (busy) ++busyShown;
}

}  // namespace ombrelle
