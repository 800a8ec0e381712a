// Shows the manual as its readers see it: each page laid out by the manual's own reader, with its links.
//
//     htmltext FILE [PAGE]   the pages of the file, or the one of that name
//     htmltext -tags         the tags that the layout knows, one a line
//
// A page is a line "=== NAME LINES", that many lines of text, then a line for each link that the text shows,
// "--> TARGET TEXT", and one for each name that a link can lead to, "--# NAME". Status 1 if the file or the
// page isn't there. The checker of the manual reads this form.
#include "help/html.h"

#include "common/utils.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

static void PrintTags() {
    for (const char *tag = HtmlKeys + 1; *tag; tag = strchr(tag, ',') + 1) {
        int length = static_cast<int>(strcspn(tag, ","));
        if (strncmp(tag, "fitab,", 6) != 0)
            printf("%.*s\n", length, tag); // the layout's own name for a table
    }
}

static int CountLines(const char *text) {
    return static_cast<int>(std::count(text, text + strlen(text), '\n'));
}

// A link is shown with "<" and ">" around its text, which may be cut off where the layout lost it.
static void PrintLink(const HtmlPage *page, const HtmlLink *link) {
    const char *target = link->Target ? link->Target : "";
    if (link->Kind == LINK_NAME) {
        printf("--# %s\n", target);
        return;
    }
    int length = std::max(0, link->End - link->Start - 2);
    printf("--> %s %.*s\n", target, length, length > 0 ? page->TextImage + link->Start + 1 : "");
}

static void PrintPage(const HtmlPage *page) {
    printf("=== %s %i\n%s", page->Name ? page->Name : "", CountLines(page->TextImage), page->TextImage);
    for (int i = 0; i < page->AnchorCount; i++) PrintLink(page, page->Anchors[i]);
}

static int PrintPages(const HtmlFile *file, const char *name) {
    int printed = 0;
    for (const HtmlPage *page = file->Pages; page; page = page->next) {
        if (name && (!page->Name || strcmp(page->Name, name) != 0)) continue;
        PrintPage(page);
        printed++;
    }
    if (printed == 0) fprintf(stderr, "htmltext: no page %s\n", name);
    return printed == 0;
}

int main(int argc, char **argv) {
    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: htmltext FILE [PAGE] | htmltext -tags\n");
        return 1;
    }
    if (strcmp(argv[1], "-tags") == 0) {
        PrintTags();
        return 0;
    }
    const HtmlFile *file = ParseHtmlFile(argv[1], nullptr);
    if (!file) {
        fprintf(stderr, "htmltext: no page in %s\n", argv[1]);
        return 1;
    }
    return PrintPages(file, argv[2]);
}
