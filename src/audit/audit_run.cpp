#include "audit/audit_run.h"

#include <algorithm>
#include <new>
#include <tuple>

#include "audit/diagnostics.h"
#include "audit/reports.h"
#include "base/process_setup.h"
#include "base/run_lock.h"
#include "base/text.h"
#include "call/options.h"
#include "call/paths.h"
#include "inventory/flash_ports.h"
#include "inventory/port_ordering.h"
#include "tool/output_files.h"

namespace {

bool read_table() {
    now_reading(pHBAConditionsPath);
    const exit_status status = Read_FC_Config_File(pHBAConditionsPath);
    if (status != RET_OK) {
        cannot_go_on(status);
    }
    return status == RET_OK;
}

survey judge(output_facts outputs, const audit_call& call) {
    survey result = survey_inventory();
    result.outputs = std::move(outputs);
    survey_selection(p_option_input, result);
    survey_flash(p_option_input, result);
    survey_check(p_option_input, result);
    const audit_scope scope = choose_controllers(result);
    judge_outputs(result.outputs, scope, result.findings);
    judge_table(scope, result.findings);
    for (const std::string& group : dropped_groups(call.lists, p_option_input)) {
        add_finding(result.findings, finding_code::group_dropped, {.word = group},
                    "the call names it, and no run with this call selects it.");
    }
    accept_findings(call.accepted, result.findings);
    std::ranges::stable_sort(result.findings, {}, [](const finding& found) {
        return std::tuple(found.accepted, found.weight, found.code);
    });
    return result;
}

}  // namespace

std::optional<survey> audit_server(const audit_call& call) {
    // Nothing here asks for a command. If something does one day, it is not run.
    active_option_simulate = 1;
    output_facts outputs;
    if (!read_table()) {
        return std::nullopt;
    }
    if (!read_outputs(outputs)) {
        give_up(fill_in("there is no readable %s: run cnatool first", port_list_path()));
        return std::nullopt;
    }
    Classify_Ctrl_List();
    Determine_Flash_Ports();
    if (const hba_info* port = port_without_flash_port()) {
        give_up(fill_in("port %s %s has no flash port: cnatool ends with status 22 here",
                        port->SerialNo, port_name(*port)));
        return std::nullopt;
    }
    return judge(std::move(outputs), call);
}

audit_status audit_run(int argc, char** argv) {
    try {
        if (!hold_memory_back()) {
            throw std::bad_alloc();
        }
        audit_call call;
        if (const auto ended = read_audit_call(argc, argv, call)) {
            return *ended;
        }
        if (!resolve_paths(argc > 0 ? argv[0] : "")) {
            return give_up("the path by which it was called is too long");
        }
        // A run may be replacing the outputs. This waits for its end.
        lock_directory_for_run(pHBAWorkingPath, lock_kind::shared);
        const std::optional<survey> result = audit_server(call);
        release_directory_lock();
        return result && write_out(call.json ? json_report(*result) : text_report(*result))
                   ? status_of(*result)
                   : AUDIT_GAVE_UP;
    } catch (const std::bad_alloc&) {
        return give_up("out of memory");
    }
}
