#include "reports/MetricRetriever.h"

#include "core/MetricRead.h"
#include "reports/English.h"
#include "support/FormatNum.h"

namespace ombrelle {

MetricRetriever::MetricRetriever() = default;
MetricRetriever::~MetricRetriever() = default;

QString AltBracket(const QString& text) {
  return QStringLiteral(" <SPAN CLASS=\"alt\">[") + text + QStringLiteral("]</SPAN>");
}

std::unique_ptr<MetricRead> MetricRetriever::Open(int database) {
  auto reader = std::make_unique<MetricRead>();
  reader->SetDataMode(DataModes::OneFile, 0, 0);
  if (!reader->OpenDatabase2(database)) return nullptr;
  return reader;
}

bool MetricRetriever::Initialize(int database, int database2) {
  m_reader = Open(database);
  m_reader2.reset();
  if (!m_reader) return false;
  if (database2 > 0) {
    m_reader2 = Open(database2);
    if (!m_reader2) {
      m_reader.reset();
      return false;
    }
  }
  return true;
}

QString MetricRetriever::ValueText(MetricRead& reader, MetricId metric, int format) const {
  if (!reader.MetricAvailable(metric)) return QStringLiteral("N/A");
  if (format == 0) {
    const MetricDefinitions& definitions = reader.Definitions();
    format = MetricDefinitions::GetMetricClass(metric) == ClassProject
                 ? definitions.GetMetricFormat(metric)
                 : definitions.GetMetricUseFormat(metric, 1);
  }
  return FormatMetric(format, reader.GetSingleValue(metric));
}

QString MetricRetriever::GetValue(MetricId metric, int format) const {
  if (!m_reader) return QStringLiteral("N/A");
  QString text = ValueText(*m_reader, metric, format);
  if (m_reader2) text += AltBracket(ValueText(*m_reader2, metric, format));
  return text;
}

int MetricRetriever::CountInRange(MetricRead& reader, MetricId metric, double rangeMin,
                                  double rangeMax, bool openMax) {
  const CStats values = reader.GetValues(metric);
  return openMax ? values.ValueCountRangeOpenMax(rangeMin, rangeMax)
                 : values.ValueCountRange(rangeMin, rangeMax);
}

QString MetricRetriever::GetRangeCount(MetricId metric, double rangeMin, double rangeMax,
                                       bool openMax, const QString& noun, bool thereAre,
                                       const QString& verb, bool capital) const {
  if (!m_reader) return {};
  const QString sep = verb.isEmpty() ? QString() : QStringLiteral(" ");
  const bool zeroPlural = thereAre || (verb.isEmpty() && !capital);
  QString phrase;
  int n = 0;
  if (!m_reader->MetricAvailable(metric)) {
    phrase = QStringLiteral("N/A# ") + PluralNoun(noun) + sep + verb;
  } else {
    n = CountInRange(*m_reader, metric, rangeMin, rangeMax, openMax);
    if (n == 0 && zeroPlural) {
      phrase = QStringLiteral("no# ") + PluralNoun(noun) + sep + verb;
    } else if (n == 0) {
      phrase = QStringLiteral("no# ") + noun + sep + SingularVerb(verb);
    } else if (n == 1) {
      phrase = QStringLiteral("1# ") + noun + sep + SingularVerb(verb);
    } else {
      phrase = FormatMetric(1, n) + QStringLiteral("# ") + PluralNoun(noun) + sep + verb;
    }
  }
  if (thereAre)
    phrase = (n == 1 ? QStringLiteral("There is ") : QStringLiteral("There are ")) + phrase;

  QString marker;
  if (m_reader2) {
    marker = m_reader2->MetricAvailable(metric)
                 ? AltBracket(FormatMetric(
                       1, CountInRange(*m_reader2, metric, rangeMin, rangeMax, openMax)))
                 : AltBracket(QStringLiteral("N/A"));
  }
  phrase.replace(QLatin1Char('#'), marker);
  if (capital && !phrase.isEmpty()) phrase[0] = phrase[0].toUpper();
  return phrase;
}

}  // namespace ombrelle
