#include "SourceLines.h"

#include <algorithm>
#include <charconv>

namespace Bench {

namespace {

const std::vector<std::string_view> kWords{
    "buffer",
    "count",
    "index",
    "value",
    "node",
    "item",
    "result",
    "offset",
    "length",
    "size",
    "name",
    "key",
    "entry",
    "state",
    "flags",
    "data",
    "next",
    "prev",
    "head",
    "tail",
    "line",
    "text",
    "width",
    "height",
    "total",
    "limit",
    "start",
    "end",
    "pos",
    "ctx",
    "cfg",
    "msg",
    "error",
    "table",
    "cache",
    "token",
    "block",
    "chunk",
    "range",
    "span",
    "record",
    "field",
    "slot",
    "queue",
    "owner",
};
const std::vector<std::string_view> kVerbs{
    "read",
    "write",
    "parse",
    "find",
    "update",
    "check",
    "load",
    "store",
    "reset",
    "merge",
    "split",
    "apply",
    "build",
    "scan",
    "compute",
    "flush",
    "open",
    "close",
    "lock",
    "unlock",
    "push",
    "pop",
    "insert",
    "remove",
    "emit",
    "visit",
};
const std::vector<std::string_view> kValueTypes{
    "int",
    "bool",
    "size_t",
    "double",
    "const char*",
    "std::string",
    "uint32_t",
    "long",
};
const std::vector<std::string_view> kReturnTypes{"void", "int", "bool", "size_t", "std::string"};
const std::vector<std::string_view> kLocals{"i", "n", "len", "result", "count", "p", "ok", "rc"};
const std::vector<std::string_view> kHeaders{
    "<stdio.h>",
    "<stdlib.h>",
    "<string.h>",
    "<stdint.h>",
    "<vector>",
    "<string>",
    "<map>",
    "<memory>",
    "<cassert>",
    "<cstddef>",
    "<algorithm>",
    "<utility>",
};
const std::vector<std::string_view> kShortStatements{
    "return 0;",
    "return -1;",
    "return result;",
    "return false;",
    "return true;",
    "++i;",
    "--n;",
    "ok = false;",
    "rc = 0;",
    "continue;",
};
const std::vector<std::string_view> kReturns{
    "return 0;",
    "return -1;",
    "return result;",
    "return false;",
    "return true;",
    "return ok;",
};
const std::vector<std::string_view> kCommentWords{
    "the",
    "a",
    "keep",
    "in",
    "step",
    "with",
    "before",
    "after",
    "we",
    "must",
    "not",
    "free",
    "twice",
    "this",
    "is",
    "why",
    "cache",
    "fast",
    "path",
    "only",
    "when",
    "empty",
    "caller",
    "owns",
    "it",
    "may",
    "fail",
    "here",
    "again",
    "later",
};

} // namespace

SourceLines::SourceLines(std::uint64_t seed)
    : random(seed)
{
}

std::string SourceLines::next()
{
    while (taken == pending.size()) {
        pending.clear();
        taken = 0;
        addUnit();
    }
    return std::move(pending[taken++]);
}

std::string& SourceLines::line(int depth)
{
    std::string& text = pending.emplace_back();
    text.append(std::size_t(depth) * 4, ' ');
    return text;
}

std::string_view SourceLines::pick(const std::vector<std::string_view>& words)
{
    return words[random.below(words.size())];
}

void SourceLines::number(std::string& out, std::uint64_t below)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, random.below(below)).ptr;
    out.append(digits, end);
}

void SourceLines::identifier(std::string& out)
{
    if (random.chance(400)) {
        out += pick(kLocals);
        return;
    }
    out += pick(kWords);
    out += '_';
    out += pick(kWords);
    number(out, 10000);
}

void SourceLines::function(std::string& out)
{
    out += pick(kVerbs);
    out += '_';
    out += pick(kWords);
    if (random.chance(700))
        number(out, 1000);
}

void SourceLines::expression(std::string& out)
{
    switch (random.below(7)) {
    case 0:
        number(out, 100);
        break;
    case 1:
        identifier(out);
        out += " + ";
        number(out, 16);
        break;
    case 2:
        identifier(out);
        out += "->";
        out += pick(kWords);
        break;
    case 3:
        identifier(out);
        out += '[';
        identifier(out);
        out += ']';
        break;
    case 4:
        out += "nullptr";
        break;
    default:
        function(out);
        out += '(';
        identifier(out);
        if (random.chance(500)) {
            out += ", ";
            number(out, 64);
        }
        out += ')';
        break;
    }
}

void SourceLines::condition(std::string& out)
{
    switch (random.below(4)) {
    case 0:
        out += '!';
        identifier(out);
        break;
    case 1:
        identifier(out);
        out += " == nullptr";
        break;
    case 2:
        identifier(out);
        out += " < ";
        expression(out);
        break;
    default:
        function(out);
        out += '(';
        identifier(out);
        out += ')';
        break;
    }
}

void SourceLines::open(int depth, std::string_view head, bool ownLine)
{
    std::string& text = line(depth);
    text += head;
    if (ownLine)
        line(depth) += '{';
    else
        text += " {";
}

void SourceLines::addUnit()
{
    braceOnOwnLine = random.chance(300);
    const auto roll = random.below(100);
    if (roll < 4)
        addIncludes();
    else if (roll < 14)
        addStruct();
    else
        addFunction();
    pending.emplace_back();
}

void SourceLines::addIncludes()
{
    const auto count = 2 + random.below(6);
    for (std::uint64_t i = 0; i < count; ++i) {
        std::string& text = line(0);
        text += "#include ";
        if (random.chance(700)) {
            text += pick(kHeaders);
        } else {
            text += '"';
            text += pick(kWords);
            text += '_';
            number(text, 100);
            text += ".h\"";
        }
    }
}

