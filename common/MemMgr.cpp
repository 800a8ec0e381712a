// Managed memory: blocks, nodes and their check; the duplicators of text stand in MemMgrStr.cpp.
#include "common/MemMgr.h"

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#define MEM_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MEM_POISON 1
#endif
#endif
#ifdef MEM_POISON
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#endif

static constexpr int MAT_WORD = 64; // MAT characters that one step of the search looks at
static_assert(MEM_BLOCK_NODES % MAT_WORD == 0);

MemBlock *pMemB = nullptr;
const char OutOfMem[] = "Unable to allocate memory";
int fdZero = -1;
int (*pMemOpen)(const char *, int, ...) = open;
void *(*pMemMap)(void *, size_t, int, int, int, off_t) = mmap;

static MemBlock *pFoundBlock = nullptr; // the last hit of FindBlock, forgotten when a block leaves the chain

// ---- what the sanitizer is told

#ifdef MEM_POISON
static void HideMem(const char *data, size_t size) {
    __asan_poison_memory_region(data, size);
}
static void ShowMem(const char *data, size_t size) {
    __asan_unpoison_memory_region(data, size);
}
// Addresses of heap memory that are kept in managed memory count as reachable.
static void AddRootMem(const void *region, size_t size) {
    __lsan_register_root_region(region, size);
}
static void DropRootMem(const void *region, size_t size) {
    __lsan_unregister_root_region(region, size);
}
// Bytes of an allocation that may be read: its unasked tail is hidden.
static int ShownMem(char *data, int size) {
    const void *hidden = __asan_region_is_poisoned(data, static_cast<size_t>(size));
    return hidden ? static_cast<int>(static_cast<const char *>(hidden) - data) : size;
}
#else
static void HideMem(const char *, size_t) {}
static void ShowMem(const char *, size_t) {}
static void AddRootMem(const void *, size_t) {}
static void DropRootMem(const void *, size_t) {}
static int ShownMem(char *, int size) {
    return size;
}
#endif

// Shows the first size bytes and one more of an allocation that has room for rounded bytes.
static void ShowMemSize(const char *data, size_t size, size_t rounded) {
    ShowMem(data, rounded);
    HideMem(data + size + 1, rounded - size - 1);
}

// ---- blocks

static void *ReportOutOfMem() {
    fprintf(stderr, "ERROR: %s\n", OutOfMem);
    errno = ENOMEM;
    return nullptr;
}

static size_t MapSize(size_t size) {
    size_t page = static_cast<size_t>(getpagesize());
    return (size / page + 1) * page;
}

void *MapBlock(size_t size) {
    size_t mapped = MapSize(size);
    if (fdZero < 0) fdZero = pMemOpen("/dev/zero", O_RDWR | O_CLOEXEC);
    if (fdZero < 0) return malloc(mapped);
    void *region = pMemMap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE, fdZero, 0);
    return region == MAP_FAILED ? nullptr : region;
}

static void UnmapBlock(void *region, size_t size, bool flMalloc) {
    if (flMalloc)
        free(region);
    else
        munmap(region, MapSize(size));
}

// A region as MapBlock gives it, all zero: only malloc's memory needs clearing.
static void *MapZeroBlock(size_t size, uint8_t *pFromMalloc) {
    void *region = MapBlock(size);
    *pFromMalloc = fdZero < 0;
    if (region && *pFromMalloc) memset(region, 0, size);
    return region;
}

MemBlock *GetNewBlock(size_t size) {
    uint8_t recordFromMalloc = 0, dataFromMalloc = 0;
    if (size < MEM_BLOCK_SIZE) size = MEM_BLOCK_SIZE;
    if (size > INT32_MAX) return static_cast<MemBlock *>(ReportOutOfMem());
    auto block = static_cast<MemBlock *>(MapZeroBlock(sizeof(MemBlock), &recordFromMalloc));
    if (!block) return static_cast<MemBlock *>(ReportOutOfMem());
    auto data = static_cast<char *>(MapZeroBlock(size, &dataFromMalloc));
    if (!data) {
        UnmapBlock(block, sizeof(MemBlock), recordFromMalloc);
        return static_cast<MemBlock *>(ReportOutOfMem());
    }
    memset(block->MAT, MEM_FREE, MEM_BLOCK_NODES);
    PushBlock(block);
    block->size = static_cast<int32_t>(size);
    block->data = data;
    block->freeCount = MEM_BLOCK_NODES;
    block->recordFromMalloc = recordFromMalloc;
    block->dataFromMalloc = dataFromMalloc;
    AddRootMem(block, sizeof(MemBlock));
    AddRootMem(data, size);
    HideMem(data, size);
    return block;
}

