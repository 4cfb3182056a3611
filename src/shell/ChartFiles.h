#pragma once

#include <QString>

namespace ombrelle {

class ZelmChart;

// The picture files a chart can be saved as, told by the file's extension.
enum class PictureKind { None, Gif, Bmp, Emf, Wmf, Png, Svg };

// The kind that `file`'s extension names (any case); None for any other.
PictureKind PictureKindOfFile(const QString& file);

// The width of a chart bitmap when none is asked for, in pixels.
inline constexpr int kDefaultChartWidth = 1500;

// The height of a bitmap `width` pixels wide that keeps the chart's aspect.
int ChartBitmapHeight(ZelmChart& chart, int width);

// Saves a drawn chart as a picture file of `kind`. Bitmaps (GIF, BMP, PNG)
// are `width` pixels wide with the chart's aspect: GIF and BMP in the fewest
// colours that hold the picture (BMP run-length encoded when smaller), PNG
// in 24 bits. An EMF keeps the recording's own size, a WMF is written at
// scale 1 and an SVG at the recording's size in screen pixels. Every file
// goes through a temporary name; failures are told through the
// user-interface service and the result is false.
bool SaveChartFile(ZelmChart& chart, const QString& file, PictureKind kind, int width);

}  // namespace ombrelle
