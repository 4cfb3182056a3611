#pragma once

#include <memory>

#include <QString>

namespace ombrelle {

class QVZRead;

// The header dialog of one database, free of widgets: the three fields the
// user may change (title, project, analysis date), the four lines that
// describe the file, and the checks and the write of "&Save". Holds a reader
// on the file while the dialog is open and releases it for the write.
class QVZEditModel {
 public:
  // The fields, in the order of the dialog's checks.
  enum class Field { None, Title, Project, Date };

  QVZEditModel();
  ~QVZEditModel();
  QVZEditModel(const QVZEditModel&) = delete;
  QVZEditModel& operator=(const QVZEditModel&) = delete;

  // Reads the file's header and fills the fields and lines. False, after a
  // box with the reader's reason, when the file cannot be opened.
  bool Open(const QString& file);

  // "Edit " and the file's name without its folder.
  QString Caption() const;
  const QString& File() const { return m_file; }

  QString Title;
  QString Project;
  QString DateText;  // "yyyy-mm-dd"

  const QString& SavedText() const { return m_saved; }        // lblSaved
  const QString& VersionText() const { return m_version; }    // lblVersion
  const QString& FileDateText() const { return m_fileDate; }  // lblFileDate
  const QString& FlagsText() const { return m_flags; }        // lblFileFlags

  // "&Save": checks the fields in order (a box and the field to focus on the
  // first failure), releases the reader and rewrites the header. True when
  // the header was written; on a failed write the reader is opened again.
  bool Save();
  // The field the last failed check named; None after success.
  Field FocusField() const { return m_focus; }
  // Whether the model holds a reader on the file.
  bool ReaderOpen() const { return m_reader != nullptr; }
  // The date value Save writes: the stored date with its time when the text
  // is unchanged, else the day of the text at midnight. 0 for a text the
  // checks refuse.
  double DateToWrite() const;

  // The checks of the date text: "yyyy-mm-dd", year 1980 or later, a real day.
  static bool ValidDateText(const QString& text);

 private:
  bool OpenReader(QString& errorText);

  QString m_file;
  std::unique_ptr<QVZRead> m_reader;
  double m_storedDate = 0;
  QString m_storedDateText;
  QString m_saved, m_version, m_fileDate, m_flags;
  Field m_focus = Field::None;
};

}  // namespace ombrelle
