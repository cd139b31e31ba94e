#include "tools/orva-strings/commands/Table.h"

// Each is defined in its command's file.
std::unique_ptr<Command> MakeCheck();
std::unique_ptr<Command> MakeExplain();
std::unique_ptr<Command> MakeExport();
std::unique_ptr<Command> MakeFix();
std::unique_ptr<Command> MakeImport();
std::unique_ptr<Command> MakeKeyNew();
std::unique_ptr<Command> MakeKeyShow();
std::unique_ptr<Command> MakeKeys();
std::unique_ptr<Command> MakeProtect();
std::unique_ptr<Command> MakeRekey();
std::unique_ptr<Command> MakeReport();
std::unique_ptr<Command> MakeReveal();
std::unique_ptr<Command> MakeSections();
std::unique_ptr<Command> MakeShow();
std::unique_ptr<Command> MakeStats();
std::unique_ptr<Command> MakeSync();
std::unique_ptr<Command> MakeUsage();
std::unique_ptr<Command> MakeWhere();

Commands MakeCommands() {
    Commands commands;
    for (const auto make : {MakeProtect, MakeReveal, MakeRekey, MakeCheck, MakeFix, MakeSync,
                            MakeExplain, MakeShow, MakeSections, MakeStats, MakeReport, MakeExport,
                            MakeImport, MakeKeys, MakeUsage, MakeWhere, MakeKeyNew, MakeKeyShow}) {
        commands.push_back(make());
    }
    return commands;
}
