#include "support/cases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/process.h"

namespace {

using std::string;

const char blanks[] = " \t\r";
const char of_keys[] = "abcdefghijklmnopqrstuvwxyz0123456789_";

// What a case can need, and the command that succeeds where it is there.
const std::map<string, const char*> needs{
    {"unsanitized", SANITIZED ? "false" : "true"},
    {"unshare", "unshare -rpf true"},
    {"script", "command -v script"},
    {"valgrind", "command -v valgrind"},
    {"jsonschema", "python3 -c 'import jsonschema'"},
    {"nobody",
     "test $(id -u) -ne 0 || setpriv --reuid 65534 --clear-groups "
     "sh -c 'cd -P \"${TMPDIR:-/tmp}\"'"}};

// The folder of tables, or the one that turn_expectations.py has made of it.
string folder() {
    const char* other = std::getenv("CNATOOL_CASES");
    return string(other == nullptr ? SOURCE_DIRECTORY "/tests/cases" : other) + "/";
}

std::set<string> words_of(const string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<string>(words), {}};
}

string trimmed(const string& text) {
    const std::size_t first = text.find_first_not_of(blanks);
    return first == string::npos ? ""
                                 : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

// What stands between the separators of a row, the first character of which is one.
std::vector<string> cells_of(const string& row) {
    std::vector<string> cells;
    std::istringstream text(row.substr(1));
    for (string cell; std::getline(text, cell, row[0]);) {
        cells.push_back(trimmed(cell));
    }
    return cells;
}

struct table_reader {
    string name;
    std::set<string> must;
    std::set<string> known;
    std::vector<test_case> cases;
    std::vector<string> columns;
    int line = 0;
    bool is_open = false;          // whether a line "key: value" belongs to the last case
    string* last_value = nullptr;  // what an indented line goes on with
};

void add_mistake(const table_reader& table, test_case& c, int line, const string& mistake) {
    c.mistakes.push_back(table.name + ":" + std::to_string(line) + ": " + mistake);
}

// The case to which the line belongs, a new one where none is open.
test_case& case_here(table_reader& table) {
    if (!table.is_open) {
        table.cases.emplace_back().line = table.line;
        table.is_open = true;
    }
    return table.cases.back();
}

void complain(table_reader& table, const string& mistake) {
    add_mistake(table, case_here(table), table.line, mistake);
}

void close_case(table_reader& table) {
    table.is_open = false;
    table.last_value = nullptr;
}

void take_value(table_reader& table, const string& key, const string& value) {
    table.last_value = nullptr;
    if (!table.known.contains(key)) {
        complain(table, "unknown key '" + key + "'");
    } else if (const auto [place, is_new] = case_here(table).values.emplace(key, value); is_new) {
        table.last_value = &place->second;
    } else {
        complain(table, "a second '" + key + "'");
    }
}

void take_row(table_reader& table, const string& row) {
    const std::vector<string> cells = cells_of(row);
    close_case(table);
    if (table.columns.empty() || cells[0] == table.columns[0]) {
        table.columns = cells;
        return;
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i >= table.columns.size()) {
            complain(table, "surplus cell '" + cells[i] + "'");
        } else if (!cells[i].empty()) {
            take_value(table, table.columns[i], cells[i]);
        }
    }
    close_case(table);
}

void take_key_line(table_reader& table, const string& line) {
    const std::size_t colon = line.find(':');
    const string key = line.substr(0, colon);
    const string value = trimmed(line.substr(colon + 1));
    if (key.find_first_not_of("0123456789") == string::npos) {
        take_value(table, "status", key);
        take_value(table, "run", value);
    } else {
        take_value(table, key, value);
    }
}

// A blank line, a comment, a row, more of the value above, a key with its value, or a mistake.
void take_line(table_reader& table, const string& line) {
    if (trimmed(line).empty()) {
        close_case(table);
    } else if (line[0] == '|' || line[0] == '~') {
        take_row(table, line);
    } else if (line[0] == ' ' && table.last_value != nullptr) {
        table.last_value->append(table.last_value->empty() ? "" : "\n").append(trimmed(line));
    } else if (const std::size_t end = line.find_first_not_of(of_keys);
               end != 0 && end != string::npos && line[end] == ':') {
        take_key_line(table, line);
    } else if (line[0] != '#') {
        complain(table, "no case: " + line);
    }
}

// Resolves the values of a case and says what is missing.
void finish(const table_reader& table, test_case& c) {
    for (auto& [key, value] : c.values) {
        if (value.empty()) {
            add_mistake(table, c, c.line, "empty '" + key + "'");
        }
        value = unescaped(value);
    }
    for (const string& key : table.must) {
        if (!c.contains(key) && c.mistakes.empty()) {
            add_mistake(table, c, c.line, "no '" + key + "'");
        }
    }
}

