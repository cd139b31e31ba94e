#ifndef ORVALANGUAGE_TOOLS_CLI_USAGEERROR_H
#define ORVALANGUAGE_TOOLS_CLI_USAGEERROR_H

#include <stdexcept>

// The command line is wrong.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

#endif
