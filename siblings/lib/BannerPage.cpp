// The PostScript of the banner page.
#include "siblings/lib/BannerPage.h"

#include "siblings/lib/Utf8.h"

#include <cstdio>
#include <cstring>

enum { JOB_POINTS = 14, TEXT_MAX = 1000 };

// Texts come in UTF-8, which the printer's fonts don't know: what Latin 1 has is shown, the rest as a
// question mark.
static const char PageHead[] = R"(%!PS-Adobe-3.0
%%Title: Banner page of a print queue
%%Pages: 1
%%BoundingBox: 0 0 595 842
%%EndComments
%%Page: 1 1
/Row 620 def
/Helvetica-Bold findfont dup length dict begin
  { 1 index /FID ne { def } { pop pop } ifelse } forall
  /Encoding ISOLatin1Encoding def
currentdict end /Banner-Font exch definefont pop
/Put { Out Used 3 -1 roll put /Used Used 1 add def } bind def
/Latin {
  /In exch def /Out In length string def /Used 0 def /Lead 0 def
  In {
    dup 128 lt { Put } {
      dup 192 ge { /Lead exch def Lead 196 ge { 63 Put } if } {
        Lead 196 lt { 63 and Lead 3 and 64 mul add Put } { pop } ifelse
      } ifelse
    } ifelse
  } forall
  Out 0 Used getinterval
} bind def
/Centered {
  /Points exch def Latin /Text exch def
  Points 0 gt {
    /Banner-Font findfont Points scalefont setfont
    /Width Text stringwidth pop def
    Width 535 gt {
      /Banner-Font findfont Points 535 mul Width div scalefont setfont
      /Width 535 def
    } if
    297 Width 2 div sub Row moveto Text show
    /Row Row Points 1.6 mul sub def
  } if
} bind def
)";
static const char PageTail[] = "showpage\n%%Trailer\n%%EOF\n";
static const char EndOfJob = 4;

std::string BannerPage(std::string_view lines) {
    return PageHead + std::string(lines) + PageTail;
}

static std::string Line(std::string_view text, int points) {
    std::string escaped;
    char octal[8];
    for (char byte : CleanUtf8(text, TEXT_MAX)) {
        unsigned code = static_cast<unsigned char>(byte);
        if (code >= ' ' && code < 127) {
            if (strchr("()\\", byte)) escaped += '\\';
            escaped += byte;
            continue;
        }
        snprintf(octal, sizeof octal, "\\%03o", code);
        escaped += octal;
    }
    return "(" + escaped + ") " + std::to_string(points) + " Centered\n";
}

std::string BannerOfJob(const Titles &titles, std::string_view user, std::string_view job,
                        std::string_view title) {
    std::string lines;
    for (const Title &each : titles)
        if (!each.text.empty()) lines += Line(each.text, each.size);
    lines += Line(std::string(user) + "  " + std::string(job) + "  " + std::string(title), JOB_POINTS);
    return BannerPage(lines) + EndOfJob;
}
