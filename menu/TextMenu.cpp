// The run loop of the terminal menus: values, screens, selections.
#include "menu/TextMenu.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"
#include "menu/MenuEntry.h"
#include "menu/MenuState.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

enum { // texts of set 25
    TXT_STORE_HINT = 230,
    TXT_HELP_HINT = 231,
    TXT_LEAVE_HINT = 232,
    TXT_BITS_START = 270,
    TXT_BITS_DEFAULT = 271,
    TXT_FOOTER = 510,
    TXT_NAMES_MISSING = 1011,
    TXT_READING_INPUT = 1016,
    TXT_RETURN_TO = 1017,
    TXT_LEAVE = 1018,
};
enum { BAR_COLUMNS = 3, LABEL_KEY = 4, TILDE_PREFIX = 3, BITS_MAX = 31 };
enum { RUN_ON, RUN_ENDED };

static const char SettingsNameFormat[] = "/A(1,255)+-+_+/";
static const char SettingsName[] = ".settings";

char *pOption;
const char *pTtyHtmlName;
const char *pTtyHtmlData;
const char *pTtyHtmlTitle;
void (*pTtyHelp)(const char *name, const char *data, const char *title);

static std::string MenuText(int number) {
    return NlsText(pDrvCoreDB, NLS_TTY_SET, number);
}

static void CallMenu(TextMenu *menu, MenuCall call) {
    if (call) call(menu);
}

static int IsTextItem(const TextMenuItem *item) {
    return item->type == ITEM_REQUIRED || item->type == ITEM_OPTIONAL;
}

// A line of text may begin with a tilde of its own.
static int IsLetterItem(const TextMenuItem *item) {
    return item->type > ITEM_BAR && item->text[0] == '~';
}

// The label proper: "~x Label" without its first three characters.
static const char *GetLabel(const TextMenuItem *item) {
    return IsLetterItem(item) ? item->text + std::min<size_t>(TILDE_PREFIX, strlen(item->text)) : item->text;
}

int CountMenuItems(const TextMenu *menu) {
    int count = 0;
    while (menu->items[count].text) count++;
    return count;
}

TextMenuItem *FindTextMenuItem(TextMenu *menu, int type) {
    for (TextMenuItem *item = menu->items; item->text; item++)
        if (item->type == type) return item;
    return nullptr;
}

// ---- values

void SetItemText(TextMenuItem *item, const char *text) {
    if (!item->value.s) item->value.s = static_cast<char *>(GetMem(MENU_TEXT_SIZE));
    if (!item->value.s) SysError("%s", OutOfMem);
    if (text == item->value.s) return;
    if (!text) text = "";
    size_t length = strnlen(text, MENU_TEXT_SIZE - 1);
    memmove(item->value.s, text, length);
    item->value.s[length] = '\0';
}

// The item is found anew for each step: the format may run callbacks, which may move the table.
static void InitChoices(TextMenu *menu, int index) {
    TextMenuItem *item = &menu->items[index];
    item->count = item->choices ? GetTokenCount(item->choices, ",") : 0;
    if (item->type == ITEM_PICK)
        item->value = item->initial;
    else if (item->value.i == 0)
        item->value.i = item->initial.i = 1;
    item->previous = item->initial.i;
    UpdateStateSelection(item);
    ProcessStateFormat(menu, index);
}

static void InitItemValue(TextMenu *menu, int index) {
    TextMenuItem *item = &menu->items[index];
    switch (item->type) { // the others have no value of their own
    case ITEM_PICK:
    case ITEM_BITS: InitChoices(menu, index); break;
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL: SetItemText(item, item->initial.s); break;
    case ITEM_INTEGER:
    case ITEM_FLOAT: item->value = item->initial; break;
    default: break;
    }
}

