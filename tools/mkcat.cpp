// mkcat: makes a record database from message source text, and message source text from a record database.
//
//   mkcat IN.msg OUT.xdb    compiles; OUT.xdb appears whole or not at all
//   mkcat -d IN.xdb         prints any database, of either format, as source that compiles to the same
//   records
//
// Faults in the source are told as FILE:LINE: TEXT, all of them, and end with status 1. doc/xdb.md tells the
// form.
#include "common/DbmT.h"

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

static const std::string_view EndLine = "$end";
static FILE *pFaults = stderr; // where faults of sources and databases are told

struct Record {
    std::string key;
    std::string data;
};

// ---- Escapes

struct Escape {
    char letter;
    char byte;
};
static constexpr Escape Escapes[] = {{'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'b', '\b'},
                                     {'f', '\f'}, {'v', '\v'}, {'\\', '\\'}};

static bool IsOctal(char ch) {
    return ch >= '0' && ch <= '7';
}

// The byte behind a backslash at text[*place - 1], which is consumed; -1 if there is no such escape. The
// quote character stands for itself.
static int ReadEscape(std::string_view text, size_t *place, char quote) {
    if (*place >= text.length()) return -1;
    char ch = text[(*place)++];
    for (const Escape &escape : Escapes)
        if (escape.letter == ch) return static_cast<unsigned char>(escape.byte);
    if (quote && ch == quote) return static_cast<unsigned char>(ch);
    if (!IsOctal(ch)) return -1;
    int value = ch - '0';
    for (int i = 0; i < 2 && *place < text.length() && IsOctal(text[*place]); i++)
        value = value * 8 + (text[(*place)++] - '0');
    return value <= UCHAR_MAX ? value : -1;
}

static void AddEscaped(std::string *out, char ch) {
    for (const Escape &escape : Escapes) {
        if (escape.byte != ch) continue;
        out->append(1, '\\').append(1, escape.letter);
        return;
    }
    auto byte = static_cast<unsigned char>(ch);
    char octal[8];
    snprintf(octal, sizeof(octal), "\\%03o", static_cast<unsigned>(byte));
    if (iscntrl(byte) || byte > 0x7F)
        out->append(octal);
    else
        out->append(1, ch);
}

// ---- Compile

struct Compiler {
    const char *name = nullptr;
    std::vector<std::string> lines;
    size_t line = 0; // index of the one being read
    int set = 0;     // 0 before the first $set
    char quote = '\0';
    std::vector<Record> records;
    std::map<std::string, size_t> places; // key: index of its line
    int faults = 0;
};

static void Fault(Compiler *c, size_t line, const std::string &text) {
    fprintf(pFaults, "%s:%zu: %s\n", c->name, line + 1, text.c_str());
    c->faults++;
}

static bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

// Data comes with the NUL that belongs to it, if any.
static void AddRecord(Compiler *c, size_t line, const std::string &key, std::string data) {
    auto [place, flNew] = c->places.emplace(key, line);
    if (!flNew)
        return Fault(c, line, "the key " + key + " stands in line " + std::to_string(place->second + 1));
    if (key.length() + 1 + data.length() + DBM_WORD > DBM_BODY_MAX)
        return Fault(c, line, "key and text are longer than 65533 bytes together");
    c->records.push_back({key, std::move(data)});
}

// A number from 1 up at the start of the text; 0 if there is none. Its length goes to *length.
static int ReadNumber(std::string_view text, size_t *length) {
    *length = std::min(text.find_first_not_of("0123456789"), text.length());
    long value =
        *length > 0 && *length < 11 ? strtol(std::string(text.substr(0, *length)).c_str(), nullptr, 10) : 0;
    return value <= INT_MAX ? static_cast<int>(value) : 0;
}

static void ReadSet(Compiler *c, std::string_view rest) {
    size_t length;
    c->set = ReadNumber(rest, &length);
    if (c->set == 0 || !IsBlank(rest.substr(length, 1))) Fault(c, c->line, "$set wants a number from 1 up");
}

static void ReadQuote(Compiler *c, std::string_view rest) {
    if (!IsBlank(rest) &&
        (rest.length() != 1 || isalnum(static_cast<unsigned char>(rest[0])) || rest[0] == '\\'))
        return Fault(c, c->line, "$quote wants one character");
    c->quote = IsBlank(rest) ? '\0' : rest[0];
}

// The lines up to $end. False if there is none.
static bool ReadBlock(Compiler *c, std::vector<std::string> *block) {
    size_t start = c->line;
    while (++c->line < c->lines.size()) {
        if (c->lines[c->line] == EndLine) return true;
        block->push_back(c->lines[c->line]);
    }
    Fault(c, start, "no $end closes this record");
    return false;
}

static void ReadRecord(Compiler *c, const std::string &key) {
    size_t start = c->line;
    std::vector<std::string> block;
    if (key.empty()) Fault(c, start, "$record wants a key");
    if (!ReadBlock(c, &block)) return;
    std::string data;
    for (size_t i = 0; i < block.size(); i++) data.append(i > 0 ? "\n" : "").append(block[i]);
    AddRecord(c, start, key, data + '\0');
}

static std::string Unescape(Compiler *c, size_t line, std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.length();) {
        int byte = static_cast<unsigned char>(text[i++]);
        if (byte == '\\') byte = ReadEscape(text, &i, '\0');
        if (byte < 0)
            Fault(c, line, "unknown escape");
        else
            out += static_cast<char>(byte);
    }
    return out;
}

