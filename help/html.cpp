// Reads the manual's HTML subset into pages of tokens, follows links and keeps the history.
#include "help/html.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <strings.h>
#include <sys/stat.h>

enum { ENTITY_NAME = 16, FIRST_ENTITY = 160, BODY_PART = 1024, HTML_FILE_MAX = 1 << 26 };

HtmlFile *aFile[HTML_FILES];
int FileIndex = 0;
int CurrentFile = 0;
HtmlPage *pCurrentPage = nullptr;
int flBuildingFile = 0;
int TargetPos = 0;
int HistoryI = 0;

static struct {
    int file;
    HtmlPage *page;
    int position;
} History[HTML_HISTORY];

// ISO 8859-1 from 160 to 255, in the order of the codes.
constexpr char HTMLKeys[] = ",nbsp;,iexcl;,cent;,pound;,curren;,yen;,brvbar;,sect;,uml;,copy;,ordf;,laquo;,"
                            "not;,shy;,reg;,macr;,deg;,plusmn;,"
                            "sup2;,sup3;,acute;,micro;,para;,middot;,cedil;,supl;,ordm;,raquo;,frac14;,"
                            "frac12;,frac34;,iquest;,Agrave;,"
                            "Aacute;,Acirc;,Atilde;,Auml;,Aring;,AElig;,Ccedil;,Egrave;,Eacute;,Ecirc;,Euml;,"
                            "Igrave;,Iacute;,Icirc;,Iuml;,"
                            "ETH;,Ntilde;,Ograve;,Oacute;,Ocirc;,Otilde;,Ouml;,times;,Oslash;,Ugrave;,Uacute;"
                            ",Ucirc;,Uuml;,Yacute;,THORN;,"
                            "szlig;,agrave;,aacute;,acirc;,atilde;,auml;,aring;,aelig;,ccedil;,egrave;,"
                            "eacute;,ecirc;,euml;,igrave;,iacute;,"
                            "icirc;,iuml;,eth;,ntilde;,ograve;,oacute;,ocirc;,otilde;,ouml;,divide;,oslash;,"
                            "ugrave;,uacute;,ucirc;,uuml;,"
                            "yacute;,thorn;,yuml;,";

struct EntityTables {
    unsigned char codes[96];
    unsigned char sizes[96];
};

// The code and the length of each name, counted off the list so that the three cannot disagree.
static consteval EntityTables CountEntities(const char *list) {
    EntityTables tables = {};
    int entity = -1;
    for (const char *p = list; p[1] != 0; p++) {
        if (*p == ',') {
            entity++;
            tables.codes[entity] = static_cast<unsigned char>(FIRST_ENTITY + entity);
        } else {
            tables.sizes[entity]++;
        }
    }
    return entity == 95 ? tables : throw "the list must hold 96 names";
}

static constexpr EntityTables Entities = CountEntities(HTMLKeys);
const unsigned char *const HTMLChars = Entities.codes;
const unsigned char *const HTMLKeySizes = Entities.sizes;

// ORDER HtmlKey
constexpr char HtmlKeys[] =
    ",p,/p,b,/b,font,/font,a,/a,tr,/tr,br,table,fitab,/table,td,/td,h1,h2,h3,h4,h5,h6,"
    "/h1,/h2,/h3,/h4,/h5,/h6,ol,/ol,li,/li,div,/div,img,";

/*-- entities and keywords
 * ------------------------------------------------------------------------------------*/

// The key of a tag name, compared without case. Called once a token.
static HtmlKey FindHtmlKey(const char *tag) {
    size_t length = strlen(tag);
    int key = 0;
    for (const char *p = HtmlKeys; p[1] != 0; key++) {
        const char *end = strchr(p + 1, ',');
        if (static_cast<size_t>(end - p - 1) == length && strncasecmp(p + 1, tag, length) == 0)
            return static_cast<HtmlKey>(key + 1);
        p = end;
    }
    return KEY_NONE;
}

static bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

char *GetKeyWord(HtmlFile *file) {
    char *open = strchr(file->Cursor, '<');
    if (!open) return nullptr;
    char *close = strchr(open + 1, '>');
    if (!close) return nullptr;
    *open = 0;
    *close = 0;
    file->Cursor = close + 1;
    return open + 1;
}

