#pragma once
// Running a command-line tool on files the test writes, and the paths every tool must refuse.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <sys/stat.h>

struct Run
{
    int exitCode; // -1 when the tool crashed, or outlasted its time (the QProcess kills it)
    QByteArray out, err;
};

// The program with `arguments`, fed `input` on stdin.
inline Run run(const QString& program, const QStringList& arguments, const QByteArray& input = {},
    int timeoutMs = 60000)
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool finished
        = process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit;
    return {finished ? process.exitCode() : -1, process.readAllStandardOutput(),
        process.readAllStandardError()};
}

inline QString write(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(name));
    return name;
}

// In the current folder: plain.txt, locked.txt that no one may read, the folder sub and the
// FIFO fifo. False when one of them can't be made.
inline bool makeTroublePaths()
{
    write("plain.txt", "a\n");
    return QFile::setPermissions(write("locked.txt", "secret\n"), QFileDevice::Permissions())
        && QDir().mkdir("sub") && ::mkfifo("fifo", 0600) == 0;
}
