// Runs formats: the small programs by which one object works on others.
#include "xmt/XmtFormat.h"

#include "common/utils.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtUtils.h"
#include "xmt/XmtValidate.h"

#include <cctype>
#include <cstring>
#include <string>

static const char StateDelims[] = "[] ";

XmtFormatRun XmtFormatState;

// One format while it runs.
struct FormatRun {
    XmtObjectData *object;
    XmtCallData *data;
    bool flMatch;         // state format: of the clause's condition
    std::string argument; // button format: behind the '_' of the head
};

// What an action does with its target when the clause's condition holds, and in a state format when it does
// not. The letters that are not here have functions of their own.
struct FormatAction {
    char letter;
    void (*match)(const char *target);
    void (*miss)(const char *target); // null for nothing
};
static constexpr FormatAction FormatActions[] = {
    {'H', XmtHide, XmtShow},
    {'S', XmtShow, XmtHide},
    {'E', XmtEnable, XmtDisable},
    {'D', XmtDisable, XmtEnable},
    {'r', XmtRaiseItem, XmtLowerItem},
    {'l', XmtLowerItem, XmtRaiseItem},
    {'A', XmtStoreValue, XmtStoreValue},
    {'R', XmtResetToStoredValue, XmtResetToStoredValue},
    {'t', XmtSetFocus, XmtSetFocus},
};

static const FormatAction *FindAction(char letter) {
    for (const FormatAction &action : FormatActions)
        if (action.letter == letter) return &action;
    return nullptr;
}

bool XmtTestFormatState(const char *list, int state) {
    const char *at = list ? list : "";
    while (*at) {
        if (*at == '*' || ParseInt(at) == state) return true;
        while (isdigit(static_cast<unsigned char>(*at))) at++;
        while (*at && !isdigit(static_cast<unsigned char>(*at))) at++;
    }
    return false;
}

// ---- actions on "name.value"

// Takes the target apart at its first '.'; false without one.
static bool SplitTarget(const char *target, std::string *name, std::string *value) {
    const char *dot = strchr(target, '.');
    if (!dot) return false;
    name->assign(target, dot);
    *value = dot + 1;
    return true;
}

// V[name.number]
static void SetNumber(const char *target) {
    std::string name, value;
    if (SplitTarget(target, &name, &value))
        XmtSetValuePF(name.c_str(), static_cast<intptr_t>(ParseInt(value.c_str())), 1);
}

// v[name.text]
static void SetText(const char *target) {
    std::string name, value;
    if (SplitTarget(target, &name, &value)) XmtSetValuePF(name.c_str(), value.c_str(), 1);
}

// f[name.format], blanks written as '_'
static void SetFormat(const char *target) {
    std::string name, value;
    if (!SplitTarget(target, &name, &value)) return;
    for (char &ch : value)
        if (ch == '_') ch = ' ';
    XmtReplaceFormat(name.c_str(), value.c_str());
}

void XmtCallApp(const char *target, XmtObjectData *caller, XmtCallData *data) {
    bool flOwn = caller && (strcmp(target, ".") == 0 || (data->name && strcmp(target, data->name) == 0));
    if (flOwn) {
        if (caller->handler) caller->handler(data);
        return;
    }
    XmtObjectData *object = XmtFindObject(target);
    if (!object || !object->handler) return;
    XmtCallData copy = *data;
    copy.name = object->name;
    copy.id = object->id;
    copy.widget = object->widget;
    object->handler(&copy);
}

// P[name], P[name.number], P[name.decoration]
void ProcessFormat(const char *target, XmtCallData *data) {
    XmtCallData copy = *data;
    std::string name, value;
    bool flSplit = SplitTarget(target, &name, &value);
    XmtObjectData *object = XmtFindObject(flSplit ? name.c_str() : target);
    if (!object || !object->format) return;
    if (flSplit)
        copy.value = isdigit(static_cast<unsigned char>(value[0])) ? ParseInt(value.c_str()) : object->value;
    XmtProcessStateFormat(object, &copy);
}

// ---- the clauses

// An action that both dialects know and that runs on a match only.
static bool RunSharedAction(const FormatRun *run, char letter, const char *target) {
    switch (letter) {
    case 'C': XmtCallApp(target, run->object, run->data); return true;
    case 'P': ProcessFormat(target, run->data); return true;
    case 'V': SetNumber(target); return true;
    case 'v': SetText(target); return true;
    default: return false;
    }
}

