// Recordings saved as enhanced and placeable metafiles: structure, outside
// readers, round trips and failures. How the readers draw them is compared
// with our own bitmap in the rendering test.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "pictures/LittleEndianWriter.h"
#include "pictures/MetafileConversions.h"
#include "pictures/RichPicture.h"
#include "pictures/WmfWriter.h"
#include "support/ScriptedUiServices.h"

using namespace ombrelle;
using ombrelle::test::RichPicture;

namespace {

QString OutputDir() { return test::ArtefactFolder(QStringLiteral("MetafileConversions")); }

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool WriteAll(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// Every record of an enhanced metafile: sizes add up to the header's byte
// count, each a multiple of 4, the last one the end record.
void ExpectEmfRecordsConsistent(const QByteArray& emf) {
  LittleEndianReader in(emf);
  in.Seek(48);
  const uint32_t bytes = in.U32();
  const uint32_t records = in.U32();
  ASSERT_EQ(bytes, static_cast<uint32_t>(emf.size()));
  uint32_t count = 0, pos = 0, type = 0;
  while (pos < bytes) {
    in.Seek(static_cast<int>(pos));
    type = in.U32();
    const uint32_t size = in.U32();
    ASSERT_TRUE(size >= 8 && size % 4 == 0) << "record " << count << " type " << type;
    pos += size;
    ++count;
  }
  EXPECT_EQ(pos, bytes);
  EXPECT_EQ(count, records);
  EXPECT_EQ(type, 14u);
}

}  // namespace

TEST(MetafileConversions, EmfHeaderFrameDescriptionAndRecords) {
  const QString description = QString("Ombrelle") + QChar(0) + "Chart" + QChar(0) + QChar(0);
  const QByteArray emf = EmfBytes(*RichPicture(description));
  LittleEndianReader in(emf);
  in.Seek(24);  // the frame
  EXPECT_EQ(in.I32(), 0);
  EXPECT_EQ(in.I32(), 0);
  EXPECT_EQ(in.I32(), 15000);
  EXPECT_EQ(in.I32(), 11200);
  EXPECT_EQ(EMFDescription(emf), QString("Ombrelle") + QChar(0) + "Chart");
  ExpectEmfRecordsConsistent(emf);
}

TEST(MetafileConversions, DescriptionCases) {
  struct Case {
    QString stored;
    QString read;
  };
  const QString nul(1, QChar(0));
  for (const Case& c : std::vector<Case>{
           {QString::fromUtf8("Gr\u00f6\u00dfe \u0394") + nul + QString::fromUtf8("\u00e9t\u00e9") +
                nul + nul,
            QString::fromUtf8("Gr\u00f6\u00dfe \u0394") + nul + QString::fromUtf8("\u00e9t\u00e9")},
           {"App" + nul + nul + nul, "App" + nul},  // empty title
           {nul, ""},                               // one NUL alone
           {"", ""}}) {
    EXPECT_EQ(EMFDescription(EmfBytes(*RichPicture(c.stored))), c.read) << c.stored.toStdString();
  }
  EXPECT_EQ(EMFDescription(QByteArray("not a metafile")), "");
}

TEST(MetafileConversions, PlaceableHeaderOf150By112Millimetres) {
  const QByteArray wmf = PlaceableWmfBytes(*RichPicture("x"), 1);
  EXPECT_EQ(wmf.left(22).toHex(' '),
            QByteArray::fromHex("D7CDC69A 0000 0000 0000 3821 CE18 A005 00000000 476B").toHex(' '));
  EXPECT_EQ(wmf.mid(22), CloneRegularMetafile(*RichPicture("x")));
  // The 16-bit header: total size in words matches the file after the placeable header.
  LittleEndianReader in(wmf, 22 + 6);
  EXPECT_EQ(in.U32() * 2, static_cast<uint32_t>(wmf.size() - 22));
}

TEST(MetafileConversions, ThousandMillimetresDropTo720UnitsAndFit) {
  const auto picture = test::EmptyPicture(1000, 100);
  EXPECT_EQ(PictureUnitsPerInch(*picture), 720);
  const QByteArray wmf = PlaceableWmfBytes(*picture, 1);
  LittleEndianReader in(wmf, 10);
  EXPECT_EQ(in.I16(), 28346);  // right: 100000 x 720 / 2540
  EXPECT_EQ(in.I16(), 2835);   // bottom: 10000 x 720 / 2540 = 2834.6
  EXPECT_EQ(in.U16(), 720);
  EXPECT_EQ(PlaceableChecksum(wmf.left(20)), static_cast<uint16_t>(in.Seek(20), in.U16()));
}

TEST(MetafileConversions, ScaleDividesTheStatedUnits) {
  struct Case {
    float scale;
    uint16_t units;
  };
  for (const Case& c : std::vector<Case>{{1, 1440}, {2, 720}, {0.5f, 2880}, {5000, 1}}) {
    const QByteArray wmf = PlaceableWmfBytes(*RichPicture("x"), c.scale);
    LittleEndianReader in(wmf, 14);
    EXPECT_EQ(in.U16(), c.units) << c.scale;
  }
}

TEST(MetafileConversions, WmfReadBackAndSavedAgainGivesTheSameBytes) {
  const QByteArray first = PlaceableWmfBytes(*RichPicture("x"), 1);
  const auto picture = WMF2EMF(first);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->frameRect, (MetaRect{0, 0, 15000, 11201}));
  const QByteArray second = PlaceableWmfBytes(*picture, 1);
  EXPECT_EQ(second.toHex(' '), first.toHex(' '));
  // The recording read back also makes a sound enhanced metafile.
  ExpectEmfRecordsConsistent(EmfBytes(*picture));
}

