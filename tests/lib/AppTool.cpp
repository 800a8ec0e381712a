// A tool directory with what the application reads.
#include "tests/lib/AppTool.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"

#include <cstdint>

AppTool::AppTool() : savedUseLog(flUseLog) {
    flUseLog = 0;
}

AppTool::~AppTool() {
    flUseLog = savedUseLog;
}

static std::string Word(size_t number) {
    uint16_t word = static_cast<uint16_t>(number);
    return {reinterpret_cast<const char *>(&word), sizeof(word)};
}

// Written here and not by xdb.py, since tables of cases write dozens of them.
void AppTool::WriteDb(const std::string &name, const Records &records) const {
    std::string file;
    for (const auto &[key, data] : records) {
        std::string body = Word(key.size() + 1) + key + '\0' + data;
        for (size_t i = 0; i + 1 < body.size(); i++) body[i] = static_cast<char>(body[i] ^ body[i + 1]);
        file += Word(body.size()) + body;
    }
    Write("db/" + name + ".xdb", file);
}

void AppTool::WriteModels(const std::vector<std::string> &files) const {
    for (const std::string &file : files)
        Write("ppd/" + file,
              "*PPD-Adobe: \"4.3\"\n*ModelName: \"Model " + file.substr(0, file.find('.')) + "\"\n");
    PutMem(PpdList);
    PutMem(PpdModelList);
    LoadModels();
}

std::string QueData(const std::string &fields) {
    return fields + " " + '\0';
}

std::string CountData(const std::string &words) {
    return std::string("\1\0\0\0", 4) + words + '\0';
}
