#pragma once

/// Turns p_hba_info_list from the management tool's order into the order of all later stages:
/// plain FC ports leave it, the ports of a controller come together, controllers with FCoE
/// ports first, then those with iSCSI ports, each sorted by PCI function. Always gives 0.
int Classify_Ctrl_List();
