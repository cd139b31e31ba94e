// A host that uses one of the peers: loads a corpus, looks up its first keys, and exits.
//
// Usage: host_… CORPUS [COUNT | memory]    COUNT: how many keys, 100 by default. With "memory" it
// looks up all of them, and prints how many bytes of heap the loaded texts take.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

#include PEER_HEADER

namespace {

std::size_t HeapInUse() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("Usage: host CORPUS [COUNT | memory]\n", stderr);
        return 2;
    }
    const Corpus corpus(argv[1]);
    const bool isMemoryWanted = argc > 2 && std::strcmp(argv[2], "memory") == 0;
    std::size_t count = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 100;
    count = isMemoryWanted ? corpus.Keys().size() : std::min(count, corpus.Keys().size());

    const std::size_t before = HeapInUse();
    const PEER peer(corpus);
    const std::size_t after = HeapInUse();
    for (std::size_t i = 0; i < count; ++i) {
        const char* const key = corpus.Keys()[i].c_str();
        if (!PEER::IsFound(peer.LookUp(key), key)) {
            return 1;
        }
    }
    if (isMemoryWanted) {
        std::printf("%zu\n", after - before);
    }
    return 0;
}
