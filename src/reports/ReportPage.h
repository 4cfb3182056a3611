#pragma once

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class CStats;

// The kinds of table export, numbered as the filters of the export dialog.
namespace ExportKind {
constexpr int Csv = 1;
constexpr int Html = 2;
constexpr int Text = 3;
}  // namespace ExportKind

// The current page of the main window as the reports read it: the table as
// the grid shows it (display order and rotation) and the page's series.
// The window's model implements it; the reports never see a widget.
class ReportPage {
 public:
  virtual ~ReportPage() = default;

  // --- The table as shown -------------------------------------------------
  virtual bool Loaded() const = 0;
  virtual bool Rotated() const = 0;
  virtual int Columns() const = 0;  // grid columns, the header columns included
  virtual int Rows() const = 0;     // grid rows
  virtual QString ColumnCaption(int column) const = 0;
  // A cell as exported text, not yet entity-encoded: the display form of the
  // number for ExportKind::Html, the plain form otherwise; "" for no value.
  virtual QString CellExportText(int row, int column, int kind) const = 0;
  // The H1 text: the page's class name and " metrics".
  virtual QString Heading() const = 0;
  // The paragraph under it, plain text; "" for none.
  virtual QString SubHeading() const = 0;
  // The title of the page under charts and in the page reports, plain text.
  virtual QString PageTitle() const = 0;

  // --- The series of the page, in column order -----------------------------
  virtual int MetricClassOfPage() const = 0;
  virtual int SeriesCount() const = 0;
  // 1..SeriesCount.
  virtual MetricId SeriesMetric(int index) const = 0;
  virtual QString SeriesCaption(int index) const = 0;
  // Null for a released column.
  virtual CStats* SeriesStats(int index) const = 0;
  // FormatMetric code of the metric on this page: kind 0 value, 1 average, 2 deviation.
  virtual int MetricFormatOnPage(MetricId id, int kind) const = 0;
  // Whether averages and outlier fences mean something on this page.
  virtual bool FullStatsAvailable() const = 0;
  // The outlier fences of a series as the statistics panel shows them.
  virtual QString OutlierText(int index) const = 0;
  // The sum of a series as the statistics panel shows it: "" where a sum
  // means nothing (percentages, dates, per-item averages on project pages).
  virtual QString SumText(int index) const = 0;
  virtual const MetricDefinitions& Definitions() const = 0;
};

}  // namespace ombrelle
