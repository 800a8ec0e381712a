// Entry validation on every change of a text field, and the masked text object.
#include "xmt/XmtValidate.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "menu/MenuEntry.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>

enum { // texts of set 25
    TXT_INT_RANGE = 1003,
    TXT_HEX_RANGE = 1004,
    TXT_LENGTH = 1005, // its first line: a character of a or p
    TXT_DIGIT = 1006,  // its first line: a character of a number
    TXT_FORBIDDEN = 1009,
    TXT_LITERAL = 1010,
    TXT_FLOAT_RANGE = 1019,
    TXT_LONG_RANGE = 1024,
    TXT_REST = 1025,
};
enum { CHECK_ON = -1 }; // the element has passed; every other result of an element ends the check

static constexpr char Digits[] = "0123456789";
static constexpr char HexDigits[] = "0123456789abcdefABCDEF";
static constexpr char FloatDigits[] = "0123456789.";

struct FieldCheck {
    const char *typed;
    const char *candidate;
    const char *in;      // read position in the candidate, behind & in the typed text
    const char *format;  // what is left of the format
    std::string matched; // since the start of the alternative or the last &
    bool flAlternatives;
};

struct FieldRange {
    long min;
    long max; // 0: no test
};

struct FloatRange {
    long double min;
    long double max; // 0: no test
};

// ---- messages

static std::string GetText(int number) {
    return NlsText(pDrvCoreDB, NLS_TTY_SET, number);
}

static int RefuseEntry(int code, const std::string &message) {
    XmtPostMsg(nullptr, "%s", message.c_str());
    return code;
}

static std::string FirstLine(const std::string &text) {
    return text.substr(0, text.find('\n'));
}

void PostValidateErrMsg(int number, char ch) {
    RefuseEntry(ENTRY_CHARACTER, NlsFmt(FirstLine(GetText(number)).c_str(), "c", ch));
}

static int RefuseCharacter(int number, char ch) {
    PostValidateErrMsg(number, ch);
    return ENTRY_CHARACTER;
}

// ---- the parts of an element

static const char *SkipRun(const char *text, const char *characters) {
    return text + strspn(text, characters);
}

// A bound of a range, which is stepped over; 0 where none stands. Numbers beyond an int count as its limit.
static long ReadBound(const char **format, int base) {
    if (!isxdigit(static_cast<unsigned char>(**format))) return 0;
    char *end;
    long bound = strtol(*format, &end, base);
    *format = end;
    return bound < INT_MAX ? bound : INT_MAX;
}

static long double ReadFloatBound(const char **format) {
    if (!isdigit(static_cast<unsigned char>(**format)) && **format != '.') return 0;
    char *end;
    long double bound = strtold(*format, &end);
    *format = end;
    return bound;
}

// range = MIN ',' MAX
static FieldRange ReadRange(FieldCheck *check, int base) {
    FieldRange range = {};
    range.min = ReadBound(&check->format, base);
    if (*check->format == ',') check->format++;
    range.max = ReadBound(&check->format, base);
    return range;
}

static FloatRange ReadFloatRange(FieldCheck *check) {
    FloatRange range = {};
    range.min = ReadFloatBound(&check->format);
    if (*check->format == ',') check->format++;
    range.max = ReadFloatBound(&check->format);
    return range;
}

static void RestartEntry(FieldCheck *check, const char *text) {
    check->in = text;
    check->matched.clear();
}

// Starts over behind the next bar; false without one.
static bool TakeNextAlternative(FieldCheck *check) {
    const char *bar = check->flAlternatives ? strchr(check->format, '|') : nullptr;
    if (!bar) return false;
    check->format = bar + 1;
    RestartEntry(check, check->candidate);
    return true;
}

// Behind a number, '!', 'l' or 'v' that has passed.
static int GoOn(FieldCheck *check) {
    TakeNextAlternative(check);
    return CHECK_ON;
}

static int CheckLength(FieldCheck *check, FieldRange range) {
    size_t length = strlen(check->typed);
    if (strcmp(check->typed, check->candidate) != 0) length += strlen(check->candidate);
    auto counted = static_cast<long>(length);
    if (range.max == 0 || (counted >= range.min && counted <= range.max + 1)) return CHECK_ON;
    if (TakeNextAlternative(check)) return CHECK_ON;
    auto min = static_cast<int>(range.min == 0 ? 1 : range.min), max = static_cast<int>(range.max);
    return RefuseEntry(ENTRY_LENGTH, NlsFmt(GetText(TXT_LENGTH).c_str(), "ii", min, max));
}

