// bare_commands FILE: gives each line of FILE to system(), one after the other, and nothing else.
#include <cstdlib>
#include <fstream>
#include <string>

int main(int argc, char** argv) {
    std::ifstream commands(argc == 2 ? argv[1] : "");
    int count = 0;
    for (std::string line; std::getline(commands, line); ++count) {
        if (std::system(line.c_str()) != 0) {
            return 1;
        }
    }
    return count == 0 ? 1 : 0;
}
