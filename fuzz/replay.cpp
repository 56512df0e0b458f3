// Runs a fuzz target without libFuzzer: every file given (seeds and kept findings),
// then a fixed number of inputs mutated from them, so any compiler and any
// sanitizer build can check the targets in the test suite.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace
{
using Bytes = std::string;

Bytes readFile(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The quoted tokens of a libFuzzer dictionary, with its \" \\ and \xNN escapes.
std::vector<Bytes> readDictionary(const std::filesystem::path &path)
{
    std::vector<Bytes> tokens;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        const size_t open = line.find('"');
        const size_t close = line.rfind('"');
        if (line.empty() || line[0] == '#' || open == std::string::npos || close <= open)
            continue;
        Bytes token;
        for (size_t i = open + 1; i < close; ++i) {
            if (line[i] == '\\' && i + 1 < close && line[i + 1] == 'x' && i + 3 < close) {
                token += char(std::strtol(line.substr(i + 2, 2).c_str(), nullptr, 16));
                i += 3;
            } else if (line[i] == '\\' && i + 1 < close) {
                token += line[++i];
            } else {
                token += line[i];
            }
        }
        tokens.push_back(token);
    }
    return tokens;
}

Bytes mutate(const std::vector<Bytes> &corpus, const std::vector<Bytes> &tokens, std::mt19937 &random)
{
    auto below = [&random](size_t n) { return n == 0 ? size_t(0) : size_t(random() % n); };
    Bytes input = corpus.empty() ? Bytes() : corpus[below(corpus.size())];
    const int steps = 1 + int(below(6));
    for (int step = 0; step < steps; ++step) {
        const size_t at = below(input.size() + 1);
        switch (below(7)) {
        case 0: // flip a byte
            if (!input.empty())
                input[below(input.size())] ^= char(1u << below(8));
            break;
        case 1: // a random byte
            input.insert(at, 1, char(below(256)));
            break;
        case 2: // cut a stretch
            input.erase(at, below(input.size() - at + 1));
            break;
        case 3: // a keyword of the format
            if (!tokens.empty())
                input.insert(at, tokens[below(tokens.size())]);
            break;
        case 4: { // repeat a stretch, as hostile input does
            const Bytes piece = input.substr(at, 1 + below(16));
            for (size_t n = below(64); n > 0; --n)
                input.insert(at, piece);
            break;
        }
        case 5: // splice another input in
            if (!corpus.empty())
                input.insert(at, corpus[below(corpus.size())]);
            break;
        default: // truncate
            input.resize(at);
            break;
        }
    }
    input.resize(std::min<size_t>(input.size(), 64 * 1024));
    return input;
}
}

int main(int argc, char **argv)
{
    long runs = 0;
    std::vector<Bytes> corpus;
    std::vector<Bytes> tokens;
    size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--runs" && i + 1 < argc) {
            runs = std::atol(argv[++i]);
        } else if (arg == "--dict" && i + 1 < argc) {
            tokens = readDictionary(argv[++i]);
        } else if (std::filesystem::is_directory(arg)) {
            std::vector<std::filesystem::path> paths;
            for (const auto &entry : std::filesystem::directory_iterator(arg))
                if (entry.is_regular_file())
                    paths.push_back(entry.path());
            std::sort(paths.begin(), paths.end());
            for (const auto &path : paths)
                corpus.push_back(readFile(path));
        } else if (std::filesystem::is_regular_file(arg)) {
            corpus.push_back(readFile(arg));
        }
    }
    for (const Bytes &input : corpus) {
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
        ++files;
    }
    std::mt19937 random(20261125);
    for (long run = 0; run < runs; ++run) {
        const Bytes input = mutate(corpus, tokens, random);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
    }
    std::printf("%zu files and %ld mutated inputs ran\n", files, runs);
    return 0;
}
