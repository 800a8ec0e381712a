// The yardstick of the program's start: the widgets of the main window, of the display window and of "About",
// made by hand with Motif's own calls. Runs in the tool directory, where the pictures are.
#include "xmt/x11.h"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

using Resource = std::pair<const char *, XtArgVal>;
using Maker = Widget (*)(Widget, char *, ArgList, Cardinal);

static Display *Server;
static XmFontList Plain, Bold;
static Pixel White, Black, Grey, LightGrey, LightBlue;

static void Ignore(Widget, XtPointer, XtPointer) {}

static XtArgVal Word(const void *pointer) {
    return reinterpret_cast<XtArgVal>(pointer);
}

static Pixel Colour(const char *name) {
    XColor screen, exact;
    XAllocNamedColor(Server, DefaultColormap(Server, DefaultScreen(Server)), name, &screen, &exact);
    return screen.pixel;
}

static XmFontList LoadFont(const char *name) {
    return XmFontListCreate(XLoadQueryFont(Server, name), XmFONTLIST_DEFAULT_TAG);
}

static Widget Make(Maker make, Widget parent, const char *name, const std::vector<Resource> &resources,
                   bool flManaged = true) {
    std::vector<Arg> args;
    for (const Resource &resource : resources)
        args.push_back({const_cast<char *>(resource.first), resource.second});
    Widget widget = make(parent, const_cast<char *>(name), args.data(), static_cast<Cardinal>(args.size()));
    if (flManaged) XtManageChild(widget);
    return widget;
}

static Widget Labelled(Maker make, Widget parent, const char *text, Pixel background,
                       std::vector<Resource> resources = {}) {
    XmString label = XmStringCreateLocalized(const_cast<char *>(text));
    resources.insert(resources.end(), {{XmNlabelString, Word(label)},
                                       {XmNfontList, Word(Plain)},
                                       {XmNbackground, background},
                                       {XmNforeground, Black}});
    Widget widget = Make(make, parent, text, resources);
    XmStringFree(label);
    return widget;
}

static Widget Pictured(Maker make, Widget parent, const char *file, Pixel background,
                       std::vector<Resource> resources = {}) {
    Pixmap picture = XmGetPixmap(DefaultScreenOfDisplay(Server), const_cast<char *>(file), Black, background);
    resources.insert(resources.end(), {{XmNlabelType, XmPIXMAP}, {XmNlabelPixmap, picture}});
    return Labelled(make, parent, file, background, resources);
}

static Widget Entry(Maker make, Widget menu, const char *text, std::vector<Resource> resources = {}) {
    if (*text) resources.push_back({XmNmnemonic, static_cast<KeySym>(*text)});
    Widget entry = Labelled(make, menu, text, LightGrey, resources);
    XtAddCallback(entry, XmNactivateCallback, Ignore, nullptr);
    return entry;
}

static Widget Menu(Widget bar, const char *text, std::initializer_list<const char *> entries) {
    Widget menu = Make(XmCreatePulldownMenu, bar, text, {{XmNbackground, LightGrey}}, false);
    for (const char *entry : entries) Entry(XmCreatePushButton, menu, entry);
    Entry(XmCreateCascadeButton, bar, text, {{XmNsubMenuId, Word(menu)}});
    return menu;
}

static Widget Bar(Widget form, Widget above) {
    Widget bar = Make(XmCreateMenuBar, form, "bar",
                      {{XmNbackground, LightGrey},
                       {XmNtopAttachment, XmATTACH_WIDGET},
                       {XmNtopWidget, Word(above)},
                       {XmNleftAttachment, XmATTACH_FORM},
                       {XmNrightAttachment, XmATTACH_FORM}});
    Entry(XmCreateCascadeButton, bar, "");
    Widget setup = Menu(bar, "Setup", {"Jobs...", "Discovery..."});
    Menu(setup, "Queues", {"Add...", "Copy...", "Modify...", "Delete..."});
    Menu(bar, "Printer",
         {"Print Test Page", "Send File", "Upgrade", "Browser", "Reset", "Properties", "Web Page",
          "Features"});
    Entry(XmCreateCascadeButton, bar, "Display...");
    Menu(bar, "Help", {"Contents", "About"});
    Entry(XmCreateCascadeButton, bar, "                                        ");
    Entry(XmCreateCascadeButton, bar, "Exit");
    return bar;
}