static bool HoldsAddress(const MemBlock *block, const void *address) {
    uintptr_t offset = reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(block->data);
    return offset < static_cast<uintptr_t>(block->size);
}

MemBlock *FindBlock(const void *address) {
    if (pFoundBlock && HoldsAddress(pFoundBlock, address)) return pFoundBlock;
    for (MemBlock *block = pMemB; block; block = block->next)
        if (HoldsAddress(block, address)) return pFoundBlock = block;
    return nullptr;
}

void FreeBlock(MemBlock *block) {
    if (!block) return;
    PopBlock(block);
    size_t size = static_cast<size_t>(block->size);
    DropRootMem(block, sizeof(MemBlock));
    DropRootMem(block->data, size);
    ShowMem(block->data, size);
    UnmapBlock(block->data, size, block->dataFromMalloc);
    UnmapBlock(block, sizeof(MemBlock), block->recordFromMalloc);
}

void PushBlock(MemBlock *block) {
    MemBlock *tail = pMemB;
    while (tail && tail->next) tail = tail->next;
    block->next = nullptr;
    block->previous = tail;
    if (tail)
        tail->next = block;
    else
        pMemB = block;
}

MemBlock *PopBlock(MemBlock *block) {
    if (!block) return nullptr;
    bool flHead = block == pMemB;
    if (block->next) block->next->previous = block->previous;
    if (block->previous) block->previous->next = block->next;
    if (flHead) pMemB = block->next;
    if (block == pFoundBlock) pFoundBlock = nullptr;
    block->next = block->previous = nullptr;
    return flHead ? pMemB : block;
}

// ---- nodes

int TestMAT(const char *mat, char mark, int count) {
    for (int i = 0; i < count; i++)
        if (mat[i] != mark || mat[i] == '\0') return 0;
    return 1;
}

// The free nodes among 64, the first one as the lowest bit. MEM_FREE and MEM_USED differ in the bit of value
// 0x20; the product gathers the eight such bits of a word in its top byte.
static uint64_t FreeBits(const char *mat) {
    static_assert((MEM_FREE & 0x20) != 0 && (MEM_USED & 0x20) == 0);
    uint64_t bits = 0;
#pragma GCC unroll 8
    for (int i = 0; i < MAT_WORD; i += 8) {
        uint64_t word;
        memcpy(&word, mat + i, sizeof(word));
        if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
        bits |= (((word >> 5) & 0x0101010101010101u) * 0x0102040810204080u >> 56) << i;
    }
    return bits;
}

// Where count ones stand side by side, as a mask of their lowest places.
static uint64_t RunBits(uint64_t bits, int count) {
    for (int have = 1; have < count && bits;) {
        int step = have < count - have ? have : count - have;
        bits &= bits >> step;
        have += step;
    }
    return bits;
}

// The lowest index with count free nodes from it on, or -1; none is known to start before from.
static int FindFreeNodes(const char *mat, int count, int from) {
    int first = from / MAT_WORD * MAT_WORD, before = 0; // before: free nodes right in front of the word
    for (int i = first; i < MEM_BLOCK_NODES; i += MAT_WORD) {
        uint64_t bits = FreeBits(mat + i);
        if (i == first) bits &= ~uint64_t{0} << (from - first);
        if (before + std::countr_one(bits) >= count) return i - before;
        if (bits == ~uint64_t{0}) {
            before += MAT_WORD;
            continue;
        }
        uint64_t runs = count <= MAT_WORD ? RunBits(bits, count) : 0;
        if (runs) return i + std::countr_zero(runs);
        before = std::countl_one(bits);
    }
    return -1;
}

// FindFreeNodes for a block that remembers what it found, on the promise that the nodes are used at once.
static int FindRoom(MemBlock *block, int count) {
    int run = count < MEM_RUNS ? count : MEM_RUNS - 1;
    if (block->freeCount < count || block->from[run] >= MEM_BLOCK_NODES) return -1;
    if (block->missedCount && block->missedCount <= count) return -1;
    int index = FindFreeNodes(block->MAT, count, block->from[run]);
    if (index < 0) block->missedCount = static_cast<int16_t>(count);
    int next = index < 0 ? MEM_BLOCK_NODES : index + count;
    for (int longer = count; longer < MEM_RUNS; longer++)
        if (block->from[longer] < next) block->from[longer] = static_cast<int16_t>(next);
    return index;
}

