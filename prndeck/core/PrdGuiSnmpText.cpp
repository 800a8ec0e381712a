// What a printer's values look like on the property sheet.
#include "prndeck/core/PrdGuiSnmpText.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Token.h"
#include "common/utils.h"
#include "prndeck/core/PrdSets.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <strings.h>

enum { PAPER_TOLERANCE = 50 };

const char *pCommFail, *pNA, *pSome, *pOther, *pUnknown, *pUnavailable;
const char *pTenThousandths, *pMicrometers, *pSheets, *pFeet, *pMeters;
const char *pThousandthsOunces, *pTenthsGrams, *pHundredthsOunces, *pTenthsMilliliters;
const char *pSetErr, *pSetErr1, *pSetErr2, *pEnabled, *pDisabled;
const char *pWaitMsg1, *pWaitMsg2, *pWaitErr1, *pWaitErr2, *pResetFail;
int flTranslatedSNMP;

// ---- Words

struct SnmpWord {
    const char **word;
    int number; // in SET_MESSAGES
};
static constexpr SnmpWord Words[] = {
    {&pCommFail, 29},
    {&pTenThousandths, 34},
    {&pMicrometers, 35},
    {&pSheets, 36},
    {&pFeet, 37},
    {&pMeters, 38},
    {&pNA, 39},
    {&pSome, 40},
    {&pOther, 41},
    {&pUnknown, 42},
    {&pThousandthsOunces, 46},
    {&pTenthsGrams, 47},
    {&pHundredthsOunces, 48},
    {&pTenthsMilliliters, 49},
    {&pUnavailable, 53},
    {&pSetErr, 55},
    {&pSetErr1, 56},
    {&pSetErr2, 58},
    {&pEnabled, 59},
    {&pDisabled, 60},
    {&pWaitMsg1, 61},
    {&pWaitMsg2, 62},
    {&pWaitErr1, 63},
    {&pWaitErr2, 64},
    {&pResetFail, 65},
};

void TranslateSNMPMessages() {
    if (flTranslatedSNMP) return;
    flTranslatedSNMP = 1;
    for (const SnmpWord &row : Words)
        *row.word = SaveStr_(NlsText(pDrvCoreDB, SET_MESSAGES, row.number).c_str());
}

// ---- Numbers with a meaning

struct UnitName {
    int unit;
    const char **name;
};
static constexpr UnitName UnitNames[] = {
    {UNIT_TEN_THOUSANDTHS, &pTenThousandths},
    {UNIT_MICROMETERS, &pMicrometers},
    {UNIT_SHEETS, &pSheets},
    {UNIT_THOUSANDTHS_OUNCES, &pThousandthsOunces},
    {UNIT_TENTHS_GRAMS, &pTenthsGrams},
    {UNIT_HUNDREDTHS_OUNCES, &pHundredthsOunces},
    {UNIT_TENTHS_MILLILITERS, &pTenthsMilliliters},
    {UNIT_FEET, &pFeet},
    {UNIT_METERS, &pMeters},
};

const char *CovertSnmpUnitToName(const char *value) {
    int unit = ParseInt(value);
    for (const UnitName &row : UnitNames)
        if (row.unit == unit) return *row.name;
    return pNA;
}

const char *CovertSnmpCapacityToValue(const char *value) {
    enum { LEVEL_OTHER = -1, LEVEL_SOME = -3 };
    int level = ParseInt(value);
    if (level == LEVEL_SOME) return pSome;
    if (level == LEVEL_OTHER) return pOther;
    return level < 0 ? pUnknown : value;
}

const char *CovertSnmpMaximumToValue(const char *value) {
    return ParseInt(value) < 0 ? pNA : value;
}

// ---- Paper sizes

