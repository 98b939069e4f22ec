#include "suggestion.h"

#include <algorithm>
#include <cstddef>
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

// What differs less is near. Texts of any length can be typed; long ones are no words.
size_t NearestTooFar(const std::string& typed) {
    constexpr size_t kLongest = 64;
    return typed.size() > kLongest ? 0 : std::max<size_t>(typed.size() / 3, 1) + 1;
}

}  // namespace

std::string Nearest(const std::string& typed, const std::vector<std::string>& words) {
    const std::vector<std::string> few = NearestFew(typed, words);
    return few.empty() ? "" : few.front();
}

std::vector<std::string> NearestFew(const std::string& typed,
                                    const std::vector<std::string>& words) {
    constexpr size_t kFew = 3;
    std::vector<std::pair<size_t, std::string>> near;
    const size_t tooFar = NearestTooFar(typed);
    for (const std::string& word : words) {
        const size_t distance = tooFar == 0 ? 0 : Distance(typed, word);
        if (distance < tooFar) near.emplace_back(distance, word);
    }
    const auto isNearer = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::stable_sort(near.begin(), near.end(), isNearer);
    std::vector<std::string> few;
    for (size_t i = 0; i < std::min(kFew, near.size()); ++i)
        few.push_back(near[i].second);
    return few;
}

std::string DidYouMeanOneOf(const std::string& typed, const std::vector<std::string>& words) {
    std::vector<std::string> few = NearestFew(typed, words);
    if (few.empty()) return "";
    const std::string last = few.back();
    few.pop_back();
    return "; did you mean " + (few.empty() ? "" : Joined(few, ", ") + " or ") + last + "?";
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string>& words) {
    const std::string nearest = Nearest(typed, words);
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace pgtool
