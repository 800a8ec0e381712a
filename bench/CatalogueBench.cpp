// Texts of a catalogue: the fetch against the linear walk over the image that it replaces, and the reload of
// a file.
#include "bench/Bench.h"
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

enum { TEXTS = 2000, SETS = 20, FETCHES = 2000 };

// A catalogue of TEXTS * scale messages in a directory of its own, which the last one removes.
struct Catalogue {
    std::string path;
    DbTHandle *handle = nullptr;
};

static std::string &Directory() {
    static std::string path = std::filesystem::temp_directory_path() / "prnbench.XXXXXX";
    if (path.ends_with("XXXXXX") && !mkdtemp(path.data())) exit(1);
    return path;
}

static void MakeCatalogue(Catalogue *catalogue, int scale) {
    catalogue->path = Directory() + "/" + std::to_string(scale) + ".xdb";
    DbTHandle *made = DbTOpen(catalogue->path.c_str(), DBT_NO_RELOAD | DBT_NO_WRITE);
    std::mt19937 random(1);
    for (int i = 0; i < TEXTS * scale; i++) {
        std::string key = std::to_string(1 + i % SETS) + "_" + std::to_string(1 + i / SETS);
        std::string text(5 + random() % 60, 'x');
        if (!DbmTPutRecord(made, key.c_str(), text.c_str(), text.length() + 1)) exit(1);
    }
    UpdateHeader(made);
    FILE *out = fopen(catalogue->path.c_str(), "wb");
    if (!out || fwrite(made->image, 1, made->size, out) != made->size || fclose(out) != 0) exit(1);
    DbTClose(made);
    catalogue->handle = DbTOpen(catalogue->path.c_str(), DBT_NO_WRITE | 1); // as the program opens it
    if (!catalogue->handle || catalogue->handle->type != DBT_HEADER) exit(1);
}

static const Catalogue &TakeCatalogue(int scale) {
    static Catalogue made[5];
    if (!made[scale].handle) MakeCatalogue(&made[scale], scale);
    return made[scale];
}

struct Number {
    int set, number;
};

static Number NextNumber(std::mt19937 *random, int scale) {
    auto i = static_cast<int>((*random)() % static_cast<unsigned>(TEXTS * scale));
    return {1 + i % SETS, 1 + i / SETS};
}

static long FetchOurs(int scale) {
    DbTHandle *handle = TakeCatalogue(scale).handle;
    std::mt19937 random(2);
    char text[NLS_MENU_TEXT];
    for (int i = 0; i < FETCHES; i++) {
        Number n = NextNumber(&random, scale);
        NlsFetchString(handle, text, sizeof(text), NLS_FETCH_NUMBER, n.set, n.number);
        if (text[0] != 'x') exit(1);
    }
    return FETCHES;
}

// What a fetch without an index does: every key of the right length is made plain and compared.
static bool WalkTo(DbTHandle *handle, const char *key, char *text, size_t capacity) {
    char there[64];
    size_t K = strlen(key) + 1;
    DbTWalk walked;
    for (int i = 0; WalkDbTRecords(handle, &walked, i); i = 1) {
        if (walked.K != K) continue;
        DbmTGetData(handle, there, K);
        if (memcmp(there, key, K) != 0) continue;
        size_t size = walked.L - K - DBM_WORD;
        if (size <= capacity) DbmTGetData(handle, text, size);
        return true;
    }
    return false;
}

static long FetchYardstick(int scale) {
    DbTHandle *handle = TakeCatalogue(scale).handle;
    std::mt19937 random(2);
    char text[NLS_MENU_TEXT], key[64];
    for (int i = 0; i < FETCHES; i++) {
        Number n = NextNumber(&random, scale);
        DbTUpDate(handle);
        snprintf(key, sizeof(key), "%d_%d", n.set, n.number);
        if (!WalkTo(handle, key, text, sizeof(text))) exit(1);
    }
    return FETCHES;
}

// A fetch of one text from a file just opened: no index stands in its way.
static long OpenOurs(int scale) {
    const std::string &path = TakeCatalogue(scale).path;
    for (int i = 0; i < 20; i++) {
        DbTHandle *handle = DbTOpen(path.c_str(), DBT_NO_RELOAD);
        if (DbmTGetRecordSize(handle, "10_50") == 0) exit(1);
        DbTClose(handle);
    }
    return 20;
}

static long OpenYardstick(int scale) {
    const std::string &path = TakeCatalogue(scale).path;
    char text[NLS_MENU_TEXT];
    for (int i = 0; i < 20; i++) {
        DbTHandle *handle = DbTOpen(path.c_str(), DBT_NO_RELOAD);
        if (!WalkTo(handle, "10_50", text, sizeof(text))) exit(1);
        DbTClose(handle);
    }
    return 20;
}

int main() {
    BenchHead();
    BenchRow("fetch, 2000 texts: index | linear walk", FetchOurs, FetchYardstick);
    BenchRow("open, 1 fetch, 2000 texts: once | walk", OpenOurs, OpenYardstick);
    std::filesystem::remove_all(Directory());
    return 0;
}
