#pragma once

#include <QString>
#include <QStringList>

#include "measure/MeasuredProject.h"

namespace ombrelle {

// Writes counted classes into one database through the program's writer.
class MeasureWriter {
 public:
  struct Header {
    QString title;
    QString projectFile;  // e.g. "App.vbp"; also names a generated file
    double analysisDate = 0;
  };

  // Writes `project` to `path` (complete, or nothing under that name). A
  // column no row has a value for is left out, so the viewer shows the
  // metric as absent. The file holds whole columns only: in a column that
  // lacks a value for some rows (a metric that does not apply to a Declare),
  // those rows hold 0. A column whose length differs from the rows is left
  // out with a line in `notes`. False, after the writer's message, on failure.
  static bool Write(const MeasuredProject& project, const Header& header, const QString& path,
                    QStringList* notes = nullptr);

  // The file a database of `header` gets in `folder` when no name is given:
  // the analysis day and the project file's name, a letter when taken.
  static QString GeneratedPath(const Header& header, const QString& folder);
  // The folder databases are saved in: the viewer's save folder when it has
  // one, otherwise `fallback`. Never asks.
  static QString SaveFolder(const QString& fallback);
};

}  // namespace ombrelle
