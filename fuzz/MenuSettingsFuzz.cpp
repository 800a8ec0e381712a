// Settings files: whatever was loaded, storing it and loading that again gives the same file.
#include "common/utils.h"
#include "fuzz/Quiet.h"
#include "menu/TextMenu.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

static char Choices[] = "_a,_b,_c";
static TextMenuItem SubItems[] = {{.text = "Deep", .type = ITEM_OPTIONAL},
                                  {.text = "Again", .type = ITEM_SUBMENU},
                                  {.text = "Apply", .type = ITEM_APPLY},
                                  {}};
static TextMenu SubMenu = {.title = "Sub", .items = SubItems};
static TextMenuItem Items[] = {
    {.text = "Line"},
    {.text = "Name", .type = ITEM_REQUIRED},
    {.text = "Note", .type = ITEM_OPTIONAL},
    {.text = "Pick", .type = ITEM_PICK, .choices = Choices},
    {.text = "Bits", .type = ITEM_BITS, .choices = Choices},
    {.text = "Count", .type = ITEM_INTEGER},
    {.text = "Ratio", .type = ITEM_FLOAT},
    {.text = "Sub", .type = ITEM_SUBMENU, .value = {.m = &SubMenu}},
    {},
};
static TextMenu Menu = {.title = "Menu", .items = Items};

static void Load(const std::string &file) {
    if (file.empty()) return; // no stream without a byte
    pIn = fmemopen(const_cast<char *>(file.data()), file.size(), "r");
    LoadMenu(&Menu);
    CloseInputFile();
}

static std::string Store() {
    char *text = nullptr;
    size_t size = 0;
    pOut = open_memstream(&text, &size);
    StoreMenu(&Menu);
    fclose(pOut);
    pOut = nullptr;
    std::string stored(text, size);
    free(text);
    return stored;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Quiet quiet;
    for (TextMenuItem &item : Items) item.state = STATE_NORMAL;
    for (TextMenuItem &item : SubItems) item.state = STATE_NORMAL;
    Items[1].type = ITEM_REQUIRED;
    Items[2].type = SubItems[0].type = ITEM_OPTIONAL;
    InitMenu(&SubMenu);
    InitMenu(&Menu);
    Load(std::string(reinterpret_cast<const char *>(data), size));
    std::string stored = Store();
    Load(stored);
    if (Store() != stored) abort();
    FreeMenu(&SubMenu);
    FreeMenu(&Menu);
    return 0;
}
