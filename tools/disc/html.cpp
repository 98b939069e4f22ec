#include "disc/html.h"

#include "pgkit/text.h"
#include "pgkit/value_representation.h"

namespace pgtool {

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// What is not well-formed is replaced by the library.
std::string WellFormed(std::string_view text) {
    const auto convert = [&](char* buffer, size_t size) {
        return pgxTextToUtf8("ISO_IR 192", VR_UT, text.data(), text.size(), buffer, size);
    };
    const int64_t length = convert(nullptr, 0);
    if (length <= 0) return "";
    std::string wellFormed(static_cast<size_t>(length) + 1, '\0');
    convert(wellFormed.data(), wellFormed.size());
    wellFormed.pop_back();
    return wellFormed;
}

constexpr std::string_view kStyle =
    ":root{color-scheme:light dark}"
    "*{box-sizing:border-box}"
    "body{margin:0 auto;max-width:60rem;padding:1rem;font:1rem/1.5 system-ui,sans-serif;"
    "overflow-wrap:anywhere}"
    "h1{font-size:1.5rem;margin:.5rem 0}"
    "h2{font-size:1.25rem;margin:1.5rem 0 .5rem;border-bottom:2px solid;padding-bottom:.25rem}"
    "h3{font-size:1.1rem;margin:1rem 0 .25rem}"
    "p{margin:.25rem 0}"
    "a{color:LinkText}"
    ".note{opacity:.75;font-size:.9rem}"
    ".grid{display:grid;grid-template-columns:repeat(auto-fill,minmax(9rem,1fr));gap:.75rem;"
    "margin:.75rem 0;padding:0;list-style:none}"
    ".card{border:1px solid GrayText;border-radius:.5rem;padding:.5rem;height:100%}"
    ".card a{display:block}"
    ".card img,.card .none{display:flex;align-items:center;justify-content:center;width:100%;"
    "aspect-ratio:1;object-fit:contain;background:#000;color:#bbb;border-radius:.25rem}"
    ".item{border-left:2px solid GrayText;padding-left:.75rem;margin:.25rem 0}"
    ".item b{font-weight:600}"
    ".text{white-space:pre-wrap}"
    "@media print{body{max-width:none}}";

}  // namespace

std::string HtmlText(std::string_view utf8) {
    std::string html;
    for (const char c : WellFormed(utf8)) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            case '\r':
                break;
            case '\n':
            case '\t':
                html += c;
                break;
            default: {
                const auto byte = static_cast<unsigned char>(c);
                const bool isControl = byte < 0x20 || byte == 0x7F;
                html += isControl ? kReplacementCharacter : std::string_view(&c, 1);
            }
        }
    }
    return html;
}

std::string HtmlValue(std::string_view utf8) { return "<bdi>" + HtmlText(utf8) + "</bdi>"; }

// The policy lets nothing run or be sent, should a browser find something in a page all the same.
std::string HtmlPage(std::string_view title, std::string_view body) {
    std::string page =
        "<!DOCTYPE html>\n"
        "<html lang=\"en\">\n"
        "<head>\n"
        "<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"script-src 'none'; object-src "
        "'none'; form-action 'none'; base-uri 'none'\">\n"
        "<meta name=\"robots\" content=\"noindex\">\n"
        "<title>";
    page += HtmlText(title);
    page += "</title>\n<style>";
    page += kStyle;
    page += "</style>\n</head>\n<body>\n";
    page += body;
    page += "</body>\n</html>\n";
    return page;
}

}  // namespace pgtool
