// The window of a model's options, made from its PPD file at run time.
#include "siblings/prnpnxxtty/window/FeatureWindow.h"

#include "common/NlsUtils.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "siblings/prnpnxxtty/Settings.h"
#include "siblings/prnpnxxtty/Shown.h"
#include "siblings/prnpnxxtty/window/Window.h"
#include "siblings/prnpnxxtty/window/WindowDesc.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtGrow.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <iterator>
#include <vector>

// The rows. The first "%s" is the object's name, the second one an item for each choice.
static const char GroupDesc[] = "l %s l( ) .21 c(bg white,fg navyblue) bo(0);\n";
static const char ChoiceDesc[] = "bl %s l( ) .22 .0 L(%s) <1 bo(0) h> <2 .21> <3 .22>;\n";
static const char ListDesc[] = "Bl %s l( ) .22 .0 V(6) L(%s) <1 bo(0) h> <2 .21>;\n";
static const char RowBox[] = "feb";
static const char Scroller[] = "fes";

// Beyond so many entries in menus all choices stand in lists, where an entry takes no widget.
enum { ENTRIES_MAX = 1500 };
// A window has at most 32767 lines of pixels. Heights of rows are told in menus: so many leave room for large
// fonts.
enum { MENU_HEIGHT = 1, LIST_HEIGHT = 4, HEIGHT_MAX = 600 };
// What the rows may take of the screen, in percent.
enum { PERCENT = 100, WIDTH_PART = 92, HEIGHT_PART = 74 };
enum { SCROLL_MARGIN = 10 };
enum { LIST_ROWS = 6 }; // as in ListDesc

struct FeatureRow {
    PpdOption *option;
    std::string name; // of the object
    int flUnset;      // its first choice is none
    bool flList;
};

struct FeatureWindow {
    FeatureTask &task;
    std::vector<FeatureRow> rows;
    bool flStored;
};

static FeatureWindow *pWindow; // the one that is open, for the handler; writer: ChooseFeatures

// ---- The rows

static void CollectRows(FeatureWindow &window) {
    size_t entries = 0;
    for (PpdOption &option : window.task.ppd.options) {
        if (!IsShown(option, window.task.flBanner)) continue;
        std::string name = "feo" + std::to_string(window.rows.size() + 1);
        size_t count = option.choices.size() + (option.chosen < 0);
        bool flList = count > XMT_MENU_ITEMS;
        if (!flList) entries += count;
        window.rows.push_back({&option, name, option.chosen < 0, flList});
    }
    if (entries <= ENTRIES_MAX) return;
    for (FeatureRow &row : window.rows) row.flList = true;
}

static bool BeginsGroup(const FeatureWindow &window, size_t i) {
    const std::string &group = window.rows[i].option->group;
    return i == 0 ? !group.empty() : group != window.rows[i - 1].option->group;
}

// The name of a group counts as a menu.
static int SumHeights(const FeatureWindow &window) {
    int height = 0;
    for (size_t i = 0; i < window.rows.size(); i++)
        height += (window.rows[i].flList ? LIST_HEIGHT : MENU_HEIGHT) + BeginsGroup(window, i) * MENU_HEIGHT;
    return height;
}

static std::vector<std::string> ChoiceTexts(const FeatureRow &row) {
    std::vector<std::string> texts;
    if (row.flUnset) texts.push_back(FeatureText(TXT_UNSET));
    for (const PpdChoice &choice : row.option->choices) texts.push_back(ChoiceText(choice, WindowLook));
    return texts;
}

static void MakeObject(const char *desc, const std::string &name, const std::string &items) {
    const char *values[] = {name.c_str(), items.c_str()};
    XmtNewObject(RowBox, nullptr, 0, FillGuiDesc(desc, values, std::size(values)).c_str());
}

static void MakeMenu(const FeatureRow &row) {
    std::vector<std::string> texts = ChoiceTexts(row);
    std::string items = "-";
    for (size_t i = 1; i < texts.size(); i++) items += ",-";
    MakeObject(ChoiceDesc, row.name, items);
    for (size_t i = 0; i < texts.size(); i++)
        XmtSetLabelRaw((row.name + "_" + std::to_string(i + 1)).c_str(), texts[i].c_str());
    XmtSetValuePF(row.name.c_str(), row.option->chosen + row.flUnset + 1, 0);
}

