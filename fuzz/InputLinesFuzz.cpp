// Any file through the two line readers: they end, stay within their buffers and count what they use.
#include "common/utils.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

static void Require(bool flTrue) {
    if (!flTrue) abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    int fd = memfd_create("input", MFD_CLOEXEC);
    Require(fd >= 0 && write(fd, data, size) == static_cast<ssize_t>(size));
    std::string path = "/proc/self/fd/" + std::to_string(fd);
    size_t lines = 0;
    Require(OpenInputFile(path.c_str(), ERR_SILENT) == 1);
    while (GetFileLine()) {
        Require(++lines <= size && strlen(LineBuf) < LINEBUF_SIZE && LineLen < LINEBUF_SIZE);
        Require(FileStatus == FILE_OPEN);
    }
    Require(FileStatus == FILE_ENDED && !pIn);

    Require(OpenInputFile(path.c_str(), ERR_SILENT) == 1);
    size_t used = 0;
    while (int count = GetLine()) {
        used += static_cast<size_t>(count);
        Require(used <= size && count == LineCnt && strlen(Line) < LINE_SIZE && !strpbrk(Line, "\r\n"));
    }
    CloseInputFile();
    close(fd);
    return 0;
}