// Hidden and disabled items keep their number, so that a number does not move while the menu is used.
static void InitItemNumber(TextMenuItem *item, int *number) {
    if (item->type <= ITEM_BAR)
        item->number = 0;
    else if (IsLetterItem(item))
        item->number = static_cast<unsigned char>(item->text[1]);
    else
        item->number = ++*number;
}

int InitMenu(TextMenu *menu) {
    int longest = 0;
    int number = 0;
    for (int i = 0; menu->items[i].text; i++) {
        menu->items[i].length = static_cast<int>(strlen(menu->items[i].text));
        longest = std::max(longest, menu->items[i].length);
        InitItemNumber(&menu->items[i], &number);
        InitItemValue(menu, i);
    }
    return longest;
}

void FreeMenu(TextMenu *menu) {
    for (TextMenuItem *item = menu->items; item->text; item++) {
        PutMem(item->current);
        item->current = nullptr;
        if (!IsTextItem(item)) continue;
        PutMem(item->value.s);
        item->value.s = nullptr;
    }
}

// ---- the screen

// Length of the title's first line.
static int MeasureTitle(const TextMenu *menu) {
    if (!menu->title) return 0;
    return static_cast<int>(strcspn(menu->title + strspn(menu->title, "\r\n"), "\r\n"));
}

static void PrintTitle(const TextMenu *menu, int length) {
    std::string shown = ShowPlain(menu->title ? menu->title : "");
    const char *title = shown.c_str();
    int room = std::max(0, MENU_WIDTH - length);
    switch (menu->titleMode) {
    case TITLE_CENTRE: printf("\f\n%*s%s\n\n", room / 2, "", title); break;
    case TITLE_RIGHT: printf("\f\n%*s%s\n\n", room, "", title); break;
    default: printf("\f\n%s:\n\n", title); break;
    }
}

// What stands in front of a label: the number, the letter, or blanks for what cannot be selected.
static std::string GetItemKey(const TextMenuItem *item) {
    char key[24];
    if (item->type <= ITEM_BAR || item->state == STATE_DISABLED) return std::string(LABEL_KEY, ' ');
    if (IsLetterItem(item))
        snprintf(key, sizeof key, " %c) ", item->number);
    else
        snprintf(key, sizeof key, "%2i) ", item->number);
    return key;
}

static void PrintPickValue(TextMenuItem *item) {
    const char *choice = FetchCurrentChoice(item);
    if (!choice || choice[0] == ' ') {
        fputs(" [ ]", stdout);
        return;
    }
    std::string shown = ShowPlain(choice[0] == '_' ? choice + 1 : choice);
    printf(" [%i. %s]", static_cast<int>(item->value.i) + 1, shown.c_str());
}

// The value 1 stands for the default of the device, not for its first choice.
static void PrintBitsValue(const TextMenuItem *item) {
    fputs(MenuText(TXT_BITS_START).c_str(), stdout);
    const char *separator = "";
    if (item->value.i == 1) fputs(MenuText(TXT_BITS_DEFAULT).c_str(), stdout);
    for (int bit = 0; item->value.i > 1 && bit < BITS_MAX; bit++) {
        if (!(item->value.i & (intptr_t{1} << bit))) continue;
        printf("%s%d", separator, bit + 1);
        separator = ",";
    }
    putchar(']');
}

static void PrintItemValue(TextMenuItem *item, int longest) {
    if (item->type < ITEM_PICK || item->type > ITEM_FLOAT) return;
    for (int i = item->length; i < longest; i++) putchar('.');
    switch (item->type) { // 9 to 14
    case ITEM_PICK: PrintPickValue(item); break;
    case ITEM_BITS: PrintBitsValue(item); break;
    case ITEM_INTEGER: printf(" [%i]", static_cast<int>(item->value.i)); break;
    case ITEM_FLOAT: printf(" [%.3f]", static_cast<double>(item->value.f)); break;
    default: printf(" [%s]", ShowPlain(item->value.s ? item->value.s : "").c_str()); break;
    }
}

