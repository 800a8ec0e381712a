// All queues of the host in a text file, to be made again there or on another host.
//
// The file's first line is "prnqtool-export 1", its last "end CHECKSUM", sixteen digits over all bytes in
// front, so that a file that was cut or edited is told from a whole one. Between them:
//   titles                    the system's banner titles; always there
//   queue NAME                and of each queue with a record
//    ppd FILE  type TYPE  printer HOST|DEVICE  remote NAME  flag default|lpd|features|banner|ui
//    setting OPT=VAL          a line of its feature settings
//    title .h1 SIZE TEXT      a line of the banner text, of the queue or of the system
// each on a line of its own, led by a blank. PPD files are named, not held.
#pragma once

#include "siblings/prnqtool/Options.h"

#include <string>

// Writes the file, or standard output for "-". Queues that can't be told whole are named to the user, and the
// answer says so. Answers an empty text, or what is wrong.
std::string ExportQueues(const std::string &path);
// Brings each queue of the file, and the system's titles, to what it tells; other queues stay. A file that
// isn't whole changes nothing; a queue that is refused costs only itself.
std::string ImportQueues(const std::string &path);
