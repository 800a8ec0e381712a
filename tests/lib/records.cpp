// A change of the database "que" by a call of either record layer, for tests that end it, or cut its means
// short.
//   records DIRECTORY put|delete|prefix|copy|image-put|image-delete|image-prefix KEY LETTER
// The data are LETTER 30000 times; for a copy LETTER is the new key. Status 0 if the layer answered 1.
#include "common/DbmT.h"
#include "common/MemMgr.h"
#include "common/utils.h"

#include <string>
#include <string_view>

enum { DATA_SIZE = 30000 };

static int Change(std::string_view verb, const char *key, const char *word) {
    std::string data(DATA_SIZE, *word);
    if (verb == "put") return DbmPutRecord("que", key, data.data(), data.size());
    if (verb == "delete") return DbmDeleteRecord("que", key);
    if (verb == "prefix") return DbmDeleteRecords("que", key);
    if (verb == "copy") return DbmCopyRecord("que", key, word);
    DbTHandle *handle = DbTOpen("que", 0);
    int answer = 0;
    if (verb == "image-put") answer = DbmTPutRecord(handle, key, data.data(), data.size());
    if (verb == "image-delete") answer = DbmTDeleteRecord(handle, key);
    if (verb == "image-prefix") answer = DbmTDeleteRecords(handle, key);
    DbTClose(handle);
    return answer;
}

int main(int argc, char **argv) {
    if (argc != 5) return 2;
    InitProcess();
    pToolPath = SaveStr_(argv[1]);
    return Change(argv[2], argv[3], argv[4]) == 1 ? 0 : 1;
}
