// A small batch editor for configuration files: each call changes one text file on disk, line by line.
//
// A file is named by a name and an extension, "NAME.EXTENSION", or by the name alone where the extension is
// empty or null. Each call writes the new text to a temporary beside the file ("NAME.EXTENSIONout",
// "NAME.out"), removes the file and moves the temporary into its place by the shell, so that the file keeps
// its mode and owner but is another file afterwards. A change that somebody else makes in between is lost.
//
// Lines longer than 510 bytes are handled in pieces of 510, each as if it were a line. NUL bytes are ordinary
// bytes. An empty or null search text is found nowhere. Codes of characters are texts: "13", "0x0d", "015".
//
// Ends, all of them: through SysError, when the file or the temporary can't be opened, read or written; the
// file is then as it was. The outcome of the replacement itself is not looked at.
#pragma once

#include <climits>

extern char Fn[PATH_MAX];    // file of OpenIOFiles and ReplaceInputFile; writer: OpenIOFiles
extern char FnOut[PATH_MAX]; // its temporary; writer: OpenIOFiles

// The first occurrence in each line becomes the new text (null: empty).
void FileChange(const char *name, const char *extension, const char *oldText, const char *newText);
// Each occurrence of the character becomes the characters of the comma list: "0x0d", "0x0d,0x0a".
void FileChangeChar(const char *name, const char *extension, const char *code, const char *codes);
// The first occurrence in each line goes, but not in the first count lines that hold one.
void FileDel(const char *name, const char *extension, int count, const char *text);
// In each line that holds the text, by the first character of the mode:
//   none  the text goes                     a  all behind the text goes, and a line feed closes the line
//   l     the line goes                     b  all in front of the text goes
// Mode c takes the text for a code and that character out of each line. Result: 0, or 1 for any other mode;
// the file is then untouched, and an empty temporary stays behind.
int FileDelFormat(const char *name, const char *extension, const char *mode, const char *text);
// Lines that hold the text go, but not the first count of them.
void FileDelLine(const char *name, const char *extension, int count, const char *text);
// Takes out pairs of lines: each that holds the first text, but not the first count of them, and for each of
// these the next one that holds the second. What stands between them stays.
void FileDelLinePair(const char *name, const char *extension, int count, const char *first,
                     const char *second);
// A line made from the template goes in front of each line, or of each one that holds the search text; a
// template without a line feed at its end gets one. A counter goes up by 1 behind each of these lines. Two
// markers, each followed by digits (none: 0), once:
//   %s  the counter's first value; it is taken out of the template, in place, which must be writable
//   %#  stands for the counter less these digits, in five places; nothing is inserted while that is negative
void FileInsert(const char *name, const char *extension, char *templateText);
void FileSearchInsert(const char *name, const char *extension, char *templateText, const char *search);

// For changes of another kind: opens pIn on the file and pOut on the temporary, whatever they were before ...
void OpenIOFiles(const char *name, const char *extension);
// ... and closes both, and puts the temporary in the file's place.
void ReplaceInputFile();
