// The object store; single resources.
#include "xmt/XmtStore.h"

#include <cstring>

enum { STORE_SIZE = 4096, FONT_TABLE_SIZE = 140 };

HashTable *XmtTable;
HashTable *XmtObjects;
HashTable *XmtPixmaps;
HashTable *XmtImages;
HashTable *XmtFonts;

void XmtInitStore() {
    if (XmtTable) return;
    XmtTable = NewHashTable(STORE_SIZE, HASH_TEXT);
    XmtObjects = NewHashTable(STORE_SIZE, HASH_NUMBER);
    XmtPixmaps = NewHashTable(STORE_SIZE, HASH_TEXT);
    XmtImages = NewHashTable(STORE_SIZE, HASH_TEXT);
    XmtFonts = NewHashTable(FONT_TABLE_SIZE, HASH_TEXT);
}

// Frames of dialogs have no name and stand in the table under "": they are nobody's to find.
XmtObjectData *XmtFindObject(const char *name) {
    if (!name || !*name) return nullptr;
    return static_cast<XmtObjectData *>(FindHashNode(XmtTable, HashText(name)));
}

XmtObjectData *XmtFindWidget(Widget widget) {
    auto entry = static_cast<XmtObjectData **>(FindHashNode(XmtObjects, reinterpret_cast<uintptr_t>(widget)));
    return entry ? *entry : nullptr;
}

Widget XmtGetWidget(const char *name) {
    XmtObjectData *object = XmtFindObject(name);
    return object ? object->widget : nullptr;
}

Window XmtGetWindow(Widget widget) {
    return widget ? XtWindowOfObject(widget) : 0;
}

XmtCallData XmtNewCallData(const XmtObjectData *object, intptr_t reason) {
    XmtCallData data{};
    data.name = object->name;
    data.id = object->id;
    data.reason = reason;
    data.widget = object->widget;
    data.appData = object->appData;
    return data;
}

// ---- resources

void XmtSetXmValueW(Widget widget, const char *resource, XtArgVal value) {
    if (!widget) return;
    Arg arg = {const_cast<char *>(resource), value};
    XtSetValues(widget, &arg, 1);
    XmUpdateDisplay(widget);
}

void XmtSetXmValue(const char *name, const char *resource, XtArgVal value) {
    XmtSetXmValueW(XmtGetWidget(name), resource, value);
}

// Finds the resource in the list, which it releases.
static bool FindResource(XtResource *list, Cardinal count, const char *resource, XtResource *found) {
    bool flFound = false;
    for (Cardinal i = 0; i < count && !flFound; i++) {
        flFound = strcmp(list[i].resource_name, resource) == 0;
        if (flFound) *found = list[i];
    }
    XtFree(reinterpret_cast<char *>(list));
    return flFound;
}

// Parts of a widget with resources of their own, such as the output of a text.
static bool FindSecondaryResource(WidgetClass kind, const char *resource, XtResource *found) {
    XmSecondaryResourceData *blocks = nullptr;
    Cardinal count = XmGetSecondaryResourceData(kind, &blocks);
    bool flFound = false;
    for (Cardinal i = 0; i < count; i++) {
        if (!flFound)
            flFound = FindResource(blocks[i]->resources, blocks[i]->num_resources, resource, found);
        else
            XtFree(reinterpret_cast<char *>(blocks[i]->resources));
        XtFree(reinterpret_cast<char *>(blocks[i]));
    }
    XtFree(reinterpret_cast<char *>(blocks));
    return flFound;
}

static bool FindWidgetResource(Widget widget, const char *resource, XtResource *found) {
    XtResource *list = nullptr;
    Cardinal count = 0;
    XtGetResourceList(XtClass(widget), &list, &count);
    if (FindResource(list, count, resource, found)) return true;
    if (FindSecondaryResource(XtClass(widget), resource, found)) return true;
    Widget parent = XtParent(widget);
    if (!parent || !XtIsConstraint(parent)) return false;
    XtGetConstraintResourceList(XtClass(parent), &list, &count);
    return FindResource(list, count, resource, found);
}

// A value of fewer bytes lies at the start of the word: only these were written.
static XtArgVal WidenValue(XtArgVal word, const XtResource *resource) {
    switch (resource->resource_size) {
    case 1: {
        uint8_t value;
        memcpy(&value, &word, sizeof(value));
        return value;
    }
    case 2: {
        uint16_t value;
        memcpy(&value, &word, sizeof(value));
        bool flSigned =
            strstr(resource->resource_type, "Position") || !strcmp(resource->resource_type, "Short");
        return flSigned ? static_cast<int16_t>(value) : value;
    }
    case 4: {
        int32_t value;
        memcpy(&value, &word, sizeof(value));
        return value;
    }
    default: return word;
    }
}

XtArgVal XmtGetXmValueW(Widget widget, const char *resource) {
    XtArgVal word = 0;
    if (!widget) return 0;
    Arg arg = {const_cast<char *>(resource), reinterpret_cast<XtArgVal>(&word)};
    XtGetValues(widget, &arg, 1);
    XtResource found;
    return FindWidgetResource(widget, resource, &found) ? WidenValue(word, &found) : word;
}

XtArgVal XmtGetXmValue(const char *name, const char *resource) {
    return XmtGetXmValueW(XmtGetWidget(name), resource);
}
