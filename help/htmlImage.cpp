// Lays out the tokens of a page in a grid of character cells and packs the grid into one text.
//
// The grid is 132 cells wide; a longer text runs over into the lines below, as in one long row of cells.
// Outside a table the layout never goes back up, so the lines above the current one are packed away as it
// goes: the grid holds a screenful, or the table that is being drawn.
#include "help/html.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

enum {
    TABLE_DEPTH = 64,
    TABLE_CELLS = 1000,
    PACK_LINES = 64,
    NO_WIDTH = -1,
    IMAGE_FIRST = 4096,
    IMAGE_PART = 32768
};
// Widths beyond these come from damaged pages only; they bound what such a page can cost.
enum { TABLE_WIDTH_MAX = 4096, TABLE_PADDING_MAX = HTML_WIDTH };

// Lines base to base + rows of the grid; rows grow on demand, new cells are zero.
static struct {
    char *cells; // managed
    int base;
    int rows;
    int used; // lines below this one hold text, counted from the top of the page
} Grid;

// The packed text is gathered in parts: so it grows without a second copy of what is there. Most pages need
// the first part only, which is small enough to share a block of memory with what stays.
struct ImagePart {
    ImagePart *next;
    size_t size; // of the text, which follows
};

// The packed text, and the offset in it of each line packed so far.
static struct {
    ImagePart *first; // managed, as all of them
    ImagePart *last;
    size_t free; // bytes at the end of the last
    size_t length;
    int *starts; // managed
    int lines;
    int capacityLines;
    int printed; // lines that have a line of their own in the text
    int covered; // lines from here up are the run-over of the line before
} Image;

static int TableDepth;

static void *Grow(void *memory, size_t size) {
    memory = AdjustMem(memory, size);
    if (!memory) SysError("%s", OutOfMem);
    return memory;
}

/*-- the grid
 * -------------------------------------------------------------------------------------------------*/

// The address of count cells, all of them in the grid.
static char *GridCells(int line, int column, int count) {
    long first = static_cast<long>(line - Grid.base) * HTML_WIDTH + column;
    long rows = (first + std::max(count, 1) - 1) / HTML_WIDTH + 1;
    if (rows > Grid.rows) {
        int more = static_cast<int>(std::max<long>(rows, Grid.rows * 2L));
        Grid.cells = static_cast<char *>(Grow(Grid.cells, static_cast<size_t>(more) * HTML_WIDTH));
        Grid.rows = more;
    }
    Grid.used = std::max(Grid.used, Grid.base + static_cast<int>(rows));
    return Grid.cells + first;
}

void PrintText(HtmlFile *, int *line, int *column, const char *text, int length, int flFill) {
    if (length <= 0) return;
    char *cells = GridCells(*line, *column, length);
    if (flFill)
        memset(cells, *text, static_cast<size_t>(length));
    else
        memcpy(cells, text, static_cast<size_t>(length));
    *column += length;
    if (length < HTML_WIDTH) return;
    // From the cell the text began in, so that what follows a long run does not overwrite its end.
    *line += *column / HTML_WIDTH;
    *column %= HTML_WIDTH;
}

static void PrintChars(int line, int column, char c, int length) {
    PrintText(nullptr, &line, &column, &c, length, 1);
}

/*-- packing
 * --------------------------------------------------------------------------------------------------*/

static char *ImageText(ImagePart *part) {
    return reinterpret_cast<char *>(part + 1);
}

static void AddImagePart() {
    size_t size = Image.first ? IMAGE_PART : IMAGE_FIRST;
    ImagePart *part = static_cast<ImagePart *>(Grow(nullptr, size));
    part->size = size - sizeof(ImagePart);
    (Image.last ? Image.last->next : Image.first) = part;
    Image.last = part;
    Image.free = part->size;
}

static void AddImage(const char *text, size_t length) {
    Image.length += length;
    while (length > 0) {
        if (Image.free == 0) AddImagePart();
        size_t count = std::min(length, Image.free);
        memcpy(ImageText(Image.last) + Image.last->size - Image.free, text, count);
        Image.free -= count;
        text += count;
        length -= count;
    }
}

// The whole text. Owns: the result.
static char *JoinImage() {
    char *text = static_cast<char *>(Grow(nullptr, Image.length + 1));
    size_t done = 0;
    for (ImagePart *part = Image.first; part;) {
        ImagePart *next = part->next;
        size_t count = std::min(part->size, Image.length - done);
        memcpy(text + done, ImageText(part), count);
        done += count;
        PutMem(part);
        part = next;
    }
    return text;
}

