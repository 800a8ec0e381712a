// What printers are asked for, by the names of the MIBs. The tables of the property sheet stand beside its
// pages (prndeck/gui/PrdGuiSnmpPages.cpp).
#pragma once

// MIB-II
inline constexpr char OidSysDescr[] = "1.3.6.1.2.1.1.1.0";
inline constexpr char OidSysObjectId[] = "1.3.6.1.2.1.1.2.0";
inline constexpr char OidSysContact[] = "1.3.6.1.2.1.1.4.0";
inline constexpr char OidSysName[] = "1.3.6.1.2.1.1.5.0";
inline constexpr char OidSysLocation[] = "1.3.6.1.2.1.1.6.0";
inline constexpr char OidIfPhysAddress[] = "1.3.6.1.2.1.2.2.1.6.1"; // of the first interface
// Host Resources MIB, device 1
inline constexpr char OidHrDeviceDescr[] = "1.3.6.1.2.1.25.3.2.1.3.1";
inline constexpr char OidHrDeviceStatus[] = "1.3.6.1.2.1.25.3.2.1.5.1";
inline constexpr char OidHrPrinterStatus[] = "1.3.6.1.2.1.25.3.5.1.1.1";
// Printer MIB, first entry
inline constexpr char OidGeneralReset[] = "1.3.6.1.2.1.43.5.1.1.3.1";
inline constexpr char OidGeneralOperator[] = "1.3.6.1.2.1.43.5.1.1.4.1";
inline constexpr char OidGeneralServicePerson[] = "1.3.6.1.2.1.43.5.1.1.5.1";
inline constexpr char OidLocalizationCharacterSet[] = "1.3.6.1.2.1.43.7.1.1.3.1.1";
inline constexpr char OidMarkerLifeCount[] = "1.3.6.1.2.1.43.10.2.1.4.1.1";
inline constexpr char OidConsoleText[] = "1.3.6.1.2.1.43.16.5.1.2.1.1";

// The variables of a discovery, in their order. ORDER DISC_VAR
enum {
    DISC_VAR_OBJECT_ID, // a broadcast asks for it; its value plays no part
    DISC_VAR_NAME,
    DISC_VAR_SYSTEM, // read and not used
    DISC_VAR_DESCRIPTION,
    DISC_VAR_HARDWARE,
    DISC_VAR_PRINTER,
    DISC_VAR_COUNT
};

// A host is a printer if it describes its device and has a localization of a printer's console: only the
// Printer MIB has that, and many other devices describe themselves.
inline constexpr char DiscFilter[] = "(($5) && ($3))";
static_assert(DISC_VAR_PRINTER == 5 && DISC_VAR_DESCRIPTION == 3, "the filter says these numbers");
