// The whole program on a virtual X display, started the way the entry point
// starts it (start-up road, real dialog service, About box at start) on
// copies of the sample databases, and driven with mouse clicks and keys on
// its own widgets through every menu entry of every page kind. Each entry
// leaves a screenshot in <build>/test-output/EndToEnd/<page>-<entry>.png;
// no window may be empty, cut or larger than the screen, no error box may
// appear unless the table below expects it, every file written must open in
// its outside reader, reports must reach the default handler (a fake
// xdg-open that logs its arguments), the settings file must hold what was
// changed and the user's folders must gain nothing else. ctest runs it as
// ui.EndToEndOnXvfb (label "endtoend"); run offscreen it skips.
#include <functional>
#include <map>
#include <set>

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScreen>
#include <QSettings>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QUrl>

#include "common/OutsideReaders.h"
#include "common/TestEnvironment.h"
#include "shell/Startup.h"
#include "shell/ui/MainWindowRoad.h"
#include "support/SettingsStore.h"
#include "support/ui/QtUiServices.h"

namespace ombrelle {
namespace {

struct PageKind {
  const char* name;
  int tab;
  int timeStyle;  // item of the values-or-changes combo; -1 leaves it alone
};

const PageKind kPageKinds[] = {
    {"all", 0, -1},   {"latest", 1, -1},  {"time-days", 2, 3},   {"time-months", 2, 4},
    {"files", 3, -1}, {"classes", 4, -1}, {"procedures", 5, -1}, {"variables", 6, -1},
};

// Every entry of the menu bar, in menu order. A new entry fails the suite
// until it is listed here (and so driven).
// clang-format off
const QStringList kEntries = {
    "mOptionsSelections", "mOptionsLimits", "mOptionsCharts", "mOptionsRotated",
    "mFileDatabases", "mFileExport", "mFileXML",
    "mEditCopy", "mEditFind", "mEditFindAgain",
    "mChartBar", "mChartHistogram", "mChartDistribution", "mChartCompare0", "mChartCompare1",
    "mChartTime", "mChartPieLimits", "mChartKiviat", "mChartScatter",
    "mReportView0", "mReportView1", "mReportStats", "mReportCharts", "mReportCorrelations",
    "mReportStatus0", "mReportStatus1", "mReportLimits", "mReportMetricsList",
    "mReportMetricsListSorted", "mReportExplore",
    "mHelpContents", "mHelpAbout", "mFileClose"};
// clang-format on

// Boxes an entry may show on a page kind ("*" any kind): the start of the text.
struct ExpectedBox {
  const char* entry;
  const char* page;
  const char* text;
};
const ExpectedBox kExpectedBoxes[] = {
    {"mReportCorrelations", "all", "Correlation analysis is not available on this page."},
    {"mChartPieLimits", "time-days",
     "You are viewing metric changes in time. Limits do not apply."},
    {"mChartPieLimits", "time-months",
     "You are viewing metric changes in time. Limits do not apply."},
};

// Entries that hand a document to the default handler.
bool OpensDocument(const QString& entry) {
  return (entry.startsWith(QStringLiteral("mReport")) &&
          entry != QStringLiteral("mReportExplore")) ||
         entry == QStringLiteral("mHelpContents");
}

QString ArtefactFolder() { return test::ArtefactFolder(QStringLiteral("EndToEnd")); }

QString WorkPath(const QString& name) {
  return test::SandboxRoot() + QStringLiteral("/work/") + name;
}

// Relative path and checksum of every file under `root`.
std::map<QString, QByteArray> Listing(const QString& root) {
  std::map<QString, QByteArray> files;
  QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
  while (it.hasNext()) {
    QFile file(it.next());
    if (!file.open(QIODevice::ReadOnly)) continue;
    files[QDir(root).relativeFilePath(file.fileName())] =
        QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5);
  }
  return files;
}

// Every file the program wrote must open in the reader of its kind.
void ExpectReaderAccepts(const QString& path) {
  SCOPED_TRACE(path.toStdString());
  ASSERT_TRUE(QFileInfo(path).size() > 0) << "empty or missing";
  const QString ext = QFileInfo(path).suffix().toLower();
  if (ext == QStringLiteral("bmp") || ext == QStringLiteral("png")) {
    EXPECT_FALSE(test::DecodeWithImageMagick(path).isNull());
  } else if (ext == QStringLiteral("gif")) {
    EXPECT_FALSE(test::Gif2RgbPixels(path).isEmpty());
  } else if (ext == QStringLiteral("wmf")) {
    test::ExpectWmf2SvgAccepts(path, path + QStringLiteral(".svg"));
  } else if (ext == QStringLiteral("emf")) {
    test::ExpectEmf2SvgAccepts(path, path + QStringLiteral(".svg"));
  } else if (ext == QStringLiteral("mht")) {
    EXPECT_GE(test::WebArchivePictureCount(path), 0);
  } else if (ext == QStringLiteral("html") || ext == QStringLiteral("htm")) {
    test::ExpectXmllintHtmlAccepts(path);
  } else if (ext == QStringLiteral("xml") || ext == QStringLiteral("svg")) {
    test::ExpectXmllintAccepts(path);
  } else if (ext == QStringLiteral("csv")) {
    EXPECT_GT(test::PythonCsvRows(path, QStringLiteral(","), QStringLiteral("cp1252")).size(), 1);
  } else if (ext != QStringLiteral("txt")) {
    ADD_FAILURE() << "no reader for this kind of file";
  }
}

// The first extension a file filter names ("Bitmap (*.bmp)" -> "bmp").
QString FilterExtension(const QString& filter) {
  const int star = filter.indexOf(QStringLiteral("*."));
  if (star < 0) return QStringLiteral("out");
  QString ext = filter.mid(star + 2);
  for (int i = 0; i < ext.size(); ++i)
    if (!ext[i].isLetterOrNumber()) return ext.left(i);
  return ext;
}

class EndToEnd : public ::testing::TestWithParam<PageKind> {
 protected:
  static void SetUpTestSuite() {
    QDir().mkpath(WorkPath(QStringLiteral("samples")));
    QDir().mkpath(WorkPath(QStringLiteral("out")));
    QDir().mkpath(WorkPath(QStringLiteral("bin")));
    const QDir samples(QStringLiteral(OMBRELLE_BUILD_DIR "/sample"));
    for (const QString& file : samples.entryList({QStringLiteral("*.qvz")}, QDir::Files))
      QFile::copy(samples.filePath(file), WorkPath(QStringLiteral("samples/") + file));
    QDir().mkpath(WorkPath(QStringLiteral("samples/www")));
    const QDir help(QStringLiteral(OMBRELLE_BUILD_DIR "/www"));
    for (const QString& file : help.entryList(QDir::Files))
      QFile::copy(help.filePath(file), WorkPath(QStringLiteral("samples/www/") + file));
    // The default handler: a script that logs what it is asked to open.
    const QString opener = WorkPath(QStringLiteral("bin/xdg-open"));
    QFile script(opener);
    if (script.open(QIODevice::WriteOnly)) {
      script.write("#!/bin/sh\necho \"$@\" >> \"" +
                   WorkPath(QStringLiteral("opened.log")).toUtf8() + "\"\n");
      script.close();
      script.setPermissions(script.permissions() | QFile::ExeOwner);
    }
    // The copies are the search path, so the build's own samples stay unread.
    SaveSetting(QStringLiteral("Databases"), QStringLiteral("path1"),
                WorkPath(QStringLiteral("samples")));
    qputenv("PATH", WorkPath(QStringLiteral("bin")).toUtf8() + ':' + qgetenv("PATH"));
    qputenv("BROWSER", opener.toUtf8());
  }