static void NoteLineStart(int line, size_t start) {
    if (line >= Image.capacityLines) {
        Image.capacityLines = std::max(Image.capacityLines * 2, 256);
        Image.starts =
            static_cast<int *>(Grow(Image.starts, static_cast<size_t>(Image.capacityLines) * sizeof(int)));
    }
    Image.starts[line] = static_cast<int>(start);
    Image.lines = line + 1;
}

// One line with all that runs over from it; cells that were passed over read as blanks.
static void PackLine(int line, int end) {
    if (line < Image.covered) {
        NoteLineStart(line, static_cast<size_t>(Image.starts[line - 1]) + HTML_WIDTH);
        return;
    }
    char *row = Grid.cells + static_cast<long>(line - Grid.base) * HTML_WIDTH;
    int rows = 1;
    while (line + rows < end && row[rows * HTML_WIDTH - 1] && row[rows * HTML_WIDTH]) rows++;
    int length = rows * HTML_WIDTH;
    while (length > 0 && !row[length - 1]) length--;
    for (int i = 0; i < length; i++) {
        if (!row[i]) row[i] = ' ';
    }
    NoteLineStart(line, Image.length);
    AddImage(row, static_cast<size_t>(length));
    AddImage("\n", 1);
    Image.printed++;
    Image.covered = line + 1 + (length > HTML_WIDTH - 1 ? length / HTML_WIDTH : 0);
}

// Packs the lines above the given one and moves the rest of the grid up.
static void PackLines(int line) {
    int end = std::min(line, Grid.base + Grid.rows);
    for (int i = Grid.base; i < end; i++) PackLine(i, end);
    for (int i = std::max(end, Grid.base); i < line; i++) {
        NoteLineStart(i, Image.length);
        AddImage("\n", 1);
        Image.printed++;
    }
    int gone = end - Grid.base;
    if (gone > 0) {
        size_t left = static_cast<size_t>(Grid.rows - gone) * HTML_WIDTH;
        memmove(Grid.cells, Grid.cells + static_cast<long>(gone) * HTML_WIDTH, left);
        memset(Grid.cells + left, 0, static_cast<size_t>(gone) * HTML_WIDTH);
    }
    Grid.base = std::max(Grid.base, line);
}

/*-- measuring
 * ------------------------------------------------------------------------------------------------*/

static HtmlItem *NextItem() {
    HtmlItems *body = &pCurrentPage->Body;
    return body->cursor < body->count ? &body->items[body->cursor++] : nullptr;
}

int GetColumnCnt() {
    int mark = pCurrentPage->Body.cursor;
    int nesting = 0, count = 0, most = 0;
    for (HtmlItem *item = NextItem(); item; item = NextItem()) {
        if (item->Key == KEY_TABLE_END && nesting-- == 0) break;
        if (item->Key == KEY_TABLE || item->Key == KEY_FITAB) nesting++;
        if (nesting > 0) continue;
        if (item->Key == KEY_TR) count = 0;
        if (item->Key == KEY_TD) count++;
        if (item->Key == KEY_TR_END) most = std::max(most, count);
    }
    pCurrentPage->Body.cursor = mark;
    return std::min<int>(most, TABLE_CELLS);
}

// What the attributes of a table token say, in pixels.
struct TableAttributes {
    int border;
    int spacing;
    int padding;
    const char *width; // null without one
};

static int AttributeNumber(const char *value) {
    return std::clamp(atoi(value), 0, 100000);
}

// The next name=value of an attribute text: the position of the name in the list, the value without its
// opening quote (null if there is none). Uses: the token state.
static bool NextAttribute(char *text, const char *list, int *name, char **value) {
    char *word = GetTokenParse(text, " \t\n\r");
    if (!word) return false;
    *value = strchr(word, '=');
    if (*value) {
        *(*value)++ = 0;
        if (**value == '"') (*value)++;
    }
    *name = FindTokenC(word, list);
    return true;
}

