// The discovery.
#include "prndeck/core/DiscPkg.h"

#include "SnmpPkg/Pkg.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscHosts.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdOids.h"

#include <string>

void InitPkgDisc() {
    ReadSubnetList();
    SniffInterfaces(SubnetCount == 0);
    WriteSNListToDatabase();
    ReadIPList();
    ReadBrowser();
}

// ORDER DISC_VAR
static int SetupDiscovery(SnmpPackage *package) {
    return SnmpSetup(package, PKG_INIT, PKG_EMPTY, OidSysObjectId, PKG_EMPTY, OidSysName, PKG_EMPTY,
                     OidSysDescr, PKG_EMPTY, OidHrDeviceDescr, PKG_EMPTY, OidIfPhysAddress, PKG_EMPTY,
                     OidLocalizationCharacterSet);
}

// The results tell nothing here: that of a broadcast is a number of answers.
void DoPkgDiscovery() {
    SnmpPackage package;
    if (SetupDiscovery(&package) != SUCCESS) return;
    DevCount = 0;
    ResetNameServers();
    if (pIpList)
        SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_CALLBACK, PrdSnmpPkgCB,
                 PKG_FILTER, DiscFilter, PKG_ADDRESSES, pIpList);
    const std::string subnets = BuildDiscoveryList(); // the call reads it to its end
    SnmpSend(&package, PKG_SENDMODE, PKG_MODE_BROADCAST, PKG_PDU, PDU_GET, PKG_CALLBACK, PrdSnmpPkgCB,
             PKG_FILTER, DiscFilter, PKG_ADDRESSES, subnets.c_str(), PKG_CLEAR_DISCOVERED);
}
