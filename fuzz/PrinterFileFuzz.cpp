// Any text as 77yyprinters, and its first line as that of ./.config: what is found is whole, or the tool
// ends.
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "fuzz/FuzzDir.h"
#include "print/prnoutbase.h"

#include <cstdint>
#include <cstring>

static int flFound;

static void CheckPrinter() {
    if (!flFound) return;
    Require(pPrinterQueue && *pPrinterQueue && pPrinterName && pPPDFile && *pPPDFile && pConnType &&
            *pConnType);
    Require(pPrinterPath && pPpdToolPath && !strchr(pPrinterName, ','));
    PutMem(GetSpoolPath(pPPDFile, GenDirName(pPrinterPath)));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzTool here;
    std::string text(reinterpret_cast<const char *>(data), size), tool = FuzzDirectory() + "/tool";
    WriteFuzzFile("77yyprinters", text);
    WriteFuzzFile("tool/.config", text);
    pToolPath = tool.data();
    if (Try([] { flFound = FindPrinter("q1"); })) CheckPrinter();
    if (flFound) Require(strcmp(pPrinterQueue, "q1") == 0);
    if (Try([] { flFound = FindPrinter(nullptr); })) CheckPrinter();
    if (flFound) Require(pDefaultPrinterQueue != nullptr);
    if (Try([] { flFound = GetConfig(CONFIG_READ | CONFIG_NO_EXIT) == 0; })) CheckPrinter();
    CloseInputFile();
    if (pToolPath != tool.data()) PutMem(pToolPath);
    pToolPath = nullptr;
    flFound = 0;
    Require(CheckMem() == nullptr);
    return 0;
}
