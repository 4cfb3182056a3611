// Measuring source code: a generated tree of 200,000 lines of Visual Basic
// (100 modules, classes and forms) gathered from disc and counted, against
// reading the same files' bytes.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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
  for (int n = 1; text.count('\n') < kLinesPerFile; ++n) text += Procedure(file, n);
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

}  // namespace

BENCHMARK_MAIN();
