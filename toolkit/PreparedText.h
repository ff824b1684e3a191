#pragma once

#include <QString>

#include <memory>

namespace toolkit {

class TextArea;

// A text made ready for a pane on any thread (TextArea::prepare), so that handing it to the pane
// on the UI thread costs next to nothing. Copies share what was prepared.
class PreparedText
{
public:
    PreparedText() = default;

private:
    friend class TextArea;
    explicit PreparedText(QString text)
        : text(std::make_shared<const QString>(std::move(text)))
    {
    }
    std::shared_ptr<const QString> text;
};

} // namespace toolkit
