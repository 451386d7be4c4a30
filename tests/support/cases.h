#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A case of a table. A key that it holds and that nobody asks for makes it fail.
struct test_case {
    int line = 0;  ///< where it begins, counted from 1
    std::map<std::string, std::string> values;
    std::set<std::string> asked;
    std::vector<std::string> mistakes;  ///< in its form, each with file and line

    /// The value of a key, empty without one.
    const std::string& operator[](const std::string& key);
    [[nodiscard]] bool contains(const std::string& key) const { return values.contains(key); }
};

/// The keys that a case must and may have, with blanks between them.
struct case_keys {
    std::string must;
    std::string may = "";
};

/// Reads the cases of a table. Lines "key: value" with a blank line between two cases; an indented
/// line goes on with the value above, behind a newline. "4: ..." stands for the keys "status" and
/// "run". Or rows: their cells follow a bar (or a tilde) each, the first row names the keys, and an
/// empty cell gives no key. Blanks at the end of a line and lines that begin with a number sign say
/// nothing. In values \n, \t, \r, \0 and \\ are resolved, \s is a blank, \e nothing, \V the
/// version, x\{9} nine times x, and a backslash at the end of a line joins the next one. All else
/// is a mistake, and so is a table without a case.
std::vector<test_case> read_cases(std::istream& table, const std::string& name,
                                  const case_keys& keys);

/// Resolves what a value has behind backslashes.
std::string unescaped(const std::string& text);

/// Makes a test of each case of a file of the folder of tables, "runs.txt:34" in the suite. The key
/// "needs", where a table may have it, lists what a case cannot do without: it is skipped without.
bool add_cases(const char* suite, const std::string& file, const case_keys& keys,
               const std::function<void(test_case& c)>& body);

/// The same for cases whose "result" is what `result_of` makes of them.
bool add_results(const char* suite, const std::string& file, const std::string& must,
                 const std::function<std::string(test_case& c)>& result_of);

/// All cases of a file, for a look at the whole table.
std::vector<test_case> cases_of(const std::string& file, const case_keys& keys);
