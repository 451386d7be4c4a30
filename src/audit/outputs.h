#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "audit/findings.h"
#include "inventory/port_records.h"

/// What is known of an output file.
struct output_record {
    finding_place place = {};
    std::string fault = {};     ///< empty: it has none
    bool concerns_all = false;  ///< with any selection: a run ends here, or its answer is lost
    std::int64_t written = -1;  ///< in nanoseconds; below 0: it could not be read
    bool may_be_old = false;    ///< if it was written before the list
};

/// What is known from the outputs beside the ports.
struct output_facts {
    output_record list;
    std::vector<std::string> incomplete;  ///< serial numbers where the list lacks a value
    std::vector<output_record> records;
    std::unordered_set<std::string> paths;  ///< of the records
    /// LUNs of other storage than the last one of the port.
    std::unordered_map<const hba_info*, std::vector<target_mapping_entry>> other_luns;
};

/// Reads the outputs that a run has left into p_hba_info_list, as --simulate does. An output about
/// one port that cannot be read leaves that port without it. False without a readable port list.
bool read_outputs(output_facts& facts);

/// Notes what is missing in the outputs or older than the port list.
void judge_outputs(const output_facts& facts, const audit_scope& scope, finding_list& findings);
