// Passphrase, screen buffer and pick list.
#include "menu/Screen.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Token.h"
#include "common/utils.h"
#include "menu/MenuState.h"
#include "menu/MenuText.h"
#include "menu/TextMenu.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <signal.h>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>
#include <vector>

// ---- Passphrase

enum { PASS_READ_MAX = 4096 }; // characters of a line that are read; what is too long is dropped

static constexpr int PassSignals[] = {SIGINT, SIGHUP, SIGQUIT, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU};

int PassSeconds = PASS_SECONDS;
static volatile sig_atomic_t signo; // last signal that came in, 0 for none; writer: handler

void handler(int signal) {
    signo = signal;
}

// The terminal while it is asked, and what must come back.
struct PassTerminal {
    int in;
    int out;
    bool flOpened;
    bool flEchoOff;
    struct termios settings;
    struct sigaction actions[std::size(PassSignals)];
};

static void WritePass(const PassTerminal *terminal, const char *text) {
    for (size_t length = strlen(text); length > 0;) {
        ssize_t count = write(terminal->out, text, length);
        if (count < 0 && errno != EINTR) return;
        if (count <= 0) continue;
        text += count;
        length -= static_cast<size_t>(count);
    }
}

static void OpenPass(PassTerminal *terminal) {
    int file = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    *terminal = {};
    terminal->flOpened = file >= 0 && file < FD_SETSIZE;
    if (file >= FD_SETSIZE) close(file);
    terminal->in = terminal->flOpened ? file : STDIN_FILENO;
    terminal->out = terminal->flOpened ? file : STDERR_FILENO;
}

// No SA_RESTART: a signal ends the wait.
static void CatchPassSignals(PassTerminal *terminal) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(PassSignals); i++)
        sigaction(PassSignals[i], &action, &terminal->actions[i]);
}

// In the background this raises SIGTTOU and changes nothing.
static void HidePass(PassTerminal *terminal) {
    if (tcgetattr(terminal->in, &terminal->settings) != 0) return;
    struct termios quiet = terminal->settings;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    int status;
    do status = tcsetattr(terminal->in, TCSADRAIN, &quiet);
    while (status != 0 && errno == EINTR && !signo);
    terminal->flEchoOff = status == 0;
}

// What was typed of an entry that was broken off is thrown away: the next reader might show it.
static void ClosePass(PassTerminal *terminal, bool flWhole) {
    if (terminal->flEchoOff) {
        int when = flWhole ? TCSADRAIN : TCSAFLUSH;
        WritePass(terminal, "\n");
        // A background process is refused with SIGTTOU, and asks anew when it is in front.
        while (tcsetattr(terminal->in, when, &terminal->settings) != 0 && errno == EINTR &&
               signo != SIGTTOU) {
        }
    }
    for (size_t i = 0; i < std::size(PassSignals); i++)
        sigaction(PassSignals[i], &terminal->actions[i], nullptr);
    if (terminal->flOpened) close(terminal->in);
}

static struct timespec GetClock() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now;
}

// True once a character can be read. The signals are let in by the wait only, so that none falls between the
// look at signo and the wait.
static bool WaitPass(int in, time_t end) {
    sigset_t caught, old;
    sigemptyset(&caught);
    for (int number : PassSignals) sigaddset(&caught, number);
    sigprocmask(SIG_BLOCK, &caught, &old);
    int ready = -1;
    errno = EINTR;
    while (!signo && ready < 0 && (errno == EINTR || errno == EAGAIN)) {
        struct timespec left = {std::max<time_t>(0, end - GetClock().tv_sec), 0};
        fd_set set;
        FD_ZERO(&set);
        FD_SET(in, &set);
        ready = pselect(in + 1, &set, nullptr, nullptr, &left, &old);
    }
    sigprocmask(SIG_SETMASK, &old, nullptr);
    return ready > 0;
}

// The next character, or -1 at the end, after the silence and on a signal.
static int ReadPassChar(int in) {
    time_t end = GetClock().tv_sec + PassSeconds;
    while (WaitPass(in, end)) {
        unsigned char ch;
        ssize_t count = read(in, &ch, 1);
        if (count == 1) return ch;
        if (count == 0 || (errno != EINTR && errno != EAGAIN)) break;
    }
    return -1;
}

