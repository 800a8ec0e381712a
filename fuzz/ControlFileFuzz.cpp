// Any text as the control file of a job, its first line as user name, and as the line of ls for some files.
#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "fuzz/FuzzDir.h"
#include "print/prnoutbase.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

static std::string ListLine;

// The file's last letter decides what ls says of it.
static FILE *AnswerList(const char *line, const char *) {
    const char *end = strstr(line, " 2>");
    size_t length = end ? static_cast<size_t>(end - line) : strlen(line);
    std::string answer = "-rw- " + std::string(line) + "\n";
    switch (line[length - 1]) { // the rest are plain files
    case 'd': answer = "drwx d\n"; break;
    case 'l': answer = "lrwx " + ListLine + "\n"; break;
    case 'n': answer = "ls: No such file\n"; break;
    default: break;
    }
    FILE *stream = tmpfile();
    Require(stream && fputs(answer.c_str(), stream) >= 0);
    rewind(stream);
    return stream;
}

static int CountFiles(const std::string &text) {
    int count = 0;
    for (size_t at = 0; at < text.size(); at = std::min(text.find('\n', at), text.size() - 1) + 1)
        count += text[at] == 'f';
    return count;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzTool here;
    std::string text(reinterpret_cast<const char *>(data), size);
    std::replace(text.begin(), text.end(), '~', '-'); // a wrong tilde ends the tool
    WriteFuzzFile("tool/lock", "1\ncfA1\n");
    WriteFuzzFile("tool/cfA1", text);
    ListLine = text.substr(0, text.find('\n')).c_str();
    setenv("PrnOutUser_name", ListLine.c_str(), 1);
    ComList[CMD_LS].path = "/bin";
    pPopen = AnswerList;
    pPclose = fclose;
    GetFileInfo();
    Require(FilesCnt == CountFiles(text) && CopyCnt >= 1 && (CopyCnt > 1) == (flLpdCopyCnt == 1));
    for (int i = 0; i < FilesCnt; i++) Require(pFiles[i] && (!*pFiles[i] || strchr("/.", *pFiles[i])));
    for (const char *value : {pHostName, pPerson, pJobName, pJobTitle})
        Require(!value || strlen(value) < CONTROL_LINE);
    GetRequestHost();
    Require(pHostName != nullptr);
    GetInterfaceEnvArgs();
    Require(pPerson && strlen(pPerson) <= ListLine.size());
    Require(CheckMem() == nullptr);
    return 0;
}
