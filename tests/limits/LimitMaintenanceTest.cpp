// The dialog of the limit sets without its window: list, buttons, messages,
// file dialogs, and bad input that must leave the stored sets alone.
#include <gtest/gtest.h>

#include <optional>

#include <QFile>

#include "common/MessageAssertions.h"
#include "limits/LimitMaintenanceModel.h"
#include "limits/LimitsTestSettings.h"
#include "limits/MetricLimits.h"
#include "limits/MetricLimitsDialogModel.h"
#include "support/ScriptedUiServices.h"

namespace ombrelle {
namespace {

using test::ReadAll;

// A fixture with a scripted service and a rules dialog that, when it has a
// script, runs it and accepts.
class LimitMaintenanceTest : public test::LimitsSettingsTest {
 protected:
  void SetUp() override {
    test::LimitsSettingsTest::SetUp();
    MetricLimits::SetDialogRunner([this](MetricLimitsDialogModel& dialog) {
      ++m_dialogs;
      m_lastReadOnly = dialog.ReadOnly();
      m_lastName = dialog.Name();
      if (!m_script) return false;
      m_script(dialog);
      dialog.Accept();
      return true;
    });
  }
  void TearDown() override {
    MetricLimits::SetDialogRunner(nullptr);
    test::LimitsSettingsTest::TearDown();
  }

  // Makes a stored set through Add, named `name`, with one rule of CC.
  std::int32_t AddSet(LimitMaintenanceModel& model, const QString& name, double bound = 10) {
    m_script = [name, bound](MetricLimitsDialogModel& dialog) {
      dialog.AddRule(4120, LimitAtMost, bound, 0);
      dialog.SetName(name);
    };
    model.Add();
    m_script = nullptr;
    return model.SelectedSet();
  }

  QString SettingsBytes() const {
    return QString::fromUtf8(ReadAll(TempPath(QStringLiteral("Ombrelle.ini"))));
  }

  ScopedScriptedUi m_scripted;
  std::function<void(MetricLimitsDialogModel&)> m_script;
  int m_dialogs = 0;
  bool m_lastReadOnly = false;
  QString m_lastName;
};

TEST_F(LimitMaintenanceTest, BuiltInSetsAreViewedAndNotRemovable) {
  LimitMaintenanceModel model;
  EXPECT_EQ(LimitMaintenanceModel::Title(), "Metric limits");
  ASSERT_EQ(model.List().Count(), 5);
  EXPECT_EQ(model.List().Selected(), model.List().FindData(0));  // fresh: <No limits>
  for (int i = 0; i < 5; ++i) {
    model.SetListIndex(i);
    EXPECT_EQ(model.EditCaption(), "&View");
    EXPECT_FALSE(model.RemoveEnabled());
    model.Remove();
  }
  EXPECT_TRUE(m_scripted.ui.messages.empty());  // no question for a built-in set
  EXPECT_EQ(model.List().Count(), 5);

  model.SetListIndex(model.List().FindData(LimitSet::Default));
  model.Edit();
  EXPECT_EQ(m_dialogs, 1);
  EXPECT_TRUE(m_lastReadOnly);
  EXPECT_EQ(m_lastName, "<Default limits>");
}

TEST_F(LimitMaintenanceTest, AddEditSelectRemove) {
  LimitMaintenanceModel model;
  model.Add();  // cancelled: nothing joins the list
  EXPECT_EQ(model.List().Count(), 5);
  EXPECT_EQ(m_lastName, "New limits");

  const std::int32_t nr = AddSet(model, QStringLiteral("Team"));
  EXPECT_EQ(nr, 1);
  EXPECT_EQ(model.List().At(model.List().Selected()).text, "Team");
  EXPECT_EQ(model.EditCaption(), "&Edit");
  EXPECT_TRUE(model.RemoveEnabled());

  m_script = [](MetricLimitsDialogModel& dialog) { dialog.SetName(QStringLiteral("Team 2")); };
  model.Edit();
  EXPECT_FALSE(m_lastReadOnly);
  EXPECT_EQ(model.List().At(model.List().Selected()).text, "Team 2");
  EXPECT_EQ(model.SelectedSet(), nr);

  model.Select();
  EXPECT_TRUE(model.Closed());
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), nr);

