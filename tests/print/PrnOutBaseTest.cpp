// Printer configuration, job files, and the spool store under several processes at once.
#include "print/prnoutbase.h"

#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "tests/lib/Xdb.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

static std::string Text(const char *text) {
    return text ? text : "-";
}

// The printer globals in one line; the flags as letters.
static std::string ShowPrinter() {
    std::string flags;
    const struct {
        int flag;
        char letter;
    } letters[] = {{flUseLpd, 'l'},        {flUserInterface, 'u'},  {flFeatures, 'f'},
                   {flTray2, 't'},         {flDefaultPrinter, 'd'}, {flBannerPage, 'p'},
                   {flBegBannerPage, 'b'}, {flEndBannerPage, 'e'}};
    for (const auto &row : letters)
        if (row.flag) flags += row.letter;
    return Text(pPrinterQueue) + " " + Text(pPrinterName) + " " + Text(pPSName) + " " + Text(pPrinterPath) +
           " " + Text(pConnType) + " " + Text(pLprQueName) + " " + flags;
}

// A tool directory in a parent of its own, where 77yyprinters lies.
class Tool : public ToolDir {
public:
    Tool() {
        saved = pToolPath;
        MakeDir("tool/db");
        fs::current_path(Path("tool"));
        tool = Path("tool");
        pToolPath = tool.data();
        flToolCfg = 0;
    }
    ~Tool() { pToolPath = saved; }
    using Scratch::Write;
    void Write(const Records &records) { WriteXdb(Path("tool/db/que.xdb"), false, records); }

private:
    char *saved;
    std::string tool;
};

// Records of queues; the first word is the name.
static Records Queues(std::initializer_list<const char *> texts, Records records = {}) {
    for (std::string text : texts) records.emplace_back(text.substr(0, text.find(' ')), text + '\0');
    return records;
}

// Each is found under its first word, and looks like that.
static void ExpectPrinters(std::initializer_list<const char *> printers) {
    for (std::string printer : printers) {
        EXPECT_EQ(FindPrinter(printer.substr(0, printer.find(' ')).c_str()), 1) << printer;
        EXPECT_EQ(ShowPrinter(), printer);
    }
}

TEST(Printer, OfTheDatabase) {
    Tool tool;
    tool.Write(
        Queues({"q0 host rem tv.ppd 0 1 1 1 0 0 ", "q1 host lp tv.ppd 1 0 0 0 0 0 ",
                "q2u /dev/lp lp tv.ppd 2 0 1 0 0 0 ", "q3 host lp tv.ppd 3 0 0 1 0 0 ",
                "q4 /dev/lp lp tv.ppd 4 1 0 0 0 0 "},
               {{"host count", std::string("\1\0\0\0srv psq", 11)}, {"q3 **", "a=b\n"}, {" default", "q1"}}));
    ExpectPrinters({"q0 host srv host NIS rem lufpb", "q1 host srv host SERVER lp ld",
                    "q2u /dev/lp  /dev/lp DIRECT lp lu", "q3 host srv host NIS lp f",
                    "q4 /dev/lp  _dev_lp DIRECT lp pb"});
    EXPECT_EQ(FindPrinter(nullptr), 1);
    EXPECT_EQ(ShowPrinter(), "q1 host srv host SERVER lp ld");
    EXPECT_EQ(pPPDFile, std::string(pToolPath) + "/ppd/tv.ppd");
    EXPECT_STREQ(pSettings, "a=b\n") << "of the first queue that had some";
    EXPECT_EQ(FindPrinter("q5"), 0);
}

TEST(Printer, OfTheFile) {
    Tool tool;
    tool.Write(Queues({"both host lp tv.ppd 0 0 0 0 0 0 "}));
    const std::string ppd = "/opt/" + std::string(200, 'x') + "/ppd/tv.ppd";
    tool.Write("77yyprinters", "both other /p NIS\nf2\thost\t/opt/t/p.ppd SERVER Default\nf1x a b c\n"
                               "f3 old /x/y NIS Tray2\nf3 new, /x/y NIS BannerPageAtBeginning\n"
                               "\nf1 host,dir " +
                                   ppd + " DIRECT Tray2 NoGui BannerPageAtEnd Tty huh\r\n");
    ExpectPrinters({"f2 host - host SERVER - ud", "both host  host NIS lp ", "f3 new - new NIS - upb",
                    "f1 host - dir DIRECT - tpe"});
    EXPECT_EQ(pPPDFile, ppd);
    EXPECT_EQ(FindPrinter(nullptr), 1);
    EXPECT_STREQ(pPrinterQueue, "f2");
    EXPECT_EQ(FindPrinter("huh"), 0);
}

