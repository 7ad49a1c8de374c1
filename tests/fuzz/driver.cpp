// SPDX-License-Identifier: MIT
// Runs a target without libFuzzer: TARGET CORPUS SECONDS [SEED]. First every file of the corpus, then, for so many
// seconds, mutations of them: parts cut out, doubled or joined, bytes changed. The current input is in TARGET.input, so
// that it is known when the process dies.
#include "tests/fuzz/fuzz.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t longestInput = 4096;

/// A mapped file, which keeps the last input however the process ends.
class LastInput
{
public:
    explicit LastInput(const std::string &path)
    {
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (file < 0 || ::ftruncate(file, longestInput) != 0)
            std::exit(2);
        m_bytes = static_cast<char *>(::mmap(nullptr, longestInput, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        ::close(file);
        if (m_bytes == MAP_FAILED)
            std::exit(2);
    }
    ~LastInput() { ::munmap(m_bytes, longestInput); }
    LastInput(const LastInput &) = delete;
    LastInput &operator=(const LastInput &) = delete;

    void put(const std::string &input)
    {
        std::memset(m_bytes, 0, longestInput);
        input.copy(m_bytes, longestInput);
    }

private:
    char *m_bytes = nullptr;
};

std::vector<std::string> readCorpus(const std::string &folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> corpus;
    for (const auto &path : paths) {
        std::ifstream file(path, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

class Mutator
{
public:
    Mutator(const std::vector<std::string> &corpus, unsigned seed) : m_corpus(corpus), m_random(seed) {}

    std::string next()
    {
        std::string input = pick();
        for (std::size_t changes = 1 + below(6); changes > 0; --changes)
            change(input);
        input.resize(std::min(input.size(), longestInput));
        return input;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }
    const std::string &pick() { return m_corpus[below(m_corpus.size())]; }
    void change(std::string &input)
    {
        // Characters with a meaning in one of the parsers, and awkward ones.
        static constexpr std::array pieces{" x ",
                                           " = ",
                                           ", ",
                                           "  |  ",
                                           "|",
                                           "\n",
                                           "\r\n",
                                           "[",
                                           "]",
                                           "=",
                                           "\"",
                                           "\\",
                                           ";",
                                           "#",
                                           "-",
                                           ".",
                                           ",",
                                           "e",
                                           "E",
                                           "9",
                                           "0",
                                           "x",
                                           "\t",
                                           "\\x1",
                                           "1e99",
                                           "\xEF\xBB\xBF",
                                           "32768",
                                           "-1",
                                           "\xF0\x9F\x8D\x8E",
                                           "\xFF",
                                           "99999999999999999999",
                                           "inf",
                                           "nan"};
        const std::size_t at = below(input.size() + 1);
        switch (below(6)) {
        case 0:
            input.erase(at, 1 + below(8));
            break;
        case 1:
            input.insert(at, pieces.at(below(pieces.size())));
            break;
        case 2:
            if (at < input.size())
                input[at] = static_cast<char>(below(256));
            break;
        case 3:
            input.insert(at, input.substr(below(input.size() + 1), below(40)));
            break;
        case 4: {
            const std::string &other = pick();
            input = input.substr(0, at) + other.substr(below(other.size() + 1));
            break;
        }
        default:
            input.insert(at, 1, static_cast<char>(below(256)));
            break;
        }
    }

    const std::vector<std::string> &m_corpus;
    std::mt19937 m_random;
};

void run(const std::string &input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s CORPUS SECONDS [SEED]\n", argv[0]);
        return 2;
    }
    const std::chrono::seconds duration(std::atoi(argv[2]));
    const auto seed = argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : std::random_device()();
    const std::vector<std::string> corpus = readCorpus(argv[1]);
    if (corpus.empty()) {
        std::fprintf(stderr, "Nothing in %s\n", argv[1]);
        return 2;
    }
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    const std::filesystem::path program = *argv;
    LastInput last(program.filename().string() + ".input");
    long runs = 0;
    for (const std::string &input : corpus) {
        last.put(input);
        run(input);
        ++runs;
    }
    Mutator mutator(corpus, seed);
    for (const auto end = std::chrono::steady_clock::now() + duration; std::chrono::steady_clock::now() < end; ++runs) {
        const std::string input = mutator.next();
        last.put(input);
        run(input);
    }
    std::printf("%ld inputs, %zu of them from the corpus\n", runs, corpus.size());
    return 0;
}