string described(const test_case& c) {
    string text = "this case:\n";
    for (const auto& [key, value] : c.values) {
        text += key + ": " + value + "\n";
    }
    return text;
}

void skip_what_cannot_run(test_case& c) {
    for (const string& need : words_of(c["needs"])) {
        ASSERT_TRUE(needs.contains(need)) << "unknown need '" << need << "'";
        if (std::system((string("{ ") + needs.at(need) + "; } > /dev/null 2>&1").c_str()) != 0) {
            GTEST_SKIP() << "needs " << need;
        }
    }
}

struct case_test : testing::Test {
    string file;
    test_case c;
    std::function<void(test_case&)> body;

    void TestBody() override {
        const string path = folder() + file;
        for (const string& mistake : c.mistakes) {
            ADD_FAILURE_AT(path.c_str(), c.line) << mistake;
        }
        const testing::ScopedTrace trace(path.c_str(), c.line, described(c));
        if (!c.mistakes.empty() || (skip_what_cannot_run(c), IsSkipped() || HasFailure())) {
            return;
        }
        reset_run();
        body(c);
        for (const auto& [key, value] : c.values) {
            EXPECT_TRUE(HasFailure() || c.asked.contains(key)) << "nobody reads '" << key << "'";
        }
    }
};

// A function, since the tables are read before main.
std::set<string>& tables_read() {
    static std::set<string> names;
    return names;
}

// A table that no test reads would hold cases that never run.
TEST(Cases, OfEachTableAreTested) {
    std::set<string> tables;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        tables.insert(entry.path().filename());
    }
    EXPECT_EQ(tables, tables_read());
}

const bool forms = add_results("Cases", "forms.txt", "table", [](test_case& c) {
    std::istringstream table(c["table"]);
    string result;
    for (const test_case& made : read_cases(table, "t", {"a b", "c status run"})) {
        result += std::to_string(made.line) + "{";
        for (const auto& [key, value] : made.values) {
            result += key + "=" + value + ";";
        }
        for (const string& mistake : made.mistakes) {
            result += mistake + ";";
        }
        result += "}";
    }
    return result;
});

}  // namespace

const string& test_case::operator[](const string& key) {
    static const string nothing;
    asked.insert(key);
    return contains(key) ? values.at(key) : nothing;
}

string unescaped(const string& text) {
    static const std::map<char, const char*> meanings{{'n', "\n"}, {'t', "\t"},   {'r', "\r"},
                                                      {'s', " "},  {'e', ""},     {'\\', "\\"},
                                                      {'\n', ""},  {'V', VERSION}};
    string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == '{' && !result.empty()) {
            result.append(std::stoul(text.substr(i + 2)) - 1, result.back());
            i = text.find('}', i);
        } else if (next == '0') {
            result += '\0';
            ++i;
        } else {
            result += meanings.contains(next) ? meanings.at(text[++i]) : string(1, text[i]);
        }
    }
    return result;
}

std::vector<test_case> read_cases(std::istream& table, const string& name, const case_keys& keys) {
    table_reader reader;
    reader.name = name;
    reader.must = words_of(keys.must);
    reader.known = words_of(keys.may);
    reader.known.insert(reader.must.begin(), reader.must.end());
    for (string line; std::getline(table, line);) {
        ++reader.line;
        take_line(reader, line);
    }
    for (test_case& c : reader.cases) {
        finish(reader, c);
    }
    if (reader.cases.empty()) {
        complain(reader, "no case");
    }
    return reader.cases;
}

std::vector<test_case> cases_of(const string& file, const case_keys& keys) {
    std::ifstream table(folder() + file);
    return read_cases(table, file, keys);
}

bool add_cases(const char* suite, const string& file, const case_keys& keys,
               const std::function<void(test_case& c)>& body) {
    tables_read().insert(file);
    const string stem = file.substr(0, file.find('.')) + "/";
    for (const test_case& c : cases_of(file, keys)) {
        const string number = std::to_string(c.line);
        const auto make = [=]() -> testing::Test* {
            auto* test = new case_test;
            test->file = file;
            test->c = c;
            test->body = body;
            return test;
        };
        // Shown by its parameter: a colon in a name would part the patterns of a filter.
        testing::RegisterTest(suite, (stem + number).c_str(), nullptr,
                              (file + ":" + number).c_str(), (folder() + file).c_str(), c.line,
                              make);
    }
    return true;
}

bool add_results(const char* suite, const string& file, const string& must,
                 const std::function<string(test_case& c)>& result_of) {
    return add_cases(suite, file, {must + " result"},
                     [=](test_case& c) { EXPECT_EQ(result_of(c), c["result"]); });
}
