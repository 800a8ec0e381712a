// Message catalogues: the language table, the fetches, the guarded formats and the texts of menus and
// windows.
#include "common/NlsUtils.h"

#include "common/MemMgr.h"
#include "common/utils.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <strings.h>

enum { DIGITS_MAX = 3 }; // of a width or precision in a catalogue text

DbTHandle *pDrvCoreDB;
DbTHandle *pPrtHelpDB;
DbTHandle *pPrtCoreDB;
char *pNLSLang;
char *pNLSTable;
char NlsBuf[4096];

static char ErrorText[] = "Error"; // not managed: callers release what they fetch

// ---- Language table

static const char *const TableBlanks = " \t\r\n";

// Behind the comment, which runs to the nearer of line feed and carriage return.
static const char *SkipTableComment(const char *in) {
    return in + strcspn(in, "\n\r");
}

// Adds the token with what follows it in the normal form. Returns the place behind the token.
static const char *AddTableToken(const char *in, bool *flEnd, std::string *table) {
    std::string token(in, strcspn(in, TableBlanks));
    in += token.length();
    *table += token + (*flEnd || *in == '\n' ? " \n" : " ");
    *flEnd = token == "Default"; // the language behind it ends the line, whatever follows
    return in;
}

char *ParseTransFile(const char *name) {
    char *content = name ? GetSavedFileContent(pToolPath, name) : nullptr;
    if (!content) return nullptr;
    std::string table;
    bool flEnd = false;
    for (const char *in = content; *in;) {
        if (*in == '#')
            in = SkipTableComment(in);
        else if (strchr(TableBlanks, *in))
            in++;
        else if (*in != '=')
            in = AddTableToken(in, &flEnd, &table);
        else {
            table += "= ";
            in++;
        }
    }
    PutMem(content);
    return SaveStr_(table.c_str());
}

// The language of the Default line; empty if there is none.
static std::string TableDefault(const char *table) {
    const char *in = strstr(table, "Default");
    if (!in) return "";
    in += strlen("Default");
    if (*in == '\0' || *in == '\n') return "";
    in++;
    in += strspn(in, " \t");
    return std::string(in, strcspn(in, TableBlanks));
}

// The language of the line in which the match stands, right of a '='; empty if there is no '=' before it.
static std::string TableLanguage(const char *table, const char *match) {
    const char *in = match;
    while (in > table && *in != '=') in--;
    if (*in != '=') return "";
    while (in > table && in[-1] != '\n') in--;
    return std::string(in, strcspn(in, " ="));
}

static std::string ChooseLanguage(const char *table, const char *value) {
    std::string search = std::string(" ") + value + " ";
    search.erase(std::min(search.find('.'), search.length())); // a codeset takes the closing blank with it
    std::string language = TableDefault(table);
    if (const char *match = strstr(table, search.c_str())) language = TableLanguage(table, match);
    return language.empty() ? "en_US" : language;
}

// The English catalogue that served for the language table, while pDrvCoreDB still holds it.
static DbTHandle *pTableDB;

enum { TABLE_SET = 999, TABLE_TEXT = 1 };

// Owns: the table record of the English catalogue; null if there is nothing to ask.
static char *FetchTable() {
    if (!pDrvCoreDB) pDrvCoreDB = pTableDB = DbTOpen("en_US/CoreString", 5);
    if (!pDrvCoreDB) return nullptr;
    char *table = NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, TABLE_SET, TABLE_TEXT);
    if (strcmp(table, ErrorText) != 0) return table;
    PutMem(table);
    return nullptr;
}

static void CloseTableDB() {
    if (!pTableDB) return;
    if (pDrvCoreDB == pTableDB) pDrvCoreDB = nullptr;
    DbTClose(pTableDB);
    pTableDB = nullptr;
}

char *GetDesiredNLSLang() {
    if (pNLSLang) return pNLSLang;
    const char *value = getenv("LANG");
    if (!pNLSTable) pNLSTable = ParseTransFile("trans.conf");
    if (!pNLSTable) pNLSTable = FetchTable();
    std::string language = "en_US";
    if (pNLSTable) language = ChooseLanguage(pNLSTable, value ? value : "___LANG_NOT_SET___");
    pNLSLang = SaveStr_(language.c_str());
    return pNLSLang;
}

