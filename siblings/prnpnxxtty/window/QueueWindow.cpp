// The list of queues, and the change of the one whose features were chosen.
#include "siblings/prnpnxxtty/window/QueueWindow.h"

#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/Told.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Records.h"
#include "siblings/prnpnxxtty/Shown.h"
#include "siblings/prnpnxxtty/window/Window.h"
#include "siblings/prnpnxxtty/window/WindowDesc.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtGrow.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

static const char QueueList[] = "qfl";
static const char Controls[] = "qfl,qfo,qfc";

struct QueueWindow {
    std::vector<std::string> names; // in the order of the list
    std::string name;               // the queue whose features are being chosen
    FILE *child = nullptr;          // its run of the front end
    XtInputId input = 0;
    std::string said;  // by it: a line if the features were applied
    std::string files; // directory of the run's own, or empty
    std::unique_ptr<ToldEar> ear;
};

static QueueWindow *pWindow; // the one that is open, for the callbacks; writer: ChooseQueue

// ---- Files of the change

// Those of the tool directory may belong to a window that adds or modifies another queue meanwhile.
static std::string MakeFiles() {
    char path[] = "/tmp/prnfeatures.XXXXXX";
    if (!mkdtemp(path)) return std::string("can't make ") + path + ": " + strerror(errno);
    pWindow->files = path;
    return "";
}

static std::string OwnFile(const char *name) {
    return pWindow->files + "/" + name;
}

static void DropFiles() {
    for (const char *name : {SettingsFile, BannerFile}) unlink(OwnFile(name).c_str());
    rmdir(pWindow->files.c_str());
    pWindow->files.clear();
}

// ---- The change

// The status of a command line that is run with its output thrown away tells nothing of the program's own.
static bool RunModify(const std::string &line, std::string &told) {
    told = GetQueToolFault();
    if (!told.empty()) return false;
    ToldEar ear;
    ResponseNode *done =
        GetCmdResponse(CMD_QUIET, nullptr, "%s 1>/dev/null 2>/dev/null && echo done", line.c_str());
    told = ear.Text();
    FreeResponseList(done);
    return done != nullptr;
}

// What the queue tool is not told to keep it switches off.
static std::string ModifyQueue(const std::string &name) {
    Queue queue;
    std::string error = RecordsOpen(), told;
    if (error.empty() && !RecordsRead(name, queue)) error = FillText(WINDOW_NO_QUEUE, name);
    std::string banner = queue.banner.empty() ? "" : OwnFile(BannerFile);
    if (error.empty() && !banner.empty()) error = ReplaceFile(banner, queue.banner, 0644);
    if (!error.empty()) return error;
    QueOptions options = {queue.flFeatures, queue.flBanner, queue.flUserInterface, RecordsDefault() == name};
    std::string line = MakeModifyLineOf(name.c_str(), options, OwnFile(SettingsFile), banner);
    bool flStored = RunModify(line, told);
    std::string done = FillText(flStored ? WINDOW_STORED : WINDOW_NOT_STORED, name);
    return told.empty() ? done : told + "\n\n" + done;
}

// ---- The run that asks

// A run that was killed, or couldn't be started, told nothing.
static std::string TakeTold(int status) {
    std::string told = pWindow->ear->Text();
    return status && told.empty() ? FillText(WINDOW_NOT_STORED, pWindow->name) : told;
}

static void EndChild() {
    XtRemoveInput(pWindow->input);
    int status = pclose(pWindow->child);
    std::string told = TakeTold(status);
    pWindow->child = nullptr;
    pWindow->ear.reset();
    PostNote(told);
    if (status == 0 && !pWindow->said.empty()) {
        BusyCursor busy("qfw");
        PostNote(ModifyQueue(pWindow->name));
    }
    DropFiles();
    XmtEnable(Controls);
    XmtSetFocus(QueueList);
    XmtShowWaitingMsg(); // the main loop shows messages behind an event, and this is none
}

static void ReadChild(XtPointer, int *file, XtInputId *) {
    char text[512];
    ssize_t count = read(*file, text, sizeof text);
    if (count > 0) pWindow->said.append(text, static_cast<size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) EndChild();
}

static void StartChild(const std::string &name) {
    Queue queue;
    std::string error = RecordsOpen();
    if (error.empty() && !RecordsRead(name, queue)) error = FillText(WINDOW_NO_QUEUE, name);
    if (error.empty()) error = GetToolFault(FrontEndProgram);
    if (error.empty()) error = MakeFiles();
    if (!error.empty()) return PostNote(error);
    std::string line = "exec " + ShArg(std::string(pToolPath) + "/" + FrontEndProgram) +
                       (queue.flBanner ? " -SBP" : "") + " -fs " + OwnFile(SettingsFile) + " -MS" +
                       ShArg(name);
    pWindow->name = name;
    pWindow->said.clear();
    pWindow->ear = std::make_unique<ToldEar>();
    pWindow->child = popen(line.c_str(), "re");
    if (!pWindow->child) {
        PostNote(strerror(errno));
        pWindow->ear.reset();
        return DropFiles();
    }
    XmtDisable(Controls);
    pWindow->input = XtAppAddInput(AppContext, fileno(pWindow->child),
                                   reinterpret_cast<XtPointer>(XtInputReadMask), ReadChild, nullptr);
}

static void OpenSelected() {
    int *positions = nullptr, count = 0;
    if (pWindow->child || !XmListGetSelectedPos(XmtGetWidget(QueueList), &positions, &count)) return;
    size_t index = static_cast<size_t>(positions[0] - 1);
    XtFree(reinterpret_cast<char *>(positions));
    if (index < pWindow->names.size()) StartChild(pWindow->names[index]);
}

// ---- The window

static void QueueEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    switch (data->id) {
    case FRONT_FEATURES: OpenSelected(); break;
    case FRONT_CLOSE: flExitMainLoop = 1; break;
    case FRONT_QUEUES_HELP: ShowFeatureHelp(); break;
    default: break; // FRONT_QUEUE
    }
}

static void OpenByList(Widget, XtPointer, XtPointer) {
    OpenSelected();
}

static void FillList() {
    PostNote(RecordsOpen());
    pWindow->names = RecordsQueues();
    std::sort(pWindow->names.begin(), pWindow->names.end());
    XmtDeleteAllListItems(QueueList); // a text makes no list without an item
    for (const std::string &name : pWindow->names)
        XmtAddListItem(QueueList, CleanText(name, WindowLook.label, WindowLook).c_str(), 0);
    XmtSetListItem(QueueList, 1, 0);
    if (pWindow->names.empty()) PostNote(FeatureText(WINDOW_NO_QUEUES));
    if (geteuid() != 0 && access(pToolPath, W_OK) != 0) PostNote(FeatureText(WINDOW_NO_RIGHT));
}

int ChooseQueue() {
    const FrontWindow &front = FrontWindows[FRONT_QUEUES_WINDOW];
    QueueWindow window;
    pWindow = &window;
    MakeWindow(front, QueueEventHandler);
    FillList();
    XmtLetGrow("qfb");
    XmtLetListGrow(QueueList);
    FinishWindow(front);
    XtVaSetValues(XmtGetWidget(QueueList), XmNselectionPolicy, XmBROWSE_SELECT, nullptr);
    // Return in the list and a double click, of which the handler would hear as of a selection.
    XtAddCallback(XmtGetWidget(QueueList), XmNdefaultActionCallback, OpenByList, nullptr);
    XmtMainEventLoop();
    pWindow = nullptr;
    return 0;
}
