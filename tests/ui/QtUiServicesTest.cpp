#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFontInfo>
#include <QImage>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include "support/ScriptedUiServices.h"
#include "support/ui/EchoingUiServices.h"
#include "support/ui/QtUiServices.h"

using namespace ombrelle;

TEST(QtUiServices, MessageBoxFollowsTheStyleSum) {
  struct Case {
    int style;
    QMessageBox::StandardButtons buttons;
    QMessageBox::Icon icon;
    QMessageBox::StandardButton defaultButton;
  };
  const Case cases[] = {
      {0, QMessageBox::Ok, QMessageBox::NoIcon, QMessageBox::Ok},
      {48, QMessageBox::Ok, QMessageBox::Warning, QMessageBox::Ok},
      {64, QMessageBox::Ok, QMessageBox::Information, QMessageBox::Ok},
      {16, QMessageBox::Ok, QMessageBox::Critical, QMessageBox::Ok},
      {36, QMessageBox::Yes | QMessageBox::No, QMessageBox::Question, QMessageBox::Yes},
      {36 + 256, QMessageBox::Yes | QMessageBox::No, QMessageBox::Question, QMessageBox::No},
      {1 + 256, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::NoIcon, QMessageBox::Cancel},
      {3 + 48 + 512, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Warning,
       QMessageBox::Cancel},
      {2, QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore, QMessageBox::NoIcon,
       QMessageBox::Abort},
      {5 + 32, QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Question, QMessageBox::Retry},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    auto box = QtUiServices::CreateMessageBox("text", c.style, "Title", nullptr);
    EXPECT_EQ(box->standardButtons(), c.buttons);
    EXPECT_EQ(box->icon(), c.icon);
    ASSERT_NE(box->defaultButton(), nullptr);
    EXPECT_EQ(box->standardButton(box->defaultButton()), c.defaultButton);
    EXPECT_EQ(box->text(), "text");
    EXPECT_EQ(box->windowTitle(), "Title");
  }
  EXPECT_EQ(QtUiServices::CreateMessageBox("t", 0, "", nullptr)->windowTitle(), "Ombrelle Viewer");
}

TEST(QtUiServices, ResultIsTheClickedButtonOrTheDecliningOne) {
  struct Case {
    int style;
    QMessageBox::StandardButton click;  // NoButton: closed without a button
    int result;
  };
  const Case cases[] = {
      {36, QMessageBox::Yes, 6},  {36, QMessageBox::No, 7},       {36, QMessageBox::NoButton, 7},
      {0, QMessageBox::Ok, 1},    {48, QMessageBox::NoButton, 1}, {3, QMessageBox::NoButton, 2},
      {2, QMessageBox::Retry, 4}, {2, QMessageBox::Ignore, 5},    {1, QMessageBox::Cancel, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    auto box = QtUiServices::CreateMessageBox("text", c.style, "", nullptr);
    if (c.click != QMessageBox::NoButton) box->button(c.click)->click();
    EXPECT_EQ(QtUiServices::ResultOf(*box), c.result);
  }
}

TEST(QtUiServices, ModalMessageBoxReturnsTheAnswer) {
  QtUiServices service;
  QString shownText;
  QTimer::singleShot(0, [&] {
    QMessageBox* box = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* candidate = qobject_cast<QMessageBox*>(widget); candidate && candidate->isVisible())
        box = candidate;
    ASSERT_NE(box, nullptr);
    shownText = box->text();
    box->button(QMessageBox::Yes)->click();
  });
  EXPECT_EQ(service.MsgBox("Overwrite?", 36, "Save"), 6);
  EXPECT_EQ(shownText, "Overwrite?");
}

TEST(QtUiServices, TextBoxIsReadOnlyFixedPitchAndUnwrapped) {
  auto dialog = QtUiServices::CreateTextBox("Usage", "a    b\r\ncc   d\r\n", nullptr);
  EXPECT_EQ(dialog->windowTitle(), "Usage");
  EXPECT_TRUE(dialog->isModal());
  auto* view = dialog->findChild<QPlainTextEdit*>("txtText");
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->toPlainText(), "a    b\ncc   d");
  EXPECT_TRUE(view->isReadOnly());
  EXPECT_EQ(view->lineWrapMode(), QPlainTextEdit::NoWrap);
  EXPECT_TRUE(view->font().fixedPitch() || QFontInfo(view->font()).fixedPitch());
}

