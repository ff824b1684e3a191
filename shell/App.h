#pragma once

#include "Application.h"

#include <QByteArrayList>

#include <functional>

// The application object: version data, the menu bar, and the checks made once at start-up.
class App : public toolkit::Application
{
    Q_OBJECT
public:
    App(int& argc, char** argv);
    static App& instance() { return *static_cast<App*>(QCoreApplication::instance()); }

    // Runs the engine's self-test and settles the language. False when the program must stop:
    // the user has been told and the quit is under way.
    bool Event_Open();

    // A document opened with the program, by its path's bytes: the next pane of the current
    // batch gets it.
    void Event_OpenDocument(const QByteArray& path);
    // Hands the documents to Event_OpenDocument one after the other, in order. Documents that
    // arrive while one is being read wait their turn.
    void openDocuments(const QByteArrayList& paths);

    // The self-test to run; tests put a failing one here.
    std::function<bool()> selfTest;

private:
    QByteArrayList pendingDocuments;
    bool openingDocuments = false;
};
