// What is sent to a queue of the family: a test page, a file, a firmware upgrade. One window serves all
// three; the user chooses the queue in it.
#pragma once

#include "common/Token.h"
#include "prndeck/core/PrdSend.h"

extern int flSendFileOperation; // SEND_; writer: OpenSend
extern char *pSendFn;           // managed: the file to send, or null; writer: InitSendFile
extern char SFQue[TOKEN_SIZE];  // the queue chosen last, empty before; writer: ChooseSendQue
extern int SFQueNum;            // one more than its place in the list; likewise

void PrepareSend(); // the step behind the window's text

// An entry of the menu: the window, or first the file dialog. Without a queue the user is told so.
void OpenSend(int operation);
// The answer of the file dialog, null for none.
void ChooseSendFile(const char *file);
// Opens the window for the file, without a queue chosen.
void InitSendFile(const char *file);
// place: of the chosen queue in the list, from 1; 0 when the selection was taken back.
void ChooseSendQue(int place, const char *queue);
// Whether the file is a firmware for the queue's model: 1, or 0 after the user was told why it isn't.
int TestDownLoad(const char *queue);
// Hands the file to the chosen queue; what the front end complains of is shown.
void SendFile(const char *file);
void ApplySend(); // the file of the window
