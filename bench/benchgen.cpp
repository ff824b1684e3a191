// twinly-benchgen: writes the seeded benchmark pairs as NAME.left and NAME.right.

#include "BenchPairs.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace {

void usage(std::FILE* out)
{
    std::fputs("Usage: twinly-benchgen [--seed N] PAIR|all|large OUTDIR\n"
               "       twinly-benchgen --list\n"
               "Writes OUTDIR/PAIR.left and OUTDIR/PAIR.right (LF line endings); 'all' is\n"
               "every usual pair, 'large' every pair that takes diff minutes.\n"
               "The same seed gives the same files on every machine.\n",
        out);
}

bool writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        std::fprintf(
            stderr, "twinly-benchgen: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
        return false;
    }
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const int savedErrno = errno;
    if (std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "twinly-benchgen: cannot write %s: %s\n", path.c_str(),
            std::strerror(written ? errno : savedErrno));
        return false;
    }
    return true;
}

bool writePair(const Bench::PairKind& kind, std::uint64_t seed, const std::filesystem::path& dir)
{
    const Bench::LinePair pair = Bench::makePair(kind, seed);
    const std::string name(kind.name);
    if (!writeFile(dir / (name + ".left"), Bench::joinLines(pair.sides[0]))
        || !writeFile(dir / (name + ".right"), Bench::joinLines(pair.sides[1])))
        return false;
    std::printf("%s: left=%zu right=%zu modified=%zu inserted=%zu deleted=%zu\n", name.c_str(),
        pair.sides[0].size(), pair.sides[1].size(), pair.edits.modified, pair.edits.inserted,
        pair.edits.deleted);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string_view> args(argv + 1, argv + argc);
    std::uint64_t seed = Bench::kDefaultSeed;

    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        usage(stdout);
        return 0;
    }
    if (args.size() == 1 && args[0] == "--list") {
        for (const Bench::PairKind& kind : Bench::pairKinds())
            std::printf("%.*s\t%.*s\n", int(kind.name.size()), kind.name.data(),
                int(kind.description.size()), kind.description.data());
        return 0;
    }
    if (args.size() == 4 && args[0] == "--seed") {
        const std::string_view text = args[1];
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
        if (error != std::errc() || end != text.data() + text.size()) {
            std::fprintf(stderr, "twinly-benchgen: bad seed '%s'\n", argv[2]);
            return 2;
        }
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.size() != 2) {
        usage(stderr);
        return 2;
    }

    std::vector<const Bench::PairKind*> kinds;
    if (args[0] == "all" || args[0] == "large") {
        for (const Bench::PairKind& kind : Bench::pairKinds())
            if (kind.large == (args[0] == "large"))
                kinds.push_back(&kind);
    } else if (const Bench::PairKind* kind = Bench::findPairKind(args[0])) {
        kinds.push_back(kind);
    } else {
        std::fprintf(stderr, "twinly-benchgen: unknown pair '%.*s' (see --list)\n",
            int(args[0].size()), args[0].data());
        return 2;
    }

    const std::filesystem::path dir(args[1]);
    std::error_code error;
    std::filesystem::create_directories(dir, error);
    if (error) {
        std::fprintf(stderr, "twinly-benchgen: cannot create %s: %s\n", dir.c_str(),
            error.message().c_str());
        return 2;
    }
    for (const Bench::PairKind* kind : kinds)
        if (!writePair(*kind, seed, dir))
            return 2;
    return 0;
}
