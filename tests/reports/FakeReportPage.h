#pragma once

// A report page made up in a test, shared by the report suites.

#include <array>
#include <memory>
#include <vector>

#include <QStringList>

#include "reports/ReportPage.h"
#include "stats/CStats.h"

namespace ombrelle {

// A page of fixed texts: cells[r - 1][c - 1], the kind shown by a prefix
// ("h:" for HTML, "p:" otherwise) on number cells (those starting with a digit).
class FakePage : public ReportPage {
 public:
  bool Loaded() const override { return loaded; }
  bool Rotated() const override { return rotated; }
  int Columns() const override { return static_cast<int>(captions.size()); }
  int Rows() const override { return static_cast<int>(cells.size()); }
  QString ColumnCaption(int column) const override { return captions.value(column - 1); }
  QString CellExportText(int row, int column, int kind) const override {
    const QString text = cells.at(row - 1).value(column - 1);
    if (!text.isEmpty() && text.at(0).isDigit())
      return (kind == ExportKind::Html ? QStringLiteral("h:") : QStringLiteral("p:")) + text;
    return text;
  }
  QString Heading() const override { return QStringLiteral("Procedure metrics"); }
  QString SubHeading() const override { return subHeading; }
  QString PageTitle() const override { return pageTitle; }
  int MetricClassOfPage() const override { return pageClass; }
  int SeriesCount() const override { return static_cast<int>(series.size()); }
  MetricId SeriesMetric(int index) const override { return ids.at(index - 1); }
  QString SeriesCaption(int index) const override {
    return definitions.GetMetricName(ids.at(index - 1), NameAbbreviation);
  }
  CStats* SeriesStats(int index) const override { return series.at(index - 1).get(); }
  int MetricFormatOnPage(MetricId, int kind) const override { return formats.at(kind); }
  bool FullStatsAvailable() const override { return full; }
  QString OutlierText(int) const override { return QStringLiteral("<1, >9"); }
  QString SumText(int index) const override { return sums.value(index - 1); }
  const MetricDefinitions& Definitions() const override { return definitions; }

  bool loaded = true;
  bool rotated = false;
  bool full = true;
  int pageClass = ClassProcedure;
  QString subHeading;
  QString pageTitle;
  std::array<int, 3> formats{1, 7, 7};  // value, average, deviation
  QStringList sums;
  QStringList captions;
  std::vector<QStringList> cells;
  std::vector<MetricId> ids;
  std::vector<std::unique_ptr<CStats>> series;
  MetricDefinitions definitions;
};

}  // namespace ombrelle
