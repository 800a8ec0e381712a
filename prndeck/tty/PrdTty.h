// The terminal face: the main menu and the flows that add, modify, copy and delete a queue.
//
// Each menu is a static table for RunMenu; an item's value lives in the table, and the callbacks read it
// there. A flow ends in one line for prnqtool. It drops pQueList, or calls InitMainMenu, so that the main
// menu reads the lists anew.
#pragma once

#include "menu/MenuTable.h"
#include "print/MainUtils.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/core/PrdSets.h"

#include <string>

enum { QUE_NAME = 32, QUE_LIST_WIDTH = 80, TTY_ANSWER = 4096 };

// Texts that the flows fetch themselves: of the set of the menus, and messages shared with the windows.
enum {
    TTY_TITLE = 1,
    TTY_ALL_QUEUES = 33,
    TTY_FAMILY_QUEUES = 34,
    TTY_QUEUE = 53,
    TTY_MODEL = 54,
    TTY_PRINTING_MODEL = 55,
    TTY_CONNECTION = 56,
    TTY_HOST_AND_QUEUE = 57,
    TTY_PRINTER = 58,
    TTY_HOST = 67,
    TTY_COPY_MODEL = 91,
    TTY_DELETE_QUESTION = 1104,
    TTY_DELETE_PROMPT = 1106,
    TTY_MODIFY_PROMPT = 1107,
    TTY_COPY_PROMPT = 1108,
};

// The host check of entries: not the reserved address, else an address or any text.
#define TTY_HOST_FORMAT "!(0.0.0.0)|!(255.255.255.255)|d(0,255).d(0,255).d(0,255).d(0,255)|t(1,255)"
#define TTY_NAME_FORMAT "A(1,14)+-+_"

enum { PICK_OFF, PICK_ON }; // "disabled" and "enabled", "No" and "Yes"

// Items of the menus: the keys of the rows, which their tables hold in this order.
enum AddItem {
    ADD_NAME,
    ADD_MODEL,
    ADD_PRINTING_MODEL,
    ADD_CONNECTION,
    ADD_HOST,
    ADD_DEVICE,
    ADD_SERVER,
    ADD_SERVER_PRINTER,
    ADD_INTERFACE,
    ADD_FEATURES,
    ADD_BANNER,
    ADD_SETUP,
    ADD_BANNER_SETUP,
    ADD_DEFAULT,
    ADD_BLANK,
    ADD_BAR,
    ADD_APPLY,
    ADD_CANCEL,
    ADD_END
};
enum ModifyItem {
    MOD_NAME,
    MOD_MODEL,
    MOD_PRINTING_MODEL,
    MOD_CONNECTION,
    MOD_HOST,
    MOD_PRINTER,
    MOD_INTERFACE,
    MOD_FEATURES,
    MOD_BANNER,
    MOD_SETUP,
    MOD_BANNER_SETUP,
    MOD_DEFAULT,
    MOD_BLANK,
    MOD_BAR,
    MOD_APPLY,
    MOD_CANCEL,
    MOD_END
};
enum CopyItem {
    COPY_MODEL,
    COPY_NAME,
    COPY_PRINTING_MODEL,
    COPY_CONNECTION,
    COPY_HOST,
    COPY_DEVICE,
    COPY_SERVER_PRINTER,
    COPY_BLANK,
    COPY_BAR,
    COPY_APPLY,
    COPY_CANCEL,
    COPY_END
};
enum MainItem { MAIN_ADD, MAIN_MODIFY, MAIN_COPY, MAIN_DELETE, MAIN_DUMP, MAIN_EXIT, MAIN_QUEUES, MAIN_END };

extern TextMenu MainMenu, AddPrinterMenu, ModifyQueMenu, CloneQueMenu;
extern MenuTable<MAIN_END> MainMenuItems;
extern MenuTable<ADD_END> AddPrinterMenuItems;
extern MenuTable<MOD_END> ModifyQueMenuItems;
extern MenuTable<COPY_END> CloneQueMenuItems;

// The queue lists as they are shown; managed. Writer: InitMainMenu.
extern char *pExistingPrinterList;      // all queues behind their heading
extern char *pExistingTarvoPrinterList; // the family's behind theirs, or null
extern int ExistingPrinterCnt;
extern int ExistingTarvoPrinterCnt;

extern QueRecord MPS_tty;             // the queue being modified or copied; its type stays behind
extern char pModifyQueName[QUE_NAME]; // its name; both plain, quoted where a line is made
extern char pCloneQueName[QUE_NAME];
extern int PrinterModelTty; // its model number, 0 if its PPD file is not in PpdList

// ---- Main menu and lists

// Runs the main menu until it is left. Ends: if the user isn't root, and at the end of input.
void RunTty();
// Init callback of MainMenu. Ends: with status 1 if the user isn't root.
int InitMainMenu(TextMenu *menu);
// The heading, then the names of a comma list, each behind a blank, in lines of less than width. *count: the
// names. Owns: the result.
[[nodiscard]] char *FormatQueList(const char *list, const char *heading, int width, int *count);

// ---- Flows: callbacks of the tables. A result of 0 lets an apply item end its menu.

int InitAddMenu(TextMenu *menu);
int AddDbmPrinter(TextMenu *menu);
int PrinterModelChangeCB(TextMenu *menu, TextMenuItem *item);
int PrintingModelChangeCB(TextMenu *menu, TextMenuItem *item);
int SetupTty(TextMenu *menu, TextMenuItem *item);
int SavePrinter(TextMenu *menu, TextMenuItem *item);

int ModifyQueTty(TextMenu *menu, TextMenuItem *item);
int InitModifyQueMenu(TextMenu *menu);   // 1, with the message, if the work files can't be written
int SetQueSettingsTty(const char *name); // 0 if its settings can't be written to their work file
int ModifySetupTty(TextMenu *menu, TextMenuItem *item);
int ApplyModifySettingsTty(TextMenu *menu, TextMenuItem *item);

int CloneQueTty(TextMenu *menu, TextMenuItem *item);
int InitCloneQueMenu(TextMenu *menu);
int ApplyCQSettingsTty(TextMenu *menu, TextMenuItem *item);

int RemoveExistingPrinter(TextMenu *menu, TextMenuItem *item);

// ---- What the flows share

// Prompts with a text of set 25 and reads a line of any length up to TTY_ANSWER.
std::string AskTty(int prompt);
// Asks for one of the family's queues and reads its record into MPS_tty. 1 with its name in the buffer; 0 if
// the user gave none or was told why the queue can't be taken. what: "Modification" or "Copy".
int AskQueueTty(int prompt, const char *what, char *name);
// 1 if the host name resolves; else 0 after telling the user.
int TestHostTty(const char *host);
// Runs a line; if lpsched failed to stop, tells the user and starts it again.
void RunQueLineTty(const std::string &line);
// Shows what prnqtool told, if anything: a terminal waits for a line behind it, input from elsewhere goes on.
void ShowToldTty(const std::string &told);
// The front end's dialogue, by its line; tells why it can't be started.
void RunFeaturesTty(const std::string &line);
// As ShowToldTty, of a work file that can't be written.
enum { MSG_UNWRITTEN = 131 };
void ShowUnwrittenTty(const char *file);
// The text of an item, empty if it has none.
const char *GetItemText(const TextMenuItem *items, int index);
int GetItemChoice(const TextMenuItem *items, int index);
