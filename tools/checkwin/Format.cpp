#include "tools/checkwin/Format.h"

#include "tools/checkwin/Look.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Report.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewArgs.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

// ---- clauses

static const char StateActions[] = "HSEDrlCPVvfARt";
static const char ButtonActions[] = "HSEDrlCPARFtVvbc";
static const char ListActions[] = "HSEDrlAR"; // their targets may be lists of names

// The next token; del is the character behind it, NUL at the end.
static Text NextToken(Scan *cursor, char *del) {
    Text token;
    while (!cursor->end() && strchr("[] ", cursor->peek())) cursor->at++;
    while (!cursor->end() && !strchr("[] ", cursor->peek())) {
        cursor->skip('\\');
        Place where = cursor->place();
        if (!cursor->end()) token.add(cursor->next(), where);
    }
    *del = cursor->next();
    return token;
}

static void CheckState(const Text &head, int items) {
    const char *state = head.chars.c_str() + 1;
    if (strchr("ARt", head.at(0))) return; // done in every state
    if (strspn(state, "0123456789,*") != strlen(state) || !*state)
        return Report(head.place(0), "\"%s\": not a list of states", head.chars.c_str());
    for (; items && *state; state += strcspn(state, ","), state += *state == ',')
        if (isdigit(static_cast<unsigned char>(*state)) && atoi(state) >= items)
            Report(head.place(0), "\"%s\": the last state is %d", head.chars.c_str(), items - 1);
}

// b_width, c_key_colour
static void CheckArgument(const Text &head, const char *argument) {
    static const char keys[] = ",bg,bo,fg,hi,r,sb,st,se,sa,"; // of XmtSetColor
    std::string text = argument, key = text.substr(0, text.find('_'));
    if (head.at(0) == 'b') {
        if (text.empty() || text.find_first_not_of("0123456789") != text.npos)
            Report(head.place(0), "\"%s\": b wants a width, as in b_2", head.chars.c_str());
        return;
    }
    if (key == text) return Report(head.place(0), "\"%s\": c wants key and colour", head.chars.c_str());
    std::string colour = text.substr(key.size() + 1);
    if (!XmtFindToken(key.c_str(), keys))
        Report(head.place(0), "\"%s\": no colour key \"%s\"", head.chars.c_str(), key.c_str());
    if (!IsColour(colour))
        Report(head.place(0), "\"%s\": \"%s\" is no colour", head.chars.c_str(), colour.c_str());
}

static void CheckEvent(const Text &head, int) {
    const char *event = head.chars.c_str() + 1;
    bool flArgument = strchr("bc", head.at(0)) && (!*event || *event == '_');
    if (flArgument) return CheckArgument(head, *event ? event + 1 : event);
    if (*event && !XmtFindToken(event, pCBKeys))
        Report(head.place(0), "\"%s\": no event \"%s\", so it runs on each", head.chars.c_str(), event);
}

static void CheckTarget(char action, const Text &target) {
    size_t dot = target.chars.find('.');
    if (action == 'F' || (action == 'C' && target.chars == ".")) return;
    if (strchr("Vvf", action) && dot == std::string::npos)
        Report(target.place(0), "%c wants \"name.value\", not \"%s\"", action, target.chars.c_str());
    else if (strchr("VP", action))
        WantItem(target, dot, action == 'V');
    else if (strchr("vf", action))
        WantObject(target.part(0, dot));
    else if (action == 'C')
        WantCalled(target);
    else if (strchr(ListActions, action))
        for (const Text &name : SplitList(target)) WantObject(name);
    else
        WantObject(target);
}

static void CheckClauses(const Text &format, const char *actions, int items,
                         void (*checkCondition)(const Text &, int)) {
    Scan cursor{format};
    for (;;) {
        char del;
        Text head = NextToken(&cursor, &del);
        if (head.empty()) return;
        if (!strchr(actions, head.at(0)))
            Report(head.place(0), "\"%s\": no action '%c' here", head.chars.c_str(), head.at(0));
        else
            checkCondition(head, items);
        if (del != '[') Report(head.place(0), "\"%s\": no targets in brackets", head.chars.c_str());
        while (del && del != ']') {
            Text target = NextToken(&cursor, &del);
            if (target.empty()) break;
            if (strchr(actions, head.at(0))) CheckTarget(head.at(0), target);
        }
        if (del != ']') Report(head.place(0), "\"%s\": no ']' behind its targets", head.chars.c_str());
    }
}

