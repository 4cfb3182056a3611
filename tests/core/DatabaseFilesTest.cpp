// The direct folder listing of the scan gives the same names, in the same
// order, as the toolkit's filtered, name-sorted folder list.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "core/DatabaseFiles.h"

namespace ombrelle {
namespace {

TEST(DatabaseFiles, ListsWhatTheToolkitListsInItsOrder) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString folder = dir.path();
  const QStringList files = {
      "b.qvz",      "A.qvz",          "a.QVZ",      "Z.Qvz",      "\u00e9.qvz",
      "e.qvz",      "E.qvz",          "_x.qvz",     "10.qvz",     "9.qvz",
      " s.qvz",     "x.qvz.qvz",      ".h.qvz",     ".qvz",       "x.qvzz",
      "qvz",        "x.qv",           "x.xml",      "xqvz",       "x.q vz",
      "\uff5a.qvz", "\U0001F600.qvz", "\u00c9.QVZ", "\u0130.qvz", "empty.qvz"};
  for (const QString& name : files) {
    QFile file(folder + u'/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    if (name != QLatin1String("empty.qvz")) file.write("x");
  }
  const QByteArray base = QFile::encodeName(folder);
  ASSERT_TRUE(QDir(folder).mkdir(QStringLiteral("dir.qvz")));
  ASSERT_EQ(::mkfifo(base + "/fifo.qvz", 0600), 0);
  ASSERT_EQ(::symlink(base + "/b.qvz", base + "/link.qvz"), 0);
  ASSERT_EQ(::symlink(base + "/gone", base + "/broken.qvz"), 0);
  ASSERT_EQ(::symlink(base + "/dir.qvz", base + "/dirlink.qvz"), 0);
  ASSERT_EQ(::symlink(base + "/fifo.qvz", base + "/fifolink.qvz"), 0);
  ASSERT_EQ(::symlink(base + "/b.qvz", base + "/.hiddenlink.qvz"), 0);

  const QStringList expected =
      QDir(folder).entryList({QStringLiteral("*.qvz")}, QDir::Files, QDir::Name);
  EXPECT_EQ(ListDatabaseFiles(folder), expected);
  // The toolkit's list itself, so that a change of either shows.
  EXPECT_EQ(expected.size(), 19);
  EXPECT_TRUE(expected.contains(QStringLiteral("link.qvz")));
  EXPECT_FALSE(expected.contains(QStringLiteral("broken.qvz")));
  EXPECT_FALSE(expected.contains(QStringLiteral("dir.qvz")));
}

TEST(DatabaseFiles, AMissingFolderListsNothing) {
  QTemporaryDir dir;
  EXPECT_TRUE(ListDatabaseFiles(dir.filePath(QStringLiteral("missing"))).isEmpty());
  EXPECT_TRUE(ListDatabaseFiles(QString()).isEmpty());
}

}  // namespace
}  // namespace ombrelle
