// Any text as a catalogue: as a source, what the compiler makes of it prints as a source that makes the same
// file; as a message, no conversion in it reaches an argument that is not there.
#define main CompilerMain
#include "tools/mkcat.cpp"
#undef main

#include "common/MemMgr.h"
#include "common/NlsUtils.h"

#include <sys/mman.h>
#include <unistd.h>

static void Require(bool flHolds) {
    if (!flHolds) abort();
}

// Empty if the source has faults.
static std::string CompileText(const std::string &source) {
    Compiler compiler;
    compiler.name = "fuzz";
    compiler.lines = SplitLines(source);
    ReadSource(&compiler);
    return compiler.faults > 0 ? "" : BuildImage(compiler.records);
}

static std::string DumpText(const std::string &image) {
    static int file = memfd_create("fuzz", 0);
    Require(ftruncate(file, 0) == 0 &&
            pwrite(file, image.data(), image.length(), 0) == static_cast<ssize_t>(image.length()));
    DbTHandle *handle =
        DbTOpen(("/proc/./self/fd/" + std::to_string(file)).c_str(), DBT_NO_RELOAD | DBT_NO_WRITE);
    std::string out;
    Require(handle && DumpImage("fuzz", handle, &out) == 0);
    DbTClose(handle);
    return out;
}

static void Format(const std::string &text) {
    const char *t = text.c_str();
    NlsFmt(t, "");
    NlsFmt(t, "sss", "x", nullptr, "yy");
    NlsFmt(t, "is", 1, "x");
    NlsFmt(t, "ccx", 'a', 'b', 3);
    NlsFmt(t, "ff", 1e300, -0.5);
    NlsFmt(t, "LL", 1e4000L, 2.0L);
    static char out[100];
    NlsGuiStrCvt(t, 7, out, sizeof(out));
    NlsCalcStrVal(t);
    std::string copy = t;
    FindRedirect(copy.data());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (pFaults == stderr) pFaults = fopen("/dev/null", "w");
    std::string text(reinterpret_cast<const char *>(data), size);
    std::string image = CompileText(text);
    if (!image.empty()) Require(CompileText(DumpText(image)) == image);
    Format(text);
    return 0;
}