DbTHandle *NlsOpenDB(const char *catalogue, int flags) {
    if (!catalogue) return nullptr;
    std::string language = GetDesiredNLSLang();
    std::string path =
        std::string(pToolPath ? pToolPath : ".") + "/db/" + language + "/" + catalogue + ".xdb";
    DbTHandle *handle = DbTOpen(path.c_str(), flags);
    CloseTableDB();
    if (!handle || handle->type != DBT_NONE || strncmp(language.c_str(), "en_US", 5) != 0) return handle;
    fflush(stdout);
    fprintf(stderr, "ERROR:  Could not open English database:  %s\n", path.c_str());
    DbTClose(handle);
    return nullptr;
}

// ---- Fetch

static void FormatKey(char *key, size_t capacity, int set, int number) {
    snprintf(key, capacity, "%d_%d", set, number);
}

// In the output buffer or in a managed copy.
static char *DeliverText(const char *text, char *out, size_t capacity) {
    if (!out || capacity == 0) return SaveStr_(text);
    size_t length = strnlen(text, capacity - 1);
    memmove(out, text, length);
    out[length] = '\0';
    return out;
}

static char *DeliverError(char *out, size_t capacity) {
    return out && capacity > 0 ? DeliverText(ErrorText, out, capacity) : ErrorText;
}

static char *FetchKey(DbTHandle *handle, char *out, size_t capacity, const char *key) {
    static char buffer[NLS_FETCH];
    int size = DbmTGetRecord(handle, key, buffer, sizeof(buffer) - 1);
    buffer[size] = '\0';
    return DeliverText(size > 0 ? buffer : key, out, capacity);
}

static char *FetchLong(DbTHandle *handle, const char *key) {
    char *buffer = nullptr;
    if (DbmTGetRecordV(handle, key, &buffer, 0) == 0) return SaveStr_(key);
    char *text = SaveStr_(buffer); // the block has a NUL behind the data, a copy needs the text's room only
    PutMem(buffer);
    return text;
}

char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, int set, int number) {
    if (!handle && (set == 0 || number == 0)) return DeliverError(out, capacity);
    char key[NLS_TOPIC];
    FormatKey(key, sizeof(key), set, number);
    return mode == NLS_FETCH_LONG ? FetchLong(handle, key) : FetchKey(handle, out, capacity, key);
}

char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, const char *key) {
    if (!key) return DeliverError(out, capacity);
    return mode == NLS_FETCH_LONG ? FetchLong(handle, key) : FetchKey(handle, out, capacity, key);
}

std::string NlsText(DbTHandle *handle, int set, int number) {
    char text[NLS_FETCH];
    return NlsFetchString(handle, text, sizeof(text), NLS_FETCH_NUMBER, set, number);
}

// ---- Formats

// A conversion of a catalogue text.
struct NlsDirective {
    std::string spec; // as written, for one argument
    char letter; // of the signature: c, i, s, f, L, or % for a percent sign; 0 if it is none that may stand
                 // there
};

static size_t CountDigits(const char *in) {
    return strspn(in, "0123456789");
}

static char DirectiveLetter(char conversion, bool flLong) {
    if (strchr("fFeEgGaA", conversion)) return flLong ? 'L' : 'f';
    if (flLong) return 0;
    if (strchr("idxXou", conversion)) return 'i';
    return strchr("cs%", conversion) ? conversion : '\0';
}

// What stands at the percent sign: flags, width, precision, perhaps L, conversion.
static NlsDirective ReadDirective(const char *in) {
    const char *end = in + 1;
    end += strspn(end, "-+ #0");
    size_t digits = CountDigits(end);
    end += digits;
    if (*end == '.') {
        end++;
        size_t precision = CountDigits(end);
        digits = std::max(digits, precision);
        end += precision;
    }
    bool flLong = *end == 'L';
    if (flLong) end++;
    if (*end == '\0') return {in, 0};
    NlsDirective directive = {std::string(in, end + 1), DirectiveLetter(*end, flLong)};
    if (digits > DIGITS_MAX) directive.letter = 0;
    if (directive.letter == '%' && directive.spec != "%%") directive.letter = 0;
    return directive;
}

static char SignatureLetter(char letter) {
    if (strchr("idxXou", letter)) return 'i';
    return strchr("FeEgGaA", letter) ? 'f' : letter;
}

