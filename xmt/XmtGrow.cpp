// Sizes that follow the window's.
#include "xmt/XmtGrow.h"

#include "xmt/XmtDisplay.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtUtils.h"
#include "xmt/x11.h"

#include <X11/IntrinsicP.h>
#include <algorithm>

// ---- heights

// Every widget that hangs from the upper one lets go of it; the upper one stands on the first of them.
static Widget StandOnNext(Widget upper) {
    WidgetList children = nullptr;
    Cardinal count = 0;
    Widget first = nullptr;
    XtVaGetValues(XtParent(upper), XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++) {
        unsigned char attachment = XmATTACH_NONE;
        Widget above = nullptr;
        int offset = 0;
        XtVaGetValues(children[i], XmNtopAttachment, &attachment, XmNtopWidget, &above, XmNtopOffset, &offset,
                      nullptr);
        if (attachment != XmATTACH_WIDGET || above != upper) continue;
        XtVaSetValues(children[i], XmNbottomAttachment, XmATTACH_FORM, XmNtopAttachment, XmATTACH_NONE,
                      XmNtopWidget, nullptr, nullptr);
        if (first) continue;
        first = children[i];
        XtVaSetValues(upper, XmNbottomAttachment, XmATTACH_WIDGET, XmNbottomWidget, first, XmNbottomOffset,
                      offset, nullptr);
    }
    return first;
}

void XmtLetGrow(const char *object) {
    Widget row = XmtGetWidget(object);
    if (!row || !XmIsForm(XtParent(row))) return;
    XtVaSetValues(row, XmNbottomAttachment, XmATTACH_FORM, nullptr);
    while (row) row = StandOnNext(row);
}

// A row column leaves its children the heights they have.
static void FillHeight(Widget box, XtPointer child, XEvent *event, Boolean *) {
    Position y = 0;
    Dimension whole = 0, margin = 0;
    if (event->type != ConfigureNotify) return;
    XtVaGetValues(box, XmNheight, &whole, XmNmarginHeight, &margin, nullptr);
    XtVaGetValues(static_cast<Widget>(child), XmNy, &y, nullptr);
    if (whole > y + margin) XtVaSetValues(static_cast<Widget>(child), XmNheight, whole - y - margin, nullptr);
}

void XmtLetListGrow(const char *list) {
    Widget child = XmtGetWidget(list);
    while (child && XtParent(child) && !XmIsRowColumn(XtParent(child))) child = XtParent(child);
    if (child && XtParent(child))
        XtAddEventHandler(XtParent(child), StructureNotifyMask, 0, FillHeight, child);
}

