#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// What a launch was asked for. Qt never sees the arguments: an option of its own among them
// (-platform, -reverse …) would change the program or end it.
struct CommandLine
{
    enum class Action { Open, Help, Version, Refuse };
    Action action = Action::Open;
    // The files as their bytes, absolute against the working folder.
    QList<QByteArray> files;
    // For Refuse, and for arguments that were passed over: one line each for stderr.
    QList<QString> messages;

    static CommandLine parse(int argc, const char* const* argv);
    static QString usage();
    // The exit status of a launch that refused its arguments.
    static constexpr int kRefused = 2;
};
