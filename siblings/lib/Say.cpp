// The catalogue of the queue tool's sentences.
#include "siblings/lib/Say.h"

#include "common/utils.h"

#include <cerrno>
#include <unistd.h>

// Null for English. What can't be read is not waited for: the English text serves.
static DbTHandle *OpenSentences() {
    std::string tool = pToolPath;
    if (access((tool + "/trans.conf").c_str(), R_OK) != 0) return nullptr;
    std::string language = GetDesiredNLSLang(), path = tool + "/db/" + language + "/CoreString.xdb";
    if (language.starts_with("en") || access(path.c_str(), R_OK) != 0) return nullptr;
    return DbTOpen(path.c_str(), DBT_NO_WRITE | DBT_NO_RELOAD);
}

std::string SentenceText(const Sentence &sentence) {
    if (!pToolPath) return sentence.text;
    int reason = errno;
    static DbTHandle *const catalogue = OpenSentences();
    errno = reason;
    std::string key = std::to_string(int{SAY_SET}) + "_" + std::to_string(sentence.nlsText);
    if (!catalogue || DbmTGetRecordSize(catalogue, key.c_str()) == 0) return sentence.text;
    return NlsText(catalogue, SAY_SET, sentence.nlsText);
}
