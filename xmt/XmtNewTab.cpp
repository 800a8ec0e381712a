// Makes tab forms, pictures, list boxes and images.
#include "xmt/XmtNewTab.h"

#include "common/MemMgr.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtValue.h"

#include <algorithm>
#include <cctype>
#include <cstring>

const char DrawTranslations[] = "#replace\n"
                                "<Key>Return:DrawingAreaInput() ManagerParentActivate()\n"
                                "<Key>Return:DrawingAreaInput() ManagerGadgetSelect()\n"
                                "<Key>osfActivate:DrawingAreaInput() ManagerParentActivate()\n"
                                "<Key>osfCancel:DrawingAreaInput() ManagerParentCancel()\n"
                                "<Key>osfHelp:DrawingAreaInput() ManagerGadgetHelp()\n"
                                "<Key>space:DrawingAreaInput() ManagerGadgetSelect()\n"
                                "<Key>osfSelect:DrawingAreaInput() ManagerGadgetSelect()\n"
                                "<KeyDown>:DrawingAreaInput() ManagerGadgetKeyInput()\n"
                                "<KeyUp>:DrawingAreaInput()\n"
                                "<BtnMotion>:DrawingAreaInput() ManagerGadgetButtonMotion()\n"
                                "<Motion>:DrawingAreaInput() ManagerGadgetButtonMotion()\n"
                                "<Btn1Down>:DrawingAreaInput() ManagerGadgetArm()\n"
                                "<Btn1Up>:DrawingAreaInput() ManagerGadgetActivate()\n"
                                "<Btn2Down>:DrawingAreaInput() ManagerGadgetDrag()\n"
                                "<BtnDown>:DrawingAreaInput()\n"
                                "<BtnUp>:DrawingAreaInput()";

// In front of them: the area, which shows no focus, lets the user go on.
static const char TabTranslations[] = "Shift<Key>Tab:DrawingAreaInput() ManagerGadgetPrevTabGroup()\n"
                                      "<Key>Tab:DrawingAreaInput() ManagerGadgetNextTabGroup()";

void XmtAddDrawTranslations(Widget area) {
    XmtAddTranslations(area, DrawTranslations, true);
    XmtAddTranslations(area, TabTranslations, true);
}

// One more element, cleared, at the end of a managed array.
template <class T>
static T *Extend(T **array, int count) {
    size_t size = sizeof(T) * static_cast<size_t>(count + 1);
    void *grown = *array ? AdjustMem(*array, size) : GetMem(size);
    if (!grown) XmtSysError("%s", OutOfMem);
    *array = static_cast<T *>(grown);
    (*array)[count] = T{};
    return *array + count;
}

template <class T>
static T *NewRecord() {
    T *record = nullptr;
    return Extend(&record, 0);
}

// ---- tabs: making them

static XmtTabData *TabsOf(const XmtObjectData *form) {
    if (!form || form->type != XmtTabForm) return nullptr;
    return static_cast<XmtTabData *>(form->extension);
}

static Pixel PixelOf(Widget widget, const char *resource) {
    Pixel pixel = 0;
    XtVaGetValues(widget, resource, &pixel, nullptr);
    return pixel;
}

// As a description has it.
static int BorderWidth(Widget widget) {
    Dimension width = 0;
    XtVaGetValues(widget, XmNborderWidth, &width, nullptr);
    return XmtUnscaled(width);
}

// The names of one tab's parts, and what stands between them and their own arguments.
struct TabTexts {
    std::string form;
    std::string number;
    const XmtInfo *info;
};

static std::string Part(const TabTexts &tab, const char *tail) {
    return tab.form + tail + tab.number;
}

