// The terminal's menu engine: a screen is a static table, the input a line of text.
//
// A screen is one TextMenu with a table of TextMenuItem records behind it. RunMenu clears the terminal,
// prints the table as numbered lines, reads one line and acts on it, over and over. The values live in the
// item records, so a callback reads what the user has set straight from the table: items[3].value.i.
//
// The application owns the tables and the callbacks, the engine owns the loop. A table is static and outlives
// its runs; each run starts from the defaults again, which the init callback may set first. Text values
// (types 11, 12) end with the run unless the flag MENU_KEEP is set. A callback may rebuild the table of its
// own menu: the engine keeps menu and index, never an item's address, across a callback.
//
// The formats of the items are three small languages: MenuEntry.h (what may be typed), MenuState.h (what
// hides what, and which submenu opens). doc/menus.md shows them, and the settings file, with examples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct TextMenu;
struct TextMenuItem;

enum {                // item types; 1 and 2 are shown like ITEM_TEXT
    ITEM_TEXT = 0,    // a line of text, not selectable; the types up to ITEM_BAR have no number
    ITEM_BAR = 3,     // value = columns (3 if 0) for all items that follow, up to the next bar
    ITEM_APPLY = 4,   // required names must be set; callback; ends the menu if it returns 0 or there is none
    ITEM_CANCEL = 5,  // callback; ends the menu if it returns 0 or there is none
    ITEM_EXIT = 6,    // the same
    ITEM_ACTION = 7,  // callback; the menu goes on, a result of 0 counts as a change
    ITEM_SUBMENU = 8, // runs the menu that ValidateMenu gives; not shown without one
    ITEM_PICK = 9,    // one of the choices; value = its index from 0
    ITEM_BITS = 10,   // set of choices; value = bits 0 to 30; changed through ProcessStateValue only
    ITEM_REQUIRED = 11, // text that must not be empty when the menu is applied
    ITEM_OPTIONAL = 12, // text
    ITEM_INTEGER = 13,
    ITEM_FLOAT = 14,
};
enum {
    STATE_NORMAL,
    STATE_DISABLED,
    STATE_HIDDEN
};                                              // disabled: shown without a number; only normal is selectable
enum { TITLE_LEFT, TITLE_CENTRE, TITLE_RIGHT }; // left has a colon behind the title
enum {                                          // menu flags
    MENU_NO_LEAVE = 0x001, // an empty line is a selection like any other, the footer does not offer Return
    MENU_HELP = 0x002,     // h shows the help page
    MENU_KEEP = 0x004,     // a menu that ends by a selection leaves its text values allocated
    MENU_STORE = 0x008,    // s asks for a file name and stores the settings there
    MENU_SETTINGS = 0x010, // s stores the settings in .settings and ends the process with status 0
    MENU_REINIT = 0x040,   // an action that succeeded runs InitMenu again
    MENU_OLD_TYPE = 0x080, // the type before the callback decides how the loop goes on; else it is read again
    MENU_DENSE = 0x100,    // no blank line between the items
    MENU_LIST = 0x200,     // l lists the choices of the first item that has some, "l 3" those of line 3
};
enum { MENU_WIDTH = 80, MENU_TEXT_SIZE = 256, MENU_DEPTH_MAX = 32 };

// Which member counts follows from the item's type: i for 3, 9, 10, 13; f for 14; s for 11, 12; m for 8, and
// ma for an 8 with a format. The types of one member never turn into those of another.
union MenuVal {
    intptr_t i;
    float f;
    char *s;
    TextMenu *m;
    TextMenu **ma;
};

typedef int (*MenuCall)(TextMenu *menu);
typedef int (*ItemCall)(TextMenu *menu, TextMenuItem *item);

enum { MENU_NO_KEY = -1 };

// A number of 0 stands for no text of the catalogue. Only rows of a MenuTable carry keys.
struct TextMenuItem {
    int key = MENU_NO_KEY; // place in the table, as the enumerator that callbacks use
    const char *text =
        nullptr;     // null ends the table; "~x Label" is chosen by the letter x instead of a number
    int nlsText = 0; // its number in set 25, for FillMenuTexts
    int type = ITEM_TEXT;
    int state = STATE_NORMAL;
    const char *prompt = nullptr; // question of an entry item, without the colon
    int nlsPrompt = 0;
    char *choices = nullptr; // writable comma list; each choice led by _ (visible) or a blank (hidden)
    int nlsChoices = 0;
    char *current = nullptr;    // managed copy of the choice of the value; fetched anew for each display
    MenuVal initial = {.i = 0}; // the default: what InitMenu sets
    MenuVal value = {.i = 0};   // types 11, 12: a buffer of MENU_TEXT_SIZE bytes, or null
    intptr_t previous = 0;      // number before the last change
    ItemCall callback = nullptr;
    int length = 0;               // of the text, in characters; set by InitMenu
    const char *format = nullptr; // 11 to 14: ValidateEntry; 9, 10: ProcessStateFormat; 8: ValidateMenu
    intptr_t saved = 0;           // number kept by the S operation of a state format, -1 for none
    int count = 0;                // number of choices; set by InitMenu
    void *link = nullptr;         // free for the callback
    int number = 0; // selection key, set by InitMenu: 0 for types below 4, the letter, or from 1 up
};

