// Pages for web browsers: static, without scripts, with nothing in them that comes from elsewhere.
#pragma once

#include <string>
#include <string_view>

namespace pgtool {

// A text in UTF-8 as it is shown in a page, and as it stands in quotation marks: markup in it is
// text. Control characters, and what is not UTF-8, become U+FFFD; line ends stay.
std::string HtmlText(std::string_view utf8);

// The same, kept from changing the direction of what stands around it.
std::string HtmlValue(std::string_view utf8);

// A whole page. The title is plain text, the body is HTML.
std::string HtmlPage(std::string_view title, std::string_view body);

}  // namespace pgtool
