// Screens and pick lists as text and on terminals of three sizes; the passphrase on a terminal and without
// one.
#include "common/Screen.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "common/MemMgr.h"
#include "common/TextMenu.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

// ---- A child on a terminal, and a terminal

class Pty {
public:
    Pty(int width, int height, const std::function<void()> &function) {
        struct winsize size = {};
        size.ws_col = static_cast<unsigned short>(width);
        size.ws_row = static_cast<unsigned short>(height);
        fflush(nullptr);
        child = forkpty(&file, nullptr, nullptr, &size);
        if (child != 0) return;
        alarm(30);
        setenv("TERM", "xterm", 1);
        signal(SIGINT, SIG_DFL);
        function();
        fflush(nullptr);
        _exit(0);
    }
    ~Pty() { close(file); }
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    void Send(const std::string &keys) {
        EXPECT_EQ(write(file, keys.data(), keys.size()), ssize_t(keys.size()));
    }
    // Reads until the text has come so many times; false after 10 seconds or at the end.
    bool Expect(const std::string &text, int times = 1) {
        for (;;) {
            size_t at = 0;
            for (int i = 0; i < times && at != std::string::npos; i++) at = said.find(text, at + (i > 0));
            if (at != std::string::npos) return true;
            struct pollfd wait = {file, POLLIN, 0};
            char buffer[4096];
            ssize_t count = poll(&wait, 1, 10000) == 1 ? read(file, buffer, sizeof buffer) : 0;
            if (count <= 0) return false;
            said.append(buffer, static_cast<size_t>(count));
        }
    }
    bool Echoes() const {
        struct termios settings;
        return tcgetattr(file, &settings) == 0 && (settings.c_lflag & ECHO);
    }
    // The exit status, or 256 plus a signal.
    int Wait() {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
    }

    pid_t child = 0;
    int file = -1;
    std::string said;
};

// What a terminal of this size shows after all that; scrolled lines are counted.
struct Shown {
    std::vector<std::string> rows;
    int scrolled = 0;
};
static Shown ShowTerminal(const std::string &said, int width, int height) {
    Shown shown = {
        std::vector<std::string>(static_cast<size_t>(height), std::string(static_cast<size_t>(width), ' '))};
    int x = 0, y = 0;
    auto feed = [&] {
        if (y + 1 < height)
            y++;
        else
            shown.scrolled++;
    };
    for (size_t i = 0; i < said.size(); i++) {
        int row, column, length = 0;
        if (said.compare(i, 3, "\033[H") == 0) {
            x = y = 0;
            i += 2;
        } else if (said.compare(i, 4, "\033[2J") == 0) {
            for (std::string &text : shown.rows) text.assign(text.size(), ' ');
            i += 3;
        } else if (sscanf(said.c_str() + i, "\033[%d;%dH%n", &row, &column, &length) == 2 && length > 0) {
            y = row - 1;
            x = column - 1;
            i += static_cast<size_t>(length) - 1;
        } else if (said[i] == '\r') {
            x = 0;
        } else if (said[i] == '\n') {
            feed();
        } else {
            if (x == width) { // a full row goes on below with the next character only
                x = 0;
                feed();
            }
            shown.rows[static_cast<size_t>(y)][static_cast<size_t>(x++)] = said[i];
        }
    }
    return shown;
}

// ---- The buffer

static const struct BufferCase {
    const char *name;
    void (*draw)(ScreenRec *screen);
    const char *want; // 5 rows of 10, blanks as dots, trailing ones left out
} BufferCases[] = {
    {"y of 0, x of 0", [](ScreenRec *s) { SetPosition(s, 0, 0), WriteString(s, "%s-%d", "a", 7); }, "a-7"},
    {"outside", [](ScreenRec *s) { SetPosition(s, 11, 6), WriteString(s, "b"); }, "b"},
    {"last cell, cut", [](ScreenRec *s) { SetPosition(s, 9, 5), WriteString(s, "xyz"); }, "||||.........x"},
    {"end of a row", [](ScreenRec *s) { SetPosition(s, 5, 2), WriteString(s, "1234567890"); }, "|.....12345"},
    {"behind the row", [](ScreenRec *s) { SetPosition(s, 10, 2), WriteString(s, "x"); }, ""},
    {"area", [](ScreenRec *s) { FillArea(s, 1, 1, 3, 2, '#'); }, "|.###|.###"},
    {"area, larger", [](ScreenRec *s) { FillArea(s, -2, 3, INT_MAX, INT_MAX, '#'); },
     "|||##########|##########"},
    {"area, outside", [](ScreenRec *s) { FillArea(s, 10, -3, 5, 3, '#'), FillArea(s, 0, 0, -1, 9, '#'); },
     ""},
    {"pattern", NumberScreen, "0123456789|0123456789|0123456789|0123456789|0123456789"},
    {"cleared", [](ScreenRec *s) { NumberScreen(s), ClearScreen(s); }, ""},
};