static TableAttributes ReadTableAttributes(HtmlTable *table, char *text) {
    enum { NAME_BORDER = 1, NAME_SPACING, NAME_PADDING, NAME_WIDTH };
    TableAttributes given = {};
    int name;
    char *value;
    for (char *rest = text; NextAttribute(rest, ",border,cellspacing,cellpadding,width,", &name, &value);
         rest = nullptr) {
        if (name == NAME_BORDER) {
            table->Border = 1;
            given.border = value ? AttributeNumber(value) : 1;
        }
        if (!value) continue;
        if (name == NAME_SPACING) given.spacing = AttributeNumber(value);
        if (name == NAME_PADDING) given.padding = AttributeNumber(value);
        if (name == NAME_WIDTH) given.width = value;
    }
    return given;
}

static int TableWidth(const HtmlTable *table, const TableAttributes &given, int available) {
    if (!given.width) return 0;
    int width = AttributeNumber(given.width);
    if (strchr(given.width, '%')) return std::min<int>(available * width / 100, TABLE_WIDTH_MAX);
    int frame = 2 * table->Cols * given.padding + (given.spacing + given.border) * (table->Cols + 1);
    return std::clamp<int>((width - frame) / HTML_CELL_PIXELS, 0, TABLE_WIDTH_MAX);
}

// The walk over the tokens of a table that is being measured.
struct Measure {
    HtmlTable *table;
    int *fixed; // width a td fixed for its column, NO_WIDTH without one; managed
    int row;    // -1 before the first
    int column;
    int cellHeight;
};

static int *GetInts(int count) {
    return static_cast<int *>(Grow(nullptr, static_cast<size_t>(std::max(count, 1)) * sizeof(int)));
}

static bool InCell(const Measure &m) {
    return m.row >= 0 && m.row < TABLE_CELLS && m.column >= 0 && m.column < m.table->Cols;
}

static void WidenColumn(Measure *m, int width) {
    int *column = &m->table->ColWidths[m->column];
    *column = std::max(*column, std::min<int>(width, TABLE_WIDTH_MAX));
}

static void AddCellHeight(Measure *m, int height) {
    m->cellHeight += height;
    int *row = &m->table->RowHeights[m->row];
    *row = std::max(*row, m->cellHeight);
}

static void MeasureRow(Measure *m) {
    if (m->row + 1 >= TABLE_CELLS) return;
    m->row++;
    m->column = -1;
    m->cellHeight = 0;
    m->table->Rows = m->row + 1;
    size_t size = static_cast<size_t>(m->table->Rows) * sizeof(int);
    m->table->RowHeights = static_cast<int *>(Grow(m->table->RowHeights, size));
    m->table->RowHeights[m->row] = 0;
}

static void MeasureCell(Measure *m, HtmlItem *item) {
    m->column++;
    if (!InCell(*m) || m->table->Width == 0 || m->fixed[m->column] != NO_WIDTH) return;
    int name;
    char *value;
    for (char *rest = item->Value.Text; NextAttribute(rest, ",width,", &name, &value); rest = nullptr) {
        if (name != 1 || !value) continue;
        int width = AttributeNumber(value);
        if (strchr(value, '%'))
            width = m->table->Width * width / 100 - 2 * m->table->Padding - m->table->Rule;
        else
            width /= HTML_CELL_PIXELS;
        m->fixed[m->column] = std::clamp<int>(width, 0, TABLE_WIDTH_MAX);
    }
}

static void MeasureNested(HtmlFile *file, Measure *m, HtmlItem *item) {
    if (TableDepth >= TABLE_DEPTH) return;
    int available = InCell(*m) ? std::max(0, m->fixed[m->column]) : 0;
    HtmlTable *nested = GetTextTable(file, item, available);
    if (!InCell(*m)) return;
    WidenColumn(m, nested->Width);
    AddCellHeight(m, nested->Height);
}

static void MeasureItem(HtmlFile *file, Measure *m, HtmlItem *item) {
    switch (item->Key) {
    case KEY_TR: MeasureRow(m); break;
    case KEY_TD: MeasureCell(m, item); break;
    case KEY_TD_END: m->cellHeight = 0; break;
    case KEY_TABLE: MeasureNested(file, m, item); break;
    case KEY_TR_END:
        if (m->row >= 0 && m->table->RowHeights[m->row] == 0) m->table->RowHeights[m->row] = m->cellHeight;
        break;
    default:
        if (item->Tag || !InCell(*m)) break;
        WidenColumn(m, item->Length);
        AddCellHeight(m, 1);
    }
}