struct TextMenu {
    const char *title = nullptr; // its first line is measured for the title mode
    int nlsTitle = 0;            // its number in set 25, for FillMenuTexts; 0 for none
    int titleMode = TITLE_LEFT;
    const char *exitPrompt = nullptr; // question when the user leaves with changes; yes applies them
    MenuCall exitCallback = nullptr;  // the menu's apply function
    TextMenu *parent = nullptr;       // named in the leave question
    MenuCall initCallback = nullptr;  // at the start, after a submenu, and after a refused leave
    TextMenuItem *items = nullptr;
    uint16_t flags = 0;
};

extern char
    *pOption; // second word of the line just read and all behind it, in LineBuf; writer: FindSelection
extern const char *pTtyHtmlName;
extern const char *pTtyHtmlData;
extern const char *pTtyHtmlTitle;
// Shows the help page of the three values; null: there is no help. Writers: the program's start
// (TtyHtmlHelp), tests.
extern void (*pTtyHelp)(const char *name, const char *data, const char *title);

// Runs the menu to its end; always 0. A settings file is loaded over the defaults before the first screen;
// one that cannot be read is reported, the callback of the cancel item runs, and the menu ends. Without
// interaction the exit callback runs at once; the values stay allocated then, for the caller. Uses: LineBuf,
// pOption, token state. Ends: the process, at the end of standard input (status 1).
int RunMenu(TextMenu *menu, const char *settings, int flInteract);

// Sets values, numbers, states and lengths from the table's defaults; the length of the longest label comes
// back. May run callbacks of items that a P group names. Uses: token state. Ends: the process, without
// memory.
int InitMenu(TextMenu *menu);
// Releases the text values and the copies in current. They are null afterwards.
void FreeMenu(TextMenu *menu);

// Clears the terminal and prints title, items and footer. titleLength centres the title. Result: items
// walked, which is what FindSelection takes.
int PrintMenu(TextMenu *menu, int longest, int titleLength);
// Lays out the items behind a bar in columns, up to the table's end; items of the given type are further
// bars. Steps index and the running number with every item. Result: the last item laid out, or the bar.
TextMenuItem *PrintMenuBarItem(TextMenuItem *bar, int type, int *index, int *number);

// Index + 1 of the item that the line in LineBuf chooses among the first count items; 0 if none does or if
// the line was a command (h, s). Sets pOption. Uses: LineBuf. Ends: the process after s under MENU_SETTINGS.
int FindSelection(TextMenu *menu, int count);
// Acts on the item: runs it, or changes its value; an option that is not empty is the entry. Result: 1 if the
// item changed or its action succeeded, else 0. Uses: LineBuf, token state.
int ProcessSelection(TextMenu *menu, int index, const char *option);
// The first item of the type, or null.
TextMenuItem *FindTextMenuItem(TextMenu *menu, int type);
// Number of items in front of the end of the table.
int CountMenuItems(const TextMenu *menu);
// 1 if every required text that is not hidden is set; else the user is told and a line is read. Uses:
// LineBuf.
int TestNames(TextMenu *menu);
// Copies a text into the item's value, cut at MENU_TEXT_SIZE - 1 characters; takes a buffer if there is none.
// Null counts as empty. Ends: the process, without memory.
void SetItemText(TextMenuItem *item, const char *text);

// Settings file: one line an item of types 9 and 11 to 14, submenus in braces behind them; see doc/menus.md.
// LoadMenu reads pIn up to its end or a closing brace, on which the apply item's callback runs. The state
// goes into whatever item of the table the line names, the value only into an item that has one. A choice
// that does not exist and a type that does not suit the item are passed over. A text is read up to its first
// white space. Uses: pIn, LineBuf.
void LoadMenu(TextMenu *menu);
// Writes to pOut. The caller looks for write errors when it closes the file.
void StoreMenu(TextMenu *menu);

// Prints the heading and the choices with their numbers, an empty one's left out, and waits for a line behind
// every 20 and at the end. Uses: LineBuf.
void ShowChoices(const char *heading, const std::vector<std::string> &choices);

// Reads one line of standard input up to its line feed (not stored), size - 1 characters, a byte 0xFF or the
// end. Null if there was nothing before the end. Never reads ahead, since children share the terminal;
// flushes standard output first. errno is 0 at the end of input.
char *Gets(char *buffer, int size);
// Asks "QUESTION? [y/n] " until a line starts with a small y (1) or n (0). The end of input is no. Uses:
// LineBuf.
[[gnu::format(printf, 1, 2)]] int PromptYN(const char *format, ...);
// Prints the prompt as it stands and reads the answer, empty at the end of input. With a buffer: the buffer,
// the answer cut at capacity - 1. Without: Owns: a managed copy of at most 1023 characters.
char *PromptUser(const char *prompt, char *buffer, size_t capacity);
// Prints the message and "Press <Return> to continue", and waits for a line. Uses: LineBuf.
[[gnu::format(printf, 1, 2)]] void PostMsg(const char *format, ...);
