#include "Comparison.h"

#include "SeqDiff.h"

#include <mutex>
#include <thread>

// The threads outlive this object when it goes first; they find it through this box, which
// it empties on its way out, so a late result is dropped instead of sent to a dead object.
struct Comparison::Mailbox
{
    std::mutex lock;
    Comparison* receiver = nullptr;
};

Comparison::Comparison(QObject* parent)
    : QObject(parent)
    , mailbox(std::make_shared<Mailbox>())
{
    mailbox->receiver = this;
}

Comparison::~Comparison()
{
    stop.request_stop();
    const std::lock_guard hold(mailbox->lock);
    mailbox->receiver = nullptr;
}

void Comparison::start(std::shared_ptr<const SeqDiff::LineSource> a,
    std::shared_ptr<const SeqDiff::LineSource> b, Revisions revisions)
{
    cancel();
    inFlight = revisions;
    // Detached: closing the window must not wait for a long comparison to notice its stop.
    std::thread([box = mailbox, token = stop.get_token(), a = std::move(a), b = std::move(b),
                    revisions] {
        std::shared_ptr<Records> records;
        try {
            records = std::make_shared<Records>(SeqDiff::FindDifferences(*a, *b, token));
        } catch (const SeqDiff::Cancelled&) {
            return;
        } catch (const std::exception&) {
            // Out of memory, most likely: the window keeps its last result.
        }
        const std::lock_guard hold(box->lock);
        if (box->receiver && !token.stop_requested())
            QMetaObject::invokeMethod(
                box->receiver,
                [receiver = box->receiver, revisions, records] {
                    receiver->deliver(revisions, records);
                },
                Qt::QueuedConnection);
    }).detach();
}

void Comparison::cancel()
{
    if (!inFlight)
        return;
    stop.request_stop();
    stop = std::stop_source();
    inFlight.reset();
}

void Comparison::deliver(Revisions revisions, std::shared_ptr<Records> records)
{
    // One that was cancelled after it posted its records.
    if (inFlight != revisions)
        return;
    inFlight.reset();
    if (records)
        emit finished(revisions, std::move(records));
    else
        emit failed(revisions);
}