// Attachments of all sides but one, which hangs on the neighbour above.
static std::vector<Resource> HangBelow(Widget above, std::vector<Resource> resources) {
    resources.insert(resources.end(), {{XmNtopAttachment, XmATTACH_WIDGET},
                                       {XmNtopWidget, Word(above)},
                                       {XmNleftAttachment, XmATTACH_FORM},
                                       {XmNrightAttachment, XmATTACH_FORM}});
    return resources;
}

static Widget List(Widget form, Widget above) {
    Widget box =
        Make(XmCreateForm, form, "w2", HangBelow(above, {{XmNbackground, LightGrey}, {XmNwidth, 580}}));
    Widget title = Labelled(XmCreateLabel, box, "Name", LightGrey,
                            {{XmNtopAttachment, XmATTACH_FORM}, {XmNleftAttachment, XmATTACH_FORM}});
    XmString items[] = {XmStringCreateLocalized(const_cast<char *>("one")),
                        XmStringCreateLocalized(const_cast<char *>("two"))};
    Widget list = Make(XmCreateScrolledList, box, "scrolList",
                       HangBelow(title, {{XmNitems, Word(items)},
                                         {XmNitemCount, 2},
                                         {XmNvisibleItemCount, 10},
                                         {XmNfontList, Word(Plain)},
                                         {XmNbackground, White},
                                         {XmNselectionPolicy, XmSINGLE_SELECT},
                                         {XmNbottomAttachment, XmATTACH_FORM}}));
    XtAddCallback(list, XmNsingleSelectionCallback, Ignore, nullptr);
    return box;
}

static Widget Panel(Widget form, Widget above) {
    Widget panel = Make(XmCreateForm, form, "panel",
                        HangBelow(above, {{XmNbackground, White},
                                          {XmNwidth, 580},
                                          {XmNheight, 200},
                                          {XmNborderWidth, 1},
                                          {XmNresizePolicy, XmRESIZE_NONE}}));
    Pictured(XmCreateLabel, panel, "icon/tv_generic/static.xbm", White,
             {{XmNwidth, 250}, {XmNheight, 200}, {XmNtopAttachment, XmATTACH_FORM}, {XmNleftOffset, 10}});
    Widget texts = Make(XmCreateForm, panel, "w3",
                        {{XmNbackground, White}, {XmNleftAttachment, XmATTACH_FORM}, {XmNleftOffset, 260}});
    Widget last = Labelled(XmCreateLabel, texts, "Printer: ", White, {{XmNtopAttachment, XmATTACH_FORM}});
    for (const char *text : {"Status: ", "Location: "})
        last = Labelled(XmCreateLabel, texts, text, White, HangBelow(last, {{XmNtopOffset, 10}}));
    return panel;
}

static void Tools(Widget form, Widget above) {
    Widget line = Make(XmCreateSeparator, form, "line", HangBelow(above, {{XmNtopOffset, 10}}));
    int offset = 10;
    for (const char *file : {"icon/P36W50/ButtonIcon_Help.xpm", "icon/P36W50/ButtonIcon_Refresh.xpm",
                             "icon/P36W50/ButtonIcon_AddQueue.xpm", "icon/P36W50/ButtonIcon_QBWS.xpm",
                             "icon/P36W50/ButtonIcon_SNMPServices.xpm"}) {
        Widget tool = Pictured(XmCreatePushButton, form, file, Grey,
                               {{XmNwidth, 27},
                                {XmNheight, 27},
                                {XmNnavigationType, XmEXCLUSIVE_TAB_GROUP},
                                {XmNtopAttachment, XmATTACH_WIDGET},
                                {XmNtopWidget, Word(line)},
                                {XmNleftAttachment, XmATTACH_FORM},
                                {XmNleftOffset, static_cast<XtArgVal>(offset)}});
        XtAddCallback(tool, XmNactivateCallback, Ignore, nullptr);
        offset += 37;
    }
}

