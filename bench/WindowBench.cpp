// Windows from descriptions beside the same ones written by hand for Motif, printers in a list, and what is
// left behind by events, messages and refills.
#include "bench/Bench.h"
#include "bench/BenchDisplay.h"
#include "common/MemMgr.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiList.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <X11/IntrinsicP.h>
#include <csignal>
#include <cstring>
#include <malloc.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

enum { BLOCKS = 39, BLOCK_OBJECTS = 13, PRINTERS = 1000, EVENTS = 10000, MESSAGES = 1000, REFILLS = 1000 };
static const char FontName[] = "7x13";

// ---- a display, and processes of their own: windows last as long as their process

static void Ignore(XmtCallData *) {}

// What the work measures in a child that has opened the display and stands before its first window.
static double Apart(double (*work)(int), int scale) {
    int pipes[2];
    double result = 0;
    if (pipe(pipes) != 0) return 0;
    pid_t child = fork();
    if (child == 0) {
        XmtInitApp("prndeck", "prndeck", nullptr, nullptr);
        XmtInitStore();
        result = work(scale);
        _exit(write(pipes[1], &result, sizeof result) != sizeof result);
    }
    close(pipes[1]);
    if (read(pipes[0], &result, sizeof result) != sizeof result) printf("a measuring process failed\n");
    close(pipes[0]);
    waitpid(child, nullptr, 0);
    return result;
}

static BenchMeasure Measure(double (*work)(int)) {
    return [work](int scale) { return Apart(work, scale); };
}

static double Since(std::chrono::steady_clock::time_point start, long count) {
    std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - start;
    return spent.count() / static_cast<double>(count);
}

// ---- a window of 500 objects: rows of a labelled text, a labelled choice, a toggle, a button and a label

static std::string DescribeBlock(int i) {
    std::string n = std::to_string(i);
    return "B r" + n + " h .0 bo(0) {\nt t" + n +
           " l(Queue name:) s(12,1) .0 <1 h bo(0)> <2 .21> <3 .21>;\nbl o" + n +
           " l(Features:) .0 .21 L(disabled,enabled) <1 h bo(0)>;\nbt c" + n + " l(Banner) .0 .21;\nbp b" +
           n + " l(Configure) .0 .21;\nl l" + n + " l(none) .0 .21;\n}\n";
}

static double BuildOurs(int scale) {
    std::string text = ".0 c(bg white,fg black)\n.21 F_(" + std::string(FontName) + ")\nWR main {\n";
    for (int i = 0; i < BLOCKS * scale; i++) text += DescribeBlock(i);
    text += "}\n";
    auto start = std::chrono::steady_clock::now();
    XmtNewObject(nullptr, Ignore, 1, text.c_str());
    XtRealizeWidget(AppShell);
    XSync(AppDisplay, 0);
    return Since(start, static_cast<long>(BLOCKS) * BLOCK_OBJECTS * scale);
}

// The looks that the rows share, as a program would hold them.
static struct {
    Pixel white, black;
    XmFontList font;
} Look;

static void ReadLook() {
    XColor screen, exact;
    XAllocNamedColor(AppDisplay, AppColormap, "white", &screen, &exact);
    Look.white = screen.pixel;
    XAllocNamedColor(AppDisplay, AppColormap, "black", &screen, &exact);
    Look.black = screen.pixel;
    Look.font = XmFontListCreate(XLoadQueryFont(AppDisplay, FontName), XmFONTLIST_DEFAULT_TAG);
}

using Maker = Widget (*)(Widget, char *, ArgList, Cardinal);

struct Part {
    Maker make;
    const char *label; // null: none
    bool flFont, flHorizontal, flGroup;
    int columns;
    const char *callback;
};

static void OnActivate(Widget, XtPointer, XtPointer) {}