// ---- text elements

static int RefuseText(FieldCheck *check, char letter) {
    if (TakeNextAlternative(check)) return CHECK_ON;
    if (letter != 'A') return RefuseCharacter(TXT_LENGTH, *check->in);
    const char *rest = *check->in == '%' ? "%%" : check->in; // shown as a single one
    return RefuseEntry(ENTRY_CHARACTER, NlsFmt(GetText(TXT_REST).c_str(), "s", rest));
}

static bool IsMember(char letter, char ch) {
    int byte = static_cast<unsigned char>(ch);
    if (letter == 'A') return isalnum(byte) != 0;
    if (letter == 'a') return isalpha(byte) != 0;
    return IsEntryPrintable(byte) != 0;
}

// ('A'|'a'|'p') range set
static int CheckClassText(FieldCheck *check, char letter) {
    FieldRange range = ReadRange(check, 10);
    EntrySet set = ReadEntrySet(&check->format);
    for (; *check->in != '\0'; check->in++) {
        bool flIn = IsMember(letter, *check->in) || strchr(set.plus, *check->in) != nullptr;
        if (!flIn || strchr(set.minus, *check->in) != nullptr) return RefuseText(check, letter);
        check->matched += *check->in;
    }
    return CheckLength(check, range);
}

// Any other character stands for itself.
static int CheckLiteral(FieldCheck *check, char literal) {
    char ch = *check->in;
    if (ch == '\0') return ENTRY_OK;
    if (ch == literal) {
        check->in++;
        check->matched += ch;
        return CHECK_ON;
    }
    if (TakeNextAlternative(check)) return CHECK_ON;
    if (!check->matched.empty())
        return RefuseEntry(ENTRY_CHARACTER,
                           NlsFmt(GetText(TXT_LITERAL).c_str(), "ccs", ch, literal, check->matched.c_str()));
    XmtPostMsg(nullptr, "Invalid character %c\nThis entry is must begin with %c", ch, literal);
    return ENTRY_CHARACTER;
}

// 't' range, 'L' range: the length alone.
static int CheckAnyText(FieldCheck *check, char letter) {
    if (letter == 't' && !isdigit(static_cast<unsigned char>(*check->format)))
        return CheckLiteral(check, 't');
    return CheckLength(check, ReadRange(check, 10));
}

// '!' '(' text ')': not what was typed.
static int CheckForbidden(FieldCheck *check) {
    if (*check->format == '(') check->format++;
    std::string text(check->format, strcspn(check->format, ")"));
    check->format += text.size();
    if (*check->format == ')') check->format++;
    if (text != check->typed) return GoOn(check);
    return RefuseEntry(ENTRY_FORBIDDEN, NlsFmt(GetText(TXT_FORBIDDEN).c_str(), "s", check->typed));
}

// ---- numbers

// The first character of the candidate that is not one of the digits, or is in the minus list.
static const char *FindBadDigit(const FieldCheck *check, const char *digits, const char *minus) {
    const char *at = check->candidate;
    while (*at != '\0' && strchr(digits, *at) != nullptr && strchr(minus, *at) == nullptr) at++;
    return *at != '\0' ? at : nullptr;
}

// Steps over the number at the read position and one character more.
static void TakeNumber(FieldCheck *check, const char *digits) {
    const char *end = SkipRun(check->in, digits);
    check->matched.append(check->in, end);
    check->in = *end != '\0' ? end + 1 : end;
}

// ('d'|'x') range set
static int CheckInteger(FieldCheck *check, char letter) {
    const char *digits = letter == 'x' ? HexDigits : Digits;
    int base = letter == 'x' ? 16 : 10;
    FieldRange range = ReadRange(check, base);
    EntrySet set = ReadEntrySet(&check->format);
    const char *bad = FindBadDigit(check, digits, set.minus);
    if (bad) return RefuseCharacter(TXT_DIGIT, *bad);
    long number = *check->candidate != '\0' ? strtol(check->candidate, nullptr, base) : range.min;
    TakeNumber(check, digits);
    if (range.max == 0) return CHECK_ON;
    if (number >= range.min && number <= range.max) return GoOn(check);
    auto min = static_cast<int>(range.min), max = static_cast<int>(range.max);
    return RefuseEntry(ENTRY_RANGE, letter == 'x' ? NlsFmt(GetText(TXT_HEX_RANGE).c_str(), "xx", min, max)
                                                  : NlsFmt(GetText(TXT_INT_RANGE).c_str(), "ii", min, max));
}

