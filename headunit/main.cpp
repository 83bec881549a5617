#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "commands/ControlCommand.h"
#include "commands/ExecCommand.h"
#include "commands/InsideCommand.h"
#include "commands/RunCommand.h"
#include "control/ControlTable.h"
#include "devices/SoftwareVersions.h"
#include "unit/HostSystem.h"
#include "unit/UnitError.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

constexpr char kExamples[] =
    "Examples:\n"
    "  headunit run                                a unit with the daemon in it, until Ctrl-C\n"
    "  headunit run --unit ./unit                  the same; its files stay in ./unit\n"
    "  headunit exec -- ls /dev/nvgpio             a command in a fresh unit\n"
    "  headunit exec --daemon -- station status    the same with the daemon running in it\n"
    "  headunit control --unit ./unit state        what the devices of a running unit do\n"
    "  headunit control unplug station             the same from inside it, pulling a plug\n"
    "Exit status: 2 for a wrong command line; 'run' 0 after Ctrl-C, 1 otherwise; 'exec' that of the\n"
    "command, 128+N when a signal ended it, 125 when there is no unit to run it in; 'control' 1 when the\n"
    "unit refuses, 3 when there is none.";

struct Options {
    headunit::RunOptions run;
    headunit::ExecOptions exec;
    headunit::InsideOptions inside;
    headunit::ControlOptions control;
};

/// Splits the command line at the first "--": what follows it belongs to the command, letter for letter.
std::vector<std::string> takeCommand(std::vector<std::string>& arguments) {
    const auto separator = std::find(arguments.begin(), arguments.end(), "--");
    if (separator == arguments.end())
        return {};
    std::vector<std::string> command(separator + 1, arguments.end());
    arguments.erase(separator, arguments.end());
    return command;
}

void addSupplier(CLI::App& command, std::optional<std::string>& supplier,
                 CLI::Option* daemon = nullptr) {
    CLI::Option* option =
        command
            .add_option("--supplier", supplier, "FIRST_TIER_SUPPLIER of the daemon (default: as it is)")
            ->type_name("NAME");
    if (daemon != nullptr)
        option->needs(daemon);
}

void addMedia(CLI::App& command, std::vector<std::string>& media) {
    command
        .add_option("--insert", media,
                    "A block medium that is there from the beginning, for the hard disks sda0 and sdb0")
        ->type_name("MEDIUM")
        ->expected(1);
}

void addVariant(CLI::App& command, std::string& variant) {
    constexpr auto kNames = headunit::SoftwareVersions::kVariants;
    command.add_option("--variant", variant, "The variant of the unit's hardware")
        ->check(CLI::IsMember(std::vector<std::string>(kNames.begin(), kNames.end())));
}

void addRun(CLI::App& app, headunit::RunOptions& options) {
    CLI::App* run = app.add_subcommand("run", "Run the daemon in a simulated unit until Ctrl-C");
    CLI::Option* unit =
        run->add_option("--unit", options.unitFolder, "Use this folder for the unit's files and keep it")
            ->type_name("DIR");
    run->add_option("--daemon-path", options.daemonPath, "The daemon (default: beside headunit)")
        ->type_name("PATH");
    addSupplier(*run, options.supplier);
    addMedia(*run, options.wantedMedia);
    addVariant(*run, options.variant);
    CLI::Option* inPlace = run->add_flag("--in-place", options.inPlace,
                                         "Set the unit up on this machine itself; for disposable "
                                         "containers that forbid namespaces");
    inPlace->excludes(unit);
    run->add_flag("--yes-change-this-machine", options.changeThisMachine,
                  "Confirms --in-place: files are made in /dev, /mnt/app, /ifs and /vrk")
        ->needs(inPlace);
}

CLI::App* addExec(CLI::App& app, headunit::ExecOptions& options) {
    CLI::App* exec = app.add_subcommand(
        "exec",
        "Run a command in a unit with a network of its own: headunit exec [OPTIONS] -- COMMAND...");
    exec->add_option("--unit", options.unitFolder, "Use this folder for the unit's files and keep it")
        ->type_name("DIR");
    CLI::Option* daemon =
        exec->add_flag("--daemon", options.withDaemon,
                       "Start the daemon in the unit first and wait until it accepts connections");
    exec->add_option("--daemon-path", options.daemonPath, "The daemon (default: beside headunit)")
        ->type_name("PATH");
    addSupplier(*exec, options.supplier, daemon);
    addMedia(*exec, options.wantedMedia);
    addVariant(*exec, options.variant);
    return exec;
}

CLI::App* addInside(CLI::App& app, headunit::InsideOptions& options) {
    CLI::App* inside = app.add_subcommand("inside", "What 'run' and 'exec' start inside the unit");
    inside->group("");
    inside->add_option("--stderr", options.standardError)->required();
    inside->add_option("--audio", options.audioDriver);
    inside->add_option("--daemon", options.daemonPath);
    inside->add_option("--supplier", options.supplier);
    return inside;
}

CLI::App* addControl(CLI::App& app, headunit::ControlOptions& options) {
    CLI::App* control = app.add_subcommand("control", "Ask a running unit for something");
    control
        ->add_option("--unit", options.unitFolder,
                     "The unit's folder (default: the unit around headunit)")
        ->type_name("DIR");
    control->add_option("words", options.words, headunit::controlHelp())->required()->type_name("WORD");
    return control;
}

/// 'exec' and 'inside' run a command, the others have no use for one.
void requireCommandWhereItBelongs(const CLI::App& app, bool hasCommand) {
    const CLI::App* chosen = app.get_subcommands().front();
    const bool takesOne = chosen->get_name() == "exec" || chosen->get_name() == "inside";
    if (takesOne && !hasCommand)
        throw CLI::ValidationError("a command is missing: ... -- COMMAND...");
    if (!takesOne && hasCommand)
        throw CLI::ValidationError("'" + chosen->get_name() + "' takes no command");
}

std::string absoluteDaemon(const std::string& given) {
    if (!given.empty())
        return std::filesystem::absolute(given).lexically_normal().string();
    return (std::filesystem::path(headunit::ownProgram()).parent_path() / "production").string();
}

int dispatch(int argc, char** argv) {
    CLI::App app("headunit: a simulated head unit for any Linux machine, with the real daemon in it",
                 "headunit");
    app.require_subcommand(1);
    app.footer(kExamples);
    Options options;
    addRun(app, options.run);
    CLI::App* exec = addExec(app, options.exec);
    CLI::App* inside = addInside(app, options.inside);
    CLI::App* control = addControl(app, options.control);

    std::vector<std::string> arguments(argv + 1, argv + argc);
    const std::vector<std::string> command = takeCommand(arguments);
    std::reverse(arguments.begin(), arguments.end()); // the order that the parser takes a vector in
    try {
        app.parse(arguments);
        requireCommandWhereItBelongs(app, !command.empty());
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsageError;
    }

    if (inside->parsed()) {
        options.inside.command = command;
        return headunit::insideCommand(options.inside);
    }
    if (control->parsed())
        return headunit::controlCommand(options.control);
    if (exec->parsed()) {
        options.exec.command = command;
        options.exec.daemonPath = absoluteDaemon(options.exec.daemonPath);
        return headunit::execCommand(options.exec);
    }
    options.run.daemonPath = absoluteDaemon(options.run.daemonPath);
    return headunit::runCommand(options.run);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return dispatch(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "headunit: " << error.what() << '\n';
        const bool runs = argc > 1 && std::string(argv[1]) == "run";
        return runs ? kFailed : headunit::kExecFailed;
    }
}
