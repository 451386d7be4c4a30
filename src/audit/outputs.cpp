#include "audit/outputs.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "audit/progress.h"
#include "base/lines.h"
#include "base/list.h"
#include "inventory/port_attributes.h"
#include "inventory/port_list.h"
#include "inventory/port_query.h"
#include "inventory/target_mapping.h"

namespace {

using std::string_view;

/// What can be told of an open output without reading it line by line.
struct output_facts {
    timespec written;
    bool empty;
    bool ends_in_newline;
    std::string start;  // its first characters, among which a head line stands
};

output_facts facts_of(const input_file& file) {
    constexpr std::size_t start_width = 4096;
    const int descriptor = fileno(file.stream.get());
    struct stat status {};
    output_facts facts{};
    facts.empty = fstat(descriptor, &status) != 0 || status.st_size == 0 || S_ISDIR(status.st_mode);
    facts.written = status.st_mtim;
    char last = '\0';
    facts.ends_in_newline =
        !facts.empty && pread(descriptor, &last, 1, status.st_size - 1) == 1 && last == '\n';
    facts.start.resize(start_width);
    const ssize_t length = pread(descriptor, facts.start.data(), start_width, 0);
    facts.start.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return facts;
}

bool is_before(const timespec& a, const timespec& b) {
    return std::tie(a.tv_sec, a.tv_nsec) < std::tie(b.tv_sec, b.tv_nsec);
}

bool one_is_empty(std::initializer_list<string_view> fields) {
    return std::ranges::any_of(fields, &string_view::empty);
}

bool lacks_ids(const hba_attributes_entry& ids) {
    return std::min({ids.vendor_id, ids.device_id, ids.subvendor_id, ids.subdevice_id}) < 0 ||
           one_is_empty({ids.VendorSpecID, ids.DeviceID, ids.SubVendorID, ids.SubDeviceID});
}

bool lacks_names(const target_mapping_entry& target) {
    return one_is_empty({target.VendorID, target.ProductID});
}

bool lacks_values(const hba_info& port) {
    return one_is_empty({port.SerialNo}) ||
           (has_serial_number(port) &&
            one_is_empty({port.Mfg, port.PortNumber, port.PCIFunction, port.PortType, port.Model}));
}

// How an output about a port is read, and what it must hold.
struct port_output {
    const char* file_name;
    exit_status (*read)(const input_file& file, hba_info& port);
    bool (*lacks_head)(const hba_info& port, const output_facts& facts);
    bool (*lacks_values)(const hba_info& port);
    const char* values;
};

constexpr port_output attributes_output{
    .file_name = attributes_file_name,
    .read = [](const input_file& file,
               hba_info& port) { return read_port_attributes(file, port, ""); },
    .lacks_head = [](const hba_info& port,
                     const output_facts& /*facts*/) { return port.attributes == nullptr; },
    .lacks_values = [](const hba_info& port) { return lacks_ids(*port.attributes); },
    .values = "its four identifiers are not all there: it fits no selection, or the wrong row.",
};

constexpr port_output mapping_output{
    .file_name = mapping_file_name,
    .read = [](const input_file& file, hba_info& port) { return read_target_mapping(file, port); },
    .lacks_head =
        [](const hba_info& /*port*/, const output_facts& facts) {
            return !facts.start.starts_with("Target Mapping for") &&
                   facts.start.find("\nTarget Mapping for") == std::string::npos;
        },
    .lacks_values =
        [](const hba_info& port) {
            return port.target_mapping != nullptr && lacks_names(*port.target_mapping);
        },
    .values = "vendor or product of the storage is missing in it.",
};

// The first fault of an output that was read; empty for a sound one.
std::string fault_of(const port_output& kind, const hba_info& port, const output_facts& facts) {
    if (facts.empty) {
        return "it is empty: the management tool said nothing of this port.";
    }
    if (kind.lacks_head(port, facts)) {
        return "its head line is missing: this is no answer about the port.";
    }
    if (!facts.ends_in_newline) {
        return "it is cut: its last line has no end.";
    }
    return kind.lacks_values(port) ? kind.values : "";
}

void note(std::vector<finding>& findings, finding_code code, const hba_info& port,
          const std::string& path, const std::string& what) {
    findings.push_back(found_at_port(code, port, what));
    findings.back().file = path;
}

/// What goes on from output to output.
struct reading {
    timespec list_written;
    std::set<std::string> paths;  // of the outputs read so far
    std::vector<finding>& findings;
};

void judge_output(const port_output& kind, const hba_info& port, const std::string& path,
                  const output_facts& facts, reading& state) {
    std::string fault = fault_of(kind, port, facts);
    if (!state.paths.insert(path).second) {
        fault = "ports share it: it holds the answer about the last one alone.";
    }
    if (!fault.empty()) {
        note(state.findings, finding_code::output_incomplete, port, path, fault);
    }
    if (is_before(facts.written, state.list_written)) {
        note(state.findings, finding_code::output_old, port, path,
             "it is older than the port list, so of an earlier run.");
    }
}

exit_status read_output(const port_output& kind, hba_info& port, reading& state) {
    const std::string path = output_path(port, kind.file_name);
    now_reading(path);
    const input_file file = open_for_reading(path);
    if (file.stream == nullptr) {
        note(state.findings, finding_code::output_incomplete, port, path,
             "it is missing: a run with --simulate ends with status 51 here.");
        return RET_OK;
    }
    const exit_status status = kind.read(file, port);
    if (status == STATUS_OUTPUT_FILE_MISSING) {
        note(state.findings, finding_code::output_incomplete, port, path,
             "it cannot be read to its end: a run with --simulate ends with status 51 here.");
        return RET_OK;
    }
    if (status == RET_OK) {
        judge_output(kind, port, path, facts_of(file), state);
    }
    return status;
}

// The first fault of the port list, whose ports have been read; empty for a sound one.
std::string fault_of_list(const output_facts& facts) {
    const auto ports = entries(p_hba_info_list);
    if (facts.empty) {
        return "it is empty: the management tool listed nothing.";
    }
    if (!facts.ends_in_newline) {
        return "it is cut: its last line has no end.";
    }
    if (ports.empty()) {
        return "it lists no port: a run ends with status 13 here.";
    }
    return std::ranges::any_of(ports, [](const hba_info* port) { return lacks_values(*port); })
               ? "the block of a port lacks a value that cnatool goes by."
               : "";
}

void judge_port_list(const output_facts& facts, std::vector<finding>& findings) {
    const std::string fault = fault_of_list(facts);
    if (!fault.empty()) {
        findings.push_back(found_in_file(finding_code::output_incomplete, port_list_path(), fault));
    }
}

exit_status read_outputs_of(hba_info& port, reading& state) {
    if (!has_serial_number(port)) {
        return RET_OK;  // Its outputs are not read by a run either.
    }
    const exit_status status = read_output(attributes_output, port, state);
    return status != RET_OK || !is_fc_or_fcoe(port) ? status
                                                    : read_output(mapping_output, port, state);
}

}  // namespace

exit_status read_outputs(std::vector<finding>& findings) {
    now_reading(port_list_path());
    const input_file file = open_for_reading(port_list_path());
    if (file.stream == nullptr) {
        return STATUS_OUTPUT_FILE_MISSING;
    }
    if (const exit_status status = read_port_list(file)) {
        return status;
    }
    be_silent();
    const output_facts facts = facts_of(file);
    judge_port_list(facts, findings);
    reading state{.list_written = facts.written, .paths = {}, .findings = findings};
    for (hba_info* port : entries(p_hba_info_list)) {
        if (const exit_status status = read_outputs_of(*port, state)) {
            return status;
        }
    }
    return RET_OK;
}