// ---- entry checks

static void CheckBounds(Scan *cursor, char element) {
    static const char *const digits[] = {"0123456789", "0123456789abcdefABCDEF", "0123456789.+-eE"};
    const char *set = digits[element == 'x' ? 1 : element == 'f' || element == 'D' ? 2 : 0];
    Place where = cursor->place();
    const char *text = cursor->text.chars.c_str() + cursor->at;
    size_t first = strspn(text, set), second = text[first] == ',' ? strspn(text + first + 1, set) : 0;
    cursor->at += first + (second ? second + 1 : 0);
    if (!first || !second) return Report(where, "'%c' wants a minimum and a maximum", element);
    int base = element == 'x' ? 16 : 10;
    long minimum = strtol(text, nullptr, base), maximum = strtol(text + first + 1, nullptr, base);
    if (set != digits[2] && maximum && minimum > maximum)
        Report(where, "'%c': the minimum is above the maximum", element);
}

// "+c" and "-c"
static void SkipPairs(Scan *cursor) {
    while (cursor->peek() == '+' || cursor->peek() == '-') {
        Place where = cursor->place();
        cursor->at += 2;
        if (cursor->at > cursor->text.chars.size()) Report(where, "no character behind the sign");
    }
}

// What an 'l' or a 'v' does: t and the name of the next field.
static void CheckMove(Scan *cursor) {
    if (!cursor->skip('t')) return;
    size_t start = cursor->at;
    while (isalnum(static_cast<unsigned char>(cursor->peek()))) cursor->at++;
    if (cursor->peek() == '_') Report(cursor->place(), "a name behind 't' holds no '_'");
    if (cursor->at > start) WantObject(cursor->text.part(start, cursor->at));
}

static void CheckElement(Scan *cursor, char element) {
    switch (element) {
    case 't':
        if (isdigit(static_cast<unsigned char>(cursor->peek()))) CheckBounds(cursor, element);
        break; // else a letter that must be typed
    case 'A':
    case 'a':
    case 'p':
    case 'L':
    case 'd':
    case 'x':
    case 'f':
    case 'D':
        CheckBounds(cursor, element);
        SkipPairs(cursor);
        break;
    case '!':
        if (cursor->peek() != '(') Report(cursor->place(), "'!' wants a text in parentheses");
        break;
    case 'l':
        if (!isdigit(static_cast<unsigned char>(cursor->peek())))
            Report(cursor->place(), "'l' wants a length");
        while (isdigit(static_cast<unsigned char>(cursor->peek()))) cursor->at++;
        CheckMove(cursor);
        break;
    case 'v':
        if (!cursor->next()) Report(cursor->place(), "'v' wants a character");
        CheckMove(cursor);
        break;
    default: break; // a character that must be typed, or white space
    }
}

static void CheckEntry(const Text &format) {
    for (Scan cursor{format}; !cursor.end();) CheckElement(&cursor, cursor.next());
}

// ---- by type

bool IsHeard(int type, const Text &format, const std::string &callbacks) {
    switch (type) {
    case XmtPushBut:
    case XmtRadioBox:
    case XmtListBut:
    case XmtToggleBut:
    case XmtButtonBox:
    case XmtListBox:
    case XmtListBoxMS: break;
    case XmtText:
    case XmtPasswd: return !callbacks.empty();
    default: return false;
    }
    return format.empty() || format.chars.find("[.]") != std::string::npos;
}

void CheckFormat(int type, const Text &format, const std::string &callbacks, int items) {
    switch (type) {
    case XmtPushBut:
    case XmtCascadeBut: return CheckClauses(format, ButtonActions, 0, CheckEvent);
    case XmtBBDialog:
    case XmtRadioBox:
    case XmtListBut:
    case XmtToggleBut:
    case XmtButtonBox:
    case XmtListBox: return CheckClauses(format, StateActions, items, CheckState);
    case XmtText:
        if (!XmtFindToken("c", ("," + callbacks + ",").c_str()))
            Report(format.place(0), "an entry check runs only with CB(c)");
        [[fallthrough]];
    case XmtPasswd: return CheckEntry(format);
    default: Report(format.place(0), "the format \"%s\" never runs", format.chars.c_str());
    }
}