static Widget MakePart(Widget parent, const std::string &name, const Part &part) {
    Arg args[10];
    Cardinal n = 0;
    XmString label = part.label ? XmStringCreateLocalized(const_cast<char *>(part.label)) : nullptr;
    if (part.flGroup) XtSetArg(args[n], XmNnavigationType, XmEXCLUSIVE_TAB_GROUP), n++;
    XtSetArg(args[n], XmNbackground, Look.white), n++;
    XtSetArg(args[n], XmNforeground, Look.black), n++;
    if (part.flFont) XtSetArg(args[n], XmNfontList, Look.font), n++;
    if (part.flHorizontal) XtSetArg(args[n], XmNorientation, XmHORIZONTAL), n++;
    if (part.flHorizontal) XtSetArg(args[n], XmNborderWidth, 0), n++;
    if (part.columns) XtSetArg(args[n], XmNcolumns, part.columns), n++;
    if (label) XtSetArg(args[n], XmNlabelString, label), n++;
    Widget widget = part.make(parent, const_cast<char *>(name.c_str()), args, n);
    if (label) XmStringFree(label);
    if (part.callback) XtAddCallback(widget, part.callback, OnActivate, nullptr);
    return widget;
}

static Widget ShowPart(Widget parent, const std::string &name, const Part &part) {
    Widget widget = MakePart(parent, name, part);
    XtManageChild(widget);
    return widget;
}

static const Part Box = {XmCreateRowColumn, nullptr, false, true, true, 0, nullptr};
static const Part Name = {XmCreateLabel, "Queue name:", true, false, true, 0, nullptr};
static const Part Field = {XmCreateTextField, nullptr, true, false, true, 12, nullptr};
static const Part Features = {XmCreateLabel, "Features:", true, false, true, 0, nullptr};
static const Part Choice = {XmCreateOptionMenu, nullptr, true, false, true, 0, nullptr};
static const Part Menu = {XmCreatePulldownMenu, nullptr, true, false, true, 0, nullptr};
static const Part First = {XmCreatePushButton, "disabled", true, false, false, 0, "activateCallback"};
static const Part Second = {XmCreatePushButton, "enabled", true, false, false, 0, "activateCallback"};
static const Part Banner = {XmCreateToggleButton, "Banner", true, false, true, 0, "valueChangedCallback"};
static const Part Configure = {XmCreatePushButton, "Configure", true, false, true, 0, "activateCallback"};
static const Part Nothing = {XmCreateLabel, "none", true, false, true, 0, nullptr};

static void MakeChoice(Widget row, const std::string &n) {
    Widget box = ShowPart(row, "o" + n + "_B1", Box);
    ShowPart(box, "o" + n + "_L", Features);
    Widget choice = MakePart(box, "o" + n, Choice);
    Widget menu = MakePart(choice, "o" + n + "_pd", Menu);
    Widget first = ShowPart(menu, "o" + n + "_1", First);
    ShowPart(menu, "o" + n + "_2", Second);
    XtVaSetValues(choice, XmNsubMenuId, menu, XmNmenuHistory, first, nullptr);
    XtManageChild(choice);
}

static void MakeBlock(Widget main, const std::string &n) {
    Widget row = ShowPart(main, "r" + n, Box);
    Widget box = ShowPart(row, "t" + n + "_B1", Box);
    ShowPart(box, "t" + n + "_L", Name);
    ShowPart(box, "t" + n, Field);
    MakeChoice(row, n);
    ShowPart(row, "c" + n, Banner);
    ShowPart(row, "b" + n, Configure);
    ShowPart(row, "l" + n, Nothing);
}

static double BuildByHand(int scale) {
    auto start = std::chrono::steady_clock::now();
    ReadLook();
    Widget shell = XtAppCreateShell("main", "prndeck", applicationShellWidgetClass, AppDisplay, nullptr, 0);
    Widget main = XmCreateRowColumn(shell, const_cast<char *>("main"), nullptr, 0);
    for (int i = 0; i < BLOCKS * scale; i++) MakeBlock(main, std::to_string(i));
    XtManageChild(main);
    XtRealizeWidget(shell);
    XSync(AppDisplay, 0);
    return Since(start, static_cast<long>(BLOCKS) * BLOCK_OBJECTS * scale);
}

// ---- printers in a list

static std::string Printer(int i) {
    return "printer" + std::to_string(i) + "                 10.9." + std::to_string(i / 250) + "." +
           std::to_string(i % 250) + "   Tarvo C410 in the hall";
}

