#pragma once

#include <memory>

#include <QString>

#include "core/MetricDefinitions.h"

namespace ombrelle {

class MetricRead;

// Reads the values the project status report talks about from one analysis
// and, for a comparison, from a second one, and turns them into the report's
// words: values with the other analysis's value in grey brackets, and counted
// phrases such as "There are 3 [5] files". Owns one MetricRead per analysis.
class MetricRetriever {
 public:
  MetricRetriever();
  ~MetricRetriever();
  MetricRetriever(const MetricRetriever&) = delete;
  MetricRetriever& operator=(const MetricRetriever&) = delete;

  // Opens `database` (an index of the search-path list) and, when
  // `database2` is above 0, the analysis to compare with. False when either
  // cannot be opened.
  bool Initialize(int database, int database2);
  MetricRead* GetReader() const { return m_reader.get(); }
  MetricRead* GetReader2() const { return m_reader2.get(); }

  // The value of `metric` as text ("N/A" when the analysis lacks it), in
  // `format` or, with 0, the metric's own; with a comparison followed by the
  // second analysis's value in a grey bracket.
  QString GetValue(MetricId metric, int format = 0) const;
  // A counted phrase for the values of `metric` in [rangeMin, rangeMax]
  // (rangeMax excluded with `openMax`): "1 file has", "no procedures",
  // "There are 3 [5] files". `noun` and `verb` are singular; `thereAre`
  // starts the phrase with "There is"/"There are"; `capital` upper-cases the
  // first letter.
  QString GetRangeCount(MetricId metric, double rangeMin, double rangeMax, bool openMax,
                        const QString& noun, bool thereAre, const QString& verb,
                        bool capital) const;

 private:
  QString ValueText(MetricRead& reader, MetricId metric, int format) const;
  static int CountInRange(MetricRead& reader, MetricId metric, double rangeMin, double rangeMax,
                          bool openMax);
  static std::unique_ptr<MetricRead> Open(int database);

  std::unique_ptr<MetricRead> m_reader;
  std::unique_ptr<MetricRead> m_reader2;
};

// The grey bracket that follows a value with the compared analysis's value.
QString AltBracket(const QString& text);

}  // namespace ombrelle
