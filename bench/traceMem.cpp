// Records what a program asks of the memory manager, for MemBench: linked into it with the manager's
// operations wrapped, it writes "g ID SIZE", "a ID SIZE" and "p ID" lines to the file that PRN_TRACE_MEM
// names. To record the menus put prndeckTrace into a tool directory, start it there as prndeck is started,
// and go through the menus.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

#define GETMEM(prefix)    prefix##_Z6GetMemm
#define PUTMEM(prefix)    prefix##_Z6PutMemPKv
#define ADJUSTMEM(prefix) prefix##_Z9AdjustMemPvm

extern "C" {
void *GETMEM(__real_)(size_t size);
void PUTMEM(__real_)(const void *address);
void *ADJUSTMEM(__real_)(void *address, size_t size);
void *GETMEM(__wrap_)(size_t size);
void PUTMEM(__wrap_)(const void *address);
void *ADJUSTMEM(__wrap_)(void *address, size_t size);
}

// Never released: the program may end in the middle of anything.
static FILE *TraceFile() {
    static FILE *const out = [] {
        const char *path = getenv("PRN_TRACE_MEM");
        FILE *opened = path ? fopen(path, "we") : nullptr;
        if (path && !opened) perror(path);
        return opened;
    }();
    return out;
}

static std::unordered_map<const void *, int> &TraceIds() {
    static auto *const ids = new std::unordered_map<const void *, int>;
    return *ids;
}

static void TraceGet(const void *address, size_t size) {
    static int last = 0;
    if (!address || !TraceFile()) return;
    TraceIds()[address] = last;
    fprintf(TraceFile(), "g %d %zu\n", last++, size);
}

void *GETMEM(__wrap_)(size_t size) {
    void *address = GETMEM(__real_)(size);
    TraceGet(address, size);
    return address;
}

// An address that is not the manager's, or not any more, leaves no line.
void PUTMEM(__wrap_)(const void *address) {
    auto found = TraceIds().find(address);
    PUTMEM(__real_)(address);
    if (found == TraceIds().end()) return;
    fprintf(TraceFile(), "p %d\n", found->second);
    TraceIds().erase(found);
}

void *ADJUSTMEM(__wrap_)(void *address, size_t size) {
    auto found = TraceIds().find(address);
    void *result = ADJUSTMEM(__real_)(address, size);
    if (found == TraceIds().end()) {
        TraceGet(result, size);
        return result;
    }
    int id = found->second;
    if (size && !result) return nullptr; // failed: the old one stands
    if (size)
        fprintf(TraceFile(), "a %d %zu\n", id, size);
    else
        fprintf(TraceFile(), "p %d\n", id);
    TraceIds().erase(found);
    if (result) TraceIds()[result] = id;
    return result;
}
