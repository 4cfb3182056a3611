#pragma once

class QImage;

#include <QList>
#include <QString>
#include <QStringList>

namespace ombrelle::test {

// Asserts that `path` is well-formed XML to an outside reader (xmllint);
// skips the test when xmllint is not installed.
void ExpectXmllintAccepts(const QString& path);

// Asserts that `path` parses as HTML to xmllint (--html --noout) without a
// single complaint; skips the test when xmllint is not installed.
void ExpectXmllintHtmlAccepts(const QString& path);

// The rows Python's csv module reads from `path` (bytes decoded as
// `encoding`, fields split at `delimiter`); skips when python3 is missing.
QList<QStringList> PythonCsvRows(const QString& path, const QString& delimiter,
                                 const QString& encoding);

// The pixels of a BMP file as decoded by ImageMagick (`convert`) and by
// netpbm (`bmptopnm`), as 32-bit colours; a null image and a test failure
// when the reader refuses the file or is not installed.
QImage DecodeWithImageMagick(const QString& path);
QImage DecodeWithBmptopnm(const QString& path);

}  // namespace ombrelle::test

namespace ombrelle::test {

// <build>/test-output/<suite>/<name>, its folder made: where tests keep the
// pictures a person looks at.
QString ArtefactPath(const QString& suite, const QString& name);
// Renders `document` (HTML or a web archive) in headless Chromium into the
// PNG `png` of the given size; a test failure when Chromium is missing or
// writes no picture.
void ChromiumScreenshot(const QString& document, const QString& png, int width, int height);

}  // namespace ombrelle::test