// One row of a bar's columns: what is used of it decides where the next label starts.
struct BarRow {
    int columns;
    int width; // of a column
    int used;
};

static BarRow StartBarRow(const TextMenuItem *bar) {
    intptr_t columns = bar->value.i;
    if (columns < 1 || columns > MENU_WIDTH) columns = BAR_COLUMNS;
    return {static_cast<int>(columns), MENU_WIDTH / static_cast<int>(columns), 0};
}

// The cell is one character narrower than its column, and a longer label is cut.
static std::string GetBarCell(const TextMenuItem *item, int width) {
    std::string cell = GetItemKey(item) + GetLabel(item);
    cell.append(static_cast<size_t>(std::max(0, width - LABEL_KEY - 1 - item->length)), ' ');
    if (IsLetterItem(item)) cell.append(TILDE_PREFIX, ' ');
    cell.resize(std::min(cell.size(), static_cast<size_t>(std::max(0, width - 2))));
    return cell + ' ';
}

static void BreakBarRow(BarRow *row) {
    putchar('\n');
    row->used = 0;
}

static void PrintBarCell(BarRow *row, const TextMenuItem *item) {
    int flLong = item->length > row->width - LABEL_KEY - 1;
    if (row->used + item->length > MENU_WIDTH || (row->used > 0 && flLong)) BreakBarRow(row);
    fputs(ShowPlain(GetBarCell(item, row->width)).c_str(), stdout);
    row->used += row->width;
    if (item->length > row->width - row->columns) BreakBarRow(row);
}

TextMenuItem *PrintMenuBarItem(TextMenuItem *bar, int type, int *index, int *number) {
    BarRow row = StartBarRow(bar);
    TextMenuItem *item = bar;
    while (item[1].text) {
        item++;
        (*index)++;
        if (item->type > ITEM_BAR) (*number)++;
        if (item->state == STATE_HIDDEN) continue;
        if (item->type == type) {
            putchar('\n');
            row = StartBarRow(item);
        } else {
            PrintBarCell(&row, item);
        }
    }
    return item;
}

static void PrintLabel(const TextMenuItem *item, const char *label) {
    if (item->type > ITEM_BAR) fputs(GetItemKey(item).c_str(), stdout);
    printf("%s ", ShowPlain(label).c_str());
}

// Prints one item, or a bar with all items behind it. 0 if there is nothing to show.
static int PrintMenuItem(TextMenu *menu, int *index, int longest, int *number) {
    TextMenuItem *item = &menu->items[*index];
    if (item->state == STATE_HIDDEN) return 0;
    if (item->type == ITEM_SUBMENU) {
        const TextMenu *submenu = ValidateMenu(menu, *index);
        if (!submenu) return 0;
        PrintLabel(item, submenu->title ? submenu->title : "");
    } else if (item->type == ITEM_BAR) {
        PrintMenuBarItem(item, ITEM_BAR, index, number);
    } else {
        PrintLabel(item, GetLabel(item));
        PrintItemValue(item, longest);
    }
    return 1;
}

static void PrintFooter(const TextMenu *menu) {
    std::string store = (menu->flags & (MENU_STORE | MENU_SETTINGS)) ? MenuText(TXT_STORE_HINT) : "";
    std::string help = (menu->flags & MENU_HELP) ? MenuText(TXT_HELP_HINT) : "";
    std::string leave = (menu->flags & MENU_NO_LEAVE) ? "" : MenuText(TXT_LEAVE_HINT);
    std::string footer =
        NlsFmt(MenuText(TXT_FOOTER).c_str(), "sss", store.c_str(), help.c_str(), leave.c_str());
    fputs(footer.c_str(), stdout);
    fflush(stdout);
}

