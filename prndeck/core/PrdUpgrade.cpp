// Signatures of firmware files.
#include "prndeck/core/PrdUpgrade.h"

#include "common/Token.h"
#include "common/Words.h"

#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <string>
#include <unistd.h>

static constexpr char WordDelims[] = " ,\t\n\r";
static constexpr char FlashDelims[] = " ,\t\n\r=";
static constexpr std::string_view PsFlash = "/download";
static constexpr std::string_view pMilanFlash = "MiLAN Firmware Update, ";
// The words in front of a model. An equals sign that joins two of them is a delimiter of the words.
static constexpr std::string_view paPJLFlash[] = {"@PJL", "ENTER", "LANGUAGE", "=", "XFLASH"};
enum { FLASH_START, FLASH_ENTER, FLASH_COUNT = std::size(paPJLFlash) };

// Where the words go on behind one of them. A file may repeat "@PJL" before it comes to the point.
static size_t FollowFlash(size_t place, std::string_view word, char del) {
    if (word == paPJLFlash[place]) return place + (del == '=' ? 2 : 1);
    return place == FLASH_ENTER && word == paPJLFlash[FLASH_START] ? FLASH_ENTER : FLASH_START;
}

static UpgradeResult TestPjl(std::string_view models, std::string_view head) {
    size_t start = head.find(paPJLFlash[FLASH_START]);
    if (start == head.npos) return UPGRADE_INVALID;
    std::string text(head.substr(start));
    char token[TOKEN_SIZE];
    TokenScan scan = {
        .position = text.c_str(), .token = token, .capacity = sizeof token, .del = 0, .flLine = false};
    for (size_t place = FLASH_START; place < FLASH_COUNT; place = FollowFlash(place, token, scan.del))
        if (ScanToken(&scan, FlashDelims) == SCAN_END) return UPGRADE_INVALID;
    if (ScanToken(&scan, FlashDelims) == SCAN_END) return UPGRADE_OTHER_MODEL;
    std::string_view found = token;
    for (std::string_view model; TakeWord(models, WordDelims, model);)
        if (found.starts_with(model)) return UPGRADE_FITS;
    return UPGRADE_OTHER_MODEL;
}

UpgradeResult TestUpgrade(std::string_view item, std::string_view head) {
    std::string_view kind;
    TakeWord(item, WordDelims, kind);
    if (kind == "pjl") return TestPjl(item, head);
    if (kind == "ps") return head.find(PsFlash) != head.npos ? UPGRADE_FITS : UPGRADE_INVALID;
    if (kind == "milan") return head.starts_with(pMilanFlash) ? UPGRADE_FITS : UPGRADE_INVALID;
    return UPGRADE_UNSUPPORTED;
}

int ReadUpgradeHead(const char *path, char *buffer) {
    int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return -1;
    ssize_t count = read(file, buffer, UPGRADE_HEAD);
    close(file);
    return static_cast<int>(count);
}
