#include "tests/lib/WindowUser.h"

#include "common/MemMgr.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <sstream>
#include <utility>

enum { LOOK_MS = 5, LIMIT_MS = 10000 };

static const std::function<bool()> *pDone;
static bool flDone;
static std::chrono::steady_clock::time_point Limit;

bool FindWindowUser(std::string *reason) {
    if (system("command -v xdotool >/dev/null") == 0) return true;
    *reason = "there is no xdotool here";
    return false;
}

static std::string SkipReason = "the window was not made";

bool WindowTest::SetUpWindow(XmtHandler handler, int firstId, const char *description) {
    if (FindWindowUser(&SkipReason) && StartWindowRig("1024x768x24", &SkipReason))
        XmtNewObject(nullptr, handler, firstId, description);
    return AppShell != nullptr;
}

void WindowTest::SetUp() {
    if (!AppShell) GTEST_SKIP() << SkipReason;
}

std::string Events;

void RecordEvent(XmtCallData *data) {
    std::string value = data->value > INT_MAX ? "text" : std::to_string(data->value);
    Events += std::string(data->name ? data->name : "") + " " + std::to_string(data->id) + "/" +
              std::to_string(data->reason) + "=" + value;
    if (data->text)
        Events += " " + (data->length > 0 ? std::string(data->text, data->length) : std::string(data->text));
    for (const char *text = data->selection; text && *text; text += strlen(text) + 1)
        Events += std::string("+") + text;
    Events += ";";
}

std::string TakeEvents() {
    return std::exchange(Events, "");
}

static void Xdo(const std::string &words) {
    if (system(("xdotool " + words).c_str()) != 0) printf("xdotool %s failed\n", words.c_str());
}

void PressKeys(const std::string &keys) {
    Xdo("key --delay 5 " + keys);
}

void PressSlowly(const char *keys) {
    std::istringstream in(keys);
    for (std::string key; in >> key; RunLoopFor(60)) {
        PressKeys(key);
        DispatchWaiting();
    }
}

void TypeText(const char *text) {
    Xdo(std::string("type --delay 5 '") + text + "'");
}

void PointAt(const char *name) {
    Widget widget = XmtGetWidget(name);
    if (!widget || !XtIsRealized(widget)) {
        printf("there is no %s to point at\n", name);
        return;
    }
    auto width = static_cast<Position>(XmtGetXmValue(name, XmNwidth));
    auto height = static_cast<Position>(XmtGetXmValue(name, XmNheight));
    Position x, y;
    XtTranslateCoords(widget, static_cast<Position>(width / 2), static_cast<Position>(height / 2), &x, &y);
    Xdo("mousemove " + std::to_string(x) + " " + std::to_string(y));
}

void ClickAt(const char *name) {
    PointAt(name);
    Xdo("click 1");
}

void PressAt(const char *name, const char *keys) {
    XmtSetFocus(name);
    DispatchWaiting();
    PressKeys(keys);
    DispatchWaiting();
}

void ClickAndDispatch(const char *name) {
    ClickAt(name);
    DispatchWaiting();
}

void ClickPoint(int x, int y) {
    Xdo("mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

void CloseByManager(const char *name) {
    Widget shell = XtParent(XmtGetWidget(name));
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(shell);
    event.xclient.message_type = XInternAtom(AppDisplay, "WM_PROTOCOLS", 0);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(AppDisplay, "WM_DELETE_WINDOW", 0));
    XSendEvent(AppDisplay, XtWindow(shell), 0, NoEventMask, &event);
    XFlush(AppDisplay);
}

static void Look(XtPointer, XtIntervalId *) {
    flDone = (*pDone)();
    flExitMainLoop = flDone || std::chrono::steady_clock::now() > Limit;
    if (flExitMainLoop)
        XmtWakeMainLoop();
    else
        XtAppAddTimeOut(AppContext, LOOK_MS, Look, nullptr);
}

bool RunLoopUntil(const std::function<bool()> &done) {
    pDone = &done;
    Limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(LIMIT_MS);
    XtAppAddTimeOut(AppContext, LOOK_MS, Look, nullptr);
    XmtMainEventLoop();
    return flDone;
}

void RunLoopFor(int milliseconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    RunLoopUntil([end] { return std::chrono::steady_clock::now() > end; });
}

extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

size_t HeldBytes() {
    int nodes = 0;
    for (MemBlock *block = pMemB; block; block = block->next)
        nodes += block->usedSize ? block->usedSize / MEM_NODE_SIZE : MEM_BLOCK_NODES - block->freeCount;
    size_t bytes = static_cast<size_t>(nodes) * MEM_NODE_SIZE;
    return bytes + (__sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                            : mallinfo2().uordblks);
}