// The free nodes directly in front of an index and from it on, as far as they matter to a block's memory.
static int FreeInFront(const char *mat, int index) {
    int count = 0;
    while (count < MEM_RUNS && count < index && mat[index - count - 1] == MEM_FREE) count++;
    return count;
}

static int FreeFrom(const char *mat, int index) {
    int count = 0;
    while (count < MEM_RUNS && mat[index + count] == MEM_FREE) count++; // the MAT's NUL is not free
    return count;
}

// Freed nodes join the free ones beside them: only runs that are no longer than all of them are new.
static void ForgetRoom(MemBlock *block, int index, int count) {
    int front = FreeInFront(block->MAT, index), behind = FreeFrom(block->MAT, index + count);
    int length = front + count + behind;
    bool flMore = front == MEM_RUNS || behind == MEM_RUNS;
    if (flMore || length >= block->missedCount) block->missedCount = 0;
    int16_t place = static_cast<int16_t>(index - front);
    for (int run = 1; run < MEM_RUNS && run <= length; run++)
        if (block->from[run] > place) block->from[run] = place;
}

// Marks count nodes as used and clears them.
static void UseNodes(MemBlock *block, int index, int count) {
    size_t size = static_cast<size_t>(count) * MEM_NODE_SIZE;
    memset(block->MAT + index, MEM_USED, static_cast<size_t>(count));
    block->freeCount -= count;
    ShowMem(block->data + index * MEM_NODE_SIZE, size);
    memset(block->data + index * MEM_NODE_SIZE, 0, size);
}

static void FreeNodes(MemBlock *block, int index, int count) {
    memset(block->MAT + index, MEM_FREE, static_cast<size_t>(count));
    block->freeCount += count;
    ForgetRoom(block, index, count);
    HideMem(block->data + index * MEM_NODE_SIZE, static_cast<size_t>(count) * MEM_NODE_SIZE);
}

static char *SetNode(MemBlock *block, int index, int count) {
    char *address = block->data + index * MEM_NODE_SIZE;
    block->nodes[index].count = static_cast<uint16_t>(count);
    block->nodes[index].address = address;
    return address;
}

static int NodeIndex(const MemBlock *block, const void *address) {
    return static_cast<int>((static_cast<const char *>(address) - block->data) / MEM_NODE_SIZE);
}

// ---- the manager

// There is always room for a NUL behind a text of the size.
static size_t RoundMemSize(size_t size) {
    return (size + 1 + MEM_NODE_SIZE - 1) / MEM_NODE_SIZE * MEM_NODE_SIZE;
}

static bool IsMemSize(size_t size) {
    return size < MEM_MAX && RoundMemSize(size) <= MEM_MAX;
}

// The data area is fresh from MapZeroBlock, hence zero.
static void *GetMemDedicated(size_t size) {
    size_t rounded = RoundMemSize(size);
    MemBlock *block = GetNewBlock((rounded + MEM_BLOCK_SIZE - 1) / MEM_BLOCK_SIZE * MEM_BLOCK_SIZE);
    if (!block) return nullptr;
    memset(block->MAT, MEM_USED, MEM_BLOCK_NODES);
    block->freeCount = 0;
    block->usedSize = static_cast<int32_t>(rounded);
    ShowMem(block->data, size + 1);
    return block->data;
}

void *GetMem(size_t size) {
    if (size == 0) return nullptr;
    if (!IsMemSize(size)) return ReportOutOfMem();
    size_t rounded = RoundMemSize(size);
    if (rounded >= MEM_DEDICATED) return GetMemDedicated(size);

    int count = static_cast<int>(rounded / MEM_NODE_SIZE), index = -1;
    MemBlock *block = pMemB;
    while (block && (index = FindRoom(block, count)) < 0) block = block->next;
    if (!block) {
        block = GetNewBlock(MEM_BLOCK_SIZE);
        if (!block) return nullptr;
        index = 0;
    }
    UseNodes(block, index, count);
    char *address = SetNode(block, index, count);
    ShowMemSize(address, size, rounded);
    return address;
}

