// Waiting jobs in windows.
#include "prndeck/gui/PrdGuiJobs.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdJobs.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/core/PrdSend.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cstring>

enum { MSG_JOBS_TITLE = 172, MSG_STATUS = 173, MSG_OLD_LIST = 174, MSG_NO_LIST = 175 };
enum { FIRST_INTERVAL = 2, COUNT_INTERVAL = 30 };
static constexpr char StatusFile[] = ".status";

int JobTimerInterval = FIRST_INTERVAL, JobCountTimerInterval = COUNT_INTERVAL;
int JobTimer, JobCountTimer;
std::string JobQue;
int JobQueIndex;
std::vector<std::string> pJobText;

// ---- Lists

// A comma list for the toolkit.
static std::string JoinRows(const std::vector<std::string> &rows) {
    std::string list;
    for (const std::string &row : rows) {
        if (!list.empty()) list += ',';
        for (char ch : row) {
            if (strchr(",\\", ch)) list += '\\';
            list += static_cast<unsigned char>(ch) < ' ' ? '?' : ch;
        }
    }
    return list;
}

using Rows = std::vector<std::string>;

// Where the row of a place stands in other rows: where it reads the same, else at the same place.
static int FollowRow(const Rows &before, int place, const Rows &rows) {
    if (place > 0 && place <= static_cast<int>(before.size())) {
        auto found = std::find(rows.begin(), rows.end(), before[static_cast<size_t>(place) - 1]);
        if (found != rows.end()) return static_cast<int>(found - rows.begin()) + 1;
    }
    return std::clamp(place, 1, static_cast<int>(rows.size()));
}

// The timers change lists under the user's eyes and hands: the row at the top stays there, and the keys stay
// on theirs. False if the rows are those of before, which are left alone.
static bool ReplaceRows(const char *name, Rows *before, const Rows &rows) {
    Widget list = XmtGetWidget(name);
    if (!list || (rows == *before && XmtGetListCount(name) == static_cast<int>(rows.size()))) return false;
    int top = 1, visible = 1, row = XmListGetKbdItemPos(list);
    XtVaGetValues(list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    XmtReplaceAllListItems(name, JoinRows(rows).c_str());
    if (!rows.empty()) {
        XmListSetKbdItemPos(list, FollowRow(*before, row, rows));
        int last = std::max(static_cast<int>(rows.size()) - visible + 1, 1);
        XmListSetPos(list, std::min(FollowRow(*before, top, rows), last));
    }
    *before = rows;
    return true;
}

void UpdateJobCount() {
    static Rows shown;
    Rows rows;
    UpdateJobPaths();
    for (const std::string &queue : JobQueues) {
        const std::string *path = FindJobPath(queue);
        rows.push_back(MakeCountRow(path ? CountJobs(*path) : 0, queue));
    }
    ReplaceRows("jmql", &shown, rows);
}

// What was chosen stays so, if it still waits: it is what Delete takes.
static void KeepChosen(const Rows &rows) {
    Rows kept;
    Widget list = XmtGetWidget("jmsjl");
    for (size_t i = 0; i < rows.size(); i++) {
        if (std::find(pJobText.begin(), pJobText.end(), rows[i]) == pJobText.end()) continue;
        kept.push_back(rows[i]);
        XmListSelectPos(list, static_cast<int>(i) + 1, 0);
    }
    pJobText = kept;
}

static void UpdateRows(const std::string *path) {
    static Rows shown;
    Rows rows;
    if (path)
        for (const PrintJob &job : ReadJobs(*path)) rows.push_back(MakeJobRow(job));
    if (ReplaceRows("jmsjl", &shown, rows)) KeepChosen(rows);
}

// Jobs of other programs show when the tools ask the scheduler, so a list may miss some.
static std::string TellListAge(const std::string &path) {
    enum { MINUTE = 60 };
    int age = GetJobListAge(path);
    if (age >= 0 && age < MINUTE) return "";
    if (age < 0) return NlsText(pDrvCoreDB, SET_MESSAGES, MSG_NO_LIST);
    std::string format = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_OLD_LIST);
    return NlsFmt(format.c_str(), "i", age / MINUTE);
}

static std::string ReadStatus(const std::string *path) {
    if (!path) return "";
    std::string text, age = TellListAge(*path);
    if (char *status = GetSavedFileContent(path->c_str(), StatusFile)) {
        std::string format = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_STATUS);
        text = NlsFmt(format.c_str(), "s", status);
        PutMem(status);
    }
    if (!text.empty() && !age.empty() && text.back() != '\n') text += '\n';
    return text + age;
}

