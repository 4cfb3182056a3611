// Limit files that once went wrong (tests/data/regress/mtl): every one that
// imports must load as the set it was imported as, and export the same text
// again after a second import.
#include <QDir>
#include <QFile>

#include "common/MessageAssertions.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricLimits.h"

namespace ombrelle {
namespace {

using test::ReadAll;

class MtlRegressionTest : public test::LimitsSettingsTest {
 protected:
  // Imports `file` under `name`; 0 when nothing was imported.
  std::int32_t ImportAs(const QString& file, const QString& name) {
    ScopedScriptedUi scripted;
    scripted.ui.inputAnswers.push_back(name);
    const std::int32_t nr = MetricLimits().Import(file);
    EXPECT_TRUE(scripted.ui.messages.empty()) << file.toStdString();
    return nr;
  }
};

// Keys the loader reads, written twice or in other letter case: the first
// occurrence counts, whatever its case, as the import's own check reads it.
TEST_F(MtlRegressionTest, DuplicateAndLowerCaseKeysLoadAsChecked) {
  const struct {
    const char* file;
    const char* name;
  } cases[] = {{"version-twice.mtl", "Twice"}, {"lowercase-keys.mtl", "Lower"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const QString path = QStringLiteral(OMBRELLE_TEST_DATA "/regress/mtl/") + QLatin1String(c.file);
    const std::int32_t nr = ImportAs(path, QString::fromLatin1(c.name));
    ASSERT_GT(nr, 0);
    MetricLimits limits;
    ASSERT_TRUE(limits.Load(nr)) << limits.ErrorMessage.toStdString();
    EXPECT_EQ(limits.GetName(), QString::fromLatin1(c.name));
    ASSERT_EQ(limits.RuleCount(), 1);
    EXPECT_EQ(limits.GetRule(1), (MetricLimitRule{1404, LimitAtMost, 5.0, 0.0}));
  }
}

// Every kept input: imported, it loads; exported, imported and exported again,
// the text stays the same.
TEST_F(MtlRegressionTest, EveryKeptFileLoadsAndRoundTrips) {
  const QDir folder(QStringLiteral(OMBRELLE_TEST_DATA "/regress/mtl"));
  const QStringList files = folder.entryList(QDir::Files, QDir::Name);
  ASSERT_GE(files.size(), 3);
  for (const QString& name : files) {
    SCOPED_TRACE(name.toStdString());
    const std::int32_t nr = ImportAs(folder.filePath(name), QStringLiteral("Replayed"));
    ASSERT_GT(nr, 0);
    MetricLimits limits;
    ASSERT_TRUE(limits.Load(nr)) << limits.ErrorMessage.toStdString();
    EXPECT_EQ(limits.GetName(), QStringLiteral("Replayed"));
    const QString first = TempPath(name + QStringLiteral(".1"));
    const QString second = TempPath(name + QStringLiteral(".2"));
    ASSERT_TRUE(limits.Export(first));
    const std::int32_t again = ImportAs(first, QStringLiteral("Replayed"));
    ASSERT_GT(again, nr);
    MetricLimits reloaded;
    ASSERT_TRUE(reloaded.Load(again));
    ASSERT_TRUE(reloaded.Export(second));
    EXPECT_EQ(ReadAll(first), ReadAll(second));
  }
}

}  // namespace
}  // namespace ombrelle