// ---- What ends a print tool, and how

TEST(Printer, EndsTheTool) {
    Tool tool;
    const struct {
        const char *name, *file, *text; // an empty text: a link to nowhere
        void (*run)();
        int status;
        const char *error;
    } cases[] = {
        {"short entry", "77yyprinters", "q1 host /x\n", [] { FindPrinter("q1"); }, 0,
         "Error: invalid printer configuration file entry\n"},
        {"closed file", "77yyprinters", "", [] { FindPrinter("q1"); }, 0,
         "Error: couldn't open printer config file 77yyprinters\n"},
        {"no lock", "x", "", [] { GetFileInfo(); }, 1, "Error: couldn't open lock file\n"},
        {"no control file", "tool/lock", "42\ncfA1\n", [] { GetFileInfo(); }, 0,
         "Error: couldn't open print control file 'cfA1'\n"},
    };
    for (const auto &c : cases) {
        std::string path = tool.Path(c.file);
        if (*c.text)
            tool.Write(c.file, c.text);
        else
            fs::create_symlink("nowhere", path);
        ChildEnd end = RunForked([&] {
            c.run();
            _exit(99);
        });
        EXPECT_EQ(end.status, c.status) << c.name;
        EXPECT_EQ(end.err, c.error) << c.name;
        fs::remove(path);
    }
}

// ---- Jobs

TEST(Job, ControlFile) {
    Tool tool;
    ComList[CMD_LS].path = "/bin";
    for (const char *name : {"dfA1", "a b;c", "dir/x"}) tool.Write("tool/" + std::string(name), "data");
    fs::create_symlink("dfA1", tool.Path("tool/link"));
    fs::create_symlink("../x", tool.Path("tool/dir/up")); // the dots are dropped
    fs::create_symlink("loop", tool.Path("tool/loop"));
    tool.Write("tool/lock", "123\ncfA1\nmore\n");
    tool.Write("tool/cfA1", "Hhost\nH two\nP root\r\nJjob name\nTtitle " + std::string(600, 'f') +
                                "\nfdfA1\n#1\n#3\nfa b;c\nUdfA1\nflink\nfdir\nfnone\nfdir/up\nfloop");
    const std::string source = tool.Path("tool");
    pSourceDir = const_cast<char *>(source.c_str());
    Capture caught;
    for (int round = 0; round < 2; round++) GetFileInfo();
    pSourceDir = nullptr;
    EXPECT_EQ(Text(pControlFile) + "|" + Text(pHostName) + "|" + Text(pPerson) + "|" + Text(pJobName),
              "cfA1|host|root|job name");
    EXPECT_EQ(strlen(pJobTitle), 510u) << "a line is cut at 511, and its rest is no line";
    EXPECT_EQ(CopyCnt * 10 + flLpdCopyCnt, 31);
    std::string files;
    for (int i = 0; i < FilesCnt; i++)
        files += (*pFiles[i] ? fs::relative(pFiles[i], source).string() : "-") + "|";
    EXPECT_EQ(files, "dfA1|a b;c|dfA1|-|-|dir/x|-|");
    std::string err = "Can't print directory " + source + "/dir\nCan't locate " + source +
                      "/none\nCan't locate " + source + "/loop\n";
    EXPECT_EQ(caught.Err(), err + err);
}

// ---- The spool store

// A spool directory, and my_name put back at the end.
class Spool : public Scratch {
public:
    Spool() : name(my_name) {
        ComList[CMD_TOUCH].path = ComList[CMD_CHMOD].path = ComList[CMD_MKDIR].path = ComList[CMD_SH].path =
            "/bin";
        flInitSysCmd = 0;
    }
    ~Spool() { my_name = name; }
    const char *Dir() const { return Path().c_str(); }
    std::string Lock() const { return ReadWhole(Path(".qlock")).c_str(); } // up to the first NUL
    std::string Job() const {
        char first[64], second[64];
        GetJobFromQue(Dir(), first, second, sizeof first);
        return std::string(first) + "," + second;
    }

private:
    const char *name;
};

