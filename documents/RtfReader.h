#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <string>
#include <string_view>

class QTextDocument;

namespace documents {

// How a rich-text read went, beyond the text itself.
struct RichTextRead
{
    bool read = false; // false: nothing could be read; the document is empty
    bool stopped = false; // `between` asked to stop: the document holds what was read
    bool leftPackage = false; // a part of a package leads outside it and was refused
    bool picturesLeftOut = false; // over the picture budget: placeholders stand in
    std::string error; // why nothing could be read
};

// Called every so many bytes of a long document with the share read so far (0 to 1); false
// stops the read.
using ReadProgress = std::function<bool(double)>;

// Reads an .rtf file, or an .rtfd folder (its TXT.rtf and the pictures it names), into `doc`,
// which is cleared first. Nothing is read when the file is missing, not a regular file, not
// rich text at all, or, in a package, a link that leads outside it.
RichTextRead readRichTextFile(
    const QByteArray& path, QTextDocument& doc, const ReadProgress& between = {});

// The same from bytes already in memory; attachments, if any, are looked up in `packageFolder`
// (empty: none).
RichTextRead readRtf(std::string_view bytes, QTextDocument& doc,
    const QByteArray& packageFolder = {}, const ReadProgress& between = {});

} // namespace documents
