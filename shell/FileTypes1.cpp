#include "FileTypes1.h"

namespace {
std::vector<toolkit::FileType> _InitFileTypes()
{
    std::vector<toolkit::FileType> types;
    types.push_back({"text/rtf", ".rtf", "TEXT", {}, {}, true, "public.text", "public.rtf"});
    // An .rtfd document is a folder on disk.
    types.push_back({"text/rtfd", ".rtfd", "fold", {}, {}, true, {}, "com.apple.package"});
    types.push_back({"text/plain",
        ".asc;.ascii;.bas;.c;.class;.cp;.cpp;.h;.hp;.hpp;.htm;.html;.i3;.java;.m;.m2;.m3;.mak;."
        "text;.txt",
        "TEXT", {}, {}, true, "public.content", "public.text"});
    return types;
}
} // namespace

const std::vector<toolkit::FileType>& pAllFileTypes()
{
    static const std::vector<toolkit::FileType> types = _InitFileTypes();
    return types;
}

namespace FileTypes1 {
const toolkit::FileType& Rtf()
{
    return pAllFileTypes()[0];
}
const toolkit::FileType& Rtfd()
{
    return pAllFileTypes()[1];
}
const toolkit::FileType& text()
{
    return pAllFileTypes()[2];
}
} // namespace FileTypes1
