#include "shell/BatchRoad.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "chart/ZelmChart.h"
#include "core/MetricRead.h"
#include "grid/OwnerGridLogic.h"
#include "limits/ChoiceList.h"
#include "limits/MetricLimits.h"
#include "limits/MetricSelection.h"
#include "reports/ChartsReport.h"
#include "reports/English.h"
#include "reports/ListReports.h"
#include "reports/PageReports.h"
#include "reports/ReportFrame.h"
#include "reports/ReportPage.h"
#include "reports/StatusPictures.h"
#include "reports/StatusReport.h"
#include "reports/TableReport.h"
#include "shell/ChartCommands.h"
#include "shell/ChartFiles.h"
#include "shell/PageModel.h"
#include "shell/PageReportSource.h"
#include "shell/ReportCommands.h"
#include "shell/StartupState.h"
#include "support/Filename.h"
#include "support/SettingsStore.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

// Widest bitmap "/WIDTH" accepts: a 24-bit picture of that width stays
// within a few hundred megabytes.
constexpr int kMinWidth = 16;
constexpr int kMaxWidth = 8000;

// The user-interface service of the road: no box is ever shown. Messages
// are kept to be written to standard error, questions are declined (so
// nothing is overwritten), dialogs cancelled, nothing is opened.
class CollectingUiServices : public UiServices {
 public:
  int MsgBox(const QString& text, int style, const QString& title) override {
    QString line = title.isEmpty() ? text : title + QStringLiteral(": ") + text;
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    m_messages.append(line);
    return (style & 0x0F) == MsgStyle::YesNo ? MsgResult::No : MsgResult::Ok;
  }
  void TextBox(const QString&, const QString&) override {}
  QString InputBox(const QString&, const QString&, const QString&) override { return {}; }
  QString SaveFileDialog(const FileDialogRequest&) override { return {}; }
  QString OpenFileDialog(const FileDialogRequest&) override { return {}; }
  QString BrowseFolder(const QString&, const QString&) override { return {}; }
  bool ShellOpen(const QString&) override { return true; }
  void SetClipboardText(const QString&) override {}
  void SetClipboardPicture(const QImage&, const QByteArray&) override {}

  const QStringList& Messages() const { return m_messages; }

 protected:
  void ShowBusy(bool) override {}

 private:
  QStringList m_messages;
};

// Puts a service in force for the life of the object.
class ScopedUi {
 public:
  explicit ScopedUi(UiServices& service) : m_previous(SetUi(&service)) {}
  ~ScopedUi() { SetUi(m_previous); }
  ScopedUi(const ScopedUi&) = delete;
  ScopedUi& operator=(const ScopedUi&) = delete;

 private:
  UiServices* m_previous;
};

// The run works on a copy of the settings file, dropped at its end, so that
// what the commands store on the way (the folder of the input, the limit set
// and selection chosen by switches) lasts for this run only.
class ScopedSettingsCopy {
 public:
  ScopedSettingsCopy() : m_previous(SettingsFilePath()) {
    if (!m_folder.isValid()) return;
    const QString copy = m_folder.filePath(QStringLiteral("Ombrelle.ini"));
    if (QFileInfo::exists(m_previous) && !QFile::copy(m_previous, copy)) return;
    SetSettingsFilePath(copy);
    m_active = true;
  }
  ~ScopedSettingsCopy() {
    if (m_active) SetSettingsFilePath(m_previous);
  }
  ScopedSettingsCopy(const ScopedSettingsCopy&) = delete;
  ScopedSettingsCopy& operator=(const ScopedSettingsCopy&) = delete;

 private:
  QTemporaryDir m_folder;
  QString m_previous;
  bool m_active = false;
};

// A name beside `file` that no file has: the file is written there first.
QString TemporarySibling(const QString& file) {
  const QFileInfo info(file);
  for (;;) {
    const QString name =
        info.absolutePath() + QStringLiteral("/.") + info.fileName() + QLatin1Char('.') +
        QString::number(QRandomGenerator::global()->generate(), 16) + QStringLiteral(".part");
    if (!QFileInfo::exists(name)) return name;
  }
}

