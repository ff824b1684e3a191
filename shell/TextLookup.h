#pragma once

#include <QString>
#include <QStringView>

namespace globals {

// The installed catalogues' text for `id`, or `fallback` when none holds it.
QString lookUp(const char* id, QStringView fallback);

} // namespace globals
