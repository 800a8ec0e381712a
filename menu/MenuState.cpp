// The two languages by which the items of a terminal menu depend on each other, and the choices of its pick
// items.
#include "menu/MenuState.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>

static const char FormatDelims[] = "{,.} ";
enum { OPERAND_SIZE = 64 };

// One group of a state format, while its targets are read.
struct StateGroup {
    TextMenu *menu;
    char operation;
    int flMatch;
};

// The formats being worked on, outermost first.
static struct {
    TextMenu *menu;
    int index;
} ActiveFormats[MENU_DEPTH_MAX];
static int ActiveFormatCnt;

static const char *pCondition; // cursor of the evaluation in progress
static int ConditionSkip;      // > 0: read over, nothing is tested
static int ConditionDepth;     // open parentheses

static int IsDigit(char ch) {
    return isdigit(static_cast<unsigned char>(ch));
}

static TextMenuItem *GetMenuItem(TextMenu *menu, int index) {
    return index >= 0 && index < CountMenuItems(menu) ? &menu->items[index] : nullptr;
}

// ---- choices

char *GetChoice(const TextMenuItem *item, intptr_t index, char *token) {
    if (!item->choices || index < 0) return nullptr;
    char *position = nullptr;
    char *choice = GetTokenD(item->choices, ",", &position, token);
    while (choice && index-- > 0) choice = GetTokenD(nullptr, ",", &position, token);
    return choice;
}

// The same choice in the list itself, by the token scanner's rules: no empty choice, a backslash takes a
// character.
static char *FindChoice(TextMenuItem *item, int index) {
    char *at = item->choices;
    if (!at || index < 0) return nullptr;
    for (;;) {
        at += strspn(at, ",");
        if (*at == '\0' || index-- == 0) break;
        for (; *at != '\0' && *at != ','; at++)
            if (*at == '\\' && at[1] != '\0') at++;
    }
    return *at != '\0' ? at : nullptr;
}

const char *FetchCurrentChoice(TextMenuItem *item) {
    char token[TOKEN_SIZE];
    const char *choice = GetChoice(item, item->value.i, token);
    PutMem(item->current);
    item->current = choice ? SaveStr_(choice) : nullptr;
    return item->current;
}

void UpdateStateSelection(TextMenuItem *item) {
    int count = item->choices ? GetTokenCount(item->choices, ",") : 0;
    const char *choice = FetchCurrentChoice(item);
    // A bit set has no next choice to move to.
    for (int i = 0; i < count && item->type == ITEM_PICK && choice && choice[0] == ' '; i++) {
        item->previous = item->value.i;
        item->value.i = (item->value.i + 1) % count;
        choice = FetchCurrentChoice(item);
    }
}

void HideStateSelection(TextMenuItem *item, int choice) {
    char *marker = FindChoice(item, choice);
    if (!marker) return;
    *marker = ' ';
    UpdateStateSelection(item);
}

void ShowStateSelection(TextMenuItem *item, int choice) {
    char *marker = FindChoice(item, choice);
    if (marker) *marker = '_';
}

// ---- state formats

int TestFormatState(const char *states, intptr_t value) {
    const char *at = states;
    while (*at != '\0') {
        if (*at == '*' || ParseInt(at) == value) return 1;
        while (IsDigit(*at)) at++;
        while (*at != '\0' && !IsDigit(*at)) at++;
    }
    return 0;
}

static int IsFormatActive(const TextMenu *menu, int index) {
    for (int i = 0; i < ActiveFormatCnt; i++)
        if (ActiveFormats[i].menu == menu && ActiveFormats[i].index == index) return 1;
    return ActiveFormatCnt == MENU_DEPTH_MAX;
}

// P: the target's own format, then its callback. Both may use the scanner, so the place in this format goes
// aside.
static void ProcessTarget(TextMenu *menu, int index) {
    if (IsFormatActive(menu, index)) return;
    char *in = szTokenIn;
    char ended = chTokenDel;
    ProcessStateFormat(menu, index);
    TextMenuItem *item = GetMenuItem(menu, index);
    if (item && item->callback) item->callback(menu, item);
    SetTokenBuf(in);
    chTokenDel = ended;
}

// S: item.value. On a match the value is put aside and replaced, otherwise the one put aside comes back. A
// number has no meaning for an item whose value is an address.
static int SaveTarget(const StateGroup *group, TextMenuItem *item) {
    char *token = GetToken(nullptr, FormatDelims);
    if (!token) return 0;
    if (!item || item->type == ITEM_SUBMENU || item->type == ITEM_REQUIRED || item->type == ITEM_OPTIONAL)
        return 1;
    if (group->flMatch) {
        item->saved = item->value.i;
        item->value.i = 0;
        if (item->type == ITEM_FLOAT)
            item->value.f = strtof(token, nullptr);
        else
            item->value.i = ParseInt(token);
    } else if (item->saved >= 0) {
        item->value.i = item->saved;
        item->saved = -1;
    }
    return 1;
}

// The token just read names a target. 0 if the format is malformed here.
static int ProcessGroupTarget(const StateGroup *group, const char *token) {
    if (!strchr("HNPS", group->operation)) return 1; // no operation: its targets are read over
    const char *end;
    int index = ParseInt(token, &end);
    if (!IsDigit(token[0]) || *end != '\0') return 0;
    TextMenuItem *item = GetMenuItem(group->menu, index);
    switch (group->operation) {
    case 'H':
        if (item) item->state = group->flMatch ? STATE_HIDDEN : STATE_NORMAL;
        return 1;
    case 'N':
        if (item) item->state = group->flMatch ? STATE_DISABLED : STATE_NORMAL;
        return 1;
    case 'P':
        if (item && group->flMatch) ProcessTarget(group->menu, index);
        return 1;
    default: return SaveTarget(group, item);
    }
}