// The output must be a file in an existing folder that may be written.
QString OutputProblem(const QString& file) {
  const QFileInfo info(file);
  const QFileInfo folder(info.absolutePath());
  if (!folder.isDir()) return QStringLiteral("the folder does not exist");
  if (info.isDir()) return QStringLiteral("it is a folder");
  if (!folder.isWritable()) return QStringLiteral("the folder is not writable");
  if (info.exists() && !info.isWritable()) return QStringLiteral("the file is read-only");
  return {};
}

QString ClassPlural(int metricClass) {
  return PluralNoun(MetricDefinitions::GetMetricClassName(metricClass, false).toLower());
}

// The number of a limit set or selection in `list` given by number or by
// name (any case).
std::optional<std::int32_t> FindChoice(const ChoiceList& list, const QString& text) {
  bool isNumber = false;
  const int number = text.trimmed().toInt(&isNumber);
  if (isNumber) {
    if (list.FindData(number) >= 0) return number;
    return std::nullopt;
  }
  for (const ChoiceList::Item& item : list.Items())
    if (item.text.compare(text.trimmed(), Qt::CaseInsensitive) == 0) return item.data;
  return std::nullopt;
}

bool HasExtension(const QString& file, std::initializer_list<const char*> extensions) {
  const QString extension = FileExtension(file).toLower();
  for (const char* allowed : extensions)
    if (extension == QLatin1String(allowed)) return true;
  return false;
}

// One run of the road.
class BatchRun {
 public:
  BatchRun(const StartupState& state, const std::function<void(const QString&)>& writeErr)
      : m_state(state), m_request(state.Batch), m_writeErr(writeErr) {}

  int Run() {
    ScopedUi ui(m_ui);
    const bool written = Check() && Write();
    for (const QString& message : m_ui.Messages()) Tell(message);
    if (!m_reason.isEmpty()) Tell(QStringLiteral("qvzview: ") + m_reason);
    return written ? 0 : 1;
  }

 private:
  bool Fail(const QString& reason) {
    m_reason = reason;
    return false;
  }
  void Tell(const QString& line) const {
    if (m_writeErr) m_writeErr(line);
  }
  QString SwitchText() const { return m_request.ReportSwitch; }

  // Everything that can be checked before a database is read.
  bool Check() {
    if (m_state.InputFile.isEmpty())
      return Fail(QStringLiteral("Missing file name parameter: ") + m_state.RawCommandLine);
    if (!QFileInfo(m_state.InputFile).isFile())
      return Fail(QStringLiteral("File not found: ") + m_state.InputFile);
    if (m_state.OutputFile.isEmpty())
      return Fail(QStringLiteral("Missing output file name: ") + m_state.RawCommandLine);
    if (!CheckArgument()) return false;
    const QString problem = OutputProblem(m_state.OutputFile);
    if (!problem.isEmpty())
      return Fail(QStringLiteral("Cannot write to ") + m_state.OutputFile + QStringLiteral(": ") +
                  problem);
    if (m_request.Report == BatchReport::Status && !m_state.CompareFile.isEmpty() &&
        !QFileInfo(m_state.CompareFile).isFile())
      return Fail(QStringLiteral("File not found: ") + m_state.CompareFile);
    if (!m_request.Width.isEmpty()) {
      bool ok = false;
      m_width = m_request.Width.toInt(&ok);
      if (!ok || m_width < kMinWidth || m_width > kMaxWidth)
        return Fail(QStringLiteral("Invalid width \"%1\" in /WIDTH:%1: give a number of pixels "
                                   "from %2 to %3")
                        .arg(m_request.Width)
                        .arg(kMinWidth)
                        .arg(kMaxWidth));
    }
    return true;
  }

  bool NeedExtension(std::initializer_list<const char*> extensions, const QString& names) {
    if (HasExtension(m_state.OutputFile, extensions)) return true;
    return Fail(QStringLiteral("The file %1 writes must end in %2: %3")
                    .arg(SwitchText(), names, m_state.OutputFile));
  }

  bool NeedPage(const QString& text) {
    m_page = PageOfClassName(text);
    if (m_page > 0) return true;
    return Fail(QStringLiteral("Unknown class \"%1\" in %2: use file, cls, proc or var")
                    .arg(text, SwitchText()));
  }

