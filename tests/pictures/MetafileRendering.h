#pragma once

#include <vector>

#include <QImage>
#include <QString>

#include "pictures/MetaRecord.h"

namespace ombrelle::test {

struct ReaderImages {
  QImage emf;  // emf2svg-conv, the SVG drawn by Qt's SVG renderer
  QImage wmf;  // wmf2svg, drawn the same way
};

// Saves `picture` as `base`.emf and `base`.wmf, has the outside readers draw
// them, and returns their pictures scaled to width x height on white.
ReaderImages RenderThroughReaders(const MetaPicture& picture, const QString& base, int width,
                                  int height);

// Share of pixels that differ between two pictures of one size after both
// are softened (scaled down four times, smoothly), so that lines a pixel
// apart or a pixel wider still count as alike: a pixel differs when one of
// its channels differs by more than 64.
double DifferingShare(const QImage& a, const QImage& b);

// The pictures next to each other, for looking at.
QImage SideBySide(const std::vector<QImage>& images);

}  // namespace ombrelle::test