static void FinishTable(const Measure &m) {
    HtmlTable *table = m.table;
    int columns = 0;
    for (int i = 0; i < table->Cols; i++) {
        if (table->Width > 0 && m.fixed[i] != NO_WIDTH) table->ColWidths[i] = m.fixed[i];
        columns += table->ColWidths[i];
    }
    if (table->Width == 0) table->Width = 2 * table->Cols * table->Padding + table->Cols + 1 + columns;
    table->Height = table->Rows + 1;
    for (int i = 0; i < table->Rows; i++) table->Height += table->RowHeights[i];
}

HtmlTable *GetTextTable(HtmlFile *file, HtmlItem *token, int available) {
    HtmlTable *table = static_cast<HtmlTable *>(Grow(nullptr, sizeof(HtmlTable)));
    TableAttributes given = ReadTableAttributes(table, token->Value.Text);
    table->Rule = 1;
    table->Cols = GetColumnCnt();
    table->Spacing = given.spacing / HTML_CELL_PIXELS;
    table->Padding = std::min<int>(given.padding / HTML_CELL_PIXELS, TABLE_PADDING_MAX);
    table->Width = TableWidth(table, given, available);
    table->ColWidths = GetInts(table->Cols);
    Measure measure = {table, GetInts(table->Cols), -1, -1, 0};
    std::fill_n(measure.fixed, table->Cols, static_cast<int>(NO_WIDTH));
    // The token list does not grow here, so the address of the token holds.
    TableDepth++;
    for (HtmlItem *item = NextItem(); item && item->Key != KEY_TABLE_END; item = NextItem())
        MeasureItem(file, &measure, item);
    TableDepth--;
    FinishTable(measure);
    PutMem(measure.fixed);
    memcpy(token->Tag, "fitab", strlen("fitab"));
    token->Key = KEY_FITAB;
    token->Value.Table = table;
    return table;
}

/*-- drawing
 * --------------------------------------------------------------------------------------------------*/

static void DrawRule(const HtmlTable *table, int line, char ends) {
    PrintChars(line, table->X, '-', table->Width);
    int x = table->X;
    for (int i = 0; i + 1 < table->Cols; i++) {
        x += table->ColWidths[i] + 2 * table->Padding + 1;
        PrintChars(line, x, '+', 1);
    }
    PrintChars(line, table->X, ends, 1);
    PrintChars(line, table->X + table->Width - 1, ends, 1);
}

static void DrawRowLine(const HtmlTable *table, int line) {
    PrintChars(line, table->X, ' ', table->Width);
    int x = table->X;
    for (int i = 0; i + 1 < table->Cols; i++) {
        x += table->ColWidths[i] + 2 * table->Padding + 1;
        PrintChars(line, x, '|', 1);
    }
    PrintChars(line, table->X, '|', 1);
    PrintChars(line, table->X + table->Width - 1, '|', 1);
}

void DrawTableArea(HtmlFile *, HtmlTable *table) {
    if (table->Width <= 0) return;
    if (!table->Border) {
        for (int i = 0; i < table->Height; i++) PrintChars(table->Y + i, table->X, ' ', table->Width);
        return;
    }
    int line = table->Y;
    for (int row = 0; row < table->Rows; row++) {
        DrawRule(table, line++, '|');
        for (int i = 0; i < table->RowHeights[row]; i++) DrawRowLine(table, line++);
    }
    DrawRule(table, line, '\'');
    PrintChars(table->Y, table->X, ',', 1);
    PrintChars(table->Y, table->X + table->Width - 1, ',', 1);
}

/*-- layout
 * ---------------------------------------------------------------------------------------------------*/

// One walk over the tokens: a page's body, or one table of it.
struct Walk {
    HtmlFile *file;
    HtmlTable *table; // null outside
    int line;
    int column;
    int left;   // cell left column
    int rowTop; // line of the row
    int row;    // index, -1 before the first
    int cell;   // column index, -1 before the first
    int counter;
    bool flList;
    HtmlLink *link; // the "a" that waits for its "/a"
    int linkLine;   // from here a text may have run over, but no new line was begun
};

// Begins a new line. Of a link that goes on in it only the columns count, so that it never grows by what else
// stands in its lines.
static void GoToLine(Walk *walk, int line) {
    if (line != walk->line) walk->linkLine = line;
    walk->line = line;
}

