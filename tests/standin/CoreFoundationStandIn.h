#ifndef ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATIONSTANDIN_H
#define ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATIONSTANDIN_H

#include <string>
#include <vector>

#include <CoreFoundation/CoreFoundation.h>

// Records every call of CoreFoundation with its arguments, and answers as configured. A null
// argument, which would crash the system, fails the running test; so does releasing an object that
// is not owned.
struct CoreFoundationStandIn {
    CoreFoundationStandIn();
    ~CoreFoundationStandIn();
    CoreFoundationStandIn(const CoreFoundationStandIn&) = delete;
    CoreFoundationStandIn& operator=(const CoreFoundationStandIn&) = delete;

    // The answers.
    std::string nullObject;              // the object to return as null
    std::string path;                    // what the conversion writes, with a NUL if it fits
    Boolean conversionResult = true;     // what the conversion returns
    std::vector<std::string> languages;  // the user's

    // The calls, in order.
    std::vector<std::string> calls;
    std::vector<std::string> owned;  // copied or created, and not yet released
};

// A bundle to pass in, recorded as "given bundle".
CFBundleRef GivenBundle();

#endif
