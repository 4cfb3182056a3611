#pragma once

#include <memory>

#include <QString>

#include "core/XmlOutputFile.h"

namespace ombrelle {

class MetricRead;

// Writes one database as an XML file: every row of every class and every
// metric that can be had for it, stored or derived. The output is written
// line by line through a buffered stream, one column at a time, and is pure
// ASCII. Owns a MetricRead of its own for the length of one export.
class QVZ2XML {
 public:
  QVZ2XML();
  ~QVZ2XML();
  QVZ2XML(const QVZ2XML&) = delete;
  QVZ2XML& operator=(const QVZ2XML&) = delete;

  // Exports database `input` to `output`. An empty `output` becomes `input`
  // with the extension "xml"; when that name cannot be created the user may
  // pick another in the save dialog, and `output` then holds the new name.
  // `interactive` asks before an existing output is overwritten. Every
  // failure has been told in a box when false comes back.
  bool SaveQVZ2XML(const QString& input, QString& output, bool interactive);

  // The save dialog for an XML file with the given title; "" when cancelled.
  // The user-interface service decides which window owns the dialog.
  static QString ShowFileSaveDialog(const QString& title);

  // Bytes written by the last export (for measurements).
  qint64 BytesWritten() const { return m_file.BytesWritten(); }

 private:
  bool LoadDatabaseForExport(const QString& input);
  bool CreateOutputFile(const QString& name);
  bool WriteXml();
  void WriteClassStart(int metricClass);
  void WriteMetric(int metric);
  void Release();

  std::unique_ptr<MetricRead> m_reader;
  int m_databaseIndex = 0;
  XmlOutputFile m_file;
};

// The export as a start-up road calls it: a fresh QVZ2XML for one database.
bool SaveQVZ2XML(const QString& input, QString& output, bool interactive);

}  // namespace ombrelle
