// State formats, conditions and choices: one text a line, for a menu of four items. Line 1 and 2 are state
// formats, 3 the conditions of a submenu item, 4 a choices list; the lines behind them select items.
#include "menu/MenuState.h"

#include "fuzz/Quiet.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

enum { FORMAT_MAX = 60, CONDITION_MAX = 400, SUBMENUS = CONDITION_MAX };

static std::string TakeLine(std::istringstream &in) {
    std::string line;
    std::getline(in, line);
    return line.c_str();
}

static int SelectLine(TextMenu *menu, TextMenuItem *) {
    UpdateStateSelection(&menu->items[1]);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    std::string formats[2] = {TakeLine(in).substr(0, FORMAT_MAX), TakeLine(in).substr(0, FORMAT_MAX)};
    std::string conditions = TakeLine(in).substr(0, CONDITION_MAX);
    std::string lists[2] = {TakeLine(in), "_a, b,_c"};
    TextMenu submenu = {.title = "Sub"};
    TextMenu *submenus[SUBMENUS];
    for (TextMenu *&entry : submenus) entry = &submenu;
    TextMenuItem items[] = {
        {.text = "One", .type = ITEM_PICK, .choices = lists[0].data(), .format = formats[0].c_str()},
        {.text = "Two",
         .type = ITEM_PICK,
         .choices = lists[1].data(),
         .callback = SelectLine,
         .format = formats[1].c_str()},
        {.text = "Sub", .type = ITEM_SUBMENU, .value = {.ma = submenus}, .format = conditions.c_str()},
        {.text = "Number", .type = ITEM_INTEGER},
        {},
    };
    TextMenu menu = {.title = "Menu", .items = items};
    Quiet quiet;
    InitMenu(&menu);
    for (std::string line; std::getline(in, line);) {
        int index = line.empty() ? 0 : line[0] & 3;
        ProcessSelection(&menu, index == 2 ? 0 : index, line.c_str() + (line.empty() ? 0 : 1));
        HideStateSelection(&items[0], index);
        ShowStateSelection(&items[0], index - 1);
        TextMenu *chosen = ValidateMenu(&menu, 2);
        if (chosen != nullptr && chosen != &submenu) abort();
    }
    for (const TextMenuItem &item : items)
        if (item.state < STATE_NORMAL || item.state > STATE_HIDDEN) abort();
    FreeMenu(&menu);
    return 0;
}