  bool CheckArgument() {
    switch (m_request.Report) {
      case BatchReport::Status:
        return NeedExtension({"mht"}, QStringLiteral(".mht"));
      case BatchReport::LimitReport:
        return NeedExtension({"html", "htm"}, QStringLiteral(".html or .htm"));
      case BatchReport::Table:
        if (!NeedPage(m_request.Argument)) return false;
        if (HasExtension(m_state.OutputFile, {"csv"}))
          m_tableKind = ExportKind::Csv;
        else if (HasExtension(m_state.OutputFile, {"html", "htm"}))
          m_tableKind = ExportKind::Html;
        else if (HasExtension(m_state.OutputFile, {"txt"}))
          m_tableKind = ExportKind::Text;
        else
          return NeedExtension({}, QStringLiteral(".csv, .html, .htm or .txt"));
        return true;
      case BatchReport::Stats:
      case BatchReport::Correlation:
        return NeedPage(m_request.Argument) &&
               NeedExtension({"html", "htm"}, QStringLiteral(".html or .htm"));
      case BatchReport::Charts:
        return NeedPage(m_request.Argument) && NeedExtension({"mht"}, QStringLiteral(".mht"));
      case BatchReport::Chart:
        return CheckChart();
      case BatchReport::None:
        break;
    }
    return Fail(QStringLiteral("No report asked for"));
  }

  // "KIND:METRIC" or "scatter:Y:METRIC".
  bool CheckChart() {
    const QStringList parts = m_request.Argument.split(QLatin1Char(':'));
    m_chartKind = parts.value(0).toLower();
    static const QStringList kinds = {QStringLiteral("bar"),          QStringLiteral("histogram"),
                                      QStringLiteral("distribution"), QStringLiteral("pie"),
                                      QStringLiteral("kiviat"),       QStringLiteral("scatter")};
    if (!kinds.contains(m_chartKind))
      return Fail(QStringLiteral("Unknown chart kind \"%1\" in %2: use bar, histogram, "
                                 "distribution, pie, kiviat or scatter:Y")
                      .arg(parts.value(0), SwitchText()));
    const bool scatter = m_chartKind == QLatin1String("scatter");
    const int expected = scatter ? 3 : 2;
    if (parts.size() != expected)
      return Fail(
          QStringLiteral("%1 needs %2: /CHART:%3")
              .arg(SwitchText(), QStringLiteral("a metric"),
                   scatter ? QStringLiteral("scatter:Y:METRIC") : QStringLiteral("KIND:METRIC")));
    m_metric = ParseMetricText(parts.last(), m_definitions);
    if (m_metric == 0) return UnknownMetric(parts.last());
    const int metricClass = MetricDefinitions::GetMetricClass(m_metric);
    if (metricClass == ClassProject)
      return Fail(QStringLiteral("Metric %1 in %2 is a project metric: charts are made on the "
                                 "pages of files, classes, procedures or variables")
                      .arg(parts.last(), SwitchText()));
    m_page = PageOfClassName(MetricDefinitions::GetMetricClassName(metricClass, true));
    if (scatter) {
      m_metricY = ParseMetricText(parts.at(1), m_definitions);
      if (m_metricY == 0) return UnknownMetric(parts.at(1));
      if (MetricDefinitions::GetMetricClass(m_metricY) != metricClass)
        return Fail(QStringLiteral("Metric %1 in %2 is not on the page of %3 of metric %4")
                        .arg(parts.at(1), SwitchText(), ClassPlural(metricClass), parts.last()));
    }
    m_pictureKind = PictureKindOfFile(m_state.OutputFile);
    if (m_pictureKind == PictureKind::None)
      return NeedExtension({}, QStringLiteral(".gif, .bmp, .emf, .wmf, .png or .svg"));
    return true;
  }

  bool UnknownMetric(const QString& text) {
    return Fail(QStringLiteral("Unknown metric \"%1\" in %2: give a metric number (4120) or "
                               "class and abbreviation (proc.CC)")
                    .arg(text, SwitchText()));
  }