TEST(Screen, Buffer) {
    for (const BufferCase &c : BufferCases) {
        std::vector<char> cells(50, ' '); // no byte more: the sanitizer watches its edges
        ScreenRec screen = {10, 5, 0, 0, 0, 0, 0, 0, cells.data()};
        c.draw(&screen);
        std::string got;
        for (int row = 0; row < 5; row++) {
            std::string text(&cells[static_cast<size_t>(row) * 10], 10);
            text.resize(text.find_last_not_of(' ') + 1);
            for (char &ch : text) ch = ch == ' ' ? '.' : ch;
            got += (row ? "|" : "") + text;
        }
        got.resize(got.find_last_not_of('|') + 1);
        EXPECT_EQ(got, c.want) << c.name;
        screen.buffer = nullptr;
        c.draw(&screen);
    }
}

TEST(Screen, Sends) {
    char cells[] = "ab\ncdefghi"; // 5 by 2
    ScreenRec screen = {5, 2, 3, 1, 1, 1, 4, 0, cells};
    Capture caught;
    EXPECT_EQ(Refresh(&screen), 0);
    EXPECT_EQ(caught.Out(), "ab\nefgh");

    screen.width = 20;
    screen.height = 9;
    screen.buffer = nullptr;
    const struct {
        const char *name, *text;
        int height;
        const char *want;
    } cases[] = {
        {"short rows", "a\nbc", 0, "********\n* a    *\n* bc   *\n********\n"},
        {"a long one, a full one", "abcdef\nghij\nk", 0,
         "********\n* abcd *\n* ef   *\n* ghij *\n* k    *\n********\n"},
        {"cut at the height", "a\nb\nc", 2, "********\n* a    *\n* b    *\n********\n"},
    };
    for (const auto &c : cases) {
        size_t start = caught.Out().size();
        screen.overlayHeight = c.height;
        Overlay(&screen, c.text, 0);
        EXPECT_EQ(caught.Out().substr(start), c.want) << c.name;
    }
    auto ask = [&] {
        char rest[2];
        Overlay(&screen, "", 1);
        printf("%s", Gets(rest, sizeof rest));
    };
    EXPECT_EQ(RunForked(ask, "xy").out, "********\n*      *\n* Pres *\n********\ny") << "reads one character";
}

TEST(Screen, BoxOnATerminal) {
    Pty pty(40, 10, [] {
        ScreenRec *screen = GetTermInfo(nullptr);
        ClearScreen(screen);
        SetPosition(screen, 0, 1);
        WriteString(screen, "under");
        Refresh(screen);
        SetOvlInfo(screen, 3, 7, 50, 9); // runs over the right and the lower edge
        Overlay(screen, "one\ntwo\nthree", 0);
        SetOvlInfo(screen, 10, 2, 12, 1);
        Overlay(screen, "box", 1);
        printf("!");
    });
    ASSERT_TRUE(pty.Expect("Press enter"));
    pty.Send("\n");
    ASSERT_TRUE(pty.Expect("!"));
    EXPECT_EQ(pty.Wait(), 0);
    Shown shown = ShowTerminal(pty.said, 40, 10);
    EXPECT_EQ(shown.scrolled, 0);
    EXPECT_EQ(shown.rows[0].substr(0, 6), "!nder ") << "the cursor is back at the write position";
    EXPECT_EQ(shown.rows[1].substr(10), "****************" + std::string(14, ' '));
    EXPECT_EQ(shown.rows[2].substr(10, 17), "* box          * ");
    EXPECT_EQ(shown.rows[3].substr(10, 17), "* Press enter  * ");
    EXPECT_EQ(shown.rows[6], "   " + std::string(37, '*'));
    EXPECT_EQ(shown.rows[9].substr(0, 12), "   * three  ");
}

