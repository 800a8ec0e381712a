// Reading the command line by a table of options.
#include "siblings/prnqtool/Options.h"

#include <cstddef>
#include <iterator>

const char UsageText[] =
    "usage: prnqtool QUEUE -ppd FILE -pm MODEL -hn HOST|-dn DEVICE [option ...]  add or replace a queue\n"
    "       prnqtool QUEUE -cl SOURCE -pm MODEL -hn HOST|-dn DEVICE [-psqn NAME] [-d]  copy a queue\n"
    "       prnqtool QUEUE -mq [-ui] [-fe] [-bp] [-d] [-fs FILE] [-bps FILE]  change a queue\n"
    "       prnqtool QUEUE -x | -x QUEUE | -xl QUEUE ...  remove queues\n"
    "       prnqtool -x all                              remove all queues\n"
    "       prnqtool -dbps FILE | -xdbps                 set or clear the default banner titles\n"
    "       prnqtool -LQ                                 list the host's queues\n"
    "       prnqtool --list | --json                     the same with all values, for people or programs\n"
    "       prnqtool --batch FILE                        run the lines of a file, - is standard input\n"
    "       prnqtool --export FILE | --import FILE       write all queues to a file, or make them from one\n"
    "       prnqtool --help | --version\n"
    "\n"
    "In front of all that, --dry-run tells what would change, and changes nothing. In front of an add line\n"
    "or of --batch, --ensure adds or changes only what differs. With both, as with --import, each queue is\n"
    "told as changed or unchanged, and the status is 0 if nothing changed, 2 if something did or would.\n"
    "\n"
    "  -pm MODEL   wp: workstation to printer, wps: to a print server, psp: print server to printer\n"
    "  -psqn NAME  name of the queue at the print server or printer (\"lp\")\n"
    "  -lpd        send by the line printer protocol\n"
    "  -d          make it the default queue\n"
    "  -fe -bp -ui switch on features, banner page, user interface\n"
    "  -fs FILE    feature settings, lines OPTION=VALUE\n"
    "  -bps FILE   banner titles, lines .h1 SIZE TEXT to .h3 SIZE TEXT\n"
    "  -log NAME   log the host commands in /tmp/NAME.log\n";

enum : unsigned { // which command takes an option
    FOR_ADD = 1u << COMMAND_ADD,
    FOR_COPY = 1u << COMMAND_COPY,
    FOR_MODIFY = 1u << COMMAND_MODIFY,
    FOR_ALL = ~0u,
};

struct OptionRow {
    const char *word;
    std::string Options::*value; // takes the next word, or null
    bool Options::*flag;         // is set, or null
    unsigned commands;
};

static constexpr OptionRow OptionTable[] = {
    {"-log", &Options::log, nullptr, FOR_ALL},
    {"-fs", &Options::settings, nullptr, FOR_ADD | FOR_MODIFY},
    {"-ppd", &Options::ppd, nullptr, FOR_ADD},
    {"-pm", &Options::model, nullptr, FOR_ADD | FOR_COPY},
    {"-hn", &Options::host, &Options::flHost, FOR_ADD | FOR_COPY},
    {"-dn", &Options::device, &Options::flDevice, FOR_ADD | FOR_COPY},
    {"-psqn", &Options::remote, &Options::flRemote, FOR_ADD | FOR_COPY},
    {"-bps", &Options::banner, nullptr, FOR_ADD | FOR_MODIFY},
    {"-d", nullptr, &Options::flDefault, FOR_ADD | FOR_COPY | FOR_MODIFY},
    {"-lpd", nullptr, &Options::flLpd, FOR_ADD},
    {"-fe", nullptr, &Options::flFeatures, FOR_ADD | FOR_MODIFY},
    {"-bp", nullptr, &Options::flBanner, FOR_ADD | FOR_MODIFY},
    {"-ui", nullptr, &Options::flUserInterface, FOR_ADD | FOR_MODIFY},
};

struct CommandRow {
    const char *word;
    Command command;
    std::string Options::*value;
    bool flQueue; // stands behind a queue's name
};

static constexpr CommandRow CommandTable[] = {
    {"-cl", COMMAND_COPY, &Options::source, true},
    {"-mq", COMMAND_MODIFY, nullptr, true},
    {"-x", COMMAND_DELETE, nullptr, true},
    {"-xl", COMMAND_DELETE, nullptr, false},
    {"-dbps", COMMAND_SET_BANNER, &Options::banner, false},
    {"-xdbps", COMMAND_CLEAR_BANNER, nullptr, false},
    {"-LQ", COMMAND_LIST, nullptr, false},
    {"--list", COMMAND_TABLE, nullptr, false},
    {"--json", COMMAND_JSON, nullptr, false},
    {"--batch", COMMAND_BATCH, &Options::file, false},
    {"--export", COMMAND_EXPORT, &Options::file, false},
    {"--import", COMMAND_IMPORT, &Options::file, false},
    {"--help", COMMAND_HELP, nullptr, false},
    {"--version", COMMAND_VERSION, nullptr, false},
};

