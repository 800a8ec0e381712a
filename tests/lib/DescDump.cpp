#include "tests/lib/DescDump.h"

#include "common/MemMgr.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <map>

// ---- the recording table

static std::string Record;
static bool flArguments;
static std::map<Widget, int> Levels; // of the stand-ins for widgets

static std::string Squeeze(const char *start, const char *end) {
    std::string text;
    for (; start < end; start++)
        if (!XmtIsSpace(*start))
            text += *start;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    return text;
}

static void Register(const std::string &name, int type, Widget widget) {
    XmtObjectData object = {};
    object.type = type;
    object.widget = widget;
    auto kept =
        static_cast<XmtObjectData *>(PushHashNode(XmtTable, HashText(name.c_str()), &object, sizeof object));
    if (kept && !kept->name) kept->name = SaveStr_(name.c_str());
}

static Widget RecordObject(const char *key, int type, Widget parent, const XmtInfo *info, const char *start) {
    static char stands[4096];
    auto widget = reinterpret_cast<Widget>(&stands[Levels.size() % sizeof stands]);
    if (info->parent) parent = info->parent;
    int level = Levels[widget] = parent ? Levels[parent] + 1 : 0;
    int id = SpecifiedAppCBValue ? SpecifiedAppCBValue : AppCBValue++;
    SpecifiedAppCBValue = 0;
    Record +=
        std::string(static_cast<size_t>(level) * 2, ' ') + key + ' ' + info->name + ' ' + std::to_string(id);
    if (flHideObject) Record += " [h]";
    if (flArguments) Record += ": " + Squeeze(start, pNewDesc);
    Record += '\n';
    flHideObject = 0; // the reader would unmanage a widget
    Register(info->name, type, widget);
    return widget;
}

static Widget RecordSimple(const char *key, int type, Widget parent) {
    const char *start = pNewDesc;
    XmtInfo info;
    info.type = static_cast<int8_t>(type);
    XmtFillInfo(&info, 0);
    Widget widget = RecordObject(key, type, parent, &info, start);
    XmtClearInfo(&info);
    return widget;
}

// The control's arguments are those of the general text and its slot.
static Widget RecordCompound(const char *key, int type, Widget parent) {
    const char *start = pNewDesc;
    XmtInfo parts, info;
    XmtFillInfoDesc(&parts);
    std::string text = GenDesc(&parts, GEN_NAME | (parts.label.empty() ? 1 : 3), nullptr);
    info.type = static_cast<int8_t>(type);
    {
        XmtCursor cursor(text.c_str());
        XmtFillInfo(&info, 0);
    }
    Widget widget = RecordObject(key, type, parent, &info, start);
    XmtClearInfo(&info);
    XmtClearInfo(&parts);
    return widget;
}

static std::string KeyOf(size_t row) {
    const char *key = ObjKeys + 1;
    for (; row > 1; row--) key = strchr(key, ',') + 1;
    return std::string(key, strcspn(key, ","));
}

// The table hands the row's number to the creators, which know the true row by it.
static Widget RecordA(intptr_t row) {
    return RecordSimple(KeyOf(static_cast<size_t>(row)).c_str(), XmtMainWindow, nullptr);
}

static Widget RecordPA(Widget parent, intptr_t row) {
    const XmtKeyRow *real = &Objs[row];
    std::string key = KeyOf(static_cast<size_t>(row));
    int type = static_cast<int>(real->first);
    if (real->kind == XMT_KIND_APT) return RecordSimple(key.c_str(), type, parent);
    return RecordCompound(key.c_str(), real->kind == XMT_KIND_PAT ? type : XmtNoType, parent);
}

static const XmtKeyRow *RecordingTable() {
    static XmtKeyRow table[XMT_KEYS];
    for (int i = 1; i < XMT_KEYS; i++) {
        table[i] = Objs[i];
        if (Objs[i].kind < 0) continue;
        table[i].first = i;
        table[i].kind = Objs[i].kind == XMT_KIND_A ? XMT_KIND_A : XMT_KIND_PA;
        if (table[i].kind == XMT_KIND_A)
            table[i].create.a = RecordA;
        else
            table[i].create.pa = RecordPA;
    }
    return table;
}

std::string DumpDescription(const char *text, int firstId, const char *parent) {
    Record.clear();
    pXmtObjs = RecordingTable();
    XmtNewObject(parent, nullptr, firstId, text);
    pXmtObjs = Objs;
    return Record;
}

std::string DumpArguments(const char *text) {
    flArguments = true;
    std::string record = DumpDescription(text, 1);
    flArguments = false;
    return record;
}

// ---- records

static std::string Plain(XmString string) {
    auto text = static_cast<char *>(
        XmStringUnparse(string, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    std::string plain = text ? text : "";
    XtFree(text);
    return "\"" + plain + "\"";
}

static std::string ArgText(const XmtInfo *info, const Arg *arg) {
    std::string name = arg->name;
    auto text = reinterpret_cast<const char *>(arg->value);
    if (name == "value" || name == "accelerator") return name + "=\"" + text + "\"";
    if (name == "labelString" || name == "textString") return name + "=" + Plain(info->labelString);
    if (name == "acceleratorText") return name + "=" + Plain(info->acceleratorString);
    for (const char *side : {"topWidget", "bottomWidget", "leftWidget", "rightWidget", "fontList"})
        if (name == side) return name + "=set";
    return name + "=" + std::to_string(static_cast<long>(arg->value));
}

static void AddField(std::string *out, const char *name, const char *value) {
    if (value && *value) *out += std::string(" ") + name + "<" + value + ">";
}

static std::string FieldsText(const XmtInfo *info) {
    std::string out;
    AddField(&out, "label", info->label.c_str());
    AddField(&out, "title", info->title.c_str());
    AddField(&out, "text", info->text.c_str());
    AddField(&out, "keys", info->keys.c_str());
    AddField(&out, "list", info->list);
    AddField(&out, "callbacks", info->callbacks.c_str());
    AddField(&out, "no", info->no.c_str());
    AddField(&out, "dialog", info->dialogType.c_str());
    AddField(&out, "icon", info->icon);
    AddField(&out, "format", info->format);
    for (int i = 0; i < XMT_SLOTS; i++) AddField(&out, std::to_string(i).c_str(), info->slots[i]);
    if (info->id) out += " id=" + std::to_string(info->id);
    if (info->parent) out += " parent";
    if (*pNewDesc) out += std::string(" | ") + pNewDesc;
    return out;
}

std::string DumpFillInfo(const char *text, int type, int mode) {
    XmtInfo info;
    XmtCursor cursor(text);
    info.type = static_cast<int8_t>(type);
    XmtFillInfo(&info, mode);
    std::string out = info.name;
    for (int i = 0; i < info.argCount; i++)
        if (strcmp(info.args[i].name, "navigationType") != 0) out += " " + ArgText(&info, &info.args[i]);
    out += FieldsText(&info);
    XmtClearInfo(&info);
    return out;
}

std::string DumpFillInfoDesc(const char *text) {
    XmtInfo info;
    XmtCursor cursor(text);
    XmtFillInfoDesc(&info);
    std::string out = info.name + FieldsText(&info);
    XmtClearInfo(&info);
    return out;
}
