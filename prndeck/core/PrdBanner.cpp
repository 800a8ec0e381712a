// Banner titles: reader and writer of the text.
#include "prndeck/core/PrdBanner.h"

#include "common/Token.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "print/QueType.h"
#include "prndeck/core/PrdQueLine.h"

#include <algorithm>
#include <cstring>
#include <string_view>

const int aBannerFontSize[BANNER_SIZES] = {8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, 34, 36, 38, 40};
const char pBannerFontSizes[] = ",8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static_assert(BANNER_DEFAULT_SIZE < BANNER_SIZES);

// ---- The text

void SetBannerRow(BannerRow *row, std::string_view title, int size) {
    size_t count = std::min<size_t>(title.size(), BANNER_TITLE - 1);
    memcpy(row->title, title.data(), count);
    row->title[count] = '\0';
    row->size = size;
}

void ReadBannerText(const char *text, BannerRow rows[BANNER_ROWS]) {
    for (int i = 0; i < BANNER_ROWS; i++) SetBannerRow(&rows[i], "", BANNER_DEFAULT_SIZE);
    std::string_view rest(text ? text : "");
    for (BannerTextLine line; TakeBannerLine(rest, &line);) {
        int size = FindToken(std::string(line.size).c_str(), pBannerFontSizes);
        SetBannerRow(&rows[line.row], line.title, std::max(size - 1, 0));
    }
}

std::string MakeBannerText(const BannerRow rows[BANNER_ROWS]) {
    std::string text;
    for (int i = 0; i < BANNER_ROWS; i++) {
        const char *title = rows[i].title;
        if (!*title) continue;
        int size = aBannerFontSize[std::clamp(rows[i].size, 0, BANNER_SIZES - 1)];
        std::string line = ".h" + std::to_string(i + 1) + " " + std::to_string(size) + " " + title;
        std::replace(line.begin(), line.end(), '\n', ' ');
        text += line + "\n";
    }
    return text;
}

static bool WriteBannerFile(const char *text) {
    FILE *out = OpenFileF(nullptr, "wt", ERR_WARN, "%s/%s", pToolPath, BannerFile);
    if (!out) return false;
    bool written = fputs(text, out) >= 0;
    if (fclose(out) == 0 && written) return true;
    errormsg("can't write to %s/%s", pToolPath, BannerFile);
    return false;
}

int PutBannerFile(const char *text) {
    if (*text && WriteBannerFile(text)) return 1;
    return DeleteWorkFile(BannerFile) && !*text;
}

std::string PutDefaultBanner(const char *text) {
    std::string told;
    RunQueLine(MakeDefaultBannerLine(*text), &told);
    DeleteWorkFile(BannerFile);
    return told;
}

// ---- What a model allows

static constexpr BannerRule Unsaid = {BANNER_UNSAID, BANNER_UNSAID, BANNER_UNSAID};
static constexpr BannerRule Barred = {.allowed = 0, .value = 0, .setup = 0};
static constexpr BannerRule Free = {.allowed = 1, .value = 1, .setup = 1};

static constexpr char AllList[] = "DisableCustomBanner";
static constexpr char ServerList[] = "W2PSDisableCustomBanner";

// True if the list bars the model; one that is there and doesn't name it frees it.
static bool TestBarred(BannerRule *rule, const char *key, const char *base) {
    int listed = TestModelList(key, base);
    if (listed >= 0) *rule = listed ? Barred : Free;
    return listed > 0;
}

BannerRule GetBannerRule(const char *base, int printingModel) {
    BannerRule rule = Unsaid;
    if (TestBarred(&rule, AllList, base)) return rule;
    if (printingModel == PM_SERVER && TestBarred(&rule, ServerList, base)) return rule;
    int off = TestModelList("DefaultCustomBannerOff", base);
    if (off >= 0) rule.value = !off;
    if (off > 0) return rule;
    int noSetup = TestModelList("DisableCustomBannerSetup", base);
    if (noSetup >= 0) rule.setup = !noSetup;
    return rule;
}

BannerRule GetTypeBannerRule(const char *base, int type) {
    int server = TestModelList(ServerList, base), all = TestModelList(AllList, base);
    if (server < 0 || all < 0) return Unsaid;
    int listed = type == QUEUE_PRINTER_HOST || type == QUEUE_SERVER ? server : all;
    return listed ? Barred : Free;
}
