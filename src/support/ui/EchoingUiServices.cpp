#include "support/ui/EchoingUiServices.h"

#include <cstdio>

#include <QByteArray>

namespace ombrelle {

namespace {
void WriteToStandardError(const QString& line) {
  const QByteArray bytes = line.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
  std::fputc('\n', stderr);
  std::fflush(stderr);
}
}  // namespace

EchoingUiServices::EchoingUiServices(UiServices& inner, LineWriter write)
    : m_inner(inner), m_write(write ? std::move(write) : LineWriter(WriteToStandardError)) {}

void EchoingUiServices::Echo(const QString& title, const QString& text) const {
  QString body = text;
  body.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  if (body.endsWith(QLatin1Char('\n'))) body.chop(1);
  m_write((title.isEmpty() ? AppTitle() : title) + QStringLiteral(": ") + body);
}

int EchoingUiServices::MsgBox(const QString& text, int style, const QString& title) {
  Echo(title, text);
  return m_inner.MsgBox(text, style, title);
}

void EchoingUiServices::TextBox(const QString& title, const QString& text) {
  Echo(title, text);
  m_inner.TextBox(title, text);
}

QString EchoingUiServices::InputBox(const QString& prompt, const QString& title,
                                    const QString& defaultText) {
  return m_inner.InputBox(prompt, title, defaultText);
}

QString EchoingUiServices::SaveFileDialog(const FileDialogRequest& request) {
  return m_inner.SaveFileDialog(request);
}

QString EchoingUiServices::OpenFileDialog(const FileDialogRequest& request) {
  return m_inner.OpenFileDialog(request);
}

QString EchoingUiServices::BrowseFolder(const QString& title, const QString& folder) {
  return m_inner.BrowseFolder(title, folder);
}

QString EchoingUiServices::ChooseFolder(const FolderRequest& request) {
  return m_inner.ChooseFolder(request);
}

bool EchoingUiServices::ShellOpen(const QString& pathOrUrl) { return m_inner.ShellOpen(pathOrUrl); }

void EchoingUiServices::SetClipboardText(const QString& text) { m_inner.SetClipboardText(text); }

void EchoingUiServices::SetClipboardPicture(const QImage& image, const QByteArray& emf) {
  m_inner.SetClipboardPicture(image, emf);
}

void EchoingUiServices::ShowBusy(bool busy) {
  if (busy)
    m_inner.BeginBusy();
  else
    m_inner.EndBusy();
}

}  // namespace ombrelle
