#ifndef ORVALANGUAGE_TESTS_SUPPORT_READSASX_H
#define ORVALANGUAGE_TESTS_SUPPORT_READSASX_H

#include <cwchar>
#include <locale>

// A host's own conversion, which reads every byte as x.
class ReadsAsX : public std::codecvt<char, char, std::mbstate_t> {
protected:
    bool do_always_noconv() const noexcept override { return false; }
    result do_in(std::mbstate_t& /*state*/, const char* from, const char* fromEnd,
                 const char*& fromNext, char* to, char* toEnd, char*& toNext) const override {
        fromNext = from;
        for (toNext = to; fromNext != fromEnd && toNext != toEnd; ++fromNext) {
            *toNext++ = 'x';
        }
        return ok;
    }
};

#endif
