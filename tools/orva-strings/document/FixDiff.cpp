#include "tools/orva-strings/document/FixDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/orva-strings/document/UnifiedDiff.h"

namespace {

// Lines of the file that are shown together, and how many of them the mended file lacks.
struct Hunk {
    std::size_t begin;
    std::size_t end;
    std::size_t lost;
};

// Whether a line does not appear in the mended file.
bool IsLost(const FixedLine& line) {
    return line.isDuplicate || (line.text.empty() && line.line.ending.empty());
}

// The changed lines, each with up to three before and after it.
std::vector<Hunk> HunksOf(const FixedStrings& fixed) {
    constexpr std::size_t kContext = 3;
    std::vector<Hunk> hunks;
    std::size_t count = 0;
    fixed.VisitLines([&](const FixedLine& line) {
        ++count;
        if (!line.IsChanged()) {
            return;
        }
        const std::size_t begin = line.line.number - std::min(line.line.number, kContext);
        if (hunks.empty() || begin > hunks.back().end) {
            hunks.push_back({begin, 0, 0});
        }
        hunks.back().end = count + kContext;
        hunks.back().lost += IsLost(line) ? 1U : 0U;
    });
    if (!hunks.empty()) {
        hunks.back().end = std::min(hunks.back().end, count);
    }
    return hunks;
}

void WriteHeader(const Hunk& hunk, std::size_t lostBefore, std::ostream& out) {
    const std::size_t count = hunk.end - hunk.begin;
    const std::size_t left = count - hunk.lost;
    // Where no line is left, the number is that of the line before.
    const std::size_t begin = hunk.begin - lostBefore + (left == 0 ? 0 : 1);
    out << "@@ -" << hunk.begin + 1 << ',' << count << " +" << begin << ',' << left << " @@\n";
}

void WriteHunks(const FixedStrings& fixed, const std::vector<Hunk>& hunks, std::ostream& out) {
    auto hunk = hunks.begin();
    std::size_t lost = 0;
    fixed.VisitLines([&](const FixedLine& line) {
        const std::size_t number = line.line.number;
        if (hunk == hunks.end() || number < hunk->begin) {
            return;
        }
        if (number == hunk->begin) {
            WriteHeader(*hunk, lost, out);
        }
        WriteDiffLine(line.IsChanged() ? '-' : ' ', line.line.text, line.line.ending, out);
        if (line.IsChanged() && !IsLost(line)) {
            WriteDiffLine('+', line.text, line.line.ending, out);
        }
        if (number + 1 == hunk->end) {
            lost += hunk->lost;
            ++hunk;
        }
    });
}

// To a diff, a file without line feeds is a single line.
void WriteWhole(const std::string& bytes, const FixedStrings& fixed, std::ostream& out) {
    std::size_t count = 0;
    fixed.VisitLines([&](const FixedLine& line) { count += IsLost(line) ? 0U : 1U; });
    out << "@@ -1,1 +1," << count << " @@\n";
    WriteDiffLine('-', bytes, "", out);
    fixed.VisitLines([&](const FixedLine& line) {
        if (!IsLost(line)) {
            WriteDiffLine('+', line.text, line.line.ending, out);
        }
    });
}

}  // namespace

void WriteFixDiff(const std::string& file, const std::string& bytes, const FixedStrings& fixed,
                  std::ostream& out) {
    if (fixed.HasNewLineEnds()) {
        WriteDiffNames(file, "fixed", out);
        WriteWhole(bytes, fixed, out);
    } else if (const std::vector<Hunk> hunks = HunksOf(fixed); !hunks.empty()) {
        WriteDiffNames(file, "fixed", out);
        WriteHunks(fixed, hunks, out);
    }
}