static void StartStateClause(FormatRun *run, const char *head) {
    run->flMatch = XmtTestFormatState(head + 1, static_cast<int>(run->data->value));
}

static void RunStateAction(FormatRun *run, char letter, const char *target) {
    if (const FormatAction *action = FindAction(letter))
        return run->flMatch ? action->match(target) : action->miss(target);
    if (!run->flMatch || RunSharedAction(run, letter, target)) return;
    if (letter == 'f') SetFormat(target);
}

// A condition that is no key, which one with an argument never is, holds for every event.
static void StartButtonClause(FormatRun *run, const char *head) {
    const char *argument = strchr(head + 1, '_');
    int key = head[1] ? XmtFindToken(head + 1, pCBKeys) : 0;
    run->argument = argument ? argument + 1 : "";
    run->flMatch = key == 0 || CBR[key] == run->data->reason;
}

// b_width
static void SetBorderWidth(const FormatRun *run, const char *target) {
    if (run->argument.empty()) return;
    XmtSetXmValue(target, XmNborderWidth, XmtScaled(ParseInt(run->argument.c_str())));
}

// c_key_colour
static void SetTargetColor(const FormatRun *run, const char *target) {
    size_t split = run->argument.find('_');
    if (split == std::string::npos) return;
    XmtSetColor(target, run->argument.substr(0, split).c_str(), run->argument.c_str() + split + 1);
}

static void RunButtonAction(FormatRun *run, char letter, const char *target) {
    if (!run->flMatch) return;
    if (const FormatAction *action = FindAction(letter)) return action->match(target);
    if (RunSharedAction(run, letter, target)) return;
    switch (letter) {
    case 'F': return XmtSetFocus(run->object->name);
    case 'b': return SetBorderWidth(run, target);
    case 'c': return SetTargetColor(run, target);
    default: return; // no action of this dialect
    }
}

// Targets follow the head up to the one that a ']' ends, whatever ended the head.
static void RunClauses(FormatRun *run, const char *format, void (*start)(FormatRun *, const char *),
                       void (*act)(FormatRun *, char, const char *)) {
    XmtTokenRecord record;
    const char *token = XmtStrTok(&record, format, StateDelims);
    while (token) {
        char letter = *token;
        bool flLast = false;
        start(run, token);
        while (!flLast && (token = XmtStrTok(&record, nullptr, StateDelims))) {
            flLast = record.del == ']';
            act(run, letter, token);
        }
        token = XmtStrTok(&record, nullptr, StateDelims);
    }
}

// Formats may replace the one that runs, and set each other in a circle: they run on a copy, and not for
// ever.
static void RunFormat(XmtObjectData *object, XmtCallData *data, void (*start)(FormatRun *, const char *),
                      void (*act)(FormatRun *, char, const char *)) {
    if (!object || !object->format || XmtFormatState.depth >= XMT_FORMAT_DEPTH) return;
    if (XmtFormatState.depth == 0) XmtFormatState.runs = 0;
    if (XmtFormatState.runs++ >= XMT_FORMAT_RUNS) return;
    XmtFormatState.depth++;
    std::string copy = object->format;
    FormatRun run = {object, data, false, ""};
    RunClauses(&run, copy.c_str(), start, act);
    XmtFormatState.depth--;
}

void XmtProcessStateFormat(XmtObjectData *object, XmtCallData *data) {
    RunFormat(object, data, StartStateClause, RunStateAction);
}

void XmtProcessButtonFormat(XmtObjectData *object, XmtCallData *data) {
    RunFormat(object, data, StartButtonClause, RunButtonAction);
}

void XmtProcessFormat(XmtObjectData *object, XmtCallData *data, intptr_t) {
    switch (object->type) {
    case XmtPushBut:
    case XmtCascadeBut: return XmtProcessButtonFormat(object, data);
    case XmtBBDialog:
    case XmtRadioBox:
    case XmtListBut:
    case XmtToggleBut:
    case XmtButtonBox:
    case XmtListBox: return XmtProcessStateFormat(object, data);
    case XmtText: return XmtProcessTextFormat(object, data);
    case XmtPasswd: return XmtProcessMaskedFormat(object, data);
    default: return; // the format of other types is kept and never read
    }
}