// True at the end of a line. The rest of one that is too long is no answer to the next question.
static bool ReadPass(int in, char *buffer) {
    int ch = -1;
    size_t length = 0;
    for (int i = 0; i < PASS_READ_MAX; i++) {
        ch = ReadPassChar(in);
        if (ch < 0 || ch == '\n' || ch == '\r') break;
        if (length < PASS_MAX_LENGTH) buffer[length++] = static_cast<char>(ch);
    }
    buffer[length] = '\0';
    return ch == '\n' || ch == '\r';
}

static void AskPass(const char *prompt, char *buffer) {
    PassTerminal terminal;
    OpenPass(&terminal);
    WritePass(&terminal, prompt);
    CatchPassSignals(&terminal);
    HidePass(&terminal);
    ClosePass(&terminal, ReadPass(terminal.in, buffer));
}

static bool IsStopSignal(int number) {
    return number == SIGTSTP || number == SIGTTIN || number == SIGTTOU;
}

char *GetPassPhrase(const char *prompt) {
    static char buffer[PASS_MAX_LENGTH + 1];
    int error = errno;
    fflush(stdout);
    int number;
    do {
        signo = 0;
        AskPass(prompt, buffer);
        number = signo;
        if (number) kill(getpid(), number);
    } while (IsStopSignal(number));
    char *copy = SaveStr_(buffer);
    explicit_bzero(buffer, sizeof buffer);
    errno = error;
    return copy;
}

// ---- The terminal

static ScreenRec Screen;

static bool TestCursor() {
    const char *term = getenv("TERM");
    return isatty(STDOUT_FILENO) && term && *term && strcmp(term, "dumb") != 0;
}

static int PickSize(int size, const char *variable, int initial) {
    const char *text = size > 0 ? nullptr : getenv(variable);
    if (text) size = static_cast<int>(std::min<long>(strtol(text, nullptr, 10), SCREEN_MAX));
    return size > 0 ? std::min<int>(size, SCREEN_MAX) : initial;
}

static size_t ScreenSize(const ScreenRec *screen) {
    return static_cast<size_t>(screen->width) * static_cast<size_t>(screen->height);
}

static struct winsize AskTerminal() {
    struct winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size : winsize{};
}

int GetTermHeight() {
    return PickSize(AskTerminal().ws_row, "LINES", SCREEN_HEIGHT);
}

ScreenRec *GetTermInfo(ScreenRec *screen) {
    if (!screen) screen = &Screen;
    struct winsize size = AskTerminal();
    screen->width = PickSize(size.ws_col, "COLUMNS", SCREEN_WIDTH);
    screen->height = PickSize(size.ws_row, "LINES", SCREEN_HEIGHT);
    PutMem(screen->buffer);
    screen->buffer = static_cast<char *>(GetMem(ScreenSize(screen)));
    if (!screen->buffer) SysError("%s", OutOfMem);
    memset(screen->buffer, ' ', ScreenSize(screen));
    return screen;
}

static int Clip(int value, int least, int most) {
    return std::max(least, std::min(value, most));
}

void MoveCursor(ScreenRec *screen, int x, int y) {
    if (TestCursor()) printf("\033[%d;%dH", Clip(y, 1, screen->height), Clip(x, 0, screen->width - 1) + 1);
}

void ClearScreen(ScreenRec *screen) {
    if (TestCursor()) fputs("\033[H\033[2J", stdout);
    if (screen->buffer) memset(screen->buffer, ' ', ScreenSize(screen));
}

// ---- The buffer

void SetPosition(ScreenRec *screen, int x, int y) {
    screen->x = x;
    screen->y = y;
}

void SetOvlInfo(ScreenRec *screen, int x, int y, int width, int height) {
    screen->overlayX = x;
    screen->overlayY = y;
    screen->overlayWidth = width;
    screen->overlayHeight = height;
}

static char *ScreenRow(const ScreenRec *screen, int row) {
    return screen->buffer + static_cast<size_t>(row) * static_cast<size_t>(screen->width);
}

// x from 0, y from 1.
static void PutText(ScreenRec *screen, int x, int y, std::string_view text) {
    if (!screen->buffer || y < 1 || y > screen->height || x < 0 || x >= screen->width) return;
    std::string shown = ShowPlain(text.substr(0, static_cast<size_t>(screen->width - x)));
    memcpy(ScreenRow(screen, y - 1) + x, shown.data(), shown.size());
}

