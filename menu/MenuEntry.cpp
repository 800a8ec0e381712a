// The entry validation language of the terminal menus.
#include "menu/MenuEntry.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Terminal.h"
#include "common/Token.h"
#include "common/utils.h"
#include "menu/TextMenu.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

enum { // texts of set 25
    TXT_PRESS_RETURN = 1000,
    TXT_NAME_CHARACTER = 1002,
    TXT_INT_RANGE = 1003,
    TXT_HEX_RANGE = 1004,
    TXT_FLOAT_CHARACTER = 1006,
    TXT_ALNUM_CHARACTER = 1007,
    TXT_ALPHA_CHARACTER = 1008,
    TXT_FORBIDDEN = 1009,
    TXT_LITERAL = 1010,
    TXT_FLOAT_RANGE = 1019,
    TXT_ONE_POINT = 1020,
    TXT_LONG_RANGE = 1024,
};
enum { TXT_LENGTH_SET = 30, TXT_LENGTH_RANGE = 42, TXT_LENGTH_EXACT = 44 };
enum { LENGTH_DEFAULT = 4 };
enum { CHECK_ON = -1 }; // the element has passed; every other result of an element ends the check

char *pErrIntRange;
char *pErrFloatRange;
char *pErrLongRange;

struct EntryCheck {
    const char *entry;          // the whole entry
    const char *in;             // read position in it
    const char *format;         // what is left of the format
    char matched[LINEBUF_SIZE]; // what the elements since the start or the last & have matched
    size_t matchedLength;
};

struct EntryRange {
    int min;
    int max; // 0: no test
};

static std::string EntryText(int number) {
    return NlsText(pDrvCoreDB, NLS_TTY_SET, number);
}

static int IsDigit(char ch) {
    return isdigit(static_cast<unsigned char>(ch));
}

int getMinMax(const char *range, int *minimum) {
    *minimum = 0;
    if (!range) return 0;
    const char *at = range;
    if (*at != '\0' && !IsDigit(*at)) at++;
    *minimum = ParseInt(at, &at);
    if (*at != '\0') at++;
    return ParseInt(at);
}

// ---- the parts of an element

static void SkipParenthesis(EntryCheck *check) {
    check->format += strcspn(check->format, ")");
    if (*check->format == ')') check->format++;
}

// range = '(' MIN c MAX ')'; without a parenthesis there is no range, and no test.
static EntryRange ReadRange(EntryCheck *check) {
    EntryRange range = {0, 0};
    if (*check->format != '(') return range;
    range.max = getMinMax(check->format, &range.min);
    SkipParenthesis(check);
    return range;
}

static void AddToSet(char *list, char ch) {
    size_t length = strlen(list);
    if (length == ENTRY_SET) return;
    list[length] = ch;
    list[length + 1] = '\0';
}

// set = { '+' c | '-' c }
EntrySet ReadEntrySet(const char **format) {
    EntrySet set = {};
    while (**format == '+' || **format == '-') {
        char *list = **format == '+' ? set.plus : set.minus;
        ++*format;
        if (**format != '\0') AddToSet(list, *(*format)++);
    }
    return set;
}

static void AddMatched(EntryCheck *check, const char *text, size_t length) {
    size_t room = sizeof check->matched - 1 - check->matchedLength;
    if (length > room) length = room;
    memcpy(check->matched + check->matchedLength, text, length);
    check->matchedLength += length;
    check->matched[check->matchedLength] = '\0';
}

static void RestartEntry(EntryCheck *check) {
    check->in = check->entry;
    check->matched[0] = '\0';
    check->matchedLength = 0;
}

// The rest of an alternative: up to the next bar, & or the end of the format.
static int SkipAlternative(EntryCheck *check) {
    check->format += strcspn(check->format, "|&");
    return CHECK_ON;
}

// A failure of kind character, length or literal. In front of a bar it does not count, and the bar ends the
// check.
static int IsFailureForgiven(EntryCheck *check) {
    SkipAlternative(check);
    if (*check->format != '|') return 0;
    RestartEntry(check);
    return 1;
}

static int RefuseEntry(int code, const std::string &message) {
    PostMsg("%s", message.c_str());
    return code;
}

