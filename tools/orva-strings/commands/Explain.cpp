#include "tools/orva-strings/checks/Explain.h"

#include <sstream>
#include <string>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/commands/RuleArguments.h"

namespace {

class Explain : public Command {
public:
    Explain()
        : Command({"explain", "Explain a rule of check, or all of them", {"explain placeholder"}}) {
    }

    void Declare(Arguments& arguments) override {
        arguments.Add({"RULE", "", "The rule's name; without it, all rules"}, m_rule);
    }

    ExitStatus Run(const Console& console) override {
        if (m_rule.empty()) {
            WriteAllRules(console.Out());
        } else {
            WriteRule(RuleOfName(m_rule), console.Out());
        }
        return kDone;
    }

private:
    std::string m_rule;
};

}  // namespace

std::unique_ptr<Command> MakeExplain() {
    return std::make_unique<Explain>();
}