// Data that are no text: bytes with escapes, the lines joined by nothing, and no NUL added.
static void ReadBytes(Compiler *c, std::string_view key) {
    size_t start = c->line;
    std::vector<std::string> block;
    if (!ReadBlock(c, &block)) return;
    std::string data;
    for (size_t i = 0; i < block.size(); i++) data += Unescape(c, start + 1 + i, block[i]);
    std::string name = Unescape(c, start, key);
    if (name.find('\0') != std::string::npos) return Fault(c, start, "a key can't hold a NUL");
    AddRecord(c, start, name, data);
}

// Sources are UTF-8, texts Latin-1, as the fonts of the windows have it: a letter of two bytes that stand for
// one becomes that one. ch was read in front of *place. Other bytes stay as they are.
static int ReadLetter(const std::string &line, size_t *place, char ch) {
    auto lead = static_cast<unsigned char>(ch);
    if ((lead != 0xC2 && lead != 0xC3) || *place == line.length()) return lead;
    auto tail = static_cast<unsigned char>(line[*place]);
    if ((tail & 0xC0) != 0x80) return lead;
    ++*place;
    return ((lead & 3) << 6) | (tail & 0x3F);
}

// One piece of a text, up to the closing quote, whose end goes to *closed, or to the end of its line. False
// if the text goes on in the next line.
static bool ReadPiece(Compiler *c, size_t place, char quote, std::string *text, size_t *closed) {
    const std::string &line = c->lines[c->line];
    while (place < line.length()) {
        char ch = line[place++];
        if (quote && ch == quote) {
            *closed = place;
            return true;
        }
        if (ch == '\\' && place == line.length()) return false;
        int byte = ch == '\\' ? ReadEscape(line, &place, c->quote) : ReadLetter(line, &place, ch);
        if (byte < 0)
            Fault(c, c->line, "unknown escape");
        else if (byte == 0)
            Fault(c, c->line, "a text can't hold a NUL");
        else
            *text += static_cast<char>(byte);
    }
    return true;
}

static void ReadText(Compiler *c, size_t place, const std::string &key) {
    size_t start = c->line;
    const std::string &first = c->lines[start];
    bool flQuoted = c->quote && place < first.length() && first[place] == c->quote;
    if (flQuoted) place++;
    std::string text;
    size_t closed = 0;
    while (!ReadPiece(c, place, flQuoted ? c->quote : '\0', &text, &closed)) {
        place = 0;
        if (++c->line < c->lines.size()) continue;
        return Fault(c, start, "the last line of the file can't go on");
    }
    if (flQuoted && closed == 0) Fault(c, start, "no quote closes this text");
    if (closed > 0 && !IsBlank(c->lines[c->line].substr(closed)))
        Fault(c, c->line, "text behind the closing quote");
    AddRecord(c, start, key, text + '\0');
}

static void ReadMessage(Compiler *c) {
    const std::string &line = c->lines[c->line];
    size_t length;
    int number = ReadNumber(line, &length);
    if (number == 0) return Fault(c, c->line, "a text wants a number from 1 up");
    if (c->set == 0) return Fault(c, c->line, "no $set stands before this text");
    if (length == line.length() || line[length] != ' ')
        return Fault(c, c->line, "a blank and a text belong behind the number");
    ReadText(c, length + 1, std::to_string(c->set) + "_" + std::to_string(number));
}

// Behind the word, one blank and the rest; false for another word.
static bool TakeWord(const std::string &line, std::string_view word, std::string *rest) {
    if (line.compare(0, word.length(), word) != 0) return false;
    if (line.length() > word.length() && line[word.length()] != ' ') return false;
    *rest = line.length() > word.length() ? line.substr(word.length() + 1) : "";
    return true;
}

