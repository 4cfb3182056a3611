// Measuring source code: a generated tree of 200,000 lines of Visual Basic
// (100 modules, classes and forms) gathered from disc and counted, against
// reading the same files' bytes.
#include <benchmark/benchmark.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "measure/MeasuredProject.h"
#include "measure/ProjectSources.h"

using namespace ombrelle;

namespace {

constexpr int kFiles = 100;
constexpr int kLinesPerFile = 2000;

// One procedure of ordinary business code: about 40 lines with comments,
// declarations, strings, continuations, decisions and loops.
QByteArray Procedure(int file, int n) {
  const QByteArray id = QByteArray::number(file) + "_" + QByteArray::number(n);
  return "' Works out the totals of batch " + id +
         ".\r\n"
         "' Returns the number of items that were changed.\r\n"
         "Public Function Process" +
         id +
         "(ByVal Count As Long, ByRef Items() As String, _\r\n"
         "    Optional ByVal Strict As Boolean = False) As Long\r\n"
         "  Dim i As Long, Total As Long\r\n"
         "  Dim Name As String\r\n"
         "  On Error GoTo Failed\r\n"
         "\r\n"
         "  For i = 0 To Count - 1\r\n"
         "    Name = Trim$(Items(i)) ' cleaned\r\n"
         "    If Len(Name) = 0 Then\r\n"
         "      Total = Total + 1\r\n"
         "    ElseIf Name = \"\"\"quoted\"\"\" And Strict Then\r\n"
         "      Total = Total + 2: Name = \"\"\r\n"
         "    Else\r\n"
         "      Select Case Left$(Name, 1)\r\n"
         "        Case \"A\" To \"M\"\r\n"
         "          Total = Total + 3\r\n"
         "        Case \"N\", \"O\"\r\n"
         "          Total = Total - 1\r\n"
         "        Case Else\r\n"
         "          Debug.Print \"Unknown item: \" & _\r\n"
         "              Name\r\n"
         "      End Select\r\n"
         "    End If\r\n"
         "  Next i\r\n"
         "\r\n"
         "  Do While Total > 1000\r\n"
         "    Total = Total \\ 2\r\n"
         "  Loop\r\n"
         "  If Total < 0 Then Total = 0\r\n"
         "  Process" +
         id +
         " = Total\r\n"
         "  Exit Function\r\n"
         "\r\n"
         "Failed:\r\n"
         "  Rem Report and carry on\r\n"
         "  MsgBox \"Error \" & Err.Number & \" in Process" +
         id +
         "\", vbExclamation\r\n"
         "  Process" +
         id +
         " = -1\r\n"
         "End Function\r\n"
         "\r\n";
}

QByteArray SourceFileText(int file) {
  QByteArray text;
  const int kind = file % 3;
  if (kind == 1) {
    text += "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n";
  } else if (kind == 2) {
    text += "VERSION 5.00\r\nBegin VB.Form frm" + QByteArray::number(file) +
            "\r\n   Caption = \"Form\"\r\n   ClientHeight = 3090\r\n"
            "   Begin VB.CommandButton cmdOk\r\n      Caption = \"OK\"\r\n   End\r\nEnd\r\n";
  }
  text += "Attribute VB_Name = \"M" + QByteArray::number(file) + "\"\r\nOption Explicit\r\n\r\n";
  text += "Private mCount As Long\r\nPublic Const MaxItems As Long = 500\r\n\r\n";
  for (qsizetype lines = text.count('\n'), n = 1; lines < kLinesPerFile; ++n) {
    const QByteArray procedure = Procedure(file, static_cast<int>(n));
    lines += procedure.count('\n');
    text += procedure;
  }
  // Exactly kLinesPerFile lines.
  qsizetype end = 0;
  for (int line = 0; line < kLinesPerFile; ++line) end = text.indexOf('\n', end) + 1;
  text.truncate(end);
  return text;
}

// The generated tree, made once for every benchmark of the run.
const QString& Tree() {
  static QTemporaryDir dir;
  static const QString root = [] {
    const QString path = dir.filePath("Tree");
    const char* const extensions[] = {".bas", ".cls", ".frm"};
    for (int file = 0; file < kFiles; ++file) {
      const QString folder = path + QStringLiteral("/part%1").arg(file / 25);
      QDir().mkpath(folder);
      QFile out(folder + QStringLiteral("/File%1").arg(file) + extensions[file % 3]);
      if (out.open(QIODevice::WriteOnly)) out.write(SourceFileText(file));
    }
    return path;
  }();
  return root;
}

void BM_Measure_Tree(benchmark::State& state) {
  const QString& root = Tree();
  qint64 bytes = 0;
  for (auto _ : state) {
    const ProjectSources sources = ProjectSources::FromPath(root);
    const MeasuredProject project = MeasureSources(sources.projectFile, sources.files);
    benchmark::DoNotOptimize(project.classes.size());
    bytes = 0;
    for (const SourceFile& file : sources.files) bytes += file.bytes.size();
  }
  state.SetBytesProcessed(state.iterations() * bytes);
  state.SetLabel(std::to_string(kFiles * kLinesPerFile) + " lines");
}
BENCHMARK(BM_Measure_Tree)->Unit(benchmark::kMillisecond);

// The program's own finding and reading alone, to tell it from the counting.
void BM_Measure_Gather(benchmark::State& state) {
  const QString& root = Tree();
  for (auto _ : state) {
    const ProjectSources sources = ProjectSources::FromPath(root);
    benchmark::DoNotOptimize(sources.files.size());
  }
}
BENCHMARK(BM_Measure_Gather)->Unit(benchmark::kMillisecond);

// The same files found and read, nothing counted.
void BM_Measure_ReadReference(benchmark::State& state) {
  const QString& root = Tree();
  qint64 bytes = 0;
  for (auto _ : state) {
    bytes = 0;
    QStringList paths;
    for (const QString& part : QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
      for (const QString& name : QDir(root + '/' + part).entryList(QDir::Files))
        paths << root + '/' + part + '/' + name;
    for (const QString& path : paths) {
      QFile file(path);
      if (!file.open(QIODevice::ReadOnly)) continue;
      const QByteArray content = file.readAll();
      benchmark::DoNotOptimize(content.constData());
      bytes += content.size();
    }
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_Measure_ReadReference)->Unit(benchmark::kMillisecond);

// --- The --dump mode: every object, metric and value the counting gives for
// the generated tree, for each file or folder named after --dump, and for
// files mixed at random from those folders' lines, so that a change meant
// only to speed the counting up can be shown to keep every count.

void Dump(const QString& what, const MeasuredProject& project, QByteArray& out) {
  out += "== " + what.toUtf8() + "\n";
  for (const QString& w : project.warnings) out += "warning " + w.toUtf8() + "\n";
  for (const MeasuredClass& c : project.classes) {
    out += "class " + QByteArray::number(c.classNr) + "\n";
    for (qsizetype r = 0; r < c.names.size(); ++r) {
      out += c.names[r].toUtf8();
      for (size_t k = 0; k < c.metrics.size(); ++k) {
        char value[64];
        std::snprintf(value, sizeof value, " %d=%.17g", c.metrics[k],
                      c.values[k][static_cast<size_t>(r)]);
        out += value;
      }
      out += "\n";
    }
  }
}

// Physical lines of every source file under `folder`.
void CollectLines(const QString& path, std::vector<QByteArray>& lines) {
  const ProjectSources sources = ProjectSources::FromPath(path);
  for (const SourceFile& f : sources.files)
    for (const QByteArray& line : f.bytes.split('\n')) lines.push_back(line);
}

int DumpMain(int argc, char** argv) {
  QByteArray out;
  // Files on disc carry their modification times, which change from run to
  // run: left out.
  auto undated = [](std::vector<SourceFile> files) {
    for (SourceFile& f : files) f.date = std::numeric_limits<double>::quiet_NaN();
    return files;
  };
  const ProjectSources tree = ProjectSources::FromPath(Tree());
  Dump(QStringLiteral("generated tree"),
       MeasureSources(QStringLiteral("Tree"), undated(tree.files)), out);
  std::vector<QByteArray> lines;
  for (int a = 2; a < argc; ++a) {
    const QString path = QString::fromLocal8Bit(argv[a]);
    const ProjectSources sources = ProjectSources::FromPath(path);
    Dump(path, MeasureSources(sources.projectFile, undated(sources.files)), out);
    // Each file alone too, as the fuzzing target measures it: its bytes cut in two.
    for (const SourceFile& f : sources.files) {
      const qsizetype half = f.bytes.size() / 2;
      Dump(f.name, MeasureSources(QStringLiteral("One"), {{f.name, f.bytes}}), out);
      Dump(f.name + QStringLiteral(" halves"),
           MeasureSources(QStringLiteral("Two"), {{QStringLiteral("One.cls"), f.bytes.left(half)},
                                                  {QStringLiteral("Two.bas"), f.bytes.mid(half)}}),
           out);
    }
    CollectLines(path, lines);
    // Fuzzing seeds: the first byte picks the kind of the first file.
    for (const QString& name : QDir(path).entryList({QStringLiteral("*.seed")}, QDir::Files)) {
      QFile seed(path + QLatin1Char('/') + name);
      if (!seed.open(QIODevice::ReadOnly)) continue;
      const QByteArray data = seed.readAll();
      if (data.isEmpty()) continue;
      static const char* const kKinds[] = {"bas", "cls", "frm", "ctl", "dsr", "txt"};
      const QByteArray bytes = data.mid(1);
      const qsizetype half = bytes.size() / 2;
      Dump(name,
           MeasureSources(
               QStringLiteral("Fuzz"),
               {{QStringLiteral("One.") + QLatin1String(kKinds[data[0] % 6]), bytes.left(half)},
                {QStringLiteral("dir/Two.bas"), bytes.mid(half)}}),
           out);
      for (const QByteArray& line : bytes.split('\n')) lines.push_back(line);
    }
  }
  for (int file = 0; file < 3; ++file) {
    const QList<QByteArray> generated = SourceFileText(file).split('\n');
    lines.insert(lines.end(), generated.begin(), generated.begin() + 90);
  }
  // Random mixtures of those lines, with some of their characters changed to
  // ones the lexer treats specially.
  if (!lines.empty()) {
    std::mt19937 random(28);
    const char kSpecial[] = "\"':_ \t\r\n#&.()=<>[]!$%@,";
    for (int project = 0; project < 200; ++project) {
      std::vector<SourceFile> files;
      const int fileCount = 1 + static_cast<int>(random() % 3);
      for (int f = 0; f < fileCount; ++f) {
        QByteArray text;
        const int lineCount = static_cast<int>(random() % 60);
        for (int l = 0; l < lineCount; ++l) {
          QByteArray line = lines[random() % lines.size()];
          if (random() % 4 == 0 && !line.isEmpty())
            line[static_cast<qsizetype>(random() % static_cast<unsigned>(line.size()))] =
                kSpecial[random() % (sizeof kSpecial - 1)];
          text += line + (random() % 5 == 0 ? "\r\n" : "\n");
        }
        static const char* const kExtensions[] = {".bas", ".cls", ".frm", ".ctl"};
        const double date = random() % 3 == 0 ? 45000 + static_cast<double>(random() % 100) / 8
                                              : std::numeric_limits<double>::quiet_NaN();
        files.push_back({QStringLiteral("F%1").arg(f) + kExtensions[random() % 4], text, date});
      }
      Dump(QStringLiteral("mix %1").arg(project), MeasureSources(QStringLiteral("Mix"), files),
           out);
    }
  }
  std::fwrite(out.constData(), 1, static_cast<size_t>(out.size()), stdout);
  std::fprintf(stderr, "md5 %s, %lld bytes\n",
               QCryptographicHash::hash(out, QCryptographicHash::Md5).toHex().constData(),
               static_cast<long long>(out.size()));
  return 0;
}

}  // namespace

// `bench_measure --dump [path...]` prints the counts instead of timing them.
int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--dump") == 0) return DumpMain(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
