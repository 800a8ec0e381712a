// Callback keys: the resources that they mean, and the reasons with which their events come.
#include "xmt/XmtCallback.h"

#include "xmt/XmtEvent.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtToken.h"

#include <cstring>
#include <iterator>

constexpr char pCBKeys[] = ",me,ml,pe,pi,ps,a,c,m,fg,fl,sb,ss,sm,sd,se,pu,pd,D,A,t,h,i,e,s,";
enum { CB_ENTER = 1, CB_LEAVE = 2, CB_PICTURE = 5 }; // keys up to here go to other functions

// ORDER pCBKeys, from 1
static const char *const pCBMKeys[] = {
    nullptr,
    nullptr,
    nullptr,
    "exposeCallback",
    "inputCallback",
    "resizeCallback",
    "activateCallback",
    "modifyVerifyCallback",
    "motionVerifyCallback",
    "focusCallback",
    "losingFocusCallback",
    "browseSelectionCallback",
    "singleSelectionCallback",
    "multipleSelectionCallback",
    "defaultActionCallback",
    "extendedSelectionCallback",
    "popupCallback",
    "popdownCallback",
    "disarmCallback",
    "armCallback",
    "traversalCallback",
    "helpCallback",
    "inputCallback",
    "exposeCallback",
    "resizeCallback",
};

// ORDER pCBKeys, from 1. A list's events come with XmtCR_UNKNOWN all the same.
const int CBR[] = {
    XmtCR_CREATE,  XmtCR_ENTER,        XmtCR_LEAVE,
    XmtCR_EXPOSE,  XmtCR_INPUT,        XmtCR_RESIZE,
    XmtCR_DEFAULT, XmtCR_CHANGED,      XmtCR_MOTION,
    XmtCR_FOCUS,   XmtCR_LOSING_FOCUS, XmtCR_DEFAULT,
    XmtCR_DEFAULT, XmtCR_DEFAULT,      XmtCR_DEFAULT,
    XmtCR_DEFAULT, XmtCR_MAP,          XmtCR_UNMAP,
    XmtCR_DISARM,  XmtCR_ARM,          XmtCR_OBSCURED_TRAVERSAL,
    XmtCR_HELP,    XmtCR_INPUT,        XmtCR_EXPOSE,
    XmtCR_RESIZE,
};
static_assert(std::size(CBR) == XmtCountWords(pCBKeys) + 1);
static_assert(std::size(pCBMKeys) == std::size(CBR));

void XmtConnect(XmtObjectData *object, const char *resource) {
    XtAddCallback(object->widget, resource, XmtEventHandler, object);
}

// A masked field always hears of its changes. A second call would take its stars for what was typed.
static bool IsMaskConnected(const XmtObjectData *object, const char *resource) {
    return object->type == XmtPasswd && strcmp(resource, XmNmodifyVerifyCallback) == 0 &&
           XtHasCallbacks(object->widget, resource) == XtCallbackHasSome;
}

static void ConnectKey(XmtObjectData *object, int key) {
    const char *resource = pCBMKeys[key];
    if (key == CB_ENTER)
        XtAddEventHandler(object->widget, EnterWindowMask, 0, XmtEnter, object);
    else if (key == CB_LEAVE)
        XtAddEventHandler(object->widget, LeaveWindowMask, 0, XmtLeave, object);
    else if (XtHasCallbacks(object->widget, resource) != XtCallbackNoList &&
             !IsMaskConnected(object, resource))
        XtAddCallback(object->widget, resource, key <= CB_PICTURE ? XmtPictureEventHandler : XmtEventHandler,
                      object);
}

void SetCallBack(XmtObjectData *object, const char *keys) {
    XmtTokenRecord tokens = {};
    if (!keys || !object->widget) return;
    for (char *key = XmtStrTok(&tokens, keys, ",)"); key; key = XmtStrTok(&tokens, nullptr, ",)"))
        if (int n = XmtFindToken(key, pCBKeys)) ConnectKey(object, n);
}
