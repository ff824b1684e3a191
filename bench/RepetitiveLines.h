#pragma once

#include "LineStream.h"
#include "Random.h"

#include <array>
#include <string_view>

namespace Bench {

// Lines drawn uniformly from twenty fixed ones: every line has about a thousand twins in a
// 20k-line text, the hard case for methods whose cost grows with the number of equal pairs.
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

    explicit RepetitiveLines(std::uint64_t seed)
        : random(seed)
    {
    }

    std::string next() override { return std::string(kLines[random.below(kLines.size())]); }

private:
    Random random;
};

} // namespace Bench
