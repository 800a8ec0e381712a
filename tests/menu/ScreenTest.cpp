// What is drawn stays in the buffer; the choices of a pick list; the passphrase on a terminal.
#include "menu/Screen.h"

#include "common/MemMgr.h"
#include "menu/TextMenu.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

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

// ---- A child on a terminal

class Pty {
public:
    explicit Pty(const std::function<void()> &function) {
        fflush(nullptr);
        child = forkpty(&file, nullptr, nullptr, nullptr);
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
    // Reads until the text has come; false after 10 seconds or at the end.
    bool Expect(const std::string &text) {
        while (said.find(text) == std::string::npos) {
            struct pollfd wait = {file, POLLIN, 0};
            char buffer[4096];
            ssize_t count = poll(&wait, 1, 10000) == 1 ? read(file, buffer, sizeof buffer) : 0;
            if (count <= 0) return false;
            said.append(buffer, static_cast<size_t>(count));
        }
        return true;
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

// ---- The buffer

static const struct BufferCase {
    const char *name;
    void (*draw)(ScreenRec *screen);
    const char *want; // 5 rows of 10, blanks as dots, trailing ones left out
} BufferCases[] = {
    {"last cell, cut", [](ScreenRec *s) { SetPosition(s, 9, 5), WriteString(s, "xyz"); }, "||||.........x"},
    {"area, larger", [](ScreenRec *s) { FillArea(s, -2, 3, INT_MAX, INT_MAX, '#'); },
     "|||##########|##########"},
    {"area, outside", [](ScreenRec *s) { FillArea(s, 10, -3, 5, 3, '#'), FillArea(s, 0, 0, -1, 9, '#'); },
     ""},
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
        c.draw(&screen);
    }
}

// ---- The framed box

static void DrawBox(int x, int y, int width, int height, const char *text, int flWait) {
    ScreenRec screen = {20, 6, 3, 2, x, y, width, height, nullptr};
    Overlay(&screen, text, flWait);
}

TEST(Screen, BoxOnATerminal) {
    const struct {
        const char *name;
        void (*draw)();
        const char *want; // escape characters as '^'
    } cases[] = {
        {"in the middle", [] { DrawBox(2, 2, 4, 0, "ab\ncdefgh", 0); },
         "^[2;3H********\r\n^[3;3H* ab   *^[4;3H* cdef *^[5;3H* gh   *^[6;3H********^[2;4H$"},
        {"at the top, rows limited", [] { DrawBox(0, 1, 3, 1, "abc\nd", 0); },
         "^[1;1H*******\r\n^[2;1H* abc *^[3;1H*******^[2;4H$"},
        {"over the edges", [] { DrawBox(-5, 5, 16, 0, "a\nb\nc", 0); },
         "^[5;1H********************\r\n^[6;1H* a                *^[2;4H$"},
        {"on the last row", [] { DrawBox(0, 6, 3, 0, "abc", 0); }, "^[6;1H*******^[2;4H$"},
        {"right of it", [] { DrawBox(20, 1, 3, 0, nullptr, 0); }, "^[2;4H$"},
        {"waits", [] { DrawBox(0, 1, 11, 0, nullptr, 1); },
         "^[1;1H***************\r\n^[2;1H*             *^[3;1H* Press enter "
         "*^[4;1H***************^[3;15H\r\n^[2;4H$"},
    };
    for (const auto &c : cases) {
        Pty pty([&c] {
            c.draw();
            printf("$");
        });
        if (strstr(c.want, "Press") && pty.Expect("\033[3;15H")) pty.Send("\n");
        EXPECT_TRUE(pty.Expect("$")) << c.name;
        std::string got = pty.said;
        for (char &ch : got) ch = ch == '\033' ? '^' : ch;
        EXPECT_EQ(got, c.want) << c.name;
        EXPECT_EQ(pty.Wait(), 0);
    }
    ChildEnd end = RunForked([] { DrawBox(2, 2, 3, 0, "abc", 0); });
    EXPECT_EQ(end.out, "*******\n* abc *\n*******\n") << "without a cursor";
}

// ---- Pick lists

// A menu of one pick item with so many choices "_choice N"; the third is hidden.
struct PickMenu {
    explicit PickMenu(int count, int type = ITEM_PICK) {
        for (int i = 1; i <= count; i++)
            choices += (i > 1 ? "," : "") + std::string(i == 3 ? " " : "_") + "choice " + std::to_string(i);
        items[0] = {.text = "The Title", .type = type, .choices = choices.data()};
    }
    std::string choices;
    TextMenuItem items[2] = {};
    TextMenu menu = {.title = "Menu", .items = items};
};

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
        const char *input;
        intptr_t want;
        int calls, pages;
    } cases[] = {
        {"a number", ITEM_PICK, 0, "5\ns\n", 4, 1, 2},
        {"hidden and outside", ITEM_PICK, 0, "3\n0\n101\n-1\nx9\nsave\n", 0, 0, 6},
        {"cancel", ITEM_PICK, 1, "7\n8\nc\n", 1, 3, 3},
        {"several bits", ITEM_BITS, 1, "2, 4\t31 1,32\ns", 0x4000000A, 1, 2},
        {"pages around", ITEM_PICK, 0, "\n\n\n80\ns", 79, 1, 5},
    };
    for (const auto &c : cases) {
        ChildEnd end = RunForked(
            [&c] {
                setenv("COLUMNS", "80", 1);
                setenv("LINES", "24", 1);
                PickMenu pick(100, c.type);
                pick.items[0].value.i = c.value;
                pick.items[0].callback = CountCall;
                ProcessStateValue(&pick.menu, 0, nullptr);
                fprintf(stderr, "%ld %d", static_cast<long>(pick.items[0].value.i), CallCount);
            },
            c.input);
        int pages = 0;
        for (size_t at = 0; (at = end.out.find("The Title", at)) != std::string::npos; at++) pages++;
        EXPECT_EQ(end.err, std::to_string(c.want) + " " + std::to_string(c.calls)) << c.name;
        EXPECT_EQ(pages, c.pages) << c.name;
    }
    ChildEnd page = RunForked(
        [] {
            setenv("COLUMNS", "36", 1);
            setenv("LINES", "9", 1);
            PickMenu pick(8);
            pick.items[0].value.i = 3;
            ProcessStateValue(&pick.menu, 0, nullptr);
        },
        "c");
    std::string want;
    for (std::string row : {"             The Title", "", "     1) choice 1   ->  4) choice 4",
                            "     2) choice 2       5) choice 5", "        choice 3       6) choice 6", "",
                            "s Save selection  c Cancel", "Current selection: choice 4", "Option:"}) {
        row.resize(36, ' ');
        want += row;
    }
    want.pop_back(); // a character there would scroll the screen
    EXPECT_EQ(page.out, want);
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

static void PrintPass() {
    char *text = GetPassPhrase("Phrase: ");
    printf("<%zu %.20s>", strlen(text), text);
    PutMem(text);
}

TEST(PassPhrase, OnATerminal) {
    const struct {
        const char *name;
        std::string keys, want;
    } cases[] = {
        {"line", "secret\n", "<6 secret>"},
        {"end of input", "\004", "<0 >"},
        {"too long", std::string(300, 'x') + "\n", "<256 xxxxxxxxxxxxxxxxxxxx>"},
    };
    for (const auto &c : cases) {
        Pty pty([] {
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

TEST(PassPhrase, Signals) {
    for (int number : {SIGINT, SIGHUP}) {
        Pty ended([] { PrintPass(); });
        ASSERT_TRUE(ended.Expect("Phrase: "));
        while (ended.Echoes()) usleep(1000);
        kill(ended.child, number);
        EXPECT_EQ(ended.Wait(), 256 + number);
        EXPECT_TRUE(ended.Echoes());
    }
}
