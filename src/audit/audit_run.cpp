#include "audit/audit_run.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "audit/json_report.h"
#include "audit/outputs.h"
#include "audit/progress.h"
#include "audit/table_lint.h"
#include "audit/text_report.h"
#include "base/ground.h"
#include "base/list.h"
#include "base/run_lock.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/flash_ports.h"
#include "inventory/management_tool.h"
#include "inventory/port_list.h"
#include "inventory/port_ordering.h"
#include "inventory/tool_places.h"

namespace {

bool read_table() {
    now_reading(pHBAConditionsPath);
    const exit_status status = Read_FC_Config_File(pHBAConditionsPath);
    if (status != RET_OK) {
        give_up(fill_in("the table %s cannot be used: cnatool ends with status %s here",
                        {pHBAConditionsPath, std::to_string(status)}));
    }
    return status == RET_OK;
}

bool collect_outputs(std::vector<finding>& findings) {
    const exit_status status = read_outputs(findings);
    if (status == RET_MEMALLOC_FAIL) {
        throw std::bad_alloc();
    }
    if (status != RET_OK) {
        give_up(fill_in("there is no readable %s: run cnatool first", {port_list_path()}));
    }
    return status == RET_OK;
}

const hba_info* port_without_flash_port() {
    const auto ports = entries(p_hba_info_list);
    const auto found = std::find_if(ports.begin(), ports.end(), [](const hba_info* port) {
        return has_serial_number(*port) && port->flash_port == nullptr;
    });
    return found == ports.end() ? nullptr : *found;
}

audit_status report(const survey& result) {
    const audit_status status = result.findings.empty() ? AUDIT_NO_FINDING : AUDIT_FINDINGS;
    const std::string text = active_option_json ? json_report(result, status) : text_report(result);
    return write_out(text) ? status : AUDIT_GAVE_UP;
}

survey judge(std::vector<finding> findings) {
    survey result = survey_inventory();
    result.findings = std::move(findings);
    judge_table(result.findings);
    survey_selection(p_option_input, result);
    survey_check(p_option_input, result);
    if (active_option_flash != 0) {
        survey_flash(p_option_input, result);
    }
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const finding& a, const finding& b) { return a.code < b.code; });
    return result;
}

// A command counts as too long with its first word, whichever place the management tool has.
void settle_length_of_commands() {
    const auto* longest = std::max_element(
        tool_places.begin(), tool_places.end(),
        [](auto* a, auto* b) { return std::string_view(a).size() < std::string_view(b).size(); });
    set_text(pHBAFlashCmdPath, *longest);
}

}  // namespace

std::optional<survey> audit_server() {
    // Nothing here runs a command; should something ever ask for one, it is not run.
    active_option_simulate = 1;
    settle_length_of_commands();
    std::vector<finding> findings;
    if (!read_table() || !collect_outputs(findings)) {
        return std::nullopt;
    }
    Classify_Ctrl_List();
    Determine_Flash_Ports();
    if (const hba_info* port = port_without_flash_port()) {
        give_up(fill_in("port %s %s has no flash port: cnatool ends with status 22 here",
                        {port->SerialNo, port_name(*port)}));
        return std::nullopt;
    }
    return judge(std::move(findings));
}

audit_status audit_run(int argc, char** argv) {
    if (!hold_memory_back()) {
        give_up("out of memory");
        return AUDIT_GAVE_UP;
    }
    try {
        if (const auto ended = read_audit_call(argc, argv)) {
            return *ended;
        }
        if (!settle_paths(argc > 0 ? argv[0] : "")) {
            give_up("the path by which it was called is too long");
            return AUDIT_GAVE_UP;
        }
        // Not while a run replaces the outputs.
        lock_directory_for_run(pHBAWorkingPath, lock_kind::shared);
        const std::optional<survey> result = audit_server();
        return result ? report(*result) : AUDIT_GAVE_UP;
    } catch (const std::bad_alloc&) {
        give_up("out of memory");
        return AUDIT_GAVE_UP;
    }
}
