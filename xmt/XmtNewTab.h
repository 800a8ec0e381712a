// Compounds beyond Motif's own widgets: tab forms, pictures, list boxes; and the image keyword.
//
// A tab form x lays all its pages on top of each other in one form; raising windows shows one. Tab k consists
// of the outlined box x_BBk with the button x_Bk in it, the page x_k, and the strip x_Sk in the colour of the
// box, which joins both. Only the shown tab's box shows its outline.
//
// A picture is a drawing area on which named images lie, later ones over earlier ones, each at its position
// and shown or not. Commands change that, a comma list of an operation, a name and a text:
//
//   +  show      ^  lock: + - > have no effect
//   -  hide      ~  unlock
//   >  move, x/y    c  colour of its background pixels
//
// "*" addresses all images, "*ab" those whose name starts with ab, "ab" the first of that name. If there is
// none, the text is a new image's file and position: "+door icon/door.xpm 10 20".
#pragma once

#include "xmt/XmtNewArgs.h"
#include "xmt/XmtPixmap.h"

enum {
    XMT_TAB_GAP = 10,       // between the boxes of tabs
    XMT_PICTURE_SIZE = 100, // of a picture without images, width and height
    XMT_PICTURE_EDGE = 10   // the area is so much larger than its images
};

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

// A tab form, read at the cursor, or, under a tab form, one more tab of it. With a label one tab is made and
// its page is the result; with a list one tab a value, and the form is. pageType: XmtForm or XmtBox. sp(n) is
// the gap, id(n) numbers what is made from n - 1 on without moving the counter. Where one statement makes
// form and tabs, A(...) and s(...) are the form's alone. Uses: pNewDesc.
Widget XmtNewTabForm(Widget parent, intptr_t pageType);
// Adds a tab: its page. label is text of the description language.
Widget XmtNewTab(XmtObjectData *form, XmtInfo *info, const char *label, int gap, int pageType);
// Shows the tab with that button, or the pending one, and tells the handler if it is to hear of it. Nothing
// before the form is realized.
void XmtSetTab(Widget button, XmtObjectData *form);
void XmtTabFormEventHandler(Widget widget, XtPointer form, XtPointer callData);
// The form's first exposure: windows can be stacked from now on.
void XmtTab(Widget widget, XtPointer form, XEvent *event, Boolean *flContinue);
// Numbers out of range do nothing. Outside the main loop, or before the form is realized, the tab waits.
void XmtSelectTab(const char *form, int tab);
// Unknown forms and numbers out of range do nothing. A hidden tab leaves its place empty.
void XmtEnableTab(const char *form, int tab);
void XmtDisableTab(const char *form, int tab);
void XmtHideTab(const char *form, int tab);
void XmtShowTab(const char *form, int tab);
// What is raised with every page: a label made of the arguments at the cursor, or the object named there.
// form: the form or a widget in it. The object, or null.
Widget XmtNewTabIcon(Widget form);
Widget XmtNewTabIconW(Widget form);

// A picture, read at the cursor; L(...) are commands. Its canvas has the size of s(w,h), or else holds all
// images. The box or the drawing area. Uses: pNewDesc, WB1, pNewObjectData.
Widget XmtNewPicture(Widget parent);
// Runs commands. Null for either does nothing. Nothing is drawn.
void XmtSetPictureData(XmtPictureData *picture, const char *commands);
void XmtSetPictureValue(XmtPictureEntry *entry, char operation, const char *text);
// Draws the picture into the window; nothing before the main loop.
void XmtPictureDraw(XmtObjectData *object, Window window);
void XmtPictureEventHandler(Widget widget, XtPointer object, XtPointer callData);
extern const char DrawTranslations[];     // of drawing areas, so that keys and buttons reach them
void XmtAddDrawTranslations(Widget area); // with Tab leading on

// A list box, read at the cursor: a scrolled list x in the form x_Form, which is the result, with box and
// label if it has one. Slot 3 is the list's. Uses: pNewDesc, WB1.
Widget XmtNewListBox(Widget parent, intptr_t flMulti);

// A label that shows the bitmap file named by t(...), read at the cursor.
Widget XmtNewPixmapLabel(Widget parent);
