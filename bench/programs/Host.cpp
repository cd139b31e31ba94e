// A host of one of the peers: loads a corpus, looks its first keys up, and exits.
//
// Usage: host_… FOLDER [COUNT]    FOLDER: a corpus; COUNT: how many keys, 100 unless told. With 0 it
// prints how many bytes of the heap the loaded texts take.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
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
        std::fputs("Usage: host FOLDER [COUNT]\n", stderr);
        return 2;
    }
    const Corpus corpus(argv[1]);
    const long count = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 100;
    const std::size_t before = HeapInUse();
    const PEER peer(corpus);
    if (count == 0) {
        std::printf("%zu\n", HeapInUse() - before);
    }
    const auto first = corpus.Keys().begin();
    const bool areAllFound = std::all_of(first, first + count, [&](const std::string& key) {
        return PEER::IsFound(peer.LookUp(key.c_str()), key.c_str());
    });
    return areAllFound ? 0 : 1;
}
