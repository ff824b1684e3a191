#include "EncodingHint.h"

#include "Utf8.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unicode/ucsdet.h>
#include <vector>

namespace documents {

namespace {

struct CloseDetector
{
    void operator()(UCharsetDetector* d) const { ucsdet_close(d); }
};

// Our encodings that the detector names, best guess first. Its other names match no row.
std::vector<TextEncoding> detected(std::string_view bytes)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
    if (U_FAILURE(status))
        return {};
    const std::string_view sample = bytes.substr(0, kDetectorSample);
    ucsdet_setText(detector.get(), sample.data(), int32_t(sample.size()), &status);
    int32_t found = 0;
    const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &found, &status);
    if (U_FAILURE(status))
        return {};
    static const struct
    {
        std::string_view name;
        TextEncoding encoding;
    } known[] = {{"UTF-8", TextEncoding::UTF8}, {"Shift_JIS", TextEncoding::ShiftJIS},
        {"EUC-JP", TextEncoding::EUCJP}};
    std::vector<TextEncoding> ranked;
    for (int32_t i = 0; i < found; ++i) {
        const char* name = ucsdet_getName(matches[i], &status);
        if (U_FAILURE(status) || !name)
            break;
        for (const auto& k : known) {
            if (k.name == name)
                ranked.push_back(k.encoding);
        }
    }
    return ranked;
}

} // namespace

bool decodesCleanly(TextEncoding encoding, std::string_view bytes)
{
    if (encoding == TextEncoding::UTF8 || encoding == TextEncoding::None)
        return validUtf8Prefix(bytes) == bytes.size();
    std::u16string text(maxDecodedLength(encoding, bytes.size()), u'\0');
    text.resize(decode(encoding, bytes, text.data()));
    return text.find(u'\uFFFD') == std::u16string::npos;
}

int cleanerRow(std::string_view bytes, std::span<const TextEncoding> rows, int current)
{
    // NUL stands in no text of these encodings: the file is not text, and no row reads it.
    if (bytes.size() > kHintLimit || bytes.find('\0') != std::string_view::npos || current < 0
        || std::size_t(current) >= rows.size() || decodesCleanly(rows[std::size_t(current)], bytes))
        return -1;
    std::vector<int> order;
    for (const TextEncoding guess : detected(bytes)) {
        const auto row = std::find(rows.begin(), rows.end(), guess);
        if (row != rows.end())
            order.push_back(int(row - rows.begin()));
    }
    for (int row = 0; row < int(rows.size()); ++row)
        order.push_back(row);
    std::vector<bool> tried(rows.size(), false);
    for (const int row : order) {
        if (row == current || tried[std::size_t(row)])
            continue;
        tried[std::size_t(row)] = true;
        if (decodesCleanly(rows[std::size_t(row)], bytes))
            return row;
    }
    return -1;
}

} // namespace documents
