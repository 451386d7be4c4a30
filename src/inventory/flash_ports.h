#pragma once

/// Gives every port with a serial number of the ordered p_hba_info_list its flash_port, where
/// there is a candidate, and hangs the FCoE ports of a controller on that port through
/// next_ctrl_port. A chain can lead back to a port already passed. Always gives 0.
int Determine_Flash_Ports();
