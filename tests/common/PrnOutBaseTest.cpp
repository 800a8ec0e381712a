// Printer configuration, job files, and the spool store under two processes at once.
#include "common/prnoutbase.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/MainUtils.h"
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"
#include "tests/lib/Xdb.h"

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
        PutMem(pSettings);
        pSettings = nullptr;
        pDrvCoreDB = DbTOpen("Texts", DBT_NO_RELOAD | DBT_NO_WRITE);
        for (const char *text : {"112 entry\n", "113 open\n", "114 none\n", "115 unknown %s\n"})
            DbmTPutRecord(pDrvCoreDB, ("20_" + std::string(text, 3)).c_str(), text + 4, strlen(text + 4) + 1);
    }
    ~Tool() {
        DbTClose(pDrvCoreDB);
        pDrvCoreDB = nullptr;
        pToolPath = saved;
    }
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
                "q2 /dev/usb/lp0 lp tv.ppd 2 0 0 0 0 0 ", "q2u /dev/lp lp tv.ppd 2 0 1 0 0 0 ",
                "q3 host lp tv.ppd 3 0 0 1 0 0 ", "q4 /dev/lp lp tv.ppd 4 1 0 0 0 0 ",
                "q9 host lp tv.ppd 9 0 0 0 0 0 "},
               {{"host count", std::string("\1\0\0\0srv psq", 11)}, {"q3 **", "a=b\n"}, {" default", "q1"}}));
    ExpectPrinters({"q0 host srv host NIS rem lufpb", "q1 host srv host SERVER lp ld",
                    "q2 /dev/usb/lp0  _dev_usb_lp0 DIRECT lp ", "q2u /dev/lp  /dev/lp DIRECT lp lu",
                    "q3 host srv host NIS lp f", "q4 /dev/lp  _dev_lp DIRECT lp pb", "q9 host srv - - lp "});
    EXPECT_EQ(FindPrinter(nullptr), 1);
    EXPECT_EQ(ShowPrinter(), "q1 host srv host SERVER lp ld");
    EXPECT_STREQ(pDefaultPrinterQueue, "q1");
    EXPECT_EQ(pPPDFile, std::string(pToolPath) + "/ppd/tv.ppd");
    EXPECT_STREQ(pPpdToolPath, pToolPath);
    EXPECT_STREQ(pSettings, "a=b\n") << "of the first queue that had some";
    EXPECT_EQ(FindPrinter("q5"), 0);
    EXPECT_EQ(FindPrinter(pPrinterQueue), 0) << "its own argument";
    EXPECT_STREQ(pPrinterQueue, "q5");
}

TEST(Printer, OfTheFile) {
    Tool tool;
    tool.Write(Queues({"both host lp tv.ppd 0 0 0 0 0 0 "}));
    const std::string ppd = "/opt/" + std::string(200, 'x') + "/ppd/tv.ppd";
    tool.Write("77yyprinters", "both other /p NIS\nf2\thost\t/opt/t/p.ppd SERVER Default\nf1x a b c\n"
                               "f3 old /x/y NIS Tray2\nf3 new, /x/y NIS BannerPageAtBeginning\n"
                               "\nf1 host,dir " +
                                   ppd + " DIRECT Tray2 NoGui BannerPageAtEnd Tty huh\r\n");
    SetTokenBuf("a,b,c");
    GetToken(nullptr, ",");
    ExpectPrinters({"f2 host - host SERVER - ud", "both host  host NIS lp ", "f3 new - new NIS - upb"});
    EXPECT_STREQ(pPpdToolPath, "/x");
    ExpectPrinters({"f1 host - dir DIRECT - tpe"});
    EXPECT_EQ(pPPDFile, ppd);
    EXPECT_STREQ(GetToken(nullptr, ","), "b") << "the scan goes on";
    EXPECT_EQ(FindPrinter(nullptr), 1);
    EXPECT_STREQ(pPrinterQueue, "f2");
    EXPECT_EQ(FindPrinter("huh"), 0);
}

