#include "tests/lib/ObjectDump.h"

#include "common/MemMgr.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

// clang-format off
#include <X11/IntrinsicP.h> // the next one needs it
#include <X11/CoreP.h>
// clang-format on
#include <cstring>
#include <sstream>

static std::string Inside(Widget widget);

static std::string Describe(Widget widget, const XmtObjectData *object) {
    if (object->widget != widget) return std::string("(") + object->name + ")";
    bool flPopup = object->type == XmtShell || object->type == XmtMenu;
    const char *type = XmtObjectNames[object->type] + strlen("Xmt");
    return std::string(object->name) + " " + std::to_string(object->id) + " " + type +
           (XtIsManaged(widget) || flPopup ? "" : "!");
}

static std::string Dump(Widget widget) {
    const XmtObjectData *object = XmtFindWidget(widget);
    std::string inside = Inside(widget);
    if (!object) return inside;
    return Describe(widget, object) + (inside.empty() ? "" : "{" + inside + "}");
}

static std::string Inside(Widget widget) {
    std::string text;
    WidgetList children = nullptr;
    Cardinal count = 0;
    if (XtIsComposite(widget)) XtVaGetValues(widget, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    Cardinal popups = XtIsWidget(widget) ? widget->core.num_popups : 0;
    for (Cardinal i = 0; i < count + popups; i++) {
        std::string one = Dump(i < count ? children[i] : widget->core.popup_list[i - count]);
        if (!one.empty()) text += (text.empty() ? "" : ", ") + one;
    }
    return text;
}

std::string DumpObjects(const char *name) {
    const XmtObjectData *object = XmtFindObject(name);
    return object ? Inside(object->widget) : "no such object";
}

long ResourceOf(const char *name, const char *resource) {
    return static_cast<long>(XmtGetXmValue(name, resource));
}

std::string StringOf(const char *name, const char *resource) {
    XmString string = reinterpret_cast<XmString>(XmtGetXmValue(name, resource));
    char *text = XmtDecodeString(string);
    std::string copy = text;
    PutMem(text);
    if (string) XmStringFree(string);
    return copy;
}

static std::string Join(const char *words, char between, std::string (*get)(const char *, const char *)) {
    std::istringstream in(words);
    std::string text;
    for (std::string word; in >> word;) {
        size_t dot = word.find('.');
        if (!text.empty()) text += between;
        text += get(word.substr(0, dot).c_str(), word.substr(dot + 1).c_str());
    }
    return text;
}

static std::string NumberOf(const char *name, const char *resource) {
    return std::to_string(ResourceOf(name, resource));
}

std::string ResourcesOf(const char *words) {
    return Join(words, ' ', NumberOf);
}

std::string StringsOf(const char *words) {
    return Join(words, '|', StringOf);
}

std::string TextOf(const char *name) {
    char *text = XmtGetText(name);
    std::string copy = text ? text : "";
    XtFree(text);
    return copy;
}