// ---- Pick lists

// A menu of one pick item with so many choices "_choice N"; the third is hidden.
struct PickMenu {
    explicit PickMenu(int count, int type = ITEM_PICK, int length = 0) {
        for (int i = 1; i <= count; i++)
            choices += (i > 1 ? "," : "") + std::string(i == 3 ? " " : "_") + "choice " + std::to_string(i) +
                       std::string(static_cast<size_t>(length), 'x');
        items[0] = {.text = "The Title", .type = type, .choices = choices.data()};
    }
    std::string choices;
    TextMenuItem items[2] = {};
    TextMenu menu = {.title = "Menu", .items = items};
};

struct SizeCase {
    int width, height, choices, length;
    int pages[4]; // choices on each page, -1 behind the last
};

static const SizeCase SizeCases[] = {
    {80, 24, 5, 0, {5, -1}},     {80, 24, 100, 0, {72, 28, -1}},
    {40, 10, 10, 0, {8, 2, -1}}, {200, 60, 100, 0, {100, -1}},
    {80, 7, 3, 0, {3, -1}},      {80, 24, 100, 60, {18, 18, 18, 18}},
    {40, 10, 5, 30, {4, 1, -1}}, {80, 6, 5, 0, {-1}},
    {19, 24, 5, 0, {-1}},        {40, 24, 2, 80, {-1}},
    {80, 24, 0, 0, {-1}},
};

TEST(PickList, Pages) {
    OpenMenuTexts();
    for (const SizeCase &c : SizeCases) {
        ChildEnd end = RunForked([&c] {
            setenv("COLUMNS", std::to_string(c.width).c_str(), 1);
            setenv("LINES", std::to_string(c.height).c_str(), 1);
            PickMenu pick(c.choices, ITEM_PICK, c.length);
            PickMask hidden;
            int first = 0, wrong = 0;
            for (int page : c.pages) {
                int count = PrintPickOneManyScreen(pick.items, &hidden, first);
                if (count != page) fprintf(stderr, "page at %d: %d, not %d\n", first, count, page), wrong++;
                if (count < 0 || wrong) break;
                first += count;
            }
            _exit(wrong);
        });
        EXPECT_EQ(end.status, 0) << c.width << " by " << c.height << ", " << c.choices << " choices\n"
                                 << end.err;
    }
}

TEST(PickList, OnTerminals) {
    OpenMenuTexts();
    for (const SizeCase &c : {SizeCase{80, 24, 30, 0, {}}, {40, 10, 30, 30, {}}, {200, 60, 300, 0, {}}}) {
        PickMenu pick(c.choices, ITEM_BITS, c.length);
        pick.items[0].value.i = 3;
        Pty pty(c.width, c.height, [&] { ProcessStateValue(&pick.menu, 0, ""); });
        std::string ready = "\033[" + std::to_string(c.height) + ";9H";
        ASSERT_TRUE(pty.Expect(ready)) << pty.said;
        Shown shown = ShowTerminal(pty.said, c.width, c.height);
        auto row = [&](int y) { return shown.rows[static_cast<size_t>(y < 0 ? c.height + y : y)]; };
        EXPECT_EQ(shown.scrolled, 0) << c.width;
        EXPECT_EQ(row(0).substr(static_cast<size_t>(c.width - 9) / 2, 9), "The Title");
        EXPECT_EQ(row(2).substr(0, 17), " ->  1) choice 1" + std::string(c.length ? "x" : " "));
        EXPECT_EQ(row(4).substr(0, 16), "        choice 3");
        EXPECT_EQ(row(-3).substr(0, 16), "s Save selection");
        EXPECT_EQ(row(-3).substr(static_cast<size_t>(c.width) / 2, 8), "c Cancel");
        EXPECT_EQ(row(-2).find(c.length ? "Current selection: choice 1xxxxxxxxxx..."
                                        : "Current selection: choice 1 choice 2 "),
                  0u)
            << row(-2);
        if (c.length) {
            EXPECT_EQ(row(2), " ->  1) choice 1" + std::string(c.width - 19u, 'x') + "...");
        }
        EXPECT_EQ(row(-1).substr(0, 9), "Option:  ");
        pty.Send("s\n");
        EXPECT_EQ(pty.Wait(), 0);
    }
}

