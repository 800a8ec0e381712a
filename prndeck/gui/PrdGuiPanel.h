// The selected printer: what it allows, and the panel that shows it.
#pragma once

// Makes a printer the selected one, or none with -1. Uses: Cur_Product_Index, pCurPrnData.
void SetPrinterSelectionData(int index);
enum { SNMP_NO_PRINTER, SNMP_NO_WEB, SNMP_WEB, SNMP_OFF }; // ORDER SNMP_
// Enables what the state allows: no printer selected, one without or with a web port. A selected printer of a
// model without SNMP services has a state of its own, whatever is asked.
void GreyoutSNMP(int state);
// Disables the reset for a selected printer whose model has none.
void GreyoutReset();
// Reads status and location from a printer and shows them with its picture. Blocks; a failure is posted.
void DiscProcessPrinterSelection(int index);
// The panel without a printer.
void ClearPrinterPanel();
