// The window of the manual.
#include "xmt/XmtHelp.h"

#include "common/NlsUtils.h"
#include "help/html.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <iterator>
#include <string>
#include <vector>

enum { HELP_CLOSE = 10000, HELP_CONTENTS, HELP_BACK, HELP_TEXT };
enum { NO_POSITION = -1, LINE_LONG = 4096, LINE_LONGEST = 2 * LINE_LONG };
static const char HelpWindow[] = "xmtbw";
static const char HelpText[] = "xmtbt";

int flHelpOnly;

// It stands alone: without a main window nobody has read the macros of the others, which have the same
// bodies.
#define HELP_MACROS                                                                                          \
    ".0 c(bg white,fg black)\n"                                                                              \
    ".1 c(bg #BFEFFF,fg black)\n"                                                                            \
    ".7 c(bg white,fg black)\n"                                                                              \
    "id(10000)\n"
#define HELP_BODY                                                                                            \
    " {\n"                                                                                                   \
    " M xmtbmenu .1 St(T) A(tf,lf,rf) { id(10000) b(%s) b(%s) b(%s) }\n"                                     \
    " t xmtbt .0 s(80,30) F_(7x14) Se(F) Ss(T,F) Sw(T) CB(m) A(tw xmtbmenu,lf,rf,bf);\n"                     \
    "}\n"
const char XmtHtmlHelpDesc[] = HELP_MACROS "DF xmtbw t(%s) .7 m(0,0) M(a)" HELP_BODY;
const char XmtHelpMWDesc[] = HELP_MACROS "WF xmtbw t(%s) .7 m(0,0) M(n)" HELP_BODY;

// ---- the text

// While one lives the program moves the cursor itself, which is no click.
static int TextChanges;
struct TextChange {
    TextChange() { TextChanges++; }
    ~TextChange() { TextChanges--; }
    TextChange(const TextChange &) = delete;
    TextChange &operator=(const TextChange &) = delete;
};

static HtmlLink *MarkedLink; // the one that Tab went to, or null; of the page on show

static void MarkLink(HtmlLink *link) {
    if (MarkedLink) XmtClearTextHighlight(HelpText, MarkedLink->Start, MarkedLink->End);
    MarkedLink = link;
    if (link) XmtSetTextHighlight(HelpText, link->Start, link->End);
}

// Motif wraps and scrolls a line in a time that grows with the square of its length, minutes for a megabyte.
// Places in the text must stay: a blank makes room for a line feed, in a word without end a letter.
static std::string BreakLines(const char *image) {
    std::string text = image;
    int length = 0;
    for (char &ch : text) {
        if (length >= (ch == ' ' ? LINE_LONG : LINE_LONGEST)) ch = '\n';
        length = ch == '\n' ? 0 : length + 1;
    }
    return text;
}

static void PutPage() {
    TextChange change;
    MarkLink(nullptr);
    if (pCurrentPage) XmtSetText(HelpText, BreakLines(pCurrentPage->TextImage).c_str());
}

void SetGuiPos() {
    TextChange change;
    XmtSetTextPosTop(HelpText, TargetPos);
}

// ---- what the user does

// True if there was a link at the position that leads somewhere.
static bool FollowLink(int position) {
    HtmlPage *page = pCurrentPage;
    int before = TargetPos;
    TargetPos = NO_POSITION;
    HtmlProcessLink(position);
    bool flMoved = pCurrentPage != page || (TargetPos != NO_POSITION && TargetPos != position);
    if (!flMoved) {
        TargetPos = before;
        return false;
    }
    PutPage();
    EventLoopCBF = SetGuiPos;
    return true;
}

static void CloseHelp() {
    XmtHide(HelpWindow);
    if (flHelpOnly) flExitMainLoop = 1;
}

static void GoToContents() {
    HtmlSetHistory(0);
    PutPage();
}

static void GoBack() {
    if (!HtmlSetHistory(-1)) return GoToContents();
    PutPage();
    TextChange change;
    if (TargetPos != 0) XmtSetTextPos(HelpText, TargetPos);
}

static Time FollowTime; // of the press that followed a link

// The cursor moves by keys and by dragging too, and Motif does not tell by what: a button that goes down is a
// click. Motif must not move the cursor on in the new text.
static void ClickText(XmtCallData *data) {
    const XEvent *event = data->callData ? XtLastEventProcessed(AppDisplay) : nullptr;
    if (data->callData && (!event || event->type != ButtonPress)) return;
    if (!FollowLink(static_cast<int>(data->newInsert))) return;
    if (data->doit) *data->doit = 0;
    if (event) FollowTime = event->xbutton.time;
}

void XmtHtmlEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE || TextChanges > 0) return;
    switch (data->id) {
    case HELP_CLOSE: CloseHelp(); break;
    case HELP_CONTENTS: GoToContents(); break;
    case HELP_BACK: GoBack(); break;
    case HELP_TEXT: ClickText(data); break;
    default: break; // nothing else has a number
    }
}