  void SetUp() override {
    if (QGuiApplication::platformName() != QStringLiteral("xcb"))
      GTEST_SKIP() << "runs on a display: ctest -R EndToEndOnXvfb";
    ASSERT_GE(QDir(WorkPath(QStringLiteral("samples"))).entryList({"*.qvz"}).size(), 3);
  }

  // Screenshot of the whole screen; then every visible window is checked.
  void Shot(const QString& name) {
    QTest::qWait(60);
    QScreen* screen = QGuiApplication::primaryScreen();
    const QString file = ArtefactFolder() + u'/' + Page() + u'-' + name + QStringLiteral(".png");
    EXPECT_TRUE(screen->grabWindow(0).save(file)) << file.toStdString();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (!window->isVisible() || window->inherits("QMenu")) continue;
      SCOPED_TRACE(
          (name + u' ' + window->objectName() + u' ' + window->windowTitle()).toStdString());
      const QRect frame = window->frameGeometry();
      EXPECT_TRUE(screen->geometry().contains(frame)) << "window leaves the screen";
      QSize minimum = window->minimumSize();
      if (window->layout()) minimum = minimum.expandedTo(window->minimumSizeHint());
      EXPECT_GE(window->width(), minimum.width()) << "window narrower than its content";
      EXPECT_GE(window->height(), minimum.height()) << "window lower than its content";
      const QImage image = window->grab().toImage();
      bool coloured = false;
      for (int y = 0; y < image.height() && !coloured; y += 3)
        for (int x = 0; x < image.width() && !coloured; x += 3)
          coloured = image.pixel(x, y) != image.pixel(0, 0);
      EXPECT_TRUE(coloured) << "window of a single colour";
    }
  }

