// The queue store of a host with CUPS, worked by its own commands.
//
// Every operation answers an empty text, or the host's complaint in words for the user.
#pragma once

#include "siblings/lib/Queue.h"

#include <map>
#include <string>
#include <vector>

enum CupsState {
    CUPS_ABSENT, // no CUPS on this host
    CUPS_DOWN,   // there, but its scheduler doesn't answer
    CUPS_UP,
};

// Asks for the queues; at CUPS_UP the list is whole, at CUPS_DOWN the error tells why. Queues that the tool
// makes for a moment, left behind by a run that was killed, are listed apart.
CupsState CupsList(std::vector<std::string> &queues, std::vector<std::string> &leftovers, std::string &error);

bool CupsAnswers(); // now, whatever it did before
// Each queue with its device; empty if the scheduler doesn't answer.
void CupsDevices(std::map<std::string, std::string> &devices);
std::string CupsUri(const Queue &queue); // the device that CupsAdd gives a queue

// From now on the operations below change nothing and answer that they did.
void CupsPretend();

// Makes a queue that the host doesn't have. If the host doesn't take the PPD file the queue is made without,
// with a warning. After an error nothing is left of it.
std::string CupsAdd(const Queue &queue, const Titles &titles);

// Turns an existing queue into this one in place, so that it never vanishes. Whether the host takes the new
// values is tried first on a queue made for the purpose; flTouched stays false if it doesn't, and the old
// queue is as it was.
std::string CupsReplace(const Queue &queue, const Titles &titles, bool &flTouched);

// Settings and banner of an existing queue; where it prints stays.
// The PPD file goes along with flPpd only: it would bring back the model's own for all that was set at the
// host.
std::string CupsModify(const Queue &queue, const Titles &titles, bool flPpd);
std::string CupsSetBanner(const Queue &queue, const Titles &titles);

std::string CupsDelete(const std::string &name);
std::string CupsSetDefault(const std::string &name);
std::string CupsDefault(); // the host's default queue, whoever chose it; empty for none
std::string CupsCancelAll(const std::string &name);
std::string CupsClearDefault(); // no queue is the default then