static void NewLine(Walk *walk) {
    if (walk->table) {
        GoToLine(walk, walk->line + 1);
        walk->column = walk->left;
        return;
    }
    GoToLine(walk, walk->line + 1 + walk->column / HTML_WIDTH);
    walk->column = 0;
    if (walk->line - Grid.base > PACK_LINES) PackLines(walk->line);
}

static void NewLines(Walk *walk, int count) {
    for (int i = 0; i < count; i++) NewLine(walk);
}

static void OpenLink(Walk *walk, HtmlItem *item) {
    HtmlLink *link = item->Value.Link;
    link->Line = walk->line;
    link->Column = walk->column;
    walk->link = link;
    walk->linkLine = walk->line;
    if (link->Kind == LINK_HREF) PrintText(walk->file, &walk->line, &walk->column, "<", 1, 0);
}

static void CloseLink(Walk *walk) {
    HtmlLink *link = walk->link;
    if (!link) return;
    walk->link = nullptr;
    if (link->Kind == LINK_HREF) PrintText(walk->file, &walk->line, &walk->column, ">", 1, 0);
    link->End = 0; // it is the page's from here on
    link->Size = std::max(0, (walk->line - walk->linkLine) * HTML_WIDTH + walk->column - link->Column);
    HtmlPage *page = pCurrentPage;
    if ((page->AnchorCount & (page->AnchorCount - 1)) == 0) { // full at each power of two
        size_t size = static_cast<size_t>(std::max(2 * page->AnchorCount, 1)) * sizeof(HtmlLink *);
        page->Anchors = static_cast<HtmlLink **>(Grow(page->Anchors, size));
    }
    page->Anchors[page->AnchorCount++] = link;
}

static void StartRow(Walk *walk) {
    if (!walk->table) return;
    walk->row++;
    walk->cell = -1;
    walk->left = walk->table->X + walk->table->Padding + 1;
    walk->rowTop = walk->line;
    walk->column = walk->table->X + 1;
}

static void EndRow(Walk *walk) {
    if (!walk->table || walk->row < 0 || walk->row >= walk->table->Rows) return;
    GoToLine(walk, walk->rowTop + walk->table->RowHeights[walk->row] + 1);
}

static void StartCell(Walk *walk) {
    if (!walk->table) return;
    GoToLine(walk, walk->rowTop);
    walk->cell++;
    if (walk->cell > 0 && walk->cell <= walk->table->Cols)
        walk->left += walk->table->ColWidths[walk->cell - 1] + 2 * walk->table->Padding + 1;
    walk->column = walk->left;
}

static void StartItem(Walk *walk) {
    if (!walk->flList) return;
    NewLine(walk);
    char number[32];
    int length = snprintf(number, sizeof number, "   %i. ", ++walk->counter);
    PrintText(walk->file, &walk->line, &walk->column, number, length, 0);
}

static void LayTable(Walk *walk, HtmlItem *item) {
    HtmlTable *table = item->Value.Table;
    if (walk->table) {
        table->X = walk->left;
        table->Y = walk->line + (walk->column != walk->left ? 1 : 0);
    } else {
        table->X = walk->column;
        table->Y = walk->line;
    }
    BuildTextBody(walk->file, table, table->Y + 1, table->X);
    GoToLine(walk, table->Y + table->Height);
    walk->column = walk->table ? walk->left : table->X;
}

// Measures from the token behind the table's own, then lays it out from there.
static void StartTable(Walk *walk, HtmlItem *item) {
    if (TableDepth >= TABLE_DEPTH) return;
    if (walk->flList) NewLine(walk);
    int mark = pCurrentPage->Body.cursor;
    bool flCell = walk->table && walk->cell >= 0 && walk->cell < walk->table->Cols;
    GetTextTable(walk->file, item, flCell ? walk->table->ColWidths[walk->cell] : 0);
    pCurrentPage->Body.cursor = mark;
    LayTable(walk, item);
}

