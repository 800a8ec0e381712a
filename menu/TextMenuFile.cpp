// Settings files of the terminal menus: the values of a menu and its submenus, one line each.
#include "menu/TextMenu.h"

#include "common/Token.h"
#include "common/utils.h"
#include "menu/MenuState.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static const char Whitespace[] = " \t\r\n\v\f";

// A line of the file, taken apart: INDEX[VALUE] TYPE STATE, or INDEX{ in front of a submenu's lines.
struct SettingsLine {
    int index;
    char separator;
    char value[LINEBUF_SIZE];
    int flState; // type and state were there
    int type;
    int state;
};

static int IsStoredType(int type) {
    return type == ITEM_PICK || (type >= ITEM_REQUIRED && type <= ITEM_FLOAT);
}

static void StoreItem(const TextMenuItem *item, int index) {
    switch (item->type) { // the types without a value have no line
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL: fprintf(pOut, "%i[%s]", index, item->value.s ? item->value.s : ""); break;
    case ITEM_PICK:
    case ITEM_INTEGER: fprintf(pOut, "%i[%i]", index, static_cast<int>(item->value.i)); break;
    case ITEM_FLOAT: fprintf(pOut, "%i[%.3f]", index, static_cast<double>(item->value.f)); break;
    default: return;
    }
    fprintf(pOut, " %i %i\n", item->type, item->state);
}

static void StoreMenuLevel(TextMenu *menu, int depth) {
    for (int i = 0; menu->items[i].text; i++) StoreItem(&menu->items[i], i);
    if (depth >= MENU_DEPTH_MAX) return; // menus that contain each other
    for (int i = 0; menu->items[i].text; i++) {
        if (menu->items[i].type != ITEM_SUBMENU) continue;
        TextMenu *submenu = ValidateMenu(menu, i);
        if (!submenu) continue;
        fprintf(pOut, "%i{\n", i);
        StoreMenuLevel(submenu, depth + 1);
        fputs("}\n", pOut);
    }
}

void StoreMenu(TextMenu *menu) {
    if (pOut) StoreMenuLevel(menu, 1);
}

static int ParseSettingsLine(const char *line, SettingsLine *parsed) {
    const char *at;
    parsed->index = ParseInt(line, &at);
    if (at == line || *at == '\0') return 0;
    parsed->separator = *at++;
    at += strspn(at, Whitespace);
    size_t length = strcspn(at, Whitespace);
    if (length >= sizeof parsed->value) length = sizeof parsed->value - 1;
    memcpy(parsed->value, at, length);
    if (length > 0 && parsed->value[length - 1] == ']') length--;
    parsed->value[length] = '\0';
    // The last bracket: a text may hold blanks and brackets of its own.
    const char *close = strrchr(line, ']');
    parsed->flState = close && sscanf(close + 1, "%9i %9i", &parsed->type, &parsed->state) == 2;
    return 1;
}

static void LoadItemValue(TextMenuItem *item, const char *value) {
    int number = ParseInt(value);
    char choice[TOKEN_SIZE];
    switch (item->type) { // only the stored types come here
    case ITEM_PICK:
        // A callback uses the value as an index: only choices that are there.
        if (GetChoice(item, number, choice)) item->value.i = number;
        break;
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL: SetItemText(item, value); break;
    case ITEM_INTEGER: item->value.i = number; break;
    case ITEM_FLOAT: item->value.f = strtof(value, nullptr); break;
    default: break;
    }
}

// A required text may become an optional one and back. Any other change of type would take a number for an
// address.
static void LoadItemType(TextMenuItem *item, int type) {
    int flText = item->type == ITEM_REQUIRED || item->type == ITEM_OPTIONAL;
    if (flText && (type == ITEM_REQUIRED || type == ITEM_OPTIONAL)) item->type = type;
}

static void LoadItem(TextMenu *menu, const SettingsLine *parsed) {
    if (parsed->separator != '[' || parsed->index < 0 || parsed->index >= CountMenuItems(menu)) return;
    TextMenuItem *item = &menu->items[parsed->index];
    if (parsed->flState && parsed->state >= STATE_NORMAL && parsed->state <= STATE_HIDDEN)
        item->state = parsed->state;
    if (!IsStoredType(item->type)) return;
    LoadItemValue(item, parsed->value);
    if (parsed->flState) LoadItemType(item, parsed->type);
}

// Reads over the lines of a submenu that is not there: they must not reach the menu around them.
static void SkipMenuBlock() {
    SettingsLine parsed;
    int open = 1;
    while (open > 0 && GetFileLine()) {
        if (LineBuf[0] == '}')
            open--;
        else if (ParseSettingsLine(LineBuf, &parsed) && parsed.separator == '{')
            open++;
    }
}

static void LoadMenuLevel(TextMenu *menu, int depth) {
    SettingsLine parsed;
    while (GetFileLine()) {
        if (LineBuf[0] == '}') {
            TextMenuItem *apply = FindTextMenuItem(menu, ITEM_APPLY);
            if (apply && apply->callback) apply->callback(menu, apply);
            return;
        }
        if (!ParseSettingsLine(LineBuf, &parsed)) continue;
        if (parsed.separator != '{') {
            LoadItem(menu, &parsed);
            continue;
        }
        TextMenu *submenu = depth < MENU_DEPTH_MAX ? ValidateMenu(menu, parsed.index) : nullptr;
        if (submenu)
            LoadMenuLevel(submenu, depth + 1);
        else
            SkipMenuBlock();
    }
}

void LoadMenu(TextMenu *menu) {
    LoadMenuLevel(menu, 1);
}