// 'f' range: digits and one point.
static int CheckFloat(FieldCheck *check) {
    FloatRange range = ReadFloatRange(check);
    auto min = static_cast<float>(range.min), max = static_cast<float>(range.max);
    const char *bad = FindBadDigit(check, FloatDigits, "");
    if (bad) return RefuseCharacter(TXT_DIGIT, *bad);
    const char *point = strchr(check->candidate, '.');
    if (point && strchr(point + 1, '.') != nullptr)
        return RefuseEntry(ENTRY_RANGE, "Only one '.' may be entered.");
    float number = *check->candidate != '\0' ? strtof(check->candidate, nullptr) : min;
    TakeNumber(check, FloatDigits);
    if (max == 0) return CHECK_ON;
    if (number >= min && number <= max) return GoOn(check);
    return RefuseEntry(ENTRY_RANGE, NlsFmt(GetText(TXT_FLOAT_RANGE).c_str(), "ff", static_cast<double>(min),
                                           static_cast<double>(max)));
}

// 'D' range set: as d, for numbers that an integer does not hold.
static int CheckLongFloat(FieldCheck *check) {
    FloatRange range = ReadFloatRange(check);
    EntrySet set = ReadEntrySet(&check->format);
    const char *bad = FindBadDigit(check, Digits, set.minus);
    if (bad) return RefuseCharacter(TXT_DIGIT, *bad);
    long double number = *check->candidate != '\0' ? strtold(check->candidate, nullptr) : range.min;
    TakeNumber(check, Digits);
    if (range.max == 0) return CHECK_ON;
    if (number >= range.min && number <= range.max) return GoOn(check);
    return RefuseEntry(ENTRY_RANGE, NlsFmt(GetText(TXT_LONG_RANGE).c_str(), "LL", range.min, range.max));
}

// ---- moving on

// [ 't' NAME ], read behind 'l' and 'v'.
static std::string ReadTarget(FieldCheck *check) {
    std::string name;
    if (*check->format != 't') return name;
    check->format++;
    while (isalnum(static_cast<unsigned char>(*check->format))) name += *check->format++;
    return name;
}

static int MoveOn(FieldCheck *check, bool flHolds) {
    std::string name = ReadTarget(check);
    if (!flHolds) return GoOn(check);
    if (!name.empty()) XmtSetTextFocus(name.c_str());
    return ENTRY_RANGE;
}

// 'l' N target
static int CheckAtLength(FieldCheck *check) {
    long length = strtol(check->format, nullptr, 10);
    check->format = SkipRun(check->format, Digits);
    return MoveOn(check, static_cast<long>(strlen(check->candidate)) == length);
}

// 'v' C target
static int CheckAtCharacter(FieldCheck *check) {
    char ch = *check->format;
    if (ch != '\0') check->format++;
    return MoveOn(check, ch != '\0' && *check->typed == ch);
}

// ---- the check

static int SwitchAlternatives(FieldCheck *check) {
    check->flAlternatives = !check->flAlternatives;
    return CHECK_ON;
}

static int CheckTypedText(FieldCheck *check) {
    RestartEntry(check, check->typed);
    return CHECK_ON;
}

static int CheckElement(FieldCheck *check) {
    char element = *check->format++;
    switch (element) { // the default is the literal
    case ' ':
    case '\t':
    case '\n':
    case '|': return CHECK_ON;
    case 'A':
    case 'a':
    case 'p': return CheckClassText(check, element);
    case 't':
    case 'L': return CheckAnyText(check, element);
    case 'd':
    case 'x': return CheckInteger(check, element);
    case 'f': return CheckFloat(check);
    case 'D': return CheckLongFloat(check);
    case '!': return CheckForbidden(check);
    case '&': return CheckTypedText(check);
    case '`': return SwitchAlternatives(check);
    case 'l': return CheckAtLength(check);
    case 'v': return CheckAtCharacter(check);
    default: return CheckLiteral(check, element);
    }
}

int XmtValidateEntry(const char *typed, const char *candidate, const char *format) {
    if (!format || !candidate) return ENTRY_OK;
    FieldCheck check = {.typed = typed != nullptr ? typed : "",
                        .candidate = candidate,
                        .in = candidate,
                        .format = format,
                        .matched = "",
                        .flAlternatives = true};
    while (*check.format != '\0') {
        int result = CheckElement(&check);
        if (result != CHECK_ON) return result;
    }
    return ENTRY_OK;
}

// ---- text objects

// A change of a text, its places made sure to lie in the old text.
struct FieldChange {
    const char *old;   // null: none
    const char *typed; // null: none
    size_t start, end; // replaced part
    size_t insert;     // where an insertion goes
};

