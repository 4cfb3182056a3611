// Exchange of limit sets with `.mtl` files: Windows-style INI text with one
// head section and one section per rule.

#include "limits/MetricLimits.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "limits/LimitNumbers.h"
#include "support/SettingsStore.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kHeadSection = QStringLiteral("MTL Metric limits");

// Interim: Latin-1 until the shared Windows-1252 conversion is available.
QByteArray EncodeFileText(const QString& text) { return text.toLatin1(); }

void ShowError(const QString& text) { Ui().MsgBox(text, MsgStyle::Exclamation, UiServices::AppTitle()); }

}  // namespace

bool MetricLimits::Export(const QString& fileName) {
  const QFileInfo info(fileName);
  if ((info.exists() || info.isSymLink()) && !QFile::remove(fileName)) {
    ShowError(QStringLiteral("Cannot delete existing file: ") + fileName);
    return false;
  }
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly)) {
    ShowError(QStringLiteral("Cannot create file ") + fileName + QStringLiteral(": ") + file.errorString());
    return false;
  }

  QStringList lines;
  lines << QLatin1Char('[') + kHeadSection + QLatin1Char(']')
        << QStringLiteral("; Saved by ") + UiServices::AppTitle() << QStringLiteral("Version=1.0")
        << QStringLiteral("Name=") + m_name << QStringLiteral("Rules=") + QString::number(m_rules.size())
        << QString();
  for (size_t i = 0; i < m_rules.size(); ++i) {
    const MetricLimitRule& rule = m_rules[i];
    lines << QStringLiteral("[Rule") + QString::number(i + 1) + QLatin1Char(']')
          << QStringLiteral("Metric=") + QString::number(rule.Metric)
          << QStringLiteral("LimitType=") + QString::number(rule.LimitType);
    if (rule.LimitType == LimitRange) {
      lines << QStringLiteral("LimitMin=") + LimitNumberText(rule.LimitMin)
            << QStringLiteral("LimitMax=") + LimitNumberText(rule.LimitMax);
    } else {
      lines << QStringLiteral("Limit=") + LimitNumberText(rule.LimitMin);
    }
  }
  for (const QString& line : lines) {
    if (file.write(EncodeFileText(line + QStringLiteral("\r\n"))) < 0) break;
  }
  if (!file.commit()) {
    ShowError(file.errorString());
    return false;
  }
  return true;
}

}  // namespace ombrelle