TEST(Spool, KeepsTheList) {
    Spool spool;
    spool.Write(".q", "x cfA1 dfA1\npart");
    chmod(spool.Path(".q").c_str(), 0606);
    Capture caught;
    AddJobToQue(spool.Dir(), "cB", "dB");
    AddJobToQue(spool.Dir(), "c\nC", "dB");
    EXPECT_EQ(caught.Err(), "WARNING: can't queue file, c\nC\n");
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "x cfA1 dfA1\npart\ncB dB\n") << "nothing runs into the new line";
    const std::string before = ReadWhole(spool.Path(".q"));
    std::ifstream reader(spool.Path(".q"));
    EXPECT_EQ(spool.Job(), "cfA1,dfA1");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), before) << "a reader has a whole list";
    DeleteJobFromQue(spool.Dir(), "cfA", 0); // no job, but how one begins
    EXPECT_EQ(ReadWhole(spool.Path(".q")), before.substr(2));
    EXPECT_EQ(fs::status(spool.Path(".q")).permissions(), fs::perms(0606)) << "it takes after the old file";
    EXPECT_EQ(std::distance(fs::directory_iterator(spool.Path()), {}), 2) << "no temporary is left";
    DeleteJobFromQue(spool.Dir(), "cB", 0);
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "cfA1 dfA1\npart\n");
    EXPECT_EQ(spool.Lock(), "U prndeck");
}

// ---- Two processes

static pid_t Fork(const std::function<void()> &function) {
    fflush(nullptr);
    pid_t child = fork();
    if (child != 0) return child;
    alarm(60);
    function();
    _exit(0);
}

static int Wait(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

enum { HAMMER_ADDERS = 3, HAMMER_JOBS = 300 };

// Takes jobs off the list, as a spool daemon does, and notes each, until all that are to come were seen.
static void TakeJobs(const Spool &spool, const std::string &done, int count) {
    FILE *out = fopen(done.c_str(), "a");
    setvbuf(out, nullptr, _IOLBF, 0);
    while (count > 0) {
        char first[64], second[64];
        GetJobFromQue(spool.Dir(), first, second, sizeof first);
        if (!*first) continue;
        fprintf(out, "%s %s\n", first, second);
        DeleteJobFromQue(spool.Dir(), first, 0);
        count--;
    }
}

TEST(Spool, LosesNoJob) {
    Spool spool;
    pid_t adders[HAMMER_ADDERS];
    for (int a = 0; a < HAMMER_ADDERS; a++)
        adders[a] = Fork([&spool, a] {
            my_name = a ? "other" : "prndeck";
            for (int i = 0; i < HAMMER_JOBS; i++) {
                std::string id = std::to_string(a) + "-" + std::to_string(i);
                AddJobToQue(spool.Dir(), ("c" + id).c_str(), ("d" + id).c_str());
            }
        });
    usleep(20000); // a list of some length is rewritten slower
    pid_t taker = Fork([&] { TakeJobs(spool, spool.Path("done"), HAMMER_ADDERS * HAMMER_JOBS); });
    // A reader without a lock, meanwhile: every list is made of whole lines.
    int status, torn = 0;
    while (waitpid(taker, &status, WNOHANG) == 0) {
        std::string list = ReadWhole(spool.Path(".q"));
        torn += !list.empty() && (list[0] != 'c' || list.back() != '\n');
        usleep(200);
    }
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(status, 0);
    for (pid_t adder : adders) EXPECT_EQ(Wait(adder), 0);
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "");
    std::istringstream done(ReadWhole(spool.Path("done")));
    int next[HAMMER_ADDERS] = {}, wrong = 0;
    for (std::string line; std::getline(done, line);) {
        int adder = line[1] - '0';
        std::string id = std::to_string(adder) + "-" + std::to_string(next[adder]++);
        wrong += line != "c" + id + " d" + id;
    }
    EXPECT_EQ(wrong, 0) << "each once, and in the order of its adder";
    EXPECT_EQ(next[0] + next[1] + next[2], HAMMER_ADDERS * HAMMER_JOBS);
}
