#pragma once

#include "LineStream.h"
#include "Random.h"

#include <array>
#include <string>
#include <string_view>

namespace Bench {

// Lines drawn uniformly from a fixed set, by default twenty: every line has about a thousand
// twins in a 20k-line text, the hard case for methods whose cost grows with the number of equal
// pairs. Sets of more than twenty add numbered lines; smaller ones take the first of the twenty.
// A set of one line is the empty line alone.
class RepetitiveLines : public LineStream
{
public:
    static constexpr std::array<std::string_view, 20> kLines{
        "",
        "}",
        "{",
        "    return 0;",
        "        break;",
        "    } else {",
        "    }",
        "        continue;",
        "    return result;",
        "    ++i;",
        "// TODO",
        "#endif",
        "    default:",
        "    i = 0;",
        "        return false;",
        "    if (!ok)",
        "        ++count;",
        "};",
        "    */",
        "    free(buffer);",
    };

    explicit RepetitiveLines(std::uint64_t seed, std::size_t distinct = kLines.size())
        : random(seed)
        , distinct(distinct)
    {
    }

    std::string next() override
    {
        const std::size_t i = random.below(distinct);
        if (i < kLines.size())
            return std::string(kLines[i]);
        return "    value = " + std::to_string(i) + ";";
    }

private:
    Random random;
    std::size_t distinct;
};

} // namespace Bench
