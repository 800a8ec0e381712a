// Any text as the language table, and any value of LANG, which stands in its first line.
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

static void Require(bool flHolds) {
    if (!flHolds) abort();
}

// The table is a link to a file in memory.
static int TableFile() {
    static int file = memfd_create("fuzz", 0);
    return file;
}

// Made once, removed at the end.
static std::string &ToolDirectory() {
    static std::string path = std::filesystem::temp_directory_path() / "prnfuzz.XXXXXX";
    if (!path.ends_with("XXXXXX")) return path;
    Require(mkdtemp(path.data()) != nullptr);
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(TableFile()), path + "/trans.conf");
    atexit([] { std::filesystem::remove_all(ToolDirectory()); });
    return path;
}

static void WriteTable(const std::string &text) {
    Require(ftruncate(TableFile(), 0) == 0);
    Require(pwrite(TableFile(), text.data(), text.length(), 0) == static_cast<ssize_t>(text.length()));
}

static void Forget(char **text) {
    PutMem(*text);
    *text = nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    pToolPath = ToolDirectory().data();
    std::string text(reinterpret_cast<const char *>(data), size);
    size_t end = std::min(text.find('\n'), text.length());
    WriteTable(text.substr(std::min(end + 1, text.length())));
    setenv("LANG", text.substr(0, end).c_str(), 1);

    const char *language = GetDesiredNLSLang();
    Require(*language && !strpbrk(language, " \t\r\n"));
    if (pNLSTable) Require(!strstr(pNLSTable, "  ") && !strpbrk(pNLSTable, "\t\r"));
    DbTClose(pDrvCoreDB);
    pDrvCoreDB = nullptr;
    Forget(&pNLSLang);
    Forget(&pNLSTable);
    Require(CheckMem() == nullptr);
    return 0;
}
