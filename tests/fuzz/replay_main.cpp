// Runs a fuzz target over files and folders of inputs, as libFuzzer would run
// them once each, in builds without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
    return LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                  bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::size_t inputs = 0;
    for (int i = 1; i < argc; ++i) {
        std::vector<fs::path> files;
        if (fs::is_directory(argv[i])) {
            for (const auto& entry : fs::directory_iterator(argv[i]))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
        } else {
            files.emplace_back(argv[i]);
        }
        for (const fs::path& file : files) {
            replay(file);
            ++inputs;
        }
    }
    std::cout << inputs << " inputs replayed\n";
    // An empty corpus proves nothing: the seeds must be where the test says.
    return inputs == 0 ? 1 : 0;
}
