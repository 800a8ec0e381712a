// Shows a description in a real window, as the program would, and tells what its objects do.
//
//   winview STAGE                      the names of the program's windows
//   winview [OPTION...] STAGE NAME     one of them
//   winview [OPTION...] STAGE FILE [SET]
//                                      a description of yours, its holes filled from that set of the
//                                      catalogue, or with a word
//   -l LANGUAGE   of the catalogue: de_DE
//   -o PICTURE    saves what is seen, as PNG or, for a name ending in .ppm, as PPM, and ends
//   -t SECONDS    ends after that time
//   -w WINDOW     which window to show, if the description makes several
//
// STAGE is a tool directory, for texts and pictures. Each event that would reach the program is a line "name
// id reason value text". It ends when the window is closed. Status 0; 1 if there is nothing to show or it
// can't be saved, 2 for wrong words.
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "prndeck/gui/PrdGuiWindows.h"
#include "tools/winview/Picture.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <unistd.h>
#include <vector>

enum { STATUS_NOTHING = 1, STATUS_USAGE = 2, SHOW_ROUNDS = 100, QUIET_ROUNDS = 5, ROUND_US = 50000 };

struct View {
    const char *stage, *source, *language, *picture, *window;
    int set, seconds;
};

// ---- words

[[noreturn]] static void Usage() {
    fprintf(stderr,
            "usage: winview [-l LANGUAGE] [-o PICTURE] [-t SECONDS] [-w WINDOW] STAGE [NAME | FILE [SET]]\n");
    exit(STATUS_USAGE);
}

static void ReadOption(View *view, int letter) {
    switch (letter) {
    case 'l': view->language = optarg; break;
    case 'o': view->picture = optarg; break;
    case 't': view->seconds = atoi(optarg); break;
    case 'w': view->window = optarg; break;
    default: Usage();
    }
}

static View ReadWords(int count, char **words) {
    View view = {};
    for (int letter; (letter = getopt(count, words, "l:o:t:w:")) != -1;) ReadOption(&view, letter);
    int left = count - optind;
    if (left < 1 || left > 3) Usage();
    view.stage = words[optind];
    if (left > 1) view.source = words[optind + 1];
    if (left > 2) view.set = atoi(words[optind + 2]);
    return view;
}

// ---- texts

static const GuiDesc *FindShipped(const char *name) {
    for (const GuiDesc *desc = GuiDescs; desc->name; desc++)
        if (strcmp(desc->name, name) == 0) return desc;
    return nullptr;
}

static int ListShipped() {
    for (const GuiDesc *desc = GuiDescs; desc->name; desc++) printf("%s\n", desc->name);
    return 0;
}

static bool ReadDescription(const View &view, std::string *text) {
    const GuiDesc *desc = FindShipped(view.source);
    std::ifstream in(view.source);
    if (!desc && !in) {
        fprintf(stderr, "winview: %s is no window of the program, and no file that can be read\n",
                view.source);
        return false;
    }
    text->assign(std::istreambuf_iterator<char>(in), {});
    if (desc) *text = desc->text;
    return true;
}

// Holes beyond the catalogue's texts get a word.
static std::string FillHoles(const View &view, std::string text) {
    if (const GuiDesc *desc = FindShipped(view.source)) return GenGuiText(desc);
    if (view.set) text = GenGuiDesc(text.c_str(), view.set);
    for (size_t hole; (hole = text.find("%s")) != text.npos;) text.replace(hole, 2, "text");
    return text;
}

// The tool directory is the current one from here on, as it is for the program.
static bool EnterStage(const View &view) {
    static char path[PATH_MAX];
    if (!realpath(view.stage, path) || chdir(path) != 0) {
        fprintf(stderr, "winview: there is no directory %s\n", view.stage);
        return false;
    }
    pToolPath = path;
    if (view.language) setenv("LANG", view.language, 1);
    OpenCatalogues();
    if (!pDrvCoreDB) fprintf(stderr, "winview: %s holds no catalogue\n", path);
    return pDrvCoreDB != nullptr;
}

// ---- windows

// The value of a text is the text's address, which says nothing.
static void PrintEvent(XmtCallData *data) {
    const XmtObjectData *object = XmtFindObject(data->name);
    bool flText = object && object->type == XmtText;
    printf("%s %ld %ld %ld %s\n", data->name, static_cast<long>(data->id), static_cast<long>(data->reason),
           flText ? 0L : static_cast<long>(data->value), data->text ? data->text : "");
    fflush(stdout);
}

static bool IsWindow(const XmtObjectData *object) {
    return object->type == XmtMainWindow ||
           (object->type >= XmtDataEntryDialog && object->type <= XmtFormDialog);
}

