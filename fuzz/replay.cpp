// Gives every file of the folders named on the command line to the target, once.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
            std::ostringstream text;
            text << std::ifstream(file.path(), std::ios::binary).rdbuf();
            const std::string bytes = text.str();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            ++count;
        }
    }
    std::fprintf(stderr, "%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