TEST(QtUiServices, FileDialogsHonourTheRequest) {
  FileDialogRequest request;
  request.title = "Save table";
  request.folder = "/tmp";
  request.fileName = "table.csv";
  request.filter = "CSV files (*.csv);;All files (*)";
  request.defaultExtension = "csv";
  request.overwritePrompt = false;

  auto save = QtUiServices::CreateFileDialog(request, QFileDialog::AcceptSave, nullptr);
  EXPECT_EQ(save->windowTitle(), "Save table");
  EXPECT_EQ(save->acceptMode(), QFileDialog::AcceptSave);
  EXPECT_EQ(save->fileMode(), QFileDialog::AnyFile);
  EXPECT_EQ(save->nameFilters(), (QStringList{"CSV files (*.csv)", "All files (*)"}));
  EXPECT_EQ(save->defaultSuffix(), "csv");
  EXPECT_TRUE(save->testOption(QFileDialog::DontConfirmOverwrite));

  request.overwritePrompt = true;
  auto open = QtUiServices::CreateFileDialog(request, QFileDialog::AcceptOpen, nullptr);
  EXPECT_EQ(open->acceptMode(), QFileDialog::AcceptOpen);
  EXPECT_EQ(open->fileMode(), QFileDialog::ExistingFile);
  EXPECT_FALSE(open->testOption(QFileDialog::DontConfirmOverwrite));
}

TEST(QtUiServices, ClipboardHoldsTextAndPictureWithMetafileBytes) {
  QtUiServices service;
  service.SetClipboardText("a\tb");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "a\tb");

  QImage image(3, 2, QImage::Format_RGB32);
  image.fill(Qt::red);
  const QByteArray emf("\x01\x00\x00\x00EMF", 7);
  service.SetClipboardPicture(image, emf);
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->data("image/x-emf"), emf);
  ASSERT_TRUE(data->hasImage());
  EXPECT_EQ(qvariant_cast<QImage>(data->imageData()).size(), QSize(3, 2));

  std::unique_ptr<QMimeData> noEmf(QtUiServices::CreatePictureData(image, {}));
  EXPECT_FALSE(noEmf->hasFormat("image/x-emf"));
}

TEST(QtUiServices, BusyCursorIsCounted) {
  QtUiServices service;
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  service.BeginBusy();
  service.BeginBusy();
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  service.EndBusy();
  EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
  service.EndBusy();
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST(EchoingUiServices, ForwardsAndWritesEachMessage) {
  ScriptedUiServices inner;
  inner.msgAnswers.push_back(6);
  QStringList lines;
  EchoingUiServices echo(inner, [&](const QString& line) { lines.append(line); });

  EXPECT_EQ(echo.MsgBox("Replace it?", 36, "Save metrics as XML"), 6);
  echo.MsgBox("Missing file name parameter: \r\n/EDIT", 48, "");
  echo.TextBox("Usage", "a  b\r\n");
  echo.InputBox("Name:", "Rename", "x");
  echo.BeginBusy();
  echo.EndBusy();

  EXPECT_EQ(lines,
            (QStringList{"Save metrics as XML: Replace it?",
                         "Ombrelle Viewer: Missing file name parameter: \n/EDIT", "Usage: a  b"}));
  EXPECT_EQ(inner.MessageTexts(),
            (QStringList{"Replace it?", "Missing file name parameter: \r\n/EDIT"}));
  ASSERT_EQ(inner.textBoxes.size(), 1u);
  EXPECT_EQ(inner.textBoxes[0].text, "a  b\r\n");
  EXPECT_EQ(inner.inputPrompts, std::vector<QString>{"Name:"});
  EXPECT_EQ(inner.busyShown, 1);
  EXPECT_EQ(inner.BusyCount(), 0);
}
