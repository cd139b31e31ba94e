#ifndef ORVALANGUAGE_TESTS_TOOLS_TOOLTEST_H
#define ORVALANGUAGE_TESTS_TOOLS_TOOLTEST_H

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "api/PlaintextCache.h"
#include "support/TemporaryFolder.h"
#include "tools/orva-strings/Tool.h"

// Runs commands of the tool in this process.
class ToolTest : public ::testing::Test {
protected:
    int Run(const std::vector<std::string>& arguments, const std::string& input = "",
            Terminals terminals = {}) {
        std::ostringstream out;
        std::ostringstream err;
        gMapDecodedStrings.Clear();  // since each real run is a process of its own
        const int status = RunTool(
            arguments, [&] { return input; }, out, err, terminals);
        m_out = out.str();
        m_err = err.str();
        return status;
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    std::string Write(const std::string& name, std::string_view bytes) const {
        m_folder.Write(name, std::string(bytes));
        return Path(name);
    }

    TemporaryFolder m_folder;
    std::string m_out;
    std::string m_err;
};

#endif
