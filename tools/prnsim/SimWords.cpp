// The lexical level of descriptions.
#include "tools/prnsim/SimWords.h"

static constexpr std::string_view Blanks = " \t\r", Enders = " \t\r,#\"";

// "{address}" or "{number}" at `at`: a place in the word; the position behind it, 0 if it is neither.
static size_t ReadPlace(std::string_view line, size_t at, SimWord *word) {
    static constexpr struct {
        std::string_view text;
        SimPlace::What what;
    } Places[] = {{"{address}", SimPlace::ADDRESS_TEXT}, {"{number}", SimPlace::NUMBER_TEXT}};
    for (const auto &place : Places) {
        if (line.substr(at, place.text.size()) != place.text) continue;
        word->places.push_back({static_cast<uint32_t>(word->text.size()), place.what});
        return at + place.text.size();
    }
    return 0;
}

// The escape whose letter stands at `at`; the position behind it, 0 if it is none.
static size_t ReadEscape(std::string_view line, size_t at, SimWord *word) {
    static constexpr std::string_view Letters = "nrt\\\"{", Bytes = "\n\r\t\\\"{";
    std::string byte;
    if (at >= line.size()) return 0;
    if (size_t n = Letters.find(line[at]); n != Letters.npos) return word->text += Bytes[n], at + 1;
    if (line[at] != 'x' || at + 2 >= line.size() || !SimParseHex(line.substr(at + 1, 2), &byte)) return 0;
    if (byte.size() != 1) return 0;
    return word->text += byte, at + 3;
}

// The text behind the quote at `*at`.
static std::string ReadQuoted(std::string_view line, size_t *at, SimWord *word) {
    word->flQuoted = true;
    for (size_t i = *at + 1; i < line.size();) {
        if (line[i] == '"') return *at = i + 1, "";
        if (line[i] == '\\') {
            i = ReadEscape(line, i + 1, word);
            if (i == 0) return "unknown escape in a text: \\n \\r \\t \\\\ \\\" \\{ \\xHH are known";
        } else if (line[i] == '{') {
            i = ReadPlace(line, i, word);
            if (i == 0) return "only {address} and {number} can stand in braces; write \\{ for a brace";
        } else {
            word->text += line[i++];
        }
    }
    return "the text has no closing quote";
}

static void ReadBare(std::string_view line, size_t *at, SimWord *word) {
    size_t end = std::min(line.find_first_of(Enders, *at), line.size());
    std::string_view text = line.substr(*at, end - *at);
    *at = end;
    if (text.empty()) { // a comma
        word->text = line[(*at)++];
    } else if (text[0] != '{' || ReadPlace(text, 0, word) != text.size()) {
        word->text = text;
        word->places.clear();
    }
}

std::string SimSplit(std::string_view line, std::vector<SimWord> *words) {
    words->clear();
    for (size_t at = 0;;) {
        at = line.find_first_not_of(Blanks, at);
        if (at == line.npos || line[at] == '#') return "";
        SimWord &word = words->emplace_back();
        if (line[at] == '"') {
            if (std::string fault = ReadQuoted(line, &at, &word); !fault.empty()) return fault;
        } else {
            ReadBare(line, &at, &word);
        }
    }
}
