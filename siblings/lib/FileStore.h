// The queue store of a host without a print system: the text file "db/hostq", a line "NAME: URI SPOOLDIR" a
// queue.
//
// It is edited in memory, then written and put in place in two steps, as the records are.
#pragma once

#include "siblings/lib/Queue.h"

#include <string>
#include <vector>

// Loads the file; a missing one is empty. Answers an empty text, or what is wrong.
std::string FileStoreOpen();
std::vector<std::string> FileStoreQueues(); // in the order of the file
bool FileStoreHas(const std::string &name);
// Where the queue prints and spools: its records are open to everybody, the file is not. A text for the user
// if the record of a queue of the store tells otherwise, and nothing may be printed by it; else empty.
std::string FileStoreCheck(const Queue &queue);
// Where its jobs wait: by its record if that passes, else by its line.
std::string FileStoreSpool(const Queue &queue);
void FileStorePut(const Queue &queue); // adds the queue or changes its line in place
void FileStoreDelete(const std::string &name);
// Edits behind the last mark can be taken back; FileStoreOpen sets the first one.
void FileStoreMark();
void FileStoreRevert();

// Both do nothing if no line changed since FileStoreOpen.
std::string FileStorePrepare();
std::string FileStoreCommit();
void FileStoreDrop();