// The text's conversions are the signature's, in order, or fewer.
static bool TextFits(const char *text, const char *signature) {
    for (const char *in = strchr(text, '%'); in; in = strchr(in, '%')) {
        NlsDirective directive = ReadDirective(in);
        in += directive.spec.length();
        if (directive.letter == '%') continue;
        if (directive.letter == 0 || *signature == '\0') return false;
        if (directive.letter != SignatureLetter(*signature++)) return false;
    }
    return true;
}

// The one place where a catalogue's directive reaches printf: it has passed TextFits and takes the one
// argument.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <typename T>
static std::string FormatOne(const std::string &spec, T value) {
    int length = snprintf(nullptr, 0, spec.c_str(), value);
    std::string out(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    snprintf(out.data(), out.size() + 1, spec.c_str(), value);
    return out;
}
#pragma GCC diagnostic pop

static std::string FormatNext(const NlsDirective &directive, va_list *args) {
    switch (directive.letter) {
    case '%': return "%";
    case 'f': return FormatOne(directive.spec, va_arg(*args, double));
    case 'L': return FormatOne(directive.spec, va_arg(*args, long double));
    case 's': {
        const char *value = va_arg(*args, const char *);
        return FormatOne(directive.spec, value ? value : "");
    }
    default: return FormatOne(directive.spec, va_arg(*args, int)); // i, c
    }
}

static std::string NlsFmtV(const char *text, const char *signature, va_list *args) {
    if (!TextFits(text, signature)) return text;
    std::string out;
    while (const char *percent = strchr(text, '%')) {
        NlsDirective directive = ReadDirective(percent);
        out.append(text, percent).append(FormatNext(directive, args));
        text = percent + directive.spec.length();
    }
    return out + text;
}

std::string NlsFmt(const char *text, const char *signature, ...) {
    if (!text) return "";
    va_list args;
    va_start(args, signature);
    std::string out = NlsFmtV(text, signature ? signature : "", &args);
    va_end(args);
    return out;
}

std::string NlsFmtText(DbTHandle *handle, int set, int number, const char *signature, ...) {
    char key[NLS_TOPIC];
    FormatKey(key, sizeof(key), set, number);
    std::string text = NlsText(handle, set, number);
    if (text == key) return ErrorText;
    va_list args;
    va_start(args, signature);
    std::string out = NlsFmtV(text.c_str(), signature, &args);
    va_end(args);
    return out;
}

void NlsCopy(char *buffer, size_t capacity, const std::string &text) {
    if (buffer && capacity > 0) DeliverText(text.c_str(), buffer, capacity);
}

// ---- Windows

char *NlsGuiStrCvt(const char *text, int set, char *out, size_t size) {
    if (!out || size == 0) return out;
    memset(out, 0, size);
    std::string filled;
    char piece[NLS_GUI_TEXT];
    int number = 1;
    while (const char *hole = text ? strstr(text, "%s") : nullptr) {
        filled.append(text, hole);
        filled += NlsFetchString(pDrvCoreDB, piece, sizeof(piece), NLS_FETCH_NUMBER, set, number++);
        text = hole + 2;
    }
    NlsCopy(out, size, filled + (text ? text : ""));
    return out;
}

// ---- Values and redirects

char *NlsCalcStrVal(const char *text) {
    static char buffer[17];
    uint32_t weighted = 0;
    uint32_t plain = 0;
    for (uint32_t i = 1; text && *text; text++, i++) {
        auto value = static_cast<uint32_t>(static_cast<int8_t>(*text)); // signed bytes, sums that wrap
        weighted += value * i * i;
        plain += value;
    }
    snprintf(buffer, sizeof(buffer), "%08X%08X", weighted, plain);
    return buffer;
}

char *FindRedirect(char *text) {
    char *topic = text ? strstr(text, "$$") : nullptr;
    if (!topic) return nullptr;
    topic += 2;
    char *dot = strchr(topic, '.');
    if (!dot || strncasecmp(dot, ".redirect", strlen(".redirect")) != 0) return nullptr;
    *dot = '\0';
    return topic;
}

char *CheckForRedirect(char *text, size_t capacity) {
    static char topic[NLS_TOPIC];
    const char *found = FindRedirect(text);
    if (!found) return nullptr;
    DeliverText(found, topic, sizeof(topic));
    NlsFetchString(pPrtHelpDB, text, capacity, NLS_FETCH_KEY, topic);
    return topic;
}
