#pragma once

#include <QByteArray>
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

class QImage;

namespace ombrelle::test {

// The pixels of a BMP file as decoded by ImageMagick (`convert`) and by
// netpbm (`bmptopnm`), as 32-bit colours; a null image and a test failure
// when the reader refuses the file or is not installed.
QImage DecodeWithImageMagick(const QString& path);
QImage DecodeWithBmptopnm(const QString& path);

}  // namespace ombrelle::test

namespace ombrelle::test {

// GIF readers (giflib-tools, ImageMagick). Each fails the test when its
// program is missing, since the test command installs them.

// The pixels of a GIF as red, green, blue bytes, top row first, decoded by
// gif2rgb; empty (and a test failure) when it rejects the file.
QByteArray Gif2RgbPixels(const QString& path);
// The same through ImageMagick (`convert f.gif rgb:-`).
QByteArray ImageMagickRgbPixels(const QString& path);
// What giftext prints about the file; a failure when it exits with an error.
QString GiftextReport(const QString& path);
// Runs a program and returns its standard output; fails the test when it is
// missing, does not end within a minute or exits with an error.
QByteArray RunOutsideReader(const QString& program, const QStringList& arguments);

}  // namespace ombrelle::test
