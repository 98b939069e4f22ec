// A host in C++: prints the version, and the patient's name of a file it has just made.
#include <pgkit/pgkit.h>

#include <cstdio>
#include <memory>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    char version[18] = {};
    pgGetVersionString(version, 17);

    std::unique_ptr<PGX_Node, void (*)(PGX_Node*)> built(pgAllocateDataSetNode(),
                                                         pgFreeNodeHierarchy);
    built->InsertNode(pgGetTagElementId("PatientsName"), "DOE^JANE", 8);
    built->AddPart10Elements(nullptr);
    if (built->SaveDataSetAsEx(arguments[1], PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN) != 0)
        return 1;

    std::unique_ptr<PGX_Node, void (*)(PGX_Node*)> read(pgOpenDataSetFile(arguments[1], 64),
                                                        pgCloseDataSet);
    if (read == nullptr) return 1;
    char name[65];
    read->FindNode(0x0010, 0x0010)->GetStringValue(name, 64);
    std::printf("%s: %s\n", version, name);
    return 0;
}
