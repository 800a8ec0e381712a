// Asks the running reader what it would make, so that the checker's own reading can be held against it.
#include "tools/checkwin/Reader.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"

#include <cstring>

static std::string Asked;

static std::string KeyOf(intptr_t row) {
    const char *key = ObjKeys + 1;
    for (; row > 1; row--) key = strchr(key, ',') + 1;
    return std::string(key, strcspn(key, ","));
}

static void Note(intptr_t row) {
    std::string name;
    GetWord(&name, pNewDesc);
    Asked += KeyOf(row) + " " + name + "\n";
}

static void SkipObject(bool flCompound) {
    XmtInfo info;
    if (flCompound)
        XmtFillInfoDesc(&info);
    else
        XmtFillInfo(&info, 0);
    XmtClearInfo(&info);
    SpecifiedAppCBValue = 0;
    flHideObject = 0; // there is no widget to hide
}

static bool SkipChar(char ch) {
    pNewDesc = XmtSkipSpace(pNewDesc);
    if (*pNewDesc != ch) return false;
    pNewDesc++;
    return true;
}

// The body of a menu bar: labels in parentheses, levels that '}' or ';' ends.
static void SkipMenu() {
    std::string label;
    bool flBrace = SkipChar('{');
    for (int levels = 1; *pNewDesc && levels > 0; pNewDesc++) {
        if (*pNewDesc == '(') pNewDesc = GetArgValues(&label, pNewDesc);
        if (*pNewDesc == '#') pNewDesc += strcspn(pNewDesc, "\n");
        levels += *pNewDesc == '{' ? 1 : *pNewDesc == '}' || *pNewDesc == ';' ? -1 : 0;
        if (!*pNewDesc) return;
    }
    if (flBrace) SkipChar('}');
}

static void SkipText() {
    while (*pNewDesc && *pNewDesc != ';') pNewDesc++;
    if (*pNewDesc) pNewDesc++;
}

// Nothing is made: no widget, and none for the blocks.
static Widget AskA(intptr_t row) {
    Note(row);
    if (Objs[row].create.a == XmtNewMainWindow)
        SkipObject(false);
    else
        SkipText();
    return nullptr;
}

static Widget AskPA(Widget, intptr_t row) {
    const XmtKeyRow *real = &Objs[row];
    Note(row);
    bool flDialog = real->kind == XMT_KIND_PA && real->create.pa == XmtNewPromptDialog;
    bool flMenu = real->kind == XMT_KIND_P && real->create.p == XmtNewMenuBar;
    bool flPart = real->kind == XMT_KIND_P && !flMenu && real->create.p != XmtNewPicture;
    if (real->kind == XMT_KIND_P && real->create.p == XmtNewTabIconW)
        SkipText();
    else
        SkipObject(real->kind != XMT_KIND_APT && !flDialog && !flPart);
    if (flMenu) SkipMenu();
    return nullptr;
}

// The object is not there; its arguments are.
static Widget AskChange(Widget, intptr_t) {
    XmtInfo info;
    std::string name;
    pNewDesc = GetWord(&name, pNewDesc);
    XmtFillInfo(&info, XMT_FILL_NESTED);
    XmtClearInfo(&info);
    SpecifiedAppCBValue = flHideObject = 0;
    return nullptr;
}

std::string AskReader(const std::string &text) {
    static XmtKeyRow rows[XMT_KEYS];
    for (int i = 1; i < XMT_KEYS; i++) {
        rows[i] = Objs[i];
        if (rows[i].kind < 0 && rows[i].kind != XMT_KIND_CHANGE) continue;
        rows[i].first = i;
        if (rows[i].kind == XMT_KIND_A)
            rows[i].create.a = AskA;
        else
            rows[i].create.pa = rows[i].kind == XMT_KIND_CHANGE ? AskChange : AskPA;
        if (rows[i].kind != XMT_KIND_A) rows[i].kind = XMT_KIND_PA;
    }
    Asked.clear();
    pXmtObjs = rows;
    XmtNewObject(nullptr, nullptr, 0, text.c_str());
    pXmtObjs = Objs;
    return Asked;
}
