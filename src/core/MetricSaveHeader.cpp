#include <cstring>

#include <QFile>

#include "core/MetricSave.h"
#include "core/MetricSaveFields.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle {

QString MetricSave::SavedByText() {
  return UiServices::AppTitle() + QLatin1Char(' ') + VersionText(true);
}

bool MetricSave::EditHeader(const QString& file, const QString& title, const QString& project,
                            double date) {
  const auto fail = [&file](const QFile& handle) {
    Ui().MsgBox(QStringLiteral("Error #") + QString::number(static_cast<int>(handle.error())) +
                    QStringLiteral(" editing file\r\n") + file + QStringLiteral(":\r\n") +
                    handle.errorString(),
                MsgStyle::Exclamation, QString());
    return false;
  };
  const auto refuse = [&file](const QString& message) {
    Ui().MsgBox(message + QStringLiteral(":\r\n") + file, MsgStyle::Exclamation, QString());
    return false;
  };

  // Unbuffered, so that the header goes out in exactly one write and nothing
  // else of the file is ever written.
  QFile handle(file);
  if (!handle.open(QIODevice::ReadWrite | QIODevice::Unbuffered | QIODevice::ExistingOnly))
    return fail(handle);
  const qint64 length = handle.size();
  if (length < kHeaderSize) return refuse(QStringLiteral("Metrics database file too short"));
  const QByteArray bytes = handle.read(kHeaderSize);
  if (bytes.size() != kHeaderSize) return fail(handle);
  DatabaseHeader header = DatabaseHeader::Decode(bytes.constData());
  // Only a metrics database gets a new header: any other file stays as it is.
  if (std::memcmp(header.Magic.data(), kQvzMagic, 8) != 0)
    return refuse(QStringLiteral("Invalid metrics database file format"));

  if (header.Flags & kFlagUtf8) {
    SetTextFieldUtf8(header.ProjectFilename, project);
    SetTextFieldUtf8(header.Title, title);
  } else {
    SetTextFieldAnsi(header.ProjectFilename, project);
    SetTextFieldAnsi(header.Title, title);
  }
  SetAnalysisDate(header, date);
  // SavedDate and SavedBy stay; the stamp is guarded, so the checksum is new.
  StampChecksum(header, length);
  const QByteArray out = header.Encode();
  if (!handle.seek(0) || handle.write(out) != out.size()) return fail(handle);
  handle.close();
  if (handle.error() != QFileDevice::NoError) return fail(handle);
  return true;
}

}  // namespace ombrelle
