#pragma once

#include "Application.h"

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

    // The self-test to run; tests put a failing one here.
    std::function<bool()> selfTest;
};
