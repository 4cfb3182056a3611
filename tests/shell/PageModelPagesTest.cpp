// Entering pages, the combos of the project-in-time page, the cursor column
// a page opens on, titles, keys and the row action.
#include <QStringList>

#include "shell/PageModelFixture.h"
#include "support/FormatNum.h"
#include "support/UiServices.h"

namespace ombrelle::test {
namespace {

TEST_F(PageModelTest, StartOpensAllAnalysesWithTheDateColumnFixed) {
  const MetricRead& reader = model->Reader();
  EXPECT_EQ(view.tabs, std::vector<int>{0});
  EXPECT_EQ(model->CurrentPage(), 0);
  EXPECT_EQ(model->Pages(0).Rows, reader.DatabaseCount());
  EXPECT_EQ(grid->Rows(), reader.DatabaseCount());
  EXPECT_EQ(grid->FixedColumns(), 2);
  EXPECT_EQ(grid->ColumnCaption(1), "Project");
  EXPECT_EQ(grid->ColumnCaption(2), "DATE");
  EXPECT_TRUE(grid->Sortable());
  // No metric was current: the cursor lands beside the fixed columns.
  EXPECT_EQ(grid->GetCurRow(), 1);
  EXPECT_EQ(grid->GetCurColumn(), 3);
  EXPECT_EQ(model->CurrentMetric(), model->SeriesMetric(model->Pages(0).FirstColumn + 1));
  EXPECT_EQ(model->CurrentDatabase(), reader.GridRowToQVZDatabase(1));
  EXPECT_EQ(model->DatabaseDetailsText(), reader.GetDatabaseDetails(model->CurrentDatabase()));
  EXPECT_FALSE(model->Combo(PageCombo::Analysis).Visible());
  EXPECT_FALSE(model->Combo(PageCombo::CompareClass).Visible());
  // The combos carry their fixed lists.
  const auto items = [&](PageCombo combo) {
    QStringList texts;
    for (int i = 0; i < model->Combo(combo).ListCount(); ++i) texts << model->Combo(combo).List(i);
    return texts;
  };
  EXPECT_EQ(items(PageCombo::CompareClass),
            QStringList({"Entire analysis", "File:", "Class:", "Procedure:", "Variable:"}));
  EXPECT_EQ(items(PageCombo::ProjectInTimeStyle),
            QStringList({"Metric value", "Change (+/-)", "Relative change (%)",
                         QString::fromUtf8("Change/day (\u00B1/d)"),
                         QString::fromUtf8("Change/month (\u00B1/m)")}));
  EXPECT_GT(model->Combo(PageCombo::MetricLimit).ListCount(), 0);
  EXPECT_GT(model->Combo(PageCombo::MetricSelection).ListCount(), 0);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

// 0 -> 3 -> 5 -> 2, then every style and every compare class on page 2.
TEST_F(PageModelTest, PageEntrySequenceWithEachTimeStyleAndCompareClass) {
  struct Marks {
    const char* prefix;
    const char* suffix;
  };
  const Marks marks[] = {{"", ""}, {"\u00B1", ""}, {"%", ""}, {"\u00B1", "/d"}, {"\u00B1", "/m"}};
  const int billingSaves = SavesOf(QStringLiteral("Billing"));
  const MetricRead& reader = model->Reader();
  const int firstDatabase = model->CurrentDatabase();
  ASSERT_TRUE(reader.Database(firstDatabase).Title.startsWith("Billing"));

  model->TabClicked(3);
  EXPECT_EQ(model->CurrentDatabase(), firstDatabase);
  EXPECT_EQ(model->Pages(3).Rows, reader.GetClassSize(ClassFile));
  EXPECT_EQ(grid->FixedColumns(), 1);
  EXPECT_EQ(grid->SortColumn(), 1);
  EXPECT_EQ(grid->ColumnCaption(1), "File");
  EXPECT_TRUE(model->Combo(PageCombo::Analysis).Visible());
  EXPECT_FALSE(model->Combo(PageCombo::ProjectInTimeStyle).Visible());

  model->TabClicked(5);
  EXPECT_EQ(model->Pages(5).Rows, reader.GetClassSize(ClassProcedure));
  EXPECT_EQ(grid->ColumnCaption(1), "Procedure");
  // A reload on an item page throws the other pages away.
  EXPECT_FALSE(model->Pages(3).Loaded);

  model->TabClicked(2);
  for (int style = 0; style <= 4; ++style) {
    for (int compareClass = 0; compareClass <= 4; ++compareClass) {
      SCOPED_TRACE(testing::Message() << "style " << style << " class " << compareClass);
      model->ChooseComboItem(PageCombo::ProjectInTimeStyle, style);
      model->ChooseComboItem(PageCombo::CompareClass, compareClass);
      EXPECT_EQ(model->TimeStyle(), style);
      EXPECT_EQ(model->MetricClassOfPage(2), compareClass);
      EXPECT_TRUE(model->Combo(PageCombo::CompareClass).Visible());
      EXPECT_EQ(model->Combo(PageCombo::CompareRecord).Visible(), compareClass > 0);
      if (compareClass > 0) {
        EXPECT_EQ(model->Combo(PageCombo::CompareRecord).ListIndex(), 0);
        EXPECT_EQ(reader.RecordName(), model->Combo(PageCombo::CompareRecord).List(0));
      }
      const PageRecord& page = model->Pages(2);
      ASSERT_TRUE(page.Loaded);
      EXPECT_EQ(page.Rows, billingSaves);
      EXPECT_EQ(grid->Rows(), billingSaves);
      EXPECT_EQ(grid->FixedColumns(), 2);
      EXPECT_EQ(grid->ColumnCaption(1), "Project");
      EXPECT_EQ(model->SeriesMetric(page.FirstColumn), 1000);
      EXPECT_EQ(model->SeriesMetric(page.FirstColumn + 1), 1001);
      EXPECT_EQ(grid->ColumnCaption(2), "DATE");
      EXPECT_EQ(grid->ColumnCaption(3), "DAYS");
      ASSERT_GT(page.ColumnCount, 2);
      for (int column = 4; column <= grid->Columns(); ++column) {
        const MetricId id = model->SeriesMetric(model->ColumnToSeries(2, column));
        const int metricClass = MetricDefinitions::GetMetricClass(id);
        EXPECT_TRUE(compareClass == 0 || metricClass == compareClass) << id;
        QString expected = QString::fromUtf8(marks[style].prefix) +
                           model->Definitions().GetMetricName(id, NameAbbreviation);
        if (compareClass == 0 && metricClass != 0)
          expected += "/" + MetricDefinitions::GetMetricClassName(metricClass, true);
        expected += QString::fromUtf8(marks[style].suffix);
        EXPECT_EQ(grid->ColumnCaption(column), expected) << id;
      }
      // The oldest save has nothing to be compared with.
      EXPECT_EQ(Cell(1, 4).first == "-", style > 0);
      EXPECT_TRUE(scripted.ui.messages.empty());
    }
  }
}

TEST_F(PageModelTest, PagesZeroAndOneStayLoadedWhileSwitchingBetweenThem) {
  model->TabClicked(1);
  ASSERT_TRUE(model->Pages(0).Loaded);
  const int firstOfPageOne = model->Pages(1).FirstColumn;
  EXPECT_EQ(firstOfPageOne, model->Pages(0).FirstColumn + model->Pages(0).ColumnCount);
  model->TabClicked(0);
  model->TabClicked(1);
  EXPECT_EQ(model->Pages(1).FirstColumn, firstOfPageOne);
  EXPECT_EQ(model->SeriesUpperBound(), firstOfPageOne + model->Pages(1).ColumnCount - 1);
  // One row per project on the latest analyses.
  EXPECT_EQ(model->Pages(1).Rows, 3);
}

TEST_F(PageModelTest, CursorColumnFollowsTheMetricAndItsDerivation) {
  // The same metric on the next page.
  CursorOnMetric(1009);
  model->TabClicked(1);
  EXPECT_EQ(model->CurrentMetric(), 1009);
  EXPECT_EQ(grid->GetCurColumn(), model->FindGridColumn(1009) + 1);
  // A page entered for the first time takes the metric of the page left.
  EXPECT_EQ(model->Pages(1).PageMetric, 1009);

  // A project sum of a file metric leads to that file metric.
  CursorOnMetric(1100);
  model->TabClicked(3);
  EXPECT_EQ(model->CurrentMetric(), 2100);

  // 2011 has no relative among the class metrics: the first metric column.
  CursorOnMetric(2011);
  model->TabClicked(4);
  EXPECT_EQ(grid->GetCurColumn(), 2);
  EXPECT_EQ(model->CurrentMetric(), model->SeriesMetric(model->Pages(4).FirstColumn));

  // A selection without 2011 but with one of its operands: the operand.
  model->TabClicked(3);
  CursorOnMetric(2011);
  MetricSelection selection;
  selection.Create(QStringLiteral("Logical lines"));
  selection.AddSelected(2001);
  selection.AddSelected(2013);
  selection.AddSelected(2014);
  selection.Save();
  model->FillSelectionCombo();
  const int item = model->Combo(PageCombo::MetricSelection).ListCount() - 1;
  ASSERT_EQ(model->Combo(PageCombo::MetricSelection).ItemData(item), selection.GetID());
  model->ChooseComboItem(PageCombo::MetricSelection, item);
  EXPECT_EQ(MetricSelection::Current(), selection.GetID());
  EXPECT_EQ(model->Pages(3).ColumnCount, 3);
  EXPECT_EQ(model->CurrentMetric(), 2013);
  EXPECT_EQ(grid->GetCurColumn(), 3);
}

TEST_F(PageModelTest, SelectionComboIsIgnoredWhileTheSelectionsDialogIsOpen) {
  const int columns = model->Pages(0).ColumnCount;
  const ListModel& combo = model->Combo(PageCombo::MetricSelection);
  const int simple = ItemStartingWith(combo, MetricSelection::BuiltInName(SelectionSet::Simple));
  ASSERT_GE(simple, 0);
  model->SetSelectionGuard(true);
  model->ChooseComboItem(PageCombo::MetricSelection, simple);
  EXPECT_EQ(model->Pages(0).ColumnCount, columns);
  EXPECT_EQ(MetricSelection::Current(), SelectionSet::All);
  model->SetSelectionGuard(false);
  model->ChooseComboItem(PageCombo::MetricSelection, simple);
  EXPECT_LT(model->Pages(0).ColumnCount, columns);
}

TEST_F(PageModelTest, ChoosingAnAnalysisReloadsTheItemPage) {
  model->TabClicked(5);
  const int harbour = ItemStartingWith(model->Combo(PageCombo::Analysis), "Harbour 3.1");
  ASSERT_GE(harbour, 0);
  model->ChooseComboItem(PageCombo::Analysis, harbour);
  EXPECT_EQ(model->Pages(5).Rows, 6000);
  EXPECT_EQ(model->CurrentDatabase(), model->Combo(PageCombo::Analysis).ItemData(harbour));
  EXPECT_EQ(model->PageTitle(), "Procedure metrics " + model->Combo(PageCombo::Analysis).Text());
  // The project of the analysis in focus is the one shown in time.
  model->TabClicked(2);
  EXPECT_EQ(model->Pages(2).Rows, SavesOf("Harbour"));
}

TEST_F(PageModelTest, PageTitles) {
  EXPECT_EQ(model->PageTitle(), "Project metrics, all projects");
  model->TabClicked(3);
  EXPECT_EQ(model->PageTitle(), "File metrics Billing 2.0  <2024-01-16>");
  model->TabClicked(1);
  EXPECT_EQ(model->PageTitle(), "Project metrics, latest saves");
  model->TabClicked(2);
  EXPECT_EQ(model->PageTitle(), "Project metrics Billing.vbp");
  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 2);
  model->ChooseComboItem(PageCombo::CompareClass, 1);
  EXPECT_EQ(model->PageTitle(), "Relative change (%) (File metrics) Billing.vbp " +
                                    model->Combo(PageCombo::CompareRecord).Text());
  EXPECT_EQ(model->ProgramTitle(),
            UiServices::AppTitle() + " " + VersionText(false) + " for Tarnwick v10.0");
}

TEST_F(PageModelTest, NamedDatabaseOpensItsProjectInTime) {
  StartModel(SampleFolder() + "/2024-09-30 Harbour.qvz");
  EXPECT_EQ(model->CurrentPage(), 2);
  EXPECT_EQ(view.tabs, std::vector<int>{2});
  EXPECT_EQ(model->Pages(2).Rows, SavesOf("Harbour"));
  const int database = model->CurrentDatabase();
  EXPECT_EQ(model->Reader().Database(database).Title, "Harbour 1.3");
  // The cursor is on the row of that analysis.
  EXPECT_EQ(model->Reader().GridRowToQVZDatabase(grid->GetCurRow()), database);
  EXPECT_EQ(Cell(grid->GetCurRow(), 1).first, "Harbour 1.3");

  // A file that is not there leaves the window on page 0.
  StartModel(SampleFolder() + "/missing.qvz");
  EXPECT_EQ(model->CurrentPage(), 0);
  EXPECT_EQ(view.tabs, std::vector<int>{0});
  EXPECT_TRUE(scripted.ui.messages.empty());
}

TEST_F(PageModelTest, BusyCursorIsDownAfterEveryEvent) {
  EXPECT_EQ(Ui().BusyCount(), 0);
  for (int page : {3, 2, 5, 1, 6, 0}) {
    model->TabClicked(page);
    EXPECT_EQ(Ui().BusyCount(), 0) << page;
  }
  model->ChooseComboItem(PageCombo::ProjectInTimeStyle, 1);
  grid->SortClick(-3);
  model->ToggleRotated();
  EXPECT_EQ(Ui().BusyCount(), 0);
  EXPECT_GT(scripted.ui.busyShown, 0);
}

TEST_F(PageModelTest, HeaderColumnHasNoSeries) {
  model->ColumnChanged(1);
  EXPECT_EQ(model->CurrentSeries(), 0);
  EXPECT_EQ(model->CurrentMetric(), 0);
  EXPECT_EQ(model->Pages(0).PageMetric, 0);
  EXPECT_EQ(model->Panel().Texts().Title, "");
  EXPECT_EQ(model->Panel().Texts().Count, "");
  EXPECT_EQ(model->SeriesMetric(0), 0);
  EXPECT_EQ(model->FindSeries(9999), 0);
  EXPECT_EQ(model->FindGridColumn(9999), 0);
}

TEST_F(PageModelTest, TabCaptionsAndTips) {
  const char* const captions[] = {"&All analyses", "&Latest analyses", "Project in &time", "F&iles",
                                  "Classe&s",      "&Procedures",      "&Variables"};
  const char* const tips[] = {"All analyses available",
                              "Compare the latest status of each project",
                              "All analyses of a single project",
                              "File metrics",
                              "Class metrics (object-oriented)",
                              "Procedure metrics",
                              "Variable metrics"};
  for (int page = 0; page < kPageCount; ++page) {
    EXPECT_EQ(PageModel::PageCaption(page), captions[page]);
    EXPECT_EQ(PageModel::PageTip(page), tips[page]);
  }
  EXPECT_EQ(PageModel::PageCaption(7), "");
}

TEST_F(PageModelTest, FormatsOnPages) {
  struct Case {
    int page;
    int style;
    MetricId id;
    int kind;
    int format;
  };
  // 1012 is a percentage (3), 1002 a large count (2), 2001 a count shown as
  // an average on the project pages, 1000 the date.
  const Case cases[] = {
      {0, 0, 1002, 0, 2}, {0, 0, 2001, 0, 7},  {0, 0, 1000, 0, 9}, {3, 0, 2001, 0, 1},
      {2, 1, 1000, 0, 9}, {2, 1, 1001, 0, 1},  {2, 1, 1002, 0, 2}, {2, 2, 1002, 0, 4},
      {2, 2, 1000, 0, 9}, {2, 3, 1002, 0, 10}, {2, 4, 1012, 0, 4}, {2, 0, 2001, 0, 7},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "page " << c.page << " style " << c.style << " id " << c.id);
    if (model->CurrentPage() != c.page) model->TabClicked(c.page);
    if (c.page == 2) model->ChooseComboItem(PageCombo::ProjectInTimeStyle, c.style);
    EXPECT_EQ(model->MetricFormatOnPage(c.id, c.kind), c.format);
  }
}

TEST_F(PageModelTest, WindowKeysMoveBetweenPages) {
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::PageUp, GridShift::Ctrl));
  EXPECT_EQ(model->CurrentPage(), 0);
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::PageDown, GridShift::Ctrl));
  EXPECT_EQ(model->CurrentPage(), 1);
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::Tab, GridShift::Ctrl));
  EXPECT_EQ(model->CurrentPage(), 2);
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::Tab, GridShift::Ctrl | GridShift::Shift));
  EXPECT_EQ(model->CurrentPage(), 1);
  EXPECT_EQ(view.tabs, (std::vector<int>{0, 1, 2, 1}));
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::F5, GridShift::Alt));
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::F10, GridShift::Alt));
  EXPECT_EQ(view.windowStates, (std::vector<int>{0, 2}));
  EXPECT_FALSE(model->WindowKeyDown(WindowKey::PageDown, 0));
  EXPECT_FALSE(model->WindowKeyDown(WindowKey::Insert, 0));
  EXPECT_TRUE(scripted.ui.clipboardText.isEmpty());
  EXPECT_TRUE(model->WindowKeyDown(WindowKey::Insert, GridShift::Ctrl));  // the table copy
  EXPECT_TRUE(scripted.ui.clipboardText.startsWith(QStringLiteral("Project\t")));
  EXPECT_EQ(model->CurrentPage(), 1);
}

TEST_F(PageModelTest, RowActionNamesTheItem) {
  EXPECT_EQ(model->RowActionCommand(1, 3), "");
  model->TabClicked(3);
  EXPECT_EQ(model->RowActionCommand(2, 2), "Move F " + model->CellValue(2, 1).toString());
  model->TabClicked(5);
  int dataRow = 2;
  model->GridRowToDataRow(dataRow, 1);
  const QString file = model->Reader().GetItemFilename(ClassProcedure, dataRow);
  ASSERT_FALSE(file.isEmpty());
  const QString name = model->CellValue(2, 1).toString();
  EXPECT_EQ(model->RowActionCommand(2, 2), "Move P " + file + " " + name);
  model->ToggleRotated();
  EXPECT_EQ(model->RowActionCommand(1, 1), "");
  EXPECT_EQ(model->RowActionCommand(1, 3), "Move P " +
                                               model->Reader().GetItemFilename(ClassProcedure, 1) +
                                               " " + model->Pages(5).RowHeaders.at(0));
  // There is no analysis program to talk to: nothing happens, nothing is said.
  model->DblClickCell(1, 3);
  EXPECT_TRUE(scripted.ui.messages.empty());
}

}  // namespace
}  // namespace ombrelle::test
