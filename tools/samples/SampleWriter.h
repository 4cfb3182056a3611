#pragma once

#include <QString>
#include <QStringList>

#include "SampleDatabase.h"

namespace ombrelle::samples {

// Writes `db` as a database file at `path` through the program's own writer.
// The saved date is set to the day of the analysis, as if the analyser had
// saved it then, so that the file's bytes do not depend on the day it was
// generated. False, after a message of the writer, on failure.
bool WriteSample(const SampleDatabase& db, const QString& path);

// Writes every save of every sample project into `folder`, made when missing,
// after removing the databases an earlier run left there. The paths written,
// in order; empty on failure.
QStringList WriteAllSamples(const QString& folder);

}  // namespace ombrelle::samples