TEST(MetafileConversions, WmfReaderRefusesDamagedInput) {
  const QByteArray good = PlaceableWmfBytes(*RichPicture("x"), 1);
  EXPECT_FALSE(WMF2EMF(QByteArray()));
  EXPECT_FALSE(WMF2EMF(good.left(30)));  // cut inside the records
  QByteArray badRecord = good;
  badRecord[22 + 18] = '\x7F';  // first record claims to run past the end
  badRecord[22 + 19] = '\x7F';
  EXPECT_FALSE(WMF2EMF(badRecord));
}

TEST(MetafileConversions, OutsideReadersAcceptEveryRecordKind) {
  const QString dir = OutputDir();
  struct Case {
    QString name;
    std::shared_ptr<MetaPicture> picture;
  };
  const QString nul(1, QChar(0));
  for (const Case& c : std::vector<Case>{
           {"rich",
            RichPicture("Ombrelle" + nul + QString::fromUtf8("Gr\u00f6\u00dfe") + nul + nul)},
           {"empty", test::EmptyPicture(80, 60)},
           {"wide", RichPicture("wide", 1000, 112)}}) {
    const QString emf = dir + "/" + c.name + ".emf";
    const QString wmf = dir + "/" + c.name + ".wmf";
    ASSERT_TRUE(WriteAll(emf, EmfBytes(*c.picture)));
    ASSERT_TRUE(WriteAll(wmf, PlaceableWmfBytes(*c.picture, 1)));
    test::ExpectEmf2SvgAccepts(emf, dir + "/" + c.name + "-emf.svg");
    test::ExpectWmf2SvgAccepts(wmf, dir + "/" + c.name + "-wmf.svg");
  }
}

TEST(MetafileConversions, FilesReplaceAndRefuse) {
  ScopedScriptedUi scripted;
  QTemporaryDir dir;
  const auto picture = RichPicture("x");
  const QString emf = dir.path() + "/a.emf";
  const QString wmf = dir.path() + "/a.wmf";
  ASSERT_TRUE(SaveEMF(picture.get(), emf));
  ASSERT_TRUE(SavePlaceableWMF(picture.get(), wmf, 1));
  EXPECT_EQ(ReadAll(emf), EmfBytes(*picture));
  EXPECT_EQ(ReadAll(wmf), PlaceableWmfBytes(*picture, 1));
  EXPECT_TRUE(scripted.ui.messages.empty());

  // A read-only file is left as it was.
  const QString locked = dir.path() + "/locked.emf";
  ASSERT_TRUE(WriteAll(locked, "old"));
  QFile::setPermissions(locked, QFileDevice::ReadOwner);
  EXPECT_FALSE(SaveEMF(picture.get(), locked));
  EXPECT_FALSE(SavePlaceableWMF(picture.get(), locked, 1));
  EXPECT_FALSE(SaveEMF(picture.get(), dir.path()));  // a folder
  EXPECT_EQ(ReadAll(locked), "old");
  EXPECT_FALSE(SaveEMF(nullptr, dir.path() + "/none.emf"));
  EXPECT_FALSE(SavePlaceableWMF(nullptr, dir.path() + "/none.wmf", 1));
  EXPECT_EQ(scripted.ui.MessageTexts(),
            QStringList({"Cannot overwrite file " + locked, "Cannot overwrite file " + locked,
                         "Cannot overwrite file " + dir.path(),
                         "Metafile.SaveEMF: Call to GetEnhMetaFileBits failed with error code 60",
                         "Call to GetEnhMetaFileHeader failed in EMF2WMF.SavePlaceableWMF."}));
  for (const auto& m : scripted.ui.messages) EXPECT_EQ(m.style, 48);
  EXPECT_FALSE(QFile::exists(dir.path() + "/none.emf"));
}
