#include "core/MetricDefinitions.h"

#include <algorithm>

namespace ombrelle {

namespace {

// Unused id slots of a description hold 0, which no metric has.
const MetricDescriptionEntry* FindDescription(int id) {
  if (id == 0) return nullptr;
  for (const MetricDescriptionEntry& entry : MetricDescriptionEntries()) {
    if (std::find(entry.Ids.begin(), entry.Ids.end(), id) != entry.Ids.end()) return &entry;
  }
  return nullptr;
}

const MetricRecipeEntry* FindRecipe(int id) {
  for (const MetricRecipeEntry& entry : MetricRecipeEntries()) {
    if (entry.Id == id) return &entry;
  }
  return nullptr;
}

}  // namespace

QString MetricDefinitions::GetMetricName(MetricId id, int kind) const {
  const MetricCatalogEntry* entry = FindMetricEntry(id);
  if (!entry) return {};
  switch (kind) {
    case NameAbbreviation:
      return QString::fromUtf8(entry->Abbreviation);
    case NameLong:
      return QString::fromUtf8(entry->Name);
    case NameDescription: {
      const MetricDescriptionEntry* description = FindDescription(id);
      QString text = description ? QString::fromUtf8(description->Text) : QString();
      if (*entry->FormulaText) {
        text += QLatin1Char(' ') + QString::fromUtf8(entry->Abbreviation) + QLatin1Char('=') +
                QString::fromUtf8(entry->FormulaText);
      }
      return text.trimmed();
    }
    case NameFormula:
      return QString::fromUtf8(entry->FormulaText);
    default:
      return {};
  }
}

QString MetricDefinitions::GetMetricClassName(int metricClass, bool shortName) {
  static const char* const kLong[kMetricClassCount] = {"Project", "File", "Class", "Procedure",
                                                       "Variable"};
  static const char* const kShort[kMetricClassCount] = {"proj", "file", "cls", "proc", "var"};
  if (metricClass < 0 || metricClass >= kMetricClassCount) return {};
  return QString::fromLatin1(shortName ? kShort[metricClass] : kLong[metricClass]);
}

MetricClass MetricDefinitions::GetMetricClass(MetricId id) {
  if (id < 2000) return ClassProject;
  if (id < 3000) return ClassFile;
  if (id < 4000) return ClassClass;
  if (id < 5000) return ClassProcedure;
  return ClassVariable;
}

bool MetricDefinitions::MetricSupported(MetricId id) const {
  if (id < kFirstMetricId || id > kLastMetricId) return false;
  if (m_supported.empty()) {
    m_supported.resize(kLastMetricId - kFirstMetricId + 1);
    for (MetricId n = kFirstMetricId; n <= kLastMetricId; ++n)
      m_supported[n - kFirstMetricId] = !GetMetricName(n, NameLong).isEmpty();
  }
  return m_supported[id - kFirstMetricId];
}

int MetricDefinitions::GetMetricFormat(MetricId id) const {
  const MetricCatalogEntry* entry = FindMetricEntry(id);
  return entry ? entry->Format : 0;
}

int MetricDefinitions::GetMetricUseFormat(MetricId id, int use) const {
  const int format = GetMetricFormat(id);
  if (use == 2 && format == 9) return 1;
  if (use != 0 && format < 8) {
    switch (format) {
      case 0:
      case 1:
        return 7;
      case 2:
        return 1;
      case 7:
        return 8;
      default:
        return format;
    }
  }
  return format;
}

MetricRange MetricDefinitions::GetMetricRange(MetricId id) const {
  const MetricCatalogEntry* entry = FindMetricEntry(id);
  return entry ? CatalogRange(*entry) : MetricRange{};
}

bool MetricDefinitions::GetMetricFormula(MetricId id, MetricFormula& formula) const {
  formula = MetricFormula{};
  const MetricRecipeEntry* recipe = FindRecipe(id);
  if (!recipe) return false;
  formula.StepCount = static_cast<std::uint8_t>(recipe->StepCount);
  std::copy(recipe->Terms.begin(), recipe->Terms.end(), formula.Terms.begin());
  std::copy(recipe->Operators.begin(), recipe->Operators.end(), formula.Operators.begin());
  formula.WholeNumber = recipe->WholeNumber;
  formula.SummaryMetric = recipe->SummaryMetric;
  formula.SummaryKind = recipe->SummaryKind;
  return true;
}

QString MetricDefinitions::SizeCategory(double lines) {
  if (lines <= 9999) return QStringLiteral("Small");
  if (lines < 50000) return QStringLiteral("Medium");
  if (lines <= 99999) return QStringLiteral("Semi-large");
  if (lines <= 499999) return QStringLiteral("Large");
  return QStringLiteral("Very large");
}

}  // namespace ombrelle
