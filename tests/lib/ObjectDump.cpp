#include "tests/lib/ObjectDump.h"

#include "common/MemMgr.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <X11/IntrinsicP.h>
#include <X11/CoreP.h>

static void DumpLine(Widget widget, const XmtObjectData *object, int depth, std::string *out) {
    out->append(static_cast<size_t>(depth) * 2, ' ');
    if (object->widget != widget) {
        *out += std::string("(") + object->name + ")\n";
        return;
    }
    *out += std::string(object->name) + " " + std::to_string(object->id) + " " + XmtObjectNames[object->type];
    bool flPopup = object->type == XmtShell || object->type == XmtMenu;
    *out += XtIsManaged(widget) || flPopup ? "\n" : " hidden\n";
}

// Popups come behind the children, in the order of their making.
static void Walk(Widget widget, int depth, std::string *out) {
    const XmtObjectData *object = XmtFindWidget(widget);
    if (object) DumpLine(widget, object, depth++, out);
    WidgetList children = nullptr;
    Cardinal count = 0;
    if (XtIsComposite(widget)) XtVaGetValues(widget, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++) Walk(children[i], depth, out);
    if (!XtIsWidget(widget)) return;
    for (Cardinal i = 0; i < widget->core.num_popups; i++) Walk(widget->core.popup_list[i], depth, out);
}

std::string DumpWidget(Widget widget) {
    std::string out;
    Walk(widget, 0, &out);
    return out;
}

std::string DumpObjects(const char *name) {
    const XmtObjectData *object = XmtFindObject(name);
    return object ? DumpWidget(object->widget) : "no such object\n";
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

std::string TextOf(const char *name) {
    char *text = XmtGetText(name);
    std::string copy = text ? text : "";
    XtFree(text);
    return copy;
}
