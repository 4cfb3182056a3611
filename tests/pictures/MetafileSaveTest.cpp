// The drawing surface's own picture files.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "pictures/Metafile.h"
#include "pictures/MetafileConversions.h"
#include "support/ScriptedUiServices.h"

using namespace ombrelle;

namespace {

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void DrawSample(Metafile& m, const QString& title) {
  ASSERT_TRUE(m.Create(100, 50, false, "Ombrelle", title, 2));
  m.DrawBox(10, -10, 300, -200, 0x00FF8000, true);
  m.DrawLine(0, -250, 900, -400, 0x000000FF, 5);
  m.ApplyFont(true);
  m.PrintText(QString::fromUtf8("\u00c9t\u00e9 \u0394"), 400, -50);
  m.Ready();
}

}  // namespace

TEST(MetafileSave, EmfAndWmfFilesOfTheSurface) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  Metafile m;
  DrawSample(m, QString::fromUtf8("Gr\u00f6\u00dfe\r\nsecond line"));
  ASSERT_TRUE(m.SaveEMF(dir.path() + "/a.emf"));
  ASSERT_TRUE(m.SavePlaceableWMF(dir.path() + "/a.wmf", 2, 0));
  const QByteArray emf = ReadAll(dir.path() + "/a.emf");
  EXPECT_EQ(emf, EmfBytes(*m.Picture()));
  EXPECT_EQ(EMFDescription(emf),
            QString("Ombrelle") + QChar(0) + QString::fromUtf8("Gr\u00f6\u00dfe\r\nsecond line"));
  const QByteArray wmf = ReadAll(dir.path() + "/a.wmf");
  EXPECT_EQ(wmf, PlaceableWmfBytes(*m.Picture(), 2));
  EXPECT_EQ(static_cast<uint8_t>(wmf[14]) | static_cast<uint8_t>(wmf[15]) << 8, 720);  // 1440 / 2
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST(MetafileSave, NothingToSaveBeforeReady) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  Metafile m;
  ASSERT_TRUE(m.Create(10, 10, false, "A", "B", 2));
  EXPECT_FALSE(m.SaveEMF(dir.path() + "/a.emf"));
  EXPECT_FALSE(m.SavePlaceableWMF(dir.path() + "/a.wmf", 1, 0));
  EXPECT_EQ(scripted.ui.MessageTexts(),
            QStringList({"Metafile.SaveEMF: Call to GetEnhMetaFileBits failed with error code 60",
                         "Call to GetEnhMetaFileHeader failed in EMF2WMF.SavePlaceableWMF."}));
  EXPECT_TRUE(QDir(dir.path()).isEmpty());
}