  // Picks the limit set and selection of the switches; false for a name
  // or number that names none.
  bool ChooseSets() {
    if (!m_request.Limit.isEmpty()) {
      ChoiceList list;
      MetricLimits().FillList(list);
      const auto number = FindChoice(list, m_request.Limit);
      if (!number)
        return Fail(QStringLiteral("Unknown limit set \"%1\" in /LIMIT:%1").arg(m_request.Limit));
      MetricLimits::SetCurrentLimitID(*number);
    }
    if (!m_request.Selection.isEmpty()) {
      ChoiceList list;
      MetricSelection().FillList(list);
      const auto number = FindChoice(list, m_request.Selection);
      if (!number || *number == 0)
        return Fail(QStringLiteral("Unknown metric selection \"%1\" in /SELECTION:%1")
                        .arg(m_request.Selection));
      MetricSelection::SetCurrent(*number);
    }
    return true;
  }

  bool Write() {
    ScopedSettingsCopy settings;
    if (!ChooseSets()) return false;
    PageModel model;
    model.Start(m_state.InputFile);
    if (model.CurrentDatabase() == 0)
      return Fail(QStringLiteral("Cannot open database ") + m_state.InputFile);

    const QString temporary = TemporarySibling(m_state.OutputFile);
    const bool written = WriteFile(model, temporary) && QFileInfo(temporary).isFile();
    if (!written) {
      QFile::remove(temporary);
      if (m_reason.isEmpty()) m_reason = QStringLiteral("Nothing written to ") + m_state.OutputFile;
      return false;
    }
    // rename() replaces an existing file in one step.
    if (std::rename(QFile::encodeName(temporary).constData(),
                    QFile::encodeName(m_state.OutputFile).constData()) != 0) {
      const QString reason = QString::fromLocal8Bit(std::strerror(errno));
      QFile::remove(temporary);
      return Fail(QStringLiteral("Cannot write to ") + m_state.OutputFile + QStringLiteral(": ") +
                  reason);
    }
    return true;
  }

  bool WriteFile(PageModel& model, const QString& file) {
    switch (m_request.Report) {
      case BatchReport::Status:
        return WriteStatus(model, file);
      case BatchReport::LimitReport: {
        const QString text =
            LimitsReportText(model.Reader(), model.CurrentDatabase(), model.Limits());
        if (text.isEmpty())
          return Fail(QStringLiteral("Cannot open database ") + m_state.InputFile);
        return SaveReportFile(text, file);
      }
      case BatchReport::Table:
        if (!OpenPage(model)) return false;
        return WriteTable(PageReportSource(model), file, m_tableKind, true);
      case BatchReport::Chart:
        return WriteChart(model, file);
      case BatchReport::Stats:
        return OpenPage(model) &&
               SaveReportFile(StatisticsReportText(PageReportSource(model)), file);
      case BatchReport::Charts: {
        if (!OpenPage(model)) return false;
        const std::unique_ptr<ReportCharts> charts = MakePageCharts(model);
        return WriteChartsReportFile(PageReportSource(model), *charts, file);
      }
      case BatchReport::Correlation: {
        if (!OpenPage(model)) return false;
        QString matrix;
        QString regression;
        if (!ChartCommands(model).CorrelationText(true, matrix, regression))
          return Fail(QStringLiteral("No correlation analysis: nothing written to ") +
                      m_state.OutputFile);
        return SaveReportFile(CorrelationReportText(matrix, regression), file);
      }
      case BatchReport::None:
        break;
    }
    return false;
  }

  bool WriteStatus(PageModel& model, const QString& file) {
    MetricRead& reader = model.Reader();
    const QString first = reader.Database(model.CurrentDatabase()).Path;
    int second = 0;
    if (!m_state.CompareFile.isEmpty()) {
      second = reader.LocateAndOpenDatabase(m_state.CompareFile, true);
      if (second == 0) return Fail(QStringLiteral("Cannot open database ") + m_state.CompareFile);
    }
    // Finding the second database sorts the list again.
    const int database = reader.LocateAndOpenDatabase(first, true);
    if (second == database)
      return Fail(QStringLiteral("An analysis cannot be compared with itself: ") +
                  m_state.CompareFile);
    ChartStatusPictures pictures;
    return WriteStatusReportFile(reader, database, second, pictures, file);
  }