static Widget NewTabBox(const TabTexts &tab, const XmtTabData *tabs, int gap, Widget form) {
    std::string place = " A(tf,lf 20)";
    if (tabs->count > 0)
        place =
            " A(tf,lw " + tab.form + "_BB" + std::to_string(tabs->count) + " " + std::to_string(gap) + ")";
    std::string text = Part(tab, "_BB") + " m(4,4) bo(2)" + GenDesc(tab.info, 1, nullptr) + place;
    Widget box = XmtNewWidget(text.c_str(), XmtBox, form, nullptr);
    if (tabs->count > 0) XtVaSetValues(box, XmNborderColor, PixelOf(box, XmNbackground), nullptr);
    return box;
}

// It lies across the lower border of the box, from edge to edge inside its side borders.
static Widget NewTabStrip(const TabTexts &tab, Widget box, Widget form) {
    std::string name = Part(tab, "_BB"), width = std::to_string(BorderWidth(box));
    std::string text = Part(tab, "_S") + " s(0," + std::to_string(3 * BorderWidth(box)) + ") bo(0) A(tw " +
                       name + " -" + std::to_string(2 * BorderWidth(box)) + ",lwo " + name + " " + width +
                       ",rwo " + name + " " + width + ")";
    Widget strip = XmtNewWidget(text.c_str(), XmtBox, form, nullptr);
    Pixel pixel = PixelOf(box, XmNbackground);
    XtVaSetValues(strip, XmNbackground, pixel, XmNborderColor, pixel, XmNforeground, pixel, nullptr);
    return strip;
}

static Widget NewTabButton(const TabTexts &tab, const char *label, Widget box, XmtObjectData *form) {
    std::string text = Part(tab, "_B") + " l(" + label + ") " + GenDesc(tab.info, 2, nullptr);
    Widget button = XmtNewWidget(text.c_str(), XmtPushBut, box, nullptr);
    XtAddCallback(button, XmNactivateCallback, XmtTabFormEventHandler, form);
    return button;
}

// All pages are attached alike, so that they lie on top of each other.
static Widget NewTabPage(const TabTexts &tab, int pageType, Widget box, Widget form) {
    std::string text = Part(tab, "_") + " m(4,4) bo(2)" + GenDesc(tab.info, 3, nullptr) + " A(tw " +
                       tab.form + "_BB1 - " + std::to_string(BorderWidth(box)) + ",lf,rf,bf)";
    return XmtNewWidget(text.c_str(), pageType, form, nullptr);
}

Widget XmtNewTab(XmtObjectData *form, XmtInfo *info, const char *label, int gap, int pageType) {
    XmtTabData *tabs = TabsOf(form);
    if (!tabs) return nullptr;
    TabTexts tab = {form->name, std::to_string(tabs->count + 1), info};
    XmtTabEntry *entry = Extend(&tabs->tabs, tabs->count);
    entry->box = NewTabBox(tab, tabs, gap, form->widget);
    entry->strip = NewTabStrip(tab, entry->box, form->widget);
    entry->button = NewTabButton(tab, label, entry->box, form);
    entry->page = NewTabPage(tab, pageType, entry->box, form->widget);
    if (tabs->count++ == 0) XtAddEventHandler(form->widget, ExposureMask, 0, XmtTab, form);
    return entry->page;
}

// What the arguments of one statement say about the form itself.
struct TabArgs {
    int gap = XMT_TAB_GAP;
    int savedId = 0;
    bool flId = false;
    bool flHide = false;
    bool flCallback = false;
};

static bool HasValue(const char *list, const char *word) {
    for (XmtValues value(list); value.Next();)
        if (value.value == word) return true;
    return false;
}

static void TakeTabArgs(XmtInfo *info, TabArgs *args, Widget *parent) {
    std::string value;
    args->flId = XmtTakeArg(info, "id", &value);
    args->savedId = AppCBValue;
    if (args->flId) AppCBValue = atoi(value.c_str()) - 1;
    args->flHide = XmtTakeArg(info, "H", &value);
    if (XmtTakeArg(info, "sp", &value)) args->gap = atoi(value.c_str());
    args->flCallback = XmtTakeArg(info, "CB", &value) && HasValue(value.c_str(), "tab");
    if (!XmtTakeArg(info, "P", &value)) return;
    Widget named = XmtGetWidget(value.c_str());
    if (named) *parent = named;
}

