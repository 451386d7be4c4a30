#pragma once

#include "inventory/port_records.h"

/// Gives every port with a serial number of the ordered p_hba_info_list its flash_port, where
/// there is a candidate, and hangs the FCoE ports of a controller on that port through
/// next_ctrl_port. A chain can lead back to a port already passed. Always gives 0.
int Determine_Flash_Ports();

/// The first port with a serial number that has no flash port: a run ends with 22 there. Null when
/// every one has.
const hba_info* port_without_flash_port();
