// What is handed to the queues, and taken back: the lines for the print front end prnout and for prnrm. Every
// value is quoted here, once; callers pass plain values.
#pragma once

#include <string>
#include <string_view>

// ORDER SendKinds
enum { SEND_TEST_PAGE, SEND_FILE, SEND_UPGRADE };

// prnout is found through PATH. The line feed at the end keeps a redirection off the line: what prnout prints
// is seen.
std::string MakeSendLine(int operation, const char *queue, const char *file);
// prnrm lies in the tool directory. jobs: their names with blanks between them; one that is "-", which would
// mean all of them, is left out. Empty if no job is named.
std::string MakeRemoveLine(const char *queue, std::string_view jobs);
std::string MakeRemoveAllLine(const char *queue);

// What prnout, and prnrm, complained or warned of, a line each, and why it can't be started; empty if it did
// as it was told.
std::string RunSendLine(const std::string &line);
std::string RunRemoveLine(const std::string &line);