  bool OpenPage(PageModel& model) {
    model.TabClicked(m_page);
    if (model.CurrentPage() != m_page || !model.Pages(m_page).Loaded)
      return Fail(QStringLiteral("Cannot show the page of %1 of %2")
                      .arg(ClassPlural(m_page - 2), m_state.InputFile));
    return true;
  }

  bool WriteChart(PageModel& model, const QString& file) {
    if (!OpenPage(model)) return false;
    const int column = model.FindGridColumn(m_metric);
    if (column == 0)
      return Fail(QStringLiteral("Metric %1 has no column on the page of %2 of %3 (not in the "
                                 "database, or not in the metric selection)")
                      .arg(MetricName(m_metric), ClassPlural(m_page - 2), m_state.InputFile));
    if (model.Pages(m_page).Rows < 1)
      return Fail(QStringLiteral("The page of %1 of %2 has no rows")
                      .arg(ClassPlural(m_page - 2), m_state.InputFile));
    OwnerGridLogic& grid = *model.Grid();
    grid.PlaceCursor(1, grid.FixedColumns() + column);

    ChartCommands commands(model);
    const int series = model.CurrentSeries();
    std::unique_ptr<ZelmChart> chart;
    if (m_chartKind == QLatin1String("bar"))
      chart = commands.MakeBarChart(false, series);
    else if (m_chartKind == QLatin1String("histogram"))
      chart = commands.MakeHistogram(series);
    else if (m_chartKind == QLatin1String("distribution"))
      chart = commands.MakeDistributionChart(series);
    else if (m_chartKind == QLatin1String("pie"))
      chart = commands.MakePieOfLimits(series);
    else if (m_chartKind == QLatin1String("kiviat"))
      chart = commands.MakeKiviatOfLimits();
    else if (commands.XYChartPossible())
      chart = commands.GetCorrelationChart(m_metric, m_metricY);
    if (!chart) {
      if (m_ui.Messages().isEmpty()) return Fail(QStringLiteral("No chart to display."));
      return Fail(QStringLiteral("No chart: nothing written to ") + m_state.OutputFile);
    }
    return SaveChartFile(*chart, file, m_pictureKind, m_width);
  }

  QString MetricName(MetricId id) const {
    return MetricDefinitions::GetMetricClassName(MetricDefinitions::GetMetricClass(id), true) +
           QLatin1Char('.') + m_definitions.GetMetricName(id, NameAbbreviation);
  }

  const StartupState& m_state;
  const BatchRequest& m_request;
  std::function<void(const QString&)> m_writeErr;
  CollectingUiServices m_ui;
  MetricDefinitions m_definitions;
  QString m_reason;
  int m_page = 0;
  int m_tableKind = ExportKind::Csv;
  QString m_chartKind;
  MetricId m_metric = 0;
  MetricId m_metricY = 0;
  PictureKind m_pictureKind = PictureKind::None;
  int m_width = kDefaultChartWidth;
};

}  // namespace

int PageOfClassName(const QString& name) {
  const QString lower = name.toLower();
  for (int metricClass = ClassFile; metricClass <= ClassVariable; ++metricClass)
    if (lower == MetricDefinitions::GetMetricClassName(metricClass, true)) return metricClass + 2;
  return 0;
}

MetricId ParseMetricText(const QString& text, const MetricDefinitions& definitions) {
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  if (isNumber) return definitions.MetricSupported(number) ? number : 0;
  const qsizetype dot = text.indexOf(QLatin1Char('.'));
  if (dot < 0) return 0;
  const int page = PageOfClassName(text.left(dot));
  const QString abbreviation = text.mid(dot + 1);
  const int metricClass =
      page > 0 ? page - 2
               : (text.left(dot).compare(QLatin1String("proj"), Qt::CaseInsensitive) == 0 ? 0 : -1);
  if (metricClass < 0 || abbreviation.isEmpty()) return 0;
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
    if (MetricDefinitions::GetMetricClass(id) != metricClass || !definitions.MetricSupported(id))
      continue;
    if (definitions.GetMetricName(id, NameAbbreviation)
            .compare(abbreviation, Qt::CaseInsensitive) == 0)
      return id;
  }
  return 0;
}

int RunBatchReport(const StartupState& state, const std::function<void(const QString&)>& writeErr) {
  return BatchRun(state, writeErr).Run();
}

}  // namespace ombrelle