static int CallCount;
static int CountCall(TextMenu *, TextMenuItem *) {
    return CallCount++, 0;
}

TEST(PickList, Loop) {
    OpenMenuTexts();
    const struct {
        const char *name;
        int type;
        intptr_t value;
        const char *option, *input;
        intptr_t want;
        int calls, pages;
    } cases[] = {
        {"a number", ITEM_PICK, 0, nullptr, "5\ns\n", 4, 1, 2},
        {"the same again", ITEM_PICK, 4, nullptr, "5\ns\n", 4, 0, 2},
        {"hidden and outside", ITEM_PICK, 0, nullptr, "3\n0\n101\n-1\nx9\nsave\n", 0, 0, 6},
        {"end of input", ITEM_PICK, 0, nullptr, "7\n", 6, 1, 2},
        {"cancel", ITEM_PICK, 1, nullptr, "7\n8\nc\n", 1, 3, 3},
        {"option", ITEM_PICK, 0, "9", "s\n", 8, 1, 2},
        {"several bits", ITEM_BITS, 1, nullptr, "2, 4\t31 1,32\ns", 0x4000000A, 1, 2},
        {"bits behind the last", ITEM_BITS, 1, nullptr, "32 64 100\ns", 1, 0, 2},
        {"pages around", ITEM_PICK, 0, nullptr, "\n\n\n80\ns", 79, 1, 5},
    };
    for (const auto &c : cases) {
        ChildEnd end = RunForked(
            [&c] {
                setenv("COLUMNS", "80", 1);
                setenv("LINES", "24", 1);
                PickMenu pick(100, c.type);
                pick.items[0].value.i = c.value;
                pick.items[0].callback = CountCall;
                ProcessStateValue(&pick.menu, 0, c.option);
                fprintf(stderr, "%ld %d", static_cast<long>(pick.items[0].value.i), CallCount);
            },
            c.input);
        int pages = 0;
        for (size_t at = 0; (at = end.out.find("The Title", at)) != std::string::npos; at++) pages++;
        EXPECT_EQ(end.err, std::to_string(c.want) + " " + std::to_string(c.calls)) << c.name;
        EXPECT_EQ(pages, c.pages) << c.name;
    }
    ChildEnd end = RunForked([] {
        setenv("COLUMNS", "30", 1);
        setenv("LINES", "6", 1);
        PickMenu pick(5);
        ProcessStateValue(&pick.menu, 0, "2");
        fprintf(stderr, "%ld", static_cast<long>(pick.items[0].value.i));
    });
    EXPECT_EQ(end.out, "The screen is too small for this list.\nThe screen has 30 columns and 6 rows.\n"
                       "At least 24 columns and 7 rows are needed.\nPress <Return> to continue");
    EXPECT_EQ(end.err, "0");
}

// ---- Passphrase

static void PrintPass(const char *prompt) {
    errno = 42;
    char *text = GetPassPhrase(prompt);
    if (errno != 42) printf("errno ");
    printf("<%zu %.20s>", strlen(text), text);
    PutMem(text);
}

TEST(PassPhrase, OnATerminal) {
    const struct {
        const char *name;
        std::string keys, want;
    } cases[] = {
        {"line", "secret\n", "<6 secret>"},
        {"return", "a b\r", "<3 a b>"},
        {"end of input", "\004", "<0 >"},
        {"too long", std::string(300, 'x') + "\n", "<256 xxxxxxxxxxxxxxxxxxxx>"},
    };
    for (const auto &c : cases) {
        Pty pty(80, 24, [] {
            // Standard streams elsewhere: it is the terminal that is asked.
            int terminal = dup(1), none = open("/dev/null", O_RDWR);
            for (int fd = 0; fd < 3; fd++) dup2(none, fd);
            char *text = GetPassPhrase("Phrase: ");
            dprintf(terminal, "<%zu %.20s>", strlen(text), text);
            PutMem(text);
        });
        ASSERT_TRUE(pty.Expect("Phrase: ")) << c.name;
        while (pty.Echoes()) usleep(1000);
        pty.Send(c.keys);
        EXPECT_TRUE(pty.Expect(">")) << c.name;
        EXPECT_EQ(pty.said, "Phrase: \r\n" + c.want) << c.name;
        EXPECT_TRUE(pty.Echoes());
        EXPECT_EQ(pty.Wait(), 0);
    }
}

