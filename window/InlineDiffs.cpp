#include "InlineDiffs.h"

#include <QtConcurrent/QtConcurrentRun>

InlineDiffs::InlineDiffs(QObject* parent)
    : QObject(parent)
{
}

InlineDiffs::~InlineDiffs()
{
    cancel();
}

void InlineDiffs::start(Revisions revisions, std::vector<Pair> pairs)
{
    cancel();
    inFlight = revisions;
    stop = std::make_shared<std::atomic<bool>>(false);
    watcher = new QFutureWatcher<std::shared_ptr<std::vector<Found>>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, w = watcher, revisions] {
        const auto found = w->result();
        w->deleteLater();
        if (w != watcher)
            return;
        watcher = nullptr;
        inFlight.reset();
        emit finished(revisions, found);
    });
    // The pairs are few and short, and the stop is looked at between them, so the pool is never
    // held up for long, even while the program ends.
    watcher->setFuture(QtConcurrent::run([pairs = std::move(pairs), stop = stop] {
        auto found = std::make_shared<std::vector<Found>>();
        found->reserve(pairs.size());
        for (const Pair& p : pairs) {
            if (stop->load())
                break;
            const auto view = [](const QString& s) {
                return std::u16string_view(
                    reinterpret_cast<const char16_t*>(s.utf16()), std::size_t(s.size()));
            };
            found->push_back({p.line, inlinespans::changed(view(p.text[0]), view(p.text[1]))});
        }
        return found;
    }));
}

void InlineDiffs::cancel()
{
    if (stop)
        stop->store(true);
    if (watcher) {
        // Its answer is dropped when it comes; the watcher goes with it.
        watcher->disconnect(this);
        connect(watcher, &QFutureWatcherBase::finished, watcher, &QObject::deleteLater);
        watcher = nullptr;
    }
    inFlight.reset();
}
