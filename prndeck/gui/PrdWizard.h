// The setup wizard: windows that add, modify, copy and delete queues. Each hands one line to prnqtool, as the
// terminal does, and reads the lists anew.
//
// The windows are made once and shown and hidden afterwards. Their settings are process-wide, one value each:
// choices from 0, where the objects count from 1. One of the windows is open at a time, so that they share
// them; each opening sets them anew.
#pragma once

#include "print/MainUtils.h"
#include "xmt/Xmt.h"

#include <string>

// Writers: the handler, and the functions that open a window.
extern int PrinterModel;  // position in PpdList
extern int PrintingModel; // PM_
extern int Connection;    // CONNECTION_
extern int BannerPage, UseFeatures, GuiType, DefaultPrinter, Daemon;

// Answers to its questions, which no object bears: lpsched did not stop, a queue is to be replaced.
enum { WIZARD_RETRY = 999, WIZARD_REPLACE_ADD = 1001, WIZARD_REPLACE_COPY = 1002 };

extern int MQue;           // place of the queue chosen in the list to modify, 0 for none
extern int CQue;           // one more than its place in the list to copy, 0 before one was chosen
extern char *MQueName;     // managed: its name, or null
extern char *CQueName;     // managed, likewise
extern char *DQueName;     // managed: the queues to delete, with blanks between them, or null; not quoted
extern QueRecord MPS;      // the queue being modified or copied
extern char *pprnqtoolCmd; // managed: the line that waits for lpsched to stop, or null

// Behind the making of the windows: what they show before they are opened, and the lists. Starts prnqtool.
void GenWizardGui();
// Handler of all its windows and of the answers to its questions; reason XmtCR_CREATE is ignored.
void WizardEventHandler(XmtCallData *data);
// Reads both lists anew and shows them, those of the send window too. Starts prnqtool.
void UpdateQueList();
// The same if the database changed since, or the last list wasn't whole; if it still isn't, a message says
// why.
void CheckDbState();

void PrepareAddQue(); // the steps behind the windows' texts
void PrepareModifyList();
void PrepareModifyQue();
void PrepareDeleteQue();
void PrepareCopyList();
void PrepareCopyQue();

// ---- Add. ApplyQueSettings and ApplyCQSettings ask before an existing queue is replaced, if flTest says so:
// 0 when done; 1 when the window stays, behind a message or question.

void OpenAddQue();                                 // for the selected printer, if there is one
void ReopenAddQue();                               // the tool button: once more without a queue name
void InitQueSettings(const char *host, int model); // host may be null
int ApplyQueSettings(int flTest);
void RunAddQue(int flTest); // applies, and hides the window when done
void RetryAddQue();         // once more the line that waits
std::string FillModels();   // the models as the items of a list in a window's text
void SetUpFeatures();       // of the new queue's model
void SetPrinterModel(int model);
// A print server is reached over TCP/IP, and a local device belongs to this workstation: the choice made last
// puts the other one right, so that what is applied is what is shown.
void SetPrintingModel(int model);
void SetConnection(int connection);

// ---- Modify

void OpenModifyQue(); // the chosen queue
// Fills the window; 0, behind a message, if the queue can't be modified.
int SetQueSettings(const char *name);
void SetUpQueFeatures(); // of the queue
void ApplyModifySettings();

// ---- Copy

int SetupCopySettings(); // the chosen queue, as SetQueSettings
void OpenCopyQue();
int ApplyCQSettings(int flTest);
void RunCopyQue(int flTest);
// As SetPrintingModel and SetConnection.
void SetCopyPrintingModel(int model);
void SetCopyConnection(int connection);

// ---- What the windows share

std::string GetField(const char *name); // the text of a field
// Puts into a field with a check of letters and digits what a record or the network says. Other characters of
// it may be typed there as well, until the next call.
void FillField(const char *name, const char *text);
void KeepName(char **field, const char *name);  // a managed copy; null for null and for an empty name
void PostText(int number);                      // of the set of messages
void PostQueText(int number, const char *name); // likewise, with the name in each hole
void PostUnwritten(const char *file);           // a work file
// The name of a new queue: 0 if it can be taken. 1 behind the message that it can't be, or the question
// whether the queue that has it is to be replaced: its answer comes under the id question.
int TestNewName(const std::string &name, int flTest, int question);
// The front end for features of the model or of the stored queue; a message says what it refuses.
void RunFeatures(const char *ppdFile, const char *queue, int flStored);
void DropSettings(); // what the front end answered
// The window that the event in hand shows by its format is hidden again.
void RefuseWindow(const char *name);
