// Structured reports as text.
#pragma once

#include <functional>
#include <string>

#include "pgkit/data_set.hpp"

namespace pgtool {

// Where an instance is shown, by its SOP Instance UID: a link relative to the page; empty when it
// is not on the medium.
using LinkTo = std::function<std::string(const std::string& instanceUid)>;

// The title of the document, as its root says; "Report" of one that says nothing. Plain text.
std::string ReportTitle(const pgkit::item& root);

// Who has completed and verified it, and the tree of its content, as HTML.
std::string ReportBody(const pgkit::item& root, const LinkTo& linkTo);

}  // namespace pgtool
