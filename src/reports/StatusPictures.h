#pragma once

#include "reports/StatusReport.h"

namespace ombrelle {

class Bitmap;

// Embeds `bitmap` in the archive as a BMP part named `url`; false without a
// bitmap or when the part cannot be written.
bool Bitmap2MHT(const Bitmap* bitmap, MHTSaver& saver, const QString& url);

// The pictures of the status report drawn by the chart engine at 450 pixels
// wide and embedded as BMP parts.
class ChartStatusPictures : public StatusPictures {
 public:
  static constexpr int Width = 450;
  QString LinesCompare(MHTSaver& saver, MetricRead& first, MetricRead& second) override;
  QString LinesPie(MHTSaver& saver, MetricRead& reader, int number) override;
  QString Histogram(MHTSaver& saver, const MetricRetriever& retriever, MetricId metric) override;
};

}  // namespace ombrelle
