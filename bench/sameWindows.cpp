// The yardstick of the program's start: the widgets of all its windows, made with Xt's own call one by one.
// Reads them from the file that its argument names, a line each, parents first:
//
//   PARENT CLASS MANAGED KIND PICTURE NAME|LABEL
//
// PARENT counts lines from 0, -1 for none; KIND is the type of a row column, PICTURE tells whether the label
// is one. Runs in the tool directory.
#include "xmt/x11.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

static Display *Server;
static XmFontList Letters;
static Pixel White, Black;

static const std::map<std::string, WidgetClass *> Classes = {
    {"XmArrowButton", &xmArrowButtonWidgetClass},
    {"XmBulletinBoard", &xmBulletinBoardWidgetClass},
    {"XmCascadeButton", &xmCascadeButtonWidgetClass},
    {"XmDialogShell", &xmDialogShellWidgetClass},
    {"XmDrawingArea", &xmDrawingAreaWidgetClass},
    {"XmForm", &xmFormWidgetClass},
    {"XmFrame", &xmFrameWidgetClass},
    {"XmLabel", &xmLabelWidgetClass},
    {"XmLabelGadget", &xmLabelGadgetClass},
    {"XmList", &xmListWidgetClass},
    {"XmMainWindow", &xmMainWindowWidgetClass},
    {"XmMessageBox", &xmMessageBoxWidgetClass},
    {"XmPanedWindow", &xmPanedWindowWidgetClass},
    {"XmPushButton", &xmPushButtonWidgetClass},
    {"XmRowColumn", &xmRowColumnWidgetClass},
    {"XmScrolledWindow", &xmScrolledWindowWidgetClass},
    {"XmSelectionBox", &xmSelectionBoxWidgetClass},
    {"XmFileSelectionBox", &xmFileSelectionBoxWidgetClass},
    {"XmSeparatorGadget", &xmSeparatorGadgetClass},
    {"XmSeparator", &xmSeparatorWidgetClass},
    {"XmText", &xmTextWidgetClass},
    {"XmTextField", &xmTextFieldWidgetClass},
    {"XmToggleButton", &xmToggleButtonWidgetClass},
};

struct Line {
    int parent = -1, flManaged = 0, kind = 0, flPicture = 0;
    std::string kindName, name, label;
};

static Line ReadLine(const std::string &text) {
    Line line;
    std::istringstream words(text);
    words >> line.parent >> line.kindName >> line.flManaged >> line.kind >> line.flPicture >> std::ws;
    std::getline(words, line.name, '|');
    std::getline(words, line.label);
    return line;
}

static Pixmap LoadPicture() {
    return XmGetPixmap(DefaultScreenOfDisplay(Server), const_cast<char *>("icon/tv_generic/static.xbm"),
                       Black, White);
}

static Widget Make(const Line &line, Widget parent, WidgetClass kind) {
    Arg args[8];
    Cardinal n = 0;
    XmString label = XmStringCreateLocalized(const_cast<char *>(line.label.c_str()));
    XtSetArg(args[n], XmNbackground, White), n++;
    XtSetArg(args[n], XmNforeground, Black), n++;
    XtSetArg(args[n], XmNfontList, Letters), n++;
    if (line.flPicture) XtSetArg(args[n], XmNlabelType, XmPIXMAP), n++;
    if (line.flPicture) XtSetArg(args[n], XmNlabelPixmap, LoadPicture()), n++;
    if (kind == xmRowColumnWidgetClass) XtSetArg(args[n], XmNrowColumnType, line.kind), n++;
    if (!line.flPicture) XtSetArg(args[n], XmNlabelString, label), n++;
    Widget made = nullptr;
    if (line.kind == XmMENU_PULLDOWN)
        made = XmCreatePulldownMenu(parent, const_cast<char *>(line.name.c_str()), args, n);
    else if (kind == xmDialogShellWidgetClass)
        made = XtCreatePopupShell(line.name.c_str(), kind, parent, args, n);
    else
        made = XtCreateWidget(line.name.c_str(), kind, parent, args, n);
    XmStringFree(label);
    return made;
}

// A dialog is shown as soon as it is managed: none is. Children are managed in front of their parents, as the
// program does.
static void MakeAll(std::istream &file, Widget shell) {
    std::vector<Widget> made;
    std::vector<Line> lines;
    for (std::string text; std::getline(file, text);) {
        lines.push_back(ReadLine(text));
        const Line &line = lines.back();
        auto found = Classes.find(line.kindName);
        Widget parent = line.parent < 0 ? shell : made[static_cast<size_t>(line.parent)];
        if (found == Classes.end() && line.kindName != "XmMenuShell")
            fprintf(stderr, "no class %s\n", line.kindName.c_str());
        // What has no class here hands its children to its parent.
        made.push_back(found == Classes.end() ? parent : Make(line, parent, *found->second));
    }
    for (size_t i = made.size(); i-- > 0;)
        if (lines[i].flManaged && lines[i].kindName != "XmMenuShell")
            XtManageChild(made[i]); // a menu brings its shell
}

int main(int argc, char **argv) {
    XtAppContext context;
    Widget shell = XtAppInitialize(&context, "prndeck", nullptr, 0, &argc, argv, nullptr, nullptr, 0);
    Server = XtDisplay(shell);
    White = WhitePixel(Server, DefaultScreen(Server));
    Black = BlackPixel(Server, DefaultScreen(Server));
    Letters = XmFontListCreate(XLoadQueryFont(Server, "7x13"), XmFONTLIST_DEFAULT_TAG);
    if (argc > 1) {
        std::ifstream file(argv[1]);
        MakeAll(file, shell);
    } else {
        XtCreateManagedWidget("bare", xmMainWindowWidgetClass, shell, nullptr, 0);
    }
    XtRealizeWidget(shell);
    XtAppMainLoop(context);
}
