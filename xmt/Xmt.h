// What every unit of the window toolkit shares: the types of objects, the record of an object, the record of
// an event.
//
// A window is a text, a description (XmtNew.h). An object of it is known by its name to the program, which
// works on it through the accessors of XmtUtils.h, and by its id to the handler that hears its events.
#pragma once

#include "xmt/x11.h"

#include <cstdint>

// ORDER XmtType. XmtObjectNames (XmtNewBuild.h) holds the names.
enum XmtType {
    XmtNoType,
    XmtShell,
    XmtMainWindow,
    XmtChildWindow,
    XmtDataEntryDialog,
    XmtWarnDialog,
    XmtInfoDialog,
    XmtFileDialog,
    XmtmessageDialog,
    XmtBBDialog,
    XmtDialogShell,
    XmtFormDialog,
    XmtDraw,
    XmtPushBut,
    XmtRadioBox,
    XmtListBut,
    XmtCreatedListBut,
    XmtToggleBut,
    XmtCascadeBut,
    XmtButtonBox,
    XmtListBox,
    XmtListBoxMS,
    XmtBox,
    XmtForm,
    XmtTabForm,
    XmtBoard,
    XmtPanedBox,
    XmtScrolledArea,
    XmtMenuBar,
    XmtMenu,
    XmtSeperator,
    XmtText,
    XmtPasswd,
    XmtLabel,
    XmtImage,
    XmtPicture,
    XMT_TYPE_COUNT
};

// Marks an object that takes no number of its own: part of a compound, of a menu bar, a shell.
enum { XMT_AUX = 128, XMT_TYPE_MASK = 127 };

// Why a handler is called; CBR (XmtCallback) tells it for each callback key.
enum XmtReason {
    XmtCR_CREATE,
    XmtCR_DEFAULT,
    XmtCR_CHANGED,
    XmtCR_MOTION,
    XmtCR_OK,
    XmtCR_CANCEL,
    XmtCR_APPLY,
    XmtCR_HELP,
    XmtCR_RESIZE,
    XmtCR_INPUT,
    XmtCR_FOCUS,
    XmtCR_LOSING_FOCUS,
    XmtCR_MAP,
    XmtCR_EXPOSE,
    XmtCR_UNMAP,
    XmtCR_ARM,
    XmtCR_DISARM,
    XmtCR_OBSCURED_TRAVERSAL,
    XmtCR_ENTER,
    XmtCR_LEAVE,
    XmtCR_UNKNOWN
};

// One event. Every field is a word; what an event does not fill is 0. It is gone when the handler returns,
// and its texts with it: a handler copies what it wants later.
struct XmtCallData {
    const char *name;      // of the object; for an item of a list, of the owner
    intptr_t id;           // of the object
    intptr_t reason;       // XmtCR_...
    const char *text;      // typed, whole (on activation), of the selected item, or the dialog's value
    const char *selection; // multi-selection: the items' texts, each with a NUL behind it, and one more
    const int *positions;  // multi-selection: selected positions, from 1
    intptr_t count;        // of them
    intptr_t length;       // text objects: of the typed text; it need not end in a NUL by Motif's contract,
                           // but text does
    intptr_t currInsert;
    intptr_t newInsert;
    intptr_t start;
    intptr_t end;
    Boolean *doit;  // clearing it vetoes the change
    intptr_t value; // new value: position from 0 (radio box, option list), from 1 (list), 0/1 (toggle), mask
    void *callData; // the widget's own
    Widget widget;
    intptr_t appData;
};

using XmtHandler = void (*)(XmtCallData *);

// One object, for the rest of the process. Kept in XmtTable under its name; XmtObjects leads from widget to
// record. A name used twice keeps the record: the fields that a creation writes are replaced.
struct XmtObjectData {
    char *name; // managed
    int id;     // handlers switch on it
    int type;   // XmtType; an item of a list has its owner's
    Widget widget;
    XmtHandler handler;
    intptr_t value;    // see XmtUtils.h; for XmtText a managed text
    intptr_t previous; // the value before the last change
    intptr_t stored;   // by XmtStoreValue; for XmtText a managed text, for XmtPasswd the real one, managed
    char *selection;   // multi-selection: managed, in the form of XmtCallData
    char *format;      // managed, null if none
    char *icon;        // managed list of state icons, null if none
    intptr_t appData;  // the application's
    void *extension;   // XmtTabData or XmtPictureData (XmtNewTab.h), or null
};

// The text of an object's value or stored value field.
inline char *XmtTextOf(intptr_t field) {
    return reinterpret_cast<char *>(field);
}
