#ifndef ORVALANGUAGE_TESTS_SUPPORT_FAILINGALLOCATION_H
#define ORVALANGUAGE_TESTS_SUPPORT_FAILINGALLOCATION_H

#include <cstddef>

// While it lives, counts this thread's calls of operator new, including the library's, and makes
// the n-th throw std::bad_alloc. n = 0 only counts. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t n);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    static bool HasFailed();

    // The size that the first of them asked for.
    static std::size_t SizeOfFirst();
};

// While it lives, searches every deleted block for some bytes. One at a time.
class FreedMemoryWatch {
public:
    FreedMemoryWatch(const void* bytes, std::size_t length);
    ~FreedMemoryWatch();
    FreedMemoryWatch(const FreedMemoryWatch&) = delete;
    FreedMemoryWatch& operator=(const FreedMemoryWatch&) = delete;

    // Whether a block held them, and how many blocks were searched.
    static bool HasSeen();
    static std::size_t Blocks();
};

// While it lives, measures how many more bytes from operator new, in all threads, live at once than
// when it was made. One at a time.
class AllocationPeak {
public:
    AllocationPeak();

    // The most so far.
    std::size_t Bytes() const;

private:
    std::size_t m_before;
};

// Blocks from operator new, in all threads, that are not deleted yet.
std::size_t LiveAllocations();

#endif
