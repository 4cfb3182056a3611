// Recording a chart-sized picture of 5,000 primitives and playing it into a
// 1500 x 1120 bitmap of 8 bits, against QPainter drawing the same primitives
// straight into an image of that size (the reference).
#include <benchmark/benchmark.h>

#include <cstdlib>

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include "pictures/Bitmap.h"
#include "pictures/Metafile.h"

namespace {

using ombrelle::Bitmap;
using ombrelle::Metafile;

constexpr int kPrimitives = 5000;
constexpr int kWidth = 1500, kHeight = 1120;  // one pixel per 0.1 mm unit of a 150 x 112 mm chart

const std::uint32_t kColours[16] = {0x000000, 0x0000FF, 0x00A000, 0xFF0000, 0x00C0FF, 0xFF00FF,
                                    0x808080, 0xC0C0C0, 0x008080, 0x800080, 0x808000, 0x80FF80,
                                    0x8080FF, 0xFF8080, 0x004080, 0x408000};

QColor Q(std::uint32_t c) { return QColor(c & 0xFF, (c >> 8) & 0xFF, c >> 16); }

// The k-th primitive: a position and a kind, the same for both sides.
struct Shape {
  int kind;  // 0 line, 1 bordered box, 2 triangle, 3 text
  int x, y, w, h;
  std::uint32_t colour;
};

std::vector<Shape> Shapes() {
  std::vector<Shape> shapes;
  unsigned seed = 12345;
  const auto next = [&seed](int n) {
    seed = seed * 1103515245u + 12345u;
    return static_cast<int>((seed >> 16) % static_cast<unsigned>(n));
  };
  for (int k = 0; k < kPrimitives; ++k) {
    const int kind = k % 10 < 4 ? 0 : k % 10 < 7 ? 1 : k % 10 < 9 ? 2 : 3;
    shapes.push_back({kind, next(1400), next(1000), 10 + next(90), 10 + next(110), kColours[next(16)]});
  }
  return shapes;
}

void BM_Metafile_RecordAndPlay8Bit(benchmark::State& state) {
  const std::vector<Shape> shapes = Shapes();
  for (auto _ : state) {
    Metafile meta;
    meta.Create(150, 112, false, QStringLiteral("Bench"), QString());
    meta.SetLineProperties(2, 0);
    meta.Font().size = 30;
    meta.ApplyFont(false);
    for (const Shape& s : shapes) {
      const float x = float(s.x), y = float(-s.y);
      switch (s.kind) {
        case 0:
          meta.DrawLine(x, y, x + s.w, y - s.h, s.colour);
          break;
        case 1:
          meta.DrawBox(x, y, x + s.w, y - s.h, s.colour, true);
          break;
        case 2:
          meta.DrawTriangle(x, y, x + s.w, y, x + s.w / 2.0f, y - s.h, s.colour, true);
          break;
        default:
          meta.PrintText(QStringLiteral("Label 42"), x, y);
          break;
      }
    }
    meta.Ready();
    Bitmap bitmap;
    bitmap.Create(kWidth, kHeight, 8, meta.GetColors());
    bitmap.DrawBackColor(0xFFFFFF);
    bitmap.PlayMeta(meta, 0, 0, kWidth, kHeight);
    benchmark::DoNotOptimize(bitmap.Image().constBits());
  }
  state.SetItemsProcessed(state.iterations() * kPrimitives);
}
BENCHMARK(BM_Metafile_RecordAndPlay8Bit)->Unit(benchmark::kMillisecond);

void BM_Metafile_QPainterDirectReference(benchmark::State& state) {
  const std::vector<Shape> shapes = Shapes();
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(30);
  font.setStyleStrategy(QFont::NoAntialias);
  for (auto _ : state) {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    const QPen black(Qt::black, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    for (const Shape& s : shapes) {
      switch (s.kind) {
        case 0:
          painter.setPen(QPen(Q(s.colour), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
          painter.drawLine(s.x, s.y, s.x + s.w, s.y + s.h);
          break;
        case 1:
          painter.fillRect(s.x, s.y, s.w, s.h, Q(s.colour));
          painter.setPen(black);
          painter.setBrush(Qt::NoBrush);
          painter.drawRect(s.x, s.y, s.w, s.h);
          break;
        case 2: {
          const QPointF points[3] = {QPointF(s.x, s.y), QPointF(s.x + s.w, s.y),
                                     QPointF(s.x + s.w / 2.0, s.y + s.h)};
          painter.setPen(Qt::NoPen);
          painter.setBrush(Q(s.colour));
          painter.drawPolygon(points, 3);
          painter.setPen(black);
          painter.drawPolyline(points, 3);
          painter.drawLine(points[2], points[0]);
          break;
        }
        default:
          painter.setPen(Qt::black);
          painter.drawText(s.x, s.y + 28, QStringLiteral("Label 42"));
          break;
      }
    }
    painter.end();
    benchmark::DoNotOptimize(image.constBits());
  }
  state.SetItemsProcessed(state.iterations() * kPrimitives);
}
BENCHMARK(BM_Metafile_QPainterDirectReference)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
