#include "tools/orva-strings/document/SyncDiff.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tools/orva-strings/document/StringsReader.h"
#include "tools/orva-strings/document/UnifiedDiff.h"

namespace {

struct DiffLine {
    char mark;
    std::string_view text;
    std::string_view ending;
};
using DiffLines = std::vector<DiffLine>;

// Both files' lines, each where it goes or comes.
DiffLines LinesOf(std::string_view bytes, const SyncedStrings& synced) {
    DiffLines lines;
    const auto end = synced.Lines().end();
    auto next = synced.Lines().begin();
    const auto addUpTo = [&](auto place) {
        for (; next != place; ++next) {
            lines.push_back({'+', next->text, next->ending});
        }
    };
    const auto nextKept = [&] {
        return std::find_if(next, end, [](const SyncedLine& line) { return !line.hasMoved; });
    };
    auto kept = nextKept();
    for (StringsReader old(bytes); old.Next();) {
        const StringsLine& line = old.Line();
        const bool isKept = kept != end && kept->before == line.number;
        const bool isSame = isKept && kept->ending == line.ending;
        if (isKept) {
            addUpTo(kept);
        }
        lines.push_back({isSame ? ' ' : '-', line.text, line.ending});
        if (isKept) {
            next += isSame ? 1 : 0;
            addUpTo(kept + 1);
            kept = nextKept();
        }
    }
    addUpTo(end);
    return lines;
}

using Place = DiffLines::const_iterator;

std::size_t CountWithout(char mark, Place begin, Place end) {
    return static_cast<std::size_t>(
        std::count_if(begin, end, [&](const DiffLine& line) { return line.mark != mark; }));
}

bool IsChange(const DiffLine& line) {
    return line.mark != ' ';
}

// Where a hunk ends: before the changes that are too far away to share its lines.
Place HunkEnd(Place change, Place end, std::ptrdiff_t context) {
    while (true) {
        const Place same = std::find_if_not(change, end, IsChange);
        change = std::find_if(same, end, IsChange);
        if (change == end || change - same > 2 * context) {
            return same + std::min(context, end - same);
        }
    }
}

}  // namespace

void WriteSyncDiff(const std::string& file, std::string_view bytes, const SyncedStrings& synced,
                   std::ostream& out) {
    constexpr std::ptrdiff_t kContext = 3;
    const DiffLines lines = LinesOf(bytes, synced);
    std::size_t oldLine = 1;
    std::size_t newLine = 1;
    Place done = lines.begin();
    const auto countUpTo = [&](Place place) {
        oldLine += CountWithout('+', done, place);
        newLine += CountWithout('-', done, place);
        done = place;
    };
    while (true) {
        const Place change = std::find_if(done, lines.end(), IsChange);
        if (change == lines.end()) {
            return;
        }
        if (done == lines.begin()) {
            WriteDiffNames(file, "synced", out);
        }
        const Place begin = change - std::min(kContext, change - done);
        const Place end = HunkEnd(change, lines.end(), kContext);
        countUpTo(begin);
        out << "@@ -" << oldLine << ',' << CountWithout('+', begin, end);
        out << " +" << newLine << ',' << CountWithout('-', begin, end) << " @@\n";
        std::for_each(begin, end, [&](const DiffLine& line) {
            WriteDiffLine(line.mark, line.text, line.ending, out);
        });
        countUpTo(end);
    }
}