static XmtObjectData *NewTabFormObject(XmtInfo *info, Widget parent, const TabArgs &args) {
    std::string text = GenDesc(info, GEN_NAME | GEN_FORMAT, nullptr);
    if (!XmtNewWidget(text.c_str(), XmtTabForm, parent, nullptr)) return nullptr;
    XmtTabData *tabs = NewRecord<XmtTabData>();
    tabs->flCallback = args.flCallback;
    pNewObjectData->extension = tabs;
    pNewObjectData->value = 1;
    return pNewObjectData;
}

static Widget MakeTabs(XmtObjectData *form, XmtInfo *info, int gap, int pageType) {
    if (!info->list && info->label.empty()) return form->widget;
    if (!info->list) return XmtNewTab(form, info, info->label.c_str(), gap, pageType);
    flDefaultTabGroup = 1;
    for (XmtValues label(info->list); label.Next();)
        XmtNewTab(form, info, label.value.c_str(), gap, pageType);
    flDefaultTabGroup = 0;
    return form->widget;
}

// Place and size are the form's: the tabs made by the same statement have their own.
static XmtObjectData *NewForm(XmtInfo *info, Widget parent, const TabArgs &args) {
    std::string none;
    XmtObjectData *form = NewTabFormObject(info, parent, args);
    while (XmtTakeArg(info, "A", &none) || XmtTakeArg(info, "s", &none)) {
    }
    return form;
}

static Widget MakeTabForm(XmtInfo *info, Widget parent, const TabArgs &args, int pageType) {
    XmtObjectData *form = XmtFindWidget(parent);
    if (!TabsOf(form) || info->list) form = NewForm(info, parent, args);
    if (!form) return nullptr;
    Widget made = MakeTabs(form, info, args.gap, pageType);
    XtManageChild(made);
    if (args.flHide) XtUnmanageChild(made);
    return made;
}

Widget XmtNewTabForm(Widget parent, intptr_t pageType) {
    XmtInfo info;
    TabArgs args;
    info.type = XmtTabForm;
    XmtFillInfoDesc(&info);
    TakeTabArgs(&info, &args, &parent);
    Widget made = parent ? MakeTabForm(&info, parent, args, static_cast<int>(pageType)) : nullptr;
    if (args.flId) AppCBValue = args.savedId;
    XmtClearInfo(&info);
    return made;
}

// ---- tabs: showing them

static void Stack(Widget widget, bool flRaise) {
    if (!widget || !XtIsRealized(widget)) return;
    if (flRaise)
        XRaiseWindow(XtDisplay(widget), XtWindow(widget));
    else
        XLowerWindow(XtDisplay(widget), XtWindow(widget));
}

static void ShowEntry(const XmtObjectData *form, const XmtTabEntry *entry, const char *icon) {
    Stack(entry->page, true);
    Stack(entry->strip, true);
    if (icon) Stack(XmtGetWidget(icon), true);
    XtVaSetValues(entry->box, XmNborderColor, PixelOf(form->widget, XmNborderColor), nullptr);
}

static void CoverEntry(const XmtTabEntry *entry) {
    Stack(entry->page, false);
    Stack(entry->strip, false);
    XtVaSetValues(entry->box, XmNborderColor, PixelOf(entry->box, XmNbackground), nullptr);
}

static void TellTabChange(const XmtObjectData *form, const XmtTabData *tabs) {
    if (!tabs->flCallback || !form->handler) return;
    XmtCallData data = {};
    data.name = form->name;
    data.id = form->id;
    data.reason = tabs->selectedReason;
    data.value = form->value;
    data.widget = tabs->tabs[form->value - 1].button;
    data.appData = form->appData;
    form->handler(&data);
}

// The number from 1 of the tab to show, 0 for none.
static int WantedTab(const XmtTabData *tabs, Widget button) {
    if (tabs->pending > 0) return tabs->pending;
    for (int i = 0; i < tabs->count; i++)
        if (tabs->tabs[i].button == button) return i + 1;
    return 0;
}