// The row that is lit stands second, near the end of the list as far up as the others leave it.
static void ShowChosen(Widget list, int chosen, int count) {
    XmListSetPos(list, std::max(1, std::min(chosen - 1, count - LIST_ROWS + 1)));
}

// A list keeps the width that it is made with: an item of wide letters stands for the longest text.
static std::string WidestItem(const std::vector<std::string> &texts) {
    size_t longest = 0;
    for (const std::string &text : texts) longest = std::max(longest, text.size());
    return std::string(longest, 'm');
}

// One by one a list takes the square of their number.
static void MakeList(const FeatureRow &row) {
    std::vector<std::string> texts = ChoiceTexts(row);
    MakeObject(ListDesc, row.name, WidestItem(texts));
    Widget list = XmtGetWidget(row.name.c_str());
    std::vector<XmString> items;
    for (std::string &text : texts) items.push_back(XmStringCreateLocalized(text.data()));
    XmtDeleteAllListItems(row.name.c_str());
    XmListAddItemsUnselected(list, items.data(), static_cast<int>(items.size()), 1);
    for (XmString item : items) XmStringFree(item);
    int chosen = row.option->chosen + row.flUnset + 1;
    XtVaSetValues(list, XmNselectionPolicy, XmBROWSE_SELECT, nullptr); // one is lit, by the arrows too
    XmListSelectPos(list, chosen, 0);
    ShowChosen(list, chosen, static_cast<int>(items.size()));
}

static void MakeGroup(const std::string &text, int number) {
    std::string name = "feg" + std::to_string(number);
    if (text.empty()) return;
    MakeObject(GroupDesc, name, "");
    XmtSetLabelRaw(name.c_str(), text.c_str());
}

// In the order of the file, with the name of its group above the first of each run.
static void MakeRows(const FeatureWindow &window) {
    int number = 0;
    for (size_t i = 0; i < window.rows.size(); i++) {
        const FeatureRow &row = window.rows[i];
        if (BeginsGroup(window, i))
            MakeGroup(CleanText(row.option->group, WindowLook.label, WindowLook), ++number);
        if (row.flList)
            MakeList(row);
        else
            MakeMenu(row);
        XmtSetLabelRaw((row.name + "_L").c_str(), OptionText(*row.option, WindowLook).c_str());
    }
}

// The choices stand below each other, behind the widest label.
static void AlignLabels(const FeatureWindow &window) {
    XtArgVal widest = 0;
    for (const FeatureRow &row : window.rows)
        widest = std::max(widest, XmtGetXmValue((row.name + "_L").c_str(), XmNwidth));
    for (const FeatureRow &row : window.rows)
        if (Widget label = XmtGetWidget((row.name + "_L").c_str()))
            XtVaSetValues(label, XmNrecomputeSize, 0, XmNalignment, XmALIGNMENT_BEGINNING, XmNwidth, widest,
                          nullptr);
}

// ---- Sizes

static void ShowFocus(Widget scroller, XtPointer, XtPointer call) {
    Widget next = static_cast<XmTraverseObscuredCallbackStruct *>(call)->traversal_destination;
    XmScrollVisible(scroller, next, SCROLL_MARGIN, SCROLL_MARGIN);
}

// Motif knows sizes only when the widgets have their windows, which nobody sees so far.
static void RealizeUnseen() {
    XtSetMappedWhenManaged(AppShell, 0);
    XtRealizeWidget(AppShell);
    XtVaSetValues(AppShell, XmNallowShellResize, 1, nullptr);
}

static void ShowRealized() {
    XtVaSetValues(AppShell, XmNallowShellResize, 0, nullptr);
    XtSetMappedWhenManaged(AppShell, 1);
    XtMapWidget(AppShell);
}

