// The application's documents go to the window: defined here, beside the window they fill.

#include "App.h"
#include "DiffWin.h"
#include "FolderItem.h"
#include "Timer.h"
#include "globals.h"

void App::Event_OpenDocument(const QByteArray& path)
{
    auto& win = toolkit::implicitInstance<DiffWin>();
    win.Timer3->setMode(1);
    // As after a drop: the first difference of the new texts becomes current.
    win.onlyFirst = true;
    if (globals::fCount > 1)
        return;
    const int index = globals::fCount;
    win.setTextBox(toolkit::FolderItem(path), index, win.txtBox[index], win.titleBox[index]);
    globals::fCount += 1;
}

void App::openDocuments(const QByteArrayList& paths)
{
    pendingDocuments += paths;
    // A read runs the event loop, so more documents can arrive during one: they queue here
    // and keep their order.
    if (openingDocuments)
        return;
    openingDocuments = true;
    while (!pendingDocuments.isEmpty())
        Event_OpenDocument(pendingDocuments.takeFirst());
    openingDocuments = false;
}
