// The memory manager against the library's heap, on a made and, where there is one, a recorded trace.
#include "bench/Bench.h"
#include "common/MemMgr.h"

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

// One step of a trace, in a file "g ID SIZE", "a ID SIZE" or "p ID".
struct TraceStep {
    char kind;
    int id;
    size_t size;
};

struct Trace {
    std::vector<TraceStep> steps;
    int ids = 0;
};

// ---- a trace as the terminal menus make it

struct TraceMaker {
    Trace trace;
    std::mt19937 random{1};

    int Get(size_t size) {
        trace.steps.push_back({'g', trace.ids, size});
        return trace.ids++;
    }
    void Adjust(int id, size_t size) { trace.steps.push_back({'a', id, size}); }
    void Put(int id) { trace.steps.push_back({'p', id, 0}); }
    size_t Between(size_t low, size_t high) { return low + random() % (high - low + 1); }
    int GetText() { return Get(random() % 8 ? Between(4, 40) : Between(40, 300)); }

    // The table of models and its texts; the lists grow by a name at a time.
    void Start() {
        int list = Get(1), table = Get(300);
        for (size_t models = 1; models <= 120; models++) {
            int path = GetText();
            for (int i = 0; i < 6; i++) GetText();
            Adjust(list, models * 18);
            if (models % 8 == 0) Adjust(table, (models + 8) * 300);
            Put(path);
        }
        for (size_t image : {90000, 30000, 14000, 6000}) Get(image);
    }

    // A menu is built with its value buffers, drawn through short-lived texts, and released.
    void Menu() {
        std::vector<int> held;
        for (size_t items = Between(6, 20); items; items--) {
            held.push_back(GetText());
            if (items % 3 == 0) held.push_back(Get(256));
        }
        for (int draws = 0; draws < 40; draws++) {
            int line = GetText(), format = GetText();
            Put(line);
            Put(format);
        }
        std::shuffle(held.begin(), held.end(), random);
        for (int id : held) Put(id);
    }

    // The output of a command grows in pages, its lines become a list of queues.
    void QueueList() {
        int output = Get(4096), list = Get(1), copy;
        for (size_t pages = 2; pages < 12; pages++) Adjust(output, pages * 4096);
        for (size_t queues = 1; queues <= 150; queues++) Adjust(list, queues * 14);
        copy = Get(150 * 14);
        Put(output);
        Put(copy);
        std::vector<int> records;
        for (int i = 0; i < 150; i++) records.push_back(GetText());
        for (int id : records) Put(id);
        Put(list);
    }
};

static Trace MakeTrace() {
    TraceMaker maker;
    maker.Start();
    for (int visit = 0; visit < 60; visit++) {
        maker.Menu();
        if (visit % 6 == 0) maker.QueueList();
    }
    return maker.trace;
}

static Trace ReadTrace(const char *path) {
    Trace trace;
    TraceStep step{};
    FILE *in = fopen(path, "re");
    if (!in) return trace;
    while (fscanf(in, " %c %d", &step.kind, &step.id) == 2) {
        if (step.kind != 'p' && fscanf(in, "%zu", &step.size) != 1) break;
        trace.steps.push_back(step);
        trace.ids = std::max(trace.ids, step.id + 1);
    }
    fclose(in);
    return trace;
}

// ---- the replay

struct Heap {
    void *(*get)(size_t size);
    void *(*adjust)(void *address, size_t size);
    void (*put)(const void *address);
};

static void FreeConst(const void *address) {
    free(const_cast<void *>(address));
}
static void *GetZero(size_t size) {
    return calloc(1, size + 1);
}

static const Heap managed = {GetMem, AdjustMem, PutMem};
static const Heap library = {malloc, realloc, FreeConst};
static const Heap zeroed = {GetZero, realloc, FreeConst};

// Plays the trace for so many programs at once, so that 4x holds four times as much memory. What is left at
// the end is given back outside the count of operations.
static long Replay(const Trace &trace, const Heap &heap, int scale) {
    size_t ids = static_cast<size_t>(trace.ids);
    std::vector<void *> held(ids * static_cast<size_t>(scale));
    for (const TraceStep &step : trace.steps) {
        void **address = &held[static_cast<size_t>(step.id)];
        for (int copy = 0; copy < scale; copy++, address += ids) {
            if (step.kind == 'p')
                heap.put(std::exchange(*address, nullptr));
            else
                *address = step.kind == 'g' ? heap.get(step.size) : heap.adjust(*address, step.size);
            if (*address) *static_cast<volatile char *>(*address) = 'x';
        }
    }
    for (void *address : held)
        if (address) heap.put(address);
    return static_cast<long>(trace.steps.size()) * scale;
}

static void ReplayRow(const char *what, const Trace &trace, const Heap &yardstick) {
    BenchRow(
        what, [&](int scale) { return Replay(trace, managed, scale); },
        [&](int scale) { return Replay(trace, yardstick, scale); });
}

// Every second of many allocations is given back and taken again, at random places.
static long Churn(const Heap &heap, int scale, size_t most) {
    std::mt19937 random(3);
    std::vector<void *> held(static_cast<size_t>(5000 * scale));
    for (void *&address : held) address = heap.get(1 + random() % most);
    long count = static_cast<long>(held.size()) * 4;
    for (long i = 0; i < count; i++) {
        void *&address = held[random() % held.size()];
        heap.put(address);
        address = heap.get(1 + random() % most);
    }
    for (void *address : held) heap.put(address);
    return count + static_cast<long>(held.size());
}

static void ChurnRow(const char *what, size_t most) {
    BenchRow(
        what, [=](int scale) { return Churn(managed, scale, most); },
        [=](int scale) { return Churn(library, scale, most); });
}

int main() {
    BenchHead();
    Trace made = MakeTrace(), recorded = ReadTrace(BENCH_DIR "/traces/menu.trace");
    ReplayRow("menu trace, made: GetMem | malloc", made, library);
    ReplayRow("menu trace, made: GetMem | calloc", made, zeroed);
    if (!recorded.steps.empty()) ReplayRow("menu trace, recorded: GetMem | malloc", recorded, library);
    ChurnRow("5000 held, 1 to 31 bytes: GetMem | malloc", 31);
    ChurnRow("5000 held, 1 to 400 bytes: GetMem | malloc", 400);
    return 0;
}