// group = OPERATION STATES '{' target { (','|'.') target } '}'. The head has been read. 0 ends the format.
static int ProcessGroup(const StateGroup *group) {
    do {
        char *token = GetToken(nullptr, FormatDelims);
        if (!token || !ProcessGroupTarget(group, token)) return 0;
    } while (chTokenDel == ',' || chTokenDel == '.' || chTokenDel == '{');
    return chTokenDel != '\0';
}

void ProcessStateFormat(TextMenu *menu, int index) {
    TextMenuItem *item = GetMenuItem(menu, index);
    if (!item || !item->format || item->state != STATE_NORMAL) return;
    if (item->type != ITEM_PICK && item->type != ITEM_BITS) return; // a format of another language
    if (IsFormatActive(menu, index)) return;
    ActiveFormats[ActiveFormatCnt++] = {menu, index};
    char *head = GetToken(item->format, FormatDelims);
    while (head) {
        item = GetMenuItem(menu, index); // a callback may have moved or cut the table
        if (!item) break;
        StateGroup group = {menu, head[0], TestFormatState(head + 1, item->value.i)};
        if (!ProcessGroup(&group)) break;
        head = GetToken(nullptr, FormatDelims);
    }
    ActiveFormatCnt--;
}

// ---- conditions

static int TestItemValue(const TextMenuItem *item, int value) {
    switch (item->type) { // any number may stand there
    case ITEM_SUBMENU:
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL: return 0;
    case ITEM_FLOAT: return item->value.f == static_cast<float>(value);
    default: return item->value.i == value;
    }
}

int TestState(TextMenu *menu, const char *operand, int index) {
    const char *end;
    long target = ParseInt(operand, &end);
    if (end == operand || *end != '.') return 0;
    const char *text = end + 1;
    int value = ParseInt(text, &end);
    if (end == text) return 0;
    if (operand[0] == '+' || operand[0] == '-') target += index;
    if (target < 0 || target > INT_MAX) return 0;
    TextMenuItem *item = GetMenuItem(menu, static_cast<int>(target));
    if (!item || !TestItemValue(item, value)) return 0;
    return item->state == STATE_NORMAL ? 1 : 2;
}

static int TestConditionChain(TextMenu *menu, int index);

// '(' condition ')': the opening parenthesis has been read. Nested too deep it is false and ends the text.
static int TestConditionGroup(TextMenu *menu, int index) {
    if (ConditionDepth == MENU_DEPTH_MAX) {
        pCondition += strlen(pCondition);
        return 0;
    }
    ConditionDepth++;
    int result = TestConditionChain(menu, index);
    ConditionDepth--;
    if (*pCondition == ')') pCondition++;
    return result;
}

// INDEX '.' VALUE [ 'A' ]: an A asks that the item is hidden or disabled as well.
static int TestConditionItem(TextMenu *menu, int index) {
    char operand[OPERAND_SIZE];
    size_t length = strcspn(pCondition, "()!&|A");
    size_t copied = length < sizeof operand ? length : sizeof operand - 1;
    memcpy(operand, pCondition, copied);
    operand[copied] = '\0';
    pCondition += length;
    int flState = *pCondition == 'A';
    if (flState) pCondition += 1 + strspn(pCondition + 1, " ");
    if (ConditionSkip > 0) return 0;
    int held = TestState(menu, operand, index);
    return flState ? held == 2 : held != 0;
}

// operand = { '!' } ( '(' condition ')' | item )
static int TestConditionOperand(TextMenu *menu, int index) {
    int flNot = 0;
    for (; *pCondition == '!' || *pCondition == ' '; pCondition++) flNot ^= *pCondition == '!';
    int result;
    if (*pCondition == '(') {
        pCondition++;
        result = TestConditionGroup(menu, index);
        pCondition += strspn(pCondition, " ");
    } else {
        result = TestConditionItem(menu, index);
    }
    return result != flNot;
}

// condition = operand { ('&'|'|') operand }
static int TestConditionChain(TextMenu *menu, int index) {
    int result = TestConditionOperand(menu, index);
    while (*pCondition == '&' || *pCondition == '|') {
        int flDecided = (*pCondition == '&') == (result == 0);
        pCondition++;
        ConditionSkip += flDecided;
        int next = TestConditionOperand(menu, index);
        ConditionSkip -= flDecided;
        if (!flDecided) result = next;
    }
    return result;
}

int TestStateCondition(TextMenu *menu, const char *condition, int index) {
    pCondition = condition;
    ConditionSkip = 0;
    ConditionDepth = 0;
    return TestConditionChain(menu, index);
}

int TestStateCondition(TextMenu *menu, int mode, int index) {
    if (!pCondition) return 0;
    return mode == CONDITION_GROUP ? TestConditionGroup(menu, index) : TestConditionOperand(menu, index);
}

TextMenu *ValidateMenu(TextMenu *menu, int index) {
    TextMenuItem *item = GetMenuItem(menu, index);
    if (!item || item->type != ITEM_SUBMENU || item->state != STATE_NORMAL) return nullptr;
    if (!item->format) return item->value.m;
    if (!item->value.ma) return nullptr;
    char token[TOKEN_SIZE];
    char *position = nullptr;
    char *condition = GetTokenD(item->format, ",", &position, token);
    for (int i = 0; condition; i++) {
        if (TestStateCondition(menu, condition, index)) return item->value.ma[i];
        condition = GetTokenD(nullptr, ",", &position, token);
    }
    return nullptr;
}
