#pragma once

#include "LineStore.h"

#include <memory>

namespace toolkit {

class TextArea;

// A text made ready for a pane on any thread (TextArea::prepare): its lines cut and hashed, so
// that handing it to the pane on the UI thread costs next to nothing. Copies share the work.
class PreparedText
{
public:
    PreparedText() = default;
    // Lines already cut, such as a text kept from an earlier read.
    explicit PreparedText(LineStore lines)
        : lines(std::make_shared<const LineStore>(std::move(lines)))
    {
    }
    // Shares the blocks: nothing is copied.
    LineStore store() const { return lines ? *lines : LineStore(); }

private:
    friend class TextArea;
    std::shared_ptr<const LineStore> lines;
};

} // namespace toolkit
