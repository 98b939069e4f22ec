// A data set as a JSON object.
#pragma once

#include <cstdint>
#include <vector>

#include "json/element_writer.h"
#include "json/json_output.h"
#include "json/written_elements.h"
#include "pgkit/json.h"
#include "pgkit/node.h"

namespace pgkit {

// Walks the tree with a stack of its own: depth costs memory only.
class DataSetWriter {
  public:
    // The options are complete. Throws std::bad_alloc, as everything here.
    DataSetWriter(JsonOutput& output, const PgxJsonWriteOptions& options);

    // 0 or a PgxJsonError.
    [[nodiscard]] int32_t Write(PGX_Node& dataSet);

  private:
    // A data set that is being written, and where in it.
    struct Level {
        WrittenElements elements;
        PGX_Node* characterSet;
        bool isSigned;
        bool lacksCharacterSet;  // and has not got one yet
        PGX_Node* element = nullptr;
        PGX_Node* item = nullptr;  // of the element
        size_t itemIndex = 0;
    };

    void OpenDataSet(PGX_Node& dataSet);
    void CloseDataSet();
    [[nodiscard]] int32_t WriteElement(Level& level, PGX_Node& element);
    [[nodiscard]] int32_t WriteContent(const Level& level, PGX_Node& element, uint32_t valueRep);
    void OpenSequence(Level& level, PGX_Node& sequence);
    void BeginElement(uint16_t group, uint16_t element, const char* valueRep);
    void WriteCharacterSet();
    bool NeedsCharacterSet(PGX_Node& dataSet);
    std::string Path() const;

    JsonOutput& output_;
    const PgxJsonWriteOptions& options_;
    ElementWriter values_;
    std::vector<Level> levels_;
};

}  // namespace pgkit