static size_t GetPlace(intptr_t position, size_t length) {
    if (position < 0) return 0;
    return static_cast<size_t>(position) < length ? static_cast<size_t>(position) : length;
}

static FieldChange GetChange(const char *old, const XmtCallData *data) {
    FieldChange change = {};
    size_t length = old != nullptr ? strlen(old) : 0;
    change.old = old;
    change.typed = data->text != nullptr && *data->text != '\0' ? data->text : nullptr;
    change.start = GetPlace(data->start, length);
    change.end = GetPlace(data->end, length);
    change.insert = GetPlace(data->newInsert, length);
    return change;
}

static bool IsDeletion(const FieldChange *change) {
    return !change->typed && change->end > change->start;
}

static bool IsTooLong(const FieldChange *change) {
    if (!change->typed) return false;
    size_t length = strlen(change->typed) + (change->old ? strlen(change->old) : 0);
    if (change->end > change->start) length -= change->end - change->start;
    return length >= XMT_CANDIDATE;
}

// What the field would hold after a change that types something or deletes.
static std::string GetNewText(const FieldChange *change) {
    if (!change->old) return change->typed;
    size_t from = change->start, to = change->end;
    if (to <= from) from = to = change->insert;
    return std::string(change->old, from) + (change->typed ? change->typed : "") + (change->old + to);
}

// What is checked of it. Typing once more what the field holds is taken for setting it again.
static std::string GetCandidate(const FieldChange *change, intptr_t reason) {
    if (IsDeletion(change) || !change->old) return GetNewText(change);
    if (reason != XmtCR_CHANGED || IsTooLong(change)) return change->old;
    return strcmp(change->old, change->typed) == 0 ? change->typed : GetNewText(change);
}

static void Veto(XmtCallData *data) {
    if (data->reason == XmtCR_CHANGED && data->doit) *data->doit = 0;
}

static void CallHandler(XmtObjectData *object, XmtCallData *data) {
    if (object->handler) object->handler(data);
}

void XmtProcessTextFormat(XmtObjectData *object, XmtCallData *data) {
    if (data->reason == XmtCR_DEFAULT) {
        CallHandler(object, data);
        return;
    }
    FieldChange change = GetChange(XmtTextOf(data->value), data);
    if (!object->format || (!change.typed && !IsDeletion(&change))) return;
    std::string candidate = GetCandidate(&change, data->reason);
    if (XmtValidateEntry(change.typed, candidate.c_str(), object->format) != ENTRY_OK) Veto(data);
}

// ---- masked text objects

static void ShowStars(XmtCallData *data) {
    auto *verify = static_cast<XmTextVerifyCallbackStruct *>(data->callData);
    if (!verify || !verify->text || !verify->text->ptr) return;
    memset(verify->text->ptr, '*', static_cast<size_t>(verify->text->length));
}

static void KeepRealText(XmtObjectData *object, const std::string &text) {
    char *kept = static_cast<char *>(GetMem(text.size() + 1));
    if (!kept) return;
    memcpy(kept, text.c_str(), text.size());
    PutMem(XmtTextOf(object->stored));
    object->stored = reinterpret_cast<intptr_t>(kept);
}

static bool IsMaskedChangeRefused(const FieldChange *change, const std::string &candidate,
                                  const char *format) {
    if (IsTooLong(change)) return true;
    if (!change->typed && candidate.empty()) return false;
    return XmtValidateEntry(change->typed, candidate.c_str(), format) != ENTRY_OK;
}

static void ProcessMaskedChange(XmtObjectData *object, XmtCallData *data) {
    FieldChange change = GetChange(XmtTextOf(object->stored), data);
    if (!change.typed && !IsDeletion(&change)) return;
    bool flShown = object->format != nullptr && *object->format == 'S';
    std::string candidate = GetNewText(&change);
    if (IsMaskedChangeRefused(&change, candidate, flShown ? object->format + 1 : object->format)) {
        Veto(data);
        return;
    }
    KeepRealText(object, candidate);
    if (!flShown) ShowStars(data);
}

void XmtProcessMaskedFormat(XmtObjectData *object, XmtCallData *data) {
    if (data->reason == XmtCR_DEFAULT) {
        std::string text = object->stored ? XmtTextOf(object->stored) : ""; // the handler may set another
        data->text = object->stored ? text.c_str() : nullptr;
        CallHandler(object, data);
        data->text = nullptr;
    }
    if (data->reason == XmtCR_CHANGED) ProcessMaskedChange(object, data);
}
