// Asks agents through the SNMP package and prints what came, for tests, for the demo and for a look at a
// printer.
//
//     snmpask [-c COMMUNITY] [-f FILTER] [-t SECONDS] get|next|table|set|find TARGETS VARIABLE...
//
// TARGETS are addresses with commas between them, of find "ADDRESS MASK" each. A variable is an object
// identifier, for set with =i:NUMBER, =s:TEXT or =o:OBJECT behind it. A line "host ADDRESS" for each host or
// table row that passes the filter (address - if nobody answered), a line "NAME STATUS TYPE TEXT" below it
// for each variable, and at the end "result CODE". In TEXT, backslashes and what cannot be shown stand as
// \ and two hexadecimal digits.
#include "SnmpPkg/Pkg.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

struct AskVerb {
    const char *Name;
    int Mode;
    int Pdu;
};
static constexpr AskVerb AskVerbs[] = {
    {"get", PKG_MODE_GET, PDU_GET}, {"next", PKG_MODE_GET, PDU_GETNEXT},   {"table", PKG_MODE_GET, PDU_TABLE},
    {"set", PKG_MODE_GET, PDU_SET}, {"find", PKG_MODE_BROADCAST, PDU_GET},
};

[[noreturn]] static void AskUsage() {
    fprintf(stderr, "usage: snmpask [-c COMMUNITY] [-f FILTER] [-t SECONDS] get|next|table|set|find TARGETS "
                    "OBJECT[=i:NUMBER|=s:TEXT|=o:OBJECT]...\n");
    exit(2);
}

static void AskPrintText(const char *text) {
    for (; *text != 0; text++) {
        if (*text < ' ' || *text > '~' || *text == '\\')
            printf("\\%02x", static_cast<unsigned char>(*text));
        else
            putchar(*text);
    }
    putchar('\n');
}

static int AskShow(int, intptr_t, int, int, SnmpPackage *package, PkgSource *source) {
    printf("host %s\n", source->Address[0] != 0 ? source->Address : "-");
    for (int i = 0; i < package->NumRecVars; i++) {
        const PkgVar &var = package->Vars[i];
        printf("%s %d %d ", var.Name, var.Status, var.RecType);
        AskPrintText(var.RecText);
    }
    return 0;
}

// A value behind its name, which ends there; 3 for one of no known kind.
static int AskAddValue(SnmpPackage *package, char *name, char *value) {
    *value++ = 0;
    if (strncmp(value, "i:", 2) == 0) return SnmpSetup(package, PKG_NUMBER, name, atoi(value + 2));
    if (strncmp(value, "s:", 2) == 0) return SnmpSetup(package, PKG_STRING, name, value + 2);
    if (strncmp(value, "o:", 2) == 0) return SnmpSetup(package, PKG_OBJECT, name, value + 2);
    return SETUP_ERR_INVALID_PARAM;
}

static int AskAdd(SnmpPackage *package, char *word, int pdu) {
    char *value = strchr(word, '=');
    if (value != nullptr) return AskAddValue(package, word, value);
    return SnmpSetup(package, pdu == PDU_TABLE ? PKG_TABLE_NAME : PKG_EMPTY, word);
}

static const AskVerb *AskFind(const char *name) {
    for (const AskVerb &verb : AskVerbs)
        if (strcmp(verb.Name, name) == 0) return &verb;
    AskUsage();
}

int main(int argc, char **argv) {
    SnmpPackage package;
    const char *filter = nullptr;
    SnmpSetup(&package, PKG_INIT);
    for (int option; (option = getopt(argc, argv, "c:f:t:")) != -1;) {
        if (option == 'c' && SnmpSetup(&package, PKG_COMMUNITY, optarg) == SUCCESS) continue;
        if (option == 'f') filter = optarg;
        if (option == 't') package.Timeout = atoi(optarg);
        if (option != 'f' && option != 't') AskUsage();
    }
    if (argc - optind < 3) AskUsage();
    const AskVerb *verb = AskFind(argv[optind]);
    for (int i = optind + 2; i < argc; i++)
        if (AskAdd(&package, argv[i], verb->Pdu) != SUCCESS) AskUsage();
    int code = SnmpSend(&package, PKG_SENDMODE, verb->Mode, PKG_PDU, verb->Pdu, PKG_CALLBACK, AskShow,
                        PKG_FILTER, filter, PKG_CLEAR_DISCOVERED, PKG_ADDRESSES, argv[optind + 1]);
    printf("result %d\n", code);
    return 0;
}