int PrintMenu(TextMenu *menu, int longest, int titleLength) {
    fflush(stdout);
    // Logging off and no redirection: the codes must reach the terminal, and nothing else.
    SysCmd(-CMD_CLEAR, 1, "%s", "");
    PrintTitle(menu, titleLength);
    int number = 0;
    int index = 0;
    for (; menu->items[index].text; index++) {
        if (menu->items[index].type > ITEM_BAR) number++;
        if (PrintMenuItem(menu, &index, longest, &number))
            printf("\n%s", (menu->flags & MENU_DENSE) ? "" : "\n");
    }
    PrintFooter(menu);
    return index;
}

// ---- selections

static void ShowHelp() {
    if (pTtyHelp) pTtyHelp(pTtyHtmlName, pTtyHtmlData, pTtyHtmlTitle);
}

// 1 if the menu is written and the file closed without an error; the user has been told otherwise.
static int StoreMenuFile(TextMenu *menu, const char *path) {
    pOut = OpenFile(nullptr, path, "wt", ERR_WARN);
    if (!pOut) return 0;
    StoreMenu(menu);
    int flBad = ferror(pOut);
    flBad |= fclose(pOut);
    pOut = nullptr;
    if (flBad) PostMsg("Could not write %s: %s\n", path, strerror(errno));
    return !flBad;
}

static void StoreMenuAs(TextMenu *menu) {
    fputs("Enter the settings file name: ", stdout);
    if (!Gets(LineBuf, LINEBUF_SIZE)) return;
    std::string path = LineBuf;
    if (ValidateEntry(path.c_str(), SettingsNameFormat) == ENTRY_OK) StoreMenuFile(menu, path.c_str());
}

// What can't be taken now is left out, as when the item is chosen.
static void ListItemChoices(const TextMenuItem *item) {
    std::vector<std::string> choices;
    char token[TOKEN_SIZE];
    for (int i = 0; i < item->count; i++) {
        const char *choice = GetChoice(item, i, token);
        choices.push_back(choice && choice[0] != ' ' ? ShowPlain(choice + (choice[0] == '_')) : "");
    }
    ShowChoices(GetLabel(item), choices);
}

static void ListChosenItem(const TextMenu *menu, int number) {
    for (const TextMenuItem *item = menu->items; item->text; item++)
        if (item->type == ITEM_PICK && item->state == STATE_NORMAL && (number == 0 || item->number == number))
            return ListItemChoices(item);
}

static int FindLetterItem(TextMenu *menu, int count, int letter) {
    if (letter == 0) return 0;
    for (int i = 0; i < count && menu->items[i].text; i++) {
        const TextMenuItem *item = &menu->items[i];
        if (IsLetterItem(item) && item->state == STATE_NORMAL && tolower(item->number) == letter)
            return i + 1;
    }
    return 0;
}

static int FindNumberItem(TextMenu *menu, int count, int number) {
    for (int i = 0; i < count && menu->items[i].text; i++) {
        const TextMenuItem *item = &menu->items[i];
        if (item->type <= ITEM_BAR || IsLetterItem(item) || item->state != STATE_NORMAL) continue;
        if (item->number == number) return i + 1;
    }
    return 0;
}

static char *FindOption(char *line) {
    char *at = SkipSpace(line);
    while (*at != '\0' && !isspace(static_cast<unsigned char>(*at))) at++;
    return SkipSpace(at);
}

int FindSelection(TextMenu *menu, int count) {
    pOption = FindOption(LineBuf);
    unsigned char first = static_cast<unsigned char>(LineBuf[0]);
    if (isdigit(first)) return FindNumberItem(menu, count, ParseInt(LineBuf));
    int letter = tolower(first);
    if (letter == 'h' && (menu->flags & MENU_HELP)) {
        ShowHelp();
        return 0;
    }
    if (letter == 's' && (menu->flags & MENU_STORE)) {
        StoreMenuAs(menu);
        return 0;
    }
    if (letter == 's' && (menu->flags & MENU_SETTINGS)) {
        if (StoreMenuFile(menu, SettingsName)) exit_app(0);
        return 0;
    }
    if (letter == 'l' && (menu->flags & MENU_LIST)) {
        ListChosenItem(menu, ParseInt(pOption));
        return 0;
    }
    return FindLetterItem(menu, count, letter);
}

