#include "pictures/MetafileRendering.h"

#include <cstdlib>

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include "common/OutsideReaders.h"
#include "pictures/MetafileConversions.h"

namespace ombrelle::test {

namespace {

bool WriteAll(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

}  // namespace

ReaderImages RenderThroughReaders(const MetaPicture& picture, const QString& base, int width,
                                  int height) {
  ReaderImages images;
  if (!WriteAll(base + ".emf", EmfBytes(picture)) ||
      !WriteAll(base + ".wmf", PlaceableWmfBytes(picture, 1)))
    return images;
  ExpectEmf2SvgAccepts(base + ".emf", base + "-emf.svg");
  ExpectWmf2SvgAccepts(base + ".wmf", base + "-wmf.svg");
  QSvgRenderer svg(base + "-emf.svg");
  if (svg.isValid()) {
    images.emf = QImage(width, height, QImage::Format_RGB32);
    images.emf.fill(Qt::white);
    QPainter painter(&images.emf);
    svg.render(&painter);
    painter.end();
    images.emf.save(base + "-emf.png");
  }
  // The 16-bit reader's SVG leaves the fill of open lines unset, which SVG
  // reads as black; open lines are given no fill before drawing it.
  QFile wmfSvg(base + "-wmf.svg");
  if (wmfSvg.open(QIODevice::ReadOnly)) {
    // It also copies the text's 8-bit characters into the SVG as they are,
    // which is not UTF-8 once a text has an accent.
    QByteArray text = QString::fromLatin1(wmfSvg.readAll()).toUtf8();
    text.replace("style=\"stroke-width", "style=\"fill:none; stroke-width");
    QSvgRenderer wmf(text);
    if (wmf.isValid()) {
      images.wmf = QImage(width, height, QImage::Format_RGB32);
      images.wmf.fill(Qt::white);
      QPainter painter(&images.wmf);
      wmf.render(&painter);
      painter.end();
      images.wmf.save(base + "-wmf.png");
    }
  }
  return images;
}

double DifferingShare(const QImage& a, const QImage& b) {
  const QSize small(std::max(1, a.width() / 4), std::max(1, a.height() / 4));
  const QImage sa = a.convertToFormat(QImage::Format_RGB32)
                        .scaled(small, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  const QImage sb = b.convertToFormat(QImage::Format_RGB32)
                        .scaled(small, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  qint64 differing = 0;
  for (int y = 0; y < small.height(); ++y) {
    for (int x = 0; x < small.width(); ++x) {
      const QRgb p = sa.pixel(x, y), q = sb.pixel(x, y);
      if (std::abs(qRed(p) - qRed(q)) > 64 || std::abs(qGreen(p) - qGreen(q)) > 64 ||
          std::abs(qBlue(p) - qBlue(q)) > 64)
        ++differing;
    }
  }
  return double(differing) / (small.width() * small.height());
}

QImage SideBySide(const std::vector<QImage>& images) {
  int width = 0, height = 0;
  for (const QImage& i : images) {
    width += i.width() + 8;
    height = std::max(height, i.height());
  }
  QImage out(width, height, QImage::Format_RGB32);
  out.fill(Qt::gray);
  QPainter painter(&out);
  int x = 0;
  for (const QImage& i : images) {
    painter.drawImage(x, 0, i);
    x += i.width() + 8;
  }
  return out;
}

}  // namespace ombrelle::test
