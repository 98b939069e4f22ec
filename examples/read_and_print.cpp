// Prints who a DICOM file is about, how large its image is, and all its elements.
//
//   read_and_print FILE
#include <pgkit/data_set.hpp>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    // Short values are loaded now; longer ones, the pixels above all, stay in the file.
    const auto image = pgkit::data_set::open(arguments[1]);
    if (!image) {
        std::fprintf(stderr, "%s\n", image.error().message.c_str());
        return 1;
    }
    std::printf("Patient: %s\n", image->find("PatientName").text().c_str());  // in UTF-8
    const auto rows = image->find("Rows").number<int>();
    const auto columns = image->find("Columns").number<int>();
    if (rows && columns) std::printf("Image: %d x %d\n", *columns, *rows);

    pgkit::walk(*image, [](const pgkit::element& element, std::size_t depth) {
        std::printf("%*s%s %s %s: %s\n", static_cast<int>(2 * depth), "",
                    element.tag().text().c_str(), element.vr_name().c_str(), element.name().c_str(),
                    element.text().c_str());
    });
    return 0;  // the data set closes its file
}
