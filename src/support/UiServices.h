#pragma once

#include <functional>
#include <memory>

#include <QString>
#include <QStringList>

class QImage;
class QByteArray;
class QPagedPaintDevice;

namespace ombrelle {

// Styles of a message box, as the sum of a button set and an icon.
namespace MsgStyle {
constexpr int OkOnly = 0;
constexpr int YesNo = 4;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
constexpr int YesNoQuestion = YesNo + Question;  // 36
}  // namespace MsgStyle

// Answers of a message box.
namespace MsgResult {
constexpr int Ok = 1;
constexpr int Cancel = 2;
constexpr int Yes = 6;
constexpr int No = 7;
}  // namespace MsgResult

// One file dialog request. `filter` uses Qt's form: "XML files (*.xml);;All files (*)".
struct FileDialogRequest {
  QString title;
  QString folder;    // starting folder; empty means the current one
  QString fileName;  // proposed name (save) or selected name (open)
  QString filter;
  QString defaultExtension;          // without the dot; added when the user typed none
  bool overwritePrompt = true;       // save dialogs ask before replacing a file
  int filterIndex = 0;               // 1-based filter the dialog starts on; 0 the first
  int* chosenFilterIndex = nullptr;  // when set, receives the 1-based filter chosen
};

// One folder chooser request: the chooser stays open until `accept` takes
// the chosen folder (it shows its own messages) or the user cancels.
struct FolderRequest {
  QString title;
  QString prompt;
  QString folder;                              // the folder shown first
  bool allowCreate = true;                     // the chooser may make new folders
  bool showKill = false;                       // offers "Delete all files"
  std::function<bool(const QString&)> accept;  // the checks of "Select"
  // Actions of the chooser's buttons, for choosers that show them.
  std::function<bool(const QString&)> create;
  std::function<void(const QString&)> view;
  std::function<void(const QString&)> kill;
  std::function<bool(const QString&)> warnNotEmpty;  // whether to show the warning
};

// The one road from the program to its user: every message, question, input
// box, file or folder dialog, shell open, clipboard write and the busy cursor
// go through the current service. The windows install the dialog-based one,
// runs without a display the console one, and tests a scripted fake.
class UiServices {
 public:
  virtual ~UiServices() = default;

  // A modal message box. `style` is a sum of MsgStyle values; the result is a
  // MsgResult value (Ok for boxes without a choice).
  virtual int MsgBox(const QString& text, int style, const QString& title) = 0;

  // A modal box holding `text` in a fixed-pitch font (the command-line usage).
  virtual void TextBox(const QString& title, const QString& text) = 0;

  // A modal input box; Cancel gives an empty text.
  virtual QString InputBox(const QString& prompt, const QString& title,
                           const QString& defaultText) = 0;

  // File dialogs; cancel gives an empty text.
  virtual QString SaveFileDialog(const FileDialogRequest& request) = 0;
  virtual QString OpenFileDialog(const FileDialogRequest& request) = 0;
  virtual QString BrowseFolder(const QString& title, const QString& folder) = 0;
  // The program's folder chooser. By default a BrowseFolder per attempt,
  // asked again from the refused folder until `accept` takes one.
  virtual QString ChooseFolder(const FolderRequest& request);

  // Opens a file or address with the desktop's default handler.
  virtual bool ShellOpen(const QString& pathOrUrl) = 0;

  virtual void SetClipboardText(const QString& text) = 0;
  // A picture goes to the clipboard as an image and, when given, as EMF bytes.
  virtual void SetClipboardPicture(const QImage& image, const QByteArray& emf) = 0;

  // The default printer, set up for one document of this name and ready for a
  // QPainter; null when there is none. Pictures print through it.
  virtual std::unique_ptr<QPagedPaintDevice> OpenPrinter(const QString& documentName);
  // A printer the user chooses in the print dialog; null when cancelled. By
  // default the printer OpenPrinter gives.
  virtual std::unique_ptr<QPagedPaintDevice> ChoosePrinter(const QString& documentName);

  // The counted busy cursor: shown while the count is above zero.
  void BeginBusy();
  void EndBusy();
  int BusyCount() const { return m_busy; }

  // The application title used in box captions when none is given.
  static QString AppTitle();

 protected:
  // Called when the count goes from 0 to 1 (true) and from 1 to 0 (false).
  virtual void ShowBusy(bool busy) = 0;

 private:
  int m_busy = 0;
};

// The service in force. Until one is installed the console service answers.
UiServices& Ui();
// Installs `service` (not owned) and returns the one it replaces; nullptr
// returns to the console service.
UiServices* SetUi(UiServices* service);

// Raises the busy cursor for the life of the object.
class BusyCursor {
 public:
  BusyCursor() { Ui().BeginBusy(); }
  ~BusyCursor() { Ui().EndBusy(); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;
};

}  // namespace ombrelle
