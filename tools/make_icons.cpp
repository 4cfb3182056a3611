// Draws the program's icon in bitmap sizes from its SVG form with Qt's SVG
// module: tool_make_icons icon.svg out-folder size... writes
// out-folder/<size>x<size>/qvzview.png for each size. Exit status 1 when the
// SVG cannot be read or a PNG cannot be written.
#include <cstdio>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() < 4) {
    std::fprintf(stderr, "usage: tool_make_icons icon.svg out-folder size...\n");
    return 1;
  }
  QSvgRenderer renderer(arguments.at(1));
  if (!renderer.isValid()) {
    std::fprintf(stderr, "cannot read %s\n", qPrintable(arguments.at(1)));
    return 1;
  }
  for (qsizetype i = 3; i < arguments.size(); ++i) {
    const int size = arguments.at(i).toInt();
    if (size < 1) continue;
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
      QPainter painter(&image);
      painter.setRenderHint(QPainter::Antialiasing);
      renderer.render(&painter);
    }
    const QString folder = arguments.at(2) + QStringLiteral("/%1x%1").arg(size);
    QDir().mkpath(folder);
    const QString file = folder + QStringLiteral("/qvzview.png");
    if (!image.save(file, "PNG")) {
      std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
      return 1;
    }
  }
  return 0;
}
