// Firmware files: whether one fits the model of a queue, by the signature at its beginning.
//
// The model's item "PRDUpgrade" names the kind of its files, and for the kind "pjl" the identifiers that a
// file may carry behind its signature: "pjl P340 P345".
#pragma once

#include <string_view>

enum { UPGRADE_HEAD = 511 }; // bytes of a file that are looked at

// ORDER paDownLoadMsg
enum UpgradeResult {
    UPGRADE_UNSUPPORTED, // no such kind of files
    UPGRADE_INVALID,     // the file lacks the signature
    UPGRADE_OTHER_MODEL, // it is signed for another model
    UPGRADE_FITS,
};

// item: the value of "PRDUpgrade"; head: the first bytes of the file. Uses: chTokenDel.
UpgradeResult TestUpgrade(std::string_view item, std::string_view head);
// The head of a file into buffer, which has UPGRADE_HEAD bytes, without waiting for a writer: their number,
// or -1 if it can't be read.
int ReadUpgradeHead(const char *path, char *buffer);