struct Reader {
    const std::vector<std::string> &words;
    size_t at = 0;
    const CommandRow *command = nullptr;
    std::string error = "";
};

template <typename Row, size_t count>
static const Row *FindRow(const Row (&table)[count], const std::string &word) {
    for (const Row &row : table)
        if (word == row.word) return &row;
    return nullptr;
}

// A value that looks like an option is the next option: a value was left empty in front of it.
static void ReadValue(Reader &reader, const Options &options, std::string &value) {
    const std::string &option = reader.words[reader.at++];
    bool flNone = reader.at == reader.words.size() || reader.words[reader.at].empty();
    bool flStream = &value == &options.file && !flNone && reader.words[reader.at] == "-";
    if (flNone || (reader.words[reader.at][0] == '-' && !flStream))
        reader.error = "option " + option + " needs a value";
    else
        value = reader.words[reader.at++];
}

// "-x" without a queue in front takes one, or the word "all"; "-xl" takes all words that are left.
static void ReadDeletion(Reader &reader, Options &options) {
    if (std::string(reader.command->word) == "-xl") {
        options.queues.assign(reader.words.begin() + static_cast<std::ptrdiff_t>(reader.at) + 1,
                              reader.words.end());
        reader.at = reader.words.size();
        if (options.queues.empty()) reader.error = "option -xl needs a value";
        return;
    }
    if (!options.queues.empty()) {
        reader.at++;
        return;
    }
    std::string queue;
    ReadValue(reader, options, queue);
    if (queue == "all")
        options.command = COMMAND_DELETE_ALL;
    else
        options.queues.push_back(queue);
}

static void ReadCommand(Reader &reader, Options &options, const CommandRow *row) {
    if (reader.command) {
        reader.error =
            std::string("options ") + reader.command->word + " and " + row->word + " don't go together";
        return;
    }
    reader.command = row;
    options.command = row->command;
    if (row->command == COMMAND_DELETE)
        ReadDeletion(reader, options);
    else if (row->value)
        ReadValue(reader, options, options.*row->value);
    else
        reader.at++;
}

static void ReadOption(Reader &reader, Options &options, unsigned &used) {
    const std::string &word = reader.words[reader.at];
    const OptionRow *row = FindRow(OptionTable, word);
    const CommandRow *command = FindRow(CommandTable, word);
    if (command) return ReadCommand(reader, options, command);
    if (!row) {
        reader.error = word.empty() || word[0] != '-'
                           ? "word \"" + word.substr(0, 80) + "\" has no option in front"
                           : "option " + word.substr(0, 80) + " is unknown";
        return;
    }
    used |= 1u << (row - OptionTable);
    if (row->flag) options.*row->flag = true;
    if (row->value)
        ReadValue(reader, options, options.*row->value);
    else
        reader.at++;
}

// The words in front of the line itself.
static void ReadManner(Reader &reader, Options &options) {
    for (; reader.at < reader.words.size(); reader.at++) {
        const std::string &word = reader.words[reader.at];
        if (word != "--ensure" && word != "--dry-run") return;
        (word == "--ensure" ? options.flEnsure : options.flDryRun) = true;
    }
}

static std::string CheckManner(const Options &options) {
    bool flBatch = options.command == COMMAND_BATCH, flImport = options.command == COMMAND_IMPORT;
    if (options.flEnsure && options.command != COMMAND_ADD && !flBatch)
        return "option --ensure doesn't belong to this command";
    if (options.flDryRun && options.command > COMMAND_CLEAR_BANNER && !flBatch && !flImport)
        return "option --dry-run doesn't belong to this command";
    return "";
}

static std::string CheckTogether(const Options &options, unsigned used) {
    for (size_t row = 0; row < std::size(OptionTable); row++)
        if ((used & 1u << row) && !(OptionTable[row].commands & 1u << options.command))
            return std::string("option ") + OptionTable[row].word + " doesn't belong to this command";
    std::string error = CheckManner(options);
    if (!error.empty()) return error;
    if (options.command != COMMAND_ADD && options.command != COMMAND_COPY) return "";
    if (options.flHost == options.flDevice) return "either -hn or -dn is needed";
    return options.command == COMMAND_ADD && options.ppd.empty() ? "option -ppd is needed" : "";
}

std::string ReadOptions(const std::vector<std::string> &words, Options &options) {
    Reader reader = {.words = words};
    unsigned used = 0;
    ReadManner(reader, options);
    bool flNamed = reader.at < words.size() && (words[reader.at].empty() || words[reader.at][0] != '-');
    if (reader.at == words.size()) return "nothing to do; try --help";
    if (flNamed) options.queues.push_back(words[reader.at++]);
    while (reader.at < words.size() && reader.error.empty()) ReadOption(reader, options, used);
    if (!reader.error.empty()) return reader.error;
    bool flNeeded = !reader.command || reader.command->flQueue;
    if (flNamed && !flNeeded)
        return std::string("option ") + reader.command->word + " takes no queue in front";
    if (!flNamed && flNeeded && options.queues.empty() && options.command != COMMAND_DELETE_ALL)
        return "the queue's name must come first";
    return CheckTogether(options, used);
}
