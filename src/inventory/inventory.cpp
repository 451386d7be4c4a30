#include "inventory/inventory.h"

#include <sys/stat.h>

#include "base/output.h"
#include "base/progress.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_records.h"
#include "inventory/target_mapping.h"

namespace {

exit_status collect() {
    exit_status status = collect_port_list();
    if (status != RET_OK || p_hba_info_list == nullptr) {
        return status;
    }
    status = collect_port_attributes();
    return status != RET_OK ? status : collect_target_mappings();
}

}  // namespace

exit_status Get_All_Hba_Info() {
    struct stat tool {};
    if (active_option_simulate == 0 && stat(pHBAFlashCmdPath, &tool) != 0) {
        Print(1, "\t\tCommand %s is not available!\n\n", pHBAFlashCmdPath);
        return RET_SCLI_NOT_INSTALLED;
    }
    const exit_status status = collect();
    take_progress_away();
    return status;
}
