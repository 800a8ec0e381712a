// The terminal menus: a screen byte for byte, selections and entries, leaving and settings files.
#include "menu/TextMenu.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "menu/MenuState.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

// Each run is a process of its own, so the static tables below are fresh in each.
static ChildEnd RunTerminal(const std::function<void()> &function, const std::string &input = "") {
    return RunForked(
        [&function] {
            OpenMenuTexts();
            CatchClear();
            function();
        },
        input);
}

static std::string ShowScreen(TextMenu *menu, int titleLength) {
    return RunTerminal([menu, titleLength] { PrintMenu(menu, InitMenu(menu), titleLength); }).out;
}

static int NoteItem(TextMenu *, TextMenuItem *item) {
    return printf("{%s}", item->text) < 0;
}

static int RefuseItem(TextMenu *, TextMenuItem *) {
    return printf("{refused}");
}

static int NoteInit(TextMenu *) {
    return printf("{init}");
}

static int NoteExit(TextMenu *) {
    return printf("{exit}");
}

// ---- screens

static TextMenuItem EmptyItems[] = {{}};
static TextMenu Submenu = {.title = "Sub Title", .items = EmptyItems};

static char Colours[] = "_red, green,_blue";
static char Gone[] = " one, two";
static char Digits[] = "10,20";
static char Percent[] = "100%s";

static TextMenuItem AllItems[] = {
    {.text = "~ line of text"},
    {.text = "Hidden line", .state = STATE_HIDDEN},
    {.text = "Colour", .type = ITEM_PICK, .choices = Colours, .initial = {.i = 2}},
    {.text = "No choice left", .type = ITEM_PICK, .choices = Gone},
    {.text = "Beyond", .type = ITEM_PICK, .choices = Digits, .initial = {.i = 2}},
    {.text = "~q Letter first", .type = ITEM_ACTION},
    {.text = "Default bits", .type = ITEM_BITS, .choices = Digits},
    {.text = "Some bits", .type = ITEM_BITS, .choices = Digits, .value = {.i = 0x40000006}},
    {.text = "Required", .type = ITEM_REQUIRED},
    {.text = "Optional", .type = ITEM_OPTIONAL, .initial = {.s = Percent}},
    {.text = "Integer", .type = ITEM_INTEGER, .initial = {.i = -7}},
    {.text = "Float", .type = ITEM_FLOAT, .initial = {.f = 2.5F}},
    {.text = "Title is shown", .type = ITEM_SUBMENU, .value = {.m = &Submenu}},
    {.text = "Hidden", .type = ITEM_INTEGER, .state = STATE_HIDDEN},
    {.text = "Disabled", .type = ITEM_INTEGER, .state = STATE_DISABLED},
    {.text = "", .type = ITEM_BAR, .value = {.i = 2}},
    {.text = "Apply", .type = ITEM_APPLY},
    {.text = "Hidden", .type = ITEM_CANCEL, .state = STATE_HIDDEN},
    {.text = "Cancel", .type = ITEM_CANCEL},
    {.text = "~x Leave", .type = ITEM_EXIT},
    {},
};
static TextMenu AllMenu = {
    .title = "All types", .items = AllItems, .flags = MENU_DENSE | MENU_STORE | MENU_HELP};

TEST(TextMenu, ShowsEveryTypeAndState) {
    EXPECT_EQ(ShowScreen(&AllMenu, 9),
              "<clear>\f\n"
              "All types:\n"
              "\n"
              "~ line of text \n"
              " 1) Colour ......... [3. blue]\n"
              " 2) No choice left . [ ]\n"
              " 3) Beyond ......... [ ]\n"
              " q) Letter first \n"
              " 4) Default bits ... [default]\n"
              " 5) Some bits ...... [2,3,31]\n"
              " 6) Required ....... []\n"
              " 7) Optional ....... [100%s]\n"
              " 8) Integer ........ [-7]\n"
              " 9) Float .......... [2.500]\n"
              "10) Sub Title \n"
              "    Disabled ....... [0]\n"
              "13) Apply                              15) Cancel                             \n"
              " x) Leave                              \n"
              "Enter a selection or s for store settings in a file or h for help or <Return> to exit: ");
}

// ---- selections

static char Names[] = "_one,_two, three,_four";
static TextMenuItem WorkItems[] = {
    {.text = "Line"},
    {.text = "Name", .type = ITEM_REQUIRED, .prompt = "Which", .callback = NoteItem, .format = "A(1,14)+-+_"},
    {.text = "Pick", .type = ITEM_PICK, .choices = Names, .callback = NoteItem},
    {.text = "Hidden", .type = ITEM_INTEGER, .state = STATE_HIDDEN},
    {.text = "Number", .type = ITEM_INTEGER, .initial = {.i = 5}, .format = "d(1,60)"},
    {.text = "Ratio", .type = ITEM_FLOAT, .format = "f(0,9.5)"},
    {.text = "Note", .type = ITEM_OPTIONAL, .format = "t(1,80)"},
    {.text = "Host", .type = ITEM_OPTIONAL, .format = "!(0.0.0.0)|t(1,255)"},
    {.text = "~Q Action", .type = ITEM_ACTION, .callback = NoteItem},
    {.text = "Apply", .type = ITEM_APPLY, .callback = NoteItem},
    {.text = "Cancel", .type = ITEM_CANCEL, .callback = RefuseItem},
    {.text = "Exit", .type = ITEM_EXIT},
    {},
};
static TextMenu WorkMenu = {
    .title = "Work", .items = WorkItems, .flags = MENU_NO_LEAVE | MENU_KEEP | MENU_DENSE | MENU_LIST};

