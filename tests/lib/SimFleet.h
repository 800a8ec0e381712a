// Simulated printers on loopback for a test, and what net-snmp's tools read from them.
#pragma once

#include "tests/lib/Capture.h"

#include <cstdint>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

using Walk = std::map<std::string, std::string>; // name: value in bytes; "" for a NULL

// The build's directory, by the place of the test program.
std::string GetBuildDir();
// The source's, for the files that come with it.
std::string GetSourceDir();

// Addresses of the description begin with 10.71; At gives the real one. The port is the program's while the
// fleet lives. The text may use what is in
// the file of tools/prnsim, its printers are there too.
class SimFleet {
public:
    explicit SimFleet(const std::string &text, const char *file = "tarvo.fleet");
    ~SimFleet();
    SimFleet(const SimFleet &) = delete;
    SimFleet &operator=(const SimFleet &) = delete;

    std::string At(const std::string &address) const;
    // Changes printers at work by lines "ADDRESS LINE"; what the simulator says to a wrong one.
    std::string Change(const std::string &line) const;
    Walk Read(const std::string &address) const; // what snmpwalk reads of the MIBs of the standards
    std::string Get(const std::string &address, const std::string &name) const; // by snmpget
    std::vector<std::string> Log() const;                                       // of the requests so far

private:
    std::string RunTool(const std::string &tool, const std::string &address, const std::string &name) const;
    Scratch scratch;
    int octet;
    uint16_t port, savedPort;
    pid_t process = 0;
};

// Names of programs that a fleet needs and this host lacks; empty if all are there.
std::string FindFleetTools();