void XmtSetTab(Widget button, XmtObjectData *form) {
    XmtTabData *tabs = TabsOf(form);
    if (!tabs || !XtIsRealized(form->widget)) return;
    int wanted = WantedTab(tabs, button);
    if (wanted == 0) return;
    tabs->pending = 0;
    form->value = wanted;
    for (int i = 0; i < tabs->count; i++) {
        if (i + 1 == wanted)
            ShowEntry(form, tabs->tabs + i, tabs->icon);
        else
            CoverEntry(tabs->tabs + i);
    }
    TellTabChange(form, tabs);
}

void XmtTabFormEventHandler(Widget widget, XtPointer form, XtPointer callData) {
    int reason = static_cast<XmAnyCallbackStruct *>(callData)->reason;
    if (reason == XmCR_ACTIVATE || reason == XmCR_SINGLE_SELECT)
        XmtSetTab(widget, static_cast<XmtObjectData *>(form));
}

// Removed before anything else: the handler may dispatch further exposures. A tab that was selected between
// the form's realization and now stays.
void XmtTab(Widget widget, XtPointer data, XEvent *event, Boolean *flContinue) {
    XmtObjectData *form = static_cast<XmtObjectData *>(data);
    XmtTabData *tabs = TabsOf(form);
    *flContinue = 1;
    if (event->type != Expose || !tabs) return;
    XtRemoveEventHandler(widget, ExposureMask, 0, XmtTab, data);
    tabs->selectedReason = 0;
    XmtSetTab(tabs->tabs[form->value - 1].button, form);
    tabs->selectedReason = 1;
}

// The entry of a tab counted from 1, or null. *form becomes the form's record.
static XmtTabEntry *FindTab(const char *name, int tab, XmtObjectData **form) {
    *form = XmtFindObject(name);
    XmtTabData *tabs = TabsOf(*form);
    return tabs && tab >= 1 && tab <= tabs->count ? tabs->tabs + tab - 1 : nullptr;
}

void XmtSelectTab(const char *name, int tab) {
    XmtObjectData *form;
    const XmtTabEntry *entry = FindTab(name, tab, &form);
    if (!entry) return;
    TabsOf(form)->pending = flInEventLoop && XtIsRealized(form->widget) ? 0 : tab;
    if (!TabsOf(form)->pending) XmtSetTab(entry->button, form);
}

static void SetTabSensitive(const char *name, int tab, Boolean flSensitive) {
    XmtObjectData *form;
    const XmtTabEntry *entry = FindTab(name, tab, &form);
    if (!entry) return;
    XtSetSensitive(entry->button, flSensitive);
    XmUpdateDisplay(entry->button);
}

void XmtEnableTab(const char *form, int tab) {
    SetTabSensitive(form, tab, 1);
}

void XmtDisableTab(const char *form, int tab) {
    SetTabSensitive(form, tab, 0);
}

static void SetTabManaged(const char *name, int tab, void (*manage)(Widget)) {
    XmtObjectData *form;
    const XmtTabEntry *entry = FindTab(name, tab, &form);
    if (!entry) return;
    manage(entry->box);
    manage(entry->strip);
    manage(entry->page);
}

void XmtHideTab(const char *form, int tab) {
    SetTabManaged(form, tab, XtUnmanageChild);
}

void XmtShowTab(const char *form, int tab) {
    SetTabManaged(form, tab, XtManageChild);
}

static XmtObjectData *FormAround(Widget widget) {
    for (; widget; widget = XtParent(widget)) {
        XmtObjectData *object = XmtFindWidget(widget);
        if (TabsOf(object)) return object;
    }
    return nullptr;
}

static void SetTabIcon(Widget widget, const char *name) {
    XmtObjectData *form = FormAround(widget);
    if (form && *name) XmtReplaceText(&TabsOf(form)->icon, name);
}

