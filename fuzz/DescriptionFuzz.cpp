// Descriptions: the whole reader over creators that make no widget, but read their arguments as the true ones
// do and write the parts of compounds anew. The cursor and the managed memory come back.
#include "common/Hash.h"
#include "common/MemMgr.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtUtils.h"

#include <cstdint>
#include <cstdlib>
#include <string>

static char stand;
static Widget const Stand = reinterpret_cast<Widget>(&stand);

static void FillFrom(const std::string &text, int type, int mode) {
    XmtCursor cursor(text.c_str());
    XmtInfo info;
    info.type = static_cast<int8_t>(type);
    XmtFillInfo(&info, mode);
    if (info.argCount > XMT_ARGS) abort();
    XmtClearInfo(&info);
}

static Widget Simple(int type, Widget, const char *) {
    XmtInfo info;
    info.type = static_cast<int8_t>(type);
    XmtFillInfo(&info, type & XMT_FILL_RAW_LABEL);
    XmtClearInfo(&info);
    flHideObject = 0; // the reader would unmanage a widget
    return Stand;
}

// All the texts that a compound may write for its widgets.
static Widget Compound(Widget, int type, const char *) {
    XmtInfo info;
    XmtFillInfoDesc(&info);
    std::string rest = info.slots[0] ? info.slots[0] : "", arg;
    for (const char *name : {"H", "id", "s"}) StripArg(name, &rest, &arg);
    for (int slot : {0, 1, 3, 9, 15})
        FillFrom(GenDesc(&info, slot | GEN_NAME | GEN_LABEL | GEN_LIST | GEN_FORMAT, "_x"), type, 0);
    if (info.list) GetArgCount(info.list);
    XmtClearInfo(&info);
    flHideObject = 0;
    return Stand;
}

static const XmtKeyRow *Table() {
    static XmtKeyRow rows[XMT_KEYS];
    for (int i = 1; i < XMT_KEYS; i++) {
        rows[i] = Objs[i];
        if (rows[i].kind < 0) continue;
        bool flSimple = rows[i].kind == XMT_KIND_APT || rows[i].kind == XMT_KIND_A;
        rows[i].kind = flSimple ? XMT_KIND_APT : XMT_KIND_PAT;
        if (flSimple)
            rows[i].create.apt = Simple;
        else
            rows[i].create.pat = Compound;
    }
    return rows;
}

// Files are read by #include and by pictures of labels: neither takes one here.
static bool NamesAFile(const std::string &text) {
    return text.find("include") != std::string::npos || text.find('@') != std::string::npos;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    if (NamesAFile(text)) return 0;
    pXmtObjs = Table();
    XmtNewObject(nullptr, nullptr, 1, text.c_str());
    for (char *&body : Macro) {
        PutMem(body);
        body = nullptr;
    }
    SpecifiedAppCBValue = 0;
    XtArgVal values[XMT_ARGS];
    XmtInfo info;
    XmtGetInfo(&info, text.c_str(), values);
    XmtClearInfo(&info);
    if (CheckMem()) abort();
    return 0;
}
