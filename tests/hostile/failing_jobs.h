// Files and trees for which an operation needs every kind of call that can fail.
#pragma once

#include <pgkit/pgkit.h>

#include <string>

#include "support/directory_builder.h"
#include "support/instance_file.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace pgkit_test {

// Nested items, private elements, long values and fragments.
inline StreamBuilder RichFile() {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").MetaElement(0x0012, "UI", "1.22");
    file.Element(0x0008, 0x0016, "UI", PaddedUid("1.2.840.10008.5.1.4.1.1.2"));
    file.Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3"));
    file.Element(0x0009, 0x0010, "LO", "A MAKER OF MANY PRIVATE ELEMENTS");
    file.Element(0x0009, 0x1001, "UN", "abcd");
    file.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    file.Element(0x0028, 0x0030, "DS", "0.25\\0.5");
    file.Sequence(0x0040, 0xA730).Item().Sequence(0x0040, 0xA043).Item();
    file.Element(0x0008, 0x0104, "LO", std::string(300, 'm'));
    file.EndItem().EndSequence().EndItem().Item().EndItem().EndSequence();
    file.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0);
    for (int i = 0; i < 3; ++i)
        file.Item(4).Text("abcd");
    return file.EndSequence();
}

// Two patients with records on all levels.
inline DirectoryBuilder RichDirectory() {
    DirectoryBuilder directory;
    for (const char* id : {"4711", "4712"}) {
        const std::string uid = std::string("1.2.") + id;
        const size_t patient = directory.Patient(id, "DOE^JOHN");
        const size_t study = directory.Study(patient, uid);
        const size_t series = directory.Series(study, uid + ".1", "CT");
        directory.Image(series, uid + ".1.1", 1, "IMG\\X1");
        directory.Image(series, uid + ".1.2", 2, "IMG\\X2");
    }
    return directory;
}

}  // namespace pgkit_test
