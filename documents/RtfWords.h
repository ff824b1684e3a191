#pragma once

#include <cstdint>
#include <string_view>

namespace documents::rtf {

// What a control word of rich text does, as far as our reader cares.
enum class Word : std::uint8_t {
    Unknown,
    Ansi,
    Mac,
    Pc,
    Pca,
    AnsiCodePage,
    DefaultFont,
    UnicodeSkip,
    Unicode,
    Binary,
    FontTable,
    ColourTable,
    Picture,
    Attachment,
    ShapePicture,
    Ignorable,
    Paragraph,
    Cell,
    Row,
    Character,
    Plain,
    Font,
    FontSize,
    Bold,
    Italic,
    Underline,
    UnderlineNone,
    Strike,
    Hidden,
    Superscript,
    Subscript,
    NoSuperSub,
    Foreground,
    Background,
    ParagraphDefault,
    AlignLeft,
    AlignCenter,
    AlignRight,
    AlignJustify,
    LeftIndent,
    RightIndent,
    FirstIndent,
    Charset,
    FontCodePage,
    Red, // Red, Green and Blue stay in this order: they index a colour's parts
    Green,
    Blue,
    PngBlip,
    JpegBlip,
    OtherBlip,
    PictureWidth,
    PictureHeight,
    GoalWidth,
    GoalHeight,
    ScaleX,
    ScaleY,
    Width,
    Height,
};

struct WordInfo
{
    Word word = Word::Unknown;
    char16_t character = 0; // what a Word::Character stands for
};

// The meaning of a control word by its name; Word::Unknown for any other.
const WordInfo& lookUpWord(std::string_view name);

} // namespace documents::rtf
