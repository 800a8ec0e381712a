// The runner of host commands and the log.
#include "siblings/lib/Child.h"

#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/Told.h"
#include "siblings/lib/Say.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

enum { OUTPUT_MAX = 4 * 1024 * 1024, STATUS_NO_EXEC = 127, LOG_NAME_MAX = 64 };

static std::string LogPath;
static double RunStart; // 0: no command has run yet

static double Now() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::string SetLogName(std::string_view name) {
    bool flPlain = !name.empty() && name.size() <= LOG_NAME_MAX && name.front() != '.' &&
                   name.front() != '-' && std::all_of(name.begin(), name.end(), [](unsigned char byte) {
                       return byte < 128 && (isalnum(byte) || strchr("._-", byte));
                   });
    if (!flPlain) return "log name \"" + std::string(name.substr(0, 80)) + "\" must be a plain name";
    LogPath = "/tmp/" + std::string(name) + ".log";
    return "";
}

void PutLog(std::string_view line) {
    struct stat status;
    if (LogPath.empty()) return;
    int file = open(LogPath.c_str(),
                    O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (file < 0) return;
    if (!fstat(file, &status) && IsOwnLog(status)) {
        std::string text = ShowPlain(line) + "\n";
        // A log that can't grow stops nothing.
        if (write(file, text.data(), text.size()) < 0) LogPath.clear();
    }
    close(file);
}

void TellUser(std::string text) {
    text = ShowPlain(text);
    for (char &byte : text)
        if (byte == '\n' || byte == '\t') byte = '?';
    TellCaller(text);
    text.insert(0, std::string(my_name) + ": ");
    fprintf(stderr, "%s\n", text.c_str());
    PutLog(text);
}

bool IsProgram(const std::string &path) {
    struct stat status;
    return !access(path.c_str(), X_OK) && !stat(path.c_str(), &status) && S_ISREG(status.st_mode);
}

std::string FindProgram(const std::string &name) {
    const char *search = getenv("PATH");
    std::string paths = std::string(search ? search : "") + ":/usr/sbin:/usr/bin:/sbin:/bin:";
    for (size_t at = 0, end; (end = paths.find(':', at)) != paths.npos; at = end + 1) {
        // A relative directory would be looked for below the tool directory: not what its owner meant.
        if (end == at || paths[at] != '/') continue;
        std::string path = paths.substr(at, end - at) + "/" + name;
        if (IsProgram(path)) return path;
    }
    return "";
}

// The caller's environment, in English and without a printer of its choice.
static std::vector<char *> ChildEnvironment() {
    static const std::string_view Dropped[] = {"LANGUAGE=", "LANG=", "LC_", "LPDEST=", "PRINTER="};
    static char English[] = "LC_ALL=C";
    std::vector<char *> environment;
    for (char **entry = environ; *entry; entry++)
        if (std::none_of(std::begin(Dropped), std::end(Dropped),
                         [=](std::string_view lead) { return std::string_view(*entry).starts_with(lead); }))
            environment.push_back(*entry);
    environment.push_back(English);
    environment.push_back(nullptr);
    return environment;
}

// Runs between fork and exec: only calls that are safe there.
[[noreturn]] static void ExecChild(const char *path, char **words, char **environment, int out, int err) {
    static const int Restored[] = {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGALRM};
    sigset_t none;
    setsid();
    int null = open("/dev/null", O_RDONLY);
    if (null < 0 || dup2(null, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(STATUS_NO_EXEC);
    for (int number : Restored) signal(number, SIG_DFL);
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(path, words, environment);
    _exit(STATUS_NO_EXEC);
}

void RestartRunLimit() {
    RunStart = Now();
}

int ChildLimit() {
    const char *limit = getenv("PRNQ_LIMIT");
    int seconds = limit ? atoi(limit) : 0;
    return seconds < 1 || seconds > CHILD_LIMIT ? static_cast<int>(CHILD_LIMIT) : seconds;
}

// Whole-run limit: what is left of it bounds each child.
static double ChildSeconds() {
    if (RunStart == 0) RestartRunLimit();
    return std::max(
        0.0, std::min(static_cast<double>(ChildLimit()), RunStart + static_cast<double>(RUN_LIMIT) - Now()));
}

// Moves what a pipe holds into the text; false at its end.
static bool Drain(int pipe, std::string &text) {
    char buffer[4096];
    ssize_t count = read(pipe, buffer, sizeof buffer);
    if (count > 0 && text.size() < OUTPUT_MAX) text.append(buffer, static_cast<size_t>(count));
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

// Reads both pipes until both are closed or the time is over; false if it is.
static bool Collect(int out, int err, double end, Ran &ran) {
    struct pollfd files[2] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
    while (files[0].fd >= 0 || files[1].fd >= 0) {
        int left = static_cast<int>((end - Now()) * 1000);
        if (left <= 0) return false;
        if (poll(files, 2, left) <= 0) continue;
        if (files[0].revents && !Drain(files[0].fd, ran.output)) files[0].fd = -1;
        if (files[1].revents && !Drain(files[1].fd, ran.errors)) files[1].fd = -1;
    }
    return true;
}

// A child may close its pipes and go on; it is waited for no longer than its limit.
static void Reap(pid_t child, double end, Ran &ran) {
    struct timespec pause = {0, 2000000};
    int status = 0;
    while (!ran.flTimedOut && waitpid(child, &status, WNOHANG) != child) {
        if (Now() > end) ran.flTimedOut = true;
        nanosleep(&pause, nullptr);
    }
    if (ran.flTimedOut) {
        kill(-child, SIGKILL);
        kill(child, SIGKILL); // it may not have reached setsid yet
        waitpid(child, &status, 0);
    }
    ran.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

static void DropDeprecated(std::string &text) {
    std::string kept;
    for (size_t at = 0; at < text.size();) {
        size_t end = std::min(text.find('\n', at), text.size() - 1);
        std::string line = text.substr(at, end - at + 1);
        if (line.find("deprecated") == line.npos) kept += line;
        at = end + 1;
    }
    text = kept;
}

static void LogRun(const std::vector<std::string> &words, const Ran &ran) {
    std::string line;
    for (const std::string &word : words) line += (line.empty() ? "" : " ") + ShArg(word);
    PutLog(line);
    if (!ran.errors.empty()) PutLog(ran.errors.substr(0, ran.errors.find_last_not_of('\n') + 1));
    if (ran.flTimedOut)
        PutLog("(no answer: ended)");
    else if (ran.status)
        PutLog("(status " + std::to_string(ran.status) + ")");
}

static void RunProgram(const std::string &path, const std::vector<std::string> &words, Ran &ran) {
    std::vector<char *> arguments, environment = ChildEnvironment();
    for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC)) return;
    if (pipe2(err, O_CLOEXEC)) {
        close(out[0]), close(out[1]);
        return;
    }
    double end = Now() + ChildSeconds();
    pid_t child = fork();
    if (!child) ExecChild(path.c_str(), arguments.data(), environment.data(), out[1], err[1]);
    close(out[1]), close(err[1]);
    if (child > 0) {
        ran.flStarted = true;
        ran.flTimedOut = !Collect(out[0], err[0], end, ran);
        Reap(child, end, ran);
    }
    close(out[0]), close(err[0]);
}

Ran RunChild(const std::vector<std::string> &words) {
    Ran ran;
    std::string path = FindProgram(words.front());
    if (path.empty())
        ran.errors = Say(SayProgramMissing, words.front());
    else
        RunProgram(path, words, ran);
    DropDeprecated(ran.errors);
    LogRun(words, ran);
    return ran;
}

bool Succeeded(const Ran &ran) {
    return ran.flStarted && !ran.flTimedOut && ran.status == 0;
}

std::string ComplaintOf(const Ran &ran) {
    if (ran.flTimedOut) return Say(SayNoAnswer);
    std::string line = ran.errors.substr(0, ran.errors.find('\n'));
    size_t colon = line.find(": ");
    // "lpadmin: TEXT" speaks of a program that the user never called.
    bool flNamed = line.starts_with("lp") || line.starts_with("cancel: ");
    if (flNamed && colon != line.npos) line.erase(0, colon + 2);
    return line.empty() ? Say(SayCommandFailed, std::to_string(ran.status)) : line;
}
