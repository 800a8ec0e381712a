// Models: items of their records, values of their PPD files, the table of the window face and the match by
// text.
#include "print/PrdCommonUtils.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/Words.h"
#include "common/utils.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

static constexpr char GenericFile[] = "tv_generic.ppd";
static constexpr char GenericBase[] = "tv_generic";
static constexpr char GenericIcon[] = "@icon/tv_generic/static.xbm";
static constexpr char PrefixKey[] = "*****"; // opens a key of the first form

enum { PARA_SIGN = 182 };

char *PpdList;
char *PpdModelList;
PpdRecord *pPPDData;
int PpdCnt;
DbTHandle *pEngPrtStrDB;

static char *CopyOut(std::string_view value, char *buffer, size_t capacity) {
    if (capacity == 0) return nullptr;
    size_t count = std::min(value.size(), capacity - 1);
    memcpy(buffer, value.data(), count);
    buffer[count] = '\0';
    return buffer;
}

static DbTHandle *OpenEngPrtStrDB() {
    if (!pEngPrtStrDB) pEngPrtStrDB = DbTOpen("en_US/PrtString", DBT_NO_RELOAD | DBT_NO_WRITE);
    return pEngPrtStrDB;
}

// ---- Items and records

static char *FindPpdItem(const char *record, const char *item, char *buffer, size_t capacity) {
    std::string_view text(record);
    std::string mark = std::string(".sppditem ") + item + '\n';
    size_t start = text.find(mark);
    if (start == text.npos) return nullptr;
    start += mark.size();
    size_t end = text.find("\n.eppditem", start);
    if (end == text.npos) return nullptr;
    std::string value(text.substr(start, end - start));
    return buffer ? CopyOut(value, buffer, capacity) : SaveStr_(value.c_str());
}

char *GetPpdKeyValue(const char *file, const char *item, char *buffer, size_t capacity) {
    if (!file || !item || !OpenEngPrtStrDB()) return nullptr;
    std::string base = StripPathExt(file);
    char *record = nullptr;
    char *value = nullptr;
    if (DbmTGetRecordV(pEngPrtStrDB, base.c_str(), &record, 0) > 0 && record)
        value = FindPpdItem(record, item, buffer, capacity);
    PutMem(record);
    return value;
}

char *GetPpdKeyValue_Old(const char *file, const char *key, char *buffer, size_t capacity) {
    if (!file || !key || !buffer) return nullptr;
    std::string path = std::string(pToolPath) + "/ppd/" + file;
    const char *line = FileSearch(path.c_str(), (std::string("*") + key + ":").c_str(), ERR_SILENT);
    const char *quote = line ? strchr(line, '"') : nullptr;
    if (!quote) return nullptr;
    std::string_view value(quote + 1);
    return CopyOut(value.substr(0, value.find_first_of("\"\r\n")), buffer, capacity);
}

char *FetchEngPrtStrDBValue(const char *key, char *buffer, size_t capacity) {
    static char Shared[PRT_SHARED];
    if (!key || !OpenEngPrtStrDB()) return nullptr;
    if (!buffer) {
        buffer = Shared;
        capacity = sizeof Shared;
    }
    if (capacity < 2) return nullptr;
    int size = DbmTGetRecord(pEngPrtStrDB, key, buffer, capacity - 1);
    if (size <= 0) return nullptr;
    buffer[std::min(static_cast<size_t>(size), capacity - 1)] = '\0'; // the record need not carry a NUL
    return buffer;
}

int TestModelList(const char *key, const char *base) {
    char list[PRT_VALUE];
    if (!FetchEngPrtStrDBValue(key, list, sizeof list)) return -1;
    return FindToken(base, list) > 0;
}

// ---- PPD files

char *GetPpdFileList() {
    char *list = SearchDirFileList("ppd", "ppd");
    const char *names = StrStr(list, " .. ");
    if (!names) return list;
    char *rest = SaveStr_(names + 3); // the blank that ends " .. " leads the first name
    PutMem(list);
    return rest;
}

const char *GetModelFile(int model) {
    static std::string File;
    const char *name = PpdList ? GetTokenN(PpdList, " ", model) : nullptr;
    File = name ? name : "";
    return File.c_str();
}

const char *GetModelBase(int model) {
    static std::string Base;
    Base = StripPathExt(GetModelFile(model));
    return Base.c_str();
}

// The keyword and the text of one choice, from what follows the option key on its line.
static void SplitPpdOption(char *rest, std::string &keyword, std::string &text) {
    rest[strcspn(rest, ":\r\n")] = '\0';
    std::string_view choice(SkipSpace(rest));
    size_t slash = choice.find('/');
    keyword = choice.substr(0, slash);
    text = slash == choice.npos ? keyword : std::string(choice.substr(slash + 1));
}

static void AddPpdOption(std::string &list, const char *prefix, const std::string &word) {
    if (!list.empty()) list += ',';
    list += prefix + word;
}

// The next line, cut at the buffer; what is longer is dropped, so that its tail is not taken for a line.
static char *GetPpdLine(FILE *in, char *line) {
    if (!fgets(line, PPD_LINE, in)) return nullptr;
    if (!strchr(line, '\n'))
        for (int ch; (ch = getc(in)) != EOF && ch != '\n';) {
        }
    return line;
}