TEST(Printer, SpoolPath) {
    EXPECT_EQ(TakeText(GetSpoolPath("/opt/prn/ppd/x.ppd", "host")), "/var/spool/Tarvo/prn/host");
    EXPECT_EQ(TakeText(GetSpoolPath("/opt/ppd/ppd/x.ppd", nullptr)), "/var/spool/Tarvo/ppd");
    EXPECT_EQ(TakeText(GetSpoolPath("/opt/prn/x.ppd", GenDirName("/dev/lp"))),
              "/var/spool/Tarvo/prn/_dev_lp");
    const int table[] = {5, 7, -1};
    EXPECT_EQ(FindOption(7, table) * 100 + FindOption(6, table) * 10 + FindOption(-1, table), 210);
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
        {"no .config", "x", "", [] { GetConfig(CONFIG_READ); }, 0, "open\n"},
        {"half a .config", "tool/.config", "q1\n", [] { GetConfig(CONFIG_READ); }, 0, "entry\n"},
        {"no printer", "tool/.config", "q1 /none\n", [] { GetConfig(CONFIG_READ); }, 0, "unknown q1\n"},
        {"no printer, going on", "x", "", [] { _exit(FindPrinter(nullptr) + GetConfig(CONFIG_NO_EXIT) + 7); },
         8, "none\n"},
        {"no lock", "x", "", [] { GetFileInfo(); }, 1, "Error: couldn't open lock file\n"},
        {"no control file", "tool/lock", "42\ncfA1\n", [] { GetFileInfo(); }, 0,
         "Error: couldn't open print control file 'cfA1'\n"},
        {"tilde alone", "x", "", [] { PutMem(LocatePath("~x")); }, 1,
         "ERROR: '/' was expected after'~' in ~x\n\n"},
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

TEST(Printer, Config) {
    Tool tool;
    tool.Write(Queues({"q1 host lp tv.ppd 0 0 0 0 0 0 "}, {{" default", "q1"}}));
    tool.Write("77yyprinters", "f1 host /x/ppd/y NIS\n");
    const struct {
        const char *name, *config;
        int flags, cfg, want;
        const char *queue;
    } cases[] = {
        {"database", "q1 ", CONFIG_READ, 0, 0, "q1"},
        {"file", "f1\t", CONFIG_READ, 0, 0, "f1"},
        {"unknown, so the default", "q9 ", CONFIG_READ, 0, 0, "q1"},
        {"no database wanted", "f1 ", CONFIG_READ, CFG_DIRECT | CFG_NO_DB | CFG_V5, 1, "f1"},
        {"without .config", "", 0, 0, 0, "f1"}, // the queue stays from the row before
    };
    for (const auto &c : cases) {
        if (*c.config) tool.Write("tool/.config", c.config + tool.Path("tool") + "\nmore\n");
        flToolCfg = c.cfg;
        EXPECT_EQ(GetConfig(c.flags), c.want) << c.name;
        EXPECT_STREQ(pPrinterQueue, c.queue) << c.name;
        EXPECT_EQ(pToolPath, fs::current_path().string()) << c.name;
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

TEST(Job, Names) {
    setenv("HOME", "/home/u", 1);
    char source[] = "/src";
    pSourceDir = source;
    std::string located;
    for (const char *path : {"../x", "x", "./x", "/x", "~/x y"}) located += TakeText(LocatePath(path)) + "|";
    EXPECT_EQ(located, "/src/../x|/src/x|/src/x|/x|/home/u/x y|");
    pSourceDir = nullptr;
    std::string links = TakeText(LocateLink("l", "l -> t\n")) + "|" + TakeText(LocateLink("/l", "l -> t"));
    for (const char *line :
         {"lrwx l ->   t\n", "l -> ./t\n", "l -> ../t/u\n", "l > x -> /abs t\n", "no arrow\n"})
        links += "|" + TakeText(LocateLink("/a/l", line));
    EXPECT_EQ(links, "t|/t|/a/t|/a/t|/a/t/u|/abs t|/a/l");
}

TEST(Job, HostAndEnvironment) {
    Tool tool;
    const struct {
        const char *file, *request, *text;
        bool flFound;
    } requests[] = {{"123-1", "r-1", "O\nH far\nX", true},
                    {"1234", "r", "\nH far", true},
                    {"123-1", "r-1", "H far\n", false}};
    for (const auto &c : requests) {
        std::string path = tool.Path(c.file);
        tool.Write(c.request, c.text);
        char *file = path.data();
        pFiles = &file;
        FilesCnt = 1;
        pHostName = nullptr;
        GetRequestHost();
        EXPECT_EQ(Text(pHostName) == "far", c.flFound) << c.file;
    }
    pFiles = nullptr;
    FilesCnt = 0;
    setenv("PrnOutPrinter", "/etc/lp/interfaces/q1", 1);
    setenv("PrnOutCopies", "99999999999", 1);
    std::string users;
    for (const char *user : {"u@h!x", "h!u", "u"}) {
        setenv("PrnOutUser_name", user, 1);
        GetInterfaceEnvArgs();
        users += Text(pPerson) + " " + Text(pHostName) + "|";
    }
    EXPECT_EQ(users, "u h!x|u h|u -|");
    EXPECT_EQ(Text(pPrinterQueue) + Text(pReqId), "q1-");
    EXPECT_EQ(CopyCnt, INT_MAX);
}

TEST(Job, OutputFile) {
    Scratch scratch;
    std::string one = scratch.Path("one"), two = scratch.Path("two");
    for (const char *text : {"a\n", "b%s\n"}) EXPECT_TRUE(PutFileLine(one.c_str(), text, "w"));
    EXPECT_TRUE(PutFileLine(two.c_str(), "c", "w") && PutFileLine(one.c_str(), "d", "a"));
    EXPECT_EQ(ReadWhole(one) + ReadWhole(two), "a\nb%s\ndc");
    EXPECT_FALSE(PutFileLine(scratch.Path().c_str(), "x", "w"));
    EXPECT_EQ(FileStatus, FILE_FAILED);
    EXPECT_FALSE(PutFileLine("/dev/full", "x", "w"));
    CloseOutputFile();
    EXPECT_EQ(FileStatus, FILE_ENDED);
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

TEST(Spool, ChangesTheList) {
    const struct {
        const char *name, *que, *remove, *left;
    } deletes[] = {
        {"first", "cA d\ncB d\n", "cA", "cB d\n"},
        {"last without a line end", "cA d\ncB d", "cB", "cA d\ncB d"},
        {"only the first of a name", "cA 1\ncA 2\n", "cA", "cA 2\n"},
        {"absent", "cA d\n", "c", "cA d\n"},
        {"the only one", "cA d\n", "cA", ""},
    };
    for (const auto &c : deletes) {
        Spool spool;
        spool.Write(".q", c.que);
        DeleteJobFromQue(spool.Dir(), c.remove, 0);
        EXPECT_EQ(ReadWhole(spool.Path(".q")), c.left) << c.name;
        EXPECT_EQ(spool.Lock(), "U prndeck");
    }
    const struct {
        const char *name, *que, *job, *left;
    } gets[] = {
        {"empty", "", ",", ""},
        {"plain", "cA dA\ncB dB\n", "cA,dA", "cA dA\ncB dB\n"},
        {"capital, one name", "CA\ncB dB\n", "CA,", "CA\ncB dB\n"},
        {"junk in front", "A1 d\n\nx cB dB\ncC dC\n", "cB,dB", "cB dB\ncC dC\n"},
        {"no job", "dA dB\n", ",", "dA dB\n"},
    };
    for (const auto &c : gets) {
        Spool spool;
        spool.Write(".q", c.que);
        EXPECT_EQ(spool.Job(), c.job) << c.name;
        EXPECT_EQ(ReadWhole(spool.Path(".q")), c.left) << c.name;
    }
}

TEST(Spool, KeepsTheList) {
    Spool spool;
    char first[4], second[4];
    GetJobFromQue____(spool.Dir(), first, second, sizeof first);
    EXPECT_STREQ(first, "");
    EXPECT_FALSE(fs::exists(spool.Path(".qlock")));
    AddJobToQue(spool.Dir(), "cfA1", "dfA1");
    EXPECT_EQ(ReadWhole(spool.Path(".qlock")), "U prndeck");
    spool.Write(".q", "x cfA1 dfA1\npart");
    chmod(spool.Path(".q").c_str(), 0606);
    Capture caught;
    AddJobToQue(spool.Dir(), "cB", "dB");
    AddJobToQue(spool.Dir(), "c\nC", "dB");
    AddJobToQue(spool.Dir(), nullptr, "dB");
    AddJobToQue(spool.Dir(), "cB", "");
    EXPECT_EQ(caught.Err(), "WARNING: can't queue file, c\nC\n");
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "x cfA1 dfA1\npart\ncB dB\n") << "nothing runs into the new line";
    GetJobFromQue____(spool.Dir(), first, second, sizeof first);
    EXPECT_EQ(std::string(first) + second, "cfAdfA") << "cut at the capacity";
    const std::string before = ReadWhole(spool.Path(".q"));
    std::ifstream reader(spool.Path(".q"));
    EXPECT_EQ(spool.Job(), "cfA1,dfA1");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), before) << "a reader has a whole list";
    EXPECT_EQ(ReadWhole(spool.Path(".q")), before.substr(2));
    EXPECT_EQ(fs::status(spool.Path(".q")).permissions(), fs::perms(0606)) << "it takes after the old file";
    // A line over the end of a page would come to a reader in two parts, so it comes in a new file.
    const std::string page(static_cast<size_t>(sysconf(_SC_PAGESIZE)) - 6, 'x');
    reader = std::ifstream(spool.Write(".q", page + "\n"));
    AddJobToQue(spool.Dir(), "cB", "dB");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), page + "\n");
    EXPECT_EQ(ReadWhole(spool.Path(".q")), page + "\ncB dB\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(spool.Path()), {}), 2) << "no temporary is left";
}

