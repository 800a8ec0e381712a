// Changes of text files on disk: replace, delete, insert, line by line.
#include "common/FileEdit.h"

#include "common/SysCmd.h"
#include "common/utils.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

enum { EDIT_PIECE = 510, EDIT_COUNTER_WIDTH = 5, EDIT_MODE_BITS = 07777 };

char Fn[PATH_MAX];
char FnOut[PATH_MAX];

// ---- The frame

// The file and its temporary, both open.
struct EditFiles {
    std::string path;
    std::string outPath;
    FILE *in;
    FILE *out;
};

[[noreturn]] static void FailEdit(const EditFiles *files, const std::string &path, const char *what) {
    unlink(files->outPath.c_str());
    SysError("can't %s file, %s", what, path.c_str());
}

// The new file takes after the old one. A user who is not the owner may not give files away: then it is his.
static void CopyMode(const EditFiles *files) {
    struct stat info;
    if (fstat(fileno(files->in), &info) != 0) return;
    if (fchown(fileno(files->out), info.st_uid, info.st_gid) != 0 && geteuid() == 0)
        FailEdit(files, files->outPath, "write");
    if (fchmod(fileno(files->out), info.st_mode & EDIT_MODE_BITS) != 0)
        FailEdit(files, files->outPath, "write");
}

// What an earlier run left behind is removed and not opened, since it may be a link to elsewhere by now.
static EditFiles OpenEdit(const char *name, const char *extension) {
    bool flExtension = extension && *extension;
    std::string path =
        std::string(name ? name : "") + (flExtension ? "." : "") + (flExtension ? extension : "");
    if (path[0] == '-') path.insert(0, "./"); // else an option of rm and mv
    EditFiles files = {path, path + (flExtension ? "out" : ".out"), nullptr, nullptr};
    files.in = OpenFile(nullptr, files.path.c_str(), "rt", ERR_FATAL);
    unlink(files.outPath.c_str());
    files.out = OpenFile(nullptr, files.outPath.c_str(), "wxt", ERR_FATAL);
    CopyMode(&files);
    return files;
}

static void RunEditLine(const std::string &line) {
    fflush(stdout);
    pSystem(line.c_str());
}

// A file of which not all was read, or whose new text is not whole, is never replaced.
static void CloseEdit(EditFiles *files) {
    bool flRead = !ferror(files->in);
    bool flWritten = !ferror(files->out);
    fclose(files->in);
    if (fclose(files->out) != 0) flWritten = false;
    if (!flRead) FailEdit(files, files->path, "read");
    if (!flWritten) FailEdit(files, files->outPath, "write");
    std::string target = ShArg(files->path);
    RunEditLine("rm -f " + target);
    RunEditLine("mv " + ShArg(files->outPath) + " " + target);
}

// The next line with its line feed, or the next piece of a long one.
static bool ReadPiece(FILE *in, std::string &line) {
    line.clear();
    while (line.size() < EDIT_PIECE) {
        int ch = getc(in);
        if (ch == EOF) break;
        line += static_cast<char>(ch);
        if (ch == '\n') break;
    }
    return !line.empty();
}

static void WritePiece(FILE *out, const std::string &line) {
    fwrite(line.data(), 1, line.size(), out);
}

// Hands each line to the call, which changes it; a false result drops the line.
template <typename Change>
static void EditLines(const EditFiles *files, Change change) {
    std::string line;
    while (ReadPiece(files->in, line))
        if (change(line)) WritePiece(files->out, line);
}

template <typename Change>
static void EditFile(const char *name, const char *extension, Change change) {
    EditFiles files = OpenEdit(name, extension);
    EditLines(&files, change);
    CloseEdit(&files);
}

static size_t FindText(const std::string &line, const char *text) {
    return text && *text ? line.find(text) : std::string::npos;
}

static bool HoldsText(const std::string &line, const char *text) {
    return FindText(line, text) != std::string::npos;
}

// ---- Replace and delete

// True for so many calls as the count says.
static bool TakeCount(int *count) {
    if (*count <= 0) return false;
    --*count;
    return true;
}

void FileChange(const char *name, const char *extension, const char *oldText, const char *newText) {
    EditFile(name, extension, [=](std::string &line) {
        size_t at = FindText(line, oldText);
        if (at != std::string::npos) line.replace(at, strlen(oldText), newText ? newText : "");
        return true;
    });
}

// A code in decimal, octal or hexadecimal form; the rest of the text comes back. False without one.
static bool ReadCode(const char *&text, char *code) {
    char *end;
    long value = strtol(text, &end, 0);
    if (end == text) return false;
    *code = static_cast<char>(value);
    text = end;
    return true;
}

static std::string ReadCodes(const char *codes) {
    std::string characters;
    char code;
    while (codes && ReadCode(codes, &code)) {
        characters += code;
        codes = strchr(codes, ',');
        if (codes) codes++;
    }
    return characters;
}

static void ReplaceCode(std::string &line, char code, const std::string &characters) {
    for (size_t at = 0; (at = line.find(code, at)) != std::string::npos; at += characters.size())
        line.replace(at, 1, characters);
}

