#pragma once

#include "LineStream.h"
#include "Random.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

// Lines that look like C and C++ source: includes, comments, structs and functions with nested
// blocks, in both brace styles. Like real code it has many blank lines, lone braces and short
// lines that recur everywhere (`return 0;`, `break;`, `} else {`), and many lines made unique
// by numbered identifiers. Made one top-level unit at a time.
class SourceLines : public LineStream
{
public:
    explicit SourceLines(std::uint64_t seed);
    std::string next() override;

private:
    void addUnit();
    void addIncludes();
    void addComment(int depth);
    void addStruct();
    void addFunction();
    void addBlock(int depth, int statements, bool inLoop);
    void addStatement(int depth, bool inLoop, int& budget);
    void addIf(int depth, bool inLoop, int& budget);
    void addLoop(int depth, int& budget);
    void addSwitch(int depth, int& budget);

    // Opens a block after `head` ("if (x)"), its brace on a line of its own or not.
    void open(int depth, std::string_view head, bool ownLine);
    std::string& line(int depth);

    void identifier(std::string& out);
    void function(std::string& out);
    void expression(std::string& out);
    void condition(std::string& out);
    void number(std::string& out, std::uint64_t below);
    std::string_view pick(const std::vector<std::string_view>& words);

    Random random;
    std::vector<std::string> pending;
    std::size_t taken = 0;
    bool braceOnOwnLine = false; // the style of the current unit's inner blocks
};

} // namespace Bench
