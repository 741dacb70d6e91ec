#include "Commands.h"

#include "CommonOptions.h"
#include "cli/Diagnostics.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

#include <unistd.h>

using namespace cli;

namespace batch {

namespace {

/// Says in a sentence what is missing where the package is not there, and otherwise runs it.
constexpr const char *start =
    "import sys\n"
    "try:\n"
    "    from morvanex.screen.__main__ import main\n"
    "    import distributed, cryptography\n"
    "except ImportError as error:\n"
    "    sys.exit('morvanex screen: error: needs the Python packages morvanex, distributed and '\n"
    "             'cryptography; on Debian python3-morvanex brings them: ' + str(error))\n"
    "sys.exit(main())\n";

Option ResultsFileOption(const std::string &help) {
    return {.name = "--results",
            .value = Value::File,
            .valueName = "FILE",
            .help = help,
            .required = true,
            .heading = "Output"};
}

std::vector<Option> OutputOptions() {
    return {
        {.name = "--csv",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the ranking as a table, the best model first",
         .defaultText = "no file"},
        {.name = "--json",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the settings, the ranking and the models without a result",
         .defaultText = "no file"},
        ReportOption(),
        {.name = "--top",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Write the N best models at their places, in the format of their files",
         .defaultText = "0"},
        {.name = "--model-prefix",
         .value = Value::Text,
         .valueName = "PATH",
         .help = "What the models' file names begin with; the rank and .pdb or .cif follow",
         .defaultText = "screen-, in the current folder"},
    };
}

std::vector<Option> ScreenOptions() {
    std::vector<Option> options{
        Headed("Input", MapOption()),
        {.name = "--resolution",
         .value = Value::Number,
         .valueName = "A",
         .help = "The map's resolution, in Å",
         .required = true},
        {.name = "--models",
         .value = Value::File,
         .valueName = "PATH",
         .help =
             "The models, PDB or mmCIF, plain or compressed by gzip: a folder with all below it, an archive "
             "(.tar, also compressed, or .zip), or a list, a CSV file with a column \"model\"",
         .required = true},
        {.name = "--min-plddt",
         .value = Value::Number,
         .valueName = "N",
         .help = "Residues of predicted models whose confidence (the B factor) is lower are left out of the "
                 "search",
         .defaultText = "every residue takes part"},
        {.name = "--split",
         .help = "Cut chains into domains at stretches of at least 10 residues of low confidence (below "
                 "--min-plddt, or 70), and place those of at least 40 residues on their own"},
        {.name = "--invert",
         .help = "The map's density is dark, as in a negative: its values change their sign"},

        {.name = "--workers",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Number of processes of this machine; the results do not depend on it",
         .defaultText = "one for each core",
         .heading = "Machines"},
        {.name = "--scheduler",
         .value = Value::Text,
         .valueName = "ADDRESS",
         .help = "Use the workers of a running Dask scheduler, tls://HOST:PORT, or tcp://HOST:PORT, which "
                 "nobody else may reach",
         .defaultText = "processes of this machine"},
        {.name = "--tls-ca",
         .value = Value::File,
         .valueName = "FILE",
         .help = "For tls://, the authority's certificate"},
        {.name = "--tls-cert",
         .value = Value::File,
         .valueName = "FILE",
         .help = "For tls://, the certificate of this command"},
        {.name = "--tls-key",
         .value = Value::File,
         .valueName = "FILE",
         .help = "For tls://, the key of that certificate"},

        ResultsFileOption("The SQLite file that keeps each result as it comes. Where it is there, the run "
                          "goes on with the models that have none"),
    };
    for (const Option &option : OutputOptions())
        options.push_back(option);
    options.push_back(QuietOption("Print no progress; warnings and the table stay"));
    return options;
}

std::vector<Option> ExportOptions() {
    std::vector<Option> options{ResultsFileOption("The SQLite file that a screen wrote")};
    for (const Option &option : OutputOptions())
        options.push_back(option);
    return options;
}

/// The command line that the options were read from.
std::vector<std::string> WordsOf(const Arguments &arguments) {
    std::vector<std::string> words;
    for (const auto &[name, values] : arguments.values) {
        if (values.empty())
            words.push_back(name);
        for (const std::string &value : values)
            words.push_back(name + '=' + value);
    }
    return words;
}

/// Where this program is built or installed with the package, Python finds it there.
void ShowPackage() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path prefix = program.parent_path().parent_path();
    for (const char *folder : {"python", "lib/python3/dist-packages"}) {
        if (!std::filesystem::exists(prefix / folder / "morvanex" / "screen", error))
            continue;
        const char *others = std::getenv("PYTHONPATH");
        const std::string path = (prefix / folder).string() + (others ? std::string(":") + others : "");
        setenv("PYTHONPATH", path.c_str(), 1);
        return;
    }
}

/// Turns this process into Python's.
int RunPython(const std::string &action, const Arguments &arguments) {
    std::vector<std::string> words{MORVANEX_PYTHON_PROGRAM, "-c", start, action};
    for (const std::string &word : WordsOf(arguments))
        words.push_back(word);
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    ShowPackage();
    std::cout.flush();
    execv(pointers.front(), pointers.data());
    ReportError(std::string("needs Python, which Debian's python3-morvanex brings: ") +
                MORVANEX_PYTHON_PROGRAM + " cannot be started: " + std::strerror(errno));
    return Failed;
}

int RunScreen(const Arguments &arguments) {
    const double resolution = arguments.Number("--resolution");
    if (!(resolution >= 0.5 && resolution <= 200))
        Refuse("--resolution", arguments.Text("--resolution"), "a number of Å from 0.5 to 200");
    IntegerOf(arguments, "--workers", 1, 1024, 1);
    IntegerOf(arguments, "--top", 0, 1000000, 0);
    return RunPython("run", arguments);
}

int RunExport(const Arguments &arguments) {
    IntegerOf(arguments, "--top", 0, 1000000, 0);
    return RunPython("export", arguments);
}

} // namespace

Command ScreenCommand() {
    return {
        .name = "screen",
        .summary = "find which of many models stand in a map",
        .description =
            "Places every model of a folder, an archive or a list in the map, as \"place\" does, and ranks "
            "them by how many wrong places are expected to score as well as the best one of each. A model is "
            "called found where the share of wrong ones among those found is expected to be at most 1 % "
            "(Benjamini and Hochberg), however many models there are. Models of one fold stand on the same "
            "place: the ranking says so.\n\n"
            "Results are kept as they come. A screen that was stopped, or whose machine died, goes on where "
            "it was when the same command is called again. A model that cannot be read, or that crashes its "
            "process, is tried once more, then reported with its reason; the others go on.\n\n"
            "Ctrl-C, SIGTERM and SIGHUP stop it (exit status 130, 143 and 129). This command needs the "
            "Python part of Morvanex.",
        .options = ScreenOptions(),
        .example = "morvanex screen --map m.mrc --resolution 7 --models models --results r.sqlite",
        .run = RunScreen,
    };
}

Command ScreenExportCommand() {
    return {
        .name = "screen export",
        .summary = "write the ranking of a screen to files",
        .description = "Ranks the results that a screen has kept by now, also while it runs. Prints the ten "
                       "best models, and writes the files that are asked for.",
        .options = ExportOptions(),
        .example = "morvanex screen export --results run.sqlite --csv ranking.csv",
        .run = RunExport,
    };
}

} // namespace batch
