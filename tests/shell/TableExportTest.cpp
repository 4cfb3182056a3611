// The table export, copy and find on the procedures page of a small database
// the test writes: golden files of every kind, rotated and not, the CSV read
// back by Python's csv module, the clipboard text and the line search.
// The files go to <build>/test-output/TableExport/; the golden copies are in
// tests/data/export/ (OMBRELLE_UPDATE_GOLDEN=1 rewrites them).
#include <memory>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "common/OutsideReaders.h"
#include "core/MetricReadTestSupport.h"
#include "grid/GridTestDoubles.h"
#include "grid/OwnerGridLogic.h"
#include "limits/MetricLimits.h"
#include "limits/MetricSelection.h"
#include "reports/ReportPage.h"
#include "shell/PageModel.h"
#include "shell/StartupState.h"
#include "shell/TableExport.h"
#include "support/DateValue.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"

namespace ombrelle {
namespace {

constexpr int kProceduresPage = 5;
constexpr int kVariablesPage = 6;

QString OutputFolder() { return test::ArtefactFolder(QStringLiteral("TableExport")); }

QByteArray ReadBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The closing line carries the time of the run.
QByteArray WithoutTime(QByteArray bytes) {
  static const QRegularExpression savedBy(QStringLiteral("<P>Saved by [^<]*</P>"));
  return QString::fromLatin1(bytes).replace(savedBy, QStringLiteral("<P>Saved by</P>")).toLatin1();
}

class TableExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    SetSettingsFilePath(m_dir.filePath(QStringLiteral("settings.ini")));
    QDir().mkpath(m_dir.filePath(QStringLiteral("db")));
    WriteDatabase(m_dir.filePath(QStringLiteral("db/small.qvz")));
    SaveSetting(QStringLiteral("Databases"), QStringLiteral("Path1"),
                m_dir.filePath(QStringLiteral("db")));
    MetricLimits::SetCurrentLimitID(LimitSet::Default);
    MetricSelection::SetCurrent(SelectionSet::All);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    TableExport::ResetRunState();
    m_model = std::make_unique<PageModel>();
    m_grid = std::make_unique<OwnerGridLogic>(nullptr, &m_host);
    m_model->AttachGrid(*m_grid);
    m_model->Start();
    m_model->TabClicked(kProceduresPage);
    m_scripted.ui.messages.clear();
  }
  void TearDown() override { QLocale::setDefault(QLocale::c()); }

  // One project row and three procedures: a separator and "&" in one name,
  // non-ASCII letters in another, brackets in the third.
  static void WriteDatabase(const QString& path) {
    ASSERT_TRUE(
        test::WriteSave(path, {QStringLiteral("Small"),
                               QStringLiteral("/src/small.vbp"),
                               DateSerial(2024, 5, 6),
                               {{ClassProject, {QStringLiteral("Small")}, {{1002, {263}}}},
                                {ClassProcedure,
                                 {QStringLiteral("Main & Init, start"),
                                  QStringLiteral("Gr\u00F6\u00DFe"), QStringLiteral("zeta[1]")},
                                 {{4001, {10, 250, 3}}, {4120, {1, 12, 2}}}}}}));
  }

  QString Export(const QString& name, int kind, bool summary = true) {
    const QString path = OutputFolder() + QLatin1Char('/') + name;
    QFile::remove(path);
    EXPECT_TRUE(TableExport(*m_model).WriteTable(path, kind, summary));
    return path;
  }

  void ExpectGolden(const QString& path) {
    const QString golden =
        QStringLiteral(OMBRELLE_TEST_DATA "/export/") + QFileInfo(path).fileName();
    const QByteArray actual = WithoutTime(ReadBytes(path));
    if (qEnvironmentVariableIsSet("OMBRELLE_UPDATE_GOLDEN")) {
      QDir().mkpath(QFileInfo(golden).path());
      QFile out(golden);
      ASSERT_TRUE(out.open(QIODevice::WriteOnly));
      out.write(actual);
    }
    EXPECT_EQ(actual.toStdString(), ReadBytes(golden).toStdString()) << golden.toStdString();
  }

  int Row() const { return m_grid->GetCurRow(); }
  QString CurrentHeader() const {
    return TableExport(*m_model).CellExportText(m_grid->GetCurRow(), 1, ExportKind::Csv);
  }

  QTemporaryDir m_dir;
  ScopedScriptedUi m_scripted;
  test::FakeGridHost m_host{QSize(1200, 600)};
  std::unique_ptr<OwnerGridLogic> m_grid;  // outlives the model that drives it
  std::unique_ptr<PageModel> m_model;
};

