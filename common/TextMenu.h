// The terminal's menu engine: a screen is a static table, the input a line of text.
#pragma once

#include <cstddef>
#include <cstdint>

struct TextMenu;
struct TextMenuItem;

enum { // item types
    ITEM_TEXT = 0,
    ITEM_BAR = 3,
    ITEM_APPLY = 4,
    ITEM_CANCEL = 5,
    ITEM_EXIT = 6,
    ITEM_ACTION = 7,
    ITEM_SUBMENU = 8,
    ITEM_PICK = 9,
    ITEM_BITS = 10,
    ITEM_REQUIRED = 11,
    ITEM_OPTIONAL = 12,
    ITEM_INTEGER = 13,
    ITEM_FLOAT = 14,
};
enum { STATE_NORMAL, STATE_DISABLED, STATE_HIDDEN };
enum { TITLE_LEFT, TITLE_CENTRE, TITLE_RIGHT };
enum { // menu flags
    MENU_NO_LEAVE = 0x001,
    MENU_HELP = 0x002,
    MENU_KEEP = 0x004,
    MENU_STORE = 0x008,
    MENU_SETTINGS = 0x010,
    MENU_REINIT = 0x040,
    MENU_OLD_TYPE = 0x080,
    MENU_DENSE = 0x100,
};
enum { MENU_WIDTH = 80, MENU_TEXT_SIZE = 256 };

union MenuVal {
    intptr_t i;
    float f;
    char *s;
    TextMenu *m;
    TextMenu **ma;
};

typedef int (*MenuCall)(TextMenu *menu);
typedef int (*ItemCall)(TextMenu *menu, TextMenuItem *item);

struct TextMenuItem {
    const char *text = nullptr; // null ends the table
    int type = ITEM_TEXT;
    int state = STATE_NORMAL;
    const char *prompt = nullptr;
    char *choices = nullptr; // writable comma list
    char *current = nullptr; // scratch: the choice now shown
    MenuVal initial = {.i = 0}; // the default
    MenuVal value = {.i = 0};
    intptr_t previous = 0;
    ItemCall callback = nullptr;
    int length = 0;
    const char *format = nullptr;
    intptr_t saved = 0;
    int count = 0;
    void *link = nullptr;
    int number = 0;
};

struct TextMenu {
    const char *title = nullptr;
    int titleMode = TITLE_LEFT;
    const char *exitPrompt = nullptr;
    MenuCall exitCallback = nullptr;
    TextMenu *parent = nullptr;
    MenuCall initCallback = nullptr;
    TextMenuItem *items = nullptr;
    uint16_t flags = 0;
};

extern char *pOption; // second word of the line just read, in LineBuf
extern const char *pTtyHtmlName;
extern const char *pTtyHtmlData;
extern const char *pTtyHtmlTitle;
// Shows the help page of the three values; the terminal help installs itself here. Null: h does nothing.
extern void (*pTtyHelp)(const char *name, const char *data, const char *title);

int RunMenu(TextMenu *menu, const char *settings, int flInteract);
int InitMenu(TextMenu *menu);
void FreeMenu(TextMenu *menu);
int PrintMenu(TextMenu *menu, int longest, int titleLength);
TextMenuItem *PrintMenuBarItem(TextMenuItem *bar, int type, int *index, int *number);
int FindSelection(TextMenu *menu, int count);
int ProcessSelection(TextMenu *menu, int index, const char *option);
TextMenuItem *FindTextMenuItem(TextMenu *menu, int type);
int TestNames(TextMenu *menu);
void LoadMenu(TextMenu *menu);
void StoreMenu(TextMenu *menu);
char *Gets(char *buffer, int size);
[[gnu::format(printf, 1, 2)]] int PromptYN(const char *format, ...);
char *PromptUser(const char *prompt, char *buffer, size_t capacity);
[[gnu::format(printf, 1, 2)]] void PostMsg(const char *format, ...);