int TestNames(TextMenu *menu) {
    for (const TextMenuItem *item = menu->items; item->text; item++) {
        if (item->type != ITEM_REQUIRED || item->state == STATE_HIDDEN) continue;
        if (item->value.s && item->value.s[0] != '\0') continue;
        fputs(MenuText(TXT_NAMES_MISSING).c_str(), stdout);
        Gets(LineBuf, LINEBUF_SIZE);
        return 0;
    }
    return 1;
}

// Types 4 to 7: no callback counts as success.
static int ProcessAction(TextMenu *menu, int index) {
    if (menu->items[index].type == ITEM_APPLY && !TestNames(menu)) return 0;
    ItemCall callback = menu->items[index].callback;
    return !callback || callback(menu, &menu->items[index]) == 0;
}

// Type 8. The menu's own init follows even when no submenu was there to run.
static int ProcessSubmenu(TextMenu *menu, int index) {
    TextMenu *submenu = ValidateMenu(menu, index);
    if (submenu) RunMenu(submenu, nullptr, 1);
    CallMenu(menu, menu->initCallback);
    return 0;
}

static int IsVisibleChoice(const TextMenuItem *item, intptr_t choice) {
    char token[TOKEN_SIZE];
    return GetChoice(item, choice, token) && token[0] != ' ';
}

// The choice that the option names, else the next visible one behind it or behind the present value; -1 for
// none.
static intptr_t FindNextChoice(const TextMenuItem *item, const char *option) {
    intptr_t named = ParseInt(option) - intptr_t{1};
    int flNamed = named >= 0 && named < item->count;
    if (flNamed && IsVisibleChoice(item, named)) return named;
    intptr_t start = flNamed ? named : item->value.i;
    for (int i = 0; i < item->count; i++) {
        start = start < 0 ? 0 : (start + 1) % item->count;
        if (IsVisibleChoice(item, start)) return start;
    }
    return -1;
}

// Type 9.
static int ProcessPick(TextMenu *menu, int index, const char *option) {
    TextMenuItem *item = &menu->items[index];
    intptr_t choice = FindNextChoice(item, option);
    if (choice < 0) return 0;
    item->previous = item->value.i;
    item->value.i = choice;
    ItemCall callback = item->callback;
    ProcessStateFormat(menu, index);
    if (callback) callback(menu, &menu->items[index]);
    return 1;
}

static void SetEntry(TextMenuItem *item, const char *entry) {
    switch (item->type) { // 11 to 14
    case ITEM_INTEGER:
        item->previous = item->value.i;
        item->value.i = ParseInt(entry);
        break;
    case ITEM_FLOAT: item->value.f = strtof(entry, nullptr); break;
    default: SetItemText(item, entry); break;
    }
}

// Types 11 to 14. The entry is a copy: a refusal reads a line into LineBuf, where the option lies.
static int ProcessEntry(TextMenu *menu, int index, const char *option) {
    TextMenuItem *item = &menu->items[index];
    std::string entry = option;
    if (entry.empty()) {
        printf("%s: ", ShowPlain(item->prompt ? item->prompt : GetLabel(item)).c_str());
        if (!Gets(LineBuf, LINEBUF_SIZE) || LineBuf[0] == '\0') return 0;
        entry = LineBuf;
    }
    if (ValidateEntry(entry.c_str(), item->format) != ENTRY_OK) return 0;
    SetEntry(item, entry.c_str());
    if (item->callback) item->callback(menu, item);
    return 1;
}

