#include "disc/report_page.h"

#include <string_view>
#include <vector>

#include "disc/html.h"
#include "disc/shown_values.h"
#include "tags.h"

namespace pgtool {

namespace {

// Browsers give up on trees that are much deeper; what is deeper here stands at this depth.
constexpr size_t kMaxDepth = 24;

// "Finding" of a code sequence; its value when there is no meaning.
std::string MeaningOf(const pgkit::element& codes) {
    const pgkit::item code = codes[0];
    const std::string meaning = code.find({0x0008, 0x0104}).text();
    return meaning.empty() ? code.find({0x0008, 0x0100}).text() : meaning;
}

std::string MeasuredValue(const pgkit::item& item) {
    const pgkit::item measured = item.find({0x0040, 0xA300})[0];
    std::string number = measured.find({0x0040, 0xA30A}).text();
    const pgkit::item unit = measured.find({0x0040, 0x08EA})[0];
    const std::string name = unit.find({0x0008, 0x0100}).text();
    // 1 is the unit of what has none.
    if (number.empty() || name.empty() || name == "1") return number;
    return number + " " + name;
}

std::string References(const pgkit::item& item, const LinkTo& linkTo) {
    std::string html;
    for (const pgkit::item referenced : item.find({0x0008, 0x1199}).items()) {
        const std::string uid = referenced.find({0x0008, 0x1155}).text();
        const std::string link = linkTo(uid);
        if (!html.empty()) html += ", ";
        html += link.empty() ? HtmlValue(uid) + " (not on this medium)"
                             : "<a href=\"" + HtmlText(link) + "\">" + HtmlValue(uid) + "</a>";
    }
    return html;
}

// "1.2.3", of a content item that stands elsewhere in the tree.
std::string ItemNumbers(const pgkit::item& item) {
    std::string text;
    for (const uint32_t number : item.find({0x0040, 0xDB73}).numbers<uint32_t>())
        text += (text.empty() ? "" : ".") + std::to_string(number);
    return text;
}

std::string ValueOf(const pgkit::item& item, const LinkTo& linkTo) {
    const std::string type = item.find({0x0040, 0xA040}).text();
    if (type == "TEXT") {
        return "<span class=\"text\">" + HtmlValue(item.find({0x0040, 0xA160}).text()) + "</span>";
    }
    if (type == "CODE") return HtmlValue(MeaningOf(item.find({0x0040, 0xA168})));
    if (type == "NUM") return HtmlValue(MeasuredValue(item));
    if (type == "PNAME") return HtmlValue(ShownName(item.find({0x0040, 0xA123}).text()));
    if (type == "DATE") return HtmlValue(ShownDate(item.find({0x0040, 0xA121}).text()));
    if (type == "TIME") return HtmlValue(ShownTime(item.find({0x0040, 0xA122}).text()));
    if (type == "DATETIME") return HtmlValue(ShownDateTime(item.find({0x0040, 0xA120}).text()));
    if (type == "UIDREF") return HtmlValue(item.find({0x0040, 0xA124}).text());
    if (type == "SCOORD" || type == "SCOORD3D") {
        return "region: " + HtmlValue(item.find({0x0070, 0x0023}).text());
    }
    if (type == "TCOORD") return "time range: " + HtmlValue(item.find({0x0040, 0xA130}).text());
    if (type == "CONTAINER") return "";
    const std::string numbers = ItemNumbers(item);
    return numbers.empty() ? References(item, linkTo) : "see item " + HtmlText(numbers);
}

std::string LineOf(const pgkit::item& item, const LinkTo& linkTo) {
    const std::string name = MeaningOf(item.find(tags::kConceptName));
    const std::string value = ValueOf(item, linkTo);
    std::string html = "<p>";
    if (!name.empty()) html += "<b>" + HtmlValue(name) + (value.empty() ? "" : ":") + "</b> ";
    return html + value + "</p>\n";
}

struct OpenItems {
    pgkit::item_range::iterator next;
    bool isIndented;
};

// Reports may be nested as deep as files are: no recursion.
std::string Tree(const pgkit::item& root, const LinkTo& linkTo) {
    std::string html;
    std::vector<OpenItems> open = {{root.find(tags::kContent).items().begin(), false}};
    while (!open.empty()) {
        OpenItems& level = open.back();
        if (level.next == pgkit::item_range::iterator()) {
            if (level.isIndented) html += "</div>\n";
            open.pop_back();
            continue;
        }
        const pgkit::item item = *level.next++;
        html += LineOf(item, linkTo);
        const pgkit::item_range children = item.find(tags::kContent).items();
        if (children.empty()) continue;
        const bool isIndented = open.size() < kMaxDepth;
        if (isIndented) html += "<div class=\"item\">\n";
        open.push_back({children.begin(), isIndented});
    }
    return html;
}

std::string Fact(const char* label, const std::string& value) {
    return value.empty() ? ""
                         : "<p class=\"note\">" + std::string(label) + HtmlValue(value) + "</p>\n";
}

}  // namespace

std::string ReportTitle(const pgkit::item& root) {
    const std::string title = MeaningOf(root.find(tags::kConceptName));
    return title.empty() ? "Report" : title;
}

std::string ReportBody(const pgkit::item& root, const LinkTo& linkTo) {
    const std::string date = ShownDate(root.find({0x0008, 0x0023}).text());
    const std::string time = ShownTime(root.find({0x0008, 0x0033}).text());
    std::string html = Fact("Date: ", date + (time.empty() ? "" : " " + time));
    html += Fact("Completion: ", root.find({0x0040, 0xA491}).text());
    html += Fact("Verification: ", root.find({0x0040, 0xA493}).text());
    for (const pgkit::item observer : root.find({0x0040, 0xA073}).items())
        html += Fact("Verified by: ", ShownName(observer.find({0x0040, 0xA075}).text()));
    return html + Tree(root, linkTo);
}

}  // namespace pgtool