  m_scripted.ui.msgAnswers = {MsgResult::No};
  model.Remove();
  EXPECT_UI_MESSAGE(m_scripted.ui, 0, "Delete the selected limits?", 36);
  EXPECT_EQ(model.List().Count(), 6);
  m_scripted.ui.msgAnswers = {MsgResult::Yes};
  model.Remove();
  EXPECT_EQ(model.List().Count(), 5);
  EXPECT_TRUE(EnumSubkeys(QStringLiteral("Limits")).isEmpty());
}

TEST_F(LimitMaintenanceTest, CloseLeavesTheCurrentSet) {
  MetricLimits::SetCurrentLimitID(LimitSet::Outliers);
  LimitMaintenanceModel model;
  EXPECT_EQ(model.SelectedSet(), LimitSet::Outliers);
  model.SetListIndex(model.List().FindData(LimitSet::Default));
  model.Close();
  EXPECT_TRUE(model.Closed());
  EXPECT_EQ(MetricLimits::GetCurrentLimitID(), LimitSet::Outliers);
}

TEST_F(LimitMaintenanceTest, UnloadableSetIsNotEdited) {
  SaveSetting(QStringLiteral("Limits\\4"), QStringLiteral("Name"), QStringLiteral("Future"));
  SaveSetting(QStringLiteral("Limits\\4"), QStringLiteral("Version"), QStringLiteral("2.0"));
  LimitMaintenanceModel model;
  model.SetListIndex(model.List().FindData(4));
  model.Edit();
  EXPECT_ONLY_UI_MESSAGE(m_scripted.ui, "Cannot load limits to edit.\nUnsupported version number",
                         48);
  EXPECT_EQ(m_dialogs, 0);
  EXPECT_EQ(GetSetting(QStringLiteral("Limits\\4"), QStringLiteral("Version")), "2.0");
}

TEST_F(LimitMaintenanceTest, ExportProposesTheSetsNameThenImportBringsItBack) {
  LimitMaintenanceModel model;
  AddSet(model, QStringLiteral("Team: a/b"), 7);
  const QString path = TempPath(QStringLiteral("team.mtl"));
  m_scripted.ui.fileAnswers = {path};
  model.Export();
  ASSERT_EQ(m_scripted.ui.fileRequests.size(), 1u);
  const FileDialogRequest& save = m_scripted.ui.fileRequests[0];
  EXPECT_EQ(save.title, "Export to file");
  EXPECT_EQ(save.filter, "Metric limits (*.mtl)");
  EXPECT_EQ(save.defaultExtension, "mtl");
  EXPECT_EQ(save.fileName, "Team ab.mtl");
  EXPECT_TRUE(QFile::exists(path));

  m_scripted.ui.fileAnswers = {path};
  m_scripted.ui.inputAnswers = {QStringLiteral("Imported")};
  model.Import();
  const FileDialogRequest& open = m_scripted.ui.fileRequests[1];
  EXPECT_EQ(open.filter, "Metric limits (*.mtl);;All files (*)");
  EXPECT_EQ(open.defaultExtension, "mtl");
  EXPECT_EQ(model.List().At(model.List().Selected()).text, "Imported");
  MetricLimits imported;
  ASSERT_TRUE(imported.Load(model.SelectedSet()));
  ASSERT_EQ(imported.RuleCount(), 1);
  EXPECT_EQ(imported.GetRule(1), (MetricLimitRule{4120, LimitAtMost, 7, 0}));
  EXPECT_TRUE(m_scripted.ui.messages.empty());
}

TEST_F(LimitMaintenanceTest, ProposedFileNames) {
  const char* cases[][2] = {{"<Default limits>", "Default limits.mtl"},
                            {"a\\b/c:d*e?f\"g|h", "abcdefgh.mtl"},
                            {"Grenzwerte Ä=ö", "Grenzwerte Ä=ö.mtl"},
                            {"<>", "limits.mtl"},
                            {"..", "limits.mtl"}};
  for (const auto& c : cases)
    EXPECT_EQ(LimitMaintenanceModel::ProposedFileName(QString::fromUtf8(c[0])),
              QString::fromUtf8(c[1]));
}

