// Tab forms, pictures composed of images, list boxes, the image keyword.
#pragma once

#include "xmt/XmtNewArgs.h"
#include "xmt/XmtPixmap.h"

struct XmtTabEntry {
    Widget button;
    Widget box;
    Widget strip;
    Widget page;
};
// Extension of a tab form. The object's value is the shown tab from 1.
struct XmtTabData {
    int count;
    int pending;        // tab from 1 to select at the first exposure, 0 for none
    bool flCallback;    // CB(tab): the handler hears of changes
    char *icon;         // managed name of an object raised with every page, or null
    XmtTabEntry *tabs;  // managed
    int selectedReason; // 0 until the first exposure, then 1
};
struct XmtPictureEntry {
    char *name; // managed
    ImageRecord *image;
    int x, y;
    bool flVisible;
    bool flLocked;
    Pixel colour;
};
// Extension of a picture.
struct XmtPictureData {
    XmtPictureEntry *images; // managed
    int count;
    XImage *canvas;
    GC gc; // made at the first drawing
    Pixel background;
};

Widget XmtNewTabForm(Widget parent, intptr_t pageType);
Widget XmtNewTab(XmtObjectData *form, XmtInfo *info, const char *label, int gap, int pageType);
void XmtSetTab(Widget button, XmtObjectData *form);
void XmtTabFormEventHandler(Widget widget, XtPointer form, XtPointer callData);
void XmtTab(Widget widget, XtPointer form, XEvent *event, Boolean *flContinue);
// Numbers out of range do nothing. Outside the main loop, or before the form is realized, the tab waits.
void XmtSelectTab(const char *form, int tab);
void XmtEnableTab(const char *form, int tab);
void XmtDisableTab(const char *form, int tab);
void XmtHideTab(const char *form, int tab);
void XmtShowTab(const char *form, int tab);
Widget XmtNewTabIcon(Widget form);
Widget XmtNewTabIconW(Widget form);
Widget XmtNewPicture(Widget parent);
// Runs picture commands, a comma list such as "+door file.xpm 10 20,-lamp".
void XmtSetPictureData(XmtPictureData *picture, const char *commands);
void XmtSetPictureValue(XmtPictureEntry *entry, char operation, const char *text);
void XmtPictureDraw(XmtObjectData *object, Window window);
void XmtPictureEventHandler(Widget widget, XtPointer object, XtPointer callData);
extern const char DrawTranslations[]; // of drawing areas, so that keys and buttons reach them
Widget XmtNewListBox(Widget parent, intptr_t flMulti);
// The entry of XmtPixmaps, or null. With null reads name and file or "!" data at the cursor.
ImageRecord *XmtNewImage(const char *file);
Widget XmtNewPixmapLabel(Widget parent);