// False when the token ends the walk.
static bool LayItem(Walk *walk, HtmlItem *item) {
    switch (item->Key) {
    case KEY_P: NewLines(walk, walk->table ? 0 : 2); break;
    case KEY_P_END: NewLines(walk, walk->table ? 0 : 1); break;
    case KEY_A: OpenLink(walk, item); break;
    case KEY_A_END: CloseLink(walk); break;
    case KEY_TR: StartRow(walk); break;
    case KEY_TR_END: EndRow(walk); break;
    case KEY_TD: StartCell(walk); break;
    case KEY_BR:
    case KEY_H1:
    case KEY_H2:
    case KEY_H3:
    case KEY_H4:
    case KEY_H5:
    case KEY_H6:
    case KEY_DIV: NewLine(walk); break;
    case KEY_H1_END:
    case KEY_H2_END:
    case KEY_H3_END:
    case KEY_H4_END:
    case KEY_H5_END:
    case KEY_H6_END:
    case KEY_DIV_END: NewLines(walk, 2); break;
    case KEY_OL:
        walk->counter = 0;
        walk->flList = true;
        break;
    case KEY_OL_END:
        walk->flList = false;
        NewLine(walk);
        break;
    case KEY_LI: StartItem(walk); break;
    case KEY_TABLE: StartTable(walk, item); break;
    case KEY_FITAB: LayTable(walk, item); break;
    case KEY_TABLE_END: return !walk->table;
    case KEY_NONE:
        if (!item->Tag) PrintText(walk->file, &walk->line, &walk->column, item->Value.Text, item->Length, 0);
        break;
    case KEY_B:
    case KEY_B_END:
    case KEY_FONT:
    case KEY_FONT_END:
    case KEY_TD_END:
    case KEY_LI_END:
    case KEY_IMG:
    case KEY_COUNT: break; // no effect on the image
    }
    return true;
}

static void LayItems(Walk *walk) {
    TableDepth++;
    if (walk->table) DrawTableArea(walk->file, walk->table);
    for (HtmlItem *item = NextItem(); item && LayItem(walk, item); item = NextItem()) {
    }
    TableDepth--;
    pCurrentPage->LineCount = std::max(Grid.used, walk->line + 1);
}

void BuildTextBody(HtmlFile *file, HtmlTable *table, int line, int column) {
    Walk walk = {file, table, line, column, column, line, -1, -1, 0, false, nullptr, 0};
    LayItems(&walk);
}

// The text tokens between title and /title. Returns whether there is a title.
static bool LayTitle(HtmlFile *file, int *line, int *column) {
    const HtmlItems *head = &pCurrentPage->Head;
    bool flTitle = false, flText = false;
    for (int i = 0; i < head->count; i++) {
        const HtmlItem *item = &head->items[i];
        if (item->Tag) {
            flTitle = strcasecmp(item->Tag, "title") == 0;
        } else if (flTitle) {
            PrintText(file, line, column, " ", (HTML_TITLE_WIDTH - item->Length) / 2, 1);
            PrintText(file, line, column, item->Value.Text, item->Length, 0);
            flText = true;
        }
    }
    return flText;
}

static Walk BodyWalk; // of the page whose image is being built; no file if there is none

static void StartTextImage(HtmlFile *file) {
    Grid = {};
    Image = {};
    TableDepth = 0;
    int line = 0, column = 0;
    if (LayTitle(file, &line, &column)) line += 2;
    BodyWalk = {file, nullptr, line, 0, 0, line, -1, -1, 0, false, nullptr, 0};
}

void BuildTextPart(HtmlFile *file) {
    if (!BodyWalk.file) StartTextImage(file);
    pCurrentPage->Body.cursor = 0;
    LayItems(&BodyWalk);
    BodyWalk.link = nullptr; // goes with the tokens
}

void BuildTextImage(HtmlFile *file) {
    BuildTextPart(file);
    PackLines(std::max(Grid.used, 1));
    BodyWalk = {};
}

// Layout positions become offsets in the packed text.
static void PlaceLink(HtmlLink *link) {
    int line = std::clamp(link->Line + link->Column / HTML_WIDTH, 0, Image.lines - 1);
    int start = Image.starts[line] + link->Column % HTML_WIDTH;
    link->Start = std::clamp(start, 0, static_cast<int>(Image.length));
    link->End = std::min(link->Start + link->Size, static_cast<int>(Image.length));
}

void PrintTextImage(HtmlFile *file) {
    if (pCurrentPage->TextImage) return;
    BuildTextImage(file);
    for (int i = 0; i < pCurrentPage->AnchorCount; i++) PlaceLink(pCurrentPage->Anchors[i]);
    pCurrentPage->TextImage = JoinImage();
    pCurrentPage->LineCount = Image.printed;
    PutMem(Image.starts);
    PutMem(Grid.cells);
    Grid = {};
    Image = {};
}
