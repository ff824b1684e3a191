#include "CommandLine.h"

#include "FolderItem.h"

CommandLine CommandLine::parse(int argc, const char* const* argv)
{
    CommandLine line;
    bool optionsEnd = false;
    for (int n = 1; n < argc; ++n) {
        const QByteArray argument(argv[n]);
        if (!optionsEnd && argument.size() > 1 && argument.startsWith('-')) {
            if (argument == "--") {
                optionsEnd = true;
            } else if (argument == "--help" || argument == "-h") {
                return {Action::Help, {}, {}};
            } else if (argument == "--version" || argument == "-v") {
                return {Action::Version, {}, {}};
            } else {
                line = {Action::Refuse, {}, {}};
                line.messages
                    = {QStringLiteral("twinly: unknown option %1; a file whose name starts with "
                                      "\"-\" goes after \"--\".")
                            .arg(toolkit::FolderItem::escaped(argument))};
                return line;
            }
        } else if (argument.isEmpty()) {
            line.messages << QStringLiteral("twinly: an empty file name is ignored.");
        } else {
            line.files << toolkit::FolderItem(argument).NativeBytes();
        }
    }
    return line;
}

QString CommandLine::usage()
{
    return QStringLiteral(
        "Usage: twinly [--help] [--version] [--] [LEFT [RIGHT]]\n"
        "Compares two texts line by line.\n"
        "\n"
        "Options:\n"
        "  -h, --help     Shows this help.\n"
        "  -v, --version  Shows the version.\n"
        "  --             Ends the options: every argument after it is a file.\n"
        "\n"
        "Arguments:\n"
        "  LEFT, RIGHT    Files to compare: left, then right. With Twinly already running,\n"
        "                 they go to its window.\n");
}
