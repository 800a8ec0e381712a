// A page of the manual: read, laid out, and every link of it followed.
#include "help/html.h"

#include "common/MemMgr.h"

#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string content(reinterpret_cast<const char *>(data), size);
    FileIndex = 0;
    CurrentFile = 0;
    pCurrentPage = nullptr;
    if (!freopen("/dev/null", "w", stdout)) abort();
    if (!HtmlHelp("fuzz.html", content.c_str())) return 0;
    HtmlFile *file = aFile[0];
    for (HtmlPage *page = file->Pages; page; page = page->next) {
        for (int i = 0; i < page->AnchorCount; i++) {
            pCurrentPage = page;
            CurrentFile = 0;
            HtmlProcessLink(page->Anchors[i]->Start);
        }
    }
    // Loaded pages stay for the life of the process; here each input is a process of its own.
    while (FileIndex > 0) FreeHtmlFile(aFile[--FileIndex]);
    return 0;
}