/*-- tokens
 * ---------------------------------------------------------------------------------------------------*/

// name="x" and href="x"; the last one wins. The values stay in the content.
static HtmlLink *ReadLink(char *attributes) {
    HtmlLink *link = static_cast<HtmlLink *>(GetMem(sizeof(HtmlLink)));
    if (!link) SysError("%s", OutOfMem);
    link->End = -1; // until the layout has met its end tag
    for (char *word = GetTokenParse(attributes, " \t\n\r"); word; word = GetTokenParse(nullptr, " \t\n\r")) {
        char *value = strchr(word, '=');
        if (!value) continue;
        *value++ = 0;
        int kind = *word ? FindTokenC(word, ",name,href,") : LINK_NONE; // a blank may precede the "="
        if (kind == LINK_NONE) continue;
        if (*value == '"') value++;
        if (char *end = strchr(value, '"')) *end = 0;
        link->Target = value;
        link->Kind = kind;
    }
    return link;
}

void AddAtribute(HtmlItems *items, char *tag, char *value) {
    if (items->count == items->capacity) {
        items->capacity = items->capacity ? items->capacity * 2 : 16;
        size_t size = static_cast<size_t>(items->capacity) * sizeof(HtmlItem);
        items->items = static_cast<HtmlItem *>(AdjustMem(items->items, size));
        if (!items->items) SysError("%s", OutOfMem);
    }
    HtmlItem *item = &items->items[items->count++];
    *item = HtmlItem{};
    item->Tag = tag;
    item->Key = tag ? FindHtmlKey(tag) : KEY_NONE;
    if (item->Key == KEY_FITAB) item->Key = KEY_NONE; // the layout's own name: in a page it is an unknown tag
    item->Length = static_cast<int>(strlen(value));
    if (item->Key == KEY_A)
        item->Value.Link = ReadLink(value);
    else
        item->Value.Text = value;
}

// Where ParseHtml reads and writes. The text of a run is written over the content it was read from: it is
// never longer.
struct RunState {
    char *read;
    char *run;   // start of the open run, or null
    char *write; // end of it
    bool blank;  // its last character is white space
    int tables;  // read, but not their ends
    bool flLink; // the same of an "a"
    bool flLast; // no ";" is left
};

static void AddRunChar(RunState *state, char *start, char c) {
    if (!state->run) {
        state->run = start;
        state->write = start;
    }
    *state->write++ = c;
    state->blank = false;
}

// "&#NUMBER;", "&quot;" or "&NAME;" at the read position; anything else leaves the ampersand as a character.
static void ReadEntity(RunState *state) {
    char *start = state->read;
    char *end = nullptr;
    size_t length = strnlen(start, ENTITY_NAME);
    if (start[1] == '#') {
        end = state->flLast ? nullptr : strchr(start, ';');
        state->flLast = !end;
        int code = end ? static_cast<unsigned char>(atoi(start + 2)) : 0;
        state->read = end ? end + 1 : start + 1;
        if (!end)
            AddRunChar(state, start, '&');
        else if (code != 0)
            AddRunChar(state, start, static_cast<char>(code));
        return;
    }
    end = static_cast<char *>(memchr(start, ';', length));
    std::string name = end ? std::string(start + 1, end + 1) : std::string();
    int position = name.empty() ? 0 : FindToken(name.c_str(), HTMLKeys);
    char c = '&';
    if (strcasecmp(name.c_str(), "quot;") == 0)
        c = '"';
    else if (position > 0)
        c = static_cast<char>(HTMLChars[position - 1]);
    state->read = c == '&' ? start + 1 : end + 1;
    AddRunChar(state, start, c);
}

static void NoteOpenTags(RunState *state, HtmlKey key) {
    if (key == KEY_TABLE) state->tables++;
    if (key == KEY_TABLE_END && state->tables > 0) state->tables--;
    if (key == KEY_A || key == KEY_A_END) state->flLink = key == KEY_A;
}

