#pragma once

#include "Difference.h"
#include "LineSource.h"

#include <QObject>

#include <array>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

// Compares two panes' lines on a thread of its own and hands the records back on the thread
// that asked. A newer start or cancel() asks the running comparison to stop, and its records
// never arrive; neither ends up waiting for the thread, nor does this object's end.
class Comparison : public QObject
{
    Q_OBJECT
public:
    // The panes' revisions the lines were taken at.
    using Revisions = std::array<quint64, 2>;
    using Records = std::vector<SeqDiff::Difference>;

    explicit Comparison(QObject* parent = nullptr);
    ~Comparison() override;

    void start(std::shared_ptr<const SeqDiff::LineSource> a,
        std::shared_ptr<const SeqDiff::LineSource> b, Revisions revisions);
    void cancel();
    // The revisions of the comparison under way, if any.
    std::optional<Revisions> running() const { return inFlight; }

signals:
    void finished(Comparison::Revisions revisions, std::shared_ptr<Comparison::Records> records);
    // The engine gave up, out of memory most likely; nothing comes for these revisions.
    void failed(Comparison::Revisions revisions);

private:
    struct Mailbox;
    void deliver(Revisions revisions, std::shared_ptr<Records> records);

    std::shared_ptr<Mailbox> mailbox;
    std::stop_source stop;
    std::optional<Revisions> inFlight;
};