static std::string GetLengthMessage(EntryRange range) {
    int number = range.min == range.max ? TXT_LENGTH_EXACT : TXT_LENGTH_RANGE;
    return NlsFmt(NlsText(pDrvCoreDB, TXT_LENGTH_SET, number).c_str(), "ii", range.min, range.max);
}

static int IsLengthInRange(const char *text, EntryRange range) {
    size_t length = strlen(text);
    if (range.max == 0) return 1;
    return range.max > 0 && length <= static_cast<size_t>(range.max) &&
           (range.min < 0 || length >= static_cast<size_t>(range.min));
}

static int CheckEntryLength(EntryCheck *check, EntryRange range) {
    if (IsLengthInRange(check->entry, range)) return CHECK_ON;
    if (IsFailureForgiven(check)) return CHECK_ON;
    return RefuseEntry(ENTRY_LENGTH, GetLengthMessage(range));
}

// ---- text elements

int IsEntryPrintable(int ch) {
    return isalnum(ch) || ispunct(ch) || ch == ' ';
}

struct TextClass {
    char letter;
    int message; // takes the character and the plus list
    int (*isMember)(int ch);
};

static constexpr TextClass TextClasses[] = {
    {.letter = 'A', .message = TXT_ALNUM_CHARACTER, .isMember = isalnum},
    {.letter = 'a', .message = TXT_ALPHA_CHARACTER, .isMember = isalpha},
    {.letter = 'p', .message = TXT_ALNUM_CHARACTER, .isMember = IsEntryPrintable},
};

// The letter at this place, whole; none at the end of the entry.
static std::string LetterAt(const char *at) {
    return std::string(at, GetLetterLength(at));
}

// A message that was made with LETTER_HERE for a character, with the letter at this place.
static constexpr char LETTER_HERE = '\1';

static std::string PutLetter(std::string message, const char *at) {
    size_t place = message.find(LETTER_HERE);
    return place == message.npos ? message : message.replace(place, 1, LetterAt(at));
}

// ('A'|'a'|'p') range set: from the read position on, each character is of the class or in the plus list.
static int CheckClassText(EntryCheck *check, const TextClass *text) {
    EntryRange range = ReadRange(check);
    EntrySet set = ReadEntrySet(&check->format);
    for (; *check->in != '\0'; check->in++) {
        if (!text->isMember(static_cast<unsigned char>(*check->in)) && !strchr(set.plus, *check->in)) {
            if (IsFailureForgiven(check)) return CHECK_ON;
            return RefuseEntry(
                ENTRY_CHARACTER,
                PutLetter(NlsFmt(EntryText(text->message).c_str(), "cs", LETTER_HERE, set.plus), check->in));
        }
        AddMatched(check, check->in, 1);
    }
    return CheckEntryLength(check, range);
}

// '!' '(' text ')': the whole entry is not the text. Accepts the entry, or goes on to an & or bar behind it:
// the bar accepts as well, so what follows is never looked at.
static int CheckForbidden(EntryCheck *check) {
    char text[TOKEN_SIZE] = "";
    char *position = nullptr;
    if (*check->format == '(') check->format++;
    if (*check->format != ')') GetTokenD(check->format, ")", &position, text);
    if (strcmp(check->entry, text) == 0)
        return RefuseEntry(ENTRY_FORBIDDEN, NlsFmt(EntryText(TXT_FORBIDDEN).c_str(), "s", check->entry));
    return ENTRY_OK;
}

// 't' range, 'L' range: the length alone. A t without a parenthesis is read as !.
static int CheckAnyText(EntryCheck *check, char letter) {
    if (letter == 't' && *check->format != '(') return CheckForbidden(check);
    return CheckEntryLength(check, ReadRange(check));
}

// ---- numbers

static int RefuseDigit(const std::string &letter) {
    PostMsg("Invalid digit:  %s\n", letter.c_str());
    return ENTRY_CHARACTER;
}

// Takes the number that ends at end, and one character behind it.
static void TakeNumber(EntryCheck *check, const char *end) {
    AddMatched(check, check->in, static_cast<size_t>(end - check->in));
    check->in = *end != '\0' ? end + 1 : end;
}