TEST_F(LimitMaintenanceTest, DamagedOrEmptyImportChangesNoStoredSet) {
  LimitMaintenanceModel model;
  AddSet(model, QStringLiteral("Kept"));
  const QString before = SettingsBytes();
  QByteArray huge = "[MTL Metric limits]\r\nVersion=1.0\r\nName=H\r\nRules=1\r\n";
  for (int i = 0; i < 140000; ++i) huge += "K" + QByteArray::number(i) + "=1\n";
  const struct {
    const char* name;
    std::optional<QByteArray> bytes;  // none: the file does not exist
  } files[] = {
      {"empty.mtl", QByteArray()},
      {"cut.mtl", QByteArray("[MTL Metric limits]\r\nVersi")},
      {"binary.mtl", QByteArray("\x00\xff\x13[\x00]=\n\x01", 9)},
      {"newer.mtl", QByteArray("[MTL Metric limits]\r\nVersion=2.0\r\nName=X\r\nRules=1\r\n\r\n"
                               "[Rule1]\r\nMetric=4120\r\nLimitType=0\r\nLimit=12\r\n")},
      {"nohead.mtl", QByteArray("[Rule1]\r\nMetric=4120\r\nLimitType=0\r\nLimit=12\r\n")},
      {"huge.mtl", huge},
      {"missing.mtl", std::nullopt},
  };
  for (const auto& file : files) {
    SCOPED_TRACE(file.name);
    const QString path = TempPath(QString::fromLatin1(file.name));
    if (file.bytes) {
      QFile out(path);
      ASSERT_TRUE(out.open(QIODevice::WriteOnly));
      out.write(*file.bytes);
    }
    m_scripted.ui.messages.clear();
    m_scripted.ui.inputPrompts.clear();
    m_scripted.ui.fileAnswers = {path};
    m_scripted.ui.inputAnswers = {QStringLiteral("Never asked")};
    model.Import();
    EXPECT_ONLY_UI_MESSAGE(m_scripted.ui,
                           ("Unsupported file format or version in " + path).toStdString(), 48);
    EXPECT_TRUE(m_scripted.ui.inputPrompts.empty());
    EXPECT_EQ(SettingsBytes(), before);
    EXPECT_EQ(model.List().Count(), 6);
    EXPECT_EQ(model.List().At(model.List().Selected()).text, "Kept");
  }
  m_scripted.ui.fileAnswers.clear();  // a cancelled open dialog does nothing
  model.Import();
  EXPECT_EQ(SettingsBytes(), before);
}

TEST_F(LimitMaintenanceTest, NamesWithSeparatorsAndNonAsciiLettersSurviveTheSettings) {
  const QString names[] = {QStringLiteral("Back\\slash\\Rule1"), QStringLiteral("a=b; [c]"),
                           QString::fromUtf8("Grenzwerte für Größen ÆØÅ 日本"),
                           QStringLiteral("  blanks  ")};
  LimitMaintenanceModel model;
  std::vector<std::int32_t> numbers;
  for (const QString& name : names) numbers.push_back(AddSet(model, name));
  LimitMaintenanceModel reopened;
  for (size_t i = 0; i < numbers.size(); ++i) {
    const int index = reopened.List().FindData(numbers[i]);
    ASSERT_GE(index, 0);
    EXPECT_EQ(reopened.List().At(index).text, names[i]);
    MetricLimits loaded;
    ASSERT_TRUE(loaded.Load(numbers[i]));
    EXPECT_EQ(loaded.GetName(), names[i]);
    EXPECT_EQ(loaded.RuleCount(), 1);
  }
  EXPECT_EQ(EnumSubkeys(QStringLiteral("Limits")).size(), 4);
}

}  // namespace
}  // namespace ombrelle
