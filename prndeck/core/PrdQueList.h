// The two lists of queues, and when to read them anew.
#pragma once

// Managed. Writers: ReadQueLists and DropQueList.
extern char *pQueList;      // ",q1,q2": all queues of the host, or null
extern char *pTarvoQueList; // ",q1": the family's queues among them, or null

// Reads both anew. Starts prnqtool.
void ReadQueLists();
// 1 if the host has a queue of that name. Reads both lists anew: a menu or window may have been open for
// hours, and others make queues as well.
int TestHostQueue(const char *name);
// Releases the host's list: whoever finds it null reads both anew.
void DropQueList();
// The family's queues as ",q1,q2", sorted; null if there is none. Owns: the result.
[[nodiscard]] char *GetTarvoQueList();

// 1 if the database of queues was written, made, replaced or removed since the last call, by whomever. The
// first call takes it as it is.
int TestQueDbChange();
