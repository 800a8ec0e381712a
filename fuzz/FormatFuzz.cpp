// Formats of window objects, run without a display: one line for each of the objects gives its format, each
// line behind them an event: the object's letter, then a number. Names of objects that are not there do
// nothing.
#include "common/MemMgr.h"
#include "xmt/XmtFormat.h"
#include "xmt/XmtUtils.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

enum { FORMAT_MAX = 200, EVENTS_MAX = 30 };

static const struct {
    const char *name;
    XmtType type;
} Rows[] = {{"a", XmtPushBut},  {"b", XmtListBut},   {"b_1", XmtListBut}, {"c", XmtToggleBut},
            {"d", XmtRadioBox}, {"e", XmtListBoxMS}, {"f", XmtListBox},   {"g", XmtLabel}};

// What a handler is given names the object that it is called for.
static void CheckEvent(XmtCallData *data) {
    XmtObjectData *object = XmtFindObject(data->name);
    if (!object || object->id != data->id) abort();
}

static XmtObjectData *MakeObject(int row, const std::string &format) {
    XmtObjectData blank{};
    auto object = static_cast<XmtObjectData *>(PushHashNode(
        XmtTable, HashText(Rows[row].name), XmtFindObject(Rows[row].name) ? nullptr : &blank, sizeof(blank)));
    PutMem(object->format);
    PutMem(object->name);
    *object = blank;
    object->name = SaveStr_(Rows[row].name);
    object->type = Rows[row].type;
    object->id = row + 1;
    object->handler = CheckEvent;
    object->format = format.empty() ? nullptr : SaveStr_(format.c_str());
    return object;
}

static void RunEvent(XmtObjectData *object, const std::string &text) {
    XmtCallData data = XmtNewCallData(object, atoi(text.c_str()) & 31);
    data.value = atoi(text.c_str());
    if (text.find('s') != std::string::npos)
        XmtSetValuePF(object->name, data.value, 1);
    else
        XmtProcessFormat(object, &data, 0);
    if (XmtFormatState.depth != 0) abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    std::string line;
    XmtObjectData *objects[std::size(Rows)];
    XmtInitStore();
    for (int row = 0; row < static_cast<int>(std::size(Rows)); row++) {
        std::getline(in, line);
        objects[row] = MakeObject(row, std::string(line.c_str()).substr(0, FORMAT_MAX));
    }
    for (int i = 0; i < EVENTS_MAX && std::getline(in, line); i++)
        if (!line.empty())
            RunEvent(objects[static_cast<unsigned char>(line[0]) % std::size(Rows)], line.substr(1));
    if (XmtObjectData *toggle = XmtFindObject("c"); toggle->value != (toggle->value != 0)) abort();
    if (CheckMem()) abort();
    return 0;
}