  QString Page() const { return QString::fromLatin1(GetParam().name); }

  // Opens the entry's menu with the mouse and clicks the entry.
  bool Click(QAction* action) {
    QMenuBar* bar = m_window->menuBar();
    QMenu* menu = nullptr;
    for (QAction* top : bar->actions())
      if (top->menu() && top->menu()->actions().contains(action)) menu = top->menu();
    if (!menu) return false;
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
    if (!QTest::qWaitFor([menu] { return menu->isVisible(); }, 3000)) return false;
    QTest::qWait(30);
    if (!action->isEnabled()) {
      Shot(action->objectName() + QStringLiteral("-disabled"));
      QTest::keyClick(menu, Qt::Key_Escape);
      return false;
    }
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
    return true;
  }

  void ClickWidget(QWidget* widget) {
    ASSERT_NE(widget, nullptr);
    QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
  }

  void SaveAs(QFileDialog& dialog, int filter) {
    const QStringList filters = dialog.nameFilters();
    if (filter >= 0 && !filters.isEmpty())
      dialog.selectNameFilter(filters[filter % filters.size()]);
    const QString file = WorkPath(QStringLiteral("out/%1-%2-%3.%4")
                                      .arg(Page(), m_entry)
                                      .arg(++m_saved)
                                      .arg(FilterExtension(dialog.selectedNameFilter())));
    auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(edit, nullptr);
    edit->clear();
    QTest::keyClicks(edit, file);
    QTest::keyClick(edit, Qt::Key_Return);
    m_written.append(file);
  }

