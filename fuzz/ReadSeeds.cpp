// Runs a fuzz target once over each file of the folders given.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int count, char **folders) {
    unsigned read = 0;
    for (int i = 1; i < count; ++i)
        for (const auto &entry : std::filesystem::directory_iterator(folders[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            std::printf("%s, %zu bytes\n", entry.path().filename().c_str(), bytes.size());
            std::fflush(stdout); // the last line names the seed that ends the program
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
            ++read;
        }
    std::printf("%u seeds read\n", read);
    return read == 0;
}