void XmtSetLeastSize() {
    Dimension width = 0, height = 0;
    XtVaGetValues(AppShell, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaSetValues(AppShell, XmNminWidth, std::min<int>(width, WidthOfScreen(XtScreen(AppShell))),
                  XmNminHeight, std::min<int>(height, HeightOfScreen(XtScreen(AppShell))), nullptr);
}

// ---- pictures

struct Stretched {
    Pixmap original, shown;        // shown: as wide as the label was last, or the original
    unsigned width, height, depth; // of the original
    int column;
};

static Pixmap MakeWider(const Stretched &picture, unsigned width) {
    Pixmap wide =
        XCreatePixmap(AppDisplay, RootWindowOfScreen(AppScreen), width, picture.height, picture.depth);
    GC gc = XCreateGC(AppDisplay, wide, 0, nullptr);
    auto column = static_cast<unsigned>(picture.column);
    unsigned more = width - picture.width;
    auto copy = [&](unsigned from, unsigned count, unsigned to) {
        XCopyArea(AppDisplay, picture.original, wide, gc, static_cast<int>(from), 0, count, picture.height,
                  static_cast<int>(to), 0);
    };
    copy(0, column, 0);
    for (unsigned i = 0; i < more; i++) copy(column, 1, column + i);
    copy(column, picture.width - column, column + more);
    XFreeGC(AppDisplay, gc);
    return wide;
}

static int RoomForPicture(Widget label) {
    Dimension width = 0, margin = 0, shadow = 0, highlight = 0;
    XtVaGetValues(label, XmNwidth, &width, XmNmarginWidth, &margin, XmNshadowThickness, &shadow,
                  XmNhighlightThickness, &highlight, nullptr);
    return width - 2 * (margin + shadow + highlight);
}

static void StretchPicture(Widget label, XtPointer data, XEvent *event, Boolean *) {
    auto *picture = static_cast<Stretched *>(data);
    if (event->type != ConfigureNotify) return;
    int room = RoomForPicture(label);
    Pixmap old = picture->shown;
    bool flWider = room > static_cast<int>(picture->width);
    picture->shown = flWider ? MakeWider(*picture, static_cast<unsigned>(room)) : picture->original;
    XtVaSetValues(label, XmNlabelPixmap, picture->shown, nullptr);
    if (old != picture->original) XFreePixmap(AppDisplay, old);
}

static void ForgetPicture(Widget, XtPointer data, XtPointer) {
    delete static_cast<Stretched *>(data);
}

void XmtStretchPicture(const char *label, int x) {
    Widget widget = XmtGetWidget(label);
    Pixmap pixmap = XmUNSPECIFIED_PIXMAP;
    if (!widget || !XmIsLabel(widget)) return;
    XtVaGetValues(widget, XmNlabelPixmap, &pixmap, nullptr);
    Window root;
    int left, top;
    unsigned width, height, border, depth;
    if (pixmap == XmUNSPECIFIED_PIXMAP ||
        !XGetGeometry(AppDisplay, pixmap, &root, &left, &top, &width, &height, &border, &depth))
        return;
    int column = std::clamp(XmtScaled(x), 0, static_cast<int>(width) - 1);
    auto *picture = new Stretched{pixmap, pixmap, width, height, depth, column};
    XtVaSetValues(widget, XmNrecomputeSize, 0, XmNalignment, XmALIGNMENT_BEGINNING, XmNrightAttachment,
                  XmATTACH_FORM, nullptr);
    XtAddEventHandler(widget, StructureNotifyMask, 0, StretchPicture, picture);
    XtAddCallback(widget, XmNdestroyCallback, ForgetPicture, picture);
}

// ---- titles

// The title keeps its box's width on the right of what is pushed out on the left. The box puts it back when
// its text changes.
static void MoveTitle(Widget bar, Widget title) {
    Position x = 0, y = 0;
    Dimension width = 0, height = 0, border = 0, room = 0, margin = 0;
    int hidden = 0;
    if (XtIsManaged(bar)) XtVaGetValues(bar, XmNvalue, &hidden, nullptr);
    XtVaGetValues(title, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, XmNborderWidth, &border,
                  nullptr);
    XtVaGetValues(XtParent(title), XmNwidth, &room, XmNmarginWidth, &margin, nullptr);
    int left = margin - hidden, wanted = room - left - margin;
    if (wanted < 1 || (x == left && width >= wanted)) return;
    XtConfigureWidget(title, static_cast<Position>(left), y, static_cast<Dimension>(wanted), height, border);
}

static void FollowBar(Widget bar, XtPointer title, XtPointer) {
    MoveTitle(bar, static_cast<Widget>(title));
}

// The bar that goes when all rows fit has no value to hear of.
static void FollowSize(Widget widget, XtPointer other, XEvent *event, Boolean *) {
    if (event->type != ConfigureNotify && event->type != UnmapNotify) return;
    auto second = static_cast<Widget>(other);
    bool flTitle = XmIsLabel(widget);
    MoveTitle(flTitle ? second : widget, flTitle ? widget : second);
}

void XmtScrollTitle(const char *list, const char *title) {
    Widget rows = XmtGetWidget(list), label = XmtGetWidget(title), bar = nullptr;
    if (!rows || !label || !XmIsLabel(label) || !XmIsScrolledWindow(XtParent(rows))) return;
    XtVaGetValues(XtParent(rows), XmNhorizontalScrollBar, &bar, nullptr);
    if (!bar) return;
    XtAddCallback(bar, XmNvalueChangedCallback, FollowBar, label);
    XtAddCallback(bar, XmNdragCallback, FollowBar, label);
    for (const char *resource : {XmNincrementCallback, XmNdecrementCallback, XmNpageIncrementCallback,
                                 XmNpageDecrementCallback, XmNtoTopCallback, XmNtoBottomCallback})
        XtAddCallback(bar, resource, FollowBar, label);
    XtAddEventHandler(label, StructureNotifyMask, 0, FollowSize, bar);
    XtAddEventHandler(bar, StructureNotifyMask, 0, FollowSize, label);
}