static void UpdateStatus(const std::string *path) {
    static std::string shown;
    std::string text = ReadStatus(path);
    if (text == shown) return;
    shown = text;
    Widget field = XmtGetWidget("jmss");
    int top = field ? static_cast<int>(XmTextGetTopCharacter(field)) : 0;
    XmtSetText("jmss", text.c_str());
    XmtSetTextPosTop("jmss", top); // where the user reads
}

void UpdateJobList() {
    if (JobQue.empty()) return;
    UpdateJobPaths();
    const std::string *path = FindJobPath(JobQue);
    XmtSetLabelText("jmxq", path ? path->substr(path->rfind('/') + 1).c_str() : "");
    std::string title = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_JOBS_TITLE);
    XmtSetTitle("jmsw", NlsFmt(title.c_str(), "s", JobQue.c_str()).c_str());
    UpdateStatus(path);
    UpdateRows(path);
}

// ---- Timers

static void CountTick(intptr_t) {
    UpdateJobCount();
}

static void ListTick(intptr_t) {
    UpdateJobList();
}

void StartJobTimers() {
    JobTimer = XmtStartTimer(XMT_TIMER_SUSPENDED, JobTimerInterval, ListTick, 0);
    JobCountTimer = XmtStartTimer(XMT_TIMER_SUSPENDED, JobCountTimerInterval, CountTick, 0);
}

// The window manager closes windows without an event of theirs.
static void StopCounts(Widget, XtPointer, XtPointer) {
    CloseJobCounts();
}

static void StopJobs(Widget, XtPointer, XtPointer) {
    CloseJobs();
}

void PrepareJobs() {
    XmtSetDialogButtons("jmw", nullptr, "jmc");   // Return in the list opens a queue
    XmtSetDialogButtons("jmsw", nullptr, "jmse"); // Return in the interval must not delete or close
    if (Widget counts = XmtGetWidget("jmw")) XtAddCallback(counts, XmNunmapCallback, StopCounts, nullptr);
    if (Widget jobs = XmtGetWidget("jmsw")) XtAddCallback(jobs, XmNunmapCallback, StopJobs, nullptr);
}

// ---- The queues

// Without queues the list is emptied: it has the rows of those that were there, or none of the program's yet.
void OpenJobCounts() {
    UpdateJobCount();
    if (!IsEmpty(pTarvoQueList)) XmtResetTimer(JobCountTimer);
}

void ChooseJobQue(int place, const char *row) {
    if (IsEmpty(row)) return;
    const char *blank = strrchr(row, ' '), *queue = blank ? blank + 1 : row;
    if (JobQue != queue) { // another list is read from its start
        XmtDeleteAllListItems("jmsjl");
        XmtSetTextPosTop("jmss", 0);
    }
    JobQue = queue;
    JobQueIndex = place;
    pJobText.clear();
    XmtSuspendTimer(JobCountTimer);
    XmtResetTimer(JobTimer);
    UpdateJobList();
}

void CloseJobCounts() {
    XmtSuspendTimer(JobCountTimer);
}

void RefreshJobCounts() {
    UpdateJobCount();
}

// ---- The jobs of one queue

void SetJobInterval(const char *text) {
    int seconds = text ? ParseInt(text) : 0;
    if (seconds < 1) return; // the field is being filled in
    JobTimerInterval = seconds;
    XmtSuspendTimer(JobTimer);
    XmtResumeTimer(JobTimer, seconds);
}

void ChooseJobs(const char *selection) {
    pJobText.clear();
    for (const char *row = selection; row && *row; row += strlen(row) + 1) pJobText.emplace_back(row);
}

// The counts go on if their window is still there.
void CloseJobs() {
    Widget counts = XmtGetWidget("jmw");
    XmtSuspendTimer(JobTimer);
    if (counts && XtIsManaged(counts)) XmtResetTimer(JobCountTimer);
}

static void RunRemove(const std::string &line) {
    XmtSuspendTimer(JobTimer);
    BusyCursor busy("jmsw");
    if (!line.empty() && !JobQue.empty()) PostTold(RunRemoveLine(line));
    UpdateJobList();
    pJobText.clear();
    if (Widget list = XmtGetWidget("jmsjl")) XmListDeselectAllItems(list);
    XmtResetTimer(JobTimer);
}

void DeleteJobs() {
    std::string names;
    for (const std::string &row : pJobText) names += " " + GetRowJob(row);
    RunRemove(MakeRemoveLine(JobQue.c_str(), names));
}

void DeleteAllJobs() {
    RunRemove(JobQue.empty() ? "" : MakeRemoveAllLine(JobQue.c_str()));
}
