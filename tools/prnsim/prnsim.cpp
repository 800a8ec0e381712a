// prnsim: a fleet of simulated network printers. doc/prnsim.md is its manual.
#include "tools/prnsim/SimNet.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

enum { EXIT_BAD_FLEET = 2 };

static volatile sig_atomic_t flStop;

struct Options {
    SimReadOptions read;
    SimPorts ports;
    std::string log, dump, seed, control, change;
    double seconds = 0;
    bool flCheck = false;
    std::vector<std::string> files;
};

[[noreturn]] static void Usage() {
    fputs("usage: prnsim [-n] [-p PORT] [-w PORT] [-r PORT] [-q PORT] [-m FROM=TO] [-k \"KNOB VALUE\"]...\n"
          "              [-s SEED] [-l FILE] [-c SOCKET] [-t SECONDS] FLEET...\n"
          "       prnsim -d ADDRESS FLEET...\n"
          "       prnsim -e SOCKET \"ADDRESS LINE\"...\n",
          stderr);
    exit(EXIT_BAD_FLEET);
}

[[noreturn]] static void Refuse(char option, const char *value) {
    fprintf(stderr, "prnsim: bad value of -%c: %s\n", option, value);
    exit(EXIT_BAD_FLEET);
}

// "10.71" to its place at the top of an address; the number of octets, 0 if it is none.
static int ParseOctets(std::string text, uint32_t *address) {
    int octets = 1;
    for (char ch : text) octets += ch == '.';
    for (int i = octets; i < 4; i++) text += ".0";
    return octets <= 4 && SimParseAddress(text, address) ? octets : 0;
}

static bool ParseMap(const std::string &text, SimReadOptions *read) {
    size_t equal = text.find('=');
    if (equal == text.npos) return false;
    int octets = ParseOctets(text.substr(0, equal), &read->mapFrom);
    if (octets == 0 || ParseOctets(text.substr(equal + 1), &read->mapTo) != octets) return false;
    read->mapMask = UINT32_MAX << (32 - 8 * octets);
    return true;
}

static uint16_t ParsePort(char option, const char *text) {
    int64_t port;
    if (!SimParseNumber(text, 1, UINT16_MAX, &port)) Refuse(option, text);
    return static_cast<uint16_t>(port);
}

static double ParseSeconds(const char *text) {
    char *end;
    double seconds = strtod(text, &end);
    if (end == text || *end || !(seconds > 0 && seconds < 1e9)) Refuse('t', text);
    return seconds;
}

static Options ParseOptions(int argc, char **argv) {
    Options options;
    int64_t number;
    for (int option; (option = getopt(argc, argv, "np:w:r:q:m:k:s:l:c:e:t:d:")) != -1;) {
        switch (option) {
        case 'n': options.flCheck = true; break;
        case 'p': options.ports.snmp = ParsePort('p', optarg); break;
        case 'w': options.ports.web = ParsePort('w', optarg); break;
        case 'r': options.ports.raw = ParsePort('r', optarg); break;
        case 'q': options.ports.lpd = ParsePort('q', optarg); break;
        case 'c': options.control = optarg; break;
        case 'e': options.change = optarg; break;
        case 'm':
            if (!ParseMap(optarg, &options.read)) Refuse('m', optarg);
            break;
        case 'k': options.read.knobs.push_back(optarg); break;
        case 's':
            if (!SimParseNumber(optarg, 0, INT64_MAX, &number)) Refuse('s', optarg);
            options.seed = optarg;
            break;
        case 'l': options.log = optarg; break;
        case 't': options.seconds = ParseSeconds(optarg); break;
        case 'd': options.dump = optarg; break;
        default: Usage(); // getopt has told what it missed
        }
    }
    options.files.assign(argv + optind, argv + argc);
    if (options.files.empty()) Usage();
    return options;
}

static int Dump(const SimFleet &fleet, const std::string &text) {
    uint32_t address;
    if (!SimParseAddress(text, &address)) Refuse('d', text.c_str());
    for (const SimPlaceOfPrinter &printer : fleet.printers) {
        if (printer.address != address) continue;
        SimOid name;
        while (const SimEntry *entry = SimFindNext(printer, name)) {
            puts(SimRecordLine(entry->name, entry->value, address, printer.number).c_str());
            name = entry->name;
        }
        if (fflush(stdout) == 0 && !ferror(stdout)) return EXIT_SUCCESS;
        perror("prnsim: standard output");
        return EXIT_FAILURE;
    }
    fprintf(stderr, "prnsim: no printer has the address %s\n", text.c_str());
    return EXIT_BAD_FLEET;
}

static void Stop(int) {
    flStop = 1;
}

// Blocks the signals that end the program and gives back the mask under which they come in.
static sigset_t CatchSignals() {
    struct sigaction action = {};
    sigset_t ending, before;
    sigemptyset(&ending);
    action.sa_handler = Stop;
    for (int number : {SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&ending, number);
        sigaction(number, &action, nullptr);
    }
    sigprocmask(SIG_BLOCK, &ending, &before);
    for (int number : {SIGTERM, SIGINT, SIGHUP}) sigdelset(&before, number);
    return before;
}

static FILE *OpenLog(const std::string &path) {
    if (path.empty()) return nullptr;
    FILE *log = path == "-" ? stdout : fopen(path.c_str(), "we");
    // A request stands in the log before its answer leaves: who has the answer finds the line.
    if (log && setvbuf(log, nullptr, _IOLBF, BUFSIZ) == 0) return log;
    fprintf(stderr, "prnsim: %s: %s\n", path.c_str(), strerror(errno));
    exit(EXIT_FAILURE);
}

static int Serve(SimFleet *fleet, const Options &options) {
    sigset_t waiting = CatchSignals();
    FILE *log = OpenLog(options.log);
    bool flRan = false;
    {
        auto net = std::make_unique<SimNet>(fleet, options.read, options.ports, log);
        if (net->Open() && (options.control.empty() || net->OpenControl(options.control))) {
            printf("ready %zu printers %zu subnets\n", fleet->printers.size(), fleet->subnets.size());
            fflush(stdout);
            flRan = net->Run(options.seconds, waiting, &flStop);
        }
    }
    if (log && (ferror(log) || fflush(log) != 0)) {
        fprintf(stderr, "prnsim: the log could not be written whole\n");
        flRan = false;
    }
    if (log && log != stdout) fclose(log);
    return flRan ? EXIT_SUCCESS : EXIT_FAILURE;
}

int main(int argc, char **argv) {
    Options options = ParseOptions(argc, argv);
    if (!options.change.empty())
        return SimSendChange(options.change, options.files) ? EXIT_SUCCESS : EXIT_BAD_FLEET;
    try {
        std::unique_ptr<SimFleet> fleet = SimReadFleet(options.files, options.read);
        if (!options.seed.empty()) fleet->seed = strtoull(options.seed.c_str(), nullptr, 10);
        if (!options.dump.empty()) return Dump(*fleet, options.dump);
        if (!options.flCheck) return Serve(fleet.get(), options);
        printf("%zu printers %zu subnets\n", fleet->printers.size(), fleet->subnets.size());
    } catch (const SimFault &fault) {
        fprintf(stderr, "prnsim: %s\n", fault.what());
        return EXIT_BAD_FLEET;
    }
    return EXIT_SUCCESS;
}