void WriteString(ScreenRec *screen, const char *format, ...) {
    char text[SCREEN_TEXT];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    int x = screen->x < 1 || screen->x > screen->width ? 0 : screen->x;
    int y = screen->y < 1 || screen->y > screen->height ? 1 : screen->y;
    PutText(screen, x, y, text);
}

void FillArea(ScreenRec *screen, int x, int y, int width, int height, char ch) {
    if (!screen->buffer) return;
    long left = std::clamp<long>(x, 0, screen->width);
    long right = std::clamp<long>(long{x} + width, left, screen->width);
    long bottom = std::min<long>(long{y} + height, screen->height);
    for (long row = std::max(y, 0); row < bottom; row++)
        memset(ScreenRow(screen, static_cast<int>(row)) + left, ch, static_cast<size_t>(right - left));
}

// The last cell of all is left out: a character there would scroll the terminal.
static std::string GetRow(const ScreenRec *screen, int row) {
    std::string_view text(ScreenRow(screen, row), static_cast<size_t>(screen->width));
    if (row == screen->height - 1) text.remove_suffix(1);
    return std::string(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
}

int Refresh(ScreenRec *screen) {
    if (screen->buffer) {
        MoveCursor(screen, 0, 1);
        for (int row = 0; row < screen->height; row++) printf("%s", GetRow(screen, row).c_str());
    }
    fflush(stdout);
    return 0;
}

void NumberScreen(ScreenRec *screen) {
    for (int y = 1; y <= SCREEN_HEIGHT; y++)
        for (int x = 0; x < SCREEN_WIDTH; x++)
            PutText(screen, x, y, std::string(1, static_cast<char>('0' + x % 10)));
}

// ---- The framed box

// One line of the box, as far as it lies on the screen. Without a cursor the lines stand one below the other.
static void PrintBoxLine(ScreenRec *screen, int line, const std::string &text) {
    int x = std::max(screen->overlayX, 0);
    int y = screen->overlayY + line;
    if (y < 1 || y > screen->height || x >= screen->width) return;
    MoveCursor(screen, x, y);
    printf("%.*s", screen->width - x, ShowPlain(text).c_str());
    if (!TestCursor() || (line == 0 && y < screen->height)) putchar('\n');
}

static std::string BoxText(std::string text, int width) {
    text.resize(static_cast<size_t>(width), ' ');
    return "* " + text + " *";
}

// The text of the next row, taken off; a line feed right behind a full row ends that row only.
static std::string TakeBoxRow(const char *&text, int width) {
    size_t length = std::min(strcspn(text, "\n"), static_cast<size_t>(width));
    std::string row(text, length);
    text += length;
    if (*text == '\n') text++;
    return row;
}

static void WaitBox(ScreenRec *screen, int line, int width) {
    enum { PRESS_CURSOR = 15 };
    char answer[2];
    MoveCursor(screen, screen->overlayX + std::min<int>(PRESS_CURSOR, width + 3), screen->overlayY + line);
    Gets(answer, sizeof answer);
}

void Overlay(ScreenRec *screen, const char *text, int flWait) {
    int width = Clip(screen->overlayWidth, 1, SCREEN_MAX);
    int line = 0;
    if (!text) text = "";
    std::string edge(static_cast<size_t>(width) + 4, '*');
    PrintBoxLine(screen, line++, edge);
    do PrintBoxLine(screen, line++, BoxText(TakeBoxRow(text, width), width));
    while (*text && (screen->overlayHeight <= 0 || line <= screen->overlayHeight));
    if (flWait) PrintBoxLine(screen, line, BoxText("Press enter", width));
    PrintBoxLine(screen, line + (flWait ? 1 : 0), edge);
    if (flWait) WaitBox(screen, line, width);
    MoveCursor(screen, screen->x, screen->y);
    fflush(stdout);
}

// ---- Pick list

enum {
    PICK_FIRST_ROW = 3,
    PICK_TITLE_ROW = 1,
    PICK_GAP = 7,
    PICK_NUMBER = 4,
    PICK_TEXT = 8,
    PICK_LEAST_HEIGHT = 7
};
enum { PICK_SELECT_BITS = 31, PICK_CUT = 3, PICK_LEAST_WIDTH = 20 };
enum { // texts of set 25
    PICK_KEY_SAVE = 201,
    PICK_KEY_CANCEL = 202,
    PICK_KEY_SELECTION = 203,
    PICK_KEY_CUT_SELECTION = 204,
    PICK_KEY_OPTION = 205,
    PICK_KEY_SMALL = 206,
    PICK_KEY_SIZE = 207,
    PICK_KEY_NEEDED = 208,
};

char *PRDTTYMENU_SAVE;
char *PRDTTYMENU_CANCEL;
char *PRDTTYMENU_CURSEL;
char *PRDTTYMENU_CURSELTRUNC;
char *PRDTTYMENU_OPTION;

static void FetchPickLabels() {
    if (PRDTTYMENU_OPTION) return;
    NlsTtyMenuCvt(&PRDTTYMENU_SAVE, PICK_KEY_SAVE);
    NlsTtyMenuCvt(&PRDTTYMENU_CANCEL, PICK_KEY_CANCEL);
    NlsTtyMenuCvt(&PRDTTYMENU_CURSEL, PICK_KEY_SELECTION);
    NlsTtyMenuCvt(&PRDTTYMENU_CURSELTRUNC, PICK_KEY_CUT_SELECTION);
    NlsTtyMenuCvt(&PRDTTYMENU_OPTION, PICK_KEY_OPTION);
}

// The choices as they stand in the list, markers and all.
static std::vector<std::string> ListChoices(const TextMenuItem *item) {
    std::vector<std::string> choices;
    char token[TOKEN_SIZE];
    char *position = nullptr;
    const char *choice = item->choices ? GetTokenD(item->choices, ",", &position, token) : nullptr;
    for (; choice; choice = GetTokenD(nullptr, ",", &position, token)) choices.emplace_back(choice);
    return choices;
}

static int CountRows(const ScreenRec *screen, int choices) {
    return std::max(1, std::min(screen->height - PICK_FRAME_ROWS, choices));
}

static std::vector<int> ListWidths(const ScreenRec *screen, const std::vector<std::string> &choices) {
    auto rows = static_cast<size_t>(CountRows(screen, static_cast<int>(choices.size())));
    std::vector<int> widths((choices.size() + rows - 1) / rows);
    for (size_t i = 0; i < choices.size(); i++)
        widths[i / rows] = std::max(widths[i / rows], static_cast<int>(choices[i].size()));
    return widths;
}

int GetColumnWidths(ScreenRec *screen, const TextMenuItem *item, int *widths, size_t capacity) {
    int widest = 0;
    for (int width : ListWidths(screen, ListChoices(item))) {
        widest = std::max(widest, width);
        if (capacity == 0) continue;
        *widths++ = width;
        capacity--;
    }
    return widest;
}

static bool TestHidden(const PickMask *mask, size_t choice) {
    return choice >= PICK_MAX || (mask->bits[choice / 32] & (uint32_t{1} << choice % 32)) != 0;
}

static void FillMask(PickMask *mask, const std::vector<std::string> &choices) {
    *mask = {};
    for (size_t i = 0; i < choices.size() && i < PICK_MAX; i++)
        if (choices[i][0] == ' ') mask->bits[i / 32] |= uint32_t{1} << i % 32;
}

static bool TestSelected(const TextMenuItem *item, size_t choice) {
    if (item->type == ITEM_PICK) return static_cast<size_t>(item->value.i) == choice;
    return choice < PICK_SELECT_BITS && (item->value.i & (intptr_t{1} << choice)) != 0;
}

static std::string ChoiceText(const std::string &choice) {
    return choice[0] == ' ' || choice[0] == '_' ? choice.substr(1) : choice;
}

// All of the list's selection, whatever the page.
static std::string SelectionText(const TextMenuItem *item, const std::vector<std::string> &choices) {
    std::string text;
    for (size_t i = 0; i < choices.size(); i++)
        if (TestSelected(item, i)) text += ChoiceText(choices[i]) + (item->type == ITEM_BITS ? " " : "");
    return text;
}

static void PutTextAt(ScreenRec *screen, int x, int y, const std::string &text) {
    SetPosition(screen, x, y);
    WriteString(screen, "%s", text.c_str());
}

static int Length(const char *text) {
    return static_cast<int>(StrLen(text));
}

void WriteScreenFrame(ScreenRec *screen, const TextMenuItem *item, const char *selection) {
    FetchPickLabels();
    PutTextAt(screen, (screen->width - Length(item->text)) / 2, PICK_TITLE_ROW, item->text);
    PutTextAt(screen, 0, screen->height - 2, PRDTTYMENU_SAVE);
    PutTextAt(screen, screen->width / 2, screen->height - 2, PRDTTYMENU_CANCEL);
    std::string shown = selection;
    const char *format = PRDTTYMENU_CURSEL;
    int limit = screen->width - Length(format) + 2; // the format's own "%s" takes no room
    if (static_cast<int>(shown.size()) > limit) {
        shown.resize(static_cast<size_t>(std::max(0, limit - PICK_CUT)));
        format = PRDTTYMENU_CURSELTRUNC;
    }
    PutTextAt(screen, 0, screen->height - 1, NlsFmt(format, "s", shown.c_str()));
    PutTextAt(screen, 0, screen->height, PRDTTYMENU_OPTION);
}

// 0 after the messages, if the screen has no room for a row or for the labels and a fair part of the widest
// choice.
static int TestPickScreen(const ScreenRec *screen, const std::vector<int> &widths) {
    int widest = widths.empty() ? 0 : *std::max_element(widths.begin(), widths.end());
    int needed = std::max(Length(PRDTTYMENU_SAVE) + Length(PRDTTYMENU_CANCEL), widest / 2 + PICK_LEAST_WIDTH);
    if (screen->height >= PICK_LEAST_HEIGHT && screen->width >= needed) return 1;
    Nlsfprintf(stdout, pDrvCoreDB, NLS_TTY_SET, PICK_KEY_SMALL);
    Nlsfprintf(stdout, pDrvCoreDB, NLS_TTY_SET, PICK_KEY_SIZE, screen->width, screen->height);
    Nlsfprintf(stdout, pDrvCoreDB, NLS_TTY_SET, PICK_KEY_NEEDED, needed, static_cast<int>(PICK_LEAST_HEIGHT));
    char answer[2];
    Gets(answer, sizeof answer);
    return 0;
}

// The columns of a page: how many from which on, how wide they are together, and the gap between two.
struct PickPage {
    int rows;
    int columns;
    int column;
    int used;
    int gap;
};

// The last columns are narrower than the ones that the first page was laid out by, so a page may start with a
// column other than its own; no text runs into its neighbour for that.
static PickPage LayOutPage(const ScreenRec *screen, const std::vector<int> &widths, int choices, int first) {
    PickPage page = {CountRows(screen, choices), 0, 0, 0, 0};
    int last = static_cast<int>(widths.size()) - 1;
    if (first > 0) page.column = Clip(choices / first - 1, 0, last);
    for (int i = page.column; i <= last; i++) {
        int width = widths[static_cast<size_t>(i)] + PICK_GAP;
        bool flHalf = page.columns == 0 && width / 2 <= screen->width;
        if (page.used + width > screen->width && !flHalf) break;
        page.used = std::min(page.used + width, screen->width);
        page.columns++;
    }
    if (page.columns > 1) page.gap = (screen->width - page.used) / page.columns;
    return page;
}

// One choice at its place; the text is cut at the end of its room, in the first column with dots.
static void PutChoice(ScreenRec *screen, int x, int y, int room, bool flDots, const std::string &text) {
    std::string shown = text;
    size_t width = static_cast<size_t>(std::max(0, room));
    if (shown.size() > width) {
        shown.resize(flDots && width > PICK_CUT ? width - PICK_CUT : width);
        if (flDots && width > PICK_CUT) shown += "...";
    }
    PutTextAt(screen, x, y, shown);
}

static void PutPageChoices(ScreenRec *screen, const TextMenuItem *item, const PickMask *hidden,
                           const std::vector<std::string> &choices, const std::vector<int> &widths,
                           const PickPage *page, int first, int count) {
    int x = 0, last = (count - 1) / page->rows;
    for (int i = 0; i < count; i++) {
        int column = i / page->rows, y = PICK_FIRST_ROW + i % page->rows;
        int width =
            std::min(widths[static_cast<size_t>(page->column + column)] + PICK_GAP, screen->width - x);
        // The first cell of a column is blank, and room for the text of a choice without a marker.
        int room = column < last ? width + page->gap + 1 : screen->width - x;
        auto choice = static_cast<size_t>(first + i);
        if (TestSelected(item, choice)) PutTextAt(screen, x, y, " ->");
        if (!TestHidden(hidden, choice)) {
            char number[24];
            snprintf(number, sizeof number, "%2zu) ", choice + 1);
            PutTextAt(screen, x + PICK_NUMBER, y, number);
        }
        PutChoice(screen, x + PICK_TEXT, y, room - PICK_TEXT, column == 0, ChoiceText(choices[choice]));
        if (y == PICK_FIRST_ROW + page->rows - 1) x += width + page->gap;
    }
}

int PrintPickOneManyScreen(TextMenuItem *item, PickMask *hidden, int first) {
    ScreenRec *screen = first == 0 || !Screen.buffer ? GetTermInfo(nullptr) : &Screen;
    FetchPickLabels();
    std::vector<std::string> choices = ListChoices(item);
    std::vector<int> widths = ListWidths(screen, choices);
    int total = static_cast<int>(choices.size());
    FillMask(hidden, choices);
    if (first == 0 && !TestPickScreen(screen, widths)) return -1;
    if (first < 0 || first >= total) return -1;
    ClearScreen(screen);
    PickPage page = LayOutPage(screen, widths, total, first);
    int count = std::min(page.rows * page.columns, total - first);
    PutPageChoices(screen, item, hidden, choices, widths, &page, first, count);
    WriteScreenFrame(screen, item, SelectionText(item, choices).c_str());
    Refresh(screen);
    MoveCursor(screen, Length(PRDTTYMENU_OPTION), screen->height);
    return count;
}

// ---- The pick list's loop

static void SetPickValue(TextMenu *menu, int index, intptr_t value) {
    TextMenuItem *item = &menu->items[index];
    item->previous = item->value.i;
    item->value.i = value;
    ProcessStateFormat(menu, index);
    item = &menu->items[index]; // the format may have moved the table
    if (item->callback) item->callback(menu, item);
}

// The value that the numbers of a line make of it.
static intptr_t ReadPickLine(const TextMenuItem *item, const PickMask *hidden, const char *line) {
    intptr_t value = item->value.i;
    long count = GetTokenCount(item->choices, ",");
    char token[TOKEN_SIZE];
    char *position = nullptr;
    const char *word = GetTokenD(line, ", \t", &position, token);
    for (; word; word = GetTokenD(nullptr, ", \t", &position, token)) {
        long number = strtol(word, nullptr, 10);
        if (number < 1 || number > count || TestHidden(hidden, static_cast<size_t>(number - 1))) continue;
        if (item->type == ITEM_PICK)
            value = number - 1;
        else if (number <= PICK_SELECT_BITS)
            value ^= intptr_t{1} << (number - 1);
    }
    return value;
}

// The next line, the option first of all; null at the end of input.
static const char *GetPickLine(const char **option) {
    const char *line = *option;
    *option = nullptr;
    if (line && *line) return line;
    return Gets(LineBuf, LINEBUF_SIZE);
}

void ProcessStateValue(TextMenu *menu, int index, const char *option) {
    std::string start = option ? option : ""; // the option may lie in LineBuf
    option = start.c_str();
    intptr_t entry = menu->items[index].value.i;
    PickMask hidden;
    int first = 0;
    for (;;) {
        int count = PrintPickOneManyScreen(&menu->items[index], &hidden, first);
        if (count < 0) return;
        const char *line = GetPickLine(&option);
        if (!line) return;
        const TextMenuItem *item = &menu->items[index];
        if (!*line) {
            first = count > 0 && first + count < GetTokenCount(item->choices, ",") ? first + count : 0;
        } else if (*line == PRDTTYMENU_SAVE[0]) {
            return;
        } else if (*line == PRDTTYMENU_CANCEL[0]) {
            return SetPickValue(menu, index, entry);
        } else if (isalnum(static_cast<unsigned char>(*line))) {
            intptr_t value = ReadPickLine(item, &hidden, line);
            if (value != item->value.i) SetPickValue(menu, index, value);
        }
    }
}