TEST(Spool, WithoutADirectory) {
    Spool spool;
    AddJobToQue(spool.Path("a/b c").c_str(), "cA", "dA");
    EXPECT_EQ(ReadWhole(spool.Path("a/b c/.q")), "cA dA\n") << "made";
    spool.Write("file", "");
    SystemSpy spy; // nothing can be made, nobody waits
    Capture caught;
    AddJobToQue(spool.Path("file/x").c_str(), "cA", "dA");
    DeleteJobFromQue(spool.Path("none").c_str(), "cA", 0);
    EXPECT_EQ(caught.Err(), "WARNING: can't open file, " + spool.Path("file/x/.q") + "\n");
}

TEST(Spool, LockStyles) {
    Spool spool;
    char *lock = CreateQueLock(spool.Dir(), nullptr);
    ASSERT_NE(lock, nullptr);
    EXPECT_EQ(fs::status(spool.Path(".qlock")).permissions(), fs::perms(0666));
    EXPECT_EQ(fs::file_size(spool.Path(".qlock")), static_cast<size_t>(sysconf(_SC_PAGESIZE)));
    EXPECT_EQ(spool.Lock(), "U prndeck");
    EXPECT_EQ(SetQueLockState(spool.Dir(), 1), 1);
    EXPECT_EQ(ReadWhole(spool.Path(".qlock")), "L prndeck");
    SystemSpy spy;
    const struct {
        const char *name;
        unsigned slept; // in all
    } holders[] = {{"prndeck", 0}, {"prnout", 5}, {"a-program-whose-name-is-longer-than-the-record", 10}};
    for (const auto &holder : holders) {
        my_name = holder.name;
        for (int i = 0; i < 2; i++) EXPECT_EQ(LockQue(spool.Dir(), lock), lock);
        EXPECT_EQ(spy.slept, holder.slept) << my_name;
        EXPECT_EQ(spool.Lock(), "L " + std::string(my_name).substr(0, 37)) << "also in a file that was cut";
        UnlockQue(lock);
        EXPECT_EQ(spool.Lock()[0], 'U');
        EXPECT_EQ(SetQueLockState(spool.Dir(), 1), 1);
    }
    my_name = "x";
    FreeQueLock(LockQue(spool.Dir(), nullptr));
    EXPECT_EQ(spy.slept, 15u) << "a lock of one's own does not forget the holder";
    FreeQueLock(lock);

    fs::remove(spool.Path(".qlock"));
    spool.MakeDir(".qlock");
    spool.Write(".q", "cA dA\ncB dB\n");
    DeleteJobFromQue(spool.Dir(), "cA", 0);
    EXPECT_EQ(spy.slept, 19u) << "five tries";
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "cB dB\n") << "without the lock";
}

