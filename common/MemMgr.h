// Managed memory: zero-filled allocations in 32-byte nodes out of 64 KB blocks.
#pragma once

#include <cstddef>
#include <cstdint>

enum {
    MEM_NODE_SIZE = 32,
    MEM_BLOCK_NODES = 2048,
    MEM_BLOCK_SIZE = MEM_NODE_SIZE * MEM_BLOCK_NODES,
    MEM_DEDICATED = MEM_BLOCK_SIZE + 1, // rounded sizes from here on get a block of their own
    MEM_FREE = ' ',
    MEM_USED = 'U',
};

struct MemNode {
    uint16_t count; // nodes of the allocation that starts here, 0 for none
    void *address;  // its address in the data area, null for none
};

struct MemBlock {
    MemBlock *next;
    MemBlock *previous;
    int32_t size;     // bytes of the data area
    int32_t usedSize; // dedicated block: rounded size in use; 0 in a shared block
    int32_t freeCount;
    char *data;
    MemNode nodes[MEM_BLOCK_NODES];
    char MAT[MEM_BLOCK_NODES + 1];
    // Private to MemMgr: see MemMgr.cpp.
    uint8_t recordFromMalloc;
    uint8_t dataFromMalloc;
    int32_t missedCount; // a request of this many nodes or more is known not to fit; 0 when unknown
};

extern MemBlock *pMemB;
extern const char OutOfMem[];

void *GetMem(size_t size);
void PutMem(const void *address);
void *AdjustMem(void *address, size_t size);
void DumpMem();

MemBlock *GetNewBlock(size_t size);
void *MapBlock(size_t size);
MemBlock *FindBlock(const void *address);
void FreeBlock(MemBlock *block);
void PushBlock(MemBlock *block);
MemBlock *PopBlock(MemBlock *block);
int TestMAT(const char *mat, char mark, int count);

// Duplicators into managed memory. Owns: the result. Ends: SaveStr and SaveStr_ when memory is exhausted.
// SaveStr takes a literal format only; a plain text goes through SaveStr_. A null text gives an empty copy.
[[nodiscard, gnu::format(printf, 1, 2)]] char *SaveStr(const char *format, ...);
[[nodiscard]] char *SaveStr_(const char *text);
[[nodiscard, gnu::format(printf, 1, 2)]] char *SaveStr__(const char *format, ...); // null for a null format

// Invariant walk for tests: null, or what is wrong with the chain (static text).
const char *CheckMem();