// The tag at the read position; false at the end tag, which is passed.
static bool ReadTag(RunState *state, HtmlItems *items, const char *endTag) {
    char *tag = state->read + 1;
    char *end = strchr(tag, '>');
    state->read = end ? end + 1 : tag + strlen(tag);
    if (state->run) {
        *state->write = 0;
        AddAtribute(items, nullptr, state->run);
        state->run = nullptr;
    }
    if (end) *end = 0;
    while (IsBlank(*tag)) tag++;
    char *value = tag;
    while (*value && !IsBlank(*value)) value++;
    if (*value) *value++ = 0;
    if (*tag == '/' && strcasecmp(tag + 1, endTag) == 0) return false;
    AddAtribute(items, tag, value);
    NoteOpenTags(state, items->items[items->count - 1].Key);
    return true;
}

// White space between tags makes no token; in a run the first of several stays.
static void ReadBlank(RunState *state) {
    if (state->run && !state->blank) {
        *state->write++ = *state->read;
        state->blank = true;
    }
    state->read++;
}

// Reads to the end of the section, or, with enough tokens, to a tag that leaves no table and no link open.
// Whether more is to come.
static bool ReadItems(HtmlFile *file, HtmlItems *items, const char *endTag, int enough) {
    RunState state = {file->Cursor, nullptr, nullptr, false, 0, false, false};
    bool flGoOn = true, flEnough = false;
    while (flGoOn && !flEnough && *state.read) {
        char c = *state.read;
        if (c == '<') {
            flGoOn = ReadTag(&state, items, endTag);
            flEnough = items->count >= enough && state.tables == 0 && !state.flLink;
        } else if (c == '&') {
            ReadEntity(&state);
        } else if (IsBlank(c)) {
            ReadBlank(&state);
        } else {
            AddRunChar(&state, state.read, c);
            state.read++;
        }
    }
    file->Cursor = state.read;
    return flGoOn && *state.read;
}

void ParseHtml(HtmlFile *file, HtmlItems *items, const char *endTag) {
    ReadItems(file, items, endTag, INT_MAX);
}

/*-- files
 * ----------------------------------------------------------------------------------------------------*/

HtmlFile *FindHtmlFile(const char *name) {
    for (int i = 0; name && i < FileIndex; i++) {
        if (strcmp(aFile[i]->Name, name) == 0) {
            CurrentFile = i;
            return aFile[i];
        }
    }
    return nullptr;
}

static HtmlPage *AddPage(HtmlFile *file, HtmlPage *last) {
    HtmlPage *page = static_cast<HtmlPage *>(GetMem(sizeof(HtmlPage)));
    if (!page) SysError("%s", OutOfMem);
    (last ? last->next : file->Pages) = page;
    return page;
}

// Moves the cursor behind the next "/HTML" and its ">", or to the end of the content.
static void SkipDocument(HtmlFile *file) {
    char *end = StrCaseStr(file->Cursor, "/HTML");
    char *close = end ? strchr(end, '>') : nullptr;
    file->Cursor = close ? close + 1 : file->Cursor + strlen(file->Cursor);
}

// The tokens have done their work when they are laid out; what the anchors hold and the image stay.
static void DropItems(HtmlItems *items) {
    for (int i = 0; i < items->count; i++) {
        const HtmlItem &item = items->items[i];
        if (item.Key == KEY_A && item.Value.Link->End < 0) PutMem(item.Value.Link);
        if (item.Key != KEY_FITAB) continue;
        PutMem(item.Value.Table->RowHeights);
        PutMem(item.Value.Table->ColWidths);
        PutMem(item.Value.Table);
    }
    items->count = 0;
}

static void FreeItems(HtmlItems *items) {
    DropItems(items);
    PutMem(items->items);
    *items = HtmlItems{};
}

// A long body is laid out while it is read, so that few of its tokens are there at a time. Not before there
// is a head, whose title comes first, nor when the tokens of an earlier body wait for this one.
static void ReadBody(HtmlFile *file, HtmlPage *page) {
    bool flParts = page->Head.count > 0 && page->Body.count == 0;
    while (ReadItems(file, &page->Body, "body", flParts ? BODY_PART : INT_MAX)) {
        BuildTextPart(file);
        DropItems(&page->Body);
    }
}

