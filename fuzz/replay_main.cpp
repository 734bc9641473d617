// SPDX-License-Identifier: MIT
// Runs a fuzz target over the files of its corpus, without a fuzzer: an ordinary test program for
// any compiler. The first argument is the corpus folder.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

// A copy of exactly the input's size, so that a sanitizer sees the first byte read past its end.
void Replay(const std::vector<char> &input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
}

std::vector<char> ReadFile(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    bytes.shrink_to_fit();
    return bytes;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2 || !std::filesystem::is_directory(argv[1])) {
        std::fprintf(stderr, "usage: %s CORPUS-FOLDER\n", argv[0]);
        return 2;
    }
    size_t count = 0;
    Replay({});
    for (const auto &entry : std::filesystem::directory_iterator(argv[1])) {
        // Said before it runs, so that the last line names the input that a crash is due to.
        std::printf("%s\n", entry.path().c_str());
        std::fflush(stdout);
        Replay(ReadFile(entry.path()));
        ++count;
    }
    std::printf("%zu inputs\n", count);
    return count ? 0 : 1;
}
