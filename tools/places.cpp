#include "places.h"

#include "names.h"
#include "suggestion.h"

namespace pgtool {

namespace {

constexpr std::string_view kAllItems = "[*]";

}  // namespace

bool IsPlace(const std::string& text) {
    std::string concrete = text;
    for (size_t at = 0; (at = concrete.find(kAllItems)) != std::string::npos;)
        concrete.replace(at, kAllItems.size(), "[0]");
    std::string_view path = concrete;
    if (path.empty()) return false;
    while (!path.empty()) {
        const bool isLast = path.find('.') == path.npos;
        const auto step = pgkit::detail::take_step(path);
        if (!step || (!step->has_index && !isLast)) return false;
    }
    return true;
}

std::string NoSuchPlace(const std::string& text) {
    return "there is no element \"" + text + "\"" + DidYouMean(text, ElementNames());
}

std::vector<std::string> ExpandedPlaces(const pgkit::item& root, const std::string& text) {
    const size_t at = text.find(kAllItems);
    if (at == std::string::npos) return {text};
    const size_t count = root.find(text.substr(0, at)).item_count();
    std::vector<std::string> places;
    for (size_t i = 0; i < count; ++i) {
        const std::string item = "[" + std::to_string(i) + "]";
        const auto inner =
            ExpandedPlaces(root, text.substr(0, at) + item + text.substr(at + kAllItems.size()));
        places.insert(places.end(), inner.begin(), inner.end());
    }
    return places;
}

std::string ComplaintAboutPlaces(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        if (!IsPlace(text)) return NoSuchPlace(text);
    }
    return "";
}

}  // namespace pgtool
