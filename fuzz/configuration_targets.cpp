#include <pgkit/pgkit.h>

#include <string>

#include "input.h"
#include "scratch_files.h"
#include "sopclass/sop_class_set.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

void PrivateDictionaryFile(Bytes bytes) {
    Input input(bytes);
    const uint16_t group = input.U16();
    const uint16_t element = input.U16();
    pgSetPrivateDictionaryFile(WriteScratch("privdict.dic", input.Rest()).c_str());
    pgFindValueRepresentation(group, element);
    char name[1024];
    PGX_Node(NT_DataElement, ET_LittleEndian, group, element, VR_UN, 0).GetTagName(name);
    pgSetPrivateDictionaryFile(WriteScratch("privdict.dic", {}).c_str());
}

void SOPClassFile(Bytes bytes) {
    const std::string path = WriteScratch("sopclasses.xml", bytes);
    pgkit::SOPClassSet classes;
    classes.ReadFile(path.c_str(), "pgkit");
    for (const auto& [uid, sopClass] : classes.GetEntries())
        Require(uid == sopClass.uid && sopClass.IsValid(), "only valid classes are taken");
}

}  // namespace pgkit_fuzz
