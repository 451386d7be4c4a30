#include "audit/outputs.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <new>

#include "audit/diagnostics.h"
#include "base/lines.h"
#include "base/list.h"
#include "inventory/port_list.h"
#include "inventory/port_outputs.h"
#include "inventory/port_query.h"
#include "tool/output_files.h"
#include "tool/tool_search.h"

namespace {

constexpr std::int64_t second = 1'000'000'000;  // in nanoseconds
constexpr char truncated[] = "it is truncated: the last line has no newline.";

// Notes if a run does not ask for the output. It ends with the status then.
void judge_command(const tool_command& command, const char* status, output_record& record) {
    if (is_too_long(command) || !command.unsafe_value.empty()) {
        record.concerns_all = true;
        record.fault = fill_in("a run does not ask for it, and ends with status %s: %s.", status,
                               is_too_long(command) ? "its command is too long"
                                                    : fill_in("'%s' is not passed to the shell",
                                                              command.unsafe_value));
    }
}

// The first fault of an output that was read. Empty if it has none.
std::string fault_of(const port_output& kind, const hba_info& port, const mapping_facts& mapping,
                     const file_form& form) {
    if (form.is_empty) {
        return "it is empty: the management tool said nothing of this port.";
    }
    if (!kind.has_head(port, mapping)) {
        return "its head line is missing: this is no answer about the port.";
    }
    return form.is_truncated ? truncated : kind.lacks_values(port) ? kind.values : "";
}

// Running out of memory ends the audit.
bool is_read(exit_status status) {
    if (status == RET_MEMALLOC_FAIL) {
        throw std::bad_alloc();
    }
    return status == RET_OK;
}

void read_output(const port_output& kind, hba_info& port, const input_file& file,
                 output_record& record, output_facts& facts) {
    if (file.stream == nullptr) {
        record.fault = "it is missing: a run with --simulate ends with status 51 here.";
        return;
    }
    mapping_facts mapping;
    if (!is_read(kind.read(file, port, mapping))) {
        record.fault = "it cannot be read to its end: a run with --simulate ends with status 51.";
        return;
    }
    const file_form form = form_of(file);
    record.written = form.written;
    record.may_be_old = !is_of_type(port, "FC");  // A run looks at no plain FC port.
    if (record.may_be_old) {
        record.fault = fault_of(kind, port, mapping, form);
        if (!mapping.other_luns.empty()) {
            facts.other_luns.emplace(&port, std::move(mapping.other_luns));
        }
    }
}

void add_output(const port_output& kind, hba_info& port, output_facts& facts) {
    output_record record{.place = at_port(port)};
    std::string& path = record.place.file;
    path = output_path(port, kind.file_name);
    now_reading(path);
    const bool is_shared = !facts.paths.insert(path).second;
    read_output(kind, port, open_output(path), record, facts);
    if (is_shared && record.may_be_old) {
        record.concerns_all = true;
        record.fault = "ports share it: it holds the answer about the last one alone.";
    }
    judge_command(kind.compose(port, longest_tool_place()), "51", record);
    facts.records.push_back(std::move(record));
}

// The ports of the list have been read.
void judge_list(const input_file& file, output_facts& facts) {
    const auto ports = entries(p_hba_info_list);
    const file_form form = form_of(file);
    facts.list.written = form.written;
    if (form.is_empty || form.is_truncated) {
        facts.list.fault =
            form.is_empty ? "it is empty: the management tool listed nothing." : truncated;
    } else if (ports.empty()) {
        facts.list.fault = "it lists no port: a run ends with status 13 here.";
    }
    judge_command(compose_listing(longest_tool_place()), "55", facts.list);
    for (const hba_info* port : ports) {
        if (lacks_list_values(*port)) {
            facts.incomplete.emplace_back(port->SerialNo);
        }
    }
}

// An output that was written before this time is old. After a copy all have the same time.
std::int64_t start_of_run(const output_facts& facts) {
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = 0;
    for (const output_record& each : facts.records) {
        first = each.written < 0 ? first : std::min(first, each.written);
        last = std::max(last, each.written);
    }
    return last - first <= second ? 0 : facts.list.written - second + 1;
}

}  // namespace

bool read_outputs(output_facts& facts) {
    facts.list.place = in_file(port_list_path());
    now_reading(facts.list.place.file);
    const input_file file = open_output(facts.list.place.file);
    if (file.stream == nullptr || !is_read(read_port_list(file))) {
        return false;
    }
    be_silent();
    judge_list(file, facts);
    for (hba_info* port : entries(p_hba_info_list)) {
        // A run does not read the outputs about a port without a serial number either.
        for (const port_output* kind : {&attributes_output, &mapping_output}) {
            const bool is_asked = kind == &attributes_output || is_fc_or_fcoe(*port);
            if (has_serial_number(*port) && is_asked) {
                add_output(*kind, *port, facts);
            }
        }
    }
    return true;
}

void judge_outputs(const output_facts& facts, const audit_scope& scope, finding_list& findings) {
    const auto concerns = [&](const std::string& serial) {
        return scope.all || serial.empty() || scope.serials.contains(serial);
    };
    if (!facts.list.fault.empty()) {
        add_finding(findings, finding_code::output_incomplete, facts.list.place, facts.list.fault);
    } else if (std::ranges::any_of(facts.incomplete, concerns)) {
        add_finding(findings, finding_code::output_incomplete, facts.list.place,
                    "the block of a port lacks a value that cnatool goes by.");
    }
    const std::int64_t start = start_of_run(facts);
    for (const output_record& each : facts.records) {
        if (!each.concerns_all && !concerns(each.place.serial)) {
            continue;
        }
        if (!each.fault.empty()) {
            add_finding(findings, finding_code::output_incomplete, each.place, each.fault);
        }
        if (each.may_be_old && each.written < start) {
            add_finding(findings, finding_code::output_old, each.place,
                        "it is older than the port list, so of an earlier run.");
        }
    }
}