void SourceLines::addComment(int depth)
{
    const bool block = depth == 0 && random.chance(300);
    if (block)
        line(depth) += "/*";
    const auto lines = block ? 1 + random.below(3) : 1;
    for (std::uint64_t l = 0; l < lines; ++l) {
        std::string& text = line(depth);
        text += block ? " *" : "//";
        const auto words = 2 + random.below(8);
        for (std::uint64_t w = 0; w < words; ++w) {
            text += ' ';
            text += random.chance(150) ? pick(kWords) : pick(kCommentWords);
        }
        if (random.chance(150)) {
            text += ' ';
            number(text, 1000);
        }
    }
    if (block)
        line(depth) += " */";
}

void SourceLines::addStruct()
{
    if (random.chance(500))
        addComment(0);
    std::string head = "struct ";
    head += pick(kWords);
    head += '_';
    number(head, 10000);
    // Type definitions keep the brace on its own line more often than not.
    open(0, head, random.chance(600));
    const auto fields = 1 + random.below(6);
    for (std::uint64_t f = 0; f < fields; ++f) {
        std::string& text = line(1);
        text += pick(kValueTypes);
        text += ' ';
        text += pick(kWords);
        if (random.chance(500))
            number(text, 100);
        text += ';';
    }
    line(0) += "};";
}

void SourceLines::addFunction()
{
    if (random.chance(450))
        addComment(0);
    std::string head(random.chance(300) ? "static " : "");
    head += pick(kReturnTypes);
    head += ' ';
    function(head);
    head += '(';
    const auto params = random.below(4);
    for (std::uint64_t p = 0; p < params; ++p) {
        if (p > 0)
            head += ", ";
        head += pick(kValueTypes);
        head += ' ';
        head += pick(kWords);
    }
    head += ')';
    // Function bodies open on their own line in most C and C++ code, whatever the blocks do.
    open(0, head, !random.chance(150));
    addBlock(1, 3 + int(random.below(14)), false);
    if (random.chance(600))
        line(1) += pick(kReturns);
    line(0) += '}';
}

void SourceLines::addBlock(int depth, int statements, bool inLoop)
{
    int budget = statements;
    while (budget > 0)
        addStatement(depth, inLoop, budget);
}

void SourceLines::addStatement(int depth, bool inLoop, int& budget)
{
    --budget;
    const auto roll = random.below(100);
    const bool canNest = depth < 4 && budget > 1;
    if (roll < 10) {
        pending.emplace_back();
    } else if (roll < 16) {
        addComment(depth);
    } else if (roll < 24 && canNest) {
        addIf(depth, inLoop, budget);
    } else if (roll < 29 && canNest) {
        addLoop(depth, budget);
    } else if (roll < 31 && canNest) {
        addSwitch(depth, budget);
    } else if (roll < 39) {
        std::string_view s = pick(kShortStatements);
        if (s == "continue;" && !inLoop)
            s = "return 0;";
        line(depth) += s;
    } else if (roll < 42 && inLoop) {
        line(depth) += "break;";
    } else if (roll < 63) {
        std::string& text = line(depth);
        text += pick(kValueTypes);
        text += ' ';
        identifier(text);
        text += " = ";
        expression(text);
        text += ';';
    } else if (roll < 80) {
        std::string& text = line(depth);
        identifier(text);
        text += random.chance(300) ? " += " : " = ";
        expression(text);
        text += ';';
    } else {
        std::string& text = line(depth);
        function(text);
        text += '(';
        const auto args = random.below(4);
        for (std::uint64_t a = 0; a < args; ++a) {
            if (a > 0)
                text += ", ";
            if (random.chance(300))
                expression(text);
            else
                identifier(text);
        }
        text += ");";
    }
}

void SourceLines::addIf(int depth, bool inLoop, int& budget)
{
    std::string head = "if (";
    condition(head);
    head += ')';
    open(depth, head, braceOnOwnLine);
    const int inner = 1 + int(random.below(std::uint64_t(std::min(budget, 5))));
    budget -= inner;
    addBlock(depth + 1, inner, inLoop);
    if (random.chance(350)) {
        if (braceOnOwnLine) {
            line(depth) += '}';
            line(depth) += "else";
            line(depth) += '{';
        } else {
            line(depth) += "} else {";
        }
        addBlock(depth + 1, 1 + int(random.below(3)), inLoop);
    }
    line(depth) += '}';
}

void SourceLines::addLoop(int depth, int& budget)
{
    std::string head;
    if (random.chance(600)) {
        head = "for (int i = 0; i < ";
        identifier(head);
        head += "; ++i)";
    } else {
        head = "while (";
        condition(head);
        head += ')';
    }
    open(depth, head, braceOnOwnLine);
    const int inner = 1 + int(random.below(std::uint64_t(std::min(budget, 6))));
    budget -= inner;
    addBlock(depth + 1, inner, true);
    line(depth) += '}';
}

void SourceLines::addSwitch(int depth, int& budget)
{
    std::string head = "switch (";
    identifier(head);
    head += ')';
    open(depth, head, braceOnOwnLine);
    const auto cases = 2 + random.below(4);
    budget -= int(cases);
    for (std::uint64_t c = 0; c < cases; ++c) {
        std::string& label = line(depth);
        if (c + 1 == cases && random.chance(500)) {
            label += "default:";
        } else {
            label += "case ";
            number(label, 16);
            label += ':';
        }
        addBlock(depth + 1, 1 + int(random.below(2)), true);
        line(depth + 1) += "break;";
    }
    line(depth) += '}';
}

} // namespace Bench