// The second press of a double click would follow what stands there on the new page. And Motif tells of no
// move when the cursor is there already, as on the link that Back returned to.
static void PressButton(Widget text, XtPointer, XEvent *event, Boolean *flContinue) {
    const XButtonEvent *press = &event->xbutton;
    if (press->button != Button1) return;
    if (FollowTime && press->time - FollowTime < static_cast<Time>(XtGetMultiClickTime(XtDisplay(text)))) {
        *flContinue = 0;
        return;
    }
    FollowTime = 0;
    auto position = XmTextXYToPos(text, static_cast<Position>(press->x), static_cast<Position>(press->y));
    if (position != XmTextGetInsertionPosition(text) || !FollowLink(static_cast<int>(position))) return;
    *flContinue = 0;
    FollowTime = press->time;
}

// ---- keys

static bool IsHref(const HtmlLink *link) {
    return link->Kind == LINK_HREF && link->Target && link->Size > 0;
}

// The next link behind the position, or before it, around the end.
static HtmlLink *FindNextLink(int position, bool flBack) {
    HtmlLink *found = nullptr, *around = nullptr;
    for (int i = 0; pCurrentPage && i < pCurrentPage->AnchorCount; i++) {
        HtmlLink *link = pCurrentPage->Anchors[i];
        if (!IsHref(link)) continue;
        if (flBack ? link->End <= position : link->Start > position && !found) found = link;
        if (flBack || !around) around = link;
    }
    return found ? found : around;
}

static void GoToLink(bool flBack) {
    HtmlLink *link = FindNextLink(XmtGetTextPos(HelpText), flBack);
    if (!link) return;
    TextChange change;
    XmtSetTextPos(HelpText, link->Start);
    MarkLink(link);
}

static void PressKey(Widget, XEvent *, String *words, Cardinal *count) {
    switch (*count > 0 ? words[0][0] : 0) {
    case 'f': FollowLink(XmtGetTextPos(HelpText)); break;
    case 'n': GoToLink(false); break;
    case 'p': GoToLink(true); break;
    case 'c': GoToContents(); break;
    case 'b': GoBack(); break;
    case 'e': CloseHelp(); break;
    default: break; // the table below names no other
    }
}

static const char Keys[] = ":<Key>osfActivate: XmtHelpKey(follow)\n"
                           "~m ~a <Key>Return: XmtHelpKey(follow)\n"
                           "~m ~a <Key>KP_Enter: XmtHelpKey(follow)\n"
                           "~m ~a <Key>space: XmtHelpKey(follow)\n"
                           "s ~m ~a <Key>Tab: XmtHelpKey(previous)\n"
                           "~s ~m ~a <Key>Tab: XmtHelpKey(next)\n"
                           ":<Key>osfHelp: XmtHelpKey(contents)\n"
                           ":<Key>osfBackSpace: XmtHelpKey(back)\n"
                           ":<Key>osfCancel: XmtHelpKey(exit)\n";

static void AddKeys(Widget text) {
    static char name[] = "XmtHelpKey";
    static XtActionsRec actions[] = {{name, PressKey}};
    XtAppAddActions(AppContext, actions, std::size(actions));
    XtOverrideTranslations(text, XtParseTranslationTable(Keys));
    XtAddEventHandler(text, ButtonPressMask, 0, PressButton, nullptr);
    XtVaSetValues(text, XmNverifyBell, 0, nullptr);
}

// ---- the window

static std::string FillHelpDesc(const char *text, const char *title) {
    constexpr size_t holes = 3;
    const char *hole = strstr(text, "%s"), *rest = hole + 2;
    std::vector<char> filled(strlen(rest) + holes * NLS_GUI_TEXT);
    NlsGuiStrCvt(rest, NLS_HELP_SET, filled.data(), filled.size());
    return std::string(text, hole) + title + filled.data();
}

static void MakeHelpWindow(const char *title) {
    const char *text = pAppWinName ? XmtHtmlHelpDesc : XmtHelpMWDesc;
    XmtNewObject(pAppWinName, XmtHtmlEventHandler, 0, FillHelpDesc(text, title).c_str());
    XmtSetIconName(HelpWindow, title);
    XmtAddMenuKeys("xmtbmenu");
    if (Widget widget = XmtGetWidget(HelpText)) AddKeys(widget);
}

int XmtHtmlHelp(const char *name, const char *buffer, const char *title) {
    if (!name || !title) return 0;
    if (!XmtFindObject(HelpWindow)) MakeHelpWindow(title);
    if (!HtmlHelp(name, buffer)) return 0;
    PutPage();
    SetGuiPos();
    XmtShow(HelpWindow);
    XmtSetFocus(HelpWindow);
    if (flHelpOnly) XmtMainEventLoop();
    return 1;
}
