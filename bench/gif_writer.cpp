// Writing one 1500 x 1120 chart picture (white ground, grid, bars, smooth
// lines and text, so a few hundred colours) as an interlaced GIF: our writer
// (palette reduction, mapping, LZW, file) against gifsicle, which reads the
// same palette-mapped pixels from a plain GIF and writes them interlaced,
// and against ImageMagick's convert, which reduces the true-colour picture
// itself. The labels give the file sizes.
//
// The process's CPU time leaves out a child's, so after each run of an
// outside program this process spins for as long as the child's own CPU time
// (user and system, from wait4): the CPU column then compares the work of
// the three writers. The child's CPU time is also the counter child_cpu_ms.
#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>

#include <cstdlib>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "pictures/BitmapData.h"
#include "pictures/GIFSaver.h"
#include "pictures/ReducePicture.h"

extern char** environ;

using namespace ombrelle;

namespace {

constexpr int kWidth = 1500;
constexpr int kHeight = 1120;

QImage ChartPixels() {
  QImage image(kWidth, kHeight, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setPen(QColor(220, 220, 220));
  for (int y = 100; y < 1000; y += 45) painter.drawLine(120, y, 1440, y);
  painter.setPen(QPen(Qt::black, 2));
  painter.drawLine(120, 1000, 1440, 1000);
  painter.drawLine(120, 100, 120, 1000);
  const QColor colors[] = {QColor(0, 0, 255),   QColor(255, 0, 0),   QColor(0, 128, 0),
                           QColor(255, 165, 0), QColor(128, 0, 128), QColor(0, 128, 128)};
  for (int i = 0; i < 24; ++i) {
    const int h = 120 + (i * 337) % 760;
    painter.fillRect(150 + i * 53, 1000 - h, 38, h, colors[i % 6]);
  }
  painter.setRenderHint(QPainter::Antialiasing);
  for (int line = 0; line < 3; ++line) {
    QPainterPath path;
    for (int x = 0; x <= 1300; x += 20) {
      const double y = 500 + 250 * std::sin((x + line * 200) / 140.0) - line * 60;
      if (x == 0)
        path.moveTo(130 + x, y);
      else
        path.lineTo(130 + x, y);
    }
    painter.setPen(QPen(colors[(line + 3) % 6], 3));
    painter.drawPath(path);
  }
  QFont font(QStringLiteral("DejaVu Sans"), 14);
  painter.setFont(font);
  painter.setPen(Qt::black);
  for (int i = 0; i < 24; ++i) painter.drawText(150 + i * 53, 1030, QString::number(2000 + i));
  for (int y = 100; y < 1000; y += 90) painter.drawText(40, y + 5, QString::number(1000 - y));
  font.setPointSize(28);
  painter.setFont(font);
  painter.drawText(QRect(0, 20, kWidth, 60), Qt::AlignCenter,
                   QStringLiteral("Lines of code per file over two years"));
  painter.end();
  return image;
}

struct Inputs {
  QTemporaryDir dir;
  QImage chart = ChartPixels();
  QString ppm;       // the true-colour picture for ImageMagick
  QString plainGif;  // our palette-mapped pixels, not interlaced, for gifsicle
};

Inputs& Shared() {
  static Inputs inputs = [] {
    Inputs in;
    in.ppm = in.dir.filePath(QStringLiteral("chart.ppm"));
    in.chart.save(in.ppm, "PPM");
    BitmapData data;
    data.GetData(in.chart);
    const IndexedPicture mapped = ReducePicture(data, 8, std::nullopt, {});
    QImage indexed(mapped.width, mapped.height, QImage::Format_RGB32);
    for (int y = 0; y < mapped.height; ++y)
      for (int x = 0; x < mapped.width; ++x) {
        const std::uint32_t c = mapped.palette[mapped.pixels[std::size_t(y) * mapped.width + x]];
        indexed.setPixel(x, y, qRgb(RedOf(c), GreenOf(c), BlueOf(c)));
      }
    const QString mappedPpm = in.dir.filePath(QStringLiteral("mapped.ppm"));
    indexed.save(mappedPpm, "PPM");
    in.plainGif = in.dir.filePath(QStringLiteral("plain.gif"));
    const QString convert = QStandardPaths::findExecutable(QStringLiteral("convert"));
    if (!convert.isEmpty())
      std::system(
          QStringLiteral("'%1' '%2' '%3'").arg(convert, mappedPpm, in.plainGif).toLocal8Bit());
    return in;
  }();
  return inputs;
}

QString SizeLabel(const QString& path) {
  return QStringLiteral("file %1 B").arg(QFileInfo(path).size());
}

double ProcessCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Runs a program to its end; `childCpu` gets its user and system time.
bool RunChild(const QString& program, const QStringList& arguments, double& childCpu) {
  std::vector<QByteArray> storage{program.toLocal8Bit()};
  for (const QString& a : arguments) storage.push_back(a.toLocal8Bit());
  std::vector<char*> argv;
  for (QByteArray& s : storage) argv.push_back(s.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return false;
  int status = 0;
  rusage usage{};
  if (wait4(pid, &status, 0, &usage) != pid) return false;
  childCpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
             double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Charges `seconds` of CPU time to this process.
void Spin(double seconds) {
  const double end = ProcessCpuSeconds() + seconds;
  volatile std::uint64_t sink = 0;
  while (ProcessCpuSeconds() < end) sink = sink + 1;
}

void BM_GifWrite_Ours(benchmark::State& state) {
  Inputs& in = Shared();
  const QString out = in.dir.filePath(QStringLiteral("ours.gif"));
  for (auto _ : state) {
    BitmapData data;
    data.GetData(in.chart);
    const IndexedPicture picture = ReducePicture(data, 8, std::nullopt, {});
    QString result;
    if (!GIFSaver().Save(picture, out, result, QString(), std::nullopt)) {
      state.SkipWithError(result.toStdString().c_str());
      return;
    }
  }
  state.SetLabel(SizeLabel(out).toStdString());
}
BENCHMARK(BM_GifWrite_Ours)->Unit(benchmark::kMillisecond);

void RunOutside(benchmark::State& state, const QString& name, const QStringList& arguments,
                const QString& out) {
  const QString program = QStandardPaths::findExecutable(name);
  if (program.isEmpty()) {
    state.SkipWithError((name + QStringLiteral(" is not installed")).toStdString().c_str());
    return;
  }
  double total = 0;
  for (auto _ : state) {
    double childCpu = 0;
    if (!RunChild(program, arguments, childCpu)) {
      state.SkipWithError((name + QStringLiteral(" failed")).toStdString().c_str());
      return;
    }
    Spin(childCpu);
    total += childCpu;
  }
  state.counters["child_cpu_ms"] = total * 1000 / double(state.iterations());
  state.SetLabel(SizeLabel(out).toStdString());
}

void BM_GifWrite_GifsicleReference(benchmark::State& state) {
  Inputs& in = Shared();
  const QString out = in.dir.filePath(QStringLiteral("gifsicle.gif"));
  RunOutside(state, QStringLiteral("gifsicle"),
             {QStringLiteral("--interlace"), in.plainGif, QStringLiteral("-o"), out}, out);
}
BENCHMARK(BM_GifWrite_GifsicleReference)->Unit(benchmark::kMillisecond);

void BM_GifWrite_ImageMagick(benchmark::State& state) {
  Inputs& in = Shared();
  const QString out = in.dir.filePath(QStringLiteral("convert.gif"));
  RunOutside(state, QStringLiteral("convert"),
             {in.ppm, QStringLiteral("-interlace"), QStringLiteral("GIF"), out}, out);
}
BENCHMARK(BM_GifWrite_ImageMagick)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