static void ReadDirective(Compiler *c) {
    const std::string line = c->lines[c->line];
    std::string rest;
    if (line.length() == 1 || line[1] == ' ' || line[1] == '\t') return; // a comment
    if (TakeWord(line, "$set", &rest))
        ReadSet(c, rest);
    else if (TakeWord(line, "$quote", &rest))
        ReadQuote(c, rest);
    else if (TakeWord(line, "$record", &rest))
        ReadRecord(c, rest);
    else if (TakeWord(line, "$bytes", &rest))
        ReadBytes(c, rest);
    else
        Fault(c, c->line, "unknown directive " + line.substr(0, line.find(' ')));
}

static void ReadSource(Compiler *c) {
    for (; c->line < c->lines.size(); c->line++) {
        const std::string &line = c->lines[c->line];
        if (line.find('\0') != std::string::npos)
            Fault(c, c->line, "a source can't hold a NUL");
        else if (IsBlank(line))
            continue;
        else if (line[0] == '$')
            ReadDirective(c);
        else if (isdigit(static_cast<unsigned char>(line[0])))
            ReadMessage(c);
        else
            Fault(c, c->line, "neither a text nor a directive nor a comment");
    }
}

// ---- Files

static bool ReadFile(const char *name, std::string *content) {
    FILE *in = fopen(name, "rbe");
    bool flGood = in != nullptr;
    char buffer[4096];
    for (size_t count; flGood && (count = fread(buffer, 1, sizeof(buffer), in)) > 0;)
        content->append(buffer, count);
    if (flGood && ferror(in)) flGood = false;
    if (!flGood) {
        fprintf(stderr, "%s: ", name);
        perror("");
    }
    if (in) fclose(in);
    return flGood;
}

// A carriage return at the end of a line belongs to the line's end.
static std::vector<std::string> SplitLines(const std::string &content) {
    std::vector<std::string> lines;
    for (size_t place = 0; place < content.length();) {
        size_t end = std::min(content.find('\n', place), content.length());
        std::string line = content.substr(place, end - place);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        place = end + 1;
    }
    return lines;
}

static void AddWord(std::string *image, size_t value) {
    image->append(1, static_cast<char>(value >> 8)).append(1, static_cast<char>(value & 0xff));
}

static void AddRun(std::string *image, std::string run) {
    DbScramble(run.data(), run.length());
    image->append(run);
}

// Zeros behind the count: the same source gives the same file.
static std::string BuildImage(const std::vector<Record> &records) {
    std::string image = DBM_MAGIC + std::to_string(records.size());
    image.resize(DBT_HEADER_SIZE, '\0');
    for (const Record &record : records) {
        std::string key = record.key + '\0';
        AddWord(&image, key.length() + record.data.length() + DBM_WORD);
        AddWord(&image, key.length());
        AddRun(&image, key);
        AddRun(&image, record.data);
    }
    return image;
}

static bool WriteFile(const char *name, const std::string &content) {
    std::string temporary = std::string(name) + "_new";
    FILE *out = fopen(temporary.c_str(), "wbe");
    bool flGood = out && fwrite(content.data(), 1, content.length(), out) == content.length();
    if (out && fclose(out) != 0) flGood = false;
    if (flGood && rename(temporary.c_str(), name) == 0) return true;
    fprintf(stderr, "%s: ", name);
    perror("");
    if (out) remove(temporary.c_str());
    return false;
}

static int Compile(const char *in, const char *out) {
    std::string content;
    if (!ReadFile(in, &content)) return 1;
    Compiler compiler;
    compiler.name = in;
    compiler.lines = SplitLines(content);
    ReadSource(&compiler);
    if (compiler.faults > 0) return 1;
    return WriteFile(out, BuildImage(compiler.records)) ? 0 : 1;
}

// ---- Dump

// A NUL at the end and no other.
static bool IsText(const std::string &data) {
    return !data.empty() && data.find('\0') == data.length() - 1;
}

// "SET_NUMBER" as a fetch writes it.
static bool SplitKey(const std::string &key, int *set, std::string *number) {
    size_t length, rest;
    *set = ReadNumber(key, &length);
    if (*set == 0 || length == key.length() || key[length] != '_') return false;
    *number = key.substr(length + 1);
    return ReadNumber(*number, &rest) != 0 && rest == number->length() && key[0] != '0' &&
           (*number)[0] != '0';
}

// What a $record shows as it is: lines that an editor keeps, none of them the end.
static bool IsPlainText(const std::string &key, const std::string &text) {
    auto odd = [](const std::string &s, std::string_view fine) {
        for (char ch : s)
            if (iscntrl(static_cast<unsigned char>(ch)) && fine.find(ch) == std::string_view::npos)
                return true;
        return false;
    };
    if (key.empty() || key.back() == ' ' || odd(key, "") || odd(text, "\n\t")) return false;
    return ("\n" + text + "\n").find("\n$end\n") == std::string::npos;
}

