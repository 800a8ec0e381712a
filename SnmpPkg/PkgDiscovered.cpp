// The set of addresses that answered a broadcast, and the walk that reads them.
#include "SnmpPkg/Pkg.h"

#include "common/MemMgr.h"

#include <arpa/inet.h>
#include <cstring>

enum { QUAD_ENTRIES = 256, BITMAP_SIZE = 32 };

unsigned char ***FirstQuad[QUAD_ENTRIES];

// Calls visit(a, b, c, bitmap) for every bitmap there is, in ascending order.
template <class Visit>
static void VisitBitmaps(Visit visit) {
    for (int a = 0; a < QUAD_ENTRIES; a++) {
        if (!FirstQuad[a]) continue;
        for (int b = 0; b < QUAD_ENTRIES; b++) {
            if (!FirstQuad[a][b]) continue;
            for (int c = 0; c < QUAD_ENTRIES; c++)
                if (FirstQuad[a][b][c]) visit(a, b, c, FirstQuad[a][b][c]);
        }
    }
}

void InitDiscoveredList() {
    VisitBitmaps([](int, int, int, unsigned char *bitmap) { memset(bitmap, 0, BITMAP_SIZE); });
}

int GetBit(int number) {
    return number >= 0 && number <= 7 ? 1 << number : 0;
}

// Makes the block of a slot if there is none; false when memory is exhausted.
template <class Block>
static bool NeedBlock(Block **slot, size_t size) {
    if (*slot == nullptr) *slot = static_cast<Block *>(GetMem(size));
    return *slot != nullptr;
}

int Store(const void *address) {
    const unsigned char *quad = static_cast<const unsigned char *>(address);
    unsigned char ***&second = FirstQuad[quad[0]];
    if (!NeedBlock(&second, QUAD_ENTRIES * sizeof *second)) return 0;
    unsigned char **&third = second[quad[1]];
    if (!NeedBlock(&third, QUAD_ENTRIES * sizeof *third)) return 0;
    unsigned char *&bitmap = third[quad[2]];
    if (!NeedBlock(&bitmap, BITMAP_SIZE)) return 0;
    bitmap[quad[3] / 8] |= static_cast<unsigned char>(GetBit(quad[3] % 8));
    return 1;
}

void WalkDiscovered(SnmpPackage *package, const char *filter, PkgCallback callback) {
    package->Callback = callback;
    VisitBitmaps([&](int a, int b, int c, const unsigned char *bitmap) {
        for (int d = 0; d < QUAD_ENTRIES; d++) {
            if ((bitmap[d / 8] & GetBit(d % 8)) == 0) continue;
            in_addr address = {
                htonl(static_cast<uint32_t>(a) << 24 | static_cast<uint32_t>(b << 16 | c << 8 | d))};
            inet_ntop(AF_INET, &address, package->Address, sizeof package->Address);
            GetVariables(package, package->Timeout, filter);
        }
    });
}