// Runs the prompt in a process group of its own, as a shell does: only such a process can be stopped. One
// that starts in the background is brought to the front when it has stopped.
static void RunAsJob(bool flFront) {
    signal(SIGTTOU, SIG_IGN);
    pid_t job = fork();
    setpgid(job, job);
    if (flFront) tcsetpgrp(0, job ? job : getpid());
    if (job == 0) {
        signal(SIGTTOU, SIG_DFL);
        PrintPass("Phrase: ");
        fflush(stdout);
        _exit(0);
    }
    printf("job %d\n", job);
    fflush(stdout);
    int status;
    while (waitpid(job, &status, WUNTRACED) == job && WIFSTOPPED(status)) {
        printf("[stopped]");
        fflush(stdout);
        if (flFront) continue;
        tcsetpgrp(0, job);
        kill(job, SIGCONT);
    }
}

TEST(PassPhrase, Stopped) {
    Pty pty(80, 24, [] { RunAsJob(true); });
    ASSERT_TRUE(pty.Expect("job ") && pty.Expect("\n") && pty.Expect("Phrase: "));
    pid_t job = atoi(pty.said.c_str() + pty.said.find("job ") + 4);
    ASSERT_GT(job, 1);
    for (int round = 1; round <= 2; round++) {
        while (pty.Echoes()) usleep(1000);
        pty.Send("half\032");
        ASSERT_TRUE(pty.Expect("[stopped]", round));
        EXPECT_TRUE(pty.Echoes()) << "while it is stopped";
        kill(job, SIGCONT);
        ASSERT_TRUE(pty.Expect("Phrase: ", round + 1)) << pty.said;
    }
    while (pty.Echoes()) usleep(1000);
    pty.Send("whole\n");
    EXPECT_TRUE(pty.Expect("<5 whole>")) << pty.said;
    EXPECT_EQ(pty.Wait(), 0);

    Pty behind(80, 24, [] { RunAsJob(false); });
    ASSERT_TRUE(behind.Expect("[stopped]") && behind.Expect("Phrase: ", 2)) << behind.said;
    while (behind.Echoes()) usleep(1000);
    behind.Send("x\n");
    EXPECT_TRUE(behind.Expect("<1 x>")) << behind.said;
    EXPECT_TRUE(behind.Echoes());
}

TEST(PassPhrase, Signals) {
    for (int number : {SIGINT, SIGHUP}) {
        Pty ended(80, 24, [] { PrintPass("Phrase: "); });
        ASSERT_TRUE(ended.Expect("Phrase: "));
        while (ended.Echoes()) usleep(1000);
        kill(ended.child, number);
        EXPECT_EQ(ended.Wait(), 256 + number);
        EXPECT_TRUE(ended.Echoes());
    }
    Pty caught(80, 24, [] {
        signal(SIGTERM, [](int) { (void)!write(1, "mine", 4); });
        PrintPass("Phrase: ");
    });
    ASSERT_TRUE(caught.Expect("Phrase: "));
    while (caught.Echoes()) usleep(1000);
    kill(caught.child, SIGTERM);
    EXPECT_TRUE(caught.Expect("mine<0 >")) << "the old action is back; " << caught.said;
}

TEST(PassPhrase, Silence) {
    Pty pty(80, 24, [] {
        PassSeconds = 1;
        PrintPass("Phrase: ");
        char line[16];
        printf("[%s]", Gets(line, sizeof line));
    });
    ASSERT_TRUE(pty.Expect("Phrase: "));
    while (pty.Echoes()) usleep(1000);
    pty.Send("half");
    EXPECT_TRUE(pty.Expect("<0 >"));
    pty.Send("next\n");
    EXPECT_TRUE(pty.Expect("[next]")) << "what was typed before is gone; " << pty.said;
}

TEST(PassPhrase, WithoutATerminal) {
    ChildEnd end = RunForked(
        [] {
            setsid();
            PrintPass("Phrase: ");
            PrintPass("Again: ");
            PrintPass("End: ");
        },
        "one\ntwo");
    EXPECT_EQ(end.out, "<3 one><3 two><0 >");
    EXPECT_EQ(end.err, "Phrase: Again: End: ") << "no line feed where no echo was switched off";
}