// Quoted where the ends would not show. A line feed in the middle goes on in the next line of the source.
static std::string MessageText(const std::string &text) {
    bool flQuoted = text.empty() || text.front() == ' ' || text.back() == ' ' || text.front() == '"';
    std::string out = flQuoted ? "\"" : "";
    for (size_t i = 0; i < text.length(); i++) {
        if (flQuoted && text[i] == '"') out += '\\';
        AddEscaped(&out, text[i]);
        if (text[i] == '\n' && i + 1 < text.length()) out += "\\\n";
    }
    return flQuoted ? out + '"' : out;
}

// Blanks and dollars are escaped where they begin or end a line.
static std::string EscapedBytes(const std::string &bytes) {
    std::string out;
    for (size_t i = 0; i < bytes.length(); i++) {
        bool flEdge = i == 0 || i + 1 == bytes.length();
        if (flEdge && bytes[i] == ' ')
            out += "\\040";
        else if (flEdge && bytes[i] == '$')
            out += "\\044";
        else
            AddEscaped(&out, bytes[i]);
    }
    return out;
}

static std::string BytesRecord(const Record &record) {
    static const size_t width = 80;
    std::string out = "\n$bytes " + EscapedBytes(record.key) + "\n";
    for (size_t i = 0; i < record.data.length(); i += width)
        out += EscapedBytes(record.data.substr(i, width)) + "\n";
    return out + "$end\n";
}

// The record as source; *current is the set that the texts before it stand in.
static std::string RecordSource(const Record &record, int *current) {
    if (!IsText(record.data)) return BytesRecord(record);
    int set;
    std::string number;
    std::string text = record.data.substr(0, record.data.length() - 1);
    if (SplitKey(record.key, &set, &number)) {
        std::string start = set != *current ? "\n$set " + std::to_string(set) + "\n" : "";
        *current = set;
        return start + number + " " + MessageText(text) + "\n";
    }
    if (!IsPlainText(record.key, text)) return BytesRecord(record);
    return "\n$record " + record.key + "\n" + text + (text.empty() ? "" : "\n") + "$end\n";
}

// The key and data of the record just walked; false if its key is no text.
static bool TakeRecord(DbTHandle *handle, const DbTWalk &walked, Record *record) {
    size_t used = DBM_WORD + walked.K;
    std::string body(walked.L < used ? 0 : walked.L - DBM_WORD, '\0');
    if (walked.key) {
        memcpy(body.data(), walked.key, body.length());
    } else {
        DbmTGetData(handle, body.data(), walked.K);
        DbmTGetData(handle, body.data() + walked.K, body.length() - walked.K);
    }
    record->key = body.substr(0, walked.K);
    record->data = body.substr(walked.K);
    if (!IsText(record->key)) return false;
    record->key.pop_back();
    return true;
}

// The path in the form that the image layer takes as it stands.
static std::string ImagePath(const char *name) {
    if (*name == '/') return std::string("/.") + name;
    return std::string("./") + name;
}

// Adds the source of all records; faults are told, and counted.
static int DumpImage(const char *name, DbTHandle *handle, std::string *out) {
    int faults = 0;
    int set = 0;
    size_t size = handle->size;
    DbTWalk walked;
    Record record;
    *out += "$quote \"\n";
    for (int i = 0; WalkDbTRecords(handle, &walked, i); i = 1) {
        if (TakeRecord(handle, walked, &record))
            *out += RecordSource(record, &set);
        else
            faults += fprintf(pFaults, "%s: the record before byte %zu has no key\n", name, handle->walk) > 0;
    }
    if (handle->size != size || (handle->type == DBT_HEADER && size < DBT_HEADER_SIZE))
        faults += fprintf(pFaults, "%s: damaged from byte %zu on\n", name, handle->size) > 0;
    return faults;
}

static int Dump(const char *name) {
    std::string content, out;
    if (!ReadFile(name, &content)) return 1; // says why, and says it at once
    DbTHandle *handle = DbTOpen(ImagePath(name).c_str(), DBT_NO_RELOAD | DBT_NO_WRITE);
    int faults = handle ? DumpImage(name, handle, &out) : 1;
    DbTClose(handle);
    if (fwrite(out.data(), 1, out.length(), stdout) != out.length() || fflush(stdout) != 0) {
        perror("mkcat");
        faults++;
    }
    return faults > 0;
}

int main(int argc, char **argv) {
    if (argc == 3 && strcmp(argv[1], "-d") == 0) return Dump(argv[2]);
    if (argc == 3) return Compile(argv[1], argv[2]);
    fprintf(stderr, "usage: mkcat IN.msg OUT.xdb\n       mkcat -d IN.xdb\n");
    return 1;
}