int ProcessSelection(TextMenu *menu, int index, const char *option) {
    switch (menu->items[index].type) { // what cannot be chosen, and 10, does nothing
    case ITEM_APPLY:
    case ITEM_CANCEL:
    case ITEM_EXIT:
    case ITEM_ACTION: return ProcessAction(menu, index);
    case ITEM_SUBMENU: return ProcessSubmenu(menu, index);
    case ITEM_PICK: return ProcessPick(menu, index, option);
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL:
    case ITEM_INTEGER:
    case ITEM_FLOAT: return ProcessEntry(menu, index, option);
    default: return 0;
    }
}

// ---- the run loop

static int AskLeave(const TextMenu *menu) {
    if (!menu->parent) return PromptYN("%s", NlsFmt(MenuText(TXT_LEAVE).c_str(), "s", my_name).c_str());
    const char *parent = menu->parent->title ? menu->parent->title : "";
    return PromptYN("%s", NlsFmt(MenuText(TXT_RETURN_TO).c_str(), "s", parent).c_str());
}

// An empty line. Without an exit prompt the exit callback runs at once; with one, changes are asked about
// first.
static int LeaveMenu(TextMenu *menu, int flChanged) {
    if (!menu->exitPrompt) {
        CallMenu(menu, menu->exitCallback);
    } else if (flChanged && PromptYN("%s", menu->exitPrompt)) {
        if (!TestNames(menu)) return RUN_ON;
        CallMenu(menu, menu->exitCallback);
        FreeMenu(menu);
        return RUN_ENDED;
    }
    if (!AskLeave(menu)) {
        CallMenu(menu, menu->initCallback);
        return RUN_ON;
    }
    FreeMenu(menu);
    if (!menu->parent) puts("");
    fflush(stdout);
    return RUN_ENDED;
}

static int SelectItem(TextMenu *menu, int index, int *longest, int *flChanged) {
    int type = menu->items[index].type;
    int result = ProcessSelection(menu, index, pOption);
    if (!(menu->flags & MENU_OLD_TYPE)) type = menu->items[index].type;
    if (result && (type == ITEM_APPLY || type == ITEM_CANCEL || type == ITEM_EXIT)) return RUN_ENDED;
    if (result && type == ITEM_ACTION && (menu->flags & MENU_REINIT))
        *longest = InitMenu(menu);
    else if (!*flChanged)
        *flChanged = result;
    return RUN_ON;
}

static int LoadMenuFile(TextMenu *menu, const char *path) {
    if (!OpenInputFile(path, ERR_WARN)) {
        TextMenuItem *cancel = FindTextMenuItem(menu, ITEM_CANCEL);
        if (cancel && cancel->callback) cancel->callback(menu, cancel);
        return 0;
    }
    LoadMenu(menu);
    CloseInputFile();
    return 1;
}

// Shows the menu and acts on one line.
static int RunMenuOnce(TextMenu *menu, int *longest, int *flChanged) {
    int count = PrintMenu(menu, *longest, MeasureTitle(menu));
    if (!Gets(LineBuf, LINEBUF_SIZE)) SysError("%s", MenuText(TXT_READING_INPUT).c_str());
    if (LineBuf[0] == '\0' && !(menu->flags & MENU_NO_LEAVE)) return LeaveMenu(menu, *flChanged);
    int selected = FindSelection(menu, count);
    if (selected == 0) return RUN_ON;
    int state = SelectItem(menu, selected - 1, longest, flChanged);
    if (state == RUN_ENDED && !(menu->flags & MENU_KEEP)) FreeMenu(menu);
    return state;
}

int RunMenu(TextMenu *menu, const char *settings, int flInteract) {
    int flChanged = 0;
    CallMenu(menu, menu->initCallback);
    int longest = InitMenu(menu);
    if (settings && !LoadMenuFile(menu, settings)) return 0;
    if (!flInteract) {
        CallMenu(menu, menu->exitCallback);
        return 0;
    }
    while (RunMenuOnce(menu, &longest, &flChanged) == RUN_ON) {
    }
    return 0;
}
