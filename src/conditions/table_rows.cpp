#include "conditions/table_rows.h"

#include <algorithm>
#include <map>

#include "base/text.h"

using std::string_view;

std::vector<std::int32_t> ids_in(string_view text) {
    std::vector<std::int32_t> ids;
    char buffer[line_width];
    while (const char* column = next_column(text, buffer)) {
        const bool has_room =
            string_view(column).size() < sizeof fc_config_file_entry::vendor_id_text;
        ids.push_back(has_room ? number_of(column, 16) : -1);
    }
    return ids;
}

// A row that goes on behind its names has a vendor id, or it is not read at all.
bool is_empty(const fc_config_file_entry& row) {
    return string_view(row.vendor).find_first_not_of(" \r") == string_view::npos &&
           row.model[0] == '\0' && row.vendor_id_text[0] == '\0';
}

bool has_zero_id(const fc_config_file_entry& row) {
    return row.vendor_id == 0 || row.device_id == 0 ||
           (row.subvendor_id == 0) != (row.subdevice_id == 0);
}

bool allows_all_and_some(const fc_config_file_entry& row) {
    std::map<string_view, bool> vendors;
    for (auto* triple = row.periphery_list; triple != nullptr; triple = triple->next) {
        const string_view products = triple->product_list;
        const bool some = products.find_first_not_of(',') != string_view::npos;
        if (!is_blank(triple->vendor) &&
            vendors.try_emplace(triple->vendor, some).first->second != some) {
            return true;
        }
    }
    return false;
}

bool has_wider_names(const fc_config_file_entry& earlier, const fc_config_file_entry& row) {
    return string_view(row.vendor).starts_with(earlier.vendor) &&
           string_view(row.model).starts_with(earlier.model);
}

string_view hidden_by(string_view line) {
    const string_view text = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
    const bool is_rule = text.find_first_not_of("-+| \t\r\n") == string_view::npos;
    if (text.starts_with('#') || is_rule || text.find('|') == string_view::npos) {
        return {};
    }
    if (text.find('#') != string_view::npos) {
        return "number sign";
    }
    return is_comment(text) ? "'--+--'" : "";
}