struct PaperDef {
    int width, height;    // ten-thousandths of an inch
    int metricX, metricY; // micrometres
    const char *name;
};
static constexpr PaperDef PaperDefArray[] = {
    {85000, 110000, 215900, 279400, "Letter"},
    {85000, 140000, 215900, 355600, "Legal "},
    {85000, 130000, 215900, 330200, "Folio"},
    {72500, 105000, 184150, 266700, "Executive"},
    {110000, 170000, 279400, 431800, "Ledger"},
    {165400, 116900, 420000, 297000, "A3"},
    {82700, 116929, 210000, 297000, "A4"},
    {58300, 82700, 148000, 210000, "A5"},
    {41300, 58300, 105000, 148000, "A6"},
    {72500, 52500, 184150, 133350, "A7"},
    {143300, 101200, 364000, 257000, "B4-JIS"},
    {71700, 101200, 182000, 257000, "B5-JIS"},
    {95000, 41250, 241300, 104775, "Com10"},
    {90200, 63800, 229000, 162000, "C5"},
    {44880, 63780, 114000, 162000, "C6"},
    {86600, 43300, 220000, 110000, "DL"},
    {75000, 38700, 190500, 98298, "Monarch"},
    {75000, 38750, 190500, 98425, "Monarch"},
    {98400, 69300, 250000, 176000, "B5-ISO"},
    {55000, 85000, 139700, 215900, "Statement"},
    {85040, 109840, 216000, 279000, "Letter"},
    {85040, 140160, 216000, 356000, "Legal "},
    {55120, 70080, 140000, 178000, "5 x 7"},
    {90160, 109840, 229000, 279000, "9 x 11"},
    {88190, 116930, 224000, 297000, "Oversized A4"},
    {44880, 59840, 114000, 152000, "4.5 x 6"},
    {50000, 101180, 127000, 257000, "B6-JIS"},
    {0, 0, 0, 0, nullptr},
};

static bool IsPaperSide(intptr_t a, int b) {
    return a > b - PAPER_TOLERANCE && a < b + PAPER_TOLERANCE;
}

const char *FindPaperSize(intptr_t x, intptr_t y, intptr_t unit) {
    for (const PaperDef *row = PaperDefArray; row->name; row++) {
        int width = unit == UNIT_TEN_THOUSANDTHS ? row->width : row->metricX;
        int height = unit == UNIT_TEN_THOUSANDTHS ? row->height : row->metricY;
        if (IsPaperSide(y, width) && IsPaperSide(x, height)) return row->name;
        if (IsPaperSide(y, height) && IsPaperSide(x, width)) return row->name;
    }
    return pUnknown;
}

// ---- Columns

PkgVar *GetColumnVar(const SnmpTableDesc *table, SnmpPackage *package, int column) {
    int number = 0;
    if (!*table->Oids[column]) return nullptr;
    for (int i = 0; i < column; i++) number += *table->Oids[i] != 0;
    return number < package->NumRecVars ? &package->Vars[number] : nullptr;
}

static std::string GetPaperColumn(const SnmpPackage *package, const SnmpTableDesc *table) {
    const PkgVar *vars = package->Vars;
    return FindPaperSize(vars[table->PaperX].RecValue, vars[table->PaperY].RecValue,
                         vars[table->PaperUnit].RecValue);
}

std::string ProcessDataFormat(char format, SnmpPackage *package, const SnmpTableDesc *table, int column) {
    if (format == 'p') return GetPaperColumn(package, table);
    const PkgVar *var = GetColumnVar(table, package, column);
    std::string text = GetPrinterText(var ? var->RecText : "");
    switch (format) {
    case 'c': return CovertSnmpCapacityToValue(text.c_str());
    case 'm': return CovertSnmpMaximumToValue(text.c_str());
    case 's': return StripNonPrint(text.data());
    case 'u': return CovertSnmpUnitToName(text.c_str());
    case 't': return var ? GetEditText(var->RecText) : "";
    default: return text;
    }
}

// ---- Texts

// The letter that UTF-8 begins with and its bytes; 0 bytes for what is no UTF-8.
static int ReadUtf8(const char *text, uint32_t *letter) {
    static constexpr uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000}; // of so many bytes
    auto lead = static_cast<unsigned char>(*text);
    int size = lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
    *letter = size == 1 ? lead : lead & (0x7FU >> size);
    for (int i = 1; i < size; i++) {
        if ((text[i] & 0xC0) != 0x80) return 0;
        *letter = *letter << 6 | (text[i] & 0x3F);
    }
    bool flNone = (*letter >= 0xD800 && *letter < 0xE000) || *letter > 0x10FFFF;
    return flNone || *letter < Least[size] ? 0 : size;
}

