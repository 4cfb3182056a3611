// Fuzz target: arbitrary bytes measured as source files. The first byte picks
// the kind of file; the rest is cut in two files so that names resolve across
// modules. The counts must hang together whatever the input.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "measure/MeasuredProject.h"

using namespace ombrelle;

namespace {

void Check(bool ok) {
  if (!ok) abort();
}

const MeasuredClass* Find(const MeasuredProject& p, MetricClass c) {
  for (const MeasuredClass& m : p.classes)
    if (m.classNr == c) return &m;
  return nullptr;
}

double Value(const MeasuredClass& c, MetricId id, size_t row) {
  for (size_t k = 0; k < c.metrics.size(); ++k)
    if (c.metrics[k] == id) return c.values[k][row];
  abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > 65536) return -1;
  static const char* const kExtensions[] = {"bas", "cls", "frm", "ctl", "dsr", "txt"};
  const QString ext = QString::fromLatin1(kExtensions[data[0] % 6]);
  const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<qsizetype>(size - 1));
  const qsizetype half = bytes.size() / 2;
  const MeasuredProject p =
      MeasureSources(QStringLiteral("Fuzz"), {{QStringLiteral("One.") + ext, bytes.left(half)},
                                              {QStringLiteral("dir/Two.bas"), bytes.mid(half)}});

  int previous = -1;
  for (const MeasuredClass& c : p.classes) {
    Check(c.classNr > previous);
    previous = c.classNr;
    Check(c.values.size() == c.metrics.size());
    for (size_t k = 0; k < c.metrics.size(); ++k) {
      Check(k == 0 || c.metrics[k] > c.metrics[k - 1]);
      Check(c.values[k].size() == static_cast<size_t>(c.names.size()));
      for (double v : c.values[k]) Check(std::isnan(v) || (std::isfinite(v) && v >= 0));
    }
  }
  const MeasuredClass* project = Find(p, ClassProject);
  Check(project && project->names.size() == 1);
  double lines = 0;
  if (const MeasuredClass* files = Find(p, ClassFile)) {
    for (qsizetype r = 0; r < files->names.size(); ++r) {
      const auto row = static_cast<size_t>(r);
      lines += Value(*files, 2001, row);
      Check(Value(*files, 2012, row) + Value(*files, 2013, row) + Value(*files, 2014, row) <=
            Value(*files, 2001, row));
      Check(Value(*files, 2101, row) + Value(*files, 2103, row) <= Value(*files, 2100, row));
    }
  }
  Check(lines == Value(*project, 1002, 0));
  if (const MeasuredClass* procs = Find(p, ClassProcedure)) {
    for (qsizetype r = 0; r < procs->names.size(); ++r) {
      const auto row = static_cast<size_t>(r);
      Check(Value(*procs, 4012, row) + Value(*procs, 4013, row) + Value(*procs, 4014, row) <=
            Value(*procs, 4001, row));
      Check(Value(*procs, 4051, row) + Value(*procs, 4053, row) <= Value(*procs, 4050, row));
      const double cc = Value(*procs, 4120, row);
      Check(std::isnan(cc) ||
            (cc >= 1 && Value(*procs, 4121, row) >= cc && Value(*procs, 4122, row) >= 1));
    }
  }
  return 0;
}
