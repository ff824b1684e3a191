#include "SeqDiff.h"

#include <stdexcept>

namespace SeqDiff {

namespace {

using Lines = std::vector<std::string_view>;
using Records = std::vector<Difference>;

// A fixture written as words separated by blanks.
Lines words(std::string_view text)
{
    Lines lines;
    while (!text.empty()) {
        const auto end = text.find(' ');
        lines.push_back(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return lines;
}

void testStrings4()
{
    runDiff(words("a b c d e"), words("a x y b c j e"), Records{{1, -1, 1, 2}, {3, 3, 5, 5}});
}

void testStrings1()
{
    runDiff(words("a b c e h j l m n p"), words("b c d e f j k l m r s t"),
        Records{{0, 0, 0, -1}, {3, -1, 2, 2}, {4, 4, 4, 4}, {6, -1, 6, 6}, {8, 9, 9, 11}});
}

void testStrings2()
{
    runDiff(words("a b c d"), words("c d"), Records{{0, 1, 0, -1}});
}

void testStrings3()
{
    runDiff(words("a b c d x y z"), words("c d"), Records{{0, 1, 0, -1}, {4, 6, 2, -1}});
}

void testLongArray()
{
    runDiff(words("a b c d e f g h i j k l"), words("a b p q r s t c d e f g h i j u l"),
        Records{{2, -1, 2, 6}, {10, 10, 15, 15}});
}

void testRepeated()
{
    runDiff(words("a a a a b b b a a a a b b b a a a a b b b a a a a b b b"),
        words("a a a a b b b a b b b a a a a"), Records{{8, 10, 8, -1}, {18, 27, 15, -1}});
}

void testReallyBig()
{
    const Lines a = words("A B C D E F G A H I J D K L C G M H N J I K O C G M P Q J R K S C C F G "
                          "D T N G M U V J Q K W C G M X C V K Y C G G A Z AA J C Z G V K BB C "
                          "G M CC DD J EE K FF C AA G M GG K HH C DD G M II II II");
    Lines b = words("A B C JJ G A II KK");
    b.insert(b.end(), a.begin(), a.end() - 3);
    b.insert(b.end(), 4, "II");
    runDiff(a, b, Records{{3, -1, 3, 10}, {88, -1, 96, 96}});
}

void testBlanks()
{
    const Lines a{"same", "same", "same", "", "same", "del", "", "del"};
    const Lines b{"ins", "", "same", "same", "same", "", "same"};
    runDiff(a, b, Records{{0, -1, 0, 1}, {5, 7, 7, -1}});
}

} // namespace

bool SelfTest()
{
    try {
        testStrings4();
        testStrings1();
        testStrings2();
        testStrings3();
        testLongArray();
        testRepeated();
        testReallyBig();
        testBlanks();
    } catch (...) {
        return false;
    }
    return true;
}
} // namespace SeqDiff
