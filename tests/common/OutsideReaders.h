#pragma once

class QImage;

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace ombrelle::test {

// Asserts that `path` is well-formed XML to an outside reader (xmllint);
// skips the test when xmllint is not installed.
void ExpectXmllintAccepts(const QString& path);

// Runs an outside reader; fails the test (never skips) when the program is
// not installed. Returns the exit status, -1 when it could not run.
int RunOutsideReader(const QString& program, const QStringList& arguments,
                     QString* output = nullptr);

// Converts an enhanced metafile to SVG with emf2svg-conv (package emf2svg)
// and expects exit status 0 and an SVG file.
void ExpectEmf2SvgAccepts(const QString& emf, const QString& svg);
// Converts a placeable metafile to SVG with wmf2svg (package libwmf-bin)
// and expects exit status 0 and an SVG file.
void ExpectWmf2SvgAccepts(const QString& wmf, const QString& svg);

// The pixels of a BMP file as decoded by ImageMagick (`convert`) and by
// netpbm (`bmptopnm`), as 32-bit colours; a null image and a test failure
// when the reader refuses the file or is not installed.
QImage DecodeWithImageMagick(const QString& path);
QImage DecodeWithBmptopnm(const QString& path);

// Asserts that `path` parses as HTML to xmllint (--html --noout) without a
// single complaint; skips the test when xmllint is not installed.
void ExpectXmllintHtmlAccepts(const QString& path);

// The rows Python's csv module reads from `path` (bytes decoded as
// `encoding`, fields split at `delimiter`).
QList<QStringList> PythonCsvRows(const QString& path, const QString& delimiter,
                                 const QString& encoding);

// The number of pictures the HTML part of the web archive `path` shows, as
// WebArchiveImages reads them; -1 and a test failure when it is refused.
int WebArchivePictureCount(const QString& path);

// <build>/test-output/<suite>/<name>, its folder made: where tests keep the
// pictures a person looks at.
QString ArtefactPath(const QString& suite, const QString& name);
// <build>/test-output/<suite>, made.
QString ArtefactFolder(const QString& suite);
// Renders `document` (HTML or a web archive) in headless Chromium into the
// PNG `png` of the given size; a test failure when Chromium is missing or
// writes no picture.
void ChromiumScreenshot(const QString& document, const QString& png, int width, int height);

// Reads the web archive `mht` with Python's email package and fails the
// test unless it is multipart/related with the HTML part first and every
// IMG SRC of the HTML resolving (against the HTML part's location) to a
// part's Content-Location whose bytes are a BMP file. Writes the HTML part
// to `htmlOut` when given, and returns the Subject and then the IMG SRC
// values in document order.
QStringList WebArchiveImages(const QString& mht, const QString& htmlOut = QString());

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
QByteArray OutsideReaderOutput(const QString& program, const QStringList& arguments);

}  // namespace ombrelle::test
