// What the targets of the print tools' files need: a directory of their own, and calls that may end the
// process.
#pragma once

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>

inline void Require(bool flHolds) {
    if (!flHolds) abort();
}

// Made once, removed at the end.
inline const std::string &FuzzDirectory() {
    static std::string path;
    if (!path.empty()) return path;
    path = std::filesystem::temp_directory_path() / "prnfuzz.XXXXXX";
    Require(mkdtemp(path.data()) != nullptr);
    std::filesystem::create_directories(path + "/tool");
    atexit([] { std::filesystem::remove_all(FuzzDirectory()); });
    return path;
}

// The directory's tool is the current one while this lives; the fuzzer reads its corpus from where it was.
class FuzzTool {
public:
    FuzzTool() : saved(std::filesystem::current_path()) {
        std::filesystem::current_path(FuzzDirectory() + "/tool");
    }
    ~FuzzTool() { std::filesystem::current_path(saved); }
    FuzzTool(const FuzzTool &) = delete;
    FuzzTool &operator=(const FuzzTool &) = delete;

private:
    std::filesystem::path saved;
};

inline void WriteFuzzFile(const std::string &name, const std::string &text) {
    FILE *out = fopen((FuzzDirectory() + "/" + name).c_str(), "we");
    Require(out && fwrite(text.data(), 1, text.size(), out) == text.size() && fclose(out) == 0);
}

inline std::string ReadFuzzFile(const std::string &name) {
    std::string text;
    FILE *in = fopen((FuzzDirectory() + "/" + name).c_str(), "re");
    for (int ch; in && (ch = getc(in)) != EOF;) text += static_cast<char>(ch);
    if (in) fclose(in);
    return text;
}

inline jmp_buf ExitPlace;
inline bool flExitCaught;

// Takes the place of the library's while a call is tried. Nothing with a destructor may lie on the way out.
extern "C" [[gnu::used]] inline void exit(int status) noexcept {
    if (flExitCaught) longjmp(ExitPlace, 1);
    reinterpret_cast<void (*)(int)>(dlsym(RTLD_NEXT, "exit"))(status);
    abort();
}

// True if the call returned, false if it ended the process.
inline bool Try(void (*call)()) {
    flExitCaught = true;
    bool flReturned = setjmp(ExitPlace) == 0;
    if (flReturned) call();
    flExitCaught = false;
    return flReturned;
}
