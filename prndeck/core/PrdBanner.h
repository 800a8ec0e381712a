// Banner titles: the text that goes to prnqtool and stands in its database (BannerText.h), as rows to fill
// in.
#pragma once

#include "print/BannerText.h"

#include <string>
#include <string_view>

enum {
    BANNER_SIZES = 17,       // 8 to 40 points in steps of 2
    BANNER_DEFAULT_SIZE = 6, // index of 20 points
    BANNER_TITLE = 256,      // bytes of a title's buffer; the entry check admits 80 characters
    BANNER_TEXT = 4096,      // bytes of BannerLine
};

extern const int aBannerFontSize[BANNER_SIZES];
extern const char pBannerFontSizes[]; // the same as a list that starts with its delimiter

struct BannerRow {
    char title[BANNER_TITLE];
    int size; // index into aBannerFontSize
};

// A title that doesn't fit is cut.
void SetBannerRow(BannerRow *row, std::string_view title, int size);
// The rows of a text, null for none. A title without a line is empty, with the default size; a size that
// isn't in the list reads as the first; a line without two blanks or with another key is skipped.
void ReadBannerText(const char *text, BannerRow rows[BANNER_ROWS]);
// The text of the rows: a line for each title, in which a line end becomes a blank; empty if all titles are.
std::string MakeBannerText(const BannerRow rows[BANNER_ROWS]);
// Writes the text to ".bsettings" in the tool directory; an empty text, or one that can't be written, removes
// the file. 0 for one that can't be written, behind a message on standard error.
int PutBannerFile(const char *text);
// With a text: the line that makes ".bsettings" the system's default; without: the line that clears the
// default. Runs it and removes the file, since a default is no queue's own banner. What prnqtool told of it.
std::string PutDefaultBanner(const char *text);

// What a model allows, as the lists of models say.
enum { BANNER_UNSAID = -1 }; // no list says anything: it stays as it is
struct BannerRule {
    int allowed; // banner pages can be chosen
    int value;   // the choice that a new queue starts with; without allowed it is 0 for every queue
    int setup;   // the titles can be set up
};
// Of the model with that base name for a printing model.
BannerRule GetBannerRule(const char *base, int printingModel);
// For a queue of the type: one list alone decides, and nothing is said while one of the two lists is missing.
BannerRule GetTypeBannerRule(const char *base, int type);
