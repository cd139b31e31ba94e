#ifndef ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATIONSTANDIN_H
#define ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATIONSTANDIN_H

#include <string>
#include <vector>

#include <CoreFoundation/CoreFoundation.h>

// Records every call of CoreFoundation, arguments and all, and answers as told. A null argument,
// where the system would crash, is a failure of the running test; so is the release of an object
// that is not owned.
struct CoreFoundationStandIn {
    CoreFoundationStandIn();
    ~CoreFoundationStandIn();
    CoreFoundationStandIn(const CoreFoundationStandIn&) = delete;
    CoreFoundationStandIn& operator=(const CoreFoundationStandIn&) = delete;

    // What to answer.
    std::string nullObject;           // the object whose making is to answer null
    std::string path;                 // what the conversion writes, with a NUL where it fits
    Boolean conversionResult = true;  // what it returns

    // What happened, one call an element.
    std::vector<std::string> calls;
    std::vector<std::string> owned;  // copied or created, and not yet released
};

// A bundle to pass in, recorded under the name "given bundle".
CFBundleRef GivenBundle();

#endif
