#include <gtest/gtest.h>

#include "common/MessageAssertions.h"
#include "support/ScriptedUiServices.h"

using namespace ombrelle;

TEST(UiServices, BusyCursorIsCountedAndNeverNegative) {
  ScopedScriptedUi scoped;
  {
    BusyCursor outer;
    {
      BusyCursor inner;
      EXPECT_EQ(Ui().BusyCount(), 2);
    }
    EXPECT_EQ(Ui().BusyCount(), 1);
  }
  EXPECT_EQ(Ui().BusyCount(), 0);
  EXPECT_EQ(scoped.ui.busyShown, 1);  // shown once for the nested pair
  Ui().EndBusy();
  EXPECT_EQ(Ui().BusyCount(), 0);
}

TEST(UiServices, ScriptedAnswersQuestionsFromQueueThenNo) {
  ScopedScriptedUi scoped;
  scoped.ui.msgAnswers.push_back(MsgResult::Yes);
  EXPECT_EQ(Ui().MsgBox("Overwrite?", MsgStyle::YesNoQuestion, "Save"), MsgResult::Yes);
  EXPECT_EQ(Ui().MsgBox("Again?", MsgStyle::YesNoQuestion, "Save"), MsgResult::No);
  EXPECT_EQ(Ui().MsgBox("Done", MsgStyle::Information, "Save"), MsgResult::Ok);
  EXPECT_UI_MESSAGE(scoped.ui, 0, "Overwrite?", 36);
  EXPECT_UI_MESSAGE(scoped.ui, 2, "Done", 64);
}

TEST(UiServices, ScopedServiceRestoresPrevious) {
  UiServices* before = &Ui();
  {
    ScopedScriptedUi scoped;
    EXPECT_EQ(&Ui(), &scoped.ui);
  }
  EXPECT_EQ(&Ui(), before);
}
