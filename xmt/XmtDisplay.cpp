// Opens the display.
#include "xmt/XmtDisplay.h"

#include "common/utils.h"
#include "xmt/XmtScale.h"

#include <csetjmp>
#include <csignal>
#include <cstring>
#include <unistd.h>

XtAppContext AppContext;
Display *AppDisplay;
Screen *AppScreen;
int AppScreenNum;
Colormap AppColormap;
int flInitAppTimedOut;
int XmtOpenSeconds = XMT_OPEN_SECONDS;

static sigjmp_buf XtOpenAlarmEnv;
static bool flOpening; // XtOpenAlarmEnv can be jumped to

// The client of the display is not touched again behind the jump, so that what it holds does not matter.
static void XtOpenCB(int) {
    siglongjmp(XtOpenAlarmEnv, -1);
}

// Nothing of the windows can go on without the display, and Xlib does not let its caller return. One that
// goes while it is being opened is no display.
static int EndOnXIOError(Display *) {
    if (flOpening) siglongjmp(XtOpenAlarmEnv, -1);
    ErrorMsg(ERR_FATAL, 1, "lost the connection to the display");
    return 0;
}

static void CatchAlarm(struct sigaction *old, sigset_t *oldMask) {
    struct sigaction action {};
    action.sa_handler = XtOpenCB;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, old);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &mask, oldMask);
}

static void ReleaseAlarm(const struct sigaction *old, const sigset_t *oldMask) {
    alarm(0);
    sigaction(SIGALRM, old, nullptr);
    sigprocmask(SIG_SETMASK, oldMask, nullptr);
}

// Null if there is no display or it does not answer within the limit; no object with a destructor lives here,
// because of the jump.
static Display *OpenDisplay(const char *name, const char *appClass, int *argc, char **argv) {
    struct sigaction old;
    sigset_t oldMask;
    Display *volatile display = nullptr;
    CatchAlarm(&old, &oldMask);
    if (sigsetjmp(XtOpenAlarmEnv, 1) == 0) {
        flOpening = true;
        alarm(static_cast<unsigned>(XmtOpenSeconds));
        display = XtOpenDisplay(AppContext, nullptr, name, appClass, nullptr, 0, argc, argv);
    }
    flOpening = false;
    ReleaseAlarm(&old, &oldMask);
    return display;
}

// A window may go while a request for it is under way: that is no reason to end.
static int LogXError(Display *display, XErrorEvent *error) {
    char text[256];
    XGetErrorText(display, error->error_code, text, sizeof(text));
    PutLogMsg("X error: %s, request %d, resource 0x%lx\n", text, error->request_code, error->resourceid);
    return 0;
}

// ":0.1" is screen 1; a host may hold colons itself.
static int GetScreenNum(Display *display) {
    const char *number = strrchr(DisplayString(display), ':');
    const char *dot = number ? strchr(number, '.') : nullptr;
    int screen = dot ? ParseInt(dot + 1) : 0;
    return screen < ScreenCount(display) ? screen : 0;
}

// What is dragged from a label to a list ends in XmStringFree of a number: Motif 2.3.8 can't take it. Nothing
// here is meant to be dragged; texts are marked and pasted all the same.
static void ForbidDragging() {
    XrmDatabase all = XtScreenDatabase(AppScreen);
    XrmPutStringResource(&all, "*dragInitiatorProtocolStyle", "DRAG_NONE");
    XrmPutStringResource(&all, "*dragReceiverProtocolStyle", "DRAG_NONE");
}

static bool FailInitApp() {
    fflush(stdout);
    fprintf(stderr, "%s: WARNING: can't open display\n", my_name);
    AppDisplay = nullptr;
    AppContext = nullptr;
    flInitAppTimedOut = 1;
    return false;
}

bool XmtInitApp(const char *name, const char *appClass, int *argc, char **argv) {
    int noArgc = 0;
    char *noArgv[] = {nullptr};
    XtToolkitInitialize();
    AppContext = XtCreateApplicationContext();
    XSetIOErrorHandler(EndOnXIOError);
    AppDisplay = OpenDisplay(name, appClass, argc ? argc : &noArgc, argc ? argv : noArgv);
    if (!AppDisplay) return FailInitApp();
    XSetErrorHandler(LogXError);
    AppScreenNum = GetScreenNum(AppDisplay);
    AppScreen = ScreenOfDisplay(AppDisplay, AppScreenNum);
    AppColormap = DefaultColormapOfScreen(AppScreen);
    ForbidDragging();
    XmtReadScale(name, appClass);
    XmtAddScaleDefaults();
    flInitAppTimedOut = 0;
    return true;
}
