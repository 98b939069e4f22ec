#include "kept_elements.h"

#include <unordered_set>

#include "tags.h"

namespace pgtool {

namespace {

class Pruning {
  public:
    explicit Pruning(const std::vector<pgkit::element>& wanted) {
        for (const pgkit::element& element : wanted)
            wanted_.insert(element.node());
    }

    // Whether something is left in a data set but its character set.
    bool Prune(PGX_Node& dataSet) {
        bool isLeft = false;
        for (PGX_Node* element = dataSet.first; element != nullptr;) {
            PGX_Node* const next = element->next;
            const bool isCharacterSet = pgkit::element(element).tag() == tags::kCharacterSet;
            if (wanted_.contains(element) || IsLeftOf(*element)) {
                isLeft = true;
            } else if (!isCharacterSet) {
                dataSet.RemoveNode(element);
            }
            element = next;
        }
        return isLeft;
    }

  private:
    bool IsLeftOf(PGX_Node& element) {
        bool isLeft = false;
        for (PGX_Node* item = element.first; item != nullptr; item = item->next)
            isLeft = Prune(*item) || isLeft;
        return isLeft;
    }

    std::unordered_set<const PGX_Node*> wanted_;
};

}  // namespace

std::vector<pgkit::element> ElementsAt(const pgkit::data_set& root,
                                       const std::vector<std::string>& places) {
    std::vector<pgkit::element> found;
    for (const std::string& place : places) {
        const auto tag = pgkit::tag::named(place);
        if (!tag) {
            if (const pgkit::element element = root.find(place)) found.push_back(element);
            continue;
        }
        pgkit::walk(root, [&](const pgkit::element& element) {
            if (element.tag() == *tag) found.push_back(element);
        });
    }
    return found;
}

void KeepElementsAt(pgkit::data_set& root, const std::vector<std::string>& places) {
    Pruning(ElementsAt(root, places)).Prune(*root.node());
}

}  // namespace pgtool