static const std::string PickList = "\nPick\n   1. one\n   2. two\n   4. four\n\nPress <Return> to continue";
static const char NamesMissing[] =
    "#\nAll names must be set before applying setup.\nPress <Return> to continue#";

TEST(TextMenu, ActsOnSelections) {
    struct Case {
        std::string input; // behind it the exit item is chosen
        std::string transcript;
        int item; // whose line of the dump is compared
        std::string dump;
    } cases[] = {
        {"3\n99\n0\n 1\n99999999999999999999\n\nx\n", "########", 3, "3 integer hidden 0"},
        {"q\nQuit\n", "#{~Q Action}#{~Q Action}#", 8, "Q action"},
        {"1\nq1\n1\n\n", "#Which: {Name}#Which: #", 1, "1 required 'q1'"},
        {"1 q1\n1 a.b\n\n",
         "#{Name}#Invalid character '.'\nThis text may contain \"abc..zABC..Z012..9-_\"Press <Return> to "
         "continue#",
         1, "1 required 'q1'"},
        {"7 " + std::string(4000, 'h') + "\n", "##", 7, "7 optional '" + std::string(255, 'h') + "'"},
        {"4\n61\n\n4 60\n", "#Number: This number must be between 1 to 60.Press <Return> to continue##", 4,
         "4 integer 60"},
        {"2\n2\n", "#{Pick}#{Pick}#", 2, "2 pick 3 of 4 '_four'"},  // passes the hidden one
        {"2 4\n2\n", "#{Pick}#{Pick}#", 2, "2 pick 0 of 4 '_one'"}, // by number, then around
        {"l\n\nL 2\n\nl 4\n", "#" + PickList + "#" + PickList + "##", 2, "2 pick 0 of 4 '_one'"},
        {"8\n\n1 q1\n", std::string(NamesMissing) + "{Name}#", 1, "1 required 'q1'"},
        {"9\n" + std::string(5000, '9') + "\n", "#{refused}###", 10, "9 cancel"},
        {"1 q1\xffq\n", "#{Name}#{~Q Action}#", 1, "1 required 'q1'"},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunTerminal(
            [] {
                RunMenu(&WorkMenu, nullptr, 1);
                printf("|%s", DumpMenu(&WorkMenu).c_str());
            },
            c.input + "10\n");
        size_t bar = std::min(end.out.rfind("|0: "), end.out.size());
        EXPECT_EQ(FoldScreens(end.out.substr(0, bar)), c.transcript) << c.input << end.err;
        std::string wanted = "\n" + std::to_string(c.item) + ": " + c.dump + "\n";
        EXPECT_NE(end.out.find(wanted, bar), std::string::npos) << c.input << end.out.substr(bar);
    }
}

// ---- leaving

static TextMenuItem LeaveItems[] = {
    {.text = "Name", .type = ITEM_REQUIRED}, {.text = "Action", .type = ITEM_ACTION}, {}};
static TextMenu LeaveParent = {.title = "Parent"};

TEST(TextMenu, AsksBeforeItEnds) {
    const std::string leave = "\nDo you want to return to Parent menu? [y/n] ";
    const std::string missing = "\nAll names must be set before applying setup.\nPress <Return> to continue";
    struct Case {
        const char *exitPrompt;
        int flParent;
        const char *input;
        std::string transcript;
    } cases[] = {
        {nullptr, 0, "\ny\n", "{init}#{exit}\nDo you want to exit tester? [y/n] \n"},
        {nullptr, 1, "\nn\n\ny\n", "{init}#{exit}" + leave + "{init}#{exit}" + leave},
        {"Apply %s", 1, "\ny\n", "{init}#" + leave}, // nothing has changed
        {"Apply %s", 1, "2\n\ny\n\n1 q\n\ny\n",
         "{init}##Apply %s? [y/n] " + missing + "##Apply %s? [y/n] {exit}"},
        {"Apply %s", 1, "2\n\nn\ny\n", "{init}##Apply %s? [y/n] " + leave},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunTerminal(
            [&c] {
                my_name = "tester";
                TextMenu menu = {.title = "Leave",
                                 .exitPrompt = c.exitPrompt,
                                 .exitCallback = NoteExit,
                                 .parent = c.flParent ? &LeaveParent : nullptr,
                                 .initCallback = NoteInit,
                                 .items = LeaveItems};
                RunMenu(&menu, nullptr, 1);
                if (LeaveItems[0].value.s != nullptr) fputs("{not freed}", stdout);
            },
            c.input);
        EXPECT_EQ(end.status, 0) << c.input << end.err;
        EXPECT_EQ(FoldScreens(end.out), c.transcript) << c.input;
    }
}