  // Answers the modal window in front; `step` counts how often it was
  // in front before. Deferred by the caller, so a nested window never
  // blocks the watcher.
  void Answer(QWidget* modal, int step) {
    const QString name = modal->objectName().isEmpty()
                             ? QString::fromLatin1(modal->metaObject()->className())
                             : modal->objectName();
    if (step == 0) Shot(m_entry + u'-' + name);
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      m_boxes.append(box->text());
      QTest::keyClick(box, Qt::Key_Escape);
    } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
      SaveAs(*files, m_entry.startsWith(QStringLiteral("cmd")) ? m_saved : -1);
    } else if (auto* input = qobject_cast<QInputDialog*>(modal)) {
      auto* edit = input->findChild<QLineEdit*>();
      edit->selectAll();
      QTest::keyClicks(edit, QStringLiteral("*a*"));
      QTest::keyClick(edit, Qt::Key_Return);
    } else if (name == QStringLiteral("frmSelectManyMetrics")) {
      auto* second = modal->findChild<QComboBox*>(QStringLiteral("cboMetric1"));
      second->setFocus();
      QTest::keyClick(second, Qt::Key_Down);
      QTest::keyClick(second, Qt::Key_Down);
      ClickWidget(modal->findChild<QAbstractButton*>(QStringLiteral("bOK")));
    } else if (name == QStringLiteral("ListSelect") ||
               name == QStringLiteral("frmSelectProjects")) {
      auto* list =
          modal->findChild<QListWidget*>(name == QStringLiteral("ListSelect") ? "List" : "List1");
      const int row = name == QStringLiteral("ListSelect") ? 0 : 1;
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                        list->visualItemRect(list->item(row)).center());
      ClickWidget(modal->findChild<QAbstractButton*>(QStringLiteral("OK")));
    } else if (name == QStringLiteral("frmMetricDatabases") && step == 0) {
      auto* list = modal->findChild<QTreeWidget*>(QStringLiteral("FileList"));
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                        list->visualItemRect(list->topLevelItem(0)).center());
      ClickWidget(modal->findChild<QAbstractButton*>(QStringLiteral("bEditDatabase")));
    } else if (name == QStringLiteral("frmMetricLimitMaintenance") && step < 2) {
      // First a set chosen (the last in the list), then its rules opened.
      auto* list = modal->findChild<QListWidget*>(QStringLiteral("LimitList"));
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                        list->visualItemRect(list->item(list->count() - 1)).center());
      ClickWidget(modal->findChild<QAbstractButton*>(step == 0 ? "bSelect" : "bEdit"));
    } else if (name == QStringLiteral("frmAbout")) {
      ClickWidget(modal);
    } else {
      const QStringList known = {"frmMetricDatabases",        "frmQVZEdit",
                                 "frmMetricLimitMaintenance", "frmMetricLimits",
                                 "frmMetricSelection",        "QDialog"};
      EXPECT_TRUE(known.contains(name)) << "unexpected window " << name.toStdString();
      QTest::keyClick(modal, Qt::Key_Escape);
    }
  }

  // Watches for modal windows while an entry runs; a window being answered
  // may open another, which is answered in turn.
  void Watch() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || m_busy.count(modal) || !modal->isVisible()) return;
    m_busy.insert(modal);
    QPointer<QWidget> target(modal);
    const int step = m_steps[modal]++;
    QTimer::singleShot(60, qApp, [this, target, modal, step] {
      if (target) Answer(target, step);
      m_busy.erase(modal);
    });
  }

  bool Idle() const { return !QApplication::activeModalWidget() && m_busy.empty(); }

  // Drives one entry and checks what it left.
  void Drive(const QString& entry) {
    SCOPED_TRACE(entry.toStdString());
    QAction* action = m_window->findChild<QAction*>(entry);
    ASSERT_NE(action, nullptr);
    m_entry = entry;
    m_boxes.clear();
    m_written.clear();
    m_steps.clear();
    const int logged = Opened().size();
    const QList<QWidget*> before = QApplication::topLevelWidgets();
    if (!Click(action)) return;
    EXPECT_TRUE(QTest::qWaitFor([this] { return Idle(); }, 20000)) << "a dialog stayed open";
    QTest::qWait(100);
    Shot(entry);
    // New picture windows: saved in the next format of their list, copied, closed.
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (before.contains(window) || !window->isVisible() || window->inherits("QMenu")) continue;
      m_entry = QStringLiteral("cmd-") + entry;
      if (auto* x = window->findChild<QComboBox*>(QStringLiteral("cboMetric0"))) {
        // The regression window opens on one metric twice: another X draws.
        x->setFocus();
        QTest::keyClick(x, Qt::Key_Down);
        Shot(entry + QStringLiteral("-chosen"));
      }
      if (auto* bar = window->findChild<QToolBar*>()) {
        for (const char* button : {"cmdSave", "cmdCopy"})
          ClickWidget(bar->widgetForAction(window->findChild<QAction*>(button)));
        EXPECT_TRUE(QTest::qWaitFor([this] { return Idle(); }, 20000)) << "a dialog stayed open";
        EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull());
      }
      window->close();
      m_entry = entry;
    }
    for (const QString& text : m_boxes) {
      bool expected = false;
      for (const ExpectedBox& box : kExpectedBoxes)
        expected |=
            entry == QLatin1String(box.entry) &&
            (QLatin1String(box.page) == QStringLiteral("*") || Page() == QLatin1String(box.page)) &&
            text.startsWith(QLatin1String(box.text));
      EXPECT_TRUE(expected) << "box: " << text.toStdString();
    }
    for (const QString& file : m_written) ExpectReaderAccepts(file);
    if (OpensDocument(entry) && m_boxes.isEmpty()) {
      (void)QTest::qWaitFor([&] { return Opened().size() > logged; }, 5000);
      ASSERT_GT(Opened().size(), logged) << "nothing handed to the default handler";
      for (const QString& url : Opened().mid(logged)) {
        const QString file = QUrl::fromUserInput(url).toLocalFile();
        if (!file.isEmpty() && !file.contains(QStringLiteral("/www/"))) ExpectReaderAccepts(file);
      }
    }
  }

  QStringList Opened() const {
    QFile log(WorkPath(QStringLiteral("opened.log")));
    if (!log.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts);
  }

  QString SettingsValue(const QString& key) const {
    return QSettings(SettingsFilePath(), QSettings::IniFormat).value(key).toString();
  }

  // The page kind of the run, chosen with the mouse and the keyboard; again
  // before every entry, since some (the database manager) start over.
  void ChoosePage() {
    auto* tabs = m_window->findChild<QTabBar*>(QStringLiteral("Tabs"));
    if (tabs->currentIndex() != GetParam().tab)
      QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(GetParam().tab).center());
    if (GetParam().timeStyle >= 0) {
      auto* style = m_window->findChild<QComboBox*>(QStringLiteral("cboProjectInTimeStyle"));
      style->setFocus();
      while (style->currentIndex() < GetParam().timeStyle) QTest::keyClick(style, Qt::Key_Down);
    }
    QTest::qWait(50);
  }

  // The script run inside the program's event loop.
  void Script() {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (auto* main = qobject_cast<QMainWindow*>(window); main && main->isVisible())
        m_window = main;
    ASSERT_NE(m_window, nullptr);
    QTest::qWait(200);
    if (QWidget* about = m_window->findChild<QWidget*>(QStringLiteral("frmAbout"));
        about && about->isVisible()) {
      Shot(QStringLiteral("start"));
      ClickWidget(about);
    }
    ChoosePage();
    Shot(QStringLiteral("page"));

    QStringList found;
    for (QAction* top : m_window->menuBar()->actions())
      for (QAction* action : top->menu()->actions())
        if (!action->isSeparator()) found.append(action->objectName());
    EXPECT_EQ(QSet<QString>(found.begin(), found.end()),
              QSet<QString>(kEntries.begin(), kEntries.end()));

    for (const QString& entry : kEntries) {
      if (entry == QStringLiteral("mFileClose")) continue;
      ChoosePage();
      const QString charts = SettingsValue(QStringLiteral("Options/DisplayCharts"));
      Drive(entry);
      if (entry == QStringLiteral("mOptionsCharts")) {
        EXPECT_NE(SettingsValue(QStringLiteral("Options/DisplayCharts")), charts);
      } else if (entry == QStringLiteral("mOptionsLimits")) {
        EXPECT_FALSE(SettingsValue(QStringLiteral("Limits/CurrentLimit")).isEmpty());
      } else if (entry == QStringLiteral("mEditCopy")) {
        EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u'\t'));
      }
      // Toggles are put back, so every page kind starts from the same view.
      if (entry == QStringLiteral("mOptionsCharts") || entry == QStringLiteral("mOptionsRotated"))
        Drive(entry);
    }
    Drive(QStringLiteral("mFileClose"));
  }

  QMainWindow* m_window = nullptr;
  QString m_entry;
  QStringList m_boxes;
  QStringList m_written;
  std::map<QWidget*, int> m_steps;
  std::set<QWidget*> m_busy;
  int m_saved = 0;
};

