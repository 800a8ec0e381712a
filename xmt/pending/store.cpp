// Stands in for operations that are still being written.
#include "xmt/XmtUtils.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtFormat.h"
#include "xmt/XmtMsg.h"
#include <cstdlib>
#pragma GCC diagnostic ignored "-Wunused-parameter"

HashTable *XmtTable;
HashTable *XmtObjects;
HashTable *XmtPixmaps;
HashTable *XmtImages;
HashTable *XmtFonts;
void XmtInitStore() {}
XmtObjectData *XmtFindObject(const char *name) {
    return {};
}
XmtObjectData *XmtFindWidget(Widget widget) {
    return {};
}
Widget XmtGetWidget(const char *name) {
    return {};
}
void XmtSetXmValue(const char *name, const char *resource, XtArgVal value) {}
void XmtSetXmValueW(Widget widget, const char *resource, XtArgVal value) {}
XtArgVal XmtGetXmValue(const char *name, const char *resource) {
    return {};
}
void XmtSetArgs(const char *description) {}
void XmtSetArgsNoUpdate(const char *description) {}
void XmtUpdate(const char *name) {}
intptr_t XmtGetAppData(const char *name) {
    return {};
}
void XmtSetAppData(const char *name, intptr_t data) {}
bool XmtIsEnabled(const char *name) {
    return {};
}
void XmtSetItemState(const char *list, int state) {}
void XmtShow(const char *list) {}
void XmtHide(const char *list) {}
void XmtEnable(const char *list) {}
void XmtDisable(const char *list) {}
void XmtLowerItem(const char *list) {}
void XmtRaiseItem(const char *list) {}
void XmtSetCursor(const char *list, unsigned shape) {}
void XmtClearCursor(const char *list) {}
void XmtSetFocus(const char *name) {}
void XmtSetFocus_(const char *name) {}
void XmtSetFocusToParent(const char *name) {}
void SetFocus(const char *name) {}
void XmtSetTextFocus(const char *name) {}
void XmtSetLabel(const char *name, const char *text) {}
void XmtSetLabelRaw(const char *name, const char *text) {}
char *XmtGetLabel(const char *name) {
    return {};
}
void XmtSetLabelText(const char *name, const char *text) {}
void XmtSetLabelTextSize(const char *name, const char *text, int width, int indent) {}
std::string BreakString(const char *text, int width, int indent) {
    return {};
}
void XmtSetFont(const char *name, const char *font) {}
void XmtSetTitle(const char *name, const char *text) {}
void XmtSetIconName(const char *name, const char *text) {}
void XmtSetListItem(const char *name, int position, int flNotify) {}
void XmtClearListItem(const char *name, int position) {}
void XmtClearAllListItems(const char *name) {}
void XmtAddListItem(const char *name, const char *text, int position) {}
void XmtDeleteListItem(const char *name, int position) {}
void XmtDeleteAllListItems(const char *name) {}
void XmtReplaceAllListItems(const char *name, const char *list) {}
void XmtReplaceListItem(const char *name, const char *text, int position) {}
void XmtReplaceListItems(const char *name, const char *list) {}
void XmtReplaceListItems_(const char *name, const char *list, int position) {}
int XmtGetListCount(const char *name) {
    return {};
}
void XmtAddListButton(const char *name, const char *arguments) {}
void XmtAddRadioButton(const char *name, const char *arguments) {}
void XmtSetOptionMenu(const char *name, int n) {}
void XmtSetRadioBox(const char *name, int n) {}
void XmtSetCheckboxState(const char *name, int flSet) {}
char *XmtSaveMultiSelectSelList(const char *selection, char *out) {
    return {};
}
char *XmtGetText(const char *name) {
    return {};
}
void XmtSetText(const char *name, const char *text) {}
void XmtAddTextStr(const char *name, const char *text, int position) {}
int XmtGetTextInt(const char *name, int *result, int minimum, int maximum) {
    return {};
}
int XmtGetTextFloat(const char *name, float *result, float minimum, float maximum) {
    return {};
}
int XmtGetTextPos(const char *name) {
    return {};
}
void XmtSetTextPos(const char *name, int position) {}
void XmtSetTextPosTop(const char *name, int position) {}
char *XmtGetTextSelection(const char *name) {
    return {};
}
void XmtSetTextHighlight(const char *name, int left, int right) {}
void XmtClearTextHighlight(const char *name, int left, int right) {}
void XmtSetValuePF(const char *name, intptr_t value, int flFormat) {}
void XmtSetValuePF(const char *name, const char *text, int flFormat) {}
intptr_t XmtGetValue(const char *name) {
    return {};
}
void XmtStoreValue(const char *list) {}
void XmtResetToStoredValue(const char *list) {}
intptr_t XmtGetStoredValue(const char *name) {
    return {};
}
void XmtSetFormat(const char *name, const char *format) {}
void XmtReplaceFormat(const char *name, const char *format) {}
void XmtDoFormat(const char *name) {}
XtAppContext AppContext;
Display *AppDisplay;
Screen *AppScreen;
int AppScreenNum;
Colormap AppColormap;
int flInitAppTimedOut;
int flInEventLoop;
int flExitMainLoop;
void (*EventLoopCBF)();
bool XmtInitApp(const char *name, const char *appClass, int *argc, char **argv) {
    return {};
}
void XmtMainEventLoop() {}
void XmtModalAppLoop(const char *flDone) {}
void XmtEventHandler(Widget widget, XtPointer object, XtPointer callData) {}
void XmtEnter(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue) {}
void XmtLeave(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue) {}
void XmtShowWaitingMsg() {}
void XmtProcessFormat(XmtObjectData *object, XmtCallData *data, intptr_t unused) {}
void XmtProcessStateFormat(XmtObjectData *object, XmtCallData *data) {}
void XmtProcessButtonFormat(XmtObjectData *object, XmtCallData *data) {}
bool XmtTestFormatState(const char *list, int state) {
    return {};
}
void ProcessFormat(const char *target, XmtCallData *data) {}
void XmtCallApp(const char *target, XmtObjectData *caller, XmtCallData *data) {}
ListHead *pXmtMsgList;
int flPostMsgIsHidden;
intptr_t PostMsgId;
XmtHandler pPostMsgCBF;
const char *pPostMsgHelpWidget;
void XmtPostMsg(const char *title, const char *format, ...) {}
void XmtPostMsg_(const char *title, const char *text) {}
void XmtDisplayMsg() {}
void XmtMsgEventHandler(XmtCallData *data) {}
void XmtSetPostMsgWidget(XmtHandler callback, intptr_t id) {}
void XmtSetPostMsgHelpWidget(const char *name) {}
void XmtHideMsgCancelWidget() {}
void XmtSysError(const char *format, ...) {
    abort();
}
int XmtStartTimer(int mode, int seconds, XmtTimerCallback callback, intptr_t argument) {
    return {};
}
void XmtStopTimer(int id) {}
void XmtResetTimer(int id) {}
void XmtSuspendTimer(int id) {}
void XmtResumeTimer(int id, int seconds) {}
void XmtTimerEventHandler(XtPointer unused, XtIntervalId *id) {}
int XmtET;
int flXmtTimedOut, flXmtETDestroyApp;
void XmtStartEventTimer(XmtHandler callback, intptr_t id, int seconds) {}
void XmtSelectFile(XmtHandler callback, intptr_t id, const char *title) {}
void XmtFSEventHandler(XmtCallData *data) {}