static const char *FindBadDigit(const char *entry, const char *minus) {
    while (IsDigit(*entry) && !strchr(minus, *entry)) entry++;
    return *entry != '\0' ? entry : nullptr;
}

static const char *SkipDigits(const char *at) {
    while (IsDigit(*at)) at++;
    return at;
}

// 'd' range set: the whole entry is digits, none of the minus list; the number at the read position is in the
// range.
static int CheckInteger(EntryCheck *check) {
    const char *start = check->in;
    const char *end = SkipDigits(start);
    long number = strtol(start, nullptr, 10); // no int: one beyond it is in no range
    TakeNumber(check, end);
    EntryRange range = ReadRange(check);
    EntrySet set = ReadEntrySet(&check->format);
    const char *bad = FindBadDigit(check->entry, set.minus);
    if (bad || end == start) return RefuseDigit(LetterAt(bad ? bad : start));
    if (range.max == 0) return CHECK_ON;
    if (number < range.min || number > range.max)
        return RefuseEntry(ENTRY_RANGE, NlsFmt(pErrIntRange, "ii", range.min, range.max));
    return SkipAlternative(check);
}

// 'x' range: the hexadecimal number at the read position is in the range, whose bounds are decimal.
static int CheckHex(EntryCheck *check) {
    const char *start = check->in;
    char *end;
    long number = strtol(start, &end, 16);
    if (end == start) return RefuseDigit(LetterAt(start));
    TakeNumber(check, end);
    EntryRange range = ReadRange(check);
    if (range.max == 0) return CHECK_ON;
    if (number < range.min || number > range.max)
        return RefuseEntry(ENTRY_RANGE, NlsFmt(EntryText(TXT_HEX_RANGE).c_str(), "xx", range.min, range.max));
    return SkipAlternative(check);
}

static int RefuseFloat(const EntryCheck *check) {
    const char *bad = check->in + strspn(check->in, "0123456789.");
    if (*bad != '\0')
        return RefuseEntry(ENTRY_CHARACTER,
                           PutLetter(NlsFmt(EntryText(TXT_FLOAT_CHARACTER).c_str(), "c", LETTER_HERE), bad));
    const char *point = strchr(check->in, '.');
    if (point && strchr(point + 1, '.')) return RefuseEntry(ENTRY_RANGE, EntryText(TXT_ONE_POINT));
    if (check->in[strspn(check->in, ".")] == '\0') return RefuseDigit(LetterAt(check->in));
    return CHECK_ON;
}

// 'f' '(' MIN ',' MAX ')': from the read position on digits and at most one point; the number is in the
// range.
static int CheckFloat(EntryCheck *check) {
    int refused = RefuseFloat(check);
    if (refused != CHECK_ON) return refused;
    float number = strtof(check->in, nullptr);
    TakeNumber(check, check->in + strspn(check->in, "0123456789."));
    float min = 0;
    float max = 0;
    if (*check->format == '(') {
        sscanf(check->format, "(%f,%f)", &min, &max);
        SkipParenthesis(check);
    }
    if (max == 0) return CHECK_ON;
    if (number >= min && number <= max) return SkipAlternative(check);
    PostMsg("This number must be between %f to %f.", static_cast<double>(min), static_cast<double>(max));
    return ENTRY_RANGE;
}

// 'D' '(' MIN ',' MAX ')' set: as d, for numbers that an integer does not hold.
static int CheckLongFloat(EntryCheck *check) {
    const char *start = check->in;
    const char *end = SkipDigits(start);
    std::string digits(start, end);
    long double number = strtold(digits.c_str(), nullptr);
    TakeNumber(check, end);
    long double min = 0;
    long double max = 0;
    if (*check->format == '(') {
        sscanf(check->format, "(%Lg,%Lg ", &min, &max);
        SkipParenthesis(check);
    }
    EntrySet set = ReadEntrySet(&check->format);
    const char *bad = FindBadDigit(check->entry, set.minus);
    if (bad) {
        PostMsg("Invalid character '%s'\nThis text may contain \"0123456789.\"", LetterAt(bad).c_str());
        return ENTRY_CHARACTER;
    }
    if (end == start) return RefuseDigit(LetterAt(start));
    if (max == 0) return CHECK_ON;
    if (number >= min && number <= max) return SkipAlternative(check);
    return RefuseEntry(ENTRY_RANGE, NlsFmt(pErrLongRange, "LL", min, max));
}

