// SPDX-License-Identifier: GPL-3.0-or-later
// Runs files through the fuzzer's entry point, for compilers without one:  run_corpus FILE...
// Ends with 1 when a file took too long or could not be read; a broken rule stops the program at that file.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

int main (int argc, char** argv)
{
    constexpr double limitSeconds = 1.0; // reading a session takes well below a hundredth of that
    int failures = 0;

    for (int i = 1; i < argc; ++i)
    {
        std::ifstream stream (argv[i], std::ios::binary);

        if (! stream)
        {
            std::printf ("UNREADABLE %s\n", argv[i]);
            ++failures;
            continue;
        }

        const std::vector<char> bytes { std::istreambuf_iterator<char> (stream), {} };

        // Named before it runs, so that the last line tells which file broke a rule.
        std::printf ("%s (%zu bytes) ", argv[i], bytes.size());
        std::fflush (stdout);

        const auto start = std::chrono::steady_clock::now();
        LLVMFuzzerTestOneInput (reinterpret_cast<const std::uint8_t*> (bytes.data()), bytes.size());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;

        const auto late = taken.count() > limitSeconds;
        failures += late ? 1 : 0;
        std::printf ("%s %.0f ms\n", late ? "TOO SLOW" : "ok", taken.count() * 1000.0);
    }

    std::printf ("%d files, %d failures\n", argc - 1, failures);
    return failures == 0 && argc > 1 ? 0 : 1;
}
