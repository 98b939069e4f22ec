#include "support/tree.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace pgkit_test {

namespace {

std::string TagText(const PGX_Node& node, const char* format) {
    char text[16];
    std::snprintf(text, sizeof text, format, node.group, node.element);
    return text;
}

std::string DescribeChildren(const PGX_Node& node) {
    std::string text;
    for (const PGX_Node* child = node.first; child != nullptr; child = child->next) {
        if (!text.empty() && child->nodeType == NT_DataElement) text += ' ';
        text += Describe(child);
    }
    return text;
}

}  // namespace

OpenedStream::OpenedStream(const Bytes& bytes, uint32_t maxLoadLength, uint32_t flags)
    : path_(directory_.Write("stream", bytes)),
      root_(pgOpenDataSetFileEx(path_.c_str(), maxLoadLength, flags)) {}

std::string Describe(const PGX_Node* node) {
    if (node == nullptr) return "null";
    if (node->nodeType == NT_DataSet) return "[" + DescribeChildren(*node) + "]";
    char vr[5];
    pgGetVRPrintableName(node->valueRep, vr);
    std::string text = TagText(*node, "(%04X,%04X)") + vr + ":";
    text += node->length == kUndefined ? "-1" : std::to_string(node->length);
    if (node->valueRep == VR_SQ) text += "{" + DescribeChildren(*node) + "}";
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
