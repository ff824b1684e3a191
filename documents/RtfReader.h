#pragma once

#include <QString>

#include <string_view>

class QTextDocument;

namespace documents {

// Reads an .rtf file, or an .rtfd folder (its TXT.rtf and the pictures it names), into `doc`,
// which is cleared first. False when nothing could be read: the file is missing, not a regular
// file, or not rich text at all. `doc` then stays empty.
bool readRichTextFile(const QString& path, QTextDocument& doc);

// The same from bytes already in memory; attachments, if any, are looked up in `packageFolder`
// (empty: none).
bool readRtf(std::string_view bytes, QTextDocument& doc, const QString& packageFolder = {});

} // namespace documents
