// The main window's table commands on the sample databases: the procedures
// page exported in the three kinds through File > Export table..., copied to
// the clipboard by Edit > Copy table and by Ctrl+Insert, and the Report
// entries. The files go to <build>/test-output/TableExportWindow/.
#include <memory>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTemporaryDir>

#include "common/OutsideReaders.h"
#include "grid/OwnerGridLogic.h"
#include "grid/ui/OwnerGrid.h"
#include "reports/ReportFrame.h"
#include "shell/TableExport.h"
#include "shell/ui/frmMetrics.h"
#include "support/Codepage.h"
#include "support/ScriptedUiServices.h"
#include "support/SettingsStore.h"
#include "support/ui/QtUiServices.h"
#include "ui/WindowFixture.h"

namespace ombrelle {
namespace {

constexpr int kProcedures = 5;

QString OutputFolder() {
  const QString folder = QStringLiteral(OMBRELLE_BUILD_DIR "/test-output/TableExportWindow");
  QDir().mkpath(folder);
  return folder;
}

QString ReadAnsi(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? MultiByteToText(file.readAll(), kCodepageAnsi)
                                        : QString();
}

class TableExportWindow : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    TableExport::ResetRunState();
    Open();
    ClickTab(kProcedures);
  }
  void TearDown() override {
    WindowTest::TearDown();
    QLocale::setDefault(QLocale::c());
  }
};

TEST_F(TableExportWindow, ExportsTheProceduresPageInThreeKindsAndCopiesIt) {
  const OwnerGridLogic& grid = m_window->Grid().Logic();
  ASSERT_EQ(m_window->Model().CurrentPage(), kProcedures);
  ASSERT_GT(grid.Rows(), 5);
  ASSERT_GT(grid.Columns(), 5);
  ScopedScriptedUi scripted;
  const QString csv = OutputFolder() + QStringLiteral("/procedures.csv");
  const QString html = OutputFolder() + QStringLiteral("/procedures.html");
  const QString text = OutputFolder() + QStringLiteral("/procedures.txt");
  for (const QString& file : {csv, html, text}) QFile::remove(file);
  scripted.ui.fileAnswers = {csv, html, text};
  Trigger("mFileExport");
  Trigger("mFileExport");
  Trigger("mFileExport");
  EXPECT_TRUE(scripted.ui.messages.empty()) << scripted.ui.MessageTexts().join("|").toStdString();
  EXPECT_EQ(scripted.ui.opened, (std::vector<QString>{csv, html, text}));

  // The copy is the tab text without the entity encoding.
  Trigger("mEditCopy");
  const QString copy = scripted.ui.clipboardText;
  const QStringList copyLines = copy.split(QStringLiteral("\r\n"));
  ASSERT_EQ(copyLines.size(), grid.Rows() + 2);  // header, rows, the empty rest
  QStringList captions;
  for (int c = 1; c <= grid.Columns(); ++c) captions << grid.ColumnCaption(c);
  EXPECT_EQ(copyLines[0], captions.join(QLatin1Char('\t')));
  EXPECT_EQ(copyLines[1].split(QLatin1Char('\t')).size(), grid.Columns());

  QString encodedCopy;
  for (qsizetype l = 0; l < copyLines.size(); ++l) {
    if (copyLines[l].isEmpty()) continue;
    QStringList cells = copyLines[l].split(QLatin1Char('\t'));
    // Captions stand as they are; every cell is encoded.
    if (l > 0)
      for (QString& cell : cells) cell = EscapedHTML(cell);
    encodedCopy += cells.join(QLatin1Char('\t')) + QStringLiteral("\r\n");
  }
  EXPECT_EQ(ReadAnsi(text), encodedCopy);
  QString csvExpected = encodedCopy;
  csvExpected.replace(QLatin1Char('\t'), QLatin1Char(','));
  EXPECT_EQ(ReadAnsi(csv), csvExpected);

  const QString page = ReadAnsi(html);
  EXPECT_EQ(page.count(QStringLiteral("<TR CLASS=\"R1\">")), (grid.Rows() + 1) / 2);
  EXPECT_EQ(page.count(QStringLiteral("<TR CLASS=\"R2\">")), grid.Rows() / 2);
  EXPECT_TRUE(page.contains(QStringLiteral("<H1>Procedure metrics</H1>")));
  EXPECT_TRUE(page.contains(QStringLiteral("<H1>Summary</H1>")));
  test::ExpectXmllintHtmlAccepts(html);

  // Ctrl+Insert at window level, with the real clipboard behind the service.
  QtUiServices qtServices;
  UiServices* previous = SetUi(&qtServices);
  QApplication::clipboard()->clear();
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Insert, Qt::ControlModifier);
  QApplication::sendEvent(&m_window->Grid(), &press);
  ProcessEvents();
  SetUi(previous);
  EXPECT_EQ(QApplication::clipboard()->text(), copy);
}

TEST_F(TableExportWindow, ReportEntryWritesAndOpensTheDataReport) {
  ScopedScriptedUi scripted;
  Trigger("mReportView1");
  ASSERT_EQ(scripted.ui.opened.size(), 1u);
  const QString report = scripted.ui.opened[0];
  EXPECT_EQ(QFileInfo(report).path(), ReportsFolder());
  EXPECT_TRUE(ReadAnsi(report).contains(QStringLiteral("<H1>Summary</H1>")));
  QFile::copy(report, OutputFolder() + QStringLiteral("/report.html"));
  test::ExpectXmllintHtmlAccepts(report);
}

}  // namespace
}  // namespace ombrelle