static void FinishPage(HtmlFile *file) {
    PrintTextImage(file);
    FreeItems(&pCurrentPage->Head);
    FreeItems(&pCurrentPage->Body);
}

// An html tag: a page of its own if it is the first or names one, else the page goes on.
static HtmlPage *ReadHtmlTag(HtmlFile *file, HtmlPage *page, char *tag) {
    if (strstr(tag, "SkipPage")) {
        SkipDocument(file);
        return page;
    }
    char *name = StrCaseStr(tag, "page=\"");
    if (page && !name) return page;
    if (page) FinishPage(file);
    page = AddPage(file, page);
    pCurrentPage = page;
    if (name) {
        page->Name = name + strlen("page=\"");
        if (char *end = strchr(page->Name, '"')) *end = 0;
    }
    return page;
}

// The first word of a tag, leading blanks passed. Buffer: static.
static const char *FirstWord(const char *tag) {
    static char word[16];
    while (IsBlank(*tag)) tag++;
    size_t length = strcspn(tag, " \t\r\n");
    if (length >= sizeof word) return "";
    memcpy(word, tag, length);
    word[length] = 0;
    return word;
}

// Each page is current while it is read.
static void ReadPages(HtmlFile *file) {
    enum { TAG_HTML = 1, TAG_HEAD, TAG_BODY };
    HtmlPage *page = nullptr;
    for (char *tag = GetKeyWord(file); tag; tag = GetKeyWord(file)) {
        switch (FindTokenC(FirstWord(tag), ",html,head,body,/html,")) {
        case TAG_HTML: page = ReadHtmlTag(file, page, tag); break;
        case TAG_HEAD:
            if (page && page->Head.count == 0) ParseHtml(file, &page->Head, "head");
            break;
        case TAG_BODY:
            if (page) ReadBody(file, page);
            break;
        default: break; // other tags stand outside the two sections
        }
    }
    if (page) FinishPage(file);
}

void FreeHtmlFile(HtmlFile *file) {
    for (HtmlPage *page = file->Pages; page;) {
        HtmlPage *next = page->next;
        for (int i = 0; i < page->AnchorCount; i++) PutMem(page->Anchors[i]);
        PutMem(page->Anchors);
        PutMem(page->TextImage);
        PutMem(page);
        page = next;
    }
    PutMem(file->Name);
    PutMem(file->Content);
    PutMem(file);
}

// A link may name anything: a pipe or a device would never end, and offsets in a text are ints.
static bool IsReadable(const std::string &path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= HTML_FILE_MAX;
}

// Reads and lays out the content; null and all released if it has no page.
static HtmlFile *LoadHtmlFile(const std::string &name, const char *buffer) {
    if (!buffer && !IsReadable(name)) return nullptr;
    char *content = buffer ? SaveStr_(buffer) : GetSavedFileContent(name.c_str(), nullptr);
    if (!content) return nullptr;
    HtmlFile *file = static_cast<HtmlFile *>(GetMem(sizeof(HtmlFile)));
    if (!file) SysError("%s", OutOfMem);
    file->Name = SaveStr_(name.c_str());
    file->Content = content;
    file->Cursor = content;
    ReadPages(file);
    if (!file->Pages) {
        FreeHtmlFile(file);
        return nullptr;
    }
    CurrentFile = FileIndex;
    aFile[FileIndex++] = file;
    return file;
}

// Length of the file's part of a name: up to the first '#', but directories may hold one themselves.
static size_t FilePart(const char *name, const char *buffer) {
    size_t first = strcspn(name, "#");
    for (size_t length = first; !buffer && length > 0; length += 1 + strcspn(name + length + 1, "#")) {
        if (IsReadable(std::string(name, length))) return length;
        if (!name[length]) break;
    }
    return first;
}

