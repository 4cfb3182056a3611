#include "support/ConsoleUiServices.h"

#include <cstdio>

namespace ombrelle {

namespace {
void Write(FILE* stream, const QString& text) {
  const QByteArray bytes = text.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

QString Titled(const QString& title, const QString& text) {
  return (title.isEmpty() ? UiServices::AppTitle() : title) + QStringLiteral(": ") + text;
}
}  // namespace

int ConsoleUiServices::MsgBox(const QString& text, int style, const QString& title) {
  const int icon = style & 0x70;
  const int buttons = style & 0x0F;
  if (icon == MsgStyle::Information && buttons == MsgStyle::OkOnly) {
    Write(stdout, Titled(title, text));
    return MsgResult::Ok;
  }
  Write(stderr, Titled(title, text));
  // Nobody can answer: a question is declined, so nothing is overwritten or deleted.
  if (buttons == MsgStyle::YesNo) return MsgResult::No;
  return MsgResult::Ok;
}

void ConsoleUiServices::TextBox(const QString& title, const QString& text) {
  QString body = text;
  body.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  if (body.endsWith(QLatin1Char('\n'))) body.chop(1);
  Write(stdout, title);
  Write(stdout, body);
}

QString ConsoleUiServices::InputBox(const QString&, const QString&, const QString&) { return {}; }
QString ConsoleUiServices::SaveFileDialog(const FileDialogRequest&) { return {}; }
QString ConsoleUiServices::OpenFileDialog(const FileDialogRequest&) { return {}; }
QString ConsoleUiServices::BrowseFolder(const QString&, const QString&) { return {}; }
bool ConsoleUiServices::ShellOpen(const QString&) { return false; }
void ConsoleUiServices::SetClipboardText(const QString&) {}
void ConsoleUiServices::SetClipboardPicture(const QImage&, const QByteArray&) {}

}  // namespace ombrelle
