#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace ombrelle::test {

// Asserts that `path` is well-formed XML to an outside reader (xmllint);
// skips the test when xmllint is not installed.
void ExpectXmllintAccepts(const QString& path);

}  // namespace ombrelle::test

namespace ombrelle::test {

// Asserts that `path` parses as HTML to xmllint (--html --noout) without a
// single complaint; skips the test when xmllint is not installed.
void ExpectXmllintHtmlAccepts(const QString& path);

// The rows Python's csv module reads from `path` (bytes decoded as
// `encoding`, fields split at `delimiter`); skips when python3 is missing.
QList<QStringList> PythonCsvRows(const QString& path, const QString& delimiter,
                                 const QString& encoding);

}  // namespace ombrelle::test