static Widget Box(Widget parent, bool flRow) {
    return Make(XmCreateRowColumn, parent, "box",
                {{XmNbackground, White}, {XmNorientation, flRow ? XmHORIZONTAL : XmVERTICAL}});
}

// Its work area; the buttons stand in a row below with the logo.
static Widget Dialog(Widget parent, const char *name, std::initializer_list<const char *> buttons) {
    Widget dialog = Make(XmCreateBulletinBoardDialog, parent, name,
                         {{XmNbackground, LightGrey},
                          {XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL},
                          {XmNbuttonFontList, Word(Bold)},
                          {XmNlabelFontList, Word(Bold)}},
                         false);
    Widget frame = Box(dialog, false);
    Box(frame, false);
    Widget area = Box(Box(frame, false), false), row = Box(frame, true);
    Pictured(XmCreateLabel, row, "icon/TLogo.xpm", LightGrey);
    for (const char *text : buttons) {
        Widget button = Labelled(XmCreatePushButton, row, text, LightBlue, {{XmNborderWidth, 1}});
        XtAddCallback(button, XmNactivateCallback, Ignore, nullptr);
    }
    return area;
}

static void Dialogs(Widget window) {
    Widget area = Dialog(window, "dsw", {"OK", "Cancel", "Apply"}), choice = Box(area, true);
    Labelled(XmCreateLabel, choice, "Show printers by", White);
    Widget menu = Make(XmCreatePulldownMenu, choice, "menu", {{XmNbackground, LightGrey}}, false);
    for (const char *text : {"Name", "Host name"}) Entry(XmCreatePushButton, menu, text);
    Make(XmCreateOptionMenu, choice, "option", {{XmNsubMenuId, Word(menu)}, {XmNbackground, White}});
    for (const char *text : {"Address", "Hardware address", "Description"}) {
        Widget toggle = Labelled(XmCreateToggleButton, area, text, White);
        XtAddCallback(toggle, XmNvalueChangedCallback, Ignore, nullptr);
    }
    area = Dialog(window, "aw", {"OK"});
    Pictured(XmCreateLabel, area, "icon/TLogo.xpm", White);
    for (const char *text : {"Printer Administration", "Version"}) Labelled(XmCreateLabel, area, text, White);
}

int main(int argc, char **argv) {
    XtToolkitInitialize();
    XtAppContext context = XtCreateApplicationContext();
    Server = XtOpenDisplay(context, nullptr, "hand", "Hand", nullptr, 0, &argc, argv);
    if (!Server) return 1;
    White = Colour("white"), Black = Colour("black"), Grey = Colour("grey");
    LightGrey = Colour("light gray"), LightBlue = Colour("#BFEFFF");
    Plain = LoadFont("7x13"), Bold = LoadFont("7x13bold");
    Widget shell = XtAppCreateShell("hand", "Hand", applicationShellWidgetClass, Server, nullptr, 0);
    Widget window = Make(XmCreateMainWindow, shell, "window", {{XmNbackground, LightGrey}});
    Widget form = Make(XmCreateForm, window, "form", {{XmNbackground, LightGrey}});
    Widget banner = Pictured(XmCreateLabel, form, "icon/P36W50/Brand_Banner_Hrz.xpm", White,
                             {{XmNtopAttachment, XmATTACH_FORM}, {XmNleftAttachment, XmATTACH_FORM}});
    Tools(form, Panel(form, List(form, Bar(form, banner))));
    Dialogs(window);
    XtRealizeWidget(shell);
    XtAppMainLoop(context);
}