TEST(TextMenu, EndsWithTheInputWhereverItReads) {
    const char *const inputs[] = {"", "1\n", "8\n", "1 a.b\n", "4 99", "\xff", "2 1\n\xff"};
    for (const char *input : inputs) {
        ChildEnd end = RunTerminal(
            [] {
                my_name = "tester";
                RunMenu(&WorkMenu, nullptr, 1);
            },
            input);
        EXPECT_EQ(end.status, 1) << input;
        EXPECT_EQ(end.err, "\ntester: reading from standard input : Success\n") << input;
    }
}

// ---- settings files

static char SubNames[] = "_a,_b";
static TextMenuItem SubItems[] = {{.text = "Deep", .type = ITEM_OPTIONAL},
                                  {.text = "Sub apply", .type = ITEM_APPLY, .callback = NoteItem},
                                  {}};
static TextMenu SubMenu = {.title = "Sub", .items = SubItems};
static TextMenuItem FileItems[] = {
    {.text = "Name", .type = ITEM_REQUIRED},
    {.text = "Title", .type = ITEM_OPTIONAL, .state = STATE_DISABLED},
    {.text = "Sub", .type = ITEM_SUBMENU, .value = {.m = &SubMenu}},
    {.text = "Pick", .type = ITEM_PICK, .choices = SubNames},
    {.text = "Count", .type = ITEM_INTEGER},
    {.text = "Ratio", .type = ITEM_FLOAT},
    {.text = "Cancel", .type = ITEM_CANCEL, .callback = NoteItem},
    {.text = "Bar", .type = ITEM_BAR, .value = {.i = 2}},
    {},
};
static TextMenu FileMenu = {.title = "File", .exitCallback = NoteExit, .items = FileItems};

TEST(TextMenuFile, StoresAndLoadsAMenuWithItsSubmenu) {
    Scratch scratch;
    std::string path = scratch.Path("kept");
    ChildEnd end = RunTerminal([&path] {
        InitMenu(&FileMenu);
        InitMenu(&SubMenu);
        SetItemText(&FileItems[0], "q]1");
        SetItemText(&FileItems[1], "two words");
        SetItemText(&SubItems[0], "x");
        FileItems[3].value.i = 1;
        FileItems[4].value.i = -12;
        FileItems[5].value.f = 0.125F;
        pOut = fopen(path.c_str(), "w");
        StoreMenu(&FileMenu);
        fclose(pOut);
    });
    EXPECT_EQ(ReadWhole(path), "0[q]1] 11 0\n1[two words] 12 1\n3[1] 9 0\n4[-12] 13 0\n5[0.125] 14 0\n"
                               "2{\n0[x] 12 0\n}\n");
    end = RunTerminal([&path] {
        RunMenu(&FileMenu, path.c_str(), 0);
        printf("\n%s%s", DumpMenu(&FileMenu).c_str(), DumpMenu(&SubMenu).c_str());
    });
    EXPECT_EQ(end.out,
              "{Sub apply}{exit}\n"
              "0: 1 required 'q]1'\n1: 2 optional disabled 'two'\n2: 3 submenu\n3: 4 pick 1 of 2 '_b'\n"
              "4: 5 integer -12\n5: 6 float 0.125\n6: 7 cancel\n7: 0 bar 2\n"
              "0: 0 optional 'x'\n1: 0 apply\n");
}

TEST(TextMenuFile, StoresByLetter) {
    char directory[] = "/tmp/prnmenuXXXXXX"; // a name may hold no dot here
    ASSERT_NE(mkdtemp(directory), nullptr);
    const std::string path = std::string(directory) + "/kept", ask = "#Enter the settings file name: ";
    auto run = [&directory](uint16_t flags, const std::string &input) {
        FileMenu.flags = flags | MENU_NO_LEAVE;
        return RunTerminal(
            [&directory] {
                if (chdir(directory) == 0) RunMenu(&FileMenu, nullptr, 1);
            },
            input);
    };
    ChildEnd end = run(MENU_STORE, "s\nrelative\ns\n/no/such/dir\ns\n" + path + "\ns\n/dev/full\n\n7\n");
    EXPECT_EQ(FoldScreens(end.out), ask + ask + ask + ask +
                                        "Could not write /dev/full: No space left on device\n"
                                        "Press <Return> to continue#{Cancel}");
    EXPECT_EQ(end.err, "ERROR: can't open file, /no/such/dir\n");
    EXPECT_EQ(ReadWhole(path), "0[] 11 0\n1[] 12 1\n3[0] 9 0\n4[0] 13 0\n5[0.000] 14 0\n2{\n0[] 12 0\n}\n");
    EXPECT_EQ(run(MENU_SETTINGS, "s\n").status, 0);
    EXPECT_EQ(ReadWhole(std::string(directory) + "/.settings"), ReadWhole(path));
    std::filesystem::remove_all(directory);
}