Widget XmtNewTabIcon(Widget form) {
    Widget label = XmtNewSimpleObject(XmtLabel, form, nullptr);
    if (label) SetTabIcon(form, pNewObjectData->name);
    return label;
}

Widget XmtNewTabIconW(Widget form) {
    pNewDesc += strspn(pNewDesc, " \t;");
    std::string name(pNewDesc, strcspn(pNewDesc, " \t;\r\n"));
    pNewDesc += name.size();
    SetTabIcon(form, name.c_str());
    return XmtGetWidget(name.c_str());
}

// ---- pictures: commands

void XmtSetPictureValue(XmtPictureEntry *entry, char operation, const char *text) {
    char flSuccess;
    bool flFree = !entry->flLocked;
    switch (operation) {
    case '+': entry->flVisible |= flFree; break;
    case '-': entry->flVisible &= !flFree; break;
    case '>':
        if (flFree) sscanf(text, "%i/%i", &entry->x, &entry->y);
        break;
    case '^': entry->flLocked = true; break;
    case '~': entry->flLocked = false; break;
    case 'c': entry->colour = GenColor(text, 0, &flSuccess); break;
    default: break; // no operation of the language
    }
}

// One command, taken apart.
struct PictureCommand {
    char operation;
    std::string name;
    std::string text;
};

static PictureCommand SplitCommand(const std::string &command) {
    const char *at = command.c_str();
    at += strspn(at, " \t\r\n");
    PictureCommand parts = {*at, "", ""};
    if (*at) at++;
    if (*at == '*') parts.name = *at++;
    while (isalnum(static_cast<unsigned char>(*at)) || *at == '_') parts.name += *at++;
    parts.text = XmtDropEscapes(at + strspn(at, " \t"), false);
    return parts;
}

static bool NameMatches(const char *entry, const std::string &name) {
    if (name[0] == '*') return strncmp(entry, name.c_str() + 1, name.size() - 1) == 0;
    return name == entry;
}

static bool ChangeEntries(XmtPictureData *picture, const PictureCommand &command) {
    bool flFound = false;
    for (int i = 0; i < picture->count; i++) {
        if (!NameMatches(picture->images[i].name, command.name)) continue;
        XmtSetPictureValue(picture->images + i, command.operation, command.text.c_str());
        flFound = true;
        if (command.name[0] != '*') break;
    }
    return flFound;
}

// The text: a file and a position. Images of pictures keep their transparent pixels.
static void AddEntry(XmtPictureData *picture, const PictureCommand &command) {
    int x = 0, y = 0;
    size_t end = command.text.find_first_of(" \t");
    std::string file = command.text.substr(0, end);
    if (end != file.npos) sscanf(command.text.c_str() + end, "%i %i", &x, &y);
    int saved = flSetColorNone;
    flSetColorNone = 1;
    ImageRecord *image = XmtNewImage(file.c_str());
    flSetColorNone = saved;
    if (!image) return;
    XmtPictureEntry *entry = Extend(&picture->images, picture->count++);
    entry->name = XmtSaveStr_(command.name.c_str());
    entry->image = image;
    entry->x = XmtScaled(x);
    entry->y = XmtScaled(y);
    entry->colour = picture->background;
    XmtSetPictureValue(entry, command.operation, "");
}

void XmtSetPictureData(XmtPictureData *picture, const char *commands) {
    if (!picture) return;
    flNewColorSet = 1;
    for (XmtValues value(commands); value.Next();) {
        PictureCommand command = SplitCommand(value.value);
        if (command.operation && !ChangeEntries(picture, command)) AddEntry(picture, command);
    }
}

// ---- pictures: making and drawing

static bool SameText(const char *a, const char *b) {
    return strcmp(a, b) == 0;
}

// The arguments are read once more for what the picture needs to know of them; nothing else may come of it.
static void ReadPictureArgs(const XmtInfo *info, XmtInfo *scratch) {
    int savedId = SpecifiedAppCBValue, savedHide = flHideObject;
    std::string text = GenDesc(info, GEN_NAME | 1, nullptr);
    XmtCursor cursor(text.c_str());
    XmtFillInfo(scratch, 0);
    SpecifiedAppCBValue = savedId;
    flHideObject = savedHide;
}

