#pragma once

#include "InlineSpans.h"

#include <QFutureWatcher>
#include <QObject>
#include <QString>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

// Finds the changed parts of line pairs on a thread of the pool, and hands them back on the
// thread that asked. A newer start or cancel() drops the work under way: its answer never comes.
class InlineDiffs : public QObject
{
    Q_OBJECT
public:
    using Revisions = std::array<quint64, 2>;
    // A left line and a right line, by number, with their texts.
    struct Pair
    {
        std::array<int, 2> line{};
        std::array<QString, 2> text;
    };
    struct Found
    {
        std::array<int, 2> line{};
        inlinespans::Changed changed;
    };

    explicit InlineDiffs(QObject* parent = nullptr);
    ~InlineDiffs() override;

    void start(Revisions revisions, std::vector<Pair> pairs);
    void cancel();
    std::optional<Revisions> running() const { return inFlight; }

signals:
    void finished(InlineDiffs::Revisions revisions, std::shared_ptr<std::vector<Found>> found);

private:
    QFutureWatcher<std::shared_ptr<std::vector<Found>>>* watcher = nullptr;
    std::shared_ptr<std::atomic<bool>> stop;
    std::optional<Revisions> inFlight;
};