void PutMem(const void *address) {
    MemBlock *block = FindBlock(address);
    if (!block) return;
    if (block->size >= MEM_DEDICATED) {
        FreeBlock(block);
        return;
    }
    int index = NodeIndex(block, address);
    MemNode *node = &block->nodes[index];
    if (node->count && node->address) {
        FreeNodes(block, index, node->count);
        *node = MemNode{};
    }
    if (block->freeCount == MEM_BLOCK_NODES) FreeBlock(block);
}

// Takes a new allocation, moves kept bytes of the old one over and gives the old one back.
static void *AdjustMemMove(void *address, size_t kept, size_t size) {
    void *target = GetMem(size);
    if (!target) return nullptr;
    size_t rounded = RoundMemSize(size);
    ShowMem(static_cast<char *>(address), kept);
    ShowMem(static_cast<char *>(target), rounded);
    memcpy(target, address, kept);
    ShowMemSize(static_cast<char *>(target), size, rounded);
    PutMem(address);
    return target;
}

// Resizes where the allocation stands or over the free nodes in front of it; null if it must move away.
static void *AdjustMemNodes(MemBlock *block, void *address, int count) {
    int index = NodeIndex(block, address);
    int old = block->nodes[index].count;
    int added = count - old;
    char *data = block->data + index * MEM_NODE_SIZE;
    ShowMem(data, static_cast<size_t>(old) * MEM_NODE_SIZE);
    if (added <= 0) {
        memset(data + count * MEM_NODE_SIZE, 0, static_cast<size_t>(-added) * MEM_NODE_SIZE);
        if (added) FreeNodes(block, index + count, -added);
        block->nodes[index].count = static_cast<uint16_t>(count);
        return address;
    }
    if (TestMAT(block->MAT + index + old, MEM_FREE, added)) {
        UseNodes(block, index + old, added);
        block->nodes[index].count = static_cast<uint16_t>(count);
        return address;
    }
    if (index < added || !TestMAT(block->MAT + index - added, MEM_FREE, added)) return nullptr;
    UseNodes(block, index - added, added);
    block->nodes[index] = MemNode{};
    char *target = SetNode(block, index - added, count);
    memmove(target, data, static_cast<size_t>(old) * MEM_NODE_SIZE);
    memset(target + old * MEM_NODE_SIZE, 0, static_cast<size_t>(added) * MEM_NODE_SIZE);
    return target;
}

static void *AdjustMemShared(MemBlock *block, void *address, size_t size) {
    size_t rounded = RoundMemSize(size);
    size_t kept = block->nodes[NodeIndex(block, address)].count * size_t{MEM_NODE_SIZE};
    void *target = nullptr;
    if (rounded < MEM_DEDICATED)
        target = AdjustMemNodes(block, address, static_cast<int>(rounded / MEM_NODE_SIZE));
    if (!target) return AdjustMemMove(address, kept, size);
    ShowMemSize(static_cast<char *>(target), size, rounded);
    return target;
}

// A dedicated block stays one, however small its contents become. The bytes between the old and the new size
// are cleared both ways, so that a later growth finds zeros.
static void *AdjustMemDedicated(MemBlock *block, void *address, size_t size) {
    size_t rounded = RoundMemSize(size), used = static_cast<size_t>(block->usedSize);
    if (rounded > static_cast<size_t>(block->size)) return AdjustMemMove(block->data, used, size);
    size_t low = rounded < used ? rounded : used, high = rounded < used ? used : rounded;
    ShowMem(block->data, high);
    memset(block->data + low, 0, high - low);
    block->usedSize = static_cast<int32_t>(rounded);
    ShowMemSize(block->data, size, static_cast<size_t>(block->size));
    return address;
}

void *AdjustMem(void *address, size_t size) {
    if (size == 0) {
        PutMem(address);
        return nullptr;
    }
    if (!IsMemSize(size)) return ReportOutOfMem();
    MemBlock *block = FindBlock(address);
    if (!block) return GetMem(size);
    if (block->size >= MEM_DEDICATED) return AdjustMemDedicated(block, address, size);
    if (!block->nodes[NodeIndex(block, address)].count) return GetMem(size);
    return AdjustMemShared(block, address, size);
}

// ---- dump and check

static int CountFree(const MemBlock *block) {
    int count = 0;
    for (int i = 0; i < MEM_BLOCK_NODES; i++) count += block->MAT[i] == MEM_FREE;
    return count;
}

static int CountNodes(const MemBlock *block) {
    int count = 0;
    for (const MemNode &node : block->nodes) count += node.count;
    return count;
}