TEST_F(TableExportTest, GoldenExportsOfEveryKindRotatedAndNot) {
  ASSERT_EQ(m_model->CurrentPage(), kProceduresPage);
  ASSERT_EQ(m_grid->Rows(), 3);
  const struct {
    const char* name;
    int kind;
  } kinds[] = {{"procedures.csv", ExportKind::Csv},
               {"procedures.htm", ExportKind::Html},
               {"procedures.txt", ExportKind::Text}};
  for (bool rotated : {false, true}) {
    if (rotated) m_model->ToggleRotated();
    ASSERT_EQ(m_model->Rotated(), rotated);
    for (const auto& k : kinds) {
      const QString name =
          (rotated ? QStringLiteral("rotated-") : QString()) + QString::fromLatin1(k.name);
      SCOPED_TRACE(name.toStdString());
      const QString path = Export(name, k.kind);
      ExpectGolden(path);
      if (k.kind == ExportKind::Html) test::ExpectXmllintHtmlAccepts(path);
    }
  }
  EXPECT_EQ(m_scripted.ui.opened.size(), 6u);
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(TableExportTest, TheCursorColumnPlaysNoPart) {
  const QByteArray first =
      WithoutTime(ReadBytes(Export(QStringLiteral("cursor-a.htm"), ExportKind::Html)));
  m_grid->PlaceCursor(2, 1);
  const QByteArray second =
      WithoutTime(ReadBytes(Export(QStringLiteral("cursor-b.htm"), ExportKind::Html)));
  m_grid->PlaceCursor(3, m_grid->Columns());
  const QByteArray third =
      WithoutTime(ReadBytes(Export(QStringLiteral("cursor-c.htm"), ExportKind::Html)));
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, third);
}

TEST_F(TableExportTest, PageWithoutRowsGivesTheHeaderLineOnly) {
  m_model->TabClicked(kVariablesPage);
  ASSERT_EQ(m_grid->Rows(), 0);
  EXPECT_EQ(ReadBytes(Export(QStringLiteral("empty.csv"), ExportKind::Csv)), "Variable\r\n");
  EXPECT_EQ(TableExport(*m_model).CopyText(), "Variable\r\n");
}

TEST_F(TableExportTest, CopyPutsTabsAndCrLfAndEncodesNothing) {
  TableExport(*m_model).CopyTable();
  const QStringList lines = m_scripted.ui.clipboardText.split(QStringLiteral("\r\n"));
  ASSERT_EQ(lines.size(), 5);
  EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Procedure\tLINES\tCC")));
  EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Gr\u00F6\u00DFe\t250\t12")));
  EXPECT_TRUE(lines[2].startsWith(QStringLiteral("Main & Init, start\t10\t1")));
  EXPECT_EQ(lines[4], QString());
  // Ctrl+Insert at window level does the same.
  m_scripted.ui.clipboardText.clear();
  EXPECT_TRUE(m_model->WindowKeyDown(WindowKey::Insert, GridShift::Ctrl));
  EXPECT_EQ(m_scripted.ui.clipboardText, lines.join(QStringLiteral("\r\n")));
}