TEST_P(EndToEnd, EveryMenuEntry) {
  const QString home = QDir::homePath();
  const auto homeBefore = Listing(home);
  const auto samplesBefore = Listing(WorkPath(QStringLiteral("samples")));
  const QString previousDir = QDir::currentPath();
  QDir::setCurrent(WorkPath(QStringLiteral("samples")));

  QtUiServices dialogs;
  StartupHooks hooks;
  hooks.programPath = WorkPath(QStringLiteral("samples/qvzview"));
  hooks.currentDir = QDir::currentPath();
  hooks.hasDisplay = true;
  hooks.interactiveUi = &dialogs;
  hooks.batchUi = &dialogs;
  hooks.writeOut =
      hooks.writeErr = [](const QString& line) { ADD_FAILURE() << line.toStdString(); };
  hooks.runMainWindow = RunMainWindow;

  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [this] { Watch(); });
  watcher.start(50);
  QTimer::singleShot(300, [this] {
    Script();
    // Whatever the script left, the program ends.
    for (QWidget* window : QApplication::topLevelWidgets()) window->close();
  });
  EXPECT_EQ(Main({hooks.programPath}, hooks), 0);
  QDir::setCurrent(previousDir);

  EXPECT_EQ(Listing(WorkPath(QStringLiteral("samples"))), samplesBefore) << "a database changed";
  const QString settings = QDir(home).relativeFilePath(SettingsFilePath());
  for (const auto& [file, sum] : Listing(home)) {
    const auto old = homeBefore.find(file);
    if (old == homeBefore.end() || old->second != sum) {
      EXPECT_TRUE(file == settings || file.endsWith(QStringLiteral("/QtProject.conf")))
          << "written in the home folder: " << file.toStdString();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, EndToEnd, ::testing::ValuesIn(kPageKinds), [](const auto& info) {
  QString name = QString::fromLatin1(info.param.name);
  return name.remove(u'-').toStdString();
});

}  // namespace
}  // namespace ombrelle
