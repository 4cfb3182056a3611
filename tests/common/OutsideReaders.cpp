#include "common/OutsideReaders.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardPaths>

namespace ombrelle::test {

namespace {
// xmllint with `options` on `path`: exit status 0 and not a word of complaint.
void ExpectXmllintQuiet(QStringList options, const QString& path) {
  const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
  if (xmllint.isEmpty()) GTEST_SKIP() << "xmllint (libxml2-utils) is not installed";
  QProcess process;
  process.start(xmllint, options << QStringLiteral("--noout") << path);
  ASSERT_TRUE(process.waitForFinished(60000));
  const QByteArray errors = process.readAllStandardError();
  EXPECT_EQ(process.exitCode(), 0) << errors.toStdString();
  EXPECT_TRUE(errors.isEmpty()) << errors.toStdString();
}
}  // namespace

void ExpectXmllintAccepts(const QString& path) { ExpectXmllintQuiet({}, path); }

int RunOutsideReader(const QString& program, const QStringList& arguments, QString* output) {
  const QString path = QStandardPaths::findExecutable(program);
  if (path.isEmpty()) {
    ADD_FAILURE() << program.toStdString() << " is not installed (scripts/install-deps.sh test)";
    return -1;
  }
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(path, arguments);
  if (!process.waitForFinished(120000)) {
    ADD_FAILURE() << program.toStdString() << " did not finish";
    return -1;
  }
  const QString text = QString::fromLocal8Bit(process.readAll());
  if (output) *output = text;
  return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

namespace {
void ExpectSvgFrom(const QString& program, const QStringList& arguments, const QString& svg) {
  QFile::remove(svg);
  QString output;
  EXPECT_EQ(RunOutsideReader(program, arguments, &output), 0) << output.toStdString();
  QFile file(svg);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "no SVG from " << program.toStdString();
  EXPECT_TRUE(file.readAll().contains("<svg")) << svg.toStdString();
}
}  // namespace

void ExpectEmf2SvgAccepts(const QString& emf, const QString& svg) {
  ExpectSvgFrom(QStringLiteral("emf2svg-conv"),
                {QStringLiteral("-i"), emf, QStringLiteral("-o"), svg}, svg);
}

void ExpectWmf2SvgAccepts(const QString& wmf, const QString& svg) {
  ExpectSvgFrom(QStringLiteral("wmf2svg"), {QStringLiteral("-o"), svg, wmf}, svg);
}

namespace {

// Runs `program` with `arguments`, feeding `input`; the standard output, or
// an empty array and a test failure when it is missing, does not end within a
// minute or exits with an error.
QByteArray RunReader(const QString& program, const QStringList& arguments,
                     const QByteArray& input = {}) {
  const QString path = QStandardPaths::findExecutable(program);
  if (path.isEmpty()) {
    ADD_FAILURE() << program.toStdString() << " is not installed (scripts/install-deps.sh test)";
    return {};
  }
  QProcess process;
  process.start(path, arguments);
  if (!input.isEmpty()) process.write(input);
  process.closeWriteChannel();
  if (!process.waitForFinished(60000)) {
    ADD_FAILURE() << program.toStdString() << " did not finish";
    process.kill();
    return {};
  }
  if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
    ADD_FAILURE() << program.toStdString() << " " << arguments.join(' ').toStdString()
                  << " failed: " << process.readAllStandardError().toStdString();
    return {};
  }
  return process.readAllStandardOutput();
}

// A binary PPM (P6, maxval 255) as an image.
QImage FromPpm(const QByteArray& ppm) {
  QImage image;
  if (!image.loadFromData(ppm, "PPM")) ADD_FAILURE() << "not a PPM image";
  return image.convertToFormat(QImage::Format_RGB32);
}

}  // namespace

QImage DecodeWithImageMagick(const QString& path) {
  const QByteArray ppm =
      RunReader(QStringLiteral("convert"),
                {QStringLiteral("-regard-warnings"), path, QStringLiteral("-depth"),
                 QStringLiteral("8"), QStringLiteral("ppm:-")});
  return ppm.isEmpty() ? QImage() : FromPpm(ppm);
}

QImage DecodeWithBmptopnm(const QString& path) {
  const QByteArray pnm = RunReader(QStringLiteral("bmptopnm"), {path});
  if (pnm.isEmpty()) return {};
  const QByteArray ppm = RunReader(QStringLiteral("ppmtoppm"), {}, pnm);
  return ppm.isEmpty() ? QImage() : FromPpm(ppm);
}

void ExpectXmllintHtmlAccepts(const QString& path) {
  ExpectXmllintQuiet({QStringLiteral("--html")}, path);
}

QList<QStringList> PythonCsvRows(const QString& path, const QString& delimiter,
                                 const QString& encoding) {
  // Each row comes back as one line of JSON, so that any character survives.
  const QString script = QStringLiteral(
      "import csv, json, sys\n"
      "with open(sys.argv[1], newline='', encoding=sys.argv[3]) as f:\n"
      "    for row in csv.reader(f, delimiter=sys.argv[2]):\n"
      "        print(json.dumps(row))\n");
  QList<QStringList> rows;
  const QByteArray out = RunReader(QStringLiteral("python3"),
                                   {QStringLiteral("-c"), script, path, delimiter, encoding});
  for (const QByteArray& line : out.split('\n')) {
    if (line.trimmed().isEmpty()) continue;
    QStringList row;
    for (const QJsonValue& value : QJsonDocument::fromJson(line).array()) row << value.toString();
    rows << row;
  }
  return rows;
}

int WebArchivePictureCount(const QString& path) {
  const QStringList images = WebArchiveImages(path);  // the Subject first
  return images.isEmpty() ? -1 : static_cast<int>(images.size()) - 1;
}

QString ArtefactFolder(const QString& suite) {
  const QString folder = QStringLiteral(OMBRELLE_BUILD_DIR "/test-output/") + suite;
  QDir().mkpath(folder);
  return folder;
}

QString ArtefactPath(const QString& suite, const QString& name) {
  return ArtefactFolder(suite) + QLatin1Char('/') + name;
}

void ChromiumScreenshot(const QString& document, const QString& png, int width, int height) {
  const QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
  if (chromium.isEmpty()) {
    ADD_FAILURE() << "chromium is not installed (scripts/install-deps.sh test)";
    return;
  }
  QTemporaryDir profile;
  QFile::remove(png);
  QProcess process;
  process.start(chromium,
                {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"),
                 QStringLiteral("--disable-gpu"), QStringLiteral("--no-first-run"),
                 QStringLiteral("--disable-background-networking"),
                 QStringLiteral("--disable-component-update"), QStringLiteral("--disable-sync"),
                 QStringLiteral("--user-data-dir=") + profile.path(),
                 QStringLiteral("--window-size=%1,%2").arg(width).arg(height),
                 QStringLiteral("--screenshot=") + png, QUrl::fromLocalFile(document).toString()});
  if (!process.waitForFinished(120000)) {
    process.kill();
    ADD_FAILURE() << "chromium did not finish";
    return;
  }
  EXPECT_TRUE(QFile::exists(png)) << process.readAllStandardError().toStdString();
}

QStringList WebArchiveImages(const QString& mht, const QString& htmlOut) {
  const char* script = R"PY(
import email, email.policy, re, sys, urllib.parse
m = email.message_from_binary_file(open(sys.argv[1], 'rb'), policy=email.policy.default)
assert m.get_content_type() == 'multipart/related', m.get_content_type()
parts = list(m.iter_parts())
assert parts[0].get_content_type() == 'text/html', parts[0].get_content_type()
html = parts[0].get_content()
base = parts[0]['Content-Location']
names = {p['Content-Location']: p for p in parts[1:]}
srcs = re.findall(r'<IMG SRC="([^"]+)"', html)
for s in srcs:
    u = urllib.parse.urljoin(base, s)
    assert u in names, u
    assert names[u].get_content()[:2] == b'BM', u
if len(sys.argv) > 2:
    open(sys.argv[2], 'w', encoding='utf-8').write(html)
print(str(m['subject']))
for s in srcs:
    print(s)
)PY";
  QStringList arguments{QStringLiteral("-c"), QString::fromUtf8(script), mht};
  if (!htmlOut.isEmpty()) arguments << htmlOut;
  QStringList lines =
      QString::fromUtf8(RunReader(QStringLiteral("python3"), arguments)).split(QLatin1Char('\n'));
  if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
  return lines;
}

QByteArray OutsideReaderOutput(const QString& program, const QStringList& arguments) {
  return RunReader(program, arguments);
}

QByteArray Gif2RgbPixels(const QString& path) {
  // gif2rgb writes to a file only; -1 gives one file of red, green, blue.
  const QString out = path + QStringLiteral(".rgb");
  QFile::remove(out);
  OutsideReaderOutput(QStringLiteral("gif2rgb"),
                      {QStringLiteral("-1"), QStringLiteral("-o"), out, path});
  QFile file(out);
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QByteArray pixels = file.readAll();
  file.close();
  QFile::remove(out);
  return pixels;
}

QByteArray ImageMagickRgbPixels(const QString& path) {
  return OutsideReaderOutput(QStringLiteral("convert"),
                             {QStringLiteral("-regard-warnings"), path, QStringLiteral("-depth"),
                              QStringLiteral("8"), QStringLiteral("rgb:-")});
}

QString GiftextReport(const QString& path) {
  return QString::fromLatin1(OutsideReaderOutput(QStringLiteral("giftext"), {path}));
}

}  // namespace ombrelle::test
