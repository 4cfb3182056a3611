#include "core/QVZEditModel.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "core/MetricSave.h"
#include "core/QVZRead.h"
#include "support/DateValue.h"
#include "support/Filename.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

void Exclaim(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, QString()); }

}  // namespace

QVZEditModel::QVZEditModel() = default;
QVZEditModel::~QVZEditModel() = default;

bool QVZEditModel::OpenReader(QString& errorText) {
  auto reader = std::make_unique<QVZRead>();
  if (!reader->Opendatabase(m_file, errorText)) return false;
  // The handle is not needed between the dialog's steps; the header is kept.
  reader->CloseDatabaseFile();
  m_reader = std::move(reader);
  return true;
}

bool QVZEditModel::Open(const QString& file) {
  m_file = file;
  m_reader.reset();
  QString errorText;
  if (!OpenReader(errorText)) {
    Exclaim(errorText + kCrLf + QStringLiteral("Cannot open file:") + kCrLf + file);
    return false;
  }
  Title = m_reader->Title();
  Project = m_reader->ProjectFilename();
  m_storedDate = m_reader->GetAnalysisDate();
  m_storedDateText = DateToQDate(m_storedDate).toString(QStringLiteral("yyyy-MM-dd"));
  DateText = m_storedDateText;
  m_saved = QStringLiteral("File saved by ") + m_reader->GetSavedBy() + QStringLiteral(" on ") +
            m_reader->GetSavedDate() + QStringLiteral(".");
  m_version = QStringLiteral("QVZ file version: ") + m_reader->GetVersionText();
  m_fileDate = QStringLiteral("Last modified: ") +
               QFileInfo(file).lastModified().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
  const int32_t flags = m_reader->GetFlags();
  m_flags = QStringLiteral("Flags: ") +
            ((flags & 1) ? QStringLiteral("Sorted") : QStringLiteral("Unsorted")) +
            ((flags & 2) ? QStringLiteral(", UTF8") : QStringLiteral(", Ansi"));
  m_focus = Field::None;
  return true;
}

QString QVZEditModel::Caption() const { return QStringLiteral("Edit ") + FileNameOnly(m_file); }

bool QVZEditModel::ValidDateText(const QString& text) {
  static const QRegularExpression pattern(QStringLiteral("^[0-9]{4}-[0-9]{2}-[0-9]{2}$"));
  if (!pattern.match(text).hasMatch()) return false;
  const int year = text.left(4).toInt();
  if (year < 1980) return false;
  const QDate day(year, text.mid(5, 2).toInt(), text.mid(8, 2).toInt());
  return day.isValid() && day.toString(QStringLiteral("yyyy-MM-dd")) == text;
}

double QVZEditModel::DateToWrite() const {
  if (!ValidDateText(DateText)) return 0;
  if (DateText == m_storedDateText) return m_storedDate;
  return DateFromQDate(QDate::fromString(DateText, QStringLiteral("yyyy-MM-dd")));
}

bool QVZEditModel::Save() {
  m_focus = Field::None;
  if (Title.isEmpty()) {
    m_focus = Field::Title;
    Exclaim(QStringLiteral("Give a title."));
    return false;
  }
  if (Project.isEmpty()) {
    m_focus = Field::Project;
    Exclaim(QStringLiteral("Give a project name."));
    return false;
  }
  if (!ValidDateText(DateText)) {
    m_focus = Field::Date;
    Exclaim(QStringLiteral("Date is not in required format."));
    return false;
  }
  const double date = DateToWrite();
  // The file is about to be written: no handle of ours may stay on it.
  m_reader.reset();
  if (MetricSave::EditHeader(m_file, Title, Project, date)) return true;
  QString errorText;
  OpenReader(errorText);
  return false;
}

}  // namespace ombrelle
