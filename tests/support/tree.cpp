#include "support/tree.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

namespace pgkit_test {

namespace {

std::string TagText(const PGX_Node& node, const char* format) {
    char text[16];
    std::snprintf(text, sizeof text, format, node.group, node.element);
    return text;
}

bool IsLevel(const PGX_Node& node) { return node.nodeType == NT_DataSet || node.valueRep == VR_SQ; }

// What stands in front of a node's children.
std::string Head(const PGX_Node& node) {
    if (node.nodeType == NT_DataSet) return "[";
    char vr[5];
    pgGetVRPrintableName(node.valueRep, vr);
    const std::string length = node.length == kUndefined ? "-1" : std::to_string(node.length);
    return TagText(node, "(%04X,%04X)") + vr + ":" + length + (IsLevel(node) ? "{" : "");
}

char Tail(const PGX_Node& node) { return node.nodeType == NT_DataSet ? ']' : '}'; }

}  // namespace

OpenedStream::OpenedStream(const Bytes& bytes, uint32_t maxLoadLength, uint32_t flags)
    : path_(directory_.Write("stream", bytes)),
      root_(pgOpenDataSetFileEx(path_.c_str(), maxLoadLength, flags)) {}

// Without recursion: trees are deep, and the stack may be small.
std::string Describe(const PGX_Node* node) {
    if (node == nullptr) return "null";
    struct Level {
        const PGX_Node* owner;
        const PGX_Node* next;
    };
    std::vector<Level> levels;
    std::string text;
    const auto enter = [&](const PGX_Node& entered) {
        text += Head(entered);
        if (IsLevel(entered)) levels.push_back({&entered, entered.first});
    };
    enter(*node);
    while (!levels.empty()) {
        Level& level = levels.back();
        const PGX_Node* const child = level.next;
        if (child == nullptr) {
            text += Tail(*level.owner);
            levels.pop_back();
            continue;
        }
        level.next = child->next;
        if (child != level.owner->first && child->nodeType == NT_DataElement) text += ' ';
        enter(*child);
    }
    return text;
}

std::string Tags(const PGX_Node* dataSet) {
    std::string text;
    for (const PGX_Node* child = dataSet->first; child != nullptr; child = child->next) {
        if (!text.empty()) text += ' ';
        text += TagText(*child, "%04X,%04X");
    }
    return text;
}

std::string TextOf(PGX_Node* element) {
    if (element == nullptr) return "<no element>";
    if (element->length == kUndefined) return "<undefined length>";
    std::string text(element->length + 1, '\0');
    if (element->GetStringValue(text.data(), static_cast<int32_t>(element->length)) == 0) {
        return "<no value>";
    }
    text.pop_back();
    return text;
}

PGX_Node* Child(PGX_Node* dataSet, uint16_t group, uint16_t element) {
    PGX_Node* found = pgFindNodeWithGroupElement(dataSet, group, element);
    EXPECT_NE(found, nullptr) << std::hex << group << ',' << element;
    return found;
}

}  // namespace pgkit_test
