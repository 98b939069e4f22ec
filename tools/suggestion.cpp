#include "suggestion.h"

#include <algorithm>
#include <cstddef>

namespace pgtool {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// How many letters have to be added, left out or replaced to make one word of the other; two that
// changed places count as one.
size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<size_t>> rows(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const size_t change = Lower(a[i - 1]) == Lower(b[j - 1]) ? 0 : 1;
            rows[i][j] =
                std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + change});
            const bool isSwapped = i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) &&
                                   Lower(a[i - 2]) == Lower(b[j - 1]);
            if (isSwapped) rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows[a.size()][b.size()];
}

}  // namespace

std::string Nearest(const std::string& typed, const std::vector<std::string>& words) {
    constexpr size_t kLongest = 64;
    if (typed.size() > kLongest) return "";
    size_t best = std::max<size_t>(typed.size() / 3, 1) + 1;
    std::string nearest;
    for (const std::string& word : words) {
        const size_t distance = Distance(typed, word);
        if (distance >= best) continue;
        best = distance;
        nearest = word;
    }
    return nearest;
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string>& words) {
    const std::string nearest = Nearest(typed, words);
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace pgtool
