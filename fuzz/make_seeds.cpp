// Writes the hand-made seed databases of the fuzz target qvz_read into the
// folder given as the argument (fuzz/corpus/qvz_read): small valid files of
// every version and encoding, built byte by byte.
#include <cstdio>

#include <QDir>

#include "common/QvzRobustness.h"

using namespace ombrelle::test;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s <folder>\n", argv[0]);
    return 2;
  }
  const QDir folder(QString::fromLocal8Bit(argv[1]));
  if (!folder.exists() && !QDir().mkpath(folder.path())) return 1;

  QvzFixture ansi = RobustnessSampleVersion3();
  ansi.flags = 1;  // sorted, ANSI text
  for (ClassSpec& c : ansi.classes) c.rowEncoding = 0;

  QvzFixture version1 = RobustnessSampleVersion2();
  version1.version = 1.0f;

  const std::pair<const char*, QvzFixture> seeds[] = {
      {"smallest-v3.qvz", QvzFixture::SmallestVersion3()},
      {"sample-v3.qvz", RobustnessSampleVersion3()},
      {"sample-v3-ansi.qvz", ansi},
      {"sample-v2.qvz", RobustnessSampleVersion2()},
      {"sample-v1.qvz", version1},
  };
  for (const auto& [name, fixture] : seeds)
    fixture.Write(folder.filePath(QString::fromLatin1(name)));
  return 0;
}
