// Stands in for operations that are still being written.
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtNewTab.h"
#include <cstdlib>
#pragma GCC diagnostic ignored "-Wunused-parameter"

extern const char *const XmtObjectNames[XMT_TYPE_COUNT];
const char *const XmtObjectNames[XMT_TYPE_COUNT] = {};
XmtObjectData *pNewObjectData;
Widget WB1;
Widget BarPullDownMenu;
int ListCnt;
Widget ScrollW;
int flConvertLabelToAppData;
intptr_t pAppData;
int flCreateCallback;
XmtObjectData *XmtNewData(const char *name, int type, Widget widget) {
    return {};
}
Widget XmtNewSimpleObject(int type, Widget parent, const char *callback) {
    return {};
}
Widget XmtNewWidget(const char *text, int type, Widget parent, const char *callback) {
    return {};
}
Widget XmtBuildObject(Widget parent, int type, const char *letters) {
    return {};
}
Widget XmtNewListObjects(int itemType, int ownerType, Widget parent, const char *name, const char *common,
                         const char *list) {
    return {};
}
Widget XmtNewLabeledObject(Widget parent, XmtInfo *info, const char *extra) {
    return {};
}
XmtStringTable *XmtGenStringTable(const char *list) {
    return {};
}
void XmtFreeStringTable(XmtStringTable *table) {}
void XmtSelectIcon(XmtObjectData *object, int n) {}
Widget AppShell;
char *pAppShellName;
Widget AppWin;
char *pAppWinName;
extern const char AppClass[];
const char AppClass[] = ",";
int BarItemCnt;
int flNoBarMenuTraversal;
Widget XmtNewMainWindow(intptr_t kind) {
    return {};
}
Widget XmtNewPromptDialog(Widget parent, intptr_t type) {
    return {};
}
Widget XmtNewMenuBar(Widget parent) {
    return {};
}
void BuildMenuBar(Widget parent, XmtInfo *bar, const char *prefix) {}
Widget XmtNewMenuBarButton(Widget parent) {
    return {};
}
Widget XmtNewMenuBarMenu(Widget parent) {
    return {};
}
Widget XmtNewTabForm(Widget parent, intptr_t pageType) {
    return {};
}
Widget XmtNewTab(XmtObjectData *form, XmtInfo *info, const char *label, int gap, int pageType) {
    return {};
}
void XmtSetTab(Widget button, XmtObjectData *form) {}
void XmtTabFormEventHandler(Widget widget, XtPointer form, XtPointer callData) {}
void XmtTab(Widget widget, XtPointer form, XEvent *event, Boolean *flContinue) {}
void XmtSelectTab(const char *form, int tab) {}
void XmtEnableTab(const char *form, int tab) {}
void XmtDisableTab(const char *form, int tab) {}
void XmtHideTab(const char *form, int tab) {}
void XmtShowTab(const char *form, int tab) {}
Widget XmtNewTabIcon(Widget form) {
    return {};
}
Widget XmtNewTabIconW(Widget form) {
    return {};
}
Widget XmtNewPicture(Widget parent) {
    return {};
}
void XmtSetPictureData(XmtPictureData *picture, const char *commands) {}
void XmtSetPictureValue(XmtPictureEntry *entry, char operation, const char *text) {}
void XmtPictureDraw(XmtObjectData *object, Window window) {}
void XmtPictureEventHandler(Widget widget, XtPointer object, XtPointer callData) {}
extern const char DrawTranslations[];
const char DrawTranslations[] = ",";
Widget XmtNewListBox(Widget parent, intptr_t flMulti) {
    return {};
}
ImageRecord *XmtNewImage(const char *file) {
    return {};
}
Widget XmtNewPixmapLabel(Widget parent) {
    return {};
}