void FileChangeChar(const char *name, const char *extension, const char *code, const char *codes) {
    char character = 0;
    bool flCode = code && ReadCode(code, &character);
    std::string characters = ReadCodes(codes);
    EditFile(name, extension, [&](std::string &line) {
        if (flCode) ReplaceCode(line, character, characters);
        return true;
    });
}

void FileDel(const char *name, const char *extension, int count, const char *text) {
    EditFile(name, extension, [=](std::string &line) mutable {
        size_t at = FindText(line, text);
        if (at != std::string::npos && !TakeCount(&count)) line.erase(at, strlen(text));
        return true;
    });
}

void FileDelLine(const char *name, const char *extension, int count, const char *text) {
    EditFile(name, extension,
             [=](std::string &line) mutable { return !HoldsText(line, text) || TakeCount(&count); });
}

void FileDelLinePair(const char *name, const char *extension, int count, const char *first,
                     const char *second) {
    int pending = 0;
    EditFile(name, extension, [&](std::string &line) {
        if (HoldsText(line, first) && !TakeCount(&count)) {
            pending++;
            return false;
        }
        if (pending == 0 || !HoldsText(line, second)) return true;
        pending--;
        return false;
    });
}

// One line by the mode; false drops it.
static bool DelFormat(std::string &line, char mode, const char *text) {
    size_t at = FindText(line, text);
    if (at == std::string::npos) return true;
    switch (mode) { // the caller knows the others
    case 'a': line.replace(at + strlen(text), std::string::npos, "\n"); break;
    case 'b': line.erase(0, at); break;
    case 'l': return false;
    default: line.erase(at, strlen(text)); break;
    }
    return true;
}

int FileDelFormat(const char *name, const char *extension, const char *mode, const char *text) {
    char letter = mode ? *mode : '\0';
    if (letter == 'c') {
        FileChangeChar(name, extension, text, nullptr);
        return 0;
    }
    EditFiles files = OpenEdit(name, extension);
    if (letter && !strchr("abl", letter)) {
        fclose(files.in);
        fclose(files.out);
        return 1;
    }
    EditLines(&files, [=](std::string &line) { return DelFormat(line, letter, text); });
    CloseEdit(&files);
    return 0;
}

// ---- Insert

// What a template says: the text around the counter, where the counter starts, and from where it is inserted.
struct InsertPlan {
    std::string head;
    std::string tail;
    bool flNumber;
    long counter;
    long offset;
};

// The digits at the position, which moves behind them; large numbers stop at the largest.
static long TakeDigits(const char *&at) {
    char *end = const_cast<char *>(at);
    long value = *at >= '0' && *at <= '9' ? strtol(at, &end, 10) : 0;
    at = end;
    return value > INT_MAX ? INT_MAX : value;
}

static InsertPlan ReadTemplate(char *templateText) {
    InsertPlan plan = {};
    if (char *start = strstr(templateText, "%s")) {
        const char *rest = start + 2;
        plan.counter = TakeDigits(rest);
        memmove(start, rest, strlen(rest) + 1);
    }
    plan.tail = templateText;
    if (const char *number = strstr(templateText, "%#")) {
        const char *rest = number + 2;
        plan.flNumber = true;
        plan.offset = TakeDigits(rest);
        plan.head.assign(templateText, static_cast<size_t>(number - templateText));
        plan.tail = rest;
    }
    if (plan.tail.empty() || plan.tail.back() != '\n') plan.tail += '\n';
    return plan;
}

static std::string InsertText(const InsertPlan &plan) {
    if (!plan.flNumber) return plan.tail;
    char number[24];
    snprintf(number, sizeof number, "%0*li", EDIT_COUNTER_WIDTH, plan.counter - plan.offset);
    return plan.head + number + plan.tail;
}

template <typename Test>
static void InsertLines(const char *name, const char *extension, char *templateText, Test test) {
    std::string none;
    InsertPlan plan = ReadTemplate(templateText ? templateText : none.data());
    EditFile(name, extension, [&](std::string &line) {
        if (!test(line)) return true;
        if (plan.counter >= plan.offset) line.insert(0, InsertText(plan));
        plan.counter++;
        return true;
    });
}

void FileInsert(const char *name, const char *extension, char *templateText) {
    InsertLines(name, extension, templateText, [](const std::string &) { return true; });
}

void FileSearchInsert(const char *name, const char *extension, char *templateText, const char *search) {
    InsertLines(name, extension, templateText,
                [=](const std::string &line) { return HoldsText(line, search); });
}

// ---- By hand

static void CloseStream(FILE *&stream) {
    if (stream) fclose(stream);
    stream = nullptr;
}

void OpenIOFiles(const char *name, const char *extension) {
    CloseStream(pIn);
    CloseStream(pOut);
    EditFiles files = OpenEdit(name, extension);
    snprintf(Fn, sizeof Fn, "%s", files.path.c_str());
    snprintf(FnOut, sizeof FnOut, "%s", files.outPath.c_str());
    pIn = files.in;
    pOut = files.out;
}

// The caller may have read pIn to its end, where GetFileLine closes it.
void ReplaceInputFile() {
    if (!pOut) return;
    if (!pIn) pIn = OpenFile(nullptr, "/dev/null", "r", ERR_FATAL);
    EditFiles files = {Fn, FnOut, pIn, pOut};
    pIn = pOut = nullptr;
    CloseEdit(&files);
}