// The Latin-1 bytes of UTF-8; false for a text that is no UTF-8. flLacks: Latin-1 lacks one of its letters.
static bool DecodeUtf8(const char *text, std::string *out, bool *flLacks) {
    static constexpr char Lacking = '?';
    uint32_t letter;
    *flLacks = false;
    for (int size; *text; text += size) {
        size = ReadUtf8(text, &letter);
        if (size == 0) return false;
        *flLacks |= letter > 0xFF;
        *out += letter > 0xFF ? Lacking : static_cast<char>(letter);
    }
    return true;
}

bool IsUtf8Text(const char *text) {
    std::string out;
    bool flLacks;
    return DecodeUtf8(text, &out, &flLacks);
}

std::string GetPrinterText(const char *text) {
    std::string out;
    bool flLacks;
    return DecodeUtf8(text, &out, &flLacks) ? out : text;
}

std::string GetEditText(const char *text) {
    std::string out;
    bool flLacks;
    return DecodeUtf8(text, &out, &flLacks) && !flLacks ? out : text;
}

std::string PutPrinterText(const std::string &text, bool flUtf8) {
    if (!flUtf8) return text;
    std::string out;
    for (char ch : text) {
        auto code = static_cast<unsigned char>(ch);
        if (code >= 0x80) out += static_cast<char>(0xC0 | code >> 6);
        out += code < 0x80 ? ch : static_cast<char>(0x80 | (code & 0x3F));
    }
    return out;
}

std::string CleanPrinterText(const char *text) {
    std::string clean = text;
    return StripNonPrint(clean.data());
}

std::string BreakLines(const std::string &text) {
    std::string out;
    int used = 0;
    for (char ch : text) {
        if (used == TEXT_LINE && ch != '\n') {
            out += '\n';
            used = 0;
        }
        out += ch;
        used = ch == '\n' ? 0 : used + 1;
    }
    return out;
}

std::string JoinLines(const std::string &text, bool flOneLine) {
    std::string out;
    int used = 0;
    for (char ch : text) {
        bool flEnd = ch == '\n';
        if (!flEnd || (used != TEXT_LINE && !flOneLine)) out += ch;
        used = flEnd ? 0 : used + 1;
    }
    return out;
}

// ---- Channels

const char ProtocolType[PROTOCOLS][PROTOCOL_NAME] = {
    "",
    "Other",
    "Unknown",
    "Serial Port",
    "Parallel Port",
    "IEEE 1284 Port",
    "SCSI Port",
    "Apple EtherTalk",
    "LPD Server",
    "Netware Remote Printer",
    "Netware Print Server",
    "Port 9100",
    "AppSocket",
    "FTP",
    "TFTP",
    "DLC/LLC",
    "IBM 3270",
    "IBM 5250",
    "FAX",
    "IEEE 1394",
    "Transport 1",
    "CPAP",
    "DCE Remote Proc Call",
    "ONC Remote Proc Call",
    "OLE",
    "Named Pipe",
    "PC Print",
    "Server Message Block (SMB)",
    "DPMF",
    "DLLAPI",
    "VxDAPI",
    "System Object Manager",
    "DEC LAT",
    "NPAP",
    "USB",
    "",
};

static std::string GetChannelName(const char *version, intptr_t type) {
    static constexpr char Other[] = "Other";
    enum { FIRST_TYPE = 1, LAST_TYPE = PROTOCOLS - 2 };
    std::string name = GetPrinterText(version);
    if (name.empty()) return Other;
    if (name == " " || strcasecmp(name.c_str(), "unknown") == 0)
        return type >= FIRST_TYPE && type <= LAST_TYPE ? ProtocolType[type] : Other;
    return name.size() >= CHANNEL_LABEL ? name.substr(0, CHANNEL_CUT) + "..." : name;
}

std::string GetChannelLabel(const char *version, intptr_t type) {
    std::string name = GetChannelName(version, type);
    return std::string(CHANNEL_LABEL - name.size(), ' ') + name;
}
