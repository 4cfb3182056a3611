#include <gtest/gtest.h>

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

TEST(UiServices, ScopedServiceRestoresPrevious) {
  UiServices* before = &Ui();
  {
    ScopedScriptedUi scoped;
    EXPECT_EQ(&Ui(), &scoped.ui);
  }
  EXPECT_EQ(&Ui(), before);
}
