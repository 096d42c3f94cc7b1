// Replays fuzz inputs without libFuzzer: every file named, and every file in
// every directory named (names starting with '.' skipped), is given to the
// harness once. Used by the test suite to replay the seed and regression
// corpora with any compiler.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "replay: cannot read %s\n", path.c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    int replayed = 0;
    bool ok = true;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path argument = argv[i];
        if (!std::filesystem::is_directory(argument)) {
            ok = replay(argument) && ok;
            ++replayed;
            continue;
        }
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(argument))
            if (entry.is_regular_file() && entry.path().filename().string()[0] != '.') files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const auto& path : files) {
            ok = replay(path) && ok;
            ++replayed;
        }
    }
    std::printf("replayed %d inputs\n", replayed);
    return ok ? 0 : 1;
}
