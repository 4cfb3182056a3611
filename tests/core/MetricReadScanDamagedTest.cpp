// The scan of a folder with damaged files: which databases it lists, the
// file dates it gives them, and what a damaged file says when it is named.

#include <cstring>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "common/QvzFixture.h"
#include "core/MetricRead.h"
#include "core/MetricReadTestSupport.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

using test::AccessTest;
using test::ProjectSave;
using test::QvzFixture;

class MetricReadScanDamaged : public AccessTest {};

TEST_F(MetricReadScanDamaged, ListsTheSoundFilesAndNamedDamagedFilesSayWhy) {
  const QString folder = Folder(QStringLiteral("db"));
  const QDateTime base(QDate(2024, 3, 31), QTime(1, 59, 58, 123));
  int n = 0;
  auto save = [&](const char* name, const char* title) {
    const QString path =
        Write(folder, name, ProjectSave(title, "p.vbp", DateSerial(2024, 1, 1) + n, {}));
    test::SetFileDate(path, base.addSecs(3600 * 7 * n++));
    return path;
  };
  auto damage = [&](const QString& path, int offset, QByteArray bytes) {
    QByteArray file = QvzFixture::ReadBytes(path);
    if (offset < 0) {
      file.truncate(bytes.toInt());
    } else {
      file.replace(offset, bytes.size(), bytes);
    }
    QvzFixture::WriteBytes(path, file);
  };
  save("a.qvz", "Alpha");
  const QString upper = save("B.QVZ", "Bravo");
  const QString checksum = save("c.qvz", "Checksum");
  damage(checksum, 230, QByteArray(1, QvzFixture::ReadBytes(checksum)[230] == '0' ? '1' : '0'));
  const QString magic = save("d.qvz", "Magic");
  damage(magic, 0, "QVZ-XXXX");
  const QString version4 = save("e.qvz", "Four");
  float four = 4.0f;
  damage(version4, 8, QByteArray(reinterpret_cast<const char*>(&four), 4));
  const QString version1 = save("f.qvz", "One");
  float one = 1.0f;
  damage(version1, 8, QByteArray(reinterpret_cast<const char*>(&one), 4));
  const QString shortFile = save("g.qvz", "Short");
  damage(shortFile, -1, "553");
  save("h.qvz", "Hotel");
  QDir(folder).mkdir(QStringLiteral("i.qvz"));
  save(".hidden.qvz", "Hidden");

  ScopedScriptedUi ui;
  MetricRead reader;
  QStringList titles;
  for (int i = 1; i <= reader.DatabaseCount(); ++i) {
    const DatabaseEntry& entry = reader.Database(i);
    titles.append(entry.Title);
    // The date the scan takes from the file's status is the one the file
    // information of the toolkit gives.
    EXPECT_EQ(entry.FileDate, DateFromQDateTime(QFileInfo(entry.Path).lastModified()))
        << entry.Path.toStdString();
    EXPECT_EQ(entry.AnalysisDate, ParseTimestamp14(entry.AnalysisStampText()));
  }
  EXPECT_EQ(titles, QStringList({"Alpha", "Bravo", "Hotel"}));
  EXPECT_EQ(reader.Database(2).Path, upper);
  EXPECT_TRUE(ui.ui.messages.empty());

  const struct {
    QString path;
    std::string message;
  } cases[] = {
      {checksum, "Invalid metrics database file checksum"},
      {magic, "Invalid metrics database file format"},
      {version4, "Metrics database file version (4) not supported"},
      {version1, "Metrics database file version (1) not supported"},
      {shortFile, "Metrics database file too short"},
  };
  for (const auto& c : cases) {
    ScopedScriptedUi named;
    EXPECT_EQ(reader.LocateAndOpenDatabase(c.path, false), 0);
    EXPECT_ONLY_UI_MESSAGE(named.ui, c.message + ":\r\n" + c.path.toStdString(), 48);
  }
  EXPECT_EQ(reader.DatabaseCount(), 3);
}

}  // namespace
}  // namespace ombrelle
