#include "ChartTestSupport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>

#include "pictures/Metafile.h"

namespace ombrelle::charttest {

CStats Series(const std::vector<double>& values, int dataType) {
  CStats s;  // sized as the reader sizes its columns: no unfilled slots
  s.Init(static_cast<std::int32_t>(values.size()));
  for (double v : values) s.AddValueQuick(v);
  s.CalcStats();
  s.DataType = dataType;
  return s;
}

CStats SeriesWithHoles(const std::vector<double>& values, const std::vector<bool>& defined) {
  CStats s;
  s.Init(static_cast<std::int32_t>(values.size()), true);
  for (std::size_t i = 0; i < values.size(); ++i)
    if (defined[i]) s.AddValueIndex(values[i], static_cast<std::int32_t>(i + 1));
  s.CalcStats();
  return s;
}

namespace {

const char* KindName(MetaRecord::Kind kind) {
  static const char* names[] = {"Line",   "Polyline", "Polygon",    "FillRect",  "Ellipse", "Pie",
                                "Bezier", "DrawText", "ExtTextOut", "FloodFill", "Picture"};
  return names[kind];
}

QString Hex(std::uint32_t colour) {
  return QStringLiteral("#%1").arg(colour, 6, 16, QLatin1Char('0'));
}

}  // namespace

QString DumpRecords(const std::vector<MetaRecord>& records) {
  QString out;
  for (const MetaRecord& r : records) {
    out += QLatin1String(KindName(r.kind));
    for (const QPoint& p : r.points) out += QStringLiteral(" %1,%2").arg(p.x()).arg(p.y());
    switch (r.kind) {
      case MetaRecord::Line:
      case MetaRecord::Polyline:
      case MetaRecord::Bezier:
        out += QStringLiteral(" pen %1 %2").arg(r.pen.width).arg(Hex(r.pen.color));
        break;
      case MetaRecord::Polygon:
      case MetaRecord::FillRect:
        out += QStringLiteral(" brush %1").arg(Hex(r.brush.color));
        break;
      case MetaRecord::Ellipse:
      case MetaRecord::Pie:
        out += QStringLiteral(" pen %1 %2 brush %3")
                   .arg(r.pen.width)
                   .arg(Hex(r.pen.color))
                   .arg(r.brush.style == MetaBrush::Null ? QStringLiteral("none")
                                                         : Hex(r.brush.color));
        break;
      case MetaRecord::DrawText:
      case MetaRecord::ExtTextOut:
        out += QStringLiteral(" size %1 %2 \"%3\"")
                   .arg(-r.font.height)
                   .arg(Hex(r.textColor))
                   .arg(r.text);
        break;
      default:
        break;
    }
    out += QLatin1Char('\n');
  }
  return out;
}

std::vector<const MetaRecord*> RecordsOf(const std::vector<MetaRecord>& records,
                                         MetaRecord::Kind kind) {
  std::vector<const MetaRecord*> found;
  for (const MetaRecord& r : records)
    if (r.kind == kind) found.push_back(&r);
  return found;
}

QStringList TextsOf(const std::vector<MetaRecord>& records) {
  QStringList texts;
  for (const MetaRecord& r : records)
    if (r.kind == MetaRecord::DrawText || r.kind == MetaRecord::ExtTextOut) texts << r.text;
  return texts;
}

QString CheckGolden(ZelmChart& chart, const QString& name) {
  const Metafile& picture = chart.GetMetafile();
  const QString dump = DumpRecords(picture.Records());

  const QString folder = QStringLiteral(OMBRELLE_BUILD_DIR "/test-output/Chart");
  QDir().mkpath(folder);
  const int width = 1200;
  const int height = static_cast<int>(width / chart.PageAspect() + 0.5);
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::white);
  {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    picture.Play(painter, 0, 0, width - 1, height - 1, true);
  }
  image.save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));

  const QString path = QStringLiteral(OMBRELLE_TEST_DATA "/chart/") + name + QStringLiteral(".txt");
  if (qEnvironmentVariableIsSet("OMBRELLE_UPDATE_GOLDEN")) {
    QFile out(path);
    if (out.open(QIODevice::WriteOnly | QIODevice::Truncate)) out.write(dump.toUtf8());
    return {};
  }
  QFile in(path);
  if (!in.open(QIODevice::ReadOnly)) return QStringLiteral("missing golden file ") + path;
  const QStringList expected = QString::fromUtf8(in.readAll()).split(QLatin1Char('\n'));
  const QStringList actual = dump.split(QLatin1Char('\n'));
  for (int i = 0; i < std::max(expected.size(), actual.size()); ++i) {
    const QString e = i < expected.size() ? expected[i] : QStringLiteral("<end>");
    const QString a = i < actual.size() ? actual[i] : QStringLiteral("<end>");
    if (e != a)
      return QStringLiteral("%1 line %2:\n expected %3\n actual   %4")
          .arg(name)
          .arg(i + 1)
          .arg(e, a);
  }
  return {};
}

}  // namespace ombrelle::charttest
