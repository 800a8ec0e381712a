// Scratch directories, captured output, forked runs and the stand-ins for starting processes.
#include "tests/lib/Capture.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

enum { CHILD_SECONDS = 60 };

namespace fs = std::filesystem;

Scratch::Scratch() {
    std::string name = fs::temp_directory_path() / "prntest.XXXXXX";
    if (!mkdtemp(name.data())) throw std::runtime_error("mkdtemp " + name);
    path = name;
}

Scratch::~Scratch() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

std::string Scratch::Write(const std::string &name, const std::string &text) const {
    std::string file = Path(name);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream out(file, std::ios::binary);
    if (!(out << text) || !out.flush()) throw std::runtime_error("write " + file);
    return file;
}

std::string Scratch::MakeDir(const std::string &name) const {
    fs::create_directories(Path(name));
    return Path(name);
}

std::string ReadWhole(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string TakeText(char *managed) {
    std::string text = managed ? managed : "(null)";
    PutMem(managed);
    return text;
}

static int NewCatcher(const std::string &text = "") {
    int fd = memfd_create("capture", MFD_CLOEXEC);
    if (fd < 0) throw std::runtime_error("memfd_create");
    if (pwrite(fd, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("pwrite");
    return fd;
}

static std::string Caught(int fd) {
    std::string text;
    char buffer[4096];
    for (ssize_t count; (count = pread(fd, buffer, sizeof(buffer), static_cast<off_t>(text.size()))) > 0;)
        text.append(buffer, static_cast<size_t>(count));
    return text;
}

Capture::Capture() {
    fflush(stdout);
    for (int i = 0; i < 2; i++) {
        saved[i] = dup(i + 1);
        caught[i] = NewCatcher();
        dup2(caught[i], i + 1);
    }
}

Capture::~Capture() {
    fflush(stdout);
    for (int i = 0; i < 2; i++) {
        dup2(saved[i], i + 1);
        close(saved[i]);
        close(caught[i]);
    }
}

std::string Capture::Out() {
    fflush(stdout);
    return Caught(caught[0]);
}

std::string Capture::Err() {
    fflush(stderr);
    return Caught(caught[1]);
}

[[noreturn]] static void RunChild(const std::function<void()> &function, const int (&fds)[3]) {
    for (int i = 0; i < 3; i++) dup2(fds[i], i);
    setvbuf(stdin, nullptr, _IONBF, 0);
    alarm(CHILD_SECONDS);
    function();
    fflush(nullptr);
    _exit(0);
}

ChildEnd RunForked(const std::function<void()> &function, const std::string &input) {
    const int fds[3] = {NewCatcher(input), NewCatcher(), NewCatcher()};
    fflush(nullptr);
    pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork");
    if (child == 0) RunChild(function, fds);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ChildEnd end = {WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status), Caught(fds[1]),
                    Caught(fds[2])};
    for (int fd : fds) close(fd);
    return end;
}

static SystemSpy *pSpy;

static int SpySystem(const char *line) {
    pSpy->lines.push_back(line);
    if (pSpy->error) errno = pSpy->error;
    return pSpy->result;
}

static FILE *SpyPopen(const char *line, const char *) {
    pSpy->asked.push_back(line);
    for (const auto &[part, answer] : pSpy->answers)
        if (pSpy->asked.back().find(part) != std::string::npos) return fdopen(NewCatcher(answer), "r");
    return fdopen(NewCatcher(), "r");
}

static unsigned SpySleep(unsigned seconds) {
    pSpy->slept += seconds;
    return 0;
}

SystemSpy::SystemSpy() : savedSystem(pSystem), savedPopen(pPopen), savedPclose(pPclose), savedSleep(pSleep) {
    pSpy = this;
    pSystem = SpySystem;
    pPopen = SpyPopen;
    pPclose = fclose;
    pSleep = SpySleep;
}

SystemSpy::~SystemSpy() {
    pSystem = savedSystem;
    pPopen = savedPopen;
    pPclose = savedPclose;
    pSleep = savedSleep;
    pSpy = nullptr;
}
