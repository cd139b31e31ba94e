#include "tools/orva-strings/Tool.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

#include "tools/orva-strings/cli/CommandLine.h"
#include "tools/orva-strings/cli/Console.h"
#include "tools/orva-strings/commands/Table.h"

namespace {

int Run(std::vector<std::string> arguments, const Console& console) {
    const Commands commands = MakeCommands();
    Command* const command = ParseCommandLine(commands, std::move(arguments), console.Out());
    const ExitStatus status = command != nullptr ? command->Run(console) : kDone;
    console.Out().flush();
    if (!console.Out()) {
        throw std::runtime_error("can't write to standard output");
    }
    return status;
}

}  // namespace

int RunTool(std::vector<std::string> arguments, const std::function<std::string()>& readInput,
            std::ostream& out, std::ostream& err, Terminals terminals) {
    try {
        const Console console(readInput, out, err, terminals);
        try {
            return Run(std::move(arguments), console);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& exception) {
            console.Say(Severity::kError, exception.what());
            return kUsageOrSystem;
        }
    } catch (const std::bad_alloc&) {
        err << "orva-strings: error: out of memory\n";  // one write, no allocation
        return kUsageOrSystem;
    }
}