static void DumpNode(const MemNode *node, int index) {
    int size = node->count * MEM_NODE_SIZE;
    printf("\tMAT index(%6i) Memory Addr(%6li) nodes(%5i) size(%5i) Memory(%.*s)\n", index,
           reinterpret_cast<long>(node->address), node->count, size,
           ShownMem(static_cast<char *>(node->address), size), static_cast<char *>(node->address));
}

static void DumpShared(const MemBlock *block) {
    int count = CountFree(block);
    printf("\n============ Block(%li) size(%li) Free(%i) Used(%i) FreeNodeCount(%i) SizeCnt(%i) <==(%li) "
           "(%li)==>\n\tBlock MAT:",
           reinterpret_cast<long>(block), static_cast<long>(block->size), count, MEM_BLOCK_NODES - count,
           block->freeCount, MEM_BLOCK_NODES - CountNodes(block), reinterpret_cast<long>(block->previous),
           reinterpret_cast<long>(block->next));
    for (int i = 0; i < MEM_BLOCK_NODES; i++) {
        if (i % 64 == 0) printf("\n\t");
        putchar(block->MAT[i] == MEM_FREE ? '_' : block->MAT[i]);
    }
    printf("\n\n\tAllocated Nodes:\n");
    for (int i = 0; i < MEM_BLOCK_NODES; i++)
        if (block->nodes[i].count && block->nodes[i].address) DumpNode(&block->nodes[i], i);
    printf("\n");
}

void DumpMem() {
    for (const MemBlock *block = pMemB; block; block = block->next) {
        if (block->size <= MEM_BLOCK_SIZE)
            DumpShared(block);
        else
            printf("\n============ Dedicated Block(%li) size(%li) FreeNodeCount(%i) <==(%li) (%li)==>",
                   reinterpret_cast<long>(block->data), static_cast<long>(block->size), block->freeCount,
                   reinterpret_cast<long>(block->previous), reinterpret_cast<long>(block->next));
    }
}

static const char *CheckDedicated(const MemBlock *block) {
    if (block->size % MEM_BLOCK_SIZE || block->size < 2 * MEM_BLOCK_SIZE) return "dedicated block: odd size";
    if (block->usedSize <= 0 || block->usedSize > block->size) return "dedicated block: used size";
    if (block->freeCount || CountFree(block)) return "dedicated block: free nodes";
    return CountNodes(block) ? "dedicated block: node records" : nullptr;
}

// One allocation, or one free node, at an index; moves the index behind it.
static const char *CheckNode(const MemBlock *block, int *index) {
    const MemNode *node = &block->nodes[*index];
    int first = *index;
    *index += node->count ? node->count : 1;
    if (!node->count) {
        if (node->address) return "node record: address without count";
        return block->MAT[first] == MEM_FREE ? nullptr : "MAT: used node outside all allocations";
    }
    if (*index > MEM_BLOCK_NODES) return "node record: past the end of the block";
    if (node->address != block->data + first * MEM_NODE_SIZE) return "node record: wrong address";
    if (!TestMAT(block->MAT + first, MEM_USED, node->count)) return "MAT: free node inside an allocation";
    for (int i = first + 1; i < *index; i++)
        if (block->nodes[i].count || block->nodes[i].address) return "node record: inside an allocation";
    return nullptr;
}

static const char *CheckShared(const MemBlock *block) {
    const char *fault = nullptr;
    for (int i = 0; i < MEM_BLOCK_NODES && !fault;) fault = CheckNode(block, &i);
    if (fault) return fault;
    if (block->usedSize) return "shared block: used size";
    if (block->freeCount != CountFree(block)) return "shared block: free node count";
    bool flHidden = block->missedCount && FindFreeNodes(block->MAT, block->missedCount, 0) >= 0;
    for (int run = 1; run < MEM_RUNS; run++) {
        int index = FindFreeNodes(block->MAT, run, 0);
        if (index >= 0 && index < block->from[run]) flHidden = true;
    }
    return flHidden ? "shared block: room that it does not know of" : nullptr;
}

const char *CheckMem() {
    const MemBlock *previous = nullptr;
    for (const MemBlock *block = pMemB; block; previous = block, block = block->next) {
        if (block->previous != previous) return "chain: wrong previous block";
        if (strlen(block->MAT) != MEM_BLOCK_NODES) return "MAT: wrong length";
        const char *fault = block->size > MEM_BLOCK_SIZE ? CheckDedicated(block) : CheckShared(block);
        if (fault) return fault;
    }
    return nullptr;
}