TEST_F(TableExportTest, FindAgainWithoutEarlierTextAsksAndFindsTheNextLine) {
  m_grid->PlaceCursor(1, 3);
  m_scripted.ui.inputAnswers = {QStringLiteral("ZETA")};
  TableExport(*m_model).FindLine(true);
  EXPECT_EQ(m_scripted.ui.inputPrompts, std::vector<QString>{"Find line: "});
  EXPECT_EQ(Row(), 3);
  EXPECT_EQ(m_grid->GetCurColumn(), 3);
  EXPECT_EQ(TableExport::LastSearchText(), QStringLiteral("ZETA"));
  // Again: no question, and the only match is the current line.
  TableExport(*m_model).FindLine(true);
  EXPECT_EQ(m_scripted.ui.inputPrompts.size(), 1u);
  EXPECT_EQ(Row(), 3);
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(TableExportTest, FindWrapsAroundAndKeepsPatternCharacters) {
  const struct {
    const char* text;
    int from;
    int expected;
  } cases[] = {
      {"t", 1, 2},             // "main & init, start" is next
      {"r", 3, 1},             // wraps past the last row
      {"[1]", 3, 3},           // a list holding "1": only the current line has one
      {"zeta[[]1", 1, 3},      // "[[]" stands for the bracket itself
      {"#", 1, 3},             // one digit
      {"m?in", 3, 2},          // "?" one character
      {"\u00F6\u00DF", 2, 1},  // lower-case non-ASCII
      {"nowhere", 2, 2},       // no match: no move
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    m_grid->PlaceCursor(c.from, 2);
    m_scripted.ui.inputAnswers = {QString::fromUtf8(c.text)};
    TableExport(*m_model).FindLine(false);
    EXPECT_EQ(Row(), c.expected) << CurrentHeader().toStdString();
  }
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(TableExportTest, FindInRotatedViewMovesAlongTheColumns) {
  m_model->ToggleRotated();
  m_grid->PlaceCursor(1, 3);
  m_scripted.ui.inputAnswers = {QStringLiteral("init")};
  TableExport(*m_model).FindLine(false);
  EXPECT_EQ(m_grid->GetCurColumn(), 4);
  EXPECT_EQ(m_grid->GetCurRow(), 1);
}

TEST_F(TableExportTest, FindCancelledOrWithoutDataMovesNothing) {
  m_grid->PlaceCursor(2, 2);
  TableExport(*m_model).FindLine(false);  // no answer queued: cancelled
  EXPECT_EQ(Row(), 2);
  EXPECT_TRUE(TableExport::LastSearchText().isEmpty());
  m_model->TabClicked(kVariablesPage);
  TableExport(*m_model).FindLine(false);
  ASSERT_EQ(m_scripted.ui.messages.size(), 1u);
  EXPECT_EQ(m_scripted.ui.messages[0].text, QStringLiteral("No data to search in."));
  EXPECT_EQ(m_scripted.ui.messages[0].style, MsgStyle::Information);
  EXPECT_EQ(m_scripted.ui.inputPrompts.size(), 1u);
}

TEST_F(TableExportTest, DialogKeepsTheLastKindForTheRun) {
  const QString html = m_dir.filePath(QStringLiteral("table.html"));
  const QString text = m_dir.filePath(QStringLiteral("table.txt"));
  m_scripted.ui.fileAnswers = {html, QString(), text};
  TableExport(*m_model).ExportTableDialog();
  TableExport(*m_model).ExportTableDialog();  // cancelled
  TableExport(*m_model).ExportTableDialog();
  ASSERT_EQ(m_scripted.ui.fileRequests.size(), 3u);
  const FileDialogRequest& first = m_scripted.ui.fileRequests[0];
  EXPECT_EQ(first.title, QStringLiteral("Export to file"));
  EXPECT_EQ(first.filter, QStringLiteral("Comma Separated Values (*.csv);;HTML File (*.htm *.html "
                                         "*.xml);;Tab Delimited Text (*.txt)"));
  EXPECT_TRUE(first.overwritePrompt);
  EXPECT_EQ(first.filterIndex, ExportKind::Csv);
  EXPECT_EQ(m_scripted.ui.fileRequests[1].filterIndex, ExportKind::Html);
  EXPECT_EQ(m_scripted.ui.fileRequests[2].filterIndex, ExportKind::Html);
  EXPECT_EQ(TableExport::LastExportKind(), ExportKind::Text);
  EXPECT_TRUE(ReadBytes(html).contains("<H1>Summary</H1>"));
  EXPECT_TRUE(ReadBytes(text).startsWith("Procedure\tLINES\tCC"));
  EXPECT_EQ(m_scripted.ui.opened, (std::vector<QString>{html, text}));
}

TEST_F(TableExportTest, ReportEntriesWriteNewFilesInTheReportsFolder) {
  TableExport(*m_model).ReportView(false);
  TableExport(*m_model).ReportView(true);
  ASSERT_EQ(m_scripted.ui.opened.size(), 2u);
  EXPECT_TRUE(m_scripted.ui.opened[0].endsWith(QStringLiteral("/Ombrelle reports/Metrics.html")));
  EXPECT_NE(m_scripted.ui.opened[0], m_scripted.ui.opened[1]);
  EXPECT_FALSE(ReadBytes(m_scripted.ui.opened[0]).contains("Summary"));
  EXPECT_TRUE(ReadBytes(m_scripted.ui.opened[1]).contains("<H1>Summary</H1>"));
}

TEST_F(TableExportTest, XmlEntryExportsTheCurrentAnalysis) {
  const QString xml = m_dir.filePath(QStringLiteral("small.xml"));
  m_scripted.ui.fileAnswers = {QString(), xml};
  TableExport(*m_model).ExportXmlDialog();  // cancelled: nothing written
  EXPECT_FALSE(QFile::exists(xml));
  TableExport(*m_model).ExportXmlDialog();
  ASSERT_EQ(m_scripted.ui.fileRequests.size(), 2u);
  EXPECT_EQ(m_scripted.ui.fileRequests[1].title, QStringLiteral("Export to XML"));
  EXPECT_TRUE(ReadBytes(xml).contains("zeta[1]"));
  EXPECT_TRUE(m_scripted.ui.messages.empty())
      << m_scripted.ui.MessageTexts().join("|").toStdString();
}

}  // namespace
}  // namespace ombrelle