static bool HasBackground(const XmtInfo *scratch) {
    for (int i = 0; i < scratch->argCount; i++)
        if (SameText(scratch->args[i].name, XmNbackground)) return true;
    return false;
}

static void AddSize(XmtInfo *info, int width, int height) {
    std::string general = info->slots[0] ? info->slots[0] : "";
    general += " s(" + std::to_string(XmtUnscaled(width) + XMT_PICTURE_EDGE) + "," +
               std::to_string(XmtUnscaled(height) + XMT_PICTURE_EDGE) + ")";
    XmtReplaceText(&info->slots[0], general.c_str());
}

static void MeasureImages(const XmtPictureData *picture, int *width, int *height) {
    *width = *height = picture->count ? 1 : XmtScaled(XMT_PICTURE_SIZE);
    for (int i = 0; i < picture->count; i++) {
        const XmtPictureEntry *entry = picture->images + i;
        *width = std::max(*width, entry->x + entry->image->Image->width);
        *height = std::max(*height, entry->y + entry->image->Image->height);
    }
}

static void MakeCanvas(XmtPictureData *picture, XmtInfo *info, const XmtInfo *scratch) {
    int width = scratch->width, height = scratch->height;
    if (width < 1 || height < 1) {
        MeasureImages(picture, &width, &height);
        AddSize(info, width, height);
    }
    picture->canvas = XmtMakeImage(width, height);
}

// Without a colour of its own it takes its parent's; the area around the canvas then has to follow.
static XmtPictureData *NewPictureData(XmtInfo *info, Widget parent, bool *flColour) {
    XmtPictureData *picture = NewRecord<XmtPictureData>();
    XmtInfo scratch;
    scratch.type = XmtPicture;
    ReadPictureArgs(info, &scratch);
    *flColour = HasBackground(&scratch);
    picture->background = *flColour ? scratch.colours[XMT_BG] : PixelOf(parent, XmNbackground);
    XmtSetPictureData(picture, info->list);
    MakeCanvas(picture, info, &scratch);
    XmtClearInfo(&scratch);
    return picture;
}

// The callback keys are the area's alone: box and label, which share the general text, have no such
// callbacks.
static Widget MakePicture(XmtInfo *info, Widget parent) {
    std::string callbacks, keys;
    bool flColour;
    XmtPictureData *picture = NewPictureData(info, parent, &flColour);
    XmtTakeArg(info, "CB", &callbacks);
    Widget made = XmtNewLabeledObject(parent, info, " Srp(n)");
    XmtObjectData *object = pNewObjectData;
    if (!object) return nullptr;
    object->extension = picture;
    if (!flColour) XtVaSetValues(object->widget, XmNbackground, picture->background, nullptr);
    SetCallBack(object, "pe");
    SetCallBack(object, callbacks.c_str());
    XmtAddDrawTranslations(object->widget);
    if (XmtPeekArg(info, "k", 3, &keys))
        XmtAddTranslations(object->widget, XmtDropEscapes(keys, true).c_str(), false);
    XtManageChild(object->widget);
    return made == parent ? object->widget : made;
}

// P(...) stays in the text, for the parts; it is looked at here because the picture needs a parent's colours.
static Widget NamedParent(const XmtInfo *info, Widget parent) {
    std::string name;
    if (!XmtPeekArg(info, "P", 1, &name)) return parent;
    Widget named = XmtGetWidget(name.c_str());
    return named ? named : parent;
}

Widget XmtNewPicture(Widget parent) {
    XmtInfo info;
    std::string none;
    info.type = XmtPicture;
    XmtFillInfoDesc(&info);
    bool flHide = XmtTakeArg(&info, "H", &none);
    parent = NamedParent(&info, parent);
    Widget made = parent ? MakePicture(&info, parent) : nullptr;
    if (made && flHide) XtUnmanageChild(made);
    XmtClearInfo(&info);
    return made;
}