static void OpenList() {
    XmtNewObject(nullptr, Ignore, 1,
                 "WF main { Bl list V(10) A(tf,lf) L(a,b,c); l note l(.) A(bf,lf); bp press A(bf,rf); "
                 "t field CB(c,a) f(t0,255) A(bf,lf 100); }");
    XtRealizeWidget(AppShell);
    XSync(AppDisplay, 0);
}

static double AddOurs(int scale) {
    OpenList();
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < PRINTERS * scale; i++) XmtAddListItem("list", Printer(i).c_str(), i + 1);
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

static std::string PrinterList(int count) {
    std::string list;
    for (int i = 0; i < count; i++) list += (i ? "," : "") + Printer(i);
    return list;
}

static double ReplaceOurs(int scale) {
    OpenList();
    auto start = std::chrono::steady_clock::now();
    XmtReplaceListItems("list", PrinterList(PRINTERS * scale).c_str());
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

static double AddEachByHand(int scale) {
    OpenList();
    Widget list = XmtGetWidget("list");
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < PRINTERS * scale; i++) {
        XmString item = XmtMakeString(Printer(i).c_str());
        XmListAddItemUnselected(list, item, i + 1);
        XmStringFree(item);
    }
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

static double AddByHand(int scale) {
    OpenList();
    Widget list = XmtGetWidget("list");
    auto start = std::chrono::steady_clock::now();
    std::vector<XmString> items;
    for (int i = 0; i < PRINTERS * scale; i++) items.push_back(XmtMakeString(Printer(i).c_str()));
    XmListAddItems(list, items.data(), PRINTERS * scale, 0);
    for (XmString item : items) XmStringFree(item);
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

// ---- printers in the main window, beside the network

// The real window with so many printers; none of them has a network.
static void OpenMainWindow(int count) {
    if (chdir(BUILD_DIR "/stage") != 0) _exit(1);
    my_name = "prndeck";
    pToolPath = SaveStr_(BUILD_DIR "/stage");
    GenGui();
    XtRealizeWidget(AppShell);
    for (int i = 0; i < count; i++) {
        PrnEntry *entry = ClaimPrnEntry();
        entry->Name = SaveStr("printer%i", i);
        entry->HostName = SaveStr("host%i", i);
        entry->Address = SaveStr("printer %i", i);
        strcpy(entry->HwAddress, "02:00:5e:00:53:07");
        entry->Description = SaveStr_("Tarvo C410");
        entry->PpdIndex = GetPpdData(entry->Description);
    }
    SetupPrnListDisplay();
    XSync(AppDisplay, 0);
}

static double RefreshOurs(int scale) {
    OpenMainWindow(PRINTERS * scale);
    auto start = std::chrono::steady_clock::now();
    SetupPrnListDisplay();
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

static double ColumnsOurs(int scale) {
    OpenMainWindow(PRINTERS * scale);
    DisplayStyle = DISPLAY_ALL;
    auto start = std::chrono::steady_clock::now();
    UpdatePrListDisplay();
    XSync(AppDisplay, 0);
    return Since(start, PRINTERS * scale);
}

static double SelectOurs(int scale) {
    OpenMainWindow(PRINTERS * scale);
    XmtCallData data = {};
    data.id = WIZ_LIST;
    data.reason = XmtCR_DEFAULT;
    data.value = PRINTERS * scale;
    auto start = std::chrono::steady_clock::now();
    WizEventHandler(&data);
    XSync(AppDisplay, 0);
    return Since(start, 1);
}

// What a selection shows: a picture and three labels.
static double ShowByHand(int scale) {
    OpenMainWindow(PRINTERS * scale);
    auto start = std::chrono::steady_clock::now();
    XmtSetLabel("PrinterPicture", "@icon/tv_c410/static.xbm,fg black, bg white");
    for (const char *label : {"mname", "msta", "mloc"}) XmtSetLabelText(label, "Tarvo C410");
    XSync(AppDisplay, 0);
    return Since(start, 1);
}

// ---- what is left behind

static void DispatchWaiting() {
    XSync(AppDisplay, 0);
    while (XtAppPending(AppContext)) XtAppProcessEvent(AppContext, XtIMAll);
}

// A button, a list and a text in turn.
static void SendEvents() {
    XmPushButtonCallbackStruct press = {XmCR_ACTIVATE, nullptr, 1};
    for (int i = 0; i < EVENTS; i++) {
        if (i % 3 == 0) XtCallCallbacks(XmtGetWidget("press"), XmNactivateCallback, &press);
        if (i % 3 == 1) XmListSelectPos(XmtGetWidget("list"), i % 2 + 1, 1);
        if (i % 3 == 2) XmtSetText("field", i % 2 ? "printer 1" : "");
    }
    DispatchWaiting();
}

static void PostMessages() {
    for (int i = 0; i < MESSAGES; i++) {
        XmtPostMsg("Title", "message %i", i);
        XmtShowWaitingMsg();
        DispatchWaiting();
        XmAnyCallbackStruct ok = {XmCR_OK, nullptr};
        XtCallCallbacks(XmtGetWidget("XmtPostMsg"), XmNokCallback, &ok);
        XtUnmanageChild(XmtGetWidget("XmtPostMsg"));
        DispatchWaiting();
    }
}

static void RefillList() {
    static const std::string list = PrinterList(PRINTERS / 10);
    for (int i = 0; i < REFILLS; i++) {
        XmtReplaceListItems("list", list.c_str());
        XmtSetLabelRaw("note", list.c_str() + i);
        DispatchWaiting();
    }
}

static double HeldBytes() {
    double nodes = 0;
    for (MemBlock *block = pMemB; block; block = block->next)
        nodes += block->usedSize ? block->usedSize / MEM_NODE_SIZE : MEM_BLOCK_NODES - block->freeCount;
    return nodes * double{MEM_NODE_SIZE} + static_cast<double>(mallinfo2().uordblks);
}

// The second time counts: the first one makes what stays, such as the message box. A byte an operation would
// be seen.
template <void (*work)()>
static double Growth(int) {
    OpenList();
    flInEventLoop = 1;
    work();
    double before = HeldBytes();
    work();
    return HeldBytes() - before;
}

static void GrowthRow(const char *what, double (*growth)(int)) {
    printf("%-44s %9.0f bytes\n", what, Apart(growth, 1));
}

// ---- from the start of a program to its main window on the screen

enum { START_LIMIT = 20 }; // seconds, after which the alarm ends the bench

static int PassXError(Display *, XErrorEvent *) {
    return 0; // windows of a program that has just been ended
}

static Display *WatchRoot() {
    static Display *display;
    if (display) return display;
    XSetErrorHandler(PassXError);
    display = XOpenDisplay(nullptr);
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    return display;
}

static void AwaitWindow(Display *display, int type) {
    XEvent event;
    do XNextEvent(display, &event);
    while (event.type != type || (type == MapNotify && event.xmap.override_redirect));
}

// Nanoseconds; the program runs in the tool directory and ends with the measurement.
static double TimeStart(const char *program, const char *word) {
    Display *display = WatchRoot();
    XSync(display, 1);
    alarm(START_LIMIT);
    auto start = std::chrono::steady_clock::now();
    pid_t child = fork();
    if (child == 0) {
        if (chdir(BUILD_DIR "/stage") == 0) execl(program, program, word, nullptr);
        _exit(1);
    }
    AwaitWindow(display, MapNotify);
    double spent = Since(start, 1);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    AwaitWindow(display, DestroyNotify);
    alarm(0);
    return spent;
}

static double StartOurs(int) {
    return TimeStart(BUILD_DIR "/stage/prndeck", "-nd");
}

static const std::string WidgetFile = std::string(BUILD_DIR) + "/bench/widgets";

static double StartSame(int) {
    return TimeStart(BUILD_DIR "/bench/sameWindows", WidgetFile.c_str());
}

static double StartBare(int) {
    return TimeStart(BUILD_DIR "/bench/sameWindows", nullptr);
}

// ---- the widgets of all windows, for the yardstick

static int WidgetLines;

// What Motif makes by itself in a widget of this class is made again with it.
static bool HoldsItsOwn(Widget widget) {
    unsigned char kind = 0;
    if (XmIsRowColumn(widget)) XtVaGetValues(widget, XmNrowColumnType, &kind, nullptr);
    return kind == XmMENU_OPTION || XmIsMessageBox(widget) || XmIsSelectionBox(widget);
}

static std::string LabelOf(Widget widget, unsigned char *type) {
    if (!XmIsLabel(widget) && !XmIsLabelGadget(widget)) return "";
    XmString label = nullptr;
    XtVaGetValues(widget, XmNlabelType, type, XmNlabelString, &label, nullptr);
    char *text = label ? static_cast<char *>(XmStringUnparse(label, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT,
                                                             nullptr, 0, XmOUTPUT_ALL))
                       : nullptr;
    std::string result = text ? text : "";
    XtFree(text);
    XmStringFree(label);
    return result.substr(0, result.find('\n'));
}

static void WriteWidget(FILE *out, Widget widget, int parent) {
    if (XtIsTransientShell(widget) && !XmIsDialogShell(widget)) return; // Motif's own, for a list's help
    unsigned char kind = 0, type = XmSTRING;
    if (XmIsRowColumn(widget)) XtVaGetValues(widget, XmNrowColumnType, &kind, nullptr);
    std::string label = LabelOf(widget, &type);
    fprintf(out, "%d %s %d %d %d %s|%s\n", parent, XtClass(widget)->core_class.class_name,
            XtIsManaged(widget) && !XtIsShell(XtParent(widget)), kind, type == XmPIXMAP, XtName(widget),
            label.c_str());
    int line = WidgetLines++;
    for (Cardinal i = 0; i < widget->core.num_popups; i++) WriteWidget(out, widget->core.popup_list[i], line);
    if (!XtIsComposite(widget) || HoldsItsOwn(widget)) return;
    CompositeWidget composite = reinterpret_cast<CompositeWidget>(widget);
    for (Cardinal i = 0; i < composite->composite.num_children; i++)
        if (!XmIsScrollBar(composite->composite.children[i]))
            WriteWidget(out, composite->composite.children[i], line);
}

static double WriteWidgets(int) {
    OpenMainWindow(0);
    FILE *out = fopen(WidgetFile.c_str(), "w");
    if (!out) return 0;
    CompositeWidget shell = reinterpret_cast<CompositeWidget>(AppShell);
    for (Cardinal i = 0; i < AppShell->core.num_popups; i++)
        WriteWidget(out, AppShell->core.popup_list[i], -1);
    for (Cardinal i = 0; i < shell->composite.num_children; i++)
        WriteWidget(out, shell->composite.children[i], -1);
    return fclose(out) == 0 ? WidgetLines : 0;
}

int main() {
    if (!StartServer()) {
        printf("windows: skipped, there is no Xvfb here\n");
        return 0;
    }
    BenchHead();
    BenchMeasuredRow("window: an object of 500, built and shown", Measure(BuildOurs), Measure(BuildByHand));
    BenchMeasuredRow("window: 1000 printers into a list, one each", Measure(AddOurs), Measure(AddEachByHand));
    BenchMeasuredRow("window: 1000 printers into a list at once", Measure(ReplaceOurs), Measure(AddByHand));
    BenchMeasuredRow("window: 1000 printers, the list anew", Measure(RefreshOurs), Measure(AddByHand));
    BenchMeasuredRow("window: 1000 printers, other columns", Measure(ColumnsOurs), Measure(AddByHand));
    BenchMeasuredRow("window: 1000 printers, one selected", Measure(SelectOurs), Measure(ShowByHand));
    double widgets = Apart(WriteWidgets, 1);
    printf("window: the program starts with %.0f widgets\n", widgets);
    BenchMeasuredRow("window: start beside the same widgets", StartOurs, StartSame);
    BenchMeasuredRow("window: start beside a bare window", StartOurs, StartBare);
    GrowthRow("window: left by 10000 events", Growth<SendEvents>);
    GrowthRow("window: left by 1000 messages", Growth<PostMessages>);
    GrowthRow("window: left by 1000 refills of a list", Growth<RefillList>);
    StopServer();
    return 0;
}
