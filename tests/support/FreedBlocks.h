#ifndef ORVALANGUAGE_TESTS_SUPPORT_FREEDBLOCKS_H
#define ORVALANGUAGE_TESTS_SUPPORT_FREEDBLOCKS_H

// While it lives, looks for a text in each block that operator delete frees. A search of the memory
// finds a copy in a freed block only until the heap uses the block again. One at a time.
class FreedBlocks {
public:
    // The text must outlive it.
    explicit FreedBlocks(const char* text);
    ~FreedBlocks();
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;

    // How many of them held the text.
    static int WithText();
};

#endif