// All rows if the screen has room for them; a bar takes room beside those that are cut.
static void SetSize() {
    Widget scroller = XmtGetWidget(Scroller);
    int width = static_cast<int>(XmtGetXmValue(RowBox, XmNwidth));
    int height = static_cast<int>(XmtGetXmValue(RowBox, XmNheight));
    int most = HeightOfScreen(AppScreen) * HEIGHT_PART / PERCENT;
    Widget bar = reinterpret_cast<Widget>(XmtGetXmValueW(scroller, XmNverticalScrollBar));
    constexpr int frame = 6;
    if (height > most) width += static_cast<int>(XmtGetXmValueW(bar, XmNwidth)) + frame;
    width = std::min(width + frame, WidthOfScreen(AppScreen) * WIDTH_PART / PERCENT);
    XtVaSetValues(scroller, XmNwidth, width, XmNheight, std::min(height + frame, most), nullptr);
    XtAddCallback(scroller, XmNtraverseObscuredCallback, ShowFocus, nullptr);
    // Where the buttons, or the user, make the window wider than the rows.
    Widget clip = reinterpret_cast<Widget>(XmtGetXmValueW(scroller, XmNclipWindow));
    XtVaSetValues(clip, XmNbackground, XmtGetXmValue(RowBox, XmNbackground), nullptr);
    XtVaSetValues(bar, XmNtraversalOn, 0, nullptr); // the rows come into sight as the focus goes there
}

// ---- What the user chose

static int GetPosition(const FeatureRow &row) {
    if (!row.flList) return static_cast<int>(XmtGetValue(row.name.c_str()));
    int *positions = nullptr, count = 0;
    if (!XmListGetSelectedPos(XmtGetWidget(row.name.c_str()), &positions, &count)) return -1;
    int position = positions[0] - 1;
    XtFree(reinterpret_cast<char *>(positions));
    return position;
}

static void TakeChoices() {
    for (FeatureRow &row : pWindow->rows) {
        int position = GetPosition(row);
        if (position >= 0) row.option->chosen = position - row.flUnset;
    }
}

static void Store() {
    FeatureTask &task = pWindow->task;
    std::string error = WriteSettings(task.target, MakeSettings(task.ppd, task.settings));
    pWindow->flStored = error.empty();
    flExitMainLoop = error.empty();
    PostNote(error);
}

static void FeatureEventHandler(XmtCallData *data);

// What is broken comes behind a line feed.
static void Apply() {
    TakeChoices();
    std::string broken = BrokenText(pWindow->task.ppd, WindowLook);
    if (broken.empty()) return Store();
    XmtSetPostMsgWidget(FeatureEventHandler, FRONT_ALL_THE_SAME);
    PostNote(broken.substr(1) + "\n\n" + FeatureText(WINDOW_ALL_THE_SAME));
}

static void FeatureEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    switch (data->id) {
    case FRONT_APPLY: Apply(); break;
    case FRONT_CANCEL: flExitMainLoop = 1; break;
    case FRONT_HELP: ShowFeatureHelp(); break;
    case FRONT_ALL_THE_SAME:
        if (data->reason == XmtCR_OK) Store();
        break;
    default: break; // the rows are read when the user applies
    }
}

// ---- The window

static std::string TitleText(const FeatureTask &task) {
    std::string model = CleanText(task.ppd.model, WindowLook.model, WindowLook);
    std::string queue = CleanText(task.queue, WindowLook.model, WindowLook);
    return (queue.empty() ? "" : queue + ": ") + FillText(WINDOW_TITLE, model);
}

// A window without rows says why.
static void MakeNote(int number, const FeatureTask &task) {
    MakeObject(GroupDesc, "fen", "");
    XmtSetLabelRaw("fen", FillText(number, CleanText(task.ppd.model, WindowLook.model, WindowLook)).c_str());
    XmtDisable("fea");
}

static void FillWindow(FeatureWindow &window) {
    CollectRows(window);
    bool flFits = SumHeights(window) <= HEIGHT_MAX;
    if (window.rows.empty() || !flFits) {
        MakeNote(flFits ? WINDOW_NO_OPTIONS : WINDOW_TOO_MANY, window.task);
        window.rows.clear();
    }
    MakeRows(window);
    AlignLabels(window);
}

bool ChooseFeatures(FeatureTask &task) {
    const FrontWindow &front = FrontWindows[FRONT_FEATURES_WINDOW];
    FeatureWindow window = {task, {}, false};
    pWindow = &window;
    MakeWindow(front, FeatureEventHandler);
    FillWindow(window);
    FinishWindow(front);
    std::string title = TitleText(task);
    XmtSetTitle(front.name, title.c_str());
    XmtSetIconName(front.name, title.c_str());
    XmtLetGrow(Scroller);
    RealizeUnseen();
    SetSize();
    ShowRealized();
    WatchCaller();
    XmtMainEventLoop();
    pWindow = nullptr;
    return window.flStored;
}
