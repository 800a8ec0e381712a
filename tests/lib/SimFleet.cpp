// Simulated printers for a test.
#include "tests/lib/SimFleet.h"

#include "SnmpPkg/Pkg.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

std::string GetBuildDir() {
    char path[4096];
    ssize_t size = readlink("/proc/self/exe", path, sizeof path);
    std::string out(path, size > 0 ? static_cast<size_t>(size) : 0);
    for (int i = 0; i < 2; i++) out.resize(out.rfind('/'));
    return out;
}

std::string GetSourceDir() {
    std::string library = TESTS_LIB;
    return library.substr(0, library.find("/tests/lib"));
}

static std::string RunCommand(const std::string &command) {
    std::string out;
    FILE *pipe = popen(command.c_str(), "r");
    if (!pipe) return "";
    char buffer[4096];
    for (size_t size; (size = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, size);
    pclose(pipe);
    return out;
}

std::string FindFleetTools() {
    return RunCommand("for n in snmpwalk snmpget; do command -v $n >/dev/null || echo there is no $n; done");
}

// ---- The simulator

static std::string Simulator() {
    return GetBuildDir() + "/tools/prnsim/prnsim";
}

// The child tells that its sockets are bound, or ends.
static pid_t StartSimulator(const std::string &command) {
    int pipes[2];
    if (pipe(pipes) != 0) return 0;
    pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(pipes[1], STDOUT_FILENO);
        close(pipes[0]);
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    close(pipes[1]);
    char line[256];
    ssize_t size = read(pipes[0], line, sizeof line);
    close(pipes[0]);
    EXPECT_EQ(std::string(line, size > 0 ? 6 : 0), "ready ") << command;
    return child;
}

// Ports below those that other sockets get from the kernel.
SimFleet::SimFleet(const std::string &text, const char *file)
    : octet(20 + getpid() % 230), port(static_cast<uint16_t>(20000 + getpid() % 12000)),
      savedPort(SnmpAgentPort) {
    scratch.Write("fleet", "include \"" + GetSourceDir() + "/tools/prnsim/" + file + "\"\n" + text);
    std::string log = scratch.Path("log"), control = scratch.Path("control");
    process =
        StartSimulator("exec " + Simulator() + " -t 300 -m 10.71=127." + std::to_string(octet) + " -p " +
                       std::to_string(port) + " -l " + log + " -c " + control + " " + scratch.Path("fleet"));
    SnmpAgentPort = port;
}

SimFleet::~SimFleet() {
    SnmpAgentPort = savedPort;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
}

std::string SimFleet::At(const std::string &address) const {
    return "127." + std::to_string(octet) + address.substr(address.find('.', 3));
}

std::string SimFleet::Change(const std::string &line) const {
    return RunCommand(Simulator() + " -e " + scratch.Path("control") + " '" + line + "' 2>&1");
}

std::vector<std::string> SimFleet::Log() const {
    std::vector<std::string> out;
    std::istringstream in(ReadWhole(scratch.Path("log")));
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// ---- net-snmp

std::string SimFleet::RunTool(const std::string &tool, const std::string &address,
                              const std::string &name) const {
    return RunCommand("MIBS= " + tool + " -v1 -c rdcomm -t 1 -r 3 -On -Oxt -Oe " + At(address) + ":" +
                      std::to_string(port) + " " + name + " 2>/dev/null");
}

static std::string DecodeHex(const std::string &digits) {
    std::string out;
    std::istringstream in(digits);
    for (std::string pair; in >> pair;) out += static_cast<char>(std::stoi(pair, nullptr, 16));
    return out;
}

// What stands behind "=", as "Hex-STRING: 4C 6F ", "INTEGER: 5", "" or NULL.
static std::string DecodeValue(const std::string &text) {
    static const std::string Hex = "Hex-STRING: ", Oid = "OID: .";
    if (text.compare(0, Hex.size(), Hex) == 0) return DecodeHex(text.substr(Hex.size()));
    if (text.compare(0, Oid.size(), Oid) == 0) return text.substr(Oid.size());
    if (text == "NULL" || text == "\"\"") return "";
    size_t colon = text.find(": ");
    return colon == text.npos ? text : text.substr(colon + 2);
}

// Long texts go on in lines of their own.
static void AddValues(const std::string &output, Walk *walk) {
    std::istringstream in(output);
    std::string name, value;
    auto add = [&] {
        if (!name.empty()) (*walk)[name] = DecodeValue(value);
    };
    for (std::string line; std::getline(in, line);) {
        size_t sign = line.find(" = ");
        if (line.compare(0, 3, ".1.") != 0 || sign == line.npos) {
            value += " " + line;
            continue;
        }
        add();
        name = line.substr(1, sign - 1);
        value = line.substr(sign + 3);
    }
    add();
}

Walk SimFleet::Read(const std::string &address) const {
    Walk walk;
    AddValues(RunTool("snmpwalk", address, "1.3.6.1.2.1"), &walk);
    return walk;
}

std::string SimFleet::Get(const std::string &address, const std::string &name) const {
    Walk walk;
    AddValues(RunTool("snmpget", address, name), &walk);
    return walk[name];
}