static void MakeGC(XmtPictureData *picture, Window window) {
    XGCValues values = {};
    values.function = GXcopy;
    values.plane_mask = AllPlanes;
    picture->gc = XCreateGC(AppDisplay, window, GCFunction | GCPlaneMask, &values);
}

void XmtPictureDraw(XmtObjectData *object, Window window) {
    if (!flInEventLoop || !window || !object || object->type != XmtPicture || !object->extension) return;
    XmtPictureData *picture = static_cast<XmtPictureData *>(object->extension);
    XImage *canvas = picture->canvas;
    if (!canvas) return;
    if (!picture->gc) MakeGC(picture, window);
    XmtClearImage(canvas, picture->background);
    for (int i = 0; i < picture->count; i++) {
        const XmtPictureEntry *entry = picture->images + i;
        if (entry->flVisible) XmtCopyImage(entry->image->Image, canvas, entry->x, entry->y, entry->colour);
    }
    XPutImage(AppDisplay, window, picture->gc, canvas, 0, 0, 0, 0, static_cast<unsigned>(canvas->width),
              static_cast<unsigned>(canvas->height));
}

void XmtPictureEventHandler(Widget, XtPointer object, XtPointer callData) {
    auto *drawing = static_cast<XmDrawingAreaCallbackStruct *>(callData);
    if (drawing->reason == XmCR_EXPOSE) XmtPictureDraw(static_cast<XmtObjectData *>(object), drawing->window);
}

// ---- list boxes

static void MakeList(XmtInfo *info, Widget form, bool flMulti) {
    std::string text = GenDesc(info, GEN_NAME | GEN_FORMAT | 3, " A(lf,tf,bf)");
    text += flMulti ? " Sp(m)" : " Sp(s)";
    if (info->list) text += std::string(" L(") + info->list + ")";
    text += ";";
    Widget list = XmtNewWidget(text.c_str(), flMulti ? XmtListBoxMS : XmtListBox, form,
                               flMulti ? XmNmultipleSelectionCallback : XmNsingleSelectionCallback);
    // Return and a double click light a row and call nothing else.
    if (list) XmtConnect(pNewObjectData, XmNdefaultActionCallback);
}

Widget XmtNewListBox(Widget parent, intptr_t flMulti) {
    XmtInfo info;
    std::string none;
    XmtFillInfoDesc(&info);
    bool flHide = XmtTakeArg(&info, "H", &none);
    parent = XmtNewLabeledObject(parent, &info, nullptr);
    std::string text = GenDesc(&info, GEN_NAME | GEN_FORMAT, "_Form");
    Widget form = XmtNewWidget(text.c_str(), AUX_FORM, parent, nullptr);
    MakeList(&info, form, flMulti != 0);
    if (flHide && form) XtUnmanageChild(WB1 ? WB1 : form);
    XmtClearInfo(&info);
    return form;
}

// ---- labels

Widget XmtNewPixmapLabel(Widget parent) {
    XmtInfo info;
    info.type = XmtLabel;
    XmtFillInfo(&info, XMT_FILL_RAW_LABEL);
    ::Pixmap pixmap = XmUNSPECIFIED_PIXMAP;
    if (parent)
        pixmap = XmGetPixmap(XtScreen(parent), info.text.data(), info.colours[XMT_FG], info.colours[XMT_BG]);
    XmtAddArg(&info, XmNlabelType, XmPIXMAP);
    if (pixmap != XmUNSPECIFIED_PIXMAP) XmtAddArg(&info, XmNlabelPixmap, pixmap);
    XmtAddArg(&info, XmNtraversalOn, 0);
    Widget label = nullptr;
    if (parent)
        label = XmCreateLabel(parent, info.name.data(), info.args, static_cast<Cardinal>(info.argCount));
    if (label) XmtNewData(info.name.c_str(), XmtLabel, label);
    if (label) XtManageChild(label);
    XmtClearInfo(&info);
    return label;
}