void GetPpdOptions(const char *file, const char *key, char **keywords, char **texts, const char *prefix) {
    *keywords = *texts = nullptr;
    if (!file || !key) return;
    std::string path = std::string(pToolPath) + "/ppd/" + file;
    FILE *in = OpenFile(nullptr, path.c_str(), "r", ERR_SILENT);
    if (!in) return;
    if (!prefix) prefix = "";
    std::string words, names, keyword, text;
    char line[PPD_LINE];
    while (GetPpdLine(in, line)) {
        if (strncmp(line, key, strlen(key)) != 0) continue;
        SplitPpdOption(line + strlen(key), keyword, text);
        size_t longer = std::max(words.size() + keyword.size(), names.size() + text.size());
        if (longer + strlen(prefix) + 2 > PPD_OPTIONS) continue; // both or none: the lists are read in step
        AddPpdOption(words, prefix, keyword);
        AddPpdOption(names, prefix, text);
    }
    fclose(in);
    *keywords = SaveStr_(words.c_str());
    *texts = SaveStr_(names.c_str());
}

// ---- The table of models

static void FreePpdData() {
    for (int row = 1; pPPDData && row <= PpdCnt;
         row++) { // row 0 shares its texts with the generic model's row
        PutMem(pPPDData[row].file);
        PutMem(pPPDData[row].icon);
        PutMem(pPPDData[row].key);
        PutMem(pPPDData[row].base);
    }
    if (pPPDData) PutMem(pPPDData[0].icon);
    PutMem(pPPDData);
    pPPDData = nullptr;
    PpdCnt = 0;
}

static char *GenPpdIcon(const std::string &file) {
    std::string image = file.substr(0, file.find('.')) + "/static.xbm";
    if (!FindFile_("icon", image.c_str())) return SaveStr_(GenericIcon);
    return SaveStr("@icon/%s", image.c_str());
}

static void FillPpdRow(PpdRecord *row, const std::string &file) {
    row->file = SaveStr_(file.c_str());
    row->base = SaveStr_(StripPathExt(file.c_str()));
    if (!*row->base) {
        PutMem(row->base);
        row->base = SaveStr_(GenericBase);
    }
    row->key = GetPpdKeyValue(file.c_str(), "Key", nullptr, 0);
    if (file == GenericFile) {
        pPPDData[0] = *row;
        pPPDData[0].icon = SaveStr_(GenericIcon);
    }
    row->icon = GenPpdIcon(file);
}

void InitPpdData() {
    FreePpdData();
    char *list = GetPpdFileList();
    int count = list ? GetTokenCount(list, " ") : 0;
    pPPDData = static_cast<PpdRecord *>(GetMem((static_cast<size_t>(count) + 1) * sizeof(PpdRecord)));
    if (!pPPDData) SysError("%s", OutOfMem);
    std::string_view rest(list ? list : ""), name;
    while (PpdCnt < count && TakeWord(rest, " ", name)) FillPpdRow(&pPPDData[++PpdCnt], std::string(name));
    PutMem(list);
}

// ---- The match

static bool TestKeyPieces(std::string_view pieces, std::string_view text) {
    for (std::string_view piece; TakeWord(pieces, "*", piece);)
        if (text.substr(0, piece.size()) == piece) return true;
    return false;
}

static bool TestVendorWord(std::string_view vendor, std::string_view text) {
    for (std::string_view word; TakeWord(text, " ", word);)
        if (word == vendor) return true;
    return false;
}

// Only the first place counts, even if a later one would do.
static bool TestModelWord(std::string_view model, std::string_view text) {
    size_t at = text.find(model);
    if (at == text.npos || at == 0 || text[at - 1] != ' ') return false;
    at += model.size();
    if (at == text.size()) return true;
    unsigned char next = static_cast<unsigned char>(text[at]);
    return isspace(next) || isalpha(next) || strchr("/,;", next);
}

static bool TestVendorKey(std::string_view key, std::string_view text) {
    std::string_view vendors, vendor, model;
    if (!TakeWord(key, " \t", vendors)) return false;
    bool known = false;
    while (!known && TakeWord(vendors, ",", vendor)) known = TestVendorWord(vendor, text);
    while (known && TakeWord(key, " \t", model))
        if (TestModelWord(model, text)) return true;
    return false;
}

static bool TestModelKey(std::string_view key, std::string_view text) {
    if (key.substr(0, strlen(PrefixKey)) == PrefixKey)
        return TestKeyPieces(key.substr(strlen(PrefixKey)), text);
    return TestVendorKey(key, text);
}

int GetPpdData(const char *description) {
    if (!pPPDData || !description) return 0;
    for (int row = 1; row <= PpdCnt; row++)
        if (pPPDData[row].key && TestModelKey(pPPDData[row].key, description)) return row;
    return 0;
}

void ConvertSNMPCharacters(char *text) {
    char *found = text ? strchr(text, static_cast<char>(PARA_SIGN)) : nullptr;
    if (found) *found = 'i';
}