TEST(Spool, MapsFiles) {
    Scratch scratch;
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    for (size_t size : {size_t{0}, page - 1, page, page + 1}) {
        std::string path = scratch.Write("m", "text");
        void *address = MapMemFile(path.c_str(), 0, size, 1);
        ASSERT_NE(address, nullptr);
        EXPECT_EQ(fs::file_size(path), (size < page ? 1 : 2) * page) << size;
        EXPECT_STREQ(static_cast<char *>(address), "text");
        munmap(address, fs::file_size(path));
    }
    Capture caught;
    EXPECT_EQ(MapMemFile(scratch.Path("no").c_str(), 0, 1, 1), nullptr);
    EXPECT_EQ(caught.Out(), "unable to open " + scratch.Path("no") + "\n");
}

TEST(Spool, Mailbox) {
    Spool spool;
    SystemSpy spy;
    pSpoolRoot = spool.Dir();
    Capture caught;
    EXPECT_STREQ(AddCmdToQue("early", 1), "");
    EXPECT_EQ(caught.Out(), "unable to open " + spool.Path("Tarvo/.cmd") + "\n");
    std::string path = spool.Write("Tarvo/.cmd", "");
    EXPECT_STREQ(AddCmdToQue("one", 0), "");
    snprintf(pQueCmdResponse, 10, "answer");
    EXPECT_STREQ(AddCmdToQue("two", 1), "") << "an old answer is no answer";
    EXPECT_EQ(spy.slept, 1u);
    EXPECT_STREQ(ReadWhole(path).c_str(), "one\ntwo\n");
    std::string fill(QUE_CMD_TEXT - 8 - 2, 'x');
    AddCmdToQue((fill + "y").c_str(), 0);
    EXPECT_STREQ(pQueCmd, "one\ntwo\n") << "no room: dropped";
    for (int i = 0; i < 2; i++) AddCmdToQue(fill.c_str(), 0);
    EXPECT_EQ(strlen(pQueCmd), QUE_CMD_TEXT - 1u);
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

TEST(Spool, MixesLockStyles) {
    Spool spool;
    FreeQueLock(CreateQueLock(spool.Dir(), nullptr));
    pid_t plain = Fork([&] {
        my_name = "p";
        for (int i = 0; i < 20000; i++) SetQueLockState(spool.Dir(), i % 2);
    });
    pid_t mapped = Fork([&] {
        pSleep = [](unsigned) { return 0u; };
        char *lock = LockQue(spool.Dir(), nullptr);
        for (int i = 0; i < 20000; i++) {
            lock = LockQue(spool.Dir(), lock);
            UnlockQue(lock);
        }
    });
    EXPECT_EQ(Wait(plain), 0);
    EXPECT_EQ(Wait(mapped), 0) << "no SIGBUS";
    EXPECT_TRUE(spool.Lock()[1] == ' ' && strchr("LU", spool.Lock()[0]));
}

TEST(Spool, WaitsForAHolder) {
    Spool spool;
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    pid_t holder = Fork([&] {
        int file = open(spool.Write(".qlock", "L x").c_str(), O_RDWR);
        flock(file, LOCK_EX);
        std::string list = ReadWhole(spool.Path(".q"));
        (void)!write(ready[1], "", 1);
        usleep(200000);
        spool.Write(".q", list + "cA dA\n");
        raise(SIGKILL);
    });
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    AddJobToQue(spool.Dir(), "cB", "dB");
    EXPECT_EQ(Wait(holder), SIGKILL);
    EXPECT_EQ(ReadWhole(spool.Path(".q")), "cA dA\ncB dB\n");
    EXPECT_EQ(ReadWhole(spool.Path(".qlock")), "U prndeck");
    for (int end : ready) close(end);
}
