// Jobs whose queue is changed, and the notes of them.
#include "siblings/prnqtool/JobNotes.h"

#include "common/Words.h"
#include "common/utils.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/Detached.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"

#include <unistd.h>

enum { NOTES_MAX = 1024 * 1024, NOTES_MODE = 0600 };

static const char NotesPath[] = "db/.prnq_jobs";

static bool flStay; // jobs that should have gone

static void Warn(const std::string &queue, const std::string &error) {
    if (error.empty()) return;
    flStay = true;
    TellUser(Say(SayJobsStay, queue, error));
}

void DropSpooled(const std::string &queue, const std::string &directory) {
    Warn(queue, SpoolRemoveQueue(directory, queue));
}

void MoveSpooled(const std::string &queue, const std::string &from, const std::string &to) {
    if (from == to) return;
    Warn(queue, SpoolMoveQueue(from, to, queue));
    if (!SpoolJobs(to).empty()) StartDetached((std::string(pToolPath) + "/prnout").c_str(), "-send", to);
}

static std::string LeftNotes() {
    std::string text;
    return ReadOwnFile(NotesPath, NOTES_MAX, text) ? text : ""; // what others put there tells nothing
}

std::string NoteJobs(const std::vector<JobNote> &notes) {
    std::string before = LeftNotes(), text;
    // A queue that nobody has printed on has no directory yet.
    for (const JobNote &note : notes)
        if (!note.directory.empty() && !access(note.directory.c_str(), F_OK))
            text += (note.flMove ? "move " : "drop ") + note.queue + " " + note.directory + "\n";
    if (text.empty()) return "";
    std::string error = PrepareFile(NotesPath, before + text, NOTES_MODE);
    return error.empty() ? CommitFile(NotesPath) : error;
}

void ForgetJobs() {
    if (!flStay) unlink(NotesPath);
}

static void SettleLeft(std::string_view line) {
    std::string_view verb, queue;
    if (!TakeWord(line, " ", verb) || !TakeWord(line, " ", queue) || line.empty()) return;
    line.remove_prefix(1);
    std::string from(line), to;
    Queue record;
    RecordsRead(std::string(queue), record);
    record.name = queue;
    bool flStands = FileStoreHas(record.name);
    if (flStands) to = FileStoreSpool(record);
    if (from == to) return;
    if (flStands && verb == "move")
        MoveSpooled(record.name, from, to);
    else
        DropSpooled(record.name, from);
}

void SettleLeftJobs() {
    std::string text = LeftNotes();
    std::string_view rest(text);
    for (std::string_view line; TakeLine(rest, line);) SettleLeft(line);
    ForgetJobs();
}