HtmlFile *ParseHtmlFile(const char *name, const char *buffer) {
    if (!name || strncasecmp(name, "http://", 7) == 0) return nullptr;
    if (strncasecmp(name, "file://", 7) == 0) name += 7;
    size_t length = FilePart(name, buffer);
    std::string path(name, length);
    HtmlFile *file = FindHtmlFile(path.c_str());
    if (file) {
        pCurrentPage = file->Pages;
        return file;
    }
    if (FileIndex == HTML_FILES) return nullptr;
    HtmlPage *before = pCurrentPage;
    file = LoadHtmlFile(path, buffer);
    pCurrentPage = file ? file->Pages : before;
    if (file && name[length]) GoToTarget(name + length);
    return file;
}

/*-- links and history
 * ----------------------------------------------------------------------------------------*/

void SetHistory() {
    if (HistoryI >= HTML_HISTORY) return;
    History[HistoryI++] = {CurrentFile, pCurrentPage, TargetPos};
}

int HtmlSetHistory(int where) {
    if (HistoryI <= 0) return 0;
    if (where == 0) {
        HistoryI = 0;
        CurrentFile = 0;
        TargetPos = 0;
        pCurrentPage = aFile[0]->Pages;
    } else {
        HistoryI--;
        CurrentFile = History[HistoryI].file;
        pCurrentPage = History[HistoryI].page;
        TargetPos = History[HistoryI].position;
    }
    return 1;
}

static HtmlLink *FindAnchor(HtmlPage *page, const char *name) {
    for (int i = 0; i < page->AnchorCount; i++) {
        HtmlLink *link = page->Anchors[i];
        if (link->Kind == LINK_NAME && link->Target && strcmp(link->Target, name) == 0) return link;
    }
    return nullptr;
}

void GoToTarget(const char *name) {
    if (*name == '#') name++;
    if (FileIndex == 0) return;
    for (HtmlPage *page = aFile[CurrentFile]->Pages; page; page = page->next) {
        bool flPage = page->Name && strcmp(page->Name, name) == 0;
        HtmlLink *anchor = flPage ? nullptr : FindAnchor(page, name);
        if (!flPage && !anchor) continue;
        SetHistory();
        pCurrentPage = page;
        TargetPos = anchor ? anchor->Start : 0;
        return;
    }
}

// Whether the file part of a target with "#" names the file on show, whose path does not count.
static bool IsCurrentFile(const char *target, size_t length) {
    const char *name = StripPath(aFile[CurrentFile]->Name);
    return strlen(name) == length && strncmp(name, target, length) == 0;
}

static void FollowTarget(const char *target) {
    const char *hash = strchr(target, '#');
    if (*target == '#') {
        GoToTarget(target);
        return;
    }
    if (hash && IsCurrentFile(target, static_cast<size_t>(hash - target))) {
        GoToTarget(strrchr(target, '#'));
        return;
    }
    int position = TargetPos;
    TargetPos = 0; // the place of the link says nothing of another file
    if (HtmlFile *file = FindHtmlFile(target)) {
        pCurrentPage = file->Pages;
        return;
    }
    if (ParseHtmlFile(target, nullptr)) return;
    TargetPos = position;
    printf("Error in reading file %s\n", target);
    fflush(stdout); // it may be a log, and the program runs on
}

void ProcessLink(HtmlLink *link) {
    if (!link || !link->Target || FileIndex == 0) return;
    flBuildingFile = 1;
    FollowTarget(link->Target);
    flBuildingFile = 0;
}

void HtmlProcessLink(int position) {
    if (flBuildingFile || FileIndex == 0 || !pCurrentPage) return;
    for (int i = 0; i < pCurrentPage->AnchorCount; i++) {
        HtmlLink *link = pCurrentPage->Anchors[i];
        if (link->Kind != LINK_HREF || position < link->Start || position >= link->End) continue;
        TargetPos = position;
        ProcessLink(link);
        return;
    }
}

int HtmlHelp(const char *name, const char *buffer) {
    if (!name) return 0;
    HistoryI = 0;
    TargetPos = 0;
    flBuildingFile = 1;
    HtmlFile *file = ParseHtmlFile(name, buffer);
    flBuildingFile = 0;
    if (file) return 1;
    if (buffer)
        printf("Error reading HTML buffer\n");
    else
        printf("Error in reading HTML file %s\n", name);
    fflush(stdout);
    return 0;
}