// In the order of their numbers.
static std::vector<const XmtObjectData *> ListWindows() {
    std::vector<const XmtObjectData *> windows;
    int index = 0;
    while (auto *object = static_cast<XmtObjectData *>(WalkHashTable(XmtTable, &index, 0)))
        if (IsWindow(object)) windows.push_back(object);
    std::sort(windows.begin(), windows.end(), [](auto *a, auto *b) { return a->id < b->id; });
    return windows;
}

// Dialogs belong to the main window, which is made first.
static std::vector<const XmtObjectData *> MakeWindows(const View &view, const std::string &text) {
    const GuiDesc *desc = FindShipped(view.source);
    const GuiDesc *first = &GuiDescs[0]; // the main window
    if (desc != first) XmtNewObject(nullptr, PrintEvent, 0, GenGuiText(first).c_str());
    std::vector<const XmtObjectData *> before = ListWindows(), made;
    XmtNewObject(nullptr, PrintEvent, 0, text.c_str());
    for (const XmtObjectData *object : ListWindows())
        if (std::find(before.begin(), before.end(), object) == before.end()) made.push_back(object);
    return made;
}

static const XmtObjectData *PickWindow(const View &view, const std::vector<const XmtObjectData *> &windows) {
    for (const XmtObjectData *object : windows)
        if (!view.window || strcmp(object->name, view.window) == 0) return object;
    fprintf(stderr, "winview: %s makes no window%s%s\n", view.source, view.window ? " " : "",
            view.window ? view.window : "");
    return nullptr;
}

static Widget ShellOf(Widget widget) {
    while (!XtIsShell(widget)) widget = XtParent(widget);
    return widget;
}

static void End(Widget, XtPointer, XtPointer) {
    flExitMainLoop = 1;
    XmtWakeMainLoop();
}

static void TimeOut(XtPointer, XtIntervalId *) {
    End(nullptr, nullptr, nullptr);
}

static void ShowWindow(const XmtObjectData *object) {
    Widget shell = ShellOf(object->widget);
    XtRealizeWidget(AppShell);
    flInEventLoop = 1;
    if (object->type == XmtMainWindow)
        XtRealizeWidget(shell);
    else
        XtManageChild(object->widget);
    XtAddCallback(shell, XmNpopdownCallback, End, nullptr);
}

static void DispatchWaiting() {
    XSync(AppDisplay, 0);
    while (XtAppPending(AppContext)) XtAppProcessEvent(AppContext, XtIMAll);
}

static bool IsSeen(Widget shell) {
    XWindowAttributes facts;
    return XtIsRealized(shell) && XGetWindowAttributes(AppDisplay, XtWindow(shell), &facts) &&
           facts.map_state == IsViewable;
}

// A window manager may take its time, and so may what is drawn at the first exposure.
static bool WaitUntilDrawn(Widget shell) {
    int round = 0, quiet = 0;
    for (; round < SHOW_ROUNDS && quiet < QUIET_ROUNDS; round++) {
        DispatchWaiting();
        quiet = IsSeen(shell) ? quiet + 1 : 0;
        if (quiet == 1) XRaiseWindow(AppDisplay, XtWindow(shell));
        usleep(ROUND_US);
    }
    DispatchWaiting();
    return quiet > 0;
}

static int Run(const View &view, const XmtObjectData *object) {
    Widget shell = ShellOf(object->widget);
    ShowWindow(object);
    if (view.picture) return WaitUntilDrawn(shell) && SavePicture(shell, view.picture) ? 0 : STATUS_NOTHING;
    if (view.seconds > 0)
        XtAppAddTimeOut(AppContext, static_cast<unsigned long>(view.seconds) * 1000, TimeOut, nullptr);
    XmtMainEventLoop();
    return 0;
}

static int ShowDescription(const View &view, const std::string &text) {
    flNoBarMenuTraversal = 1;
    GenMacros();
    std::vector<const XmtObjectData *> windows = MakeWindows(view, text);
    for (const XmtObjectData *object : windows)
        if (windows.size() > 1) printf("window %s\n", object->name);
    const XmtObjectData *object = PickWindow(view, windows);
    return object ? Run(view, object) : STATUS_NOTHING;
}

int main(int count, char **words) {
    my_name = "winview";
    View view = ReadWords(count, words);
    if (!view.source) return ListShipped();
    char folder[PATH_MAX], picture[PATH_MAX * 2];
    if (view.picture && *view.picture != '/' && getcwd(folder, sizeof folder)) {
        snprintf(picture, sizeof picture, "%s/%s", folder, view.picture);
        view.picture = picture;
    }
    std::string text;
    if (!ReadDescription(view, &text) || !EnterStage(view) || !OpenWindowFace()) return STATUS_NOTHING;
    return ShowDescription(view, FillHoles(view, text));
}
