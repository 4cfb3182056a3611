// Fuzz target: an .mtl limits file of arbitrary bytes is imported under a
// name, the new set must load, and after an export and a second import the
// second export must equal the first.
#include <cstdint>
#include <cstdlib>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "FuzzSupport.h"
#include "limits/MetricLimits.h"
#include "stats/CStats.h"
#include "support/SettingsStore.h"

using namespace ombrelle;

namespace {

// Settings and exports go to a private folder that lives as long as the run.
struct Folder {
  QTemporaryDir dir{fuzz::PrivateFolderTemplate()};
  QString settings;
  QString exported;
  QString reexported;
  Folder() {
    settings = dir.filePath(QStringLiteral("settings.ini"));
    exported = dir.filePath(QStringLiteral("exported.mtl"));
    reexported = dir.filePath(QStringLiteral("reexported.mtl"));
    SetSettingsFilePath(settings);
  }
};

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Folder folder;
  static fuzz::MemoryFile file("fuzz-mtl");
  static fuzz::FuzzUi ui;
  if (size > 65536) return -1;
  if (!file.Write(data, size)) return 0;
  DeleteSettingsTree(QStringLiteral("Limits"));
  ui.NewInput(QStringLiteral("Fuzzed"));

  MetricLimits limits;
  const int32_t nr = limits.Import(file.Path());
  if (nr < 0) abort();
  if (nr == 0) return 0;
  if (!limits.Load(nr)) abort();  // what was imported loads
  CStats stats;
  for (int i = 1; i <= limits.RuleCount(); ++i) {
    const MetricLimitRule& rule = limits.GetRule(i);
    (void)limits.GetRuleString(rule.Metric, true);
    (void)limits.IsInsideLimits(rule.Metric, 1.0, stats);
  }
  QFile::remove(folder.exported);
  if (!limits.Export(folder.exported)) return 0;

  // The exported set comes back and exports to the same text.
  ui.NewInput(QStringLiteral("Fuzzed"));
  MetricLimits again;
  const int32_t second = again.Import(folder.exported);
  if (second <= 0 || second == nr) abort();
  if (!again.Load(second)) abort();
  QFile::remove(folder.reexported);
  if (!again.Export(folder.reexported)) abort();
  if (ReadAll(folder.exported) != ReadAll(folder.reexported)) abort();
  return 0;
}
