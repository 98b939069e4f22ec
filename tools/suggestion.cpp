#include "suggestion.h"

#include <algorithm>
#include <utility>

#include "words.h"

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

std::vector<std::string> NearestFew(const std::string& typed, const std::vector<std::string>& words,
                                    size_t most) {
    constexpr size_t kLongest = 64;
    if (typed.size() > kLongest) return {};
    const size_t furthest = std::max<size_t>(typed.size() / 3, 1);
    std::vector<std::pair<size_t, size_t>> found;  // distance, index
    for (size_t i = 0; i < words.size(); ++i) {
        const size_t longer = std::max(typed.size(), words[i].size());
        if (longer - std::min(typed.size(), words[i].size()) > furthest) continue;
        const size_t distance = Distance(typed, words[i]);
        if (distance <= furthest) found.emplace_back(distance, i);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> nearest;
    for (size_t i = 0; i < std::min(found.size(), most); ++i)
        nearest.push_back(words[found[i].second]);
    return nearest;
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string>& words,
                       size_t most) {
    std::vector<std::string> nearest = NearestFew(typed, words, most);
    if (nearest.empty()) return "";
    const std::string last = nearest.back();
    nearest.pop_back();
    return "; did you mean " + Joined(nearest, ", ") + (nearest.empty() ? "" : " or ") + last + "?";
}

}  // namespace pgtool
