// The windows of the property sheet and the reset as texts, in the language of xmt/XmtNew.h.
#pragma once

// Each "%s" stands for a text of the catalogue, from number 1 on in the window's set.
extern const char SystemPropertyDesc[];  // snmp: the property sheet; snmpwait
extern const char SNMPResetWaitDialog[]; // resetwait
