// Any bytes as a headerless database: what the stream layer reads is what it writes again, up to the damage.
#include "common/Dbm.h"

#include <cstdlib>
#include <cstring>
#include <string>

static void Require(bool flHolds) {
    if (!flHolds) abort();
}

// All records, copied by the call of the database's own rewrite.
static std::string Rewrite(const uint8_t *data, size_t size, const char *key, size_t prefixLength) {
    FILE *in = fmemopen(const_cast<uint8_t *>(data), size, "rb");
    char *text = nullptr;
    size_t length = 0;
    FILE *out = open_memstream(&text, &length);
    Require(in && out && PurgeRecord("fuzz", in, out, key, prefixLength) == 1);
    fclose(in);
    fclose(out);
    std::string copy(text, length);
    free(text);
    return copy;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    std::string copy = Rewrite(data, size, "no such key", 0);
    Require(copy.length() <= size && memcmp(copy.data(), data, copy.length()) == 0);
    std::string less = Rewrite(data, size, "a", 1);
    Require(less.length() <= copy.length());
    return 0;
}