// ---- the rest

// Any other character stands for itself. The first one of an entry fails without a message.
static int CheckLiteral(EntryCheck *check, char literal) {
    char ch = *check->in;
    if (ch == literal) {
        AddMatched(check, check->in++, 1);
        return CHECK_ON;
    }
    if (IsFailureForgiven(check)) return CHECK_ON;
    if (check->matchedLength == 0) return ENTRY_CHARACTER;
    return RefuseEntry(ENTRY_CHARACTER, NlsFmt(EntryText(TXT_LITERAL).c_str(), "ccs", ch != '\0' ? ch : ' ',
                                               literal, check->matched));
}

static int CheckAgain(EntryCheck *check) {
    RestartEntry(check);
    return CHECK_ON;
}

static int CheckElement(EntryCheck *check) {
    char element = *check->format++;
    switch (element) { // the default is the literal
    case ' ':
    case '\t':
    case '\n': return CHECK_ON;
    case 'A': return CheckClassText(check, &TextClasses[0]);
    case 'a': return CheckClassText(check, &TextClasses[1]);
    case 'p': return CheckClassText(check, &TextClasses[2]);
    case 't':
    case 'L': return CheckAnyText(check, element);
    case 'd': return CheckInteger(check);
    case 'x': return CheckHex(check);
    case 'f': return CheckFloat(check);
    case 'D': return CheckLongFloat(check);
    case '!': return CheckForbidden(check);
    case '&': return CheckAgain(check);
    case '|': return ENTRY_OK;
    default: return CheckLiteral(check, element);
    }
}

static void FetchRangeTexts() {
    if (pErrIntRange) return;
    pErrIntRange = NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, NLS_TTY_SET, TXT_INT_RANGE);
    pErrFloatRange = NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, NLS_TTY_SET, TXT_FLOAT_RANGE);
    pErrLongRange = NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, NLS_TTY_SET, TXT_LONG_RANGE);
}

int ValidateEntry(const char *entry, const char *format) {
    FetchRangeTexts();
    if (!format) return ENTRY_OK;
    std::string entryCopy = entry ? entry : "";
    std::string formatCopy = format;
    EntryCheck check;
    check.entry = entryCopy.c_str();
    check.format = formatCopy.c_str();
    RestartEntry(&check);
    while (*check.format != '\0') {
        int result = CheckElement(&check);
        if (result != CHECK_ON) return result;
    }
    return ENTRY_OK;
}

char *ValidateEntryLen(const char *text, const char *range) {
    EntryRange limits = {LENGTH_DEFAULT, LENGTH_DEFAULT};
    if (range) limits.max = getMinMax(range, &limits.min);
    if (IsLengthInRange(text, limits)) return nullptr;
    std::string message = GetLengthMessage(limits);
    snprintf(NlsBuf, sizeof NlsBuf, "%s", message.c_str());
    return NlsBuf;
}

int ValidateEntryDigit(const char *text) {
    const char *bad = FindBadDigit(text, "");
    return bad ? static_cast<unsigned char>(*bad) : 0;
}

int ValidateEntryTty(const char *text, const char *range) {
    const char *bad = FindBadDigit(text, "");
    std::string letter = bad ? LetterAt(bad) : ""; // before the message reads a line over a text in LineBuf
    const char *message = ValidateEntryLen(text, range);
    if (message) return RefuseEntry(ENTRY_LENGTH, message);
    return bad ? RefuseDigit(letter) : ENTRY_OK;
}

int TestName(const char *text) {
    for (const char *at = text; *at != '\0'; at++) {
        if (isalnum(static_cast<unsigned char>(*at)) || *at == '_' || *at == '-') continue;
        fputs(PutLetter(NlsFmt(EntryText(TXT_NAME_CHARACTER).c_str(), "c", LETTER_HERE), at).c_str(), stdout);
        fputs(EntryText(TXT_PRESS_RETURN).c_str(), stdout);
        Gets(LineBuf, LINEBUF_SIZE);
        return 0;
    }
    return 1;
}
